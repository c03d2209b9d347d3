// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/contract/MPlugin.h"
#include "plugin/contract/MProcessContext.h"

/// An effect that processes audio.
///
/// The driver calls, for every activation: InitProcessing, Update, AcceptValues. Then Process, as often as
/// it likes, each time after an Update if the description's UpdatePending bit is set. InitProcessing may
/// come again at any time with other values. Until its first run `sampleRate` is 0, and OnParameterChange
/// and Update do nothing.
class MAudioEffectPlugin : public MPlugin
{
public:
    std::int64_t Dispatch(std::int64_t command, MPluginArgument* arguments) override;

    /// Prepares for a channel count and a sample rate in Hz, and forgets all audio. May allocate. Thread:
    /// main.
    virtual std::int64_t InitProcessing(std::int32_t channelCount, double newSampleRate) = 0;
    /// Thread: GUI.
    virtual void InitProcessingGUI() {}
    /// One block: an input and an output array for each of `channelGroups` channels. Never allocates. Thread:
    /// audio.
    virtual void Process(const MProcessContext& context, float** inputs, float** outputs,
                         std::int32_t sampleCount) = 0;
    /// A slow tick of the user interface, only while an editor exists. Thread: GUI.
    virtual void ProcessUpdate() {}
    virtual std::int32_t GetChannelRatio() { return 1; }
    /// Samples by which the output lags the input now. Thread: any, as of all that follow.
    virtual std::int32_t GetLatency() { return 0; }
    /// Samples that still come out after the input has ended.
    virtual std::int32_t GetTailSize() { return 0; }
    virtual void SetOption(std::int32_t) {}
    /// The factor by which the effect runs above the host's rate and has to keep its own spectrum free of
    /// what would alias on the way down; 1 where the driver filters. Main thread; in force at the next
    /// Update.
    virtual void SetUpsamplingRatio(std::int32_t) {}
    /// Whether a driver that upsamples without its linear-phase filter has to filter the output before it
    /// goes down. Audio thread, under `lock`.
    virtual bool NeedsDownsamplingFilter() const { return true; }

    std::int32_t channelGroups = 0;
    MRelaxed<double> sampleRate = 0.0;
    /// Above 0, Process writes silence. Changed under `lock`, so that long work need not hold it.
    std::int32_t suspendCount = 0;
};

/// Raises `suspendCount` of an effect for a scope.
class SuspendGuard
{
public:
    explicit SuspendGuard(MAudioEffectPlugin& suspended);
    ~SuspendGuard();
    SuspendGuard(const SuspendGuard&) = delete;
    SuspendGuard& operator=(const SuspendGuard&) = delete;

private:
    MAudioEffectPlugin& effect;
};
