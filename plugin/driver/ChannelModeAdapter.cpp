// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/driver/ChannelModeAdapter.h"

#include <algorithm>
#include <cmath>

#include "audio/stages/ChannelRouting.h"
#include "plugin/driver/MAudioPlugin.h"

namespace
{
ChannelMode ModeAt(double value01)
{
    return static_cast<ChannelMode>(
        std::clamp(std::lround(value01 * (ChannelModeCount - 1)), 0L, ChannelModeCount - 1L));
}

double PlaceOf(ChannelMode mode)
{
    return static_cast<double>(mode) / (ChannelModeCount - 1);
}
}   // namespace

ChannelModeAdapter::ChannelModeAdapter(MAudioPlugin& owner) : driver(owner)
{
    plugin = &owner;
    owned = false;
    sortKey = SortKey;
}

void ChannelModeAdapter::SetValue(std::int32_t sub, double value01, bool silent)
{
    driver.ChooseChannelMode(ModeAt(value01));
    if (!silent)
        MarkChanged(sub);
}

double ChannelModeAdapter::GetValue(std::int32_t) const
{
    return PlaceOf(driver.channelMode);
}

void ChannelModeAdapter::GetName(MString& out, std::int32_t) const
{
    out = "Channel mode";
}

void ChannelModeAdapter::GetID(MString& out, std::int32_t) const
{
    out = "Channel mode";
}

void ChannelModeAdapter::GetValueName(MString& out, std::int32_t) const
{
    out = InfoOf(driver.channelMode).longName;
}

void ChannelModeAdapter::GetValueNameFrom01(MString& out, std::int32_t, double value01) const
{
    out = InfoOf(ModeAt(value01)).longName;
}

double ChannelModeAdapter::ParseValueName(std::int32_t, const MString& text) const
{
    ChannelMode mode = ChannelMode::LeftAndRight;
    FindChannelMode(text, mode);
    return PlaceOf(mode);
}
