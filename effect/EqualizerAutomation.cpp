// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/EqualizerAutomation.h"

#include <algorithm>
#include <cmath>

#include "audio/filters/FilterTypes.h"
#include "control/values/ValueText.h"
#include "foundation/text/MStringFormat.h"

namespace
{
constexpr const char* roleNames[EqualizerAutomation::RoleCount] = {
    "Enable ", "Frequency ", "Gain ", "Q ", "Type ", "Harmonics ", "Harmonics semitones "
};

std::int32_t BandOf(std::int32_t sub)
{
    return sub / EqualizerAutomation::RoleCount;
}

std::int32_t RoleOf(std::int32_t sub)
{
    return sub % EqualizerAutomation::RoleCount;
}

double LogFrequencyOf(double value01)
{
    return BandMinimumX + (BandMaximumX - BandMinimumX) * value01;
}

std::int32_t TypeOf(double value01)
{
    return static_cast<std::int32_t>(std::clamp(std::floor(8 * value01 + 0.5), 0.0, 8.0));
}

double SemitonesOf(double value01)
{
    return 47 * value01 + 1;
}
}   // namespace

EqualizerAutomation::EqualizerAutomation(MEqualizerBase& bands,
                                         std::function<void(std::int32_t band)> onChange)
    : equalizer(bands), changed(std::move(onChange))
{
    targetCount = TargetCount;
    owned = false;
    cache.fill(-1);
}

void EqualizerAutomation::SetValue(std::int32_t sub, double value01, bool silent)
{
    BandPoint& band = equalizer.Band(BandOf(sub));
    switch (RoleOf(sub))
    {
    case Enable:
        band.enabled = value01 >= 0.5;
        break;
    case Frequency:
        band.x = LogFrequencyOf(value01);
        break;
    case Gain:
        band.y = 2 * BandMaximumGainDb * value01 - BandMaximumGainDb;
        break;
    case Q:
        band.width = value01;
        break;
    case Type_:
        band.type = TypeOf(value01);
        break;
    case Harmonics:
        band.harmonicsDepth = 2 * value01 - 1;
        break;
    case HarmonicsSemitones:
        band.harmonicsSemitones = SemitonesOf(value01);
        break;
    default:
        return;
    }
    if (silent)
        return;
    changed(BandOf(sub));
    MarkChanged(sub);
}

namespace
{
double TargetValue(const BandPoint& band, std::int32_t role)
{
    switch (role)
    {
    case EqualizerAutomation::Enable:
        return band.enabled ? 1 : 0;
    case EqualizerAutomation::Frequency:
        return (band.x - BandMinimumX) / (BandMaximumX - BandMinimumX);
    case EqualizerAutomation::Gain:
        return (band.y + BandMaximumGainDb) / (2 * BandMaximumGainDb);
    case EqualizerAutomation::Q:
        return band.width;
    case EqualizerAutomation::Type_:
        return band.type * 0.125;
    case EqualizerAutomation::Harmonics:
        return (band.harmonicsDepth + 1) / 2;
    case EqualizerAutomation::HarmonicsSemitones:
        return (band.harmonicsSemitones - 1) / 47;
    default:
        return 0;
    }
}
}   // namespace

double EqualizerAutomation::GetValue(std::int32_t sub) const
{
    return TargetValue(equalizer.Band(BandOf(sub)), RoleOf(sub));
}

void EqualizerAutomation::GetName(MString& out, std::int32_t sub) const
{
    out = MString(roleNames[RoleOf(sub)]) + MString::FromInt(BandOf(sub) + 1);
}

void EqualizerAutomation::GetID(MString& out, std::int32_t sub) const
{
    // The plug-in object puts the name behind it.
    out = Format("Equalizer band {0}", BandOf(sub) + 1);
}

void EqualizerAutomation::GetValueName(MString& out, std::int32_t sub) const
{
    GetValueNameFrom01(out, sub, GetValue(sub));
}

void EqualizerAutomation::GetValueNameFrom01(MString& out, std::int32_t sub, double value01) const
{
    switch (RoleOf(sub))
    {
    case Enable:
        out = value01 >= 0.5 ? "On" : "Off";
        break;
    case Frequency:
        out = FrequencyText(std::pow(10.0, LogFrequencyOf(value01)));
        break;
    case Gain:
        out = Format("{+0.2} dB", 2 * BandMaximumGainDb * value01 - BandMaximumGainDb);
        break;
    case Q:
        out = MString::FromDouble(QFromWidth(value01), 6);
        break;
    case Type_:
        out = MAudioFilters::PropertiesOf(TypeOf(value01)).label;
        break;
    case Harmonics:
        out = PercentText(2 * value01 - 1);
        break;
    case HarmonicsSemitones:
        out = Format("{0.02}", SemitonesOf(value01));
        break;
    default:
        out = {};
        break;
    }
}

double EqualizerAutomation::ParseValueName(std::int32_t sub, const MString& text) const
{
    const double number = text.ToDouble();
    double value = 0;
    switch (RoleOf(sub))
    {
    case Enable:
        value = text.EqualsNoCase("On") || text.ToInt() != 0 ? 1 : 0;
        break;
    case Frequency:
    {
        double hertz = 0;
        if (ReadFrequency(text, hertz) && hertz > 0)
            value = (std::log10(hertz) - BandMinimumX) / (BandMaximumX - BandMinimumX);
        break;
    }
    case Gain:
        value = (number + BandMaximumGainDb) / (2 * BandMaximumGainDb);
        break;
    case Q:
        value = WidthFromQ(std::clamp(number, 0.05, 10.0));
        break;
    case Harmonics:
        value = (number / 100 + 1) / 2;
        break;
    case HarmonicsSemitones:
        value = (number - 1) / 47;
        break;
    default:
        break;
    }
    return std::isfinite(value) ? std::clamp(value, 0.0, 1.0) : 0.0;
}

AutomationAdapter::Type EqualizerAutomation::GetType(std::int32_t sub) const
{
    switch (RoleOf(sub))
    {
    case Enable:
        return Type::Boolean;
    case Type_:
        return Type::Enumeration;
    default:
        return Type::Float;
    }
}

double EqualizerAutomation::GetDefaultValue(std::int32_t sub) const
{
    BandPoint band;
    MEqualizerBase::SetBandDefaults(band, BandOf(sub));
    return TargetValue(band, RoleOf(sub));
}

EqualizerAutomation::Values EqualizerAutomation::PresentValues() const
{
    Values values;
    for (std::int32_t sub = 0; sub < TargetCount; ++sub)
        values[static_cast<std::size_t>(sub)] = GetValue(sub);
    return values;
}

void EqualizerAutomation::MarkChangesSince(const Values& before)
{
    for (std::int32_t sub = 0; sub < TargetCount; ++sub)
        if (GetValue(sub) != before[static_cast<std::size_t>(sub)])
            MarkChangedInside(sub);
}

void EqualizerAutomation::RefreshCache()
{
    for (std::int32_t sub = 0; sub < TargetCount; ++sub)
        cache[static_cast<std::size_t>(sub)] = GetValue(sub);
}
