// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/audiofile/ampegdecoder.h"

#include <cstdio>
#include <mutex>

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

bool ampegdecoder::Open(binfile& source)
{
    if (!handle)
        return false;
    file = &source;
    mpg123_handle* mpg = handle.get();
    // Never prints, never resamples, and doesn't follow a stream that turns into another.
    mpg123_param(mpg, MPG123_ADD_FLAGS, MPG123_QUIET | MPG123_NO_FRANKENSTEIN | MPG123_SKIP_ID3V2, 0.0);
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
    return mpg123_format_none(mpg) == MPG123_OK &&
           mpg123_format(mpg, sampleRate, channels, MPG123_ENC_SIGNED_16) == MPG123_OK;
}

std::int32_t ampegdecoder::Read(void* buffer, std::int32_t size)
{
    std::size_t done = 0;
    const int status = mpg123_read(handle.get(), buffer, static_cast<std::size_t>(size), &done);
    RethrowFailure();
    if (status == MPG123_NEW_FORMAT && done == 0)
    {
        long rate = 0;
        int encoding = 0;
        int channelCount = 0;
        mpg123_getformat(handle.get(), &rate, &channelCount, &encoding);
        if (rate == sampleRate && channelCount == channels && encoding == MPG123_ENC_SIGNED_16)
            return Read(buffer, size);   // the announcement of what was asked for
    }
    else if (status == MPG123_OK || status == MPG123_DONE)
        return static_cast<std::int32_t>(done);
    ThrowInvalidContents("Error decompressing MPEG stream.");
}

void ampegdecoder::RethrowFailure()
{
    if (failure)
        std::rethrow_exception(failure);
}
}   // namespace mp3dec
