// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/windows/MHelpWindow.h"

#include <algorithm>

#include "foundation/text/MStringFormat.h"

namespace
{
constexpr double WidthUnits = 360;
constexpr double LeastHeightUnits = 120;
constexpr double HeightUnits = 320;
constexpr double BarUnits = 10;
constexpr double LineUnits = 15;
}   // namespace

MHelpWindow::MHelpWindow() : MDialog("Help")
{
    view = &Content().Make<MControl>();
    view->controlType = MControlType::NoBackground;
    text = &view->Make<MStaticMultiLine>();
    bar = &Content().Make<MScrollBar>();
    bar->OnScroll().AddHandler<&MHelpWindow::OnScroll>(*this);
    resizableX = resizableY = true;
    resizeBorder = 4;
}

void MHelpWindow::SetHelp(const MString& name, const MString& markup)
{
    if (!name.IsEmpty())
        caption = name;
    text->SetText(markup);
    if (Style() == nullptr)
        return;
    Content().SetMinimalClientSize({ Style()->Pixels(WidthUnits / 2), Style()->Pixels(LeastHeightUnits) });
    SetSize(Style()->Pixels(WidthUnits), Style()->Pixels(HeightUnits));
}

void MHelpWindow::OnPlaced()
{
    MDialog::OnPlaced();
    if (Style() == nullptr)
        return;
    const std::int32_t wide = Style()->Pixels(BarUnits);
    const std::int32_t width = std::max(0, Content().Width() - wide);
    const std::int32_t height = text->HeightAt(width);
    view->SetPosition(0, 0);
    view->SetSize(width, Content().Height());
    text->SetSize(width, height);
    bar->line = Style()->Pixels(LineUnits);
    bar->SetRange(height, Content().Height());
    bar->SetPosition(width, 0);
    bar->SetSize(wide, Content().Height());
    bar->SetVisible(bar->IsNeeded());
    view->SetScroll(0, -bar->First());
}

void MHelpWindow::OnScroll(const MOnNotifyParams&)
{
    view->SetScroll(0, -bar->First());
}

bool MHelpWindow::OnEvent(const MControlEvent& event)
{
    if (event.code == MEventCode::Wheel)
        return bar->OnEvent(event);
    if (event.code == MEventCode::KeyDown)
    {
        const std::int32_t line = bar->line;
        const std::int32_t page = std::max(line, Content().Height() - line);
        const std::pair<std::int32_t, std::int32_t> ways[] = {
            { MKey::Up, -line },      { MKey::Down, line },         { MKey::PageUp, -page },
            { MKey::PageDown, page }, { MKey::Home, -bar->Last() }, { MKey::End, bar->Last() },
        };
        for (const auto& [key, way] : ways)
            if (event.key == key)
            {
                bar->ScrollBy(way);
                return true;
            }
    }
    return MDialog::OnEvent(event);
}
