// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <exception>
#include <memory>

#include "foundation/audiofile/binfile.h"

struct mpg123_handle_struct;

namespace mp3dec
{
/// Decodes MPEG audio, layers I to III, to interleaved 16-bit samples, over libmpg123.
class ampegdecoder
{
public:
    /// How far to decode: as the stream's first frame says, or as long as there are frames.
    enum class Extent
    {
        Announced,
        AllBytes
    };

    ampegdecoder();
    ~ampegdecoder();
    ampegdecoder(const ampegdecoder&) = delete;
    ampegdecoder& operator=(const ampegdecoder&) = delete;

    /// Finds the first frame. The file stays in use until the decoder goes. False where there is none.
    bool Open(binfile& source, Extent extent = Extent::Announced);
    /// Settles on 16-bit samples in the stream's own rate and channels, before the first Read.
    bool OpenForReading();
    /// Answers the bytes written, 0 at the end. Throws MException "Error decompressing MPEG stream." for
    /// damaged data, and "The MPEG stream changes its sample rate or channels.".
    std::int32_t Read(void* buffer, std::int32_t size);
    /// At the end: whether the file goes on with something like a frame. Reads it to its end.
    bool HasMore();

    std::int32_t SampleRate() const { return sampleRate; }
    std::int32_t Channels() const { return channels; }
    std::int32_t KilobitsPerSecond() const { return kilobits; }

private:
    struct Free
    {
        void operator()(mpg123_handle_struct* handle) const;
    };

    void RethrowFailure();

    std::unique_ptr<mpg123_handle_struct, Free> handle;
    binfile* file = nullptr;
    std::exception_ptr failure;   // of the file, kept while the library's own code stands on the stack
    std::int32_t sampleRate = 0;
    std::int32_t channels = 0;
    std::int32_t kilobits = 0;

    friend struct ReaderCallbacks;
};
}   // namespace mp3dec
