// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "foundation/text/PathText.h"
#include "tests/gui/windows/WindowsFixture.h"

/// An empty folder for each test, and windows without a display.
class FilesOnScreen : public Windows
{
protected:
    FilesOnScreen() : folder(std::filesystem::path(std::getenv("TONALIGN_TEST_FOLDER")) / "screen")
    {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        static_cast<PlainStyle*>(windows->Style())->gap = RowHeight;
    }

    MString Path(const std::string& name = {}) const
    {
        return PathText((name.empty() ? folder : folder / name).native());
    }
    void Put(const std::string& name, std::uintmax_t size = 0, int age = 0) const
    {
        std::filesystem::create_directories((folder / name).parent_path());
        std::ofstream(folder / name).put('x');
        std::filesystem::resize_file(folder / name, size);
        std::filesystem::last_write_time(folder / name, std::filesystem::file_time_type::clock::now() -
                                                            std::chrono::hours(age));
    }
    void PutFolder(const std::string& name) const { std::filesystem::create_directories(folder / name); }

    static constexpr std::int32_t RowHeight = 24;

    std::filesystem::path folder;
};
