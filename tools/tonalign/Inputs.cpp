// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/tonalign/Inputs.h"

#include <algorithm>
#include <cmath>

#include "foundation/audiofile/AudioFile.h"
#include "foundation/streams/MStdFileStream.h"
#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "foundation/text/PathText.h"
#include "state/tree/MAttribute.h"
#include "state/tree/XML.h"

namespace
{
// Below this, -160 dBFS, there is nothing but the rounding of a format.
constexpr double silenceLevel = 1e-8;
// What a damaged header may hold lies beyond; real files are far from either.
constexpr double lowestRate = 1000;
constexpr double highestRate = 1000000;
// One spectrum of the analyzer.
constexpr double frameLength = 4096;

[[noreturn]] void Refuse(const MString& text)
{
    throw MException(text, MErrorCode::Content);
}
}   // namespace

void LoadAudioInput(AudioInput& input, const std::string& path, const std::function<bool(double)>& progress)
{
    input.path = path;
    AudioSampleBuffer& buffer = input.buffer;
    LoadAudioFile(buffer, PathText(path), { progress });
    if (!(buffer.sampleRate >= lowestRate && buffer.sampleRate <= highestRate))
        Refuse(Format("Its sample rate of {0} Hz is none from {1} to {2} Hz.",
                      static_cast<std::int64_t>(buffer.sampleRate), static_cast<int>(lowestRate),
                      static_cast<int>(highestRate)));
    if (buffer.channels > 8)
        Refuse(Format("The file has {0} channels; up to 8 are supported.", buffer.channels));
    for (std::size_t channel = 0; channel < static_cast<std::size_t>(buffer.channels); ++channel)
        for (std::int32_t frame = 0; frame < buffer.frames; ++frame)
        {
            const float sample = buffer.channelData[channel][frame];
            if (!std::isfinite(sample))
                Refuse(Format("Sample {0} of channel {1} is not a number.", frame,
                              static_cast<int>(channel) + 1));
            input.peak = std::max(input.peak, static_cast<double>(std::fabs(sample)));
        }
}

void CheckMeasurable(const AudioInput& input, double analysisRate)
{
    if (input.peak < silenceLevel)
        Refuse("The file is silent: there is nothing to measure.");
    const double frames = input.buffer.frames * (analysisRate / input.buffer.sampleRate);
    if (frames < frameLength)
        Refuse(Format("The file is too short to measure: it has {0} ms, and one spectrum takes {1} ms.",
                      static_cast<int>(1000 * frames / analysisRate),
                      static_cast<int>(std::ceil(1000 * frameLength / analysisRate))));
}

InputKind DetectInput(const std::string& path)
{
    // A zlib stream (RFC 1950) begins with 0x78 as this system writes it, XML with "<" or its byte-order
    // mark.
    unsigned char first = 0;
    {
        MStdFileStream file(PathText(path), MStdFileStream::ReadAccess);
        if (file.Read(&first, 1) != 1)
            return InputKind::Audio;
    }
    if (first != 0x78 && first != '<' && first != 0xEF)
        return InputKind::Audio;
    MAttribute tree;
    LoadXML(tree, PathText(path));
    return tree.Name().EqualsNoCase("settings") ? InputKind::State : InputKind::Analysis;
}

AnalysisArray LoadCheckedAnalysis(const std::string& path)
{
    MAttribute tree;
    LoadXML(tree, PathText(path));
    if (tree.Text().Length() != static_cast<int>(2 * sizeof(AnalysisArray)))
        Refuse("The analysis is damaged: it doesn't hold 1024 points.");
    const AnalysisArray analysis = ReadAnalysis(tree);
    if (!std::all_of(analysis.begin(), analysis.end(),
                     [](float value) { return std::isfinite(value) && value >= 0; }))
        Refuse("The analysis is damaged: a point is not a level.");
    if (*std::max_element(analysis.begin(), analysis.end()) < silenceLevel)
        Refuse("The analysis is silent: there is nothing to compare.");
    return analysis;
}
