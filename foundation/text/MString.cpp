// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/MString.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdlib>
#include <new>
#include <utility>

#include "foundation/text/MException.h"
#include "foundation/text/UTF8.h"

// A shared block in memory:
//
//   int32 capacity in bytes, header included | int32 reference count | characters ... | 0
//                                                                      ^ MString::shared
namespace
{
struct BlockHeader
{
    std::int32_t capacity;
    std::int32_t referenceCount;
};
static_assert(sizeof(BlockHeader) == 8);

BlockHeader* HeaderOf(const char16_t* characters)
{
    return reinterpret_cast<BlockHeader*>(const_cast<char16_t*>(characters)) - 1;
}

char16_t* CharactersOf(BlockHeader* header)
{
    return reinterpret_cast<char16_t*>(header + 1);
}

std::atomic_ref<std::int32_t> ReferenceCountOf(const char16_t* characters)
{
    return std::atomic_ref<std::int32_t>(HeaderOf(characters)->referenceCount);
}

std::int32_t BlockSizeFor(std::int64_t characterCount)
{
    const std::int64_t size = 2 * characterCount + static_cast<std::int64_t>(sizeof(BlockHeader));
    constexpr std::int64_t LargestBlock = std::int64_t{ 1 } << 30;   // the next power of two is no int32
    if (size > LargestBlock)
        throw MException("A text cannot hold more characters.");
    return static_cast<std::int32_t>(std::bit_ceil(static_cast<std::uint64_t>(size)));
}

char16_t* AllocateBlock(std::int64_t characterCount)
{
    const std::int32_t size = BlockSizeFor(characterCount);
    auto* header = static_cast<BlockHeader*>(std::malloc(static_cast<std::size_t>(size)));
    if (header == nullptr)
        throw std::bad_alloc();
    header->capacity = size;
    header->referenceCount = 1;
    return CharactersOf(header);
}
}   // namespace

MString::MString(const MString& other) noexcept : literal(nullptr), length(other.length), flags(other.flags)
{
    if (IsLiteral())
    {
        literal = other.literal;
        return;
    }
    shared = other.shared;
    ReferenceCountOf(shared).fetch_add(1, std::memory_order_relaxed);
}

MString::MString(MString&& other) noexcept : MString()
{
    *this = std::move(other);
}

MString::MString(char16_t character) : MString(std::u16string_view(&character, 1)) {}

MString::MString(std::u16string_view text) : MString()
{
    if (text.empty())
        return;
    ReserveFor(static_cast<std::int64_t>(text.size()));
    std::copy(text.begin(), text.end(), shared);
    SetLength(static_cast<int>(text.size()));
}

MString::~MString()
{
    ReleaseBlock();
}

MString& MString::operator=(const MString& other) noexcept
{
    MString copy(other);
    return *this = std::move(copy);
}

MString& MString::operator=(MString&& other) noexcept
{
    if (this == &other)
        return *this;
    ReleaseBlock();
    length = std::exchange(other.length, 0);
    flags = std::exchange(other.flags, LiteralFlag);
    if (IsLiteral())
        literal = other.literal;
    else
        shared = other.shared;
    other.literal = "";
    // The analyzer does not follow the reference count.
    return *this;   // NOLINT(clang-analyzer-unix.Malloc)
}

MString MString::Copy(std::string_view text)
{
    MString result;
    if (text.empty())
        return result;
    result.ReserveFor(static_cast<std::int64_t>(text.size()));
    std::transform(text.begin(), text.end(), result.shared,
                   [](char character) { return static_cast<unsigned char>(character); });
    result.SetLength(static_cast<int>(text.size()));
    return result;
}

MString MString::FromUTF8(std::string_view text)
{
    MString result;
    if (text.empty())
        return result;
    // Never more characters than bytes: a sequence of four bytes becomes two characters.
    result.ReserveFor(static_cast<std::int64_t>(text.size()));
    result.SetLength(DecodeUTF8(text, result.shared));
    return result;
}

std::string MString::ToUTF8() const
{
    if (IsLiteral())
        return std::string(literal, static_cast<std::size_t>(length));
    std::string bytes;
    EncodeUTF8(std::u16string_view(shared, static_cast<std::size_t>(length)), bytes);
    return bytes;
}

std::int32_t MString::BlockSize() const noexcept
{
    return IsLiteral() ? 0 : HeaderOf(shared)->capacity;
}

std::int32_t MString::ShareCount() const noexcept
{
    return IsLiteral() ? 0 : ReferenceCountOf(shared).load(std::memory_order_acquire);
}

void MString::ReleaseBlock() noexcept
{
    // The last one out synchronizes with everybody who left before, then frees.
    if (!IsLiteral() && ReferenceCountOf(shared).fetch_sub(1, std::memory_order_acq_rel) == 1)
        std::free(HeaderOf(shared));
}

