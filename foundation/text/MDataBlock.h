// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

/// A counted block of bytes. Copies are handles of the same bytes; whoever writes calls MakeUnique first.
/// The count is atomic, so handles may be copied and dropped on several threads. Unlike text, a block may
/// be borrowed: then the bytes belong to somebody else, who keeps them alive.
class MDataBlock
{
public:
    MDataBlock() noexcept = default;
    /// `size` bytes of unspecified value, size >= 0.
    explicit MDataBlock(std::int32_t size);
    /// A copy of the bytes.
    MDataBlock(const void* bytes, std::int32_t size);
    static MDataBlock Borrow(const void* bytes, std::int32_t size);
    MDataBlock(const MDataBlock& other) noexcept;
    MDataBlock(MDataBlock&& other) noexcept;
    MDataBlock& operator=(MDataBlock other) noexcept;
    ~MDataBlock();

    std::int32_t Size() const noexcept;
    const std::uint8_t* Data() const noexcept;
    /// Null while the bytes are shared or borrowed.
    std::uint8_t* WritableData() noexcept;
    bool IsUnique() const noexcept;
    bool IsBorrowed() const noexcept;
    /// Makes this the only handle of own bytes, `size` of them; what was there stays, as far as it fits.
    void MakeUnique(std::int32_t size);

private:
    struct Record;
    void Release() noexcept;

    Record* record = nullptr;
};
