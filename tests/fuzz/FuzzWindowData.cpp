// SPDX-License-Identifier: GPL-3.0-or-later
// rooms: gui/platform
// What other programs copy, drop and set: the first byte chooses how it is read.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "gui/platform/SelectionText.h"
#include "gui/platform/UriList.h"
#include "gui/platform/XcbMonitors.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1)
        return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
    switch (data[0] % 4)
    {
    case 0:
    {
        const std::vector<MString> files = FilesOfUriList(bytes);
        for (const MString& file : files)
            if (file[0] != u'/')
                std::abort();
        // A name that was read can be written, and read again.
        if (FilesOfUriList(UriListOf(files)) != files)
            std::abort();
        break;
    }
    case 1:
        if (TextOfUTF8Selection(bytes).Length() > static_cast<int>(bytes.size()))
            std::abort();
        break;
    case 2:
    {
        const MString text = TextOfLatinSelection(bytes);
        if (!(TextOfLatinSelection(LatinOf(text)) == text) && text.Find(u'\r') < 0)
            std::abort();
        break;
    }
    default:
        if (const double scale = XcbMonitors::ScaleOfResources(std::string(bytes));
            !(scale >= 0.5 && scale <= 4))
            std::abort();
        break;
    }
    return 0;
}
