// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "audio/stages/ChannelRouting.h"
#include "audio/stages/DryPath.h"
#include "audio/stages/MAutomaticGainControl.h"
#include "audio/stages/MUpsampler.h"
#include "control/parameters/AutomationList.h"
#include "foundation/containers/MEvent.h"
#include "foundation/threads/MLock.h"
#include "plugin/contract/MPluginDescription.h"
#include "plugin/driver/BusLayout.h"
#include "plugin/driver/EditorUpdates.h"
#include "plugin/driver/HostReporter.h"
#include "plugin/driver/MAudioPluginAdapter.h"
#include "plugin/driver/ParameterInterpolator.h"
#include "plugin/driver/ProcessingChange.h"
#include "plugin/driver/Transport.h"

struct MStoreParams;

/// The host-neutral plug-in object. A host adapter owns one and feeds it blocks and parameter calls.
///
/// Order of calls: the adapter sets `adapter` and the connected channels and runs InitProcessing; then
/// ProcessBlock as often as it likes. A change of rate or channels runs InitProcessing again, from any
/// thread.
///
/// Locks, always in this order: `processLock`, `initLock`, `settingsLock`. ProcessBlock only tries the first
/// and waits for the last; whoever changes what processing reads holds all three, by a ProcessingChange, so
/// that the audio thread drops a block instead of waiting. The adapter is never called with a lock held.
class MAudioPlugin : public MEventTarget, public AutomationOwner
{
public:
    static constexpr std::int32_t MaxChannels = 128;
    static constexpr std::int32_t MaxUpsamplingFactor = 4;

    MAudioPlugin();
    ~MAudioPlugin() override = default;
    MAudioPlugin(const MAudioPlugin&) = delete;
    MAudioPlugin& operator=(const MAudioPlugin&) = delete;

    /// One block, the only way audio goes. `inputs` and `outputs` are channel pointers in groups,
    /// `groupStride` apart; null pointers stand for channels that aren't connected. Not `replacing` adds to
    /// the outputs. Every output channel is written in every mode and route; the inputs never are, but an
    /// output may be an input's array. Audio thread. Throws MException "Could not acquire mutex." when the
    /// block is dropped, with the outputs untouched.
    void ProcessBlock(float* const* inputs, float* const* outputs, std::int32_t sampleCount, bool replacing);
    /// The same for the edge to a host: what was dropped, or failed, is silence, since a host plays whatever
    /// stands in its buffers. Answers whether the block was processed. Thread: audio.
    bool ProcessBlockOrSilence(float* const* inputs, float* const* outputs, std::int32_t sampleCount,
                               bool replacing) noexcept;
    /// Prepares for `sampleRate` and the channels set, and forgets all audio. Any thread but the audio
    /// thread; allocates.
    void InitProcessing();
    /// The same for another rate, in Hz.
    void InitProcessing(double newSampleRate);
    /// How many channels of a group the host really connected; a change prepares anew.
    void SetConnectedChannels(std::int32_t inputs, std::int32_t outputs);

    // Parameters, by the host's index. Any thread. Out of range answers the neutral value.
    std::int32_t GetParameterCount() const { return automation.HostParameterCount(); }
    void SetParameter(std::int32_t index, double value01, bool silent = false) noexcept;
    void SetParameterIfChanged(std::int32_t index, double value01, bool silent = false) noexcept;
    double GetParameter(std::int32_t index) const noexcept;
    void GetParameterName(MString& out, std::int32_t index) const noexcept;
    void GetParameterID(MString& out, std::int32_t index) const noexcept;
    void GetParameterLabel(MString& out, std::int32_t index) const noexcept;
    void GetParameterValueName(MString& out, std::int32_t index) const noexcept;
    void GetParameterValueNameFrom01(MString& out, std::int32_t index, double value01) const noexcept;
    double ParseParameterValueName(std::int32_t index, const MString& text) const noexcept;
    void GetParameterUnitsName(MString& out, std::int32_t index) const noexcept;
    bool IsParameterDiscrete(std::int32_t index) const noexcept;
    void GetParameterHelp(MString& out, std::int32_t index) const noexcept;
    AutomationAdapter::Type GetParameterType(std::int32_t index) const noexcept;
    /// Whether a host may move it while the song plays.
    bool IsParameterAutomatable(std::int32_t index) const noexcept;
    /// Kept for its number and its id; nobody is to see or to move it.
    bool IsParameterHidden(std::int32_t index) const noexcept;
    double GetParameterDefaultValue(std::int32_t index) const noexcept;
    /// Where a stored id, as GetParameterID gives it, stands now; -1 for an unknown one.
    std::int32_t FindParameter(const MString& storedId) const noexcept;

