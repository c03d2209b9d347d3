// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/contract/MPlugin.h"

#include <cmath>

#include "plugin/contract/MPluginArgument.h"
#include "plugin/contract/MRandom.h"
#include "state/tree/MAttribute.h"
#include "state/tree/MStoreParams.h"

namespace
{
// The key of a parameter in an effect's settings.
MString SettingsKey(const MPluginParameterInfo& info)
{
    return MString("parameter") + info.id;
}

bool IsDigitOrBlank(char16_t character)
{
    return character == u' ' || (character >= u'0' && character <= u'9');
}

// Parameters of repeated groups differ by a number around a common stem: the stem is the key, so that one
// group's settings fit another.
MString GroupKey(const MPluginParameterInfo& info)
{
    int start = 0;
    int end = info.id.Length();
    while (start < end && IsDigitOrBlank(info.id[start]))
        ++start;
    while (end > start && IsDigitOrBlank(info.id[end - 1]))
        --end;
    return info.id.SubString(start, end - start);
}
}   // namespace

MPlugin::MPlugin() = default;

std::int64_t MPlugin::SendToHost(std::int64_t command, std::int64_t argument)
{
    if (hostCallback == nullptr)
        return -1;
    MPluginArguments arguments;
    for (int index = 0; index < MPluginArguments::Count; ++index)
        arguments.SetInteger(index, 0);
    arguments.SetInteger(0, argument);
    return hostCallback(hostObject, command, arguments.Records());
}

std::int64_t MPlugin::Dispatch(std::int64_t command, MPluginArgument* arguments)
{
    switch (command)
    {
    case PluginCommand::SetHost:
        SetHost(arguments[0].AsPointer<void>(), reinterpret_cast<MHostCallback>(arguments[1].value));
        return static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(this));
    case PluginCommand::Destroy:
    {
        // Whoever still works on the effect is let out first.
        {
            const MSynchronizerGuard guard(lock);
        }
        delete this;
        return 0;
    }
    case PluginCommand::GetDescription:
        return static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(&description));
    case PluginCommand::Connected:
        OnConnected();
        return 0;
    case PluginCommand::ParameterChange:
    {
        const std::int32_t index = arguments[0].AsInt32();
        OnParameterChange(index);
        const bool isParameter = index >= 0 && index < description.parameterCount;
        if (!isParameter || description.parameters[index].Has(ParameterFlag::NeedsUpdate))
            Update();
        return 0;
    }
    case PluginCommand::CreateEditor:
        CreateEditor(arguments[0].AsPointer<MControl>());
        return 0;
    case PluginCommand::DestroyEditor:
        DestroyEditor(arguments[0].AsPointer<MControl>());
        return 0;
    case PluginCommand::SaveSettings:
        return SaveSettings(*arguments[0].AsPointer<MAttribute>());
    case PluginCommand::LoadSettings:
        return LoadSettings(*arguments[0].AsPointer<MAttribute>());
    case PluginCommand::Command13:
        OnCommand13();
        return 0;
    case PluginCommand::Command14:
        return OnCommand14(arguments[0].value);
    case PluginCommand::Randomize:
        return Randomize(*arguments[0].AsPointer<double>());
    case PluginCommand::Command20:
        return OnCommand20(arguments[0].value, arguments[1].value);
    default:
        return -1;
    }
}

MPlugin* MPlugin::SetHost(void* newHostObject, MHostCallback newHostCallback)
{
    hostObject = newHostObject;
    hostCallback = newHostCallback;
    return this;
}

void MPlugin::AcceptValues()
{
    for (std::int32_t index = 0; index < description.parameterCount; ++index)
    {
        MPluginParameterInfo& info = description.parameters[index];
        if (info.type == ParameterType::Float)
            info.number.previousValue = info.number.value;
    }
}

void MPlugin::OnParameterChange(std::int32_t) {}
void MPlugin::CreateEditor(MControl* parent)
{
    if (EffectScreens* screens = description.environment->screens)
        screens->CreateEditor(*this, parent);
}

