// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/streams/MStream.h"
#include "foundation/text/MDataBlock.h"

/// A stream over a block of memory that grows with what is written. Several streams may share one block;
/// whoever writes copies it first.
class MMemoryStream : public MStream
{
public:
    MMemoryStream();
    explicit MMemoryStream(const MDataBlock& block);
    /// Reads memory that belongs to somebody else and outlives the stream; a write copies it first.
    static MMemoryStream Borrow(const void* bytes, std::int32_t size);

    void Write(const void* bytes, std::int32_t size) override;
    std::int32_t Read(void* buffer, std::int32_t size) override;
    Line ReadLine(char* buffer, std::int32_t size) override;
    /// Clamps to 0..size.
    void Seek(std::int64_t offset, int origin) override;
    std::int64_t GetPosition() override;
    void Flush() override;
    bool IsEnd() override;
    std::int64_t GetSize() override;
    virtual const std::uint8_t* GetCurrentPointer() const;
    /// What the stream holds; the block's size is the stream's.
    const MDataBlock& Block() const;

private:
    std::int32_t Remaining() const { return size - position; }

    mutable MDataBlock block;   // larger than the content while it grows
    std::int32_t size = 0;
    std::int32_t position = 0;
};
