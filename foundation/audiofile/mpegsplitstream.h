// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "foundation/audiofile/binfile.h"

namespace mp3dec
{
/// The audio stream 0xC0 of an MPEG program stream (ISO/IEC 11172-1 and 13818-1), put together in memory.
class mpegsplitstream : public binfile
{
public:
    /// Once: reads the program stream from `source` on. False without any packet of the audio stream.
    bool Open(binfile& source);

    std::int32_t Read(void* buffer, std::int32_t size) override;
    void Seek(std::int64_t position) override;
    std::int64_t Tell() override { return position; }
    std::int64_t Length() override { return static_cast<std::int64_t>(audio.size()); }

private:
    void TakePacket(const std::vector<std::uint8_t>& packet);

    std::vector<std::uint8_t> audio;
    std::int64_t position = 0;
};
}   // namespace mp3dec