void MString::CopyCharacters(char16_t* target, int start, int count) const noexcept
{
    if (IsLiteral())
        std::transform(literal + start, literal + start + count, target,
                       [](char character) { return static_cast<unsigned char>(character); });
    else
        std::copy_n(shared + start, count, target);
}

void MString::Reserve(int count)
{
    ReserveFor(std::max<std::int64_t>(count, 1) - 1);
}

void MString::ReserveFor(std::int64_t newLength)
{
    if (IsLiteral() || ShareCount() > 1)
    {
        char16_t* block = AllocateBlock(newLength + 1);
        const int kept = static_cast<int>(std::min<std::int64_t>(length, newLength));
        CopyCharacters(block, 0, kept);
        ReleaseBlock();
        shared = block;
        flags = static_cast<std::uint8_t>(flags & ~LiteralFlag);
        SetLength(kept);
        return;
    }
    const std::int32_t size = BlockSizeFor(newLength + 1);
    if (HeaderOf(shared)->capacity >= size)
        return;
    auto* header = static_cast<BlockHeader*>(std::realloc(HeaderOf(shared), static_cast<std::size_t>(size)));
    if (header == nullptr)
        throw std::bad_alloc();
    header->capacity = size;
    shared = CharactersOf(header);
}

void MString::SetLength(int newLength) noexcept
{
    length = newLength;
    shared[newLength] = 0;
}

MString& MString::Append(const MString& text)
{
    if (length == 0)
        return *this = text;
    Insert(length, text);
    return *this;
}

MString& MString::Append(char16_t character)
{
    ReserveFor(std::int64_t{ length } + 1);
    shared[length] = character;
    SetLength(length + 1);
    return *this;
}

MString MString::SubString(int start, int count) const
{
    const int first = std::clamp(start, 0, length);
    const std::int64_t wantedEnd = std::int64_t{ start } + std::max(count, 0);
    const int end = static_cast<int>(std::clamp<std::int64_t>(wantedEnd, first, length));
    if (first == 0 && end == length)
        return *this;
    MString result;
    if (end == first)
        return result;
    if (IsLiteral() && end == length)
        return Literal(literal + first);
    result.ReserveFor(end - first);
    CopyCharacters(result.shared, first, end - first);
    result.SetLength(end - first);
    return result;
}

void MString::Delete(int start, int count)
{
    const int first = std::clamp(start, 0, length);
    const std::int64_t wantedEnd = std::int64_t{ start } + std::max(count, 0);
    const int end = static_cast<int>(std::clamp<std::int64_t>(wantedEnd, first, length));
    if (end == first)
        return;
    ReserveFor(length);
    std::copy(shared + end, shared + length, shared + first);
    SetLength(length - (end - first));
}

void MString::Insert(int position, const MString& text)
{
    if (text.IsEmpty())
        return;
    const MString inserted = text;   // keeps the characters when `text` is this very object
    const int place = std::clamp(position, 0, length);
    const std::int64_t newLength = std::int64_t{ length } + inserted.length;
    ReserveFor(newLength);
    std::copy_backward(shared + place, shared + length, shared + newLength);
    inserted.CopyCharacters(shared + place, 0, inserted.length);
    SetLength(static_cast<int>(newLength));
}

int MString::Replace(char16_t character, const MString& text)
{
    int found = 0;
    for (int index = 0; index < length; ++index)
        found += (*this)[index] == character ? 1 : 0;
    if (found == 0)
        return 0;

    MString result;
    result.ReserveFor(std::int64_t{ length } + std::int64_t{ found } * (text.length - 1));
    char16_t* target = result.shared;
    for (int index = 0; index < length; ++index)
    {
        if ((*this)[index] != character)
        {
            *target++ = (*this)[index];
            continue;
        }
        text.CopyCharacters(target, 0, text.length);
        target += text.length;
    }
    result.SetLength(static_cast<int>(target - result.shared));
    *this = std::move(result);
    return found;
}

int MString::Find(char16_t character, int start) const
{
    for (int index = std::max(start, 0); index < length; ++index)
        if ((*this)[index] == character)
            return index;
    return -1;
}

int MString::Find(const MString& text, int start) const
{
    for (int place = std::max(start, 0); place <= length - text.length; ++place)
    {
        int matched = 0;
        while (matched < text.length && (*this)[place + matched] == text[matched])
            ++matched;
        if (matched == text.length)
            return place;
    }
    return -1;
}

bool operator==(const MString& a, const MString& b) noexcept
{
    if (a.length != b.length)
        return false;
    if (a.IsLiteral() && b.IsLiteral())
        return std::memcmp(a.literal, b.literal, static_cast<std::size_t>(a.length)) == 0;
    if (!a.IsLiteral() && !b.IsLiteral())
        return a.shared == b.shared || std::equal(a.shared, a.shared + a.length, b.shared);
    for (int index = 0; index < a.length; ++index)
        if (a[index] != b[index])
            return false;
    return true;
}

MString operator+(const MString& a, const MString& b)
{
    MString result = a;
    result.Append(b);
    return result;
}
