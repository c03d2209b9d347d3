// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/fields/MTextField.h"

#include "gui/controls/MWindows.h"

MTextField::MTextField()
{
    controlType = MControlType::Edit;
    cursor = MStdCursor::Text;
    tabStop = true;
    acceptsText = true;
}

std::u16string MTextField::CharactersOf(const MString& text)
{
    std::u16string characters;
    for (int i = 0; i < text.Length(); ++i)
        characters.push_back(text[i]);
    return characters;
}

void MTextField::SelectAll()
{
    model.SelectAll();
    Invalidate();
}

bool MTextField::OnCommand(const MControlEvent& event)
{
    switch (event.key)
    {
    case 'A':
        SelectAll();
        return true;
    case 'C':
    case 'X':
        Copy(event.key == 'X' && !readOnly);
        return true;
    case 'V':
        Paste();
        return true;
    case 'Z':
    case 'Y':
        if (readOnly)
            return false;
        if (event.key == 'Y' || event.Has(ModifierShift) ? model.Redo() : model.Undo())
            Edited();
        return true;
    default:
        return false;
    }
}

bool MTextField::OnMouse(const MControlEvent& event)
{
    switch (event.code)
    {
    case MEventCode::LeftDown:
        model.MoveTo(PlaceAt(event.x, event.y), event.Has(ModifierShift));
        selecting = true;
        break;
    case MEventCode::Move:
        if (!selecting)
            return false;
        model.MoveTo(PlaceAt(event.x, event.y), true);
        break;
    case MEventCode::LeftUp:
        selecting = false;
        return true;
    case MEventCode::LeftDoubleClick:
        model.SelectWord(PlaceAt(event.x, event.y));
        break;
    default:
        return false;
    }
    Moved();
    return true;
}

void MTextField::Moved()
{
    ShowCaret();
    Invalidate();
}

void MTextField::Copy(bool cuts)
{
    MWindows* windows = MWindows::Get();
    if (windows == nullptr || !model.HasSelection())
        return;
    windows->Platform().SetClipboardText(MString(std::u16string_view(model.Selected())));
    if (!cuts)
        return;
    model.Insert({});
    Edited();
}

void MTextField::Paste()
{
    MWindows* windows = MWindows::Get();
    if (windows != nullptr && !readOnly)
        InsertText(windows->Platform().GetClipboardText());
}

bool MTextField::OnDropText(const MString& text, std::int32_t x, std::int32_t y)
{
    if (readOnly || Style() == nullptr)
        return false;
    SetFocus();
    model.MoveTo(PlaceAt(x, y), false);
    InsertText(text);
    return true;
}

void MTextField::InsertText(const MString& text)
{
    if (!text.IsEmpty())
        Insert(CharactersOf(text), false);
}

void MTextField::Insert(std::u16string_view piece, bool typed)
{
    const std::u16string accepted = Accepted(piece.substr(0, model.limit));
    if (accepted.empty() && !piece.empty())
        return;
    model.Insert(accepted, typed);
    Edited();
}

void MTextField::Edited()
{
    ShowCaret();
    Invalidate();
    MOnNotifyParams params;
    params.source = this;
    textChange.Call(params);
}
