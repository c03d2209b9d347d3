// SPDX-License-Identifier: GPL-3.0-or-later
// Truevision TGA File Format Specification, version 2.0.
#include <algorithm>
#include <array>
#include <cstring>
#include <utility>
#include <vector>

#include "foundation/streams/MStream.h"
#include "foundation/text/MException.h"
#include "gui/painting/ImageFiles.h"

namespace
{
constexpr std::uint8_t runLengthBit = 8;
constexpr std::uint8_t fromTheTop = 0x20;
constexpr std::int32_t headerSize = 18;

[[noreturn]] void Fail(const char* detail)
{
    throw MException(MString("Invalid file contents. ") + MString(detail), MErrorCode::Content);
}

struct Header
{
    explicit Header(const std::array<std::uint8_t, headerSize>& bytes)
        : idLength(bytes[0]), hasMap(bytes[1] != 0), type(bytes[2]), mapFirst(Word(bytes, 3)),
          mapCount(Word(bytes, 5)), mapBits(bytes[7]), width(Word(bytes, 12)), height(Word(bytes, 14)),
          bits(bytes[16]), descriptor(bytes[17])
    {
    }
    static std::int32_t Word(const std::array<std::uint8_t, headerSize>& bytes, std::size_t at)
    {
        return bytes[at] | bytes[at + 1] << 8;
    }

    std::int32_t idLength;
    bool hasMap;
    std::uint8_t type;
    std::int32_t mapFirst;
    std::int32_t mapCount;
    std::int32_t mapBits;
    std::int32_t width;
    std::int32_t height;
    std::int32_t bits;
    std::uint8_t descriptor;
};

class Reader
{
public:
    Reader(MStream& source, const Header& fileHeader, bool withAlpha)
        : stream(source), header(fileHeader), keepsAlpha(withAlpha)
    {
        SkipBytes(header.idLength);
        if (header.hasMap)
            ReadMap();
    }

    void ReadPixels(MBitmap& bitmap)
    {
        const std::int64_t total = std::int64_t{ header.width } * header.height;
        std::uint32_t* pixels = bitmap.Row(0);
        if ((header.type & runLengthBit) == 0)
        {
            for (std::int64_t i = 0; i < total; ++i)
                pixels[i] = ReadPixel();
            return;
        }
        for (std::int64_t done = 0; done < total;)
        {
            std::uint8_t packet = 0;
            ReadExact(stream, &packet, 1);
            const std::int64_t count = std::min<std::int64_t>((packet & 0x7F) + 1, total - done);
            const bool repeats = (packet & 0x80) != 0;
            const std::uint32_t first = ReadPixel();
            for (std::int64_t i = 0; i < count; ++i)
                pixels[done + i] = repeats || i == 0 ? first : ReadPixel();
            done += count;
        }
    }

private:
    void SkipBytes(std::int32_t count)
    {
        std::array<std::uint8_t, 256> skipped{};
        if (count > 0)
            ReadExact(stream, skipped.data(), count);
    }

    void ReadMap()
    {
        if (header.mapCount > 256 || header.mapBits < 24 || header.mapBits > 32)
            Fail("Invalid TGA header.");
        for (std::int32_t i = 0; i < header.mapCount; ++i)
        {
            const std::uint32_t color = ReadColor(header.mapBits);
            if (header.mapFirst + i < 256)
                map[static_cast<std::size_t>(header.mapFirst + i)] = color;
        }
    }

    std::uint32_t ReadColor(std::int32_t bits)
    {
        std::array<std::uint8_t, 4> bytes{};
        ReadExact(stream, bytes.data(), bits / 8);
        std::uint32_t color = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i)
            color |= std::uint32_t{ bytes[i] } << (8 * i);
        if (bits == 16)
        {
            const std::uint32_t packed = color;
            color = (packed & 31) << 3 | (packed >> 5 & 31) << 11 | (packed >> 10 & 31) << 19 |
                    ((packed & 0x8000) != 0 ? 0x80000000u : 0);
        }
        return bits < 32 && bits != 16 ? color | 0xFF000000u : color;
    }

