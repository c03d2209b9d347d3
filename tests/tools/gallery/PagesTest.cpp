// SPDX-License-Identifier: GPL-3.0-or-later
// The gallery's pages: they look as they did, nothing is cut at any scale, and all of it can be worked.
#include <cmath>
#include <cstdlib>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/streams/MStdFileStream.h"
#include "gui/controls/MWindows.h"
#include "gui/painting/ImageFiles.h"
#include "gui/platform/HeadlessWindowSystem.h"
#include "gui/widgets/MButton.h"
#include "gui/widgets/MStatic.h"
#include "gui/widgets/MTabSet.h"
#include "tools/gallery/Gallery.h"

namespace
{
namespace fs = std::filesystem;

const fs::path& Source()
{
    static const fs::path folder(std::getenv("TONALIGN_SOURCE_DIR"));
    return folder;
}

const Gallery& Pages()
{
    static const Gallery gallery(Source() / "tools/gallery/pages");
    return gallery;
}

class GalleryPages : public ::testing::Test
{
protected:
    GalleryPages() : windows(std::make_unique<HeadlessWindowSystem>(MSize{ 8000, 8000 }))
    {
        Pages();
        screen = static_cast<HeadlessWindowSystem*>(&windows.Platform());
    }

    MWindows windows;
    HeadlessWindowSystem* screen;
};

/// The picture in squares of so many pixels, each as its mean: letters of another rasterizer look the same.
struct Coarse
{
    explicit Coarse(const MBitmap& picture)
    {
        for (std::int32_t y = 0; y + Square <= picture.Height(); y += Square)
            for (std::int32_t x = 0; x + Square <= picture.Width(); x += Square)
            {
                int red = 0;
                int green = 0;
                int blue = 0;
                for (std::int32_t i = 0; i < Square * Square; ++i)
                {
                    const MColor color = picture.Pixel(x + i % Square, y + i / Square);
                    red += color.Red();
                    green += color.Green();
                    blue += color.Blue();
                }
                for (const int each : { red, green, blue })
                    means.push_back(each / (Square * Square));
            }
    }
    static constexpr std::int32_t Square = 8;
    std::vector<int> means;
};

void Each(MControl& control, const std::function<void(MControl&)>& visit)
{
    visit(control);
    for (const auto& child : control.Children())
        if (child->IsVisible())
            Each(*child, visit);
}
}   // namespace

TEST_F(GalleryPages, LookAsTheyDid)
{
    // To make them anew: TONALIGN_WRITE_REFERENCES=1, and look at what has changed.
    const bool writes = std::getenv("TONALIGN_WRITE_REFERENCES") != nullptr;
    for (const char* look : { "light", "dark" })
    {
        windows.SetStyle(Gallery::MakeStyle(look, 1));
        for (const Gallery::Page& page : Pages().Pages())
        {
            const auto window = Gallery::MakeWindow(page);
            window->Open(MWindowSystem::Kind::Normal);
            const MBitmap& picture = screen->Look(*window);
            const fs::path file =
                Source() / "tests/tools/gallery/reference" / (page.name + "-" + look + ".png");
            if (writes)
            {
                MStdFileStream stream(MString::FromUTF8(file.string()),
                                      MStdFileStream::WriteAccess | MStdFileStream::CreateFile);
                ImageFiles::SavePNG(picture, stream);
            }
            MBitmap reference;
            MStdFileStream stream(MString::FromUTF8(file.string()), MStdFileStream::ReadAccess);
            ImageFiles::LoadPNG(reference, stream);
            ASSERT_EQ(picture.Width(), reference.Width()) << file;
            ASSERT_EQ(picture.Height(), reference.Height()) << file;
            const Coarse now(picture);
            const Coarse then(reference);
            double sum = 0;
            int worst = 0;
            for (std::size_t i = 0; i < now.means.size(); ++i)
            {
                const int difference = std::abs(now.means[i] - then.means[i]);
                sum += difference;
                worst = std::max(worst, difference);
            }
            EXPECT_LT(sum / static_cast<double>(now.means.size()), 0.5) << file;
            EXPECT_LT(worst, 24) << file;
        }
    }
}

TEST_F(GalleryPages, ShowEveryTextWholeAtEveryScaleAndInLongerLanguages)
{
    for (const double scale : { 1.0, 1.25, 1.5, 2.0, 2.5, 3.0 })
    {
        windows.SetStyle(Gallery::MakeStyle("light", scale));
        for (const bool longer : { false, true })
            for (const Gallery::Page& page : Pages().Pages())
            {
                if (page.name == "parts" && longer)
                    continue;   // its controls stand where they are told
                const auto window = Gallery::MakeWindow(page);
                Each(*window,
                     [longer](MControl& control)
                     {
                         if (!longer || control.caption.IsEmpty())
                             return;
                         for (int i = control.caption.Length() * 2 / 5; i >= 0; --i)
                             control.caption.Append(u'n');
                     });
                window->Open(MWindowSystem::Kind::Normal);
                screen->Look(*window);
                Each(*window,
                     [&](MControl& control)
                     {
                         const MString where = control.caption + " on " + MString::FromUTF8(page.name);
                         if (dynamic_cast<MStatic*>(&control) != nullptr)
                         {
                             EXPECT_GE(control.Width() + 1,
                                       control.Style()->GetFont(control.font).Width(control.caption))
                                 << where.ToUTF8() << " at " << scale;
                         }
                         if (control.Parent() != nullptr && control.layout.layout != nullptr)
                         {
                             EXPECT_EQ(control.VisibleRectangle(), control.OwnRectangle())
                                 << where.ToUTF8() << " at " << scale;
                         }
                     });
            }
    }
}

TEST_F(GalleryPages, AreReachedAndWorkedByKeyboardAlone)
{
    windows.SetStyle(Gallery::MakeStyle("dark", 1));
    for (const Gallery::Page& page : Pages().Pages())
    {
        const auto window = Gallery::MakeWindow(page);
        window->Open(MWindowSystem::Kind::Normal);
        std::vector<MControl*> stops;
        Each(*window,
             [&stops](MControl& control)
             {
                 if (control.tabStop && control.IsUsable())
                     stops.push_back(&control);
             });
        ASSERT_GT(stops.size(), 8u);
        for (MControl* expected : stops)
        {
            screen->Key(*window, MKey::Tab);
            ASSERT_EQ(window->FocusOwner(), expected) << page.name;
            EXPECT_TRUE(window->ShowsFocusRing());
            // The ring can be seen, at the upper edge or, at the window's edge, at the lower one.
            const MRectangle place = expected->AbsoluteRectangle();
            const std::int32_t reach = windows.Style()->FocusRingReach();
            const std::int32_t x = place.left + place.Width() / 2;
            const std::int32_t y = place.top >= reach ? place.top - reach + 1 : place.bottom + reach - 1;
            const MColor ring = screen->Look(*window).Pixel(x, y);
            window->SetFocusOwner(nullptr);
            EXPECT_NE(ring, screen->Look(*window).Pixel(x, y)) << page.name << " " << x << "," << y;
            expected->SetFocus();
        }
        screen->Key(*window, MKey::Tab);
        EXPECT_EQ(window->FocusOwner(), stops.front()) << "and round again";
    }
}
