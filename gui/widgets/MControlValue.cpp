// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/MControlValue.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "gui/controls/MWindow.h"
#include "gui/controls/MWindows.h"
#include "gui/controls/XmlAttributes.h"
#include "gui/fields/MEdit.h"
#include "gui/loader/MXmlLoader.h"

namespace
{
constexpr double CoarseStep = 0.01;   // of a range without steps of its own
constexpr double FineShare = 0.1;
constexpr int PageSteps = 10;
constexpr std::int32_t WheelNotch = 120;
}   // namespace

MControlValue::MControlValue()
{
    tabStop = true;
}

MControlValue::~MControlValue() = default;

void MControlValue::SetValue(MValue* shown)
{
    EndGesture();
    value = shown;
    shownPosition = -1;
    RefreshValue();
}

void MControlValue::OwnValue(std::unique_ptr<MValue> shown)
{
    SetValue(shown.get());
    owned = std::move(shown);
}

void MControlValue::RefreshValue()
{
    MString text = ValueText();
    const double position = ValuePosition();
    if (text == shownText && std::abs(position - shownPosition) < 1e-9)
        return;
    shownText = std::move(text);
    shownPosition = position;
    OnValueChanged();
}

MString MControlValue::ValueText() const
{
    return value != nullptr ? value->GetDisplayText() : MString();
}

double MControlValue::ValuePosition() const
{
    return value != nullptr ? value->GetNormalized() : 0;
}

MStyle::ValueLook MControlValue::Look() const
{
    MStyle::ValueLook look;
    look.value = ValuePosition();
    look.origin = value != nullptr ? value->GetOrigin() : 0;
    return look;
}

void MControlValue::Tell(MOnValueChangeParams::Phase phase)
{
    MOnValueChangeParams params;
    params.source = this;
    params.control = this;
    params.phase = phase;
    valueChange.Call(params);
}

void MControlValue::BeginGesture()
{
    if (value == nullptr || std::exchange(dragging, true))
        return;
    Tell(MOnValueChangeParams::Phase::Begin);
}

void MControlValue::EndGesture()
{
    if (!std::exchange(dragging, false))
        return;
    Tell(MOnValueChangeParams::Phase::End);
}

void MControlValue::Changed()
{
    RefreshValue();
    Tell(MOnValueChangeParams::Phase::Change);
}

void MControlValue::StepValue(int steps, bool fine)
{
    bool changed;
    if (value->GetStepCount() > 0)
        changed = value->Increment(steps);
    else
        changed = value->SetNormalized(value->GetNormalized() + steps * CoarseStep * (fine ? FineShare : 1));
    if (changed)
        Changed();
}

bool MControlValue::ChangeBySteps(int steps, bool fine)
{
    if (value == nullptr)
        return false;
    const bool own = !dragging;
    BeginGesture();
    StepValue(steps, fine);
    if (own)
        EndGesture();
    return true;
}

bool MControlValue::ChangeTo(double position)
{
    if (value == nullptr)
        return false;
    const bool own = !dragging;
    BeginGesture();
    if (value->SetNormalized(position))
        Changed();
    if (own)
        EndGesture();
    return true;
}

bool MControlValue::Reset()
{
    if (value == nullptr)
        return false;
    const bool own = !dragging;
    BeginGesture();
    value->SetDefault();
    Changed();
    if (own)
        EndGesture();
    return true;
}

bool MControlValue::OnEvent(const MControlEvent& event)
{
    if (value != nullptr && ((event.IsMouse() && OnMouse(event)) || (event.IsKey() && OnKey(event))))
        return true;
    return MControl::OnEvent(event);
}

