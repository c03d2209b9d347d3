// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

// Tests never touch the user's folders: whatever asks for them gets a fresh temporary one.
int main(int argumentCount, char** arguments)
{
    std::string folder = (std::filesystem::temp_directory_path() / "tonalign-test-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr)
        return 1;
    setenv("HOME", folder.c_str(), 1);
    setenv("XDG_DATA_HOME", (folder + "/share").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (folder + "/config").c_str(), 1);
    setenv("XDG_DATA_DIRS", (folder + "/system").c_str(), 1);
    setenv("TONALIGN_TEST_FOLDER", folder.c_str(), 1);

    ::testing::InitGoogleTest(&argumentCount, arguments);
    const int result = RUN_ALL_TESTS();
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    return result;
}
