// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/gallery/GalleryWindow.h"

#include <algorithm>

#include "control/values/MValueList.h"
#include "foundation/text/MException.h"
#include "gui/controls/MLayoutClient.h"
#include "gui/controls/MLayoutSide.h"
#include "gui/controls/MPanel.h"
#include "gui/controls/MWindows.h"
#include "gui/loader/MXmlLoader.h"
#include "gui/styles/MBaseStyle.h"
#include "gui/styles/StyleCursors.h"
#include "gui/widgets/MButton.h"
#include "gui/widgets/MStaticMultiLine.h"
#include "state/tree/XML.h"

namespace
{
constexpr const char* Looks[] = { "light", "dark" };
constexpr const char* Scales[] = { "100 %", "125 %", "150 %", "200 %", "250 %", "300 %" };
constexpr int Percents[] = { 100, 125, 150, 200, 250, 300 };
constexpr std::int32_t WatchMilliseconds = 1000;

std::filesystem::file_time_type TimeOf(const std::filesystem::path& file)
{
    std::error_code failure;
    return std::filesystem::last_write_time(file, failure);
}
}   // namespace

GalleryWindow::GalleryWindow(const Gallery& shownGallery) : gallery(shownGallery), watcher(*this)
{
    caption = "Gallery";
    resizableX = resizableY = true;
    for (const Gallery::Page& each : gallery.Pages())
        pageNames.push_back(each.name.c_str());
    pageValue =
        std::make_unique<MValueTableList>(&page, pageNames.data(), static_cast<int>(pageNames.size()));
    lookValue = std::make_unique<MValueTableList>(&look, Looks, static_cast<int>(std::size(Looks)));
    scaleValue = std::make_unique<MValueTableList>(&scale, Scales, static_cast<int>(std::size(Scales)));
    reload.AddHandler<&GalleryWindow::OnReload>(*this);
}

void GalleryWindow::Show(std::int32_t shownPage, const std::string& shownLook, int percent)
{
    page.Set(shownPage);
    look.Set(shownLook == Looks[1] ? 1 : 0);
    scale.Set(static_cast<int>(std::find(std::begin(Percents), std::end(Percents), percent) -
                               std::begin(Percents)) %
              static_cast<int>(std::size(Percents)));
    Rebuild();
}

void GalleryWindow::Rebuild()
{
    MWindows::Get()->SetStyle(Gallery::MakeStyle(Looks[look.Get()], Percents[scale.Get()] / 100.0));
    if (const auto* drawn = dynamic_cast<const MBaseStyle*>(Style()))
        GiveCursors(*drawn, MWindows::Get()->Platform());
    RemoveContent();
    SetSize(0, 0);
    const MStyle& style = *Style();
    MControl& header = Make<MContainer>();
    MLayout& above = MakeLayout<MLayoutTop>();
    header.layout.x.ratio = 1;
    above.AddControl(header);
    MLayout& row = header.MakeLayout<MLayoutHorizontal>();
    for (MValue* each : { pageValue.get(), lookValue.get(), scaleValue.get() })
    {
        auto& chooser = header.Make<MSwitcher>();
        chooser.SetValue(each);
        chooser.segments = each == lookValue.get();
        chooser.SetSize(style.Pixels(110), style.GetDefaultSize(MControlType::Switcher).height);
        chooser.layout.y.border = chooser.layout.x.border = style.Pixels(4);
        chooser.OnValueChange().AddHandler<&GalleryWindow::OnChoice>(*this);
        row.AddControl(chooser);
    }
    MakeDialogButtons(header);
    LoadPage();
    Relayout();
    Invalidate();
}

void GalleryWindow::MakeDialogButtons(MControl& header)
{
    dialogs = Gallery::MakeDialogs();
    for (const auto& [name, window] : dialogs)
    {
        auto& button = header.Make<MButton>();
        button.caption = MString::FromUTF8(name);
        button.id = button.caption;
        button.help = "Opens the window.";
        button.Clicks().OnLeftClick().AddHandler<&GalleryWindow::OnDialog>(*this);
        header.Layouts().front()->AddControl(button);
    }
}

void GalleryWindow::LoadPage()
{
    const Gallery::Page& shown = gallery.Pages()[static_cast<std::size_t>(page.Get())];
    written = TimeOf(shown.file);
    MControl& content = Make<MContainer>();
    MLayout& rest = MakeLayout<MLayoutVertical>();
    content.layout.x.ratio = content.layout.y.ratio = 1;
    rest.AddControl(content);
    try
    {
        MAttribute document;
        LoadXML(document, MString::FromUTF8(shown.file.string()));
        MXmlLoader::Get().Load(content, document);
        content.SetMinimalClientSize({ content.Width(), content.Height() });
        graphs = Gallery::MakeGraphs(content);
    }
    catch (const MException& failure)
    {
        // The window stays, so that the document can be mended beside it.
        auto& text = content.Make<MStaticMultiLine>();
        text.SetPlainText(failure.Message);
        text.SetPosition(Style()->Pixels(16), Style()->Pixels(16));
        text.SetSize(Style()->Pixels(400), Style()->Pixels(60));
        content.SetMinimalClientSize({ Style()->Pixels(440), Style()->Pixels(100) });
    }
}

void GalleryWindow::OnChoice(const MOnValueChangeParams& params)
{
    if (params.phase == MOnValueChangeParams::Phase::End)
        reload.Post(GlobalEventProcessor(), {});
}

void GalleryWindow::OnReload(const MOnNotifyParams&)
{
    Rebuild();
}

void GalleryWindow::OnDialog(const MOnControlClickParams& params)
{
    for (const auto& [name, window] : dialogs)
        if (params.control->id == MString::FromUTF8(name) && !window->IsOpen())
            window->OpenModal(this);
}

void GalleryWindow::OnOpened()
{
    SetTimer(watcher, WatchMilliseconds);
    if (const MBitmap* icon = Style()->GetBitmap(MStdBitmap::Icon))
        MWindows::Get()->Platform().SetIcon(*this, *icon);
}

void GalleryWindow::Watcher::OnTimer()
{
    const Gallery::Page& shown = owner.gallery.Pages()[static_cast<std::size_t>(owner.page.Get())];
    if (TimeOf(shown.file) != owner.written)
        owner.Rebuild();
}
