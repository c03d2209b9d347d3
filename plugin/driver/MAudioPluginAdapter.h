// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// What a host format implements for the plug-in object that it owns. Nothing here is called with a lock of
/// the plug-in held: hosts answer by calling back, some from another thread that they wait for. Thread: GUI,
/// where nothing else is said.
class MAudioPluginAdapter
{
public:
    virtual ~MAudioPluginAdapter() = default;
    /// A parameter moved from inside; value 0 to 1. Comes between the begin and the end of a gesture.
    virtual void SendAutomation(std::int32_t index, double value01) = 0;
    virtual void SendBypassAutomation() = 0;
    /// A MIDI message `offset` samples into the present block. Thread: audio.
    virtual void GenerateMIDIEvent(std::uint8_t status, std::uint8_t data1, std::uint8_t data2,
                                   std::int32_t offset) = 0;
    /// The plug-in's latency changed to what MAudioPlugin::reportedLatency says. Thread: any but audio.
    virtual void ReportLatency() = 0;
    virtual void ChangeEditorSize(std::int32_t width, std::int32_t height) = 0;

    /// The user takes hold of a parameter, or lets it go: what touch automation records by.
    virtual void BeginGesture(std::int32_t) {}
    virtual void EndGesture(std::int32_t) {}
    /// The gestures up to EndGroup belong together: one step in a host's history.
    virtual void BeginGroup() {}
    virtual void EndGroup() {}
    /// All values may have changed, as by a preset.
    virtual void ReportAllValues() {}
};
