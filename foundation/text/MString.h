// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

template <typename T>
concept CharacterPointer = std::same_as<T, const char*> || std::same_as<T, char*>;

/// Text as a value: 12 to 16 bytes that are copied freely, also on the audio thread.
///
/// Two forms. The literal form points at a constant of 8-bit ASCII characters that it neither owns nor
/// counts, so that constants cost nothing. The shared form points at 16-bit characters (UTF-16, zero
/// terminated) in a heap block with an atomic reference count; whoever writes to a shared block gets a
/// copy of its own first. One object may not be changed by two threads at once; copies are independent.
class MString
{
public:
    MString() noexcept : literal(""), length(0), flags(LiteralFlag) {}
    /// Literal form, of a string literal: the array has to live as long as the program.
    template <std::size_t Size>
    MString(const char (&constant)[Size]) noexcept : MString(Literal(constant))
    {
    }
    /// Shared form: what stands in a buffer, or where a pointer points to, may go away. Null is the empty
    /// text.
    template <std::size_t Size>
    MString(char (&buffer)[Size]) : MString(Copy(buffer))
    {
    }
    template <CharacterPointer Pointer>
    MString(Pointer text) : MString(text != nullptr ? Copy(text) : MString())
    {
    }
    MString(const MString& other) noexcept;
    MString(MString&& other) noexcept;
    explicit MString(char16_t character);
    explicit MString(std::u16string_view text);
    ~MString();
    MString& operator=(const MString& other) noexcept;
    MString& operator=(MString&& other) noexcept;

    /// Literal form, of a pointer to a constant that lives as long as the program, as tables hold them. Null
    /// is the empty text.
    static MString Literal(const char* constant) noexcept
    {
        MString text;
        if (constant != nullptr)
        {
            text.literal = constant;
            text.length = static_cast<std::int32_t>(std::strlen(constant));
        }
        return text;
    }
    /// Shared form: each byte is one character (ASCII, Latin-1).
    static MString Copy(std::string_view text);
    /// Shared form from UTF-8, decoded by the rules of UTF8Codec.
    static MString FromUTF8(std::string_view text);
    /// `radix` 2 to 36, digits in upper case. The width counts digits; a "-" goes before the filler.
    static MString FromInt(std::int64_t value, int radix = 10, int width = 0, char filler = ' ');
    static MString FromUnsigned(std::uint64_t value, int radix = 10, int width = 0, char filler = ' ');
    /// Fixed notation for a precision below 10, general notation ("%g") with that many digits from 10 on.
    /// Always with a point, whatever the locale.
    static MString FromDouble(double value, int precision = 6);

    int Length() const noexcept { return length; }
    bool IsEmpty() const noexcept { return Length() == 0; }
    bool IsLiteral() const noexcept { return (flags & LiteralFlag) != 0; }
    /// The character at `index`, 0 to Length(); the terminator at Length().
    char16_t operator[](int index) const noexcept
    {
        return IsLiteral() ? static_cast<unsigned char>(literal[index]) : shared[index];
    }
    std::string ToUTF8() const;
    /// Bytes of the heap block, header included, and how many values share it; 0 for the literal form.
    std::int32_t BlockSize() const noexcept;
    std::int32_t ShareCount() const noexcept;

    /// Makes this the sole owner of a block for `count` characters, terminator included. Never shrinks an
    /// own block; a text copied out of a literal or a shared block is cut to `count` - 1 characters.
    void Reserve(int count);
    MString& Append(const MString& text);
    MString& Append(char16_t character);
    MString& operator+=(const MString& text) { return Append(text); }
    MString SubString(int start, int count) const;
    void Delete(int start, int count);
    void Insert(int position, const MString& text);
    /// Replaces every `character` by `text`; answers how many there were.
    int Replace(char16_t character, const MString& text);
    /// The index of the first occurrence from `start` on, -1 if there is none.
    int Find(const MString& text, int start = 0) const;
    int Find(char16_t character, int start = 0) const;

    /// Optional "-" and digits of the radix; `consumedCount` gets the characters used, 0 if none fit.
    /// What doesn't fit 64 bits becomes the nearest value that does.
    std::int64_t ToInt(int radix = 10, int* consumedCount = nullptr) const;
    /// The same without a sign.
    std::uint64_t ToUnsigned(int radix = 10, int* consumedCount = nullptr) const;
    /// Standard conversion, with a point whatever the locale; 0 where nothing fits.
    double ToDouble(int* consumedCount = nullptr) const;

    std::uint32_t Hash() const noexcept;
    /// Below 0, 0 or above 0. Accented letters equal their base letters, capitals their small letters.
    static int CompareNoCase(const MString& a, const MString& b, int maxLength = 0x7FFFFFFF) noexcept;
    bool EqualsNoCase(const MString& other) const noexcept { return CompareNoCase(*this, other) == 0; }

    friend bool operator==(const MString& a, const MString& b) noexcept;
    friend MString operator+(const MString& a, const MString& b);

private:
    static constexpr std::uint8_t LiteralFlag = 1;

    void CopyCharacters(char16_t* target, int start, int count) const noexcept;
    void ReserveFor(std::int64_t newLength);
    void SetLength(int newLength) noexcept;
    void ReleaseBlock() noexcept;

    union
    {
        const char* literal;
        char16_t* shared;
    };
    std::int32_t length;
    std::uint8_t flags;   // bit 0: literal form
};
