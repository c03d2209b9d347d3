// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/parameters/ParameterAdapters.h"

#include <algorithm>
#include <cmath>

#include "control/values/ValueText.h"
#include "foundation/text/MStringFormat.h"

namespace
{
double Round(double value)
{
    return std::floor(value + 0.5);
}

std::int32_t IntegerFrom01(const MPluginParameterInfo& info, double value01)
{
    const double range = static_cast<double>(info.integer.maximum) - info.integer.minimum;
    return static_cast<std::int32_t>(Round(range * value01 + info.integer.minimum));
}

double IntegerTo01(const MPluginParameterInfo& info, double value)
{
    const double range = static_cast<double>(info.integer.maximum) - info.integer.minimum;
    return range > 0 ? (value - info.integer.minimum) / range : 0.0;
}

std::int32_t IndexFrom01(const MPluginParameterInfo& info, double value01)
{
    const std::int32_t count = info.enumeration.count;
    return static_cast<std::int32_t>(std::clamp(Round(count * value01 - 0.5), 0.0, count - 1.0));
}

double IndexTo01(const MPluginParameterInfo& info, std::int32_t index)
{
    return info.enumeration.count > 1 ? static_cast<double>(index) / (info.enumeration.count - 1) : 0.0;
}

// The formatters work on a copy of the record, so that a text can be had of any value.
MString FloatText(const MPluginParameterInfo& info, double value)
{
    if (info.formatter != nullptr)
    {
        MPluginParameterInfo copy = info;
        copy.number.value = value;
        MString text;
        info.formatter(copy, text, false);
        return text;
    }
    if (!info.format.IsEmpty())
        return Format(info.format, value);
    return MString::FromDouble(value, 6);
}

MString IntegerText(const MPluginParameterInfo& info, std::int32_t value)
{
    if (info.formatter != nullptr)
    {
        MPluginParameterInfo copy = info;
        copy.integer.value = value;
        MString text;
        info.formatter(copy, text, false);
        return text;
    }
    return info.format.IsEmpty() ? MString::FromInt(value) : Format(info.format, value);
}

MString BooleanText(bool value)
{
    return value ? "On" : "Off";
}
}   // namespace

void ParameterMainBase::GetName(MString& out, std::int32_t) const
{
    out = name;
}

void ParameterMainBase::GetID(MString& out, std::int32_t) const
{
    out = name + group + id;
}

bool ParameterBase::IsRandomizable() const
{
    return info->Has(ParameterFlag::Randomizable);
}

void ParameterBase::Randomize(double amount)
{
    RandomizeParameter(*info, amount);
}

void ParameterBase::NotifyChanged(std::int32_t sub)
{
    effect->OnParameterChange(index);
    if (info->Has(ParameterFlag::NeedsUpdate))
        effect->description.RequestUpdate();
    MarkChanged(sub);
}

void ParameterBaseCustom::NotifyChanged(std::int32_t sub)
{
    for (const ChangeCallback& callback : callbacks)
        callback.function(callback.target, callback.context, nullptr);
    MarkChanged(sub);
}

void ParameterBaseCustom::UpdateEditor()
{
    OnChanged.Post(GlobalEventProcessor(), {});
}

template <typename B>
void ParameterFloatT<B>::SetValue(std::int32_t sub, double value01, bool silent)
{
    MPluginParameterInfo& record = *this->info;
    const double value = record.NumberAt(value01);
    if (record.Has(ParameterFlag::Interpolating))
        record.number.smoothedValue = value;
    else
        record.number.value = value;
    if (!silent)
        this->NotifyChanged(sub);
}

template <typename B>
double ParameterFloatT<B>::GetValue(std::int32_t) const
{
    return this->info->PositionOf(this->info->number.value);
}

template <typename B>
void ParameterFloatT<B>::GetValueName(MString& out, std::int32_t) const
{
    out = FloatText(*this->info, this->info->number.value);
}

template <typename B>
void ParameterFloatT<B>::GetValueNameFrom01(MString& out, std::int32_t, double value01) const
{
    out = FloatText(*this->info, this->info->NumberAt(value01));
}

template <typename B>
double ParameterFloatT<B>::ParseValueName(std::int32_t, const MString& text) const
{
    const MPluginParameterInfo& record = *this->info;
    double value = 0;
    if (record.formatter != nullptr)
    {
        MPluginParameterInfo copy = record;
        MString input = text;
        record.formatter(copy, input, true);
        value = copy.number.value;
    }
    else
    {
        value = text.ToDouble();
    }
    return record.PositionOf(std::clamp(value, record.number.minimum, record.number.maximum));
}

template <typename B>
bool ParameterFloatT<B>::IsInterpolated(std::int32_t) const
{
    return this->info->Has(ParameterFlag::Interpolated);
}

template <typename B>
void ParameterFloatT<B>::SetInterpolation(std::int32_t, bool on)
{
    MPluginParameterInfo& record = *this->info;
    if (on)
    {
        record.number.smoothedValue = record.number.value.Get();
        record.WithFlags(ParameterFlag::Interpolating);
    }
    else
    {
        record.WithFlags(0, ParameterFlag::Interpolating);
    }
}

