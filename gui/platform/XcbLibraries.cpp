// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/XcbLibraries.h"

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"

namespace
{
void Require(bool isThere, const char* name)
{
    if (!isThere)
        throw MException(Format("Could not connect to the display. {0} is missing.", name));
}
}   // namespace

XcbLibraries::XcbLibraries()
{
#define TONALIGN_FIND(name) name = library.Find<decltype(::name)>(#name);
#define TONALIGN_REQUIRE(name)                                                                               \
    TONALIGN_FIND(name)                                                                                      \
    Require(name != nullptr, #name);
#define TONALIGN_LIBRARY(member, file, functions)                                                            \
    {                                                                                                        \
        const SharedLibrary& library = member;                                                               \
        Require(library.IsOpen(), file);                                                                     \
        functions(TONALIGN_REQUIRE)                                                                          \
    }
#define TONALIGN_OPTIONAL_LIBRARY(member, functions)                                                         \
    {                                                                                                        \
        const SharedLibrary& library = member;                                                               \
        functions(TONALIGN_FIND)                                                                             \
    }
    TONALIGN_LIBRARY(xcb, "libxcb.so.1", TONALIGN_XCB)
    TONALIGN_LIBRARY(shm, "libxcb-shm.so.0", TONALIGN_XCB_SHM)
    TONALIGN_LIBRARY(randr, "libxcb-randr.so.0", TONALIGN_XCB_RANDR)
    TONALIGN_LIBRARY(xkb, "libxcb-xkb.so.1", TONALIGN_XCB_XKB)
    TONALIGN_LIBRARY(xkbcommon, "libxkbcommon.so.0", TONALIGN_XKBCOMMON)
    TONALIGN_LIBRARY(xkbcommonX11, "libxkbcommon-x11.so.0", TONALIGN_XKBCOMMON_X11)
    TONALIGN_OPTIONAL_LIBRARY(cursor, TONALIGN_XCB_CURSOR)
    TONALIGN_OPTIONAL_LIBRARY(render, TONALIGN_XCB_RENDER)
#undef TONALIGN_OPTIONAL_LIBRARY
#undef TONALIGN_LIBRARY
#undef TONALIGN_REQUIRE
#undef TONALIGN_FIND

    xcb_shm_id = shm.FindData<xcb_extension_t>("xcb_shm_id");
    xcb_randr_id = randr.FindData<xcb_extension_t>("xcb_randr_id");
    xcb_render_id = render.FindData<xcb_extension_t>("xcb_render_id");
}
