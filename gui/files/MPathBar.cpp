// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/files/MPathBar.h"

#include <algorithm>
#include <utility>

#include "gui/controls/MWindow.h"
#include "gui/fields/WidgetText.h"
#include "gui/files/FilePaths.h"

namespace
{
constexpr double PaddingUnits = 6;
constexpr double SignUnits = 11;   // between two parts
constexpr double InsetUnits = 2;
}   // namespace

MPathBar::MPathBar()
{
    controlType = MControlType::Edit;
    font = MStdFont::Control;
    tabStop = true;
    field = &Make<MFileNameEdit>();
    field->font = font;
    field->completes = MFileNameEdit::Completes::Folders;
    field->OnDone().AddHandler<&MPathBar::OnFieldDone>(*this);
    field->SetVisible(false);
}

MSize MPathBar::ContentMinimum() const
{
    if (Style() == nullptr)
        return {};
    return WidgetText::Inside(*this,
                              { Style()->Pixels(80), Style()->GetDefaultSize(MControlType::Edit).height });
}

void MPathBar::SetPath(const MString& newPath)
{
    EndTyping();
    path = newPath;
    Place();
    current = static_cast<std::int32_t>(parts.size()) - 1;
    Invalidate();
}

void MPathBar::OnPlaced()
{
    field->SetPosition(0, 0);
    field->SetSize(Width(), Height());
    Place();
}

void MPathBar::Place()
{
    parts.clear();
    hovered = -1;
    if (Style() == nullptr)
        return;
    const MStyle& style = *Style();
    const std::int32_t padding = style.Pixels(PaddingUnits);
    const std::int32_t sign = style.Pixels(SignUnits);
    const std::int32_t more = style.Pixels(SignUnits) + 2 * padding;   // of the part that stands for others
    std::int32_t room = Width() - 2 * style.Pixels(InsetUnits);
    for (MString here = path;; here = FilePaths::Parent(here))
    {
        const bool isRoot = here == "/";
        const MString text = FilePaths::NameOf(here);
        const std::int32_t wide = WidgetText::Width(*this, font, text) + 2 * padding;
        const std::int32_t needed = wide + (parts.empty() ? 0 : sign) + (isRoot ? 0 : more + sign);
        if (needed > room && !parts.empty())
        {
            parts.push_back({ {}, here, 0, more - 1 });
            break;
        }
        parts.push_back({ text, here, 0, std::min(wide, room) - 1 });
        room -= wide + sign;
        if (isRoot || here.IsEmpty())
            break;
    }
    std::reverse(parts.begin(), parts.end());
    std::int32_t left = style.Pixels(InsetUnits);
    for (Part& each : parts)
    {
        each.first = left;
        each.last += left;
        left = each.last + 1 + sign;
    }
    current = std::clamp(current, 0, static_cast<std::int32_t>(parts.size()) - 1);
}

MRectangle MPathBar::AreaOf(const Part& part) const
{
    const std::int32_t inset = Style()->Pixels(InsetUnits);
    return { part.first, inset, part.last, Height() - 1 - inset };
}

std::int32_t MPathBar::PartAt(std::int32_t x, std::int32_t y) const
{
    for (std::size_t i = 0; i < parts.size(); ++i)
        if (AreaOf(parts[i]).Contains(x, y))
            return static_cast<std::int32_t>(i);
    return -1;
}

