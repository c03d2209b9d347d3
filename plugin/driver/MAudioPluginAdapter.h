// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// What a host format implements for the plug-in object that it owns.
class MAudioPluginAdapter
{
public:
    virtual ~MAudioPluginAdapter() = default;
    /// A parameter moved from inside; value 0 to 1.
    virtual void SendAutomation(std::int32_t index, double value01) = 0;
    virtual void SendBypassAutomation() = 0;
    /// A MIDI message `offset` samples into the present block. Audio thread.
    virtual void GenerateMIDIEvent(std::uint8_t status, std::uint8_t data1, std::uint8_t data2,
                                   std::int32_t offset) = 0;
    /// The plug-in's latency changed to what MAudioPlugin::reportedLatency says.
    virtual void ReportLatency() = 0;
    virtual void ChangeEditorSize(std::int32_t width, std::int32_t height) = 0;
};
