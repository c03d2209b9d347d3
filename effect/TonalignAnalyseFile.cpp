// SPDX-License-Identifier: GPL-3.0-or-later
// Measuring whole files.
#include <algorithm>
#include <cmath>

#include "effect/TonalignAudioEffectPlugin.h"
#include "foundation/audiofile/AudioFile.h"
#include "foundation/text/MException.h"

namespace
{
constexpr std::int32_t chunkFrames = 2048;
// How many chunks pass between two reports: about a second and a half of audio.
constexpr std::int32_t chunksPerReport = 32;

// A progress that remembers that it was told to stop, so that what the readers throw then isn't taken for a
// failure.
class Cancellable
{
public:
    explicit Cancellable(const WorkProgress& asked) : progress(asked) {}

    bool Report(WorkStage stage, double fraction)
    {
        cancelled = cancelled || (progress && !progress(stage, fraction));
        return !cancelled;
    }
    LoadProgress Of(WorkStage stage)
    {
        return { [this, stage](double fraction)
                 {
                     return Report(stage, fraction);
                 } };
    }
    bool IsCancelled() const { return cancelled; }

private:
    const WorkProgress& progress;
    bool cancelled = false;
};
}   // namespace

TonalignAudioEffectPlugin::WorkResult TonalignAudioEffectPlugin::AnalyseFile(const MString& path,
                                                                             bool isSource,
                                                                             const WorkProgress& progress)
{
    // The audio thread writes silence meanwhile, so that the analysis client has one writer only.
    const SuspendGuard suspended(*this);
    Cancellable work(progress);
    AudioSampleBuffer buffer;
    try
    {
        LoadAudioFile(buffer, path, work.Of(WorkStage::LoadingFile));
    }
    catch (const MException&)
    {
        if (work.IsCancelled())
            return WorkResult::Cancelled;
        throw;
    }
    return AnalyseBuffer(buffer, isSource, progress);
}

TonalignAudioEffectPlugin::WorkResult TonalignAudioEffectPlugin::AnalyseBuffer(AudioSampleBuffer& buffer,
                                                                               bool isSource,
                                                                               const WorkProgress& progress)
{
    const SuspendGuard suspended(*this);
    Cancellable work(progress);
    try
    {
        const LoadProgress resampling = work.Of(WorkStage::Resampling);
        resampling.Report(0);
        Resample(buffer, std::floor(sampleRate + 0.5), resampling);
    }
    catch (const MException&)
    {
        if (work.IsCancelled())
            return WorkResult::Cancelled;
        throw;
    }

    const Measurement before = RunningMeasurement();
    {
        const MSynchronizerGuard guard(lock);
        Analysing = false;
    }
    ToggleAnalysis(isSource);
    std::array<float*, 8> channels{};
    for (std::int32_t position = 0; position < buffer.frames; position += chunkFrames)
    {
        if (position / chunkFrames % chunksPerReport == 0 &&
            !work.Report(WorkStage::Analysing, static_cast<double>(position) / buffer.frames))
        {
            ReturnTo(before);
            return WorkResult::Cancelled;
        }
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(buffer.channels); ++channel)
            channels[channel] = buffer.channelData[channel] + position;
        analyzer.AnalyseClient(analysisClient, channels.data(),
                               std::min(chunkFrames, buffer.frames - position), buffer.channels);
    }
    ToggleAnalysis(isSource);
    return WorkResult::Done;
}

TonalignAudioEffectPlugin::Measurement TonalignAudioEffectPlugin::RunningMeasurement() const
{
    const MSynchronizerGuard guard(lock);
    return { .targetDefined = TargetAnalysisDefined, .sourceDefined = SourceAnalysisDefined };
}

// A measurement by ear that ran before is over all the same: its statistics were needed for the file.
void TonalignAudioEffectPlugin::ReturnTo(const Measurement& before)
{
    {
        const MSynchronizerGuard guard(lock);
        Analysing = false;
        AnalysingSource = false;
        TargetAnalysisDefined = before.targetDefined;
        SourceAnalysisDefined = before.sourceDefined;
    }
    UpdateAnalysisState(true);
}
