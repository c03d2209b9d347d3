// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbShmImage.h"

#include <algorithm>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace
{
std::size_t PixelsOf(const MRectangle& part)
{
    return static_cast<std::size_t>(part.Width()) * static_cast<std::size_t>(part.Height());
}
}   // namespace

XcbShmImage::XcbShmImage(XcbConnection& connection, xcb_window_t shownIn)
    : display(connection), window(shownIn), context(connection->xcb_generate_id(connection)),
      canShare(connection.Has(connection->xcb_shm_id))
{
    // Nobody wants to hear of parts that couldn't be copied: nothing is copied from the screen.
    const std::uint32_t withoutExposures = 0;
    display->xcb_create_gc(display, context, window, XCB_GC_GRAPHICS_EXPOSURES, &withoutExposures);
    if (!canShare)
        return;
    const auto version =
        display.Await(display->xcb_shm_query_version_reply, display->xcb_shm_query_version(display));
    // Since 1.2 memory is handed over as a descriptor, which no crash leaves behind in the system.
    canShare = version && (version->major_version > 1 || version->minor_version >= 2);
}

XcbShmImage::~XcbShmImage()
{
    Release();
    display->xcb_free_gc(display, context);
}

void XcbShmImage::Release()
{
    if (shared == nullptr)
        return;
    display->xcb_shm_detach(display, segment);
    munmap(shared, sharedBytes);
    shared = nullptr;
    sharedBytes = 0;
}

bool XcbShmImage::Reserve(std::size_t bytes)
{
    if (bytes <= sharedBytes)
        return true;
    Release();
    // Whole units of 64 KiB, so that a window that grows by the pixel doesn't ask each time.
    constexpr std::size_t unit = 1 << 16;
    const std::size_t wanted = (bytes + unit - 1) / unit * unit;
    const int descriptor = memfd_create("tonalign-window", MFD_CLOEXEC);
    if (descriptor < 0)
        return false;
    void* memory = MAP_FAILED;
    if (ftruncate(descriptor, static_cast<off_t>(wanted)) == 0)
        memory = mmap(nullptr, wanted, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (memory == MAP_FAILED)
    {
        close(descriptor);
        return false;
    }
    const BrokenPipeGuard guard;
    segment = display->xcb_generate_id(display);
    // The library closes the descriptor when it is sent. A server elsewhere refuses it.
    XcbReply<xcb_generic_error_t> error(display->xcb_request_check(
        display, display->xcb_shm_attach_fd_checked(display, segment, descriptor, 0)));
    if (error || display.IsLost())
    {
        munmap(memory, wanted);
        return false;
    }
    shared = static_cast<std::uint32_t*>(memory);
    sharedBytes = wanted;
    return true;
}

void XcbShmImage::Show(const MBitmap& picture, const std::vector<MRectangle>& parts)
{
    std::vector<MRectangle> inside;
    std::size_t pixels = 0;
    for (const MRectangle& part : parts)
    {
        const MRectangle cut = part.Intersection(picture.Bounds());
        if (cut.IsEmpty())
            continue;
        inside.push_back(cut);
        pixels += PixelsOf(cut);
    }
    if (inside.empty() || window == 0)
        return;
    canShare = canShare && Reserve(pixels * sizeof(std::uint32_t));
    if (canShare)
        ShowShared(picture, inside);
    else
        for (const MRectangle& part : inside)
            ShowSent(picture, part);
}

void XcbShmImage::CopyRows(std::uint32_t* target, const MBitmap& picture, const MRectangle& part) const
{
    const auto width = static_cast<std::size_t>(part.Width());
    for (std::int32_t y = part.top; y <= part.bottom; ++y, target += width)
    {
        const std::uint32_t* row = picture.Row(y) + part.left;
        if (display.SwapsBytes())
            std::transform(row, row + width, target,
                           [](std::uint32_t pixel) { return __builtin_bswap32(pixel); });
        else
            std::memcpy(target, row, width * sizeof(std::uint32_t));
    }
}

// One part behind the other in the memory, each without gaps; the last one's request asks for the event.
void XcbShmImage::ShowShared(const MBitmap& picture, const std::vector<MRectangle>& parts)
{
    std::size_t first = 0;
    for (const MRectangle& part : parts)
    {
        CopyRows(shared + first, picture, part);
        const auto width = static_cast<std::uint16_t>(part.Width());
        const auto height = static_cast<std::uint16_t>(part.Height());
        display->xcb_shm_put_image(display, window, context, width, height, 0, 0, width, height,
                                   static_cast<std::int16_t>(part.left), static_cast<std::int16_t>(part.top),
                                   display.Depth(), XCB_IMAGE_FORMAT_Z_PIXMAP, &part == &parts.back(),
                                   segment, static_cast<std::uint32_t>(first * sizeof(std::uint32_t)));
        first += PixelsOf(part);
    }
    busy = true;
}

void XcbShmImage::ShowSent(const MBitmap& picture, const MRectangle& part)
{
    const BrokenPipeGuard guard;
    constexpr std::uint32_t headBytes = 32;   // of the request, with its long form of the length
    const auto rowBytes = static_cast<std::uint32_t>(part.Width()) * 4;
    const std::uint32_t most = std::max(1u, (display.RequestBytes() - headBytes) / rowBytes);
    for (std::int32_t top = part.top; top <= part.bottom; top += static_cast<std::int32_t>(most))
    {
        MRectangle strip = part;
        strip.top = top;
        strip.bottom = std::min(part.bottom, top + static_cast<std::int32_t>(most) - 1);
        sent.resize(PixelsOf(strip));
        CopyRows(sent.data(), picture, strip);
        display->xcb_put_image(
            display, XCB_IMAGE_FORMAT_Z_PIXMAP, window, context, static_cast<std::uint16_t>(strip.Width()),
            static_cast<std::uint16_t>(strip.Height()), static_cast<std::int16_t>(strip.left),
            static_cast<std::int16_t>(strip.top), 0, display.Depth(),
            static_cast<std::uint32_t>(sent.size() * 4), reinterpret_cast<const std::uint8_t*>(sent.data()));
    }
}

void XcbShmImage::Finish()
{
    if (!busy)
        return;
    display.Await(display->xcb_get_input_focus_reply, display->xcb_get_input_focus(display));
    busy = false;
}
