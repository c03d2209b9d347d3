// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/gallery/Gallery.h"

#include <algorithm>

#include "foundation/text/MException.h"
#include "gui/loader/MXmlLoader.h"
#include "gui/styles/MTexturedStyle.h"
#include "gui/widgets/RegisterWidgets.h"
#include "gui/windows/MMessageWindow.h"
#include "gui/windows/MProgressWindow.h"
#include "gui/windows/MTextInputWindow.h"
#include "resources/RegisterResources.h"
#include "state/tree/XML.h"

Gallery::Gallery(const std::filesystem::path& folder)
{
    StartModuleWithResources();
    RegisterWidgets(MXmlLoader::Get());
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
    return dialogs;
}

std::unique_ptr<MStandardWindow> Gallery::MakeWindow(const Page& page)
{
    MAttribute document;
    LoadXML(document, MString::FromUTF8(page.file.string()));
    auto window = std::make_unique<MStandardWindow>();
    MXmlLoader::Get().Load(*window, document);
    return window;
}
