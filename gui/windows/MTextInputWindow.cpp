// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/windows/MTextInputWindow.h"

#include "gui/windows/OwnedWindow.h"

namespace
{
constexpr double WidthUnits = 280 - 28;
constexpr double LineUnits = 16;
constexpr double EditTopUnits = 20;
constexpr double EditUnits = 22;
constexpr double ComplaintTopUnits = 46;
}   // namespace

MTextInputWindow::MTextInputWindow(const MString& title, const MString& question, const MString& suggestion)
    : MDialog(title)
{
    label = &Content().Make<MStatic>();
    label->caption = question;
    edit = &Content().Make<MEdit>();
    edit->font = MStdFont::Control;
    edit->SetText(suggestion);
    edit->SelectAll();
    complaint = &Content().Make<MStatic>();
    complaint->color = MStdColor::Danger;
    AddButton("OK", MModalValue::Ok);
    AddButton("Cancel", MModalValue::Cancel);
}

void MTextInputWindow::Realize()
{
    if (Style() == nullptr || !Layouts().empty())
        return;
    MDialog::Realize();
    const MStyle& style = *Style();
    const std::int32_t width = style.Pixels(WidthUnits);
    const std::int32_t line = style.Pixels(LineUnits);
    label->SetSize(width, line);
    edit->SetPosition(0, style.Pixels(EditTopUnits));
    edit->SetSize(width, style.Pixels(EditUnits));
    complaint->SetPosition(0, style.Pixels(ComplaintTopUnits));
    complaint->SetSize(width, line);
    Content().SetMinimalClientSize({ width, style.Pixels(ComplaintTopUnits) + line });
}

void MTextInputWindow::OnOpened()
{
    edit->SetFocus();
}

bool MTextInputWindow::Accept(MModalValue result)
{
    if (result != MModalValue::Ok || !check)
        return true;
    const MString wrong = check(edit->Text());
    complaint->SetText(wrong);
    return wrong.IsEmpty();
}

void MTextInputWindow::Ask(MWindow& owner, const MString& title, const MString& question,
                           const MString& suggestion, std::function<void(const MString&)> then,
                           std::function<MString(const MString&)> check)
{
    auto window = std::make_unique<MTextInputWindow>(title, question, suggestion);
    window->check = std::move(check);
    OwnedWindow::Open(std::move(window), owner,
                      [then = std::move(then)](MWindow& asked, std::int32_t result)
                      {
                          if (static_cast<MModalValue>(result) == MModalValue::Ok)
                              then(static_cast<MTextInputWindow&>(asked).Text());
                      });
}
