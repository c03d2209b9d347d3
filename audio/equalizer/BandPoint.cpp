// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/BandPoint.h"

#include <algorithm>
#include <cmath>

#include "audio/filters/FilterTypes.h"
#include "state/tree/MAttribute.h"

double QFromWidth(double width)
{
    return 10 - 9.95 * std::pow(width, 0.25);
}

double WidthFromQ(double q)
{
    const double share = (q - 10) * 0.10050251256281408;   // 1 / 9.95
    return share * share * share * share;
}

void BandPoint::ResetFields()
{
    y = 0.0;
    width = DefaultWidth;
    order = 0;
    left = true;
    right = true;
    harmonicsDepth = 0.0;
    harmonicsMaxCount = MaxHarmonics;
    harmonicsSemitones = 12.0;
    harmonicsEnabled.fill(true);
    harmonicsLinear = false;
}

double BandPoint::FrequencyHz() const
{
    return std::pow(10.0, x);
}

void BandPoint::InvertGain()
{
    const double inverted = -y;
    y = std::fabs(inverted) < 1e-50 ? 0.0 : inverted;
}

namespace
{
double Limited(double value, double minimum, double maximum, double otherwise)
{
    return std::isfinite(value) ? std::clamp(value, minimum, maximum) : otherwise;
}
}   // namespace

void BandPoint::Clamp()
{
    x = Limited(x, BandMinimumX, BandMaximumX, 3.0);
    y = Limited(y, -BandMaximumGainDb, BandMaximumGainDb, 0.0);
    width = Limited(width, 0, 1, DefaultWidth);
    type = std::clamp<std::int32_t>(type, MAudioFilters::Peak, MAudioFilters::Notch);
    harmonicsDepth = Limited(harmonicsDepth, -1, 1, 0);
    harmonicsSemitones = Limited(harmonicsSemitones, 1, 48, 12);
}

namespace
{
constexpr double sameNumber = 1e-50;

void SaveUnless(MAttribute& node, const MString& key, bool isDefault, const MString& text)
{
    if (isDefault)
        node.RemoveAttribute(key);
    else
        node.SetAttribute(key, text);
}

double NumberOr(MAttribute& node, const MString& key, double otherwise)
{
    return node.HasAttribute(key) ? node.GetCachedAttribute().ToDouble() : otherwise;
}

std::int32_t IntegerOr(MAttribute& node, const MString& key, std::int32_t otherwise)
{
    if (!node.HasAttribute(key))
        return otherwise;
    constexpr std::int64_t limit = 1 << 20;   // keeps nonsense inside 32 bits
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(node.GetCachedAttribute().ToInt(), -limit, limit));
}

bool FlagOr(MAttribute& node, const MString& key, bool otherwise)
{
    return IntegerOr(node, key, otherwise ? 1 : 0) != 0;
}

MString HarmonicKey(std::int32_t index)
{
    return MString("Item") + MString::FromInt(index);
}
}   // namespace

namespace
{
MString PositionText(double value)
{
    return MString::FromDouble(value, 12);
}

MString QText(double q)
{
    return MString::FromDouble(q, 6);
}
}   // namespace

void BandPoint::RoundToStored()
{
    x = PositionText(x).ToDouble();
    y = PositionText(y).ToDouble();
    width = std::clamp(WidthFromQ(QText(Q()).ToDouble()), 0.0, 1.0);
}

void BandPoint::Save(MAttribute& node) const
{
    node.SetAttribute("x", PositionText(x));
    node.SetAttribute("y", PositionText(y));
    SaveUnless(node, "enabled", enabled, "0");
    node.SetAttribute("q", QText(Q()));
    node.SetAttribute("type", MAudioFilters::PropertiesOf(type).storedName);
    SaveUnless(node, "Order", order == 0, MString::FromInt(order));
    SaveUnless(node, "Harmonics.Depth", std::fabs(harmonicsDepth) < sameNumber,
               MString::FromDouble(harmonicsDepth, 12));
    SaveUnless(node, "Harmonics.MaxCount", harmonicsMaxCount == MaxHarmonics,
               MString::FromInt(harmonicsMaxCount));
    SaveUnless(node, "Harmonics.Semitones", std::fabs(harmonicsSemitones - 12) < sameNumber,
               MString::FromDouble(harmonicsSemitones, 12));
    SaveUnless(node, "Harmonics.Linear", !harmonicsLinear, "1");
    SaveUnless(node, "L", left, "0");
    SaveUnless(node, "R", right, "0");
    MAttribute& boxes = node.GetSubItem("Harmonics");
    for (std::int32_t index = 0; index < MaxHarmonics; ++index)
        SaveUnless(boxes, HarmonicKey(index), harmonicsEnabled[static_cast<std::size_t>(index)], "0");
}

void BandPoint::Load(MAttribute& node)
{
    x = NumberOr(node, "x", x);
    y = NumberOr(node, "y", y);
    enabled = FlagOr(node, "enabled", true);
    if (node.HasAttribute("q"))
        width = std::clamp(WidthFromQ(node.GetCachedAttribute().ToDouble()), 0.0, 1.0);
    if (node.HasAttribute("type"))
        type = MAudioFilters::FilterTypeFromStoredName(node.GetCachedAttribute());
    order = IntegerOr(node, "Order", 0);
    harmonicsDepth = NumberOr(node, "Harmonics.Depth", 0);
    harmonicsMaxCount = IntegerOr(node, "Harmonics.MaxCount", MaxHarmonics);
    harmonicsSemitones = NumberOr(node, "Harmonics.Semitones", 12);
    harmonicsLinear = FlagOr(node, "Harmonics.Linear", false);
    left = FlagOr(node, "L", true);
    right = FlagOr(node, "R", true);
    if (!node.HasSubItem("Harmonics"))
        return;
    MAttribute& boxes = node.GetCachedSubItem();
    for (std::int32_t index = 0; index < MaxHarmonics; ++index)
        harmonicsEnabled[static_cast<std::size_t>(index)] = FlagOr(boxes, HarmonicKey(index), true);
}