void MPlugin::DestroyEditor(MControl* editor)
{
    if (EffectScreens* screens = description.environment->screens)
        screens->DestroyEditor(*this, editor);
}
void MPlugin::Store(const MStoreParams&) {}

std::int32_t MPlugin::OnCommand14(std::int64_t)
{
    return -1;
}

std::int64_t MPlugin::OnCommand20(std::int64_t, std::int64_t)
{
    return -1;
}

void SaveParameterValue(const MPluginParameterInfo& info, MAttribute& node, const MString& key)
{
    switch (info.type)
    {
    case ParameterType::Float:
        node.SetAttribute(key, MString::FromDouble(info.number.value, 12));
        break;
    case ParameterType::Integer:
        node.SetAttribute(key, MString::FromInt(info.integer.value));
        break;
    case ParameterType::Enumeration:
        node.SetAttribute(key + "Enum", info.enumeration.names[info.enumeration.index]);
        break;
    case ParameterType::Boolean:
        node.SetAttribute(key, info.boolean.value ? "1" : "0");
        break;
    case ParameterType::Text:
        node.SetAttribute(key, info.textValue);
        break;
    default:
        break;
    }
}

namespace
{
template <typename T>
T ClampTo(T value, T minimum, T maximum)
{
    return value < minimum ? minimum : (value > maximum ? maximum : value);
}

// A label first, then a plain index, so that a changed order of labels harms no stored settings.
void LoadEnumeration(MPluginParameterInfo& info, MAttribute& node, const MString& key)
{
    MPluginParameterInfo::EnumerationValue& block = info.enumeration;
    if (node.HasAttribute(key + "Enum"))
    {
        const MString& label = node.GetCachedAttribute();
        for (std::int32_t index = 0; index < block.count; ++index)
            if (label == MString(block.names[index]))
            {
                block.index = index;
                return;
            }
    }
    if (node.HasAttribute(key))
        block.index = static_cast<std::int32_t>(
            ClampTo<std::int64_t>(node.GetCachedAttribute().ToInt(), 0, block.count - 1));
}
}   // namespace

void LoadParameterValue(MPluginParameterInfo& info, MAttribute& node, const MString& key)
{
    if (info.type == ParameterType::Enumeration)
    {
        LoadEnumeration(info, node, key);
        return;
    }
    if (!node.HasAttribute(key))
        return;
    const MString text = node.GetCachedAttribute();
    switch (info.type)
    {
    case ParameterType::Float:
    {
        const double value = text.ToDouble();
        if (std::isfinite(value))
            info.number.value = ClampTo(value, info.number.minimum, info.number.maximum);
        break;
    }
    case ParameterType::Integer:
        info.integer.value = static_cast<std::int32_t>(
            ClampTo<std::int64_t>(text.ToInt(), info.integer.minimum, info.integer.maximum));
        break;
    case ParameterType::Boolean:
        info.boolean.value = text.ToInt() != 0;
        break;
    case ParameterType::Text:
        info.textValue = text;
        break;
    default:
        break;
    }
}

std::int8_t MPlugin::SaveSettings(MAttribute& node)
{
    for (std::int32_t index = 0; index < description.parameterCount; ++index)
        SaveParameterValue(description.parameters[index], node, SettingsKey(description.parameters[index]));
    Store({ .saving = 1, .item = &node });
    return 1;
}

std::int8_t MPlugin::LoadSettings(MAttribute& node, MLoadMode mode)
{
    for (std::int32_t index = 0; index < description.parameterCount; ++index)
        LoadParameterValue(description.parameters[index], node, SettingsKey(description.parameters[index]));
    {
        const MSynchronizerGuard guard(lock);
        Store({ .saving = 0, .item = &node, .mode = mode });
    }
    OnSettingsLoaded();
    Update();
    AcceptValues();
    return 1;
}