    // Changes from a screen, each told to the host at once. Thread: GUI, no lock held.
    /// The user takes hold of a parameter; until EndEdit the host sees one gesture.
    void BeginEdit(std::int32_t index) noexcept;
    /// Sets a parameter, in a gesture of its own where none is open.
    void Edit(std::int32_t index, double value01) noexcept;
    void EndEdit(std::int32_t index) noexcept;
    /// For a screen that goes away, perhaps in the middle of a drag.
    void EndAllEdits() noexcept;
    /// Tells the host of what changed inside by other ways than Edit: a match, a preset, a set gain. To be
    /// called after such work, and now and then while an editor is open. Thread: GUI, no lock held.
    void ReportChanges() noexcept;
    /// Whether somebody looks; what the effect feeds its analyzer by. Thread: GUI.
    void SetEditorPresence(EditorPresence presence) { environment.editor = presence; }
    void SendAutomation(std::int32_t index, double value01) override;
    void MarkParameterChanged(std::int32_t index) override { environment.changes.MarkParameter(index); }
    void MarkParameterChangedInside(std::int32_t index) override
    {
        environment.changes.MarkParameterInside(index);
    }
    /// Where all that a screen shows of this plug-in is marked when it changes; see ChangeListener.
    ChangeFeed& Changes() { return environment.changes; }

    virtual void Update() = 0;
    virtual void Store(const MStoreParams& params) = 0;
    /// The latency and tail of the effect itself, in samples at the rate that it sees.
    virtual std::int32_t GetLatency() = 0;
    virtual std::int32_t GetTailSize() = 0;
    /// Samples that the host has to compensate.
    /// That of the effect is rounded down where the upsampling factor doesn't divide it.
    std::int32_t TotalLatency()
    {
        return GetLatency() / upsamplingFactor + MUpsampler::LatencySamples(UpsamplerSetup());
    }
    /// Samples at the host's rate that still come out after the input has ended; -1 for an effect whose tail
    /// has no end.
    std::int32_t TotalTailSize();
    /// Runs the effect at a multiple, 1 to 4, of the host's rate. Prepares processing when that is new. Main
    /// thread.
    void SetUpsamplingFactor(std::int32_t factor);
    /// Forgets the audio in the upsamplers, for a start from silence. Main thread.
    void ResetUpsamplers();
    /// Adds a ratio, as decibels, to the output gain of the effect, as far as its range goes. False when the
    /// effect has none. Main thread.
    virtual bool SetAGC(double gainRatio);
    /// The gain that the gain control applies now, as a ratio. Any thread.
    double CurrentAGCGain() const { return gainControl.Gain(); }

    /// One relaxed store and a mark. Thread: any.
    void SetBypass(bool bypassed);
    /// Surround where the host has the channels for it. Thread: any; see ApplyChoices.
    void ChooseChannelMode(ChannelMode mode);
    /// Prepares processing for what was chosen by ChooseChannelMode since the last call. Adapters do it in
    /// what hosts call on their GUI thread. Thread: GUI, no lock held.
    void ApplyChoices();

    /// Tells the adapter when the latency isn't what was last reported.
    virtual void CheckLatency();
    virtual double GetOutputLimit() { return -1.0; }

    /// Channels that the effect takes and that it is prepared for.
    virtual std::int32_t GetEffectInputChannels() const;
    virtual std::int32_t GetEffectChannels() const;
    virtual std::int32_t GetInputChannelsPerGroup() const;
    virtual std::int32_t GetOutputChannelsPerGroup() const;
    virtual void OnSettingsChanged() {}
    /// A slow tick of the user interface.
    virtual void ProcessUpdate() {}

    Transport transport;   ///< of the host; for the audio thread
    double processingSampleRate = 44100;   ///< the rate that the effect sees
    BusLayout buses;   ///< changed before a host has seen the object, or within a ProcessingChange
    bool takesMIDI = false;
    bool producesMIDI = false;
    bool outputsAccumulate = false;   ///< Process adds to its outputs
    bool wantsTimeInfo = true;
    MRelaxed<std::int32_t> upsamplingFactor = 1;   ///< in force; see SetUpsamplingFactor
    MRelaxed<bool> highQualityUpsampling = true;   ///< in force from the next InitProcessing on
    MRelaxed<bool> agcActive = false;   ///< the gain control is in force
    MAudioPluginAdapter* adapter = nullptr;
    MRelaxed<bool> bypass = false;
    MLock processLock;
    MLock initLock;
    MLock settingsLock;
    MRelaxed<double> sampleRate = 44100.0;
    MRelaxed<std::int32_t> reportedLatency = -1;
    /// The choice; in force from the next InitProcessing on.
    MRelaxed<ChannelMode> channelMode = ChannelMode::LeftAndRight;
    /// Which channels of a group mode 7 hands to the effect.
    std::array<bool, 8> enabledChannels{ true, true, true, true, true, true, true, true };
    AutomationList automation;

protected:
    /// Everything that depends on rate, channels and upsampling. Under all three locks.
    virtual void PrepareProcessing();
    /// Whether the gain control is to be in force.
    virtual bool WantsGainControl() const { return false; }
    /// The gain control forgets what it measured.
    void RestartGainControl();
    /// One run of samples through the effect.
    virtual void Process(float** inputs, float** outputs, std::int32_t sampleCount) = 0;
    virtual void ProcessingBegin(float* const* inputs, float* const* outputs, std::int32_t sampleCount,
                                 bool replacing) = 0;
    virtual void ProcessingEnd(float* const*, float* const*, std::int32_t, bool) {}
    virtual void PrepareForProcessingOnce() {}
    /// Whether the plain upsampling has to filter the effect's output; under `settingsLock`.
    virtual bool NeedsDownFilter() const { return true; }

