// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/parameters/AutomationAdapter.h"

#include <algorithm>
#include <cmath>

#include "plugin/contract/MRandom.h"

void AutomationAdapter::SetValue(std::int32_t, double, bool) {}

void AutomationAdapter::SetValueIfChanged(std::int32_t sub, double value01, bool silent)
{
    if (std::fabs(GetValue(sub) - value01) >= 1e-50)
        SetValue(sub, value01, silent);
}

double AutomationAdapter::GetValue(std::int32_t) const
{
    return 0;
}

void AutomationAdapter::GetName(MString& out, std::int32_t) const
{
    out = {};
}

void AutomationAdapter::GetShortName(MString& out, std::int32_t sub) const
{
    GetName(out, sub);
}

void AutomationAdapter::GetID(MString& out, std::int32_t) const
{
    out = {};
}

void AutomationAdapter::GetValueName(MString& out, std::int32_t) const
{
    out = {};
}

void AutomationAdapter::GetValueNameFrom01(MString& out, std::int32_t, double) const
{
    out = {};
}

double AutomationAdapter::ParseValueName(std::int32_t, const MString& text) const
{
    return text.ToDouble();
}

void AutomationAdapter::GetUnitsName(MString& out, std::int32_t) const
{
    out = {};
}

bool AutomationAdapter::IsInterpolated(std::int32_t) const
{
    return false;
}

void AutomationAdapter::SetInterpolation(std::int32_t, bool) {}

AutomationAdapter::Type AutomationAdapter::GetType(std::int32_t) const
{
    return Type::Float;
}

double AutomationAdapter::GetDefaultValue(std::int32_t) const
{
    return 0.5;
}

bool AutomationAdapter::IsRandomizable() const
{
    return false;
}

void AutomationAdapter::Randomize(double amount)
{
    if (!IsRandomizable())
        return;
    for (std::int32_t sub = 0; sub < targetCount; ++sub)
    {
        const double r = MRandom::Next01();
        const double value = amount < 1 ? std::clamp(GetValue(sub) + (r - 0.5) * amount * 2, 0.0, 1.0) : r;
        SetValue(sub, value, true);
    }
}

void AutomationAdapter::MarkChanged(std::int32_t sub)
{
    if (plugin != nullptr)
        plugin->MarkParameterChanged(firstIndex + sub);
}

void AutomationAdapter::MarkChangedInside(std::int32_t sub)
{
    if (plugin != nullptr)
        plugin->MarkParameterChangedInside(firstIndex + sub);
}

void AutomationAdapter::SendAutomation(std::int32_t sub)
{
    SendAutomationValue(sub, GetDefaultValue(sub));
}

void AutomationAdapter::SendAutomationValue(std::int32_t sub, double value01)
{
    if (plugin != nullptr)
        plugin->SendAutomation(firstIndex + sub, value01);
}

void AutomationAdapter::SendAutomationValueWithChange(std::int32_t sub, double value01)
{
    constexpr double nudge = 1e-10;
    SendAutomationValue(sub, value01 <= nudge ? value01 + nudge : value01 - nudge);
    SendAutomationValue(sub, value01);
}

void AutomationAdapter::SendAllAutomation()
{
    for (std::int32_t sub = 0; sub < targetCount; ++sub)
        SendAutomation(sub);
}