bool MControlValue::OnMouse(const MControlEvent& event)
{
    switch (event.code)
    {
    case MEventCode::LeftDown:
        dragged = false;
        dragPlace = { event.x, event.y };
        BeginGesture();
        if (const double at = PositionAt(event.x, event.y); at >= 0 && !event.Has(ModifierCtrl))
            ChangeTo(at);
        dragPosition = ValuePosition();
        return true;
    case MEventCode::Move:
        if (!dragging || !HasCapture())
            return false;
        Drag(event);
        return true;
    case MEventCode::LeftUp:
        if (!dragged && event.Has(ModifierCtrl))
            Reset();
        EndGesture();
        return true;
    case MEventCode::LeftDoubleClick:
        return BeginTyping();
    case MEventCode::Wheel:
        // A finer wheel turns in parts of a notch; each still counts as a step.
        return ChangeBySteps(event.key >= 0 ? std::max(1, event.key / WheelNotch)
                                            : std::min(-1, event.key / WheelNotch),
                             event.Has(ModifierCtrl));
    default:
        return false;
    }
}

double MControlValue::DragLength() const
{
    return DragUnits * (Style() != nullptr ? Style()->GetScale() : 1);
}

void MControlValue::Drag(const MControlEvent& event)
{
    const std::int32_t way = event.x - dragPlace.x - (event.y - dragPlace.y);
    dragPlace = { event.x, event.y };
    if (way == 0)
        return;
    dragged = true;
    const double share = way / DragLength() * (event.Has(ModifierCtrl) ? FineShare : 1);
    dragPosition = std::clamp(dragPosition + share, 0.0, 1.0);
    ChangeTo(dragPosition);
}

void MControlValue::OnCaptureEnd()
{
    EndGesture();
}

bool MControlValue::OnKey(const MControlEvent& event)
{
    if (event.code != MEventCode::KeyDown || event.Has(ModifierAlt))
        return false;
    const bool fine = event.Has(ModifierCtrl);
    switch (event.key)
    {
    case MKey::Up:
    case MKey::Right:
        return ChangeBySteps(1, fine);
    case MKey::Down:
    case MKey::Left:
        return ChangeBySteps(-1, fine);
    case MKey::PageUp:
        return ChangeBySteps(PageSteps, fine);
    case MKey::PageDown:
        return ChangeBySteps(-PageSteps, fine);
    case MKey::Home:
        return ChangeTo(0);
    case MKey::End:
        return ChangeTo(1);
    case MKey::Delete:
        return Reset();
    case MKey::Enter:
        return BeginTyping();
    default:
        return false;
    }
}

bool MControlValue::BeginTyping()
{
    const MRectangle area = TypingArea();
    if (value == nullptr || field != nullptr || area.IsEmpty())
        return false;
    EndGesture();
    typingByKey = Window() != nullptr && Window()->ShowsFocusRing();
    field = &Make<MEdit>();
    field->overlay = true;
    field->font = ValueFont();
    field->SetText(ValueText());
    field->SetFilter(value->GetCharFilter());
    field->SetPosition(area.left, area.top);
    field->SetSize(area.Width(), area.Height());
    field->SelectAll();
    field->OnDone().AddHandler<&MControlValue::OnFieldDone>(*this);
    field->SetFocus();
    return true;
}

void MControlValue::OnFieldDone(const MOnClickParams& params)
{
    EndTyping(params.data == MEdit::Taken);
}

void MControlValue::EndTyping(bool takes)
{
    MEdit* done = std::exchange(field, nullptr);
    if (done == nullptr)
        return;
    const bool hadFocus = done->HasFocus();
    const MString text = done->Text();
    if (MWindows* windows = MWindows::Get())
        windows->DeleteLater(RemoveChild(*done));
    if (hadFocus)
        SetFocus();
    if (hadFocus && !typingByKey && Window() != nullptr)
        Window()->ReturnKeyboard();
    if (!takes || value == nullptr || text == ValueText())
        return;
    BeginGesture();
    if (value->SetDisplayText(text))
    {
        value->Clamp();
        Changed();
    }
    EndGesture();
}

void MControlValue::LoadXml(const MAttribute& node)
{
    MControl::LoadXml(node);
    if (std::unique_ptr<MValue> made = MXmlLoader::Get().CreateValue(node))
        OwnValue(std::move(made));
    if (value == nullptr)
        return;
    const XmlAttributes attributes(node);
    if (MString text; attributes.Read("value", text))
        value->SetText(text);
    value->Clamp();
    RefreshValue();
}
