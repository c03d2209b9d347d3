// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "effect/AnalysisFile.h"
#include "foundation/audiofile/AudioSampleBuffer.h"

/// What a file given on the command line holds.
enum class InputKind
{
    Audio,
    Analysis,   ///< a saved analysis
    State   ///< a plug-in state
};

/// Audio in memory, and what is known of its file.
struct AudioInput
{
    std::string path;
    AudioSampleBuffer buffer;
    double peak = 0;   ///< largest absolute sample
};

/// Every function here throws MException with a text that says what is wrong with the content; the path
/// is the caller's to add.

/// Loads and checks: at most 8 channels, a possible rate, every sample a number. `progress` hears the share
/// read; false cancels.
void LoadAudioInput(AudioInput& input, const std::string& path, const std::function<bool(double)>& progress);
/// Refuses what has nothing to measure: silence, or fewer frames than one spectrum takes at `analysisRate`.
void CheckMeasurable(const AudioInput& input, double analysisRate);

/// By content: XML or a zlib stream of it is an analysis or a state by its root, anything else is audio.
InputKind DetectInput(const std::string& path);
/// Refuses a file that isn't a whole and sound analysis, and one of silence.
AnalysisArray LoadCheckedAnalysis(const std::string& path);
