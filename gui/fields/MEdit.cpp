// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/fields/MEdit.h"

#include <algorithm>
#include <cmath>

#include "foundation/text/MCharFilter.h"
#include "gui/controls/MWindow.h"
#include "gui/controls/MWindows.h"
#include "gui/controls/XmlAttributes.h"
#include "gui/fields/WidgetText.h"

namespace
{
constexpr double PaddingUnits = 6;
}

MEdit::MEdit()
{
    font = MStdFont::Value;
}

void MEdit::Realize()
{
    if (Style() != nullptr && Height() == 0)
        SetSize(std::max(Width(), Style()->GetDefaultSize(controlType).width),
                Style()->GetDefaultSize(controlType).height);
}

MSize MEdit::ContentMinimum() const
{
    if (Style() == nullptr)
        return {};
    return WidgetText::Inside(*this, { 2 * Style()->Pixels(PaddingUnits) + Style()->Pixels(12),
                                       Style()->GetFont(font).LineHeight() });
}

void MEdit::SetText(const MString& text)
{
    model.SetText(CharactersOf(text));
    scrolled = 0;
    Invalidate();
}

void MEdit::Select(std::size_t begin, std::size_t end)
{
    model.MoveTo(begin, false);
    model.MoveTo(end, true);
    ShowCaret();
    Invalidate();
}

void MEdit::LoadXml(const MAttribute& node)
{
    MControl::LoadXml(node);
    const XmlAttributes attributes(node);
    if (MString text; attributes.Read("text", text))
        SetText(text);
    attributes.Read("placeholder", placeholder);
    attributes.Read("readonly", readOnly);
}

MRectangle MEdit::TextArea() const
{
    const std::int32_t padding = Style() != nullptr ? Style()->Pixels(PaddingUnits) : 0;
    MRectangle area = OwnRectangle().Inset(std::min(padding, Width() / 2), 0);
    area.right = std::max(area.left, area.right - RightRoom());
    return area;
}

double MEdit::TextStart()
{
    const MRectangle area = TextArea();
    const double room = area.Width();
    const double width = Style()->GetFont(font).Width(Text());
    if (width > room)
        return area.left - scrolled;
    if (alignment == MPlacement::Begin)
        return area.left;
    return alignment == MPlacement::End ? area.left + room - width
                                        : area.left + std::floor((room - width) / 2);
}

std::size_t MEdit::PlaceAt(std::int32_t x, std::int32_t)
{
    return static_cast<std::size_t>(Style()->GetFont(font).IndexAt(Text(), x - TextStart()));
}

void MEdit::ShowCaret()
{
    if (Style() == nullptr)
        return;
    MFont& used = Style()->GetFont(font);
    const double room = TextArea().Width();
    const double width = used.Width(Text());
    const double at = used.PositionOf(Text(), static_cast<int>(model.Caret()));
    // As little as shows the caret, and no empty room at the end.
    scrolled = std::clamp(scrolled, at - room + Style()->Hairline(), at);
    scrolled = std::clamp(scrolled, 0.0, std::max(0.0, width - room + Style()->Hairline()));
}

void MEdit::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    std::uint16_t state = GetDrawState();
    if (hasKeyboard)
        state |= DrawFocused;
    style.PaintFace(drawer, OwnRectangle(), MControlType::Edit, state);
    MFont& used = style.GetFont(font);
    const MRectangle area = TextArea();
    const MRectangle clipBefore = drawer.GetClip();
    drawer.SetClip(clipBefore.Intersection(area.Inset(-style.Hairline(), 0)));
    const double start = TextStart();
    const MString text = Text();
    const auto capital = static_cast<std::int32_t>(std::lround(used.CapitalHeight()));
    const std::int32_t baseline = area.top + (area.Height() + capital) / 2;
    const std::int32_t top = baseline - used.Ascent();
    const std::int32_t bottom = baseline + used.Descent();
    if (hasKeyboard && model.HasSelection())
    {
        const double from = start + used.PositionOf(text, static_cast<int>(model.Begin()));
        const double to = start + used.PositionOf(text, static_cast<int>(model.End()));
        drawer.FillRectangle({ static_cast<std::int32_t>(from), top, static_cast<std::int32_t>(to), bottom },
                             style.GetColor(MStdColor::Selection));
    }
    const bool enabledNow = (state & DrawEnabled) != 0;
    if (text.IsEmpty() && !hasKeyboard)
        drawer.TextOut(area.left, baseline, placeholder, used, style.GetColor(MStdColor::Text3));
    else
        drawer.TextOut(start, baseline, text, used,
                       style.GetColor(enabledNow ? MStdColor::Text : MStdColor::TextDisabled));
    if (hasKeyboard && !readOnly)
    {
        const auto at =
            static_cast<std::int32_t>(start + used.PositionOf(text, static_cast<int>(model.Caret())));
        drawer.FillRectangle({ at, top, at + style.Hairline() - 1, bottom }, style.GetColor(MStdColor::Text));
    }
    drawer.SetClip(clipBefore);
}

