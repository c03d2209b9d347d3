// SPDX-License-Identifier: GPL-3.0-or-later
// rooms: state/tree
// Binary data in settings: hexadecimal text, compressed or not. The first byte chooses; the rest is read
// as text, and written as bytes and read back.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/text/MException.h"
#include "state/tree/MAttribute.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1 || size > (1u << 20))
        return 0;
    const bool isCompressed = (data[0] & 1) != 0;
    const std::uint8_t* bytes = data + 1;
    const auto byteCount = static_cast<std::int32_t>(size - 1);

    MAttribute item;
    item.SetText(MString::Copy({ reinterpret_cast<const char*>(bytes), size - 1 }));
    std::vector<std::uint8_t> target(4096);
    try
    {
        item.GetBinary(target.data(), 4096, isCompressed);
    }
    catch (const MException&)
    {
    }

    item.SetBinary(bytes, byteCount, isCompressed);
    MMemoryStream back;
    item.GetBinary(back, isCompressed);
    const bool isSame = back.GetSize() == byteCount &&
                        (byteCount == 0 || std::memcmp(back.Block().Data(), bytes, size - 1) == 0);
    if (!isSame)
        std::abort();
    return 0;
}
