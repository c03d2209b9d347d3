// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

#include "foundation/text/MEncoding.h"

/// Takes and gives the low 8 bits of each character.
class ASCIICodec final : public MEncoding::Codec
{
public:
    MString GetName() const override { return "ascii"; }
    MString Decode(std::string_view bytes) const override;
    MDataBlock Encode(const MString& text, bool withTerminator) const override;
};

class UTF8Codec final : public MEncoding::Codec
{
public:
    MString GetName() const override { return "utf8"; }
    MString Decode(std::string_view bytes) const override;
    MDataBlock Encode(const MString& text, bool withTerminator) const override;
};

/// 16-bit little-endian units. Text that starts with a byte-order mark of the other order is understood.
class UTF16Codec final : public MEncoding::Codec
{
public:
    MString GetName() const override { return "utf16"; }
    MString Decode(std::string_view bytes) const override;
    MDataBlock Encode(const MString& text, bool withTerminator) const override;
    void ReadBOM(MByteReader& reader) const override;
    void WriteBOM(MByteSink& sink) const override;
    bool ReadLine(MByteReader& reader, MString& text) const override;
    bool ExtendsASCII() const override { return false; }
};

/// One published 8-bit code page: ASCII below 128, above it what the table says.
struct CodePage
{
    static constexpr int LargestAliasCount = 8;
    static constexpr char16_t Undefined = 0xFFFD;

    std::array<const char*, LargestAliasCount> names;   // the main name first; null behind the last
    std::array<char16_t, 128> characters;   // of the bytes 128 to 255
};

inline constexpr int CodePageCount = 28;
extern const CodePage CodePages[CodePageCount];

class TableCodec final : public MEncoding::Codec
{
public:
    explicit TableCodec(const CodePage& codePage) : page(&codePage) {}
    MString GetName() const override { return MString::Literal(page->names[0]); }
    MString Decode(std::string_view bytes) const override;
    MDataBlock Encode(const MString& text, bool withTerminator) const override;

private:
    const CodePage* page;
};
