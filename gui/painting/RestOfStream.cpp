// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/RestOfStream.h"

#include <algorithm>

#include "foundation/streams/MStream.h"
#include "foundation/text/MException.h"

std::vector<std::uint8_t> RestOfStream(MStream& stream)
{
    constexpr std::int64_t largest = std::int64_t{ 1 } << 28;
    const std::int64_t size = stream.GetSize() - stream.GetPosition();
    if (size > largest)
        throw MException("Invalid file contents. The file is too large.", MErrorCode::Content);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::max<std::int64_t>(0, size)));
    ReadExact(stream, bytes.data(), static_cast<std::int32_t>(bytes.size()));
    return bytes;
}