void MPathBar::Paint(MDrawer& drawer)
{
    MStyle& style = *Style();
    const std::uint16_t state = GetDrawState() & DrawEnabled;
    style.PaintFace(drawer, OwnRectangle(), MControlType::Edit, state);
    MFont& used = style.GetFont(font);
    const MWindow* window = Window();
    const bool byKeys = HasFocus() && window != nullptr && window->ShowsFocusRing();
    for (std::size_t i = 0; i < parts.size(); ++i)
    {
        const Part& part = parts[i];
        const auto index = static_cast<std::int32_t>(i);
        const MRectangle area = AreaOf(part);
        const bool lit = index == hovered || (byKeys && index == current);
        if (lit)
            style.PaintItem(drawer, area, MControlType::ListBox,
                            static_cast<std::uint16_t>(state | DrawHovered));
        const bool last = i + 1 == parts.size();
        const MColor color =
            style.GetColor(WidgetText::ColorOf(state, last || lit ? MStdColor::Text : MStdColor::Text2));
        if (part.text.IsEmpty())
            style.PaintIcon(drawer, area, MStdIcon::CaretLeft, color);
        else
            drawer.AlignedTextOut(area.Inset(style.Pixels(PaddingUnits), 0), part.text, used, color);
        if (!last)
            style.PaintIcon(drawer, { area.right + 1, area.top, parts[i + 1].first - 1, area.bottom },
                            MStdIcon::CaretRight, style.GetColor(MStdColor::Text3));
    }
}

void MPathBar::BeginTyping(const MString& text)
{
    field->folder = path;
    field->SetText(text);
    field->SetVisible(true);
    field->SetFocus();
    const auto length = static_cast<std::size_t>(text.Length());
    // The whole path is there to be replaced, a first letter to be gone on from.
    field->Select(text.Length() > 1 ? 0 : length, length);
}

void MPathBar::EndTyping()
{
    if (!IsTyping())
        return;
    const bool hadKeyboard = field->HasFocus();
    field->SetVisible(false);
    if (hadKeyboard)
        SetFocus();
    Invalidate();
}

void MPathBar::Tell(const MString& chosen)
{
    MOnStringParams params;
    params.source = this;
    params.text = chosen;
    pathChosen.Post(GlobalEventProcessor(), params);
}

void MPathBar::OnFieldDone(const MOnClickParams& params)
{
    // Leaving the field is no wish to go anywhere.
    if (params.data == MEdit::GivenUp || !field->HasFocus())
        EndTyping();
    else
        Tell(FilePaths::Resolved(field->Text(), path));
}

bool MPathBar::OnKey(const MControlEvent& event)
{
    if (event.Has(ModifierCtrl) || event.Has(ModifierAlt))
        return false;
    const auto last = static_cast<std::int32_t>(parts.size()) - 1;
    switch (event.key)
    {
    case MKey::Left:
        current = std::max(0, current - 1);
        break;
    case MKey::Right:
        current = std::min(last, current + 1);
        break;
    case MKey::Home:
        current = 0;
        break;
    case MKey::End:
        current = last;
        break;
    case MKey::Enter:
    case MKey::Space:
        if (current >= 0 && current <= last)
            Tell(parts[static_cast<std::size_t>(current)].path);
        return true;
    case MKey::F2:
        BeginTyping(path);
        return true;
    default:
        return false;
    }
    Invalidate();
    return true;
}

bool MPathBar::OnEvent(const MControlEvent& event)
{
    switch (event.code)
    {
    case MEventCode::LeftDown:
    case MEventCode::LeftDoubleClick:
        if (const std::int32_t part = PartAt(event.x, event.y); part >= 0)
        {
            current = part;
            Tell(parts[static_cast<std::size_t>(part)].path);
        }
        else
            BeginTyping(path);
        return true;
    case MEventCode::Move:
        if (const std::int32_t part = PartAt(event.x, event.y); part != hovered)
        {
            hovered = part;
            Invalidate();
        }
        return false;
    case MEventCode::Character:
        if (event.Has(ModifierCtrl) || event.character <= 0x20 || event.character == 0x7F || IsTyping())
            return false;
        BeginTyping(MString(std::u16string_view(EditModel::Encoded(event.character))));
        return true;
    case MEventCode::KeyDown:
        return OnKey(event) || MControl::OnEvent(event);
    case MEventCode::Focus:
        Invalidate();
        return true;
    default:
        return MControl::OnEvent(event);
    }
}

void MPathBar::OnMouseLeave()
{
    hovered = -1;
    Invalidate();
}
