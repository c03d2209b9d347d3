// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbCursors.h"

#include <vector>

namespace
{
// The names of freedesktop.org's cursor specification first, then those that X11 always had.
const std::vector<const char*>& NamesOf(MStdCursor cursor)
{
    static const std::map<MStdCursor, std::vector<const char*>> names = {
        { MStdCursor::Arrow, { "default", "left_ptr" } },
        { MStdCursor::Text, { "text", "xterm" } },
        { MStdCursor::Wait, { "wait", "watch" } },
        { MStdCursor::Cross, { "crosshair", "cross" } },
        { MStdCursor::SizeHorizontal, { "ew-resize", "sb_h_double_arrow" } },
        { MStdCursor::SizeVertical, { "ns-resize", "sb_v_double_arrow" } },
        { MStdCursor::SizeFalling, { "nwse-resize", "bottom_right_corner" } },
        { MStdCursor::SizeRising, { "nesw-resize", "bottom_left_corner" } },
        { MStdCursor::Move, { "move", "fleur" } },
        { MStdCursor::Hand, { "pointer", "hand2" } },
        { MStdCursor::Forbidden, { "not-allowed", "forbidden", "crossed_circle", "X_cursor" } },
        { MStdCursor::WidthHover, { "ew-resize", "sb_h_double_arrow" } },
        { MStdCursor::ColumnLine, { "col-resize", "ew-resize", "sb_h_double_arrow" } },
        { MStdCursor::RowLine, { "row-resize", "ns-resize", "sb_v_double_arrow" } },
        { MStdCursor::Copy, { "copy", "dnd-copy" } },
    };
    static const std::vector<const char*> none;
    const auto found = names.find(cursor);
    return found != names.end() ? found->second : none;
}

// What does where there is neither a name nor a drawing.
MStdCursor SubstituteOf(MStdCursor cursor)
{
    if (cursor == MStdCursor::WidthDrag)
        return MStdCursor::WidthHover;
    return cursor == MStdCursor::Ear ? MStdCursor::Hand : MStdCursor::Arrow;
}

std::uint32_t Premultiplied(MColor color)
{
    const auto part = [&](std::uint32_t value)
    {
        return (value * color.Alpha() + 127) / 255;
    };
    return std::uint32_t{ color.Alpha() } << 24 | part(color.Red()) << 16 | part(color.Green()) << 8 |
           part(color.Blue());
}
}   // namespace

XcbCursors::XcbCursors(XcbConnection& connection, const DrawnCursors& drawnCursors)
    : display(connection), drawn(drawnCursors)
{
}

XcbCursors::~XcbCursors()
{
    for (const auto& [name, cursor] : made)
        if (cursor != XCB_NONE)
            display->xcb_free_cursor(display, cursor);
    if (theme != nullptr)
        display->xcb_cursor_context_free(theme);
}

xcb_cursor_t XcbCursors::Get(MStdCursor cursor)
{
    const auto found = made.find(cursor);
    if (found != made.end())
        return found->second;
    const BrokenPipeGuard guard;
    const xcb_cursor_t fresh = Make(cursor);
    made[cursor] = fresh;
    return fresh;
}

void XcbCursors::Forget(MStdCursor cursor)
{
    const auto found = made.find(cursor);
    if (found == made.end())
        return;
    if (found->second != XCB_NONE)
        display->xcb_free_cursor(display, found->second);
    made.erase(found);
}

xcb_cursor_t XcbCursors::Make(MStdCursor cursor)
{
    if (cursor == MStdCursor::Hidden)
        return MakeHidden();
    if (display->HasThemeCursors())
    {
        if (theme == nullptr)
        {
            // The library's own look-up of the screen wants only its root.
            auto screens = display->xcb_setup_roots_iterator(display->xcb_get_setup(display));
            while (screens.rem > 1 && screens.data->root != display.RootWindow())
                display->xcb_screen_next(&screens);
            if (display->xcb_cursor_context_new(display, screens.data, &theme) < 0)
                theme = nullptr;
        }
        for (const char* name : NamesOf(cursor))
            if (theme != nullptr)
                if (const xcb_cursor_t found = display->xcb_cursor_load_cursor(theme, name);
                    found != XCB_NONE)
                    return found;
    }
    const auto drawing = drawn.find(cursor);
    if (drawing != drawn.end())
        if (const xcb_cursor_t found = MakeDrawn(drawing->second); found != XCB_NONE)
            return found;
    // Each cursor is freed by itself, so the substitute is made once more.
    return cursor != MStdCursor::Arrow ? Make(SubstituteOf(cursor)) : xcb_cursor_t{ XCB_NONE };
}

