// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/SystemFonts.h"

#include "foundation/streams/MFile.h"
#include "foundation/streams/MStdFileStream.h"
#include "foundation/text/Boundary.h"

SystemFonts& SystemFonts::Get()
{
    static SystemFonts only;
    return only;
}

void SystemFonts::Scan()
{
    paths.clear();
    scanned = true;
    for (Fallback& fallback : fallbacks)
        fallback = { fallback.fileStart };
    AtBoundary("MFont::ReScanSystemFonts", [this] { ScanFolder(MFile::GetSpecialFolder(MFile::Fonts), 0); });
}

void SystemFonts::ScanFolder(const MString& folder, int depth)
{
    constexpr int deepest = 8;   // of folders; links may go round
    for (MFileIterator each(folder, {}, MFileIterator::Directories); !each.IsEnd(); each.Next())
    {
        const MString path = folder + MString("/") + each.Name();
        if (each.IsDirectory())
        {
            if (depth < deepest)
                AtBoundary("MFont::ReScanSystemFonts", [&] { ScanFolder(path, depth + 1); });
            continue;
        }
        for (const char* ending : { ".ttf", ".otf", ".ttc", ".pfb" })
        {
            const MString text = MString::Literal(ending);
            const int start = path.Length() - text.Length();
            if (path.SubString(start, text.Length()).EqualsNoCase(text))
                paths.push_back(path);
        }
    }
}

const std::vector<MString>& SystemFonts::Paths()
{
    if (!scanned)
        Scan();
    return paths;
}

const FontFace* SystemFonts::FaceFor(char32_t character)
{
    for (Fallback& fallback : fallbacks)
    {
        if (!fallback.tried)
        {
            fallback.tried = true;
            const MString start = MString("/") + MString::Literal(fallback.fileStart);
            for (const MString& path : Paths())
                if (!fallback.face && path.Find(start) >= 0)
                    AtBoundary("MFont::Load",
                               [&]
                               {
                                   MStdFileStream file(path, MStdFileStream::ReadAccess);
                                   fallback.face = FontFace::Read(file);
                               });
        }
        if (fallback.face && fallback.face->GlyphOf(character) != 0)
            return fallback.face.get();
    }
    return nullptr;
}
