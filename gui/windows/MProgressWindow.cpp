// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/windows/MProgressWindow.h"

#include <cmath>

#include "foundation/text/MStringFormat.h"
#include "gui/controls/MWindows.h"

namespace
{
constexpr double WidthUnits = 280 - 28;
constexpr double LineUnits = 16;
constexpr double BarTopUnits = 24;
constexpr double BarUnits = 6;
constexpr double HeightUnits = 44;
constexpr double PercentageUnits = 40;
}   // namespace

MProgressWindow::MProgressWindow(const MString& title) : MDialog(title)
{
    step = &Content().Make<MStatic>();
    step->color = MStdColor::Text;
    percentage = &Content().Make<MStatic>();
    percentage->font = MStdFont::Value;
    percentage->alignment = MPlacement::End;
    bar = &Content().Make<MProgressBar>();
    canceller = &AddButton("Cancel", MModalValue::Cancel);
    canceller->SetPrimary(false);
    SetProgress("Wait please...", 0);
}

void MProgressWindow::Realize()
{
    if (Style() == nullptr || !Layouts().empty())
        return;
    MDialog::Realize();
    const MStyle& style = *Style();
    const std::int32_t width = style.Pixels(WidthUnits);
    const std::int32_t line = style.Pixels(LineUnits);
    const std::int32_t share = style.Pixels(PercentageUnits);
    step->SetSize(width - share, line);
    percentage->SetPosition(width - share, 0);
    percentage->SetSize(share, line);
    bar->SetPosition(0, style.Pixels(BarTopUnits));
    bar->SetSize(width, style.Pixels(BarUnits));
    Content().SetMinimalClientSize({ width, style.Pixels(HeightUnits) });
}

void MProgressWindow::SetProgress(const MString& text, double share)
{
    step->SetText(text);
    const double limited = std::isfinite(share) ? std::clamp(share, 0.0, 1.0) : 0;
    percentage->SetText(Format("{0}%", static_cast<std::int32_t>(limited * 100)));
    bar->SetShare(limited);
}

void MProgressWindow::SetTitle(const MString& title)
{
    caption = title;
    Invalidate();
    if (IsOpen())
        MWindows::Get()->Platform().SetTitle(*this, title);
}

void MProgressWindow::Cancel()
{
    cancelled = true;
    canceller->caption = "Finishing...";
    canceller->SetEnabled(false);
}

bool MProgressWindow::Accept(MModalValue)
{
    Cancel();
    return false;
}

bool MProgressWindow::CanClose()
{
    Cancel();
    return false;
}
