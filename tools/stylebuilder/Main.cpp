// SPDX-License-Identifier: GPL-3.0-or-later
// make_style LOOK METRICS ICONS FONT OUTPUT: draws the style file of a look ("light" or "dark") in all
// scales.
#include <cstdio>

#include "foundation/streams/MSafeFileStream.h"
#include "foundation/text/MException.h"
#include "foundation/text/PathText.h"
#include "tools/stylebuilder/Faces.h"
#include "tools/stylebuilder/StyleSections.h"
#include "tools/stylebuilder/Symbols.h"

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 6)
    {
        std::fputs("usage: make_style light|dark METRICS ICONS FONT OUTPUT\n", stderr);
        return 2;
    }
    try
    {
        const Theme theme(arguments[2], arguments[1]);
        const std::vector<PathDrawing> drawings = ReadPathDrawings(arguments[3]);
        MStdFileStream fontFile(PathText(arguments[4]), MStdFileStream::ReadAccess);
        const std::shared_ptr<FontFace> bold = FontFace::Read(fontFile);
        StyleImages images;
        for (const int percent : StyleScalePercents)
        {
            const StyleScale scale{ percent };
            AddFaces(images, theme, scale);
            AddParts(images, theme, scale);
            AddIcons(images, drawings, scale);
            AddPictures(images, drawings, scale);
            AddPoints(images, theme, scale, bold);
        }
        AddCursors(images, drawings);
        MAttribute definition("style");
        MakeDefinition(definition, theme, drawings);
        const std::string block = images.Block(definition);
        MSafeFileStream target(PathText(arguments[5]));
        target.Write(block.data(), static_cast<std::int32_t>(block.size()));
        target.Commit();
        return 0;
    }
    catch (const MException& error)
    {
        std::fprintf(stderr, "make_style: %s\n", error.Message.ToUTF8().c_str());
        return 1;
    }
}
