// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "foundation/audiofile/AudioSampleBuffer.h"
#include "hosts/module/CreateInstance.h"
#include "plugin/driver/MAudioPluginAdapter.h"

/// A host that runs the plug-in over whole buffers. It owns one plug-in object and feeds it blocks through
/// ProcessBlock like any other host; it compensates the reported latency, so that what comes out is as long
/// as what went in and in time with it.
///
/// One thread. Nobody looks, so that the analyzer rests but for measurements.
class OfflineHost : public MAudioPluginAdapter
{
public:
    /// Gets each block of the output in order: channel pointers and the number of frames.
    using Sink = std::function<void(const float* const* channels, std::int32_t frames)>;
    /// Hears the share that is done, 0 to 1; false cancels, which throws MException "Cancelled.".
    using Progress = std::function<bool(double fraction)>;

    /// Throws MException when the plug-in can't be made.
    OfflineHost();
    ~OfflineHost() override;
    OfflineHost(const OfflineHost&) = delete;
    OfflineHost& operator=(const OfflineHost&) = delete;

    /// Prepares the plug-in for a sample rate in Hz and 1 to 8 channels, with all audio forgotten. Above two
    /// they are one group of surround, whatever the channel mode was; a stereo host has no such mode.
    void Prepare(double sampleRate, std::int32_t channels);
    /// Runs the input through in blocks of `blockFrames`. The plug-in must be prepared for its channels.
    void Render(const AudioSampleBuffer& input, std::int32_t blockFrames, const Sink& sink,
                const Progress& progress = {});

    MQuorvaneAudioEffectPlugin& Plugin() { return *plugin; }
    TonalignAudioEffectPlugin& Effect() { return EffectOf(*plugin); }
    /// What the plug-in last reported, in samples.
    std::int32_t LatencySamples() const { return latencySamples; }

    /// A parameter of the effect by its stored id, in its own unit (dB, a share of 1, an index). False for an
    /// unknown id or a value out of its range. Takes effect at the next block.
    bool SetParameterById(const MString& id, double value);

    void SendAutomation(std::int32_t, double) override {}
    void SendBypassAutomation() override {}
    void GenerateMIDIEvent(std::uint8_t, std::uint8_t, std::uint8_t, std::int32_t) override {}
    void ReportLatency() override;
    void ChangeEditorSize(std::int32_t, std::int32_t) override {}

private:
    void SetGroupWidth(std::int32_t channels);

    std::unique_ptr<MQuorvaneAudioEffectPlugin> plugin;
    std::int32_t latencySamples = 0;
};