    std::int32_t maxProcessBlock = 0x7FFFFFFF;
    std::int32_t interpolationBlock = 256;
    ParameterInterpolator interpolator;
    MEffectEnvironment environment;   // of the effect
    EditorUpdates editorUpdates{ environment.changes };
    /// Adapters come or go: whoever keeps one or its number has to let go of it. Under all locks.
    virtual void OnAdaptersChanging() { environment.changes.Mark(Change::ParameterList); }
    std::int32_t inputsPerGroup = 2;
    std::int32_t outputsPerGroup = 2;
    std::int32_t effectChannels = 2;
    ChannelMode activeChannelMode = ChannelMode::LeftAndRight;
    bool midSideEffect = false;   // the effect's channels are mid and side
    MAutomaticGainControl gainControl;

private:
    friend class ProcessingChange;

    /// What PrepareProcessing prepares for.
    struct Prepared
    {
        MUpsampler::Setup rates;
        ChannelMode mode = ChannelMode::LeftAndRight;
        std::array<bool, 8> enabledChannels{};
        std::int32_t usedWidth = 0;
        std::int32_t width = 0;

        bool operator==(const Prepared&) const = default;
    };

    /// Channels side by side. Only those of the groups that there are mean anything: filling 128 pointers
    /// would be felt in short blocks.
    struct ChannelSet
    {
        ChannelSet() {}   // NOLINT: the pointers stay as they are
        ChannelRouting::Channels pointers;
    };

    ChannelSet TakeInputs(float* const* inputs, std::int32_t inputGroups, std::int32_t sampleCount);
    ChannelSet DelayDry(const ChannelSet& inputs, std::int32_t inputGroups, std::int32_t outputGroups,
                        std::int32_t sampleCount);
    bool GatherOwnOutputs(ChannelSet& wet, float* const* outputs) const;
    bool IsMonoRoute(const ChannelSet& inputs) const;
    void Deliver(const ChannelSet& wet, const ChannelSet& dry, float* const* outputs,
                 std::int32_t sampleCount, bool replacing);
    void ProcessDirect(const ChannelSet& inputs, const ChannelSet& outputs, std::int32_t sampleCount);
    void ProcessUpsampled(const ChannelSet& inputs, const ChannelSet& outputs, std::int32_t sampleCount);
    ChannelSet FeedUpsamplers(const ChannelSet& inputs, std::int32_t sampleCount);
    ChannelSet EffectOutputs();
    void LimitOutputs(const ChannelSet& outputs, std::int32_t sampleCount);
    Prepared WantedSetup() const;
    void FinishChange();
    void PrepareAnew();
    MUpsampler::Setup UpsamplerSetup() const
    {
        return { .sampleRate = sampleRate, .factor = upsamplingFactor, .highQuality = highQualityUpsampling };
    }
    void PrepareUpsamplers();
    void MeasureInput(const ChannelSet& inputs, std::int32_t sampleCount, std::int32_t inputGroups);
    void ProcessChannels(ChannelSet& inputs, ChannelSet& outputs, std::int32_t sampleCount);
    void RunEffect(float** inputs, float** outputs, std::int32_t sampleCount);
    void FixInputs(ChannelSet& channels, std::int32_t groups, std::int32_t sampleCount);
    float** Scratch(std::vector<std::vector<float>>& buffers, ChannelSet& pointers, std::int32_t channels,
                    std::int32_t sampleCount);

    HostReporter reporter{ *this, environment.changes };
    std::atomic<bool> choicesPending = false;
    // Of the outermost ProcessingChange, under `processLock`.
    bool changing = false;
    std::optional<ProcessingChange::Preparation> wantedPreparation;
    std::optional<Prepared> prepared;
    std::int32_t modeInputChannels = 2;
    std::int32_t modeOutputChannels = 2;
    ChannelRouting routing;
    DryPath dryPath;
    std::array<std::unique_ptr<MUpsampler>, MaxChannels> upsamplers;   // made where a channel needs one
    std::vector<std::vector<float>> inputScratch;
    std::vector<std::vector<float>> outputScratch;
    std::vector<std::vector<float>> dryScratch;
    std::vector<float> silentInput;   // stays zero
};
