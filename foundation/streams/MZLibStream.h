// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <limits>
#include <memory>

#include "foundation/streams/MStream.h"

struct z_stream_s;

/// Compresses what is written into the target, or inflates what the target holds. RFC 1950 stream.
///
/// Writing ends with Finish, which is explicit because it may fail; Close without it throws "ZLIB stream
/// has not been terminated.". Reading takes blocks from the target, so the target may stand behind the end
/// of the compressed data afterwards. Bad data throws "Source compressed stream has invalid content.".
class MZLibStream : public MStream
{
public:
    enum class Direction
    {
        Compress,
        Inflate
    };

    MZLibStream();
    MZLibStream(MStream* target, Direction direction, int quality = 100);
    MZLibStream(const MZLibStream&) = delete;
    MZLibStream& operator=(const MZLibStream&) = delete;
    ~MZLibStream() override;

    /// @param quality  1 to 100; 91 and above are the best compression. A null target makes an idle stream.
    void Open(MStream* target, Direction direction, int quality = 100);
    virtual void Close();
    virtual void Finish();

    /// A guard against small data that inflates without end: reading beyond so many bytes throws as bad
    /// data does.
    void SetReadLimit(std::int64_t byteCount) { readLimit = byteCount; }

    MStream* GetSubStream() override { return target; }
    void Write(const void* bytes, std::int32_t size) override;
    std::int32_t Read(void* buffer, std::int32_t size) override;
    /// Uncompressed bytes passed so far.
    std::int64_t GetPosition() override { return passed; }
    void Flush() override;
    bool IsEnd() override;
    bool IsOpen() override { return target != nullptr; }

private:
    void CheckUsable(Direction wanted) const;
    void DeflateRounds(int flushMode);
    void RefillInput();
    void EndState() noexcept;

    MStream* target = nullptr;
    Direction direction = Direction::Compress;
    std::unique_ptr<z_stream_s> state;
    std::array<std::uint8_t, 4096> inputBuffer;
    std::array<std::uint8_t, 4096> outputBuffer;
    int level = 0;
    bool hasEnded = false;   // the compressed data said so
    std::int64_t passed = 0;
    std::int64_t readLimit = std::numeric_limits<std::int64_t>::max();
};
