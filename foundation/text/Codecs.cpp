// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/Codecs.h"

#include <algorithm>
#include <string>

namespace
{
constexpr char16_t ByteOrderMark = 0xFEFF;
constexpr char16_t SwappedByteOrderMark = 0xFFFE;
constexpr std::uint8_t LittleEndianMark[] = { 0xFF, 0xFE };

std::string_view UpToZero(std::string_view bytes)
{
    return bytes.substr(0, bytes.find('\0'));
}

char16_t UnitAt(std::string_view bytes, std::size_t unitIndex)
{
    const auto low = static_cast<unsigned char>(bytes[2 * unitIndex]);
    const auto high = static_cast<unsigned char>(bytes[2 * unitIndex + 1]);
    return static_cast<char16_t>(low | (high << 8));
}

char16_t Swapped(char16_t unit)
{
    return static_cast<char16_t>((unit >> 8) | (unit << 8));
}

template <typename Encoder>
MDataBlock EncodeBytes(const MString& text, bool withTerminator, Encoder&& byteOf)
{
    MDataBlock block(text.Length() + (withTerminator ? 1 : 0));
    std::uint8_t* bytes = block.WritableData();
    for (int index = 0; index < text.Length(); ++index)
        bytes[index] = byteOf(text[index]);
    if (withTerminator)
        bytes[text.Length()] = 0;
    return block;
}
}   // namespace

void MEncoding::Codec::ReadBOM(MByteReader&) const {}

void MEncoding::Codec::WriteBOM(MByteSink&) const {}

bool MEncoding::Codec::ReadLine(MByteReader& reader, MString& text) const
{
    std::string line;
    bool hasEnd = false;
    while (!hasEnd && !reader.IsEnd())
    {
        const std::uint8_t byte = reader.Next();
        hasEnd = byte == '\n' || byte == 0;
        if (!hasEnd && byte != '\r')
            line.push_back(static_cast<char>(byte));
    }
    text = Decode(line);
    return hasEnd || !text.IsEmpty();
}

void MEncoding::Codec::Write(MByteSink& sink, const MString& text) const
{
    const MDataBlock bytes = Encode(text, false);
    sink.WriteBytes(bytes.Data(), bytes.Size());
}

void MEncoding::Codec::WriteLine(MByteSink& sink, const MString& text) const
{
    Write(sink, text);
    Write(sink, "\n");
}

MString MEncoding::Codec::Decode(const MDataBlock& block) const
{
    return Decode(std::string_view(reinterpret_cast<const char*>(block.Data()),
                                   static_cast<std::size_t>(block.Size())));
}

MString ASCIICodec::Decode(std::string_view bytes) const
{
    return MString::Copy(UpToZero(bytes));
}

MDataBlock ASCIICodec::Encode(const MString& text, bool withTerminator) const
{
    return EncodeBytes(text, withTerminator,
                       [](char16_t character) { return static_cast<std::uint8_t>(character); });
}

MString UTF8Codec::Decode(std::string_view bytes) const
{
    return MString::FromUTF8(bytes);
}

MDataBlock UTF8Codec::Encode(const MString& text, bool withTerminator) const
{
    const std::string bytes = text.ToUTF8();
    return MDataBlock(bytes.c_str(), static_cast<std::int32_t>(bytes.size()) + (withTerminator ? 1 : 0));
}

MString UTF16Codec::Decode(std::string_view bytes) const
{
    const std::size_t unitCount = bytes.size() / 2;
    const bool isSwapped = unitCount > 0 && UnitAt(bytes, 0) == SwappedByteOrderMark;
    std::u16string text;
    text.reserve(unitCount);
    for (std::size_t index = 0; index < unitCount; ++index)
    {
        const char16_t unit = isSwapped ? Swapped(UnitAt(bytes, index)) : UnitAt(bytes, index);
        if (unit == 0)
            break;
        if (unit != ByteOrderMark)
            text.push_back(unit);
    }
    return MString(text);
}

MDataBlock UTF16Codec::Encode(const MString& text, bool withTerminator) const
{
    const int unitCount = text.Length() + (withTerminator ? 1 : 0);
    MDataBlock block(2 * unitCount);
    std::uint8_t* bytes = block.WritableData();
    for (int index = 0; index < unitCount; ++index)
    {
        bytes[2 * index] = static_cast<std::uint8_t>(text[index]);
        bytes[2 * index + 1] = static_cast<std::uint8_t>(text[index] >> 8);
    }
    return block;
}

void UTF16Codec::ReadBOM(MByteReader& reader) const
{
    reader.SkipIfNext(LittleEndianMark, sizeof LittleEndianMark);
}

void UTF16Codec::WriteBOM(MByteSink& sink) const
{
    sink.WriteBytes(LittleEndianMark, sizeof LittleEndianMark);
}

bool UTF16Codec::ReadLine(MByteReader& reader, MString& text) const
{
    std::u16string line;
    bool hasEnd = false;
    while (!hasEnd && !reader.IsEnd())
    {
        const std::uint8_t low = reader.Next();
        const std::uint8_t high = reader.IsEnd() ? std::uint8_t{ 0 } : reader.Next();
        const auto unit = static_cast<char16_t>(low | (high << 8));
        hasEnd = unit == u'\n' || unit == 0;
        if (!hasEnd && unit != u'\r' && unit != ByteOrderMark)
            line.push_back(unit);
    }
    text = MString(line);
    return hasEnd || !text.IsEmpty();
}

MString TableCodec::Decode(std::string_view bytes) const
{
    const std::string_view used = UpToZero(bytes);
    std::u16string text(used.size(), u'\0');
    std::transform(used.begin(), used.end(), text.begin(),
                   [this](char character)
                   {
                       const auto byte = static_cast<unsigned char>(character);
                       return byte < 128 ? static_cast<char16_t>(byte) : page->characters[byte - 128u];
                   });
    return MString(text);
}

MDataBlock TableCodec::Encode(const MString& text, bool withTerminator) const
{
    return EncodeBytes(text, withTerminator,
                       [this](char16_t character)
                       {
                           if (character < 128)
                               return static_cast<std::uint8_t>(character);
                           const auto found =
                               std::find(page->characters.begin(), page->characters.end(), character);
                           if (found == page->characters.end() || character == CodePage::Undefined)
                               return static_cast<std::uint8_t>('?');
                           return static_cast<std::uint8_t>(128 + (found - page->characters.begin()));
                       });
}
