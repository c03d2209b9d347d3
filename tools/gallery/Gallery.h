// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "gui/controls/MStyle.h"
#include "gui/windows/MStandardWindow.h"

/// The pages of the gallery: layout documents in a folder.
class Gallery
{
public:
    /// Throws MException for a folder without pages.
    explicit Gallery(const std::filesystem::path& folder);

    struct Page
    {
        std::string name;
        std::filesystem::path file;
    };
    const std::vector<Page>& Pages() const { return pages; }

    /// One of the module's styles at a scale of 1 to 3. Throws MException.
    static std::unique_ptr<MStyle> MakeStyle(const std::string& look, double scale);
    /// The windows that aren't documents, by name, not yet open.
    static std::vector<std::pair<std::string, std::unique_ptr<MWindow>>> MakeDialogs();
    /// A window with a page, not yet open. Throws MException for a document that can't be read.
    static std::unique_ptr<MStandardWindow> MakeWindow(const Page& page);

private:
    std::vector<Page> pages;
};