void MPlugin::SaveParameterGroup(std::int32_t first, MAttribute& node)
{
    for (std::int32_t index = first; index < description.parameterCount; ++index)
    {
        const MPluginParameterInfo& info = description.parameters[index];
        if (index > first && info.type == ParameterType::Group)
            break;
        SaveParameterValue(info, node, GroupKey(info));
    }
}

void MPlugin::LoadParameterGroup(std::int32_t first, MAttribute& node)
{
    for (std::int32_t index = first; index < description.parameterCount; ++index)
    {
        MPluginParameterInfo& info = description.parameters[index];
        if (index > first && info.type == ParameterType::Group)
            break;
        LoadParameterValue(info, node, GroupKey(info));
    }
    OnSettingsLoaded();
    Update();
    AcceptValues();
    SendToHost(HostCommand::ParameterGroupLoaded);
}

namespace
{
void RandomizeFloat(MPluginParameterInfo& info, double amount, bool anew)
{
    MPluginParameterInfo::FloatValue& block = info.number;
    double position = MRandom::Next01();
    if (!anew)
        position = ClampTo(info.PositionOf(block.value) + position * amount * 2 - amount, 0.0, 1.0);
    double value = info.NumberAt(position);
    if (info.Has(ParameterFlag::RandomizedToWhole))
        value = std::floor(value + 0.5);
    block.value = ClampTo(value, block.minimum, block.maximum);
    block.previousValue = block.value;
}
}   // namespace

void RandomizeParameter(MPluginParameterInfo& info, double amount)
{
    if (!info.Has(ParameterFlag::Randomizable))
        return;
    const bool anew = std::fabs(amount - 1) < 1e-50;
    switch (info.type)
    {
    case ParameterType::Float:
        RandomizeFloat(info, amount, anew);
        break;
    case ParameterType::Integer:
    {
        MPluginParameterInfo::IntegerValue& block = info.integer;
        const double range = block.maximum - block.minimum;
        const double d = range * amount;
        const double value = anew ? MRandom::Next01() * range + block.minimum
                                  : block.value + std::floor(MRandom::Next01() * d * 2 - d + 0.5);
        block.value =
            static_cast<std::int32_t>(ClampTo<double>(std::floor(value + 0.5), block.minimum, block.maximum));
        break;
    }
    case ParameterType::Enumeration:
    {
        MPluginParameterInfo::EnumerationValue& block = info.enumeration;
        const double d = block.count * amount;
        const double value = anew ? std::trunc(MRandom::Next01() * block.count)
                                  : block.index + std::floor(MRandom::Next01() * d * 2 - d + 0.5);
        block.index = static_cast<std::int32_t>(ClampTo<double>(value, 0, block.count - 1));
        break;
    }
    case ParameterType::Boolean:
        if (amount + 1e-50 >= 0.5)
            info.boolean.value = MRandom::NextBit();
        break;
    case ParameterType::Group:
        if (info.group.enabled != nullptr && amount + 1e-50 >= 0.5)
            *info.group.enabled = MRandom::NextBit();
        break;
    default:
        break;
    }
}

std::int32_t MPlugin::Randomize(double amount)
{
    for (std::int32_t index = 0; index < description.parameterCount; ++index)
        RandomizeParameter(description.parameters[index], amount);
    if (std::fabs(amount - 1) < 1e-50)
        RandomizeSpecial();
    Update();
    return 0;
}

void MPlugin::RandomizeSpecial()
{
    for (std::int32_t index = 0; index < description.specialParameterCount; ++index)
    {
        SpecialParameterObject* owner = description.specialParameters[index].owner;
        if (owner != nullptr && MRandom::NextBit())
            owner->Reinitialize();
    }
}

void MPlugin::ResetSpecial()
{
    for (std::int32_t index = 0; index < description.parameterCount; ++index)
        if (SpecialParameterObject* owner = description.parameters[index].owner)
            owner->ResetToDefault();
}
