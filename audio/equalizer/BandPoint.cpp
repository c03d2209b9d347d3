// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/BandPoint.h"

#include <algorithm>
#include <cmath>

#include "audio/filters/FilterTypes.h"
#include "state/tree/MAttribute.h"
#include "state/tree/StoredNode.h"

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
    BandPoint copy = *this;
    copy.Store({ .saving = 1, .item = &node });
}

void BandPoint::Load(MAttribute& node)
{
    Store({ .saving = 0, .item = &node });
}

void BandPoint::Store(const MStoreParams& params)
{
    constexpr std::int32_t limit = 1 << 20;   // keeps nonsense inside 32 bits
    const StoredRange<std::int32_t> sane{ -limit, limit };
    StoredNode node(params);
    node.Always("x", x);
    node.Always("y", y);
    node.Optional("enabled", enabled, true);
    if (node.IsSaving())
    {
        node.Item().SetAttribute("q", QText(Q()));
        node.Item().SetAttribute("type", MAudioFilters::PropertiesOf(type).storedName);
    }
    else
    {
        if (const MString* q = node.Item().FindAttribute("q"))
            width = std::clamp(WidthFromQ(q->ToDouble()), 0.0, 1.0);
        if (const MString* name = node.Item().FindAttribute("type"))
            type = MAudioFilters::FilterTypeFromStoredName(*name);
    }
    node.Optional("Order", order, 0, sane);
    node.Optional("Harmonics.Depth", harmonicsDepth, 0.0);
    node.Optional("Harmonics.MaxCount", harmonicsMaxCount, MaxHarmonics, sane);
    node.Optional("Harmonics.Semitones", harmonicsSemitones, 12.0);
    node.Optional("Harmonics.Linear", harmonicsLinear, false);
    node.Optional("L", left, true);
    node.Optional("R", right, true);
    node.ChildIfPresent("Harmonics",
                        [this](StoredNode& boxes)
                        {
                            std::int32_t index = 0;
                            for (MRelaxed<bool>& box : harmonicsEnabled)
                                boxes.Optional(MString("Item") + MString::FromInt(index++), box, true);
                        });
}
