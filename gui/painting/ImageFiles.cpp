// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/ImageFiles.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "foundation/streams/MStream.h"

void ImageFiles::Load(MBitmap& bitmap, MStream& stream)
{
    std::array<std::uint8_t, 4> head{};
    const std::int64_t start = stream.GetPosition();
    const std::int32_t got = stream.Read(head.data(), static_cast<std::int32_t>(head.size()));
    stream.Seek(start, MStream::Begin);
    const auto begins = [&](std::initializer_list<std::uint8_t> bytes)
    {
        return got >= static_cast<std::int32_t>(bytes.size()) &&
               std::equal(bytes.begin(), bytes.end(), head.begin());
    };
    if (begins({ 0x89, 'P', 'N', 'G' }))
        LoadPNG(bitmap, stream);
    else if (begins({ 0xFF, 0xD8, 0xFF }))
        LoadJPEG(bitmap, stream);
    else if (begins({ 'I', 'I', 42, 0 }) || begins({ 'M', 'M', 0, 42 }))
        LoadTIFF(bitmap, stream);
    else
        LoadTGA(bitmap, stream, true);   // has no mark at its start
}
