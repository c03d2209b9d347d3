// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/MDataBlock.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include "foundation/text/MException.h"

struct MDataBlock::Record
{
    static constexpr std::uint8_t BorrowedFlag = 1;

    std::atomic<std::int32_t> referenceCount = 1;
    std::uint8_t* bytes = nullptr;
    std::int32_t size = 0;
    std::uint8_t flags = 0;

    Record() = default;
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;
    ~Record()
    {
        if ((flags & BorrowedFlag) == 0)
            std::free(bytes);
    }

    void Resize(std::int32_t newSize)
    {
        if (newSize < 0)
            throw MException("A data block cannot have a negative size.", MErrorCode::InvalidArgument);
        void* resized = std::realloc(bytes, std::max<std::size_t>(1, static_cast<std::size_t>(newSize)));
        if (resized == nullptr)
            throw std::bad_alloc();
        bytes = static_cast<std::uint8_t*>(resized);
        size = newSize;
    }
};

MDataBlock::MDataBlock(std::int32_t size)
{
    auto fresh = std::make_unique<Record>();
    fresh->Resize(size);
    record = fresh.release();
}

MDataBlock::MDataBlock(const void* bytes, std::int32_t size) : MDataBlock(size)
{
    if (size > 0)
        std::memcpy(record->bytes, bytes, static_cast<std::size_t>(size));
}

MDataBlock MDataBlock::Borrow(const void* bytes, std::int32_t size)
{
    MDataBlock block;
    block.record = new Record;
    block.record->bytes = static_cast<std::uint8_t*>(const_cast<void*>(bytes));   // never written through
    block.record->size = bytes != nullptr ? std::max(size, 0) : 0;
    block.record->flags = Record::BorrowedFlag;
    return block;
}

MDataBlock::MDataBlock(const MDataBlock& other) noexcept : record(other.record)
{
    if (record != nullptr)
        record->referenceCount.fetch_add(1, std::memory_order_relaxed);
}

MDataBlock::MDataBlock(MDataBlock&& other) noexcept : record(std::exchange(other.record, nullptr)) {}

MDataBlock& MDataBlock::operator=(MDataBlock other) noexcept
{
    std::swap(record, other.record);
    return *this;
}

MDataBlock::~MDataBlock()
{
    Release();
}

void MDataBlock::Release() noexcept
{
    if (record != nullptr && record->referenceCount.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete record;
    record = nullptr;
}

std::int32_t MDataBlock::Size() const noexcept
{
    return record != nullptr ? record->size : 0;
}

const std::uint8_t* MDataBlock::Data() const noexcept
{
    return record != nullptr ? record->bytes : nullptr;
}

std::uint8_t* MDataBlock::WritableData() noexcept
{
    return IsUnique() && !IsBorrowed() ? record->bytes : nullptr;
}

bool MDataBlock::IsUnique() const noexcept
{
    return record != nullptr && record->referenceCount.load(std::memory_order_acquire) == 1;
}

bool MDataBlock::IsBorrowed() const noexcept
{
    return record != nullptr && (record->flags & Record::BorrowedFlag) != 0;
}

void MDataBlock::MakeUnique(std::int32_t size)
{
    if (IsUnique() && !IsBorrowed())
    {
        if (record->size != size)
            record->Resize(size);
        return;
    }
    MDataBlock copy(size);
    const std::int32_t kept = std::min(size, Size());
    if (kept > 0)
        std::memcpy(copy.record->bytes, record->bytes, static_cast<std::size_t>(kept));
    *this = std::move(copy);
}
