// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/driver/HostReporter.h"

#include <algorithm>

#include "plugin/driver/MAudioPlugin.h"

HostReporter::Gesture* HostReporter::Find(std::int32_t index)
{
    const auto found = std::find_if(open.begin(), open.end(),
                                    [index](const Gesture& gesture) { return gesture.index == index; });
    return found == open.end() ? nullptr : &*found;
}

void HostReporter::Begin(std::int32_t index)
{
    if (Gesture* held = Find(index))
    {
        ++held->depth;
        return;
    }
    open.push_back({ .index = index, .depth = 1 });
    if (plugin.adapter != nullptr)
        plugin.adapter->BeginGesture(index);
}

void HostReporter::End(std::int32_t index)
{
    Gesture* const held = Find(index);
    if (held == nullptr || --held->depth > 0)
        return;
    open.erase(open.begin() + (held - open.data()));
    if (plugin.adapter != nullptr)
        plugin.adapter->EndGesture(index);
}

void HostReporter::EndAll()
{
    while (!open.empty())
    {
        open.back().depth = 1;
        End(open.back().index);
    }
}

void HostReporter::Send(std::int32_t index, double value01)
{
    if (plugin.adapter == nullptr)
        return;
    Begin(index);
    plugin.adapter->SendAutomation(index, value01);
    End(index);
}

void HostReporter::Report()
{
    if (!listener.Drain() || plugin.adapter == nullptr)
        return;
    if (listener.Has(Change::SettingsInside))
    {
        plugin.adapter->ReportAllValues();
        return;
    }
    const std::vector<std::int32_t>& moved = listener.InsideParameters();
    if (moved.empty())
        return;
    if (moved.size() > 1)
        plugin.adapter->BeginGroup();
    for (const std::int32_t index : moved)
        Send(index, plugin.GetParameter(index));
    if (moved.size() > 1)
        plugin.adapter->EndGroup();
}
