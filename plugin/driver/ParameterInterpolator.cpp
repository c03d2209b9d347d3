// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/driver/ParameterInterpolator.h"

#include <cmath>

#include "control/parameters/AutomationList.h"

void ParameterInterpolator::Rebuild(const AutomationList& list)
{
    active.clear();
    for (AutomationAdapter* adapter : list.Adapters())
        for (std::int32_t sub = 0; sub < adapter->targetCount; ++sub)
            if (adapter->IsInterpolated(sub))
                active.push_back(
                    { .adapter = adapter, .subIndex = sub, .lastValue = adapter->GetValue(sub) });
}

bool ParameterInterpolator::Prepare(std::int32_t sampleCount)
{
    if (firstBlock)
    {
        firstBlock = false;
        for (MParameterInterpolation& ramp : active)
            ramp.lastValue = ramp.adapter->GetValue(ramp.subIndex);
        return false;
    }
    bool anyChange = false;
    for (MParameterInterpolation& ramp : active)
    {
        ramp.targetValue = ramp.adapter->GetValue(ramp.subIndex);
        ramp.step = ramp.targetValue - ramp.lastValue;
        ramp.changing = std::fabs(ramp.step) > 1e-05;
        anyChange = anyChange || ramp.changing;
    }
    if (!anyChange)
        return false;
    if (sampleCount < 2)
    {
        // A block too short for a ramp jumps, and the next one starts from here.
        for (MParameterInterpolation& ramp : active)
            ramp.lastValue = ramp.targetValue;
        return false;
    }
    for (MParameterInterpolation& ramp : active)
    {
        if (!ramp.changing)
        {
            ramp.lastValue = ramp.targetValue;
            continue;
        }
        ramp.step /= sampleCount;
        ramp.currentValue = ramp.lastValue;
        ramp.adapter->SetInterpolation(ramp.subIndex, true);
        ramp.adapter->SetValue(ramp.subIndex, ramp.lastValue, true);
    }
    return true;
}

void ParameterInterpolator::Advance(std::int32_t sampleCount)
{
    for (MParameterInterpolation& ramp : active)
    {
        if (!ramp.changing)
            continue;
        ramp.currentValue += sampleCount * ramp.step;
        ramp.adapter->SetValue(ramp.subIndex, ramp.currentValue, true);
    }
}

void ParameterInterpolator::Finish()
{
    for (MParameterInterpolation& ramp : active)
    {
        ramp.lastValue = ramp.targetValue;
        if (!ramp.changing)
            continue;
        ramp.changing = false;
        ramp.adapter->SetInterpolation(ramp.subIndex, false);
        ramp.adapter->SetValue(ramp.subIndex, ramp.targetValue, true);
    }
}
