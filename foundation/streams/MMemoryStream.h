// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "foundation/streams/MDataBlock.h"
#include "foundation/streams/MStream.h"

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
    const MDataBlock& Block() const;

private:
    MDataBlock block;
    std::int32_t size = 0;
    std::int32_t position = 0;
};
