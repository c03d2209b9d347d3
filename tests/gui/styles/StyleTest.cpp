// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdlib>

#include <gtest/gtest.h>

#include "foundation/streams/MStdFileStream.h"
#include "gui/painting/ImageFiles.h"
#include "gui/styles/MTexturedStyle.h"
#include "resources/RegisterResources.h"
#include "tests/gui/styles/PartsSheet.h"

TEST(Sheet, X)
{
    StartModuleWithResources();
    for (const char* look : { "light", "dark" })
        for (const int percent : { 100, 125, 150, 200, 300 })
        {
            MTexturedStyle style;
            MAttribute configuration;
            configuration.SetAttribute("Style", "Default (" + MString(look) + ")");
            configuration.SetAttribute("ResizeX", MString::FromDouble(percent / 100.0));
            configuration.SetAttribute("ResizeY", MString::FromDouble(percent / 100.0));
    try { style.Apply(configuration); } catch (const MException& e) { FAIL() << e.Message.ToUTF8(); }
            const MBitmap sheet = PaintPartsSheet(style);
            MStdFileStream file("/tmp/style-" + MString(look) + "-" + MString::FromInt(percent) + ".png",
                                MStdFileStream::CreateFile | MStdFileStream::WriteAccess);
            ImageFiles::SavePNG(sheet, file);
        }
}
