// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

#include "gui/painting/FontFace.h"

/// The fonts that the system has, for characters that ours lack. Thread: GUI.
class SystemFonts
{
public:
    static SystemFonts& Get();

    /// Makes the list anew from the system's folder of fonts; one that can't be read gives an empty list.
    void Scan();
    const std::vector<MString>& Paths();
    /// The first of Roboto, Noto Sans and DejaVu Sans that has the character; null if none does.
    const FontFace* FaceFor(char32_t character);

private:
    void ScanFolder(const MString& folder, int depth);

    struct Fallback
    {
        const char* fileStart;
        bool tried = false;
        std::shared_ptr<FontFace> face{};
    };

    bool scanned = false;
    std::vector<MString> paths;
    Fallback fallbacks[3] = { { "Roboto-Regular." }, { "NotoSans-Regular." }, { "DejaVuSans." } };
};
