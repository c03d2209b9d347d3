// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/audiofile/AudioFileErrors.h"

#include <algorithm>

#include "foundation/audiofile/AudioFile.h"
#include "foundation/streams/MStream.h"
#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "foundation/text/Translate.h"

namespace
{
// Chosen: below any rate that audio is kept at, and still a bound on what resampling makes of a file.
constexpr double LowestSampleRate = 1000.0;
constexpr double HighestSampleRate = 1e7;
}   // namespace

void ThrowInvalidContents(const MString& detail)
{
    throw MException(Translate("Invalid file contents. ") + Translate(detail), MErrorCode::Content);
}

void RequireChannels(std::int64_t channels)
{
    if (channels < 1 || channels > AudioSampleBuffer::MaxChannels)
        ThrowInvalidContents(Format(Translate("The file has {0} channels, but 1 to {1} are supported."),
                                    channels, AudioSampleBuffer::MaxChannels));
}

void RequireSampleRate(double sampleRate)
{
    if (!(sampleRate >= LowestSampleRate && sampleRate <= HighestSampleRate))
        ThrowInvalidContents(
            Format(Translate("The file has a sample rate of {0.0} Hz, which is not supported."), sampleRate));
}

void ReadRequired(MStream& stream, void* buffer, std::int32_t size, const MString& detail)
{
    if (stream.Read(buffer, size) != size)
        ThrowInvalidContents(detail);
}

std::int64_t RemainingBytes(MStream& stream)
{
    return std::max<std::int64_t>(stream.GetSize() - stream.GetPosition(), 0);
}

void SkipBytes(MStream& stream, std::int64_t count)
{
    if (count > 0)
        stream.Seek(std::min(count, RemainingBytes(stream)), MStream::Current);
}

void LoadProgress::Report(double fraction) const
{
    if (callback && !callback(fraction))
        throw MException(Translate("Cancelled."));
}
