// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/fields/MMultiLineEdit.h"

#include <algorithm>
#include <cmath>

#include "gui/controls/MWindow.h"
#include "gui/controls/XmlAttributes.h"
#include "gui/fields/WidgetText.h"

namespace
{
constexpr double PaddingUnits = 6;
constexpr double BarUnits = 10;
}   // namespace

MMultiLineEdit::MMultiLineEdit()
{
    bar = &Make<MScrollBar>();
    bar->overlay = true;
    bar->cursor = MStdCursor::Arrow;
    bar->OnScroll().AddHandler<&MMultiLineEdit::OnScrolled>(*this);
    SplitLines();
}

void MMultiLineEdit::SetText(const MString& text)
{
    std::u16string characters;
    for (int i = 0; i < text.Length(); ++i)
        if (text[i] != '\r')
            characters.push_back(text[i]);
    model.SetText(characters);
    model.MoveTo(0, false);
    SplitLines();
    OnPlaced();
    ShowCaret();
    Invalidate();
}

void MMultiLineEdit::LoadXml(const MAttribute& node)
{
    MControl::LoadXml(node);
    const XmlAttributes attributes(node);
    attributes.Read("readonly", readOnly);
    attributes.Read("lines", minimalLines);
    if (MString text; attributes.Read("text", text))
        SetText(text);
}

void MMultiLineEdit::SplitLines()
{
    lines.clear();
    const std::u16string& text = model.Text();
    std::size_t first = 0;
    for (std::size_t end = text.find(u'\n'); end != std::u16string::npos; end = text.find(u'\n', first))
    {
        lines.push_back({ first, end });
        first = end + 1;
    }
    lines.push_back({ first, text.size() });
}

std::size_t MMultiLineEdit::LineOf(std::size_t place) const
{
    const auto found =
        std::upper_bound(lines.begin(), lines.end(), place,
                         [](std::size_t wanted, const Line& line) { return wanted < line.first; });
    return static_cast<std::size_t>(found - lines.begin()) - 1;
}

MString MMultiLineEdit::LineText(std::size_t line) const
{
    return MString(
        std::u16string_view(model.Text()).substr(lines[line].first, lines[line].last - lines[line].first));
}

std::int32_t MMultiLineEdit::LineHeight() const
{
    return std::max(1, WidgetText::LineHeight(*this, font));
}

MSize MMultiLineEdit::ContentMinimum() const
{
    if (Style() == nullptr)
        return {};
    const std::int32_t padding = Style()->Pixels(PaddingUnits);
    return WidgetText::Inside(*this, { Style()->Pixels(80), minimalLines * LineHeight() + 2 * padding });
}

MRectangle MMultiLineEdit::TextArea() const
{
    const std::int32_t padding = Style() != nullptr ? Style()->Pixels(PaddingUnits) : 0;
    MRectangle area = OwnRectangle().Inset(padding, padding);
    if (bar->IsVisible())
        area.right -= bar->Width();
    return area;
}

void MMultiLineEdit::OnPlaced()
{
    if (Style() == nullptr)
        return;
    const std::int32_t padding = Style()->Pixels(PaddingUnits);
    const std::int32_t wide = Style()->Pixels(BarUnits);
    bar->line = LineHeight();
    bar->SetRange(static_cast<std::int32_t>(lines.size()) * LineHeight(), Height() - 2 * padding);
    bar->SetVisible(bar->IsNeeded());
    bar->SetPosition(Width() - wide - Style()->Hairline(), Style()->Hairline());
    bar->SetSize(wide, Height() - 2 * Style()->Hairline());
}

double MMultiLineEdit::XOf(std::size_t place)
{
    const std::size_t line = LineOf(place);
    return Style()->GetFont(font).PositionOf(LineText(line), static_cast<int>(place - lines[line].first));
}

std::size_t MMultiLineEdit::PlaceAt(std::int32_t x, std::int32_t y)
{
    const MRectangle area = TextArea();
    const std::int32_t row = (std::max(0, y - area.top) + bar->First()) / LineHeight();
    const std::size_t line = std::min(lines.size() - 1, static_cast<std::size_t>(row));
    return lines[line].first +
           static_cast<std::size_t>(Style()->GetFont(font).IndexAt(LineText(line), x - area.left + scrolled));
}

void MMultiLineEdit::ShowCaret()
{
    if (Style() == nullptr)
        return;
    const MRectangle area = TextArea();
    const auto top = static_cast<std::int32_t>(LineOf(model.Caret())) * LineHeight();
    if (top < bar->First())
        bar->SetFirst(top);
    else if (top + LineHeight() > bar->First() + area.Height())
        bar->SetFirst(top + LineHeight() - area.Height());
    const double at = XOf(model.Caret());
    const double room = std::max(1, area.Width() - Style()->Hairline());
    scrolled = std::max(0.0, std::clamp(scrolled, at - room, at));
}

void MMultiLineEdit::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    std::uint16_t state = GetDrawState();
    if (hasKeyboard)
        state |= DrawFocused;
    style.PaintFace(drawer, OwnRectangle(), MControlType::Edit, state);
    const MRectangle area = TextArea();
    const MRectangle clip = drawer.GetClip();
    drawer.SetClip(clip.Intersection(area.Inset(-style.Hairline(), 0)));
    const auto first = static_cast<std::size_t>(bar->First() / LineHeight());
    const auto count = static_cast<std::size_t>(area.Height() / LineHeight() + 2);
    for (std::size_t line = first; line < std::min(lines.size(), first + count); ++line)
        PaintLine(drawer, line);
    drawer.SetClip(clip);
}

