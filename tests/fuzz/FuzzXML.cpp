// SPDX-License-Identifier: GPL-3.0-or-later
// rooms: state/tree
// What a host or a file gives as state: compressed or plain XML. A document that can be read has to be
// the same after writing and reading it again.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/text/MException.h"
#include "state/tree/MAttribute.h"
#include "state/tree/XML.h"

namespace
{
std::string Written(const MAttribute& item)
{
    MMemoryStream stream;
    WriteXML(item, stream, true, "utf-8");
    const MDataBlock& block = stream.Block();
    return { reinterpret_cast<const char*>(block.Data()), static_cast<std::size_t>(block.Size()) };
}
}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > (1u << 20))
        return 0;
    MAttribute item;
    try
    {
        MMemoryStream stream = MMemoryStream::Borrow(data, static_cast<std::int32_t>(size));
        ReadCompressedXML(item, stream);
    }
    catch (const MException&)
    {
        return 0;
    }
    // Texts lose the blanks at their ends when they are read, and what is no Unicode when they are written,
    // so the first round may still change something. The second one may not.
    MAttribute second;
    const std::string first = Written(item);
    MMemoryStream firstStream = MMemoryStream::Borrow(first.data(), static_cast<std::int32_t>(first.size()));
    ReadXML(second, firstStream);
    MAttribute third;
    const std::string again = Written(second);
    MMemoryStream secondStream = MMemoryStream::Borrow(again.data(), static_cast<std::int32_t>(again.size()));
    ReadXML(third, secondStream);
    if (Written(third) != again)
        std::abort();
    return 0;
}
