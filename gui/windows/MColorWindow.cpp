// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/windows/MColorWindow.h"

#include "gui/windows/ColorSwatch.h"
#include "gui/windows/OwnedWindow.h"

namespace
{
constexpr double WidthUnits = 288 - 28;
constexpr double EditorUnits = 176;
constexpr double GapUnits = 8;
constexpr double ComparisonUnits = 22;
}   // namespace

/// The colour before at the left, the new one at the right. A press on the left one brings it back.
class MColorWindow::Comparison : public MControl
{
public:
    Comparison(MColorEditor& shownEditor, MColor colorBefore) : editor(shownEditor), before(colorBefore) {}

    void Paint(MDrawer& drawer) override
    {
        const MRectangle area = OwnRectangle();
        const std::int32_t middle = area.Width() / 2;
        PaintColorSwatch(drawer, *Style(), { 0, 0, middle, area.bottom }, before);
        PaintColorSwatch(drawer, *Style(), { middle, 0, area.right, area.bottom }, editor.Color());
    }

    bool OnEvent(const MControlEvent& event) override
    {
        if (event.code != MEventCode::LeftDown || event.x >= Width() / 2)
            return MControl::OnEvent(event);
        editor.SetColor(before);
        Invalidate();
        return true;
    }

private:
    MColorEditor& editor;
    MColor before;
};

MColorWindow::MColorWindow(const MString& title, MColor before, MColor usual)
    : MDialog(title.IsEmpty() ? MString("Colour") : title), usualColor(usual)
{
    editor = &Content().Make<MColorEditor>();
    editor->SetColor(before);
    editor->OnColor().AddHandler<&MColorWindow::OnColor>(*this);
    comparison = &Content().Make<Comparison>(*editor, before);
    comparison->help = "The colour before, and the new one. A click on the left one brings it back.";
    AddButton("OK", MModalValue::Ok);
    AddButton("Cancel", MModalValue::Cancel);
    AddButton("Default", MModalValue::None);
}

void MColorWindow::Realize()
{
    if (Style() == nullptr || !Layouts().empty())
        return;
    MDialog::Realize();
    const MStyle& style = *Style();
    const std::int32_t width = style.Pixels(WidthUnits);
    const std::int32_t high = style.Pixels(EditorUnits);
    const std::int32_t top = high + style.Pixels(GapUnits);
    editor->SetSize(width, high);
    comparison->SetPosition(0, top);
    comparison->SetSize(width, style.Pixels(ComparisonUnits));
    Content().SetMinimalClientSize({ width, top + style.Pixels(ComparisonUnits) });
}

void MColorWindow::OnOpened()
{
    editor->SetFocus();
}

void MColorWindow::OnColor(const MOnNotifyParams&)
{
    comparison->Invalidate();
}

bool MColorWindow::Accept(MModalValue result)
{
    if (result != MModalValue::None)
        return true;
    editor->SetColor(usualColor);
    comparison->Invalidate();
    return false;
}

void MColorWindow::Ask(MWindow& owner, const MString& title, MColor before, MColor usual,
                       std::function<void(MColor)> then)
{
    OwnedWindow::Open(std::make_unique<MColorWindow>(title, before, usual), owner,
                      [then = std::move(then)](MWindow& asked, std::int32_t result)
                      {
                          if (static_cast<MModalValue>(result) == MModalValue::Ok)
                              then(static_cast<MColorWindow&>(asked).Color());
                      });
}
