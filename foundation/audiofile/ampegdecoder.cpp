// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/audiofile/ampegdecoder.h"

#include <cstdio>
#include <mutex>
#include <vector>

#include <mpg123.h>

#include "foundation/audiofile/AudioFileErrors.h"

namespace mp3dec
{
struct ReaderCallbacks
{
    static mpg123_ssize_t Read(void* context, void* buffer, std::size_t size)
    {
        auto& decoder = *static_cast<ampegdecoder*>(context);
        try
        {
            const auto wanted = static_cast<std::int32_t>(std::min<std::size_t>(size, 1 << 30));
            return decoder.file->Read(buffer, wanted);
        }
        catch (...)
        {
            decoder.failure = std::current_exception();
            return -1;
        }
    }

    static off_t Seek(void* context, off_t offset, int origin)
    {
        auto& decoder = *static_cast<ampegdecoder*>(context);
        try
        {
            std::int64_t position = offset;
            if (origin == SEEK_CUR)
                position += decoder.file->Tell();
            else if (origin == SEEK_END)
                position += decoder.file->Length();
            decoder.file->Seek(position);
            return decoder.file->Tell();
        }
        catch (...)
        {
            decoder.failure = std::current_exception();
            return -1;
        }
    }
};

void ampegdecoder::Free::operator()(mpg123_handle_struct* owned) const
{
    mpg123_delete(owned);
}

ampegdecoder::ampegdecoder()
{
    // Needed once by older versions of the library, nothing in newer ones.
    static std::once_flag once;
    std::call_once(once, [] { mpg123_init(); });
    handle.reset(mpg123_new(nullptr, nullptr));
}

ampegdecoder::~ampegdecoder() = default;

bool ampegdecoder::Open(binfile& source, Extent extent)
{
    if (!handle)
        return false;
    file = &source;
    mpg123_handle* mpg = handle.get();
    // Never prints and never resamples. A stream that turns into one of another rate is refused in Read.
    const long toTheEnd = extent == Extent::AllBytes ? MPG123_IGNORE_STREAMLENGTH : 0;
    mpg123_param(mpg, MPG123_ADD_FLAGS, MPG123_QUIET | MPG123_SKIP_ID3V2 | toTheEnd, 0.0);
    mpg123_param(mpg, MPG123_REMOVE_FLAGS, MPG123_AUTO_RESAMPLE, 0.0);
    mpg123_replace_reader_handle(mpg, ReaderCallbacks::Read, ReaderCallbacks::Seek, nullptr);
    long rate = 0;
    int encoding = 0;
    int channelCount = 0;
    const bool opened = mpg123_open_handle(mpg, this) == MPG123_OK &&
                        mpg123_getformat(mpg, &rate, &channelCount, &encoding) == MPG123_OK;
    RethrowFailure();
    if (!opened)
        return false;
    sampleRate = static_cast<std::int32_t>(rate);
    channels = channelCount;
    mpg123_frameinfo information;
    if (mpg123_info(mpg, &information) == MPG123_OK)
        kilobits = information.bitrate;
    return true;
}

bool ampegdecoder::OpenForReading()
{
    mpg123_handle* mpg = handle.get();
    // Every rate, so that a change of it is announced and nothing is converted.
    const long* rates = nullptr;
    std::size_t rateCount = 0;
    mpg123_rates(&rates, &rateCount);
    bool isSet = mpg123_format_none(mpg) == MPG123_OK;
    for (std::size_t index = 0; index < rateCount; ++index)
        isSet = isSet && mpg123_format(mpg, rates[index], MPG123_MONO | MPG123_STEREO,
                                       MPG123_ENC_SIGNED_16) == MPG123_OK;
    return isSet;
}

std::int32_t ampegdecoder::Read(void* buffer, std::int32_t size)
{
    std::size_t done = 0;
    const int status = mpg123_read(handle.get(), buffer, static_cast<std::size_t>(size), &done);
    RethrowFailure();
    if (status == MPG123_NEW_FORMAT)
    {
        long rate = 0;
        int encoding = 0;
        int channelCount = 0;
        mpg123_getformat(handle.get(), &rate, &channelCount, &encoding);
        if (rate != sampleRate || channelCount != channels || encoding != MPG123_ENC_SIGNED_16)
            ThrowInvalidContents("The MPEG stream changes its sample rate or channels.");
        if (done == 0)   // the announcement of what was asked for
            return Read(buffer, size);
    }
    else if (status != MPG123_OK && status != MPG123_DONE)
    {
        ThrowInvalidContents("Error decompressing MPEG stream.");
    }
    return static_cast<std::int32_t>(done);
}

bool ampegdecoder::HasMore()
{
    constexpr std::int32_t RunBytes = 1 << 16;
    std::vector<std::uint8_t> run(RunBytes);
    std::uint32_t header = 0;
    while (const std::int32_t got = std::max(file->Read(run.data(), RunBytes), 0))
        for (std::int32_t index = 0; index < got; ++index)
        {
            header = header << 8 | run[static_cast<std::size_t>(index)];
            // Sync 11 bits | version 2, 1 is none | layer 2, 0 is none | 1 | bit rate 4, 15 is none | rate 2,
            // 3 is none
            const bool isFrame = header >> 21 == 0x7FF && (header >> 19 & 3) != 1 &&
                                 (header >> 17 & 3) != 0 && (header >> 12 & 15) != 15 &&
                                 (header >> 10 & 3) != 3;
            if (isFrame)
                return true;
        }
    return false;
}

void ampegdecoder::RethrowFailure()
{
    if (failure)
        std::rethrow_exception(failure);
}
}   // namespace mp3dec