    std::uint32_t ReadPixel()
    {
        std::uint32_t color = 0;
        if (header.bits == 8)
        {
            std::uint8_t value = 0;
            ReadExact(stream, &value, 1);
            color = header.hasMap ? map[value] : 0xFF000000u | value * 0x010101u;
        }
        else
        {
            color = ReadColor(header.bits);
        }
        return keepsAlpha ? color : color | 0xFF000000u;
    }

    MStream& stream;
    const Header& header;
    bool keepsAlpha;
    std::array<std::uint32_t, 256> map{};
};
}   // namespace

void ImageFiles::LoadTGA(MBitmap& bitmap, MStream& stream, bool createAlpha)
{
    std::array<std::uint8_t, headerSize> bytes{};
    if (stream.Read(bytes.data(), headerSize) != headerSize)
        Fail("No TGA header present.");
    const Header header(bytes);
    if (header.bits != 8 && header.bits != 16 && header.bits != 24 && header.bits != 32)
        Fail("Invalid TGA header.");
    Reader reader(stream, header, createAlpha);
    // A packet of a run is one pixel at least, and makes 128 of it at most.
    constexpr std::int64_t mostForOneByte = 128;
    const std::int64_t pixels = std::int64_t{ header.width } * header.height;
    const std::int64_t left = stream.GetSize() - stream.GetPosition();
    if (pixels > MostPixels || pixels > left * mostForOneByte)
        Fail("Invalid TGA header.");
    MBitmap read(header.width, header.height);
    if (!read.IsEmpty())
        reader.ReadPixels(read);
    if ((header.descriptor & fromTheTop) == 0)
        for (std::int32_t y = 0; y < read.Height() / 2; ++y)
            std::swap_ranges(read.Row(y), read.Row(y) + read.Width(), read.Row(read.Height() - 1 - y));
    bitmap = std::move(read);
}

void ImageFiles::SaveTGA(const MBitmap& bitmap, MStream& stream)
{
    constexpr std::int32_t largest = 0xFFFF;
    if (bitmap.Width() > largest || bitmap.Height() > largest)
        throw MException("Could not create bitmap.", MErrorCode::InvalidArgument);
    std::vector<std::uint8_t> file(headerSize);
    file[2] = 2 | runLengthBit;
    const auto putWord = [&file](std::size_t at, std::int32_t value)
    {
        file[at] = static_cast<std::uint8_t>(value);
        file[at + 1] = static_cast<std::uint8_t>(value >> 8);
    };
    putWord(12, bitmap.Width());
    putWord(14, bitmap.Height());
    file[16] = 32;
    file[17] = fromTheTop | 8;   // 8 bits of alpha
    const auto putPixel = [&file](std::uint32_t pixel)
    {
        for (int shift = 0; shift < 32; shift += 8)
            file.push_back(static_cast<std::uint8_t>(pixel >> shift));
    };
    for (std::int32_t y = 0; y < bitmap.Height(); ++y)
    {
        const std::uint32_t* row = bitmap.Row(y);
        for (std::int32_t x = 0; x < bitmap.Width();)
        {
            constexpr std::int32_t longest = 128;
            const std::int32_t room = std::min(longest, bitmap.Width() - x);
            const auto runFrom = [&](std::int32_t at)
            {
                std::int32_t run = 1;
                while (at + run < bitmap.Width() && run < longest && row[at + run] == row[at])
                    ++run;
                return run;
            };
            std::int32_t count = std::min(room, runFrom(x));
            if (count > 1)
            {
                file.push_back(static_cast<std::uint8_t>(0x7F + count));
                putPixel(row[x]);
                x += count;
                continue;
            }
            while (count < room && runFrom(x + count) == 1)
                ++count;
            file.push_back(static_cast<std::uint8_t>(count - 1));
            for (std::int32_t i = 0; i < count; ++i)
                putPixel(row[x + i]);
            x += count;
        }
    }
    constexpr char footer[] = "\0\0\0\0\0\0\0\0TRUEVISION-XFILE.";   // 26 bytes with the zero at its end
    file.insert(file.end(), footer, footer + sizeof footer);
    stream.Write(file.data(), static_cast<std::int32_t>(file.size()));
}
