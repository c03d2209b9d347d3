// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/windows/MStyleWindow.h"

#include "gui/controls/MWindows.h"
#include "gui/richtext/MSTML.h"
#include "gui/styles/StyleConfiguration.h"
#include "gui/windows/MMessageWindow.h"
#include "gui/windows/OwnedWindow.h"

MStyleWindow::MStyleWindow(MWindow* editor) : MDialog("Style")
{
    LoadStyleConfiguration(configuration);
    settings = &Content().Make<MStyleConfiguration>();
    settings->Load(configuration);
    AddButton("OK", MModalValue::Ok);
    AddButton("Cancel", MModalValue::Cancel);
    AddButton("Reset...", MModalValue::None);
    if (editor == nullptr || editor->Style() == nullptr || !editor->IsOpen())
        return;
    const MWindowSystem& platform = MWindows::Get()->Platform();
    const MRectangle place = platform.GetScreenRect(*editor);
    const MRectangle area = platform.GetWorkArea(place.left, place.top);
    const double scale = editor->Style()->GetScale();
    settings->LimitScales({ static_cast<std::int32_t>(editor->Width() / scale),
                            static_cast<std::int32_t>(editor->Height() / scale) },
                          { area.Width(), area.Height() });
}

void MStyleWindow::Realize()
{
    if (Style() == nullptr || !Layouts().empty())
        return;
    MDialog::Realize();
    const MSize size = settings->PreferredSize();
    settings->SetSize(size.width, size.height);
    Content().SetMinimalClientSize(size);
}

bool MStyleWindow::Accept(MModalValue result)
{
    if (result == MModalValue::None)
    {
        AskForReset();
        return false;
    }
    if (result != MModalValue::Ok)
        return true;
    settings->Store(configuration);
    try
    {
        SaveStyleConfiguration(configuration);
    }
    catch (const MException& failure)
    {
        MMessageWindow::Show(*this, MMessageWindow::Kind::Error, "Error", MSTML::Escaped(failure.Message));
        return false;
    }
    return true;
}

void MStyleWindow::AskForReset()
{
    const std::weak_ptr<int> here = alive;
    MMessageWindow::Show(*this, MMessageWindow::Kind::Question, "Reset", MString::Literal(ResetStyleQuestion),
                         [this, here](MModalValue answer)
                         {
                             if (answer == MModalValue::Yes && !here.expired())
                                 Reset();
                         });
}

void MStyleWindow::Reset()
{
    try
    {
        ResetStyleConfiguration();
    }
    catch (const MException& failure)
    {
        MMessageWindow::Show(*this, MMessageWindow::Kind::Error, "Error", MSTML::Escaped(failure.Message));
        return;
    }
    const std::weak_ptr<int> here = alive;
    MMessageWindow::Show(*this, MMessageWindow::Kind::Information, "Reset", MString::Literal(ResetStyleDone),
                         [this, here](MModalValue)
                         {
                             if (!here.expired())
                                 RequestClose(static_cast<std::int32_t>(MModalValue::Ok));
                         });
}

void MStyleWindow::Ask(MWindow& editor, std::function<void()> changed)
{
    OwnedWindow::Open(std::make_unique<MStyleWindow>(&editor), editor,
                      [changed = std::move(changed)](MWindow&, std::int32_t result)
                      {
                          if (static_cast<MModalValue>(result) == MModalValue::Ok && changed)
                              changed();
                      });
}
