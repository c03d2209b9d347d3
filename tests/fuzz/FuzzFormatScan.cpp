// SPDX-License-Identifier: GPL-3.0-or-later
// rooms: foundation/text
// Formats and patterns are the program's own, but language files may replace them, and what is scanned
// comes from users. The first line is the format, the rest the input; both are UTF-8.
#include <cstdint>
#include <string_view>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "foundation/text/MStringScan.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::size_t lineEnd = text.find('\n');
    const MString format = MString::FromUTF8(text.substr(0, lineEnd));
    const MString input =
        lineEnd == std::string_view::npos ? MString() : MString::FromUTF8(text.substr(lineEnd + 1));
    try
    {
        const MString formatted = Format(format, input, -123456789, 42u, 3.14159, "text",
                                         std::int64_t{ 1 } << 62, input.ToDouble());
        MStringScan scan(format, formatted);
        MString piece;
        scan.Get(piece);
    }
    catch (const MException&)
    {
    }
    try
    {
        MStringScan scan(format, input);
        int integer = 0;
        std::uint8_t small = 0;
        std::int64_t wide = 0;
        double number = 0.0;
        MString piece;
        scan.Get(integer).Get(small).Get(wide).Get(number).Get(piece);
        const MString written = MString::FromDouble(number, static_cast<int>(size % 40));
        static_cast<void>(written.ToDouble());
    }
    catch (const MException&)
    {
    }
    MString edited = input;
    edited.Insert(static_cast<int>(size % 7), format);
    edited.Replace(u'{', format.SubString(0, 3));
    edited.Delete(static_cast<int>(size % 11), 5);
    return edited.Hash() + static_cast<unsigned>(MString::CompareNoCase(edited, input)) == 0xFFFFFFFF ? -1
                                                                                                      : 0;
}
