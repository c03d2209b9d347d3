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
// How many chunks pass between two looks at the observer: about a second and a half of audio.
constexpr std::int32_t chunksPerReport = 32;
}   // namespace

void TonalignAudioEffectPlugin::AnalyseFile(const MString& path, bool isSource)
{
    // The audio thread writes silence meanwhile, so that the analysis client has one writer only.
    const SuspendGuard suspended(*this);
    AudioSampleBuffer buffer;
    LoadAudioFile(buffer, path, ProgressOf("Loading the file..."));
    AnalyseBuffer(buffer, isSource);
}

void TonalignAudioEffectPlugin::AnalyseBuffer(AudioSampleBuffer& buffer, bool isSource)
{
    const SuspendGuard suspended(*this);
    const LoadProgress progress = ProgressOf("Resampling...");
    progress.Report(0);
    Resample(buffer, std::floor(sampleRate + 0.5), progress);

    {
        const MSynchronizerGuard guard(lock);
        Analysing = false;
    }
    ToggleAnalysis(isSource);
    std::array<float*, 8> channels{};
    for (std::int32_t position = 0; position < buffer.frames; position += chunkFrames)
    {
        if (position / chunkFrames % chunksPerReport == 0 &&
            !Progress("Analysing...", static_cast<double>(position) / buffer.frames))
        {
            // Ended before its time it isn't a measurement of the file.
            ToggleAnalysis(isSource);
            const MSynchronizerGuard guard(lock);
            (isSource ? SourceAnalysisDefined : TargetAnalysisDefined) = false;
            throw MException("Cancelled.");
        }
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(buffer.channels); ++channel)
            channels[channel] = buffer.channelData[channel] + position;
        analyzer.AnalyseClient(analysisClient, channels.data(),
                               std::min(chunkFrames, buffer.frames - position), buffer.channels);
    }
    ToggleAnalysis(isSource);
}
