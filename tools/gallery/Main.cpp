// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdio>
#include <filesystem>

#include <CLI/CLI.hpp>

#include "foundation/streams/MStdFileStream.h"
#include "foundation/text/MException.h"
#include "gui/controls/MWindows.h"
#include "gui/painting/ImageFiles.h"
#include "gui/platform/HeadlessWindowSystem.h"
#include "gui/platform/XcbWindowSystem.h"
#include "tools/gallery/Gallery.h"
#include "tools/gallery/GalleryWindow.h"

namespace
{
struct Options
{
    std::string folder = GALLERY_PAGES;
    std::string pictures;
    std::string page = "parts";
    std::vector<std::string> looks{ "light", "dark" };
    std::vector<int> scales{ 100 };
};

/// Each page in each style and scale, as "page-dark-200.png".
void WritePictures(const Gallery& gallery, const Options& options)
{
    auto system = std::make_unique<HeadlessWindowSystem>(MSize{ 16384, 16384 });
    HeadlessWindowSystem& screen = *system;
    MWindows windows(std::move(system));
    std::filesystem::create_directories(options.pictures);
    for (const std::string& look : options.looks)
        for (const int scale : options.scales)
        {
            windows.SetStyle(Gallery::MakeStyle(look, scale / 100.0));
            const auto write = [&](const std::string& name, MWindow& window)
            {
                window.Open(MWindowSystem::Kind::Normal);
                std::string fileName = name;
                fileName.append("-").append(look).append("-").append(std::to_string(scale)).append(".png");
                const std::filesystem::path file = std::filesystem::path(options.pictures) / fileName;
                MStdFileStream stream(MString::FromUTF8(file.string()),
                                      MStdFileStream::WriteAccess | MStdFileStream::CreateFile);
                ImageFiles::SavePNG(screen.Look(window), stream);
                std::printf("%s\n", file.c_str());
            };
            for (const Gallery::Page& page : gallery.Pages())
            {
                const auto window = Gallery::MakeWindow(page);
                const auto graphs = Gallery::MakeGraphs(*window);
                write(page.name, *window);
            }
            for (const auto& [name, window] : Gallery::MakeDialogs())
                write(name, *window);
        }
}
/// Until the window is closed.
void RunWindow(const Gallery& gallery, const Options& options)
{
    MWindows windows(std::make_unique<XcbWindowSystem>());
    windows.Platform().Initialize();
    GalleryWindow window(gallery);
    std::int32_t page = 0;
    for (std::size_t i = 0; i < gallery.Pages().size(); ++i)
        if (gallery.Pages()[i].name == options.page)
            page = static_cast<std::int32_t>(i);
    window.Show(page, options.looks.front(), options.scales.front());
    window.movesToScreenCentre = true;
    window.Open(MWindowSystem::Kind::Normal);
    while (window.IsOpen() && windows.Platform().WaitForMessages(-1))
    {
    }
}
}   // namespace

int main(int argc, char** argv)
{
    CLI::App program("Shows every control of the toolkit in every state.");
    Options options;
    program.add_option("--pages", options.folder, "folder with the pages, as layout documents");
    program.add_option("--png", options.pictures, "write each page as a picture into this folder");
    program.add_option("--style", options.looks, "light, dark")->check(CLI::IsMember({ "light", "dark" }));
    program.add_option("--scale", options.scales, "percent, 100 to 300")->check(CLI::Range(100, 300));
    program.add_option("--page", options.page, "that the window begins with");
    CLI11_PARSE(program, argc, argv);
    try
    {
        const Gallery gallery(options.folder);
        if (options.pictures.empty())
            RunWindow(gallery, options);
        else
            WritePictures(gallery, options);
    }
    catch (const MException& failure)
    {
        std::fprintf(stderr, "gallery: %s\n", failure.Message.ToUTF8().c_str());
        return 1;
    }
    catch (const std::filesystem::filesystem_error& failure)
    {
        std::fprintf(stderr, "gallery: %s: %s\n", failure.path1().c_str(), failure.code().message().c_str());
        return 1;
    }
    return 0;
}
