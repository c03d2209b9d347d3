// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/tonalign/AudioOutput.h"

#include <algorithm>
#include <cmath>

#include <sndfile.h>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "foundation/text/PathText.h"

struct AudioOutput::Handle
{
    SNDFILE* file = nullptr;
    ~Handle()
    {
        if (file != nullptr)
            sf_close(file);
    }
};

namespace
{
int LibraryFormat(const OutputFormat& format)
{
    int result = SF_FORMAT_WAV;
    if (format.file == FileFormat::Flac)
        result = SF_FORMAT_FLAC;
    else if (format.file == FileFormat::Aiff)
        result = SF_FORMAT_AIFF;
    switch (format.samples)
    {
    case SampleFormat::Int8:
        return result | (format.file == FileFormat::Wav ? SF_FORMAT_PCM_U8 : SF_FORMAT_PCM_S8);
    case SampleFormat::Int24:
        return result | SF_FORMAT_PCM_24;
    case SampleFormat::Float32:
        return result | SF_FORMAT_FLOAT;
    default:
        return result | SF_FORMAT_PCM_16;
    }
}
}   // namespace

AudioOutput::AudioOutput(const std::string& path, const OutputFormat& outputFormat, bool replace)
    : file(path, replace), format(outputFormat), handle(std::make_unique<Handle>())
{
    SF_INFO info = {};
    info.samplerate = format.sampleRate;
    info.channels = format.channels;
    info.format = LibraryFormat(format);
    if (sf_format_check(&info) == 0)
        throw MException(Format("File \"{0}\" could not be created. Its format doesn't take these samples.",
                                PathText(path)),
                         MErrorCode::CannotOpen);
    handle->file = sf_open_fd(file.Descriptor(), SFM_WRITE, &info, SF_FALSE);
    if (handle->file == nullptr)
        throw MException(Format("File \"{0}\" could not be created. {1}", PathText(path),
                                MString::FromUTF8(sf_strerror(nullptr))),
                         MErrorCode::CannotOpen);
    // The peak chunk holds a time stamp, and the same work should give the same bytes.
    sf_command(handle->file, SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
}

AudioOutput::~AudioOutput() = default;

void AudioOutput::CheckWritten(std::int64_t written, std::int64_t wanted) const
{
    if (written != wanted)
        throw MException(
            Format("Error writing to file \"{0}\". Probably disk full.", PathText(file.TargetPath())),
            MErrorCode::Content);
}

void AudioOutput::Write(const float* const* channels, std::int32_t frames)
{
    const auto channelCount = static_cast<std::size_t>(format.channels);
    const std::size_t sampleCount = channelCount * static_cast<std::size_t>(frames);
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        for (std::int32_t frame = 0; frame < frames; ++frame)
            peak = std::max(peak, static_cast<double>(std::fabs(channels[channel][frame])));

    if (format.samples == SampleFormat::Float32)
    {
        interleavedFloats.resize(sampleCount);
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            for (std::int32_t frame = 0; frame < frames; ++frame)
                interleavedFloats[static_cast<std::size_t>(frame) * channelCount + channel] =
                    channels[channel][frame];
        CheckWritten(sf_writef_float(handle->file, interleavedFloats.data(), frames), frames);
        return;
    }
    // The library takes 32-bit integers and keeps their upper bits.
    const int bits = format.samples == SampleFormat::Int24  ? 24
                     : format.samples == SampleFormat::Int8 ? 8
                                                            : 16;
    const double highest = (1 << (bits - 1)) - 1;
    const double lowest = -highest - 1;
    interleavedIntegers.resize(sampleCount);
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        for (std::int32_t frame = 0; frame < frames; ++frame)
        {
            const double value = std::nearbyint(channels[channel][frame] * highest);
            if (value > highest || value < lowest)
                ++clippedCount;
            interleavedIntegers[static_cast<std::size_t>(frame) * channelCount + channel] =
                static_cast<int>(std::clamp(value, lowest, highest)) * (1 << (32 - bits));
        }
    CheckWritten(sf_writef_int(handle->file, interleavedIntegers.data(), frames), frames);
}

void AudioOutput::Close()
{
    const bool failed = sf_error(handle->file) != SF_ERR_NO_ERROR;
    const bool closed = sf_close(handle->file) == 0;
    handle->file = nullptr;
    CheckWritten(failed || !closed ? 0 : 1, 1);
}