bool MEdit::OnEvent(const MControlEvent& event)
{
    if (event.code == MEventCode::Focus)
    {
        OnFocus(event.focused);
        return true;
    }
    if (Style() == nullptr)
        return false;
    if (event.IsMouse())
        return OnMouse(event);
    if (event.code == MEventCode::Character)
    {
        // Keys with Ctrl come as keys; what they would write isn't meant.
        if (event.Has(ModifierCtrl) || event.character < 0x20 || event.character == 0x7F || readOnly)
            return false;
        Insert(EditModel::Encoded(event.character), true);
        return true;
    }
    if (event.code == MEventCode::KeyDown && OnKey(event))
        return true;
    return MControl::OnEvent(event);
}

void MEdit::OnFocus(bool focused)
{
    if (focused == hasKeyboard)
        return;
    hasKeyboard = focused;
    selecting = false;
    Invalidate();
    if (focused)
        textBefore = Text();
    else
        Finish(Taken);
}

void MEdit::Finish(std::uintptr_t how)
{
    if (how == GivenUp)
        SetText(textBefore);
    textBefore = Text();
    MOnClickParams params;
    params.source = this;
    params.data = how;
    done.Post(GlobalEventProcessor(), params);
}

bool MEdit::OnKey(const MControlEvent& event)
{
    const bool byWord = event.Has(ModifierCtrl);
    const bool selects = event.Has(ModifierShift);
    switch (event.key)
    {
    case MKey::Left:
    case MKey::Right:
        model.Move(event.key == MKey::Left ? -1 : 1, byWord, selects);
        break;
    case MKey::Home:
    case MKey::Up:
        model.MoveTo(0, selects);
        break;
    case MKey::End:
    case MKey::Down:
        model.MoveTo(model.Text().size(), selects);
        break;
    case MKey::Backspace:
    case MKey::Delete:
        if (readOnly)
            return false;
        if (event.key == MKey::Delete && selects)
            Copy(true);
        else
            model.Delete(event.key == MKey::Delete ? 1 : -1, byWord);
        Edited();
        return true;
    case MKey::Insert:
        if (selects)
            Paste();
        else if (byWord)
            Copy(false);
        return true;
    case MKey::Enter:
        Finish(Taken);
        // Where nobody waits for it, it presses the window's button, too.
        return done.HandlerCount() > 0;
    case MKey::Escape:
        // Without a change it is meant for the window.
        if (Text() == textBefore && done.HandlerCount() == 0)
            return false;
        Finish(GivenUp);
        return true;
    default:
        // A letter comes once more as a character: nobody else may have the key.
        return byWord ? OnCommand(event)
                      : event.key >= MKey::Space && !event.Has(ModifierAlt) && event.key < MKey::F1;
    }
    ShowCaret();
    Invalidate();
    return true;
}

std::u16string MEdit::Accepted(std::u16string_view piece) const
{
    std::u16string accepted;
    for (const char16_t each : piece)
    {
        // A text of many lines becomes one.
        const char16_t character = each == u'\n' || each == u'\t' ? u' ' : each;
        if (character >= 0x20 && character != 0x7F && (filter == nullptr || filter->IsAllowed(character)))
            accepted.push_back(character);
    }
    return accepted;
}

void MEdit::Insert(std::u16string_view piece, bool typed)
{
    const std::u16string accepted = Accepted(piece.substr(0, model.limit));
    if (accepted.empty() && !piece.empty())
        return;
    model.Insert(accepted, typed);
    if (typed)
        Suggest();
    Edited();
}

void MEdit::Suggest()
{
    const std::size_t length = model.Text().size();
    const MString rest = model.Caret() == length ? Continuation(Text()) : MString();
    if (rest.IsEmpty())
        return;
    std::u16string characters;
    for (int i = 0; i < rest.Length(); ++i)
        characters.push_back(rest[i]);
    model.Insert(characters, true);
    model.MoveTo(model.Text().size(), false);
    model.MoveTo(length, true);
}

void MEdit::Replace(const MString& text)
{
    model.SelectAll();
    model.Insert(CharactersOf(text));
    Edited();
}