// One pixel whose mask is empty.
xcb_cursor_t XcbCursors::MakeHidden()
{
    const xcb_pixmap_t pixel = display->xcb_generate_id(display);
    display->xcb_create_pixmap(display, 1, pixel, display.RootWindow(), 1, 1);
    const xcb_gcontext_t context = display->xcb_generate_id(display);
    display->xcb_create_gc(display, context, pixel, 0, nullptr);
    const std::uint8_t empty[4]{};
    display->xcb_put_image(display, XCB_IMAGE_FORMAT_XY_PIXMAP, pixel, context, 1, 1, 0, 0, 0, 1, 4, empty);
    const xcb_cursor_t cursor = display->xcb_generate_id(display);
    display->xcb_create_cursor(display, cursor, pixel, pixel, 0, 0, 0, 0, 0, 0, 0, 0);
    display->xcb_free_gc(display, context);
    display->xcb_free_pixmap(display, pixel);
    return cursor;
}

xcb_render_pictformat_t XcbCursors::FormatWithAlpha()
{
    if (!display->HasRender() || !display.Has(display->xcb_render_id))
        return 0;
    const auto formats = display.Await(display->xcb_render_query_pict_formats_reply,
                                       display->xcb_render_query_pict_formats(display));
    if (!formats)
        return 0;
    auto each = display->xcb_render_query_pict_formats_formats_iterator(formats.get());
    for (; each.rem > 0; display->xcb_render_pictforminfo_next(&each))
    {
        const xcb_render_directformat_t& direct = each.data->direct;
        if (each.data->depth == 32 && direct.alpha_shift == 24 && direct.alpha_mask == 0xFF &&
            direct.red_shift == 16 && direct.green_shift == 8 && direct.blue_shift == 0)
            return each.data->id;
    }
    return 0;
}

xcb_cursor_t XcbCursors::MakeDrawn(const Drawn& drawing)
{
    const xcb_render_pictformat_t format = FormatWithAlpha();
    if (format == 0 || drawing.image.IsEmpty())
        return XCB_NONE;
    const auto width = static_cast<std::uint16_t>(drawing.image.Width());
    const auto height = static_cast<std::uint16_t>(drawing.image.Height());
    std::vector<std::uint32_t> pixels;
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x)
        {
            const std::uint32_t pixel = Premultiplied(drawing.image.Pixel(x, y));
            pixels.push_back(display.SwapsBytes() ? __builtin_bswap32(pixel) : pixel);
        }
    const xcb_pixmap_t pixmap = display->xcb_generate_id(display);
    display->xcb_create_pixmap(display, 32, pixmap, display.RootWindow(), width, height);
    const xcb_gcontext_t context = display->xcb_generate_id(display);
    display->xcb_create_gc(display, context, pixmap, 0, nullptr);
    display->xcb_put_image(display, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, context, width, height, 0, 0, 0, 32,
                           static_cast<std::uint32_t>(pixels.size() * 4),
                           reinterpret_cast<const std::uint8_t*>(pixels.data()));
    const xcb_render_picture_t picture = display->xcb_generate_id(display);
    display->xcb_render_create_picture(display, picture, pixmap, format, 0, nullptr);
    const xcb_cursor_t cursor = display->xcb_generate_id(display);
    display->xcb_render_create_cursor(display, cursor, picture, static_cast<std::uint16_t>(drawing.hot.x),
                                      static_cast<std::uint16_t>(drawing.hot.y));
    display->xcb_render_free_picture(display, picture);
    display->xcb_free_gc(display, context);
    display->xcb_free_pixmap(display, pixmap);
    return cursor;
}
