// SPDX-License-Identifier: GPL-3.0-or-later
// make_presets DESCRIPTION OUTPUT: makes the file of factory presets. OUTPUT is kept in the repository.
// make_presets --vst3 FOLDER: writes the presets that are inside the module as preset files for VST 3 hosts.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

#include "foundation/text/MException.h"
#include "foundation/text/PathText.h"
#include "state/tree/XML.h"
#include "tools/presets/FactoryPresets.h"
#include "tools/presets/HostPresets.h"

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 3)
    {
        std::fputs("usage: make_presets DESCRIPTION OUTPUT\n       make_presets --vst3 FOLDER\n", stderr);
        return 2;
    }
    try
    {
        if (std::strcmp(arguments[1], "--vst3") == 0)
        {
            WriteVst3Presets(arguments[2]);
            return 0;
        }
        std::ifstream file(arguments[1], std::ios::binary);
        if (!file)
            throw MException("Cannot read the description.");
        const std::string text{ std::istreambuf_iterator<char>(file), {} };
        MAttribute root;
        MakeFactoryPresets(ParseFactoryPresets(text, arguments[1]), root);
        SaveXML(root, PathText(arguments[2]), true, "utf-8");
        return 0;
    }
    catch (const MException& error)
    {
        std::fprintf(stderr, "make_presets: %s\n", error.Message.ToUTF8().c_str());
        return 1;
    }
}
