// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/gallery/Gallery.h"

#include <algorithm>
#include <chrono>
#include <fstream>

#include "foundation/text/MException.h"
#include "foundation/text/PathText.h"
#include "gui/files/MFileDialog.h"
#include "gui/files/RegisterFileControls.h"
#include "gui/graphs/RegisterGraphs.h"
#include "gui/loader/MXmlLoader.h"
#include "gui/styles/MTexturedStyle.h"
#include "gui/widgets/RegisterWidgets.h"
#include "gui/windows/MColorWindow.h"
#include "gui/windows/MMessageWindow.h"
#include "gui/windows/MProgressWindow.h"
#include "gui/windows/MStyleWindow.h"
#include "gui/windows/MTextInputWindow.h"
#include "gui/windows/RegisterWindowControls.h"
#include "resources/RegisterResources.h"
#include "state/tree/XML.h"

namespace
{
struct Sample
{
    const char* name;
    std::uintmax_t size;
};

/// A folder with files to look at.
std::filesystem::path SampleFolder()
{
    return std::filesystem::temp_directory_path() / "tonalign-gallery" / "Sessions" / "Vocal takes";
}

void MakeSamples()
{
    const std::filesystem::path folder = SampleFolder();
    for (const char* name : { "Backings", "Bounces", "Old" })
        std::filesystem::create_directories(folder / name);
    constexpr Sample samples[] = { { "Lead take 1.wav", 48'230'000 },
                                   { "Lead take 2.wav", 51'804'100 },
                                   { "Lead take 10.wav", 9'400'000 },
                                   { "Mix to streaming reference, long and final version 3.flac",
                                     30'100'000 },
                                   { "Reference \xC3\xA4hnlich.flac", 28'900'000 },
                                   { "Room tone.wav", 912'400 },
                                   { "notes.txt", 812 } };
    auto time = std::filesystem::file_time_type::clock::now();
    for (const Sample& each : samples)
    {
        std::ofstream(folder / each.name).put('x');
        std::filesystem::resize_file(folder / each.name, each.size);   // with a hole
        std::filesystem::last_write_time(folder / each.name, time -= std::chrono::hours(31));
    }
}

FileDialogOptions SampleOptions(FileDialogOptions::Mode mode)
{
    FileDialogOptions options;
    options.mode = mode;
    options.folder = PathText(SampleFolder().native());
    options.types = { { "Audio files", "*.wav;*.flac" }, { "All files", "*" } };
    return options;
}

/// The dialogs of files, at rest and at work.
void AddFileDialogs(std::vector<std::pair<std::string, std::unique_ptr<MWindow>>>& dialogs)
{
    dialogs.emplace_back("files-open",
                         std::make_unique<MFileDialog>(SampleOptions(FileDialogOptions::Mode::OpenMany)));
    FileDialogOptions saving = SampleOptions(FileDialogOptions::Mode::Save);
    saving.title = "Save source analysis";
    saving.name = "Lead take 3.wav";
    dialogs.emplace_back("files-save", std::make_unique<MFileDialog>(saving));
    FileDialogOptions choosing = SampleOptions(FileDialogOptions::Mode::Folder);
    dialogs.emplace_back("files-folder", std::make_unique<MFileDialog>(choosing));
}
}   // namespace

Gallery::Gallery(const std::filesystem::path& folder)
{
    StartModuleWithResources();
    RegisterWidgets(MXmlLoader::Get());
    RegisterGraphs(MXmlLoader::Get());
    RegisterWindowControls(MXmlLoader::Get());
    RegisterFileControls(MXmlLoader::Get());
    MakeSamples();
    std::error_code failure;
    for (const auto& entry : std::filesystem::directory_iterator(folder, failure))
        if (entry.path().extension() == ".xml")
            pages.push_back({ entry.path().stem().string(), entry.path() });
    std::sort(pages.begin(), pages.end(), [](const Page& a, const Page& b) { return a.name < b.name; });
    if (pages.empty())
        throw MException("There are no pages in " + MString::FromUTF8(folder.string()) + ".");
}

std::unique_ptr<MStyle> Gallery::MakeStyle(const std::string& look, double scale)
{
    MAttribute configuration;
    configuration.SetAttribute("Style", MString::FromUTF8("Default (" + look + ")"));
    configuration.SetAttribute("ResizeX", MString::FromDouble(scale));
    configuration.SetAttribute("ResizeY", MString::FromDouble(scale));
    auto style = std::make_unique<MTexturedStyle>();
    style->Apply(configuration);
    return style;
}

std::vector<std::pair<std::string, std::unique_ptr<MWindow>>> Gallery::MakeDialogs()
{
    std::vector<std::pair<std::string, std::unique_ptr<MWindow>>> dialogs;
    auto message = std::make_unique<MMessageWindow>(
        MMessageWindow::Kind::Information, "Information",
        "There is nothing to equalize, because the analysis shows it is already perfect.");
    message->AddUsualButton();
    dialogs.emplace_back("message", std::move(message));
    auto error =
        std::make_unique<MMessageWindow>(MMessageWindow::Kind::Error, "Error", "Invalid source data");
    error->AddUsualButton();
    dialogs.emplace_back("error", std::move(error));
    auto question = std::make_unique<MMessageWindow>(
        MMessageWindow::Kind::Question, "Delete",
        "Are you sure you want to delete the selected presets?<p>This can't be undone.");
    question->AddYesNo();
    dialogs.emplace_back("question", std::move(question));
    auto progress = std::make_unique<MProgressWindow>("Analysing...");
    progress->SetProgress("Wait please...", 0.62);
    dialogs.emplace_back("progress", std::move(progress));
    dialogs.emplace_back("input",
                         std::make_unique<MTextInputWindow>("New folder", "Name of the folder:", "Vocals"));
    AddFileDialogs(dialogs);
    dialogs.emplace_back("color", std::make_unique<MColorWindow>("Accent", MColor(0xE7, 0xDE, 0x81, 0xDC),
                                                                 MColor(0xE7, 0xDE, 0x81, 0xDC)));
    dialogs.emplace_back("style", std::make_unique<MStyleWindow>(nullptr));
    return dialogs;
}

std::unique_ptr<DemoGraphs> Gallery::MakeGraphs(MControl& page)
{
    auto graphs = std::make_unique<DemoGraphs>();
    graphs->Attach(page);
    return graphs;
}

std::unique_ptr<MStandardWindow> Gallery::MakeWindow(const Page& page)
{
    MAttribute document;
    LoadXML(document, MString::FromUTF8(page.file.string()));
    auto window = std::make_unique<MStandardWindow>();
    MXmlLoader::Get().Load(*window, document);
    return window;
}