template <typename B>
double ParameterFloatT<B>::GetDefaultValue(std::int32_t) const
{
    const MPluginParameterInfo::FloatValue& block = this->info->number;
    const double range = block.maximum - block.minimum;
    return range > 0 ? (block.defaultValue - block.minimum) / range : 0.0;
}

template <typename B>
void ParameterIntT<B>::SetValue(std::int32_t sub, double value01, bool silent)
{
    MPluginParameterInfo& record = *this->info;
    const std::int32_t value = IntegerFrom01(record, value01);
    if (record.Has(ParameterFlag::Interpolating))
        record.integer.smoothedValue = value;
    else
        record.integer.value = value;
    if (!silent)
        this->NotifyChanged(sub);
}

template <typename B>
double ParameterIntT<B>::GetValue(std::int32_t) const
{
    return IntegerTo01(*this->info, this->info->integer.value);
}

template <typename B>
void ParameterIntT<B>::GetValueName(MString& out, std::int32_t) const
{
    out = IntegerText(*this->info, this->info->integer.value);
}

template <typename B>
void ParameterIntT<B>::GetValueNameFrom01(MString& out, std::int32_t, double value01) const
{
    out = IntegerText(*this->info, IntegerFrom01(*this->info, value01));
}

template <typename B>
double ParameterIntT<B>::ParseValueName(std::int32_t, const MString& text) const
{
    const MPluginParameterInfo& record = *this->info;
    std::int64_t value = 0;
    if (record.formatter != nullptr)
    {
        MPluginParameterInfo copy = record;
        MString input = text;
        record.formatter(copy, input, true);
        value = copy.integer.value;
    }
    else
    {
        value = text.ToInt();
    }
    value = std::clamp<std::int64_t>(value, record.integer.minimum, record.integer.maximum);
    return IntegerTo01(record, static_cast<double>(value));
}

template <typename B>
double ParameterIntT<B>::GetDefaultValue(std::int32_t) const
{
    return IntegerTo01(*this->info, this->info->integer.defaultValue);
}

template <typename B>
void ParameterEnumT<B>::SetValue(std::int32_t sub, double value01, bool silent)
{
    this->info->enumeration.index = IndexFrom01(*this->info, value01);
    if (!silent)
        this->NotifyChanged(sub);
}

template <typename B>
double ParameterEnumT<B>::GetValue(std::int32_t) const
{
    return IndexTo01(*this->info, this->info->enumeration.index);
}

template <typename B>
void ParameterEnumT<B>::GetValueName(MString& out, std::int32_t) const
{
    out = this->info->enumeration.names[this->info->enumeration.index];
}

template <typename B>
void ParameterEnumT<B>::GetValueNameFrom01(MString& out, std::int32_t, double value01) const
{
    out = this->info->enumeration.names[IndexFrom01(*this->info, value01)];
}

template <typename B>
double ParameterEnumT<B>::ParseValueName(std::int32_t, const MString& text) const
{
    const MPluginParameterInfo& record = *this->info;
    for (std::int32_t place = 0; place < record.enumeration.count; ++place)
        if (text == MString(record.enumeration.names[place]))
            return IndexTo01(record, place);
    return 0;
}

template <typename B>
double ParameterEnumT<B>::GetDefaultValue(std::int32_t) const
{
    return IndexTo01(*this->info, this->info->enumeration.defaultIndex);
}

template <typename B>
void ParameterBoolT<B>::SetValue(std::int32_t sub, double value01, bool silent)
{
    *Field() = value01 >= 0.5;
    if (!silent)
        this->NotifyChanged(sub);
}

template <typename B>
double ParameterBoolT<B>::GetValue(std::int32_t) const
{
    return *Field() ? 1 : 0;
}

template <typename B>
void ParameterBoolT<B>::GetValueName(MString& out, std::int32_t) const
{
    out = BooleanText(*Field());
}

template <typename B>
void ParameterBoolT<B>::GetValueNameFrom01(MString& out, std::int32_t, double value01) const
{
    out = BooleanText(value01 >= 0.5);
}

template <typename B>
double ParameterBoolT<B>::ParseValueName(std::int32_t, const MString& text) const
{
    if (text.EqualsNoCase("On"))
        return 1;
    return text.ToInt() != 0 ? 1 : 0;
}

template <typename B>
double ParameterBoolT<B>::GetDefaultValue(std::int32_t) const
{
    return this->info->type == ParameterType::Boolean && this->info->boolean.defaultValue ? 1 : 0;
}

template class ParameterFloatT<ParameterBase>;
template class ParameterFloatT<ParameterBaseCustom>;
template class ParameterIntT<ParameterBase>;
template class ParameterIntT<ParameterBaseCustom>;
template class ParameterEnumT<ParameterBase>;
template class ParameterEnumT<ParameterBaseCustom>;
template class ParameterBoolT<ParameterBase>;
template class ParameterBoolT<ParameterBaseCustom>;
template class ParameterGroupT<ParameterBase>;

void FormatPercent(MPluginParameterInfo& record, MString& text, bool parse)
{
    double value = record.number.value;
    if (!parse)
        text = PercentText(value);
    else if (ReadPercent(text, value))
        record.number.value = value;
}

void FormatTime(MPluginParameterInfo& record, MString& text, bool parse)
{
    double value = record.number.value;
    if (!parse)
        text = MillisecondsText(value);
    else if (ReadMilliseconds(text, value))
        record.number.value = value;
}
