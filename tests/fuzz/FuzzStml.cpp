// SPDX-License-Identifier: GPL-3.0-or-later
// rooms: gui/richtext
// Marked-up texts from anywhere: parsed, measured, laid out at widths from 1 pixel up and painted. The first
// byte says at which width and scale. A document that can be parsed looks the same when it is parsed again.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "foundation/text/MException.h"
#include "tests/gui/richtext/RichTextStyle.h"

namespace
{
std::int32_t HeightOf(MSTML& document, std::int32_t width)
{
    if (document.GetMinimalWidth() > document.GetPreferredWidth())
        std::abort();
    const std::int32_t height = document.GetHeight(width);
    if (height < 0)
        std::abort();
    MBitmap canvas(64, 64);
    MDrawerToMBitmap drawer(canvas);
    document.Paint(drawer, MRectangle::OfSize(0, 0, width, height));
    document.Paint(drawer, MRectangle::OfSize(8, -height / 2, 20, height));
    return height;
}
}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1 || size > (1u << 16))
        return 0;
    static const RichTextStyle styles[] = { RichTextStyle(1), RichTextStyle(1.25), RichTextStyle(3) };
    const RichTextStyle& style = styles[data[0] % 3];
    const std::int32_t width = 1 + data[0] * data[0] / 64;
    MSTML document(style, style);
    const MString text =
        MString::FromUTF8(std::string_view(reinterpret_cast<const char*>(data) + 1, size - 1));
    try
    {
        document.Parse(text);
    }
    catch (const MException&)
    {
        return 0;
    }
    const std::int32_t height = HeightOf(document, width);
    document.StyleChanged();
    if (HeightOf(document, width) != height)
        std::abort();
    return 0;
}
