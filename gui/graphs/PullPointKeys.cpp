// SPDX-License-Identifier: GPL-3.0-or-later
// Points by keyboard: Enter steps into them, Tab chooses, arrows move, brackets change the width, Space
// enables, Escape leaves.
#include <algorithm>

#include "gui/graphs/PullPointEditing.h"

namespace
{
constexpr double FineShare = 0.1;   // of a step, with Ctrl
constexpr double WidthStep = 0.025;
// The keys that write [ and ] where letters are those of the alphabet.
constexpr std::int32_t LeftBracket = '[';
constexpr std::int32_t RightBracket = ']';
}   // namespace

bool PullPointEditing::IsKeyOfPoints(const MControlEvent& event) const
{
    switch (event.key)
    {
    case MKey::Tab:
    case MKey::Enter:
    case MKey::Escape:
    case MKey::Space:
    case MKey::Left:
    case MKey::Right:
    case MKey::Up:
    case MKey::Down:
    case LeftBracket:
    case RightBracket:
        return !event.Has(ModifierAlt);
    default:
        return false;
    }
}

bool PullPointEditing::OnKeyDown(MGraphEditor& editor, const MControlEvent& event)
{
    if (keyPoint >= PointCount())
        keyPoint = -1;
    if (keyPoint < 0)
        return event.key == MKey::Enter && (event.modifiers & ModifierKeys) == 0 && ChooseByKey(editor, 1);
    if (!IsKeyOfPoints(event))
        return false;
    switch (event.key)
    {
    case MKey::Tab:
        return ChooseByKey(editor, event.Has(ModifierShift) ? -1 : 1);
    case MKey::Enter:
        return true;
    case MKey::Escape:
        LeaveKeys(editor);
        return true;
    case MKey::Space:
        ChangePoint(editor, keyPoint, [&] { SetPointEnabled(keyPoint, !GetPoint(keyPoint).enabled); });
        return true;
    default:
        MoveByKey(editor, event);
        return true;
    }
}

bool PullPointEditing::ChooseByKey(MGraphEditor& editor, std::int32_t direction)
{
    const std::int32_t count = PointCount();
    if (count == 0)
        return false;
    // The first time an enabled one, where there is any; then all of them round.
    if (keyPoint < 0)
    {
        keyPoint = 0;
        while (keyPoint < count && !GetPoint(keyPoint).enabled)
            ++keyPoint;
        keyPoint %= count;
    }
    else
        keyPoint = (keyPoint + direction + count) % count;
    editor.InvalidateGraph(*this);
    return true;
}

void PullPointEditing::MoveByKey(MGraphEditor& editor, const MControlEvent& event)
{
    const double share = event.Has(ModifierCtrl) ? FineShare : 1;
    const auto way = [&event](std::int32_t less, std::int32_t more)
    {
        return event.key == less ? -1 : event.key == more ? 1 : 0;
    };
    const State point = GetPoint(keyPoint);
    const std::int32_t wider = way(LeftBracket, RightBracket);
    if (wider != 0 && !point.hasWidth)
        return;
    ChangePoint(editor, keyPoint,
                [&]
                {
                    SetPlace(keyPoint, point.x + way(MKey::Left, MKey::Right) * keyStepX * share,
                             point.y + way(MKey::Down, MKey::Up) * keyStepY * share);
                    if (wider != 0)
                        SetWidth(keyPoint, std::clamp(point.width + wider * WidthStep * share, 0.0, 1.0));
                });
}

void PullPointEditing::LeaveKeys(MGraphEditor& editor)
{
    if (keyPoint < 0)
        return;
    keyPoint = -1;
    editor.InvalidateGraph(*this);
}
