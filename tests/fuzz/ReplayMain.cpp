// SPDX-License-Identifier: GPL-3.0-or-later
// Runs a fuzz target over every file of the folders given, so that what a fuzzer once found is tested
// in every build.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argumentCount, char** arguments)
{
    int fileCount = 0;
    for (int index = 1; index < argumentCount; ++index)
        for (const auto& entry : std::filesystem::recursive_directory_iterator(arguments[index]))
        {
            if (!entry.is_regular_file())
                continue;
            std::ifstream file(entry.path(), std::ios::binary);
            const std::vector<char> bytes{ std::istreambuf_iterator<char>(file), {} };
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            ++fileCount;
        }
    std::printf("%d files replayed\n", fileCount);
    return fileCount > 0 ? 0 : 1;   // an empty corpus would be a test that can't fail
}
