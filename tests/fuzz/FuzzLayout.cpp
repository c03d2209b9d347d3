// SPDX-License-Identifier: GPL-3.0-or-later
// rooms: gui/loader gui/widgets gui/platform
// Layout documents from anywhere: loaded, laid out in three sizes, painted, clicked and typed into.
#include <cstdint>
#include <memory>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/text/MException.h"
#include "gui/controls/MWindows.h"
#include "gui/loader/MXmlLoader.h"
#include "gui/platform/HeadlessWindowSystem.h"
#include "gui/widgets/RegisterWidgets.h"
#include "state/tree/XML.h"
#include "tests/gui/PlainStyle.h"

namespace
{
constexpr std::int32_t LargestPage = 2000;   // pixels; beyond it, only painting takes longer

struct Screen
{
    Screen() : windows(std::make_unique<HeadlessWindowSystem>())
    {
        windows.SetStyle(std::make_unique<PlainStyle>());
        RegisterWidgets(MXmlLoader::Get());
    }
    HeadlessWindowSystem& System() { return static_cast<HeadlessWindowSystem&>(windows.Platform()); }

    MWindows windows;
};

void Use(MWindow& window, HeadlessWindowSystem& screen, std::uint8_t where)
{
    for (const std::int32_t size : { 1, 90, 600 })
    {
        screen.Resize(window, size, size);
        if (window.Width() > LargestPage || window.Height() > LargestPage)
            return;
        screen.Look(window);
        screen.Click(window, where % size, (where * 7) % size, where % 3);
        screen.DoubleClick(window, (where * 3) % size, (where * 5) % size);
        screen.Wheel(window, where % size, where % size, where % 2 == 0 ? 120 : -120);
        for (const std::int32_t key :
             { MKey::Tab, MKey::Down, MKey::Enter, MKey::End, MKey::Delete, MKey::Escape })
            screen.Key(window, key);
        screen.Type(window, "1.5");
        screen.PassTime(700);
        if (!window.IsOpen())
            return;
    }
}
}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1 || size > (1u << 15))
        return 0;
    static Screen screen;
    MAttribute document;
    MWindow window;
    try
    {
        MMemoryStream stream = MMemoryStream::Borrow(data + 1, static_cast<std::int32_t>(size - 1));
        ReadXML(document, stream);
        MXmlLoader::Get().Load(window, document);
        window.Open(MWindowSystem::Kind::Normal);
    }
    catch (const MException&)
    {
        return 0;
    }
    Use(window, screen.System(), data[0]);
    return 0;
}