void MMultiLineEdit::PaintLine(MDrawer& drawer, std::size_t line)
{
    MStyle& style = *Style();
    MFont& used = style.GetFont(font);
    const MRectangle area = TextArea();
    const std::int32_t top = area.top + static_cast<std::int32_t>(line) * LineHeight() - bar->First();
    const std::int32_t bottom = top + LineHeight() - 1;
    const double left = area.left - scrolled;
    const MString text = LineText(line);
    const auto within = [&](std::size_t place)
    {
        return static_cast<int>(std::clamp(place, lines[line].first, lines[line].last) - lines[line].first);
    };
    if (hasKeyboard && model.HasSelection() && model.Begin() <= lines[line].last &&
        model.End() > lines[line].first)
    {
        const double from = left + used.PositionOf(text, within(model.Begin()));
        // The end of a line that is chosen, too, shows a little.
        const double behind = model.End() > lines[line].last ? style.Pixels(PaddingUnits) : 0;
        const double to = left + used.PositionOf(text, within(model.End())) + behind;
        drawer.FillRectangle({ static_cast<std::int32_t>(from), top, static_cast<std::int32_t>(to), bottom },
                             style.GetColor(MStdColor::Selection));
    }
    const std::int32_t baseline = top + (LineHeight() + used.Ascent() - used.Descent()) / 2;
    drawer.TextOut(left, baseline, text, used,
                   style.GetColor(WidgetText::ColorOf(GetDrawState() & DrawEnabled)));
    if (hasKeyboard && !readOnly && LineOf(model.Caret()) == line)
    {
        const auto at = static_cast<std::int32_t>(left + used.PositionOf(text, within(model.Caret())));
        drawer.FillRectangle({ at, top, at + style.Hairline() - 1, bottom }, style.GetColor(MStdColor::Text));
    }
}

bool MMultiLineEdit::OnEvent(const MControlEvent& event)
{
    if (event.code == MEventCode::Focus)
    {
        hasKeyboard = event.focused;
        Invalidate();
        return true;
    }
    if (Style() == nullptr)
        return false;
    if (event.code == MEventCode::Wheel)
        return bar->OnEvent(event);
    if (event.IsMouse())
        return OnMouse(event);
    if (event.code == MEventCode::Character)
    {
        if (event.Has(ModifierCtrl) || event.character < 0x20 || event.character == 0x7F || readOnly)
            return false;
        Insert(EditModel::Encoded(event.character), true);
        return true;
    }
    if (event.code == MEventCode::KeyDown && OnKey(event))
        return true;
    return MControl::OnEvent(event);
}

void MMultiLineEdit::MoveDown(std::int32_t count, bool selects)
{
    const double x = wantedX >= 0 ? wantedX : XOf(model.Caret());
    const auto line = static_cast<std::int64_t>(LineOf(model.Caret())) + count;
    const auto last = static_cast<std::int64_t>(lines.size()) - 1;
    if (line < 0 || line > last)
        model.MoveTo(line < 0 ? 0 : model.Text().size(), selects);
    else
    {
        const auto to = static_cast<std::size_t>(line);
        model.MoveTo(lines[to].first +
                         static_cast<std::size_t>(Style()->GetFont(font).IndexAt(LineText(to), x)),
                     selects);
    }
    Moved();
    wantedX = x;
}

bool MMultiLineEdit::OnKey(const MControlEvent& event)
{
    const bool byWord = event.Has(ModifierCtrl);
    const bool selects = event.Has(ModifierShift);
    const std::int32_t page = std::max(1, TextArea().Height() / LineHeight() - 1);
    const Line& line = lines[LineOf(model.Caret())];
    switch (event.key)
    {
    case MKey::Left:
    case MKey::Right:
        model.Move(event.key == MKey::Left ? -1 : 1, byWord, selects);
        break;
    case MKey::Up:
    case MKey::Down:
        MoveDown(event.key == MKey::Up ? -1 : 1, selects);
        return true;
    case MKey::PageUp:
    case MKey::PageDown:
        MoveDown(event.key == MKey::PageUp ? -page : page, selects);
        return true;
    case MKey::Home:
        model.MoveTo(byWord ? 0 : line.first, selects);
        break;
    case MKey::End:
        model.MoveTo(byWord ? model.Text().size() : line.last, selects);
        break;
    case MKey::Enter:
        if (readOnly || byWord)
            return false;
        Insert(u"\n", false);
        return true;
    case MKey::Backspace:
    case MKey::Delete:
        if (readOnly)
            return false;
        model.Delete(event.key == MKey::Delete ? 1 : -1, byWord);
        Edited();
        return true;
    default:
        return byWord ? OnCommand(event)
                      : event.key >= MKey::Space && !event.Has(ModifierAlt) && event.key < MKey::F1;
    }
    Moved();
    return true;
}

std::u16string MMultiLineEdit::Accepted(std::u16string_view piece) const
{
    std::u16string accepted;
    for (const char16_t each : piece)
        if (each == u'\n' || (each >= 0x20 && each != 0x7F))
            accepted.push_back(each);
        else if (each == u'\t')
            accepted.push_back(u' ');
    return accepted;
}

void MMultiLineEdit::Edited()
{
    SplitLines();
    OnPlaced();
    wantedX = -1;
    MTextField::Edited();
}

void MMultiLineEdit::Moved()
{
    wantedX = -1;
    ShowCaret();
    Invalidate();
}
