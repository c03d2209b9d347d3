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

// All functions of a library, each by its own name.
class Binder
{
public:
    /// @param file  null: it may be missing
    Binder(const SharedLibrary& openedLibrary, const char* file)
        : library(openedLibrary), isRequired(file != nullptr)
    {
        Require(!isRequired || library.IsOpen(), file);
    }
    template <typename Function>
    void Bind(Function*& function, const char* name) const
    {
        function = library.Find<Function>(name);
        Require(!isRequired || function != nullptr, name);
    }

private:
    const SharedLibrary& library;
    bool isRequired;
};
}   // namespace

XcbLibraries::XcbLibraries()
{
#define TONALIGN_BIND(name) binder.Bind(name, #name);
#define TONALIGN_LIBRARY(member, file, functions)                                                            \
    {                                                                                                        \
        const Binder binder(member, file);                                                                   \
        functions(TONALIGN_BIND)                                                                             \
    }
    TONALIGN_LIBRARY(xcb, "libxcb.so.1", TONALIGN_XCB)
    TONALIGN_LIBRARY(shm, "libxcb-shm.so.0", TONALIGN_XCB_SHM)
    TONALIGN_LIBRARY(randr, "libxcb-randr.so.0", TONALIGN_XCB_RANDR)
    TONALIGN_LIBRARY(xkb, "libxcb-xkb.so.1", TONALIGN_XCB_XKB)
    TONALIGN_LIBRARY(xkbcommon, "libxkbcommon.so.0", TONALIGN_XKBCOMMON)
    TONALIGN_LIBRARY(xkbcommonX11, "libxkbcommon-x11.so.0", TONALIGN_XKBCOMMON_X11)
    TONALIGN_LIBRARY(cursor, nullptr, TONALIGN_XCB_CURSOR)
    TONALIGN_LIBRARY(render, nullptr, TONALIGN_XCB_RENDER)
#undef TONALIGN_LIBRARY
#undef TONALIGN_BIND

    xcb_shm_id = shm.FindData<xcb_extension_t>("xcb_shm_id");
    xcb_randr_id = randr.FindData<xcb_extension_t>("xcb_randr_id");
    xcb_render_id = render.FindData<xcb_extension_t>("xcb_render_id");
}
