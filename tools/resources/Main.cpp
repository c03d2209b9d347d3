// SPDX-License-Identifier: GPL-3.0-or-later
// make_resources DESCRIPTION OUTPUT [BUILT]: makes the block of a description. An OUTPUT that ends in ".cpp"
// gets source to be compiled, any other the block itself, as a module finds it beside itself (.qrf).
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "foundation/streams/MSafeFileStream.h"
#include "foundation/text/MException.h"
#include "foundation/text/PathText.h"
#include "tools/resources/ResourceBlock.h"

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 3 && argumentCount != 4)
    {
        std::fputs("usage: make_resources DESCRIPTION OUTPUT [BUILT]\n", stderr);
        return 2;
    }
    const std::string description = arguments[1];
    const std::string output = arguments[2];
    try
    {
        std::ifstream file(description, std::ios::binary);
        if (!file)
            throw MException("Cannot read the description.");
        const std::string text{ std::istreambuf_iterator<char>(file), {} };
        const std::string folder = std::filesystem::absolute(description).parent_path().string();
        const std::string block = MakeResourceBlock(ParseResourceLines(text, description), folder,
                                                    argumentCount == 4 ? arguments[3] : "");
        const std::string content = output.ends_with(".cpp") ? MakeResourceSource(block) : block;
        MSafeFileStream target(PathText(output));
        target.Write(content.data(), static_cast<std::int32_t>(content.size()));
        target.Commit();
        return 0;
    }
    catch (const MException& error)
    {
        std::fprintf(stderr, "make_resources: %s\n", error.Message.ToUTF8().c_str());
        return 1;
    }
}
