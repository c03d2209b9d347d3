// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "control/values/MValue.h"
#include "foundation/containers/MCallback.h"
#include "gui/controls/MControl.h"

class MEdit;
class MControlValue;

/// A control changes its value. What a user does in one go, from press to release or by one key, lies
/// between Begin and End; automation records it as one touch.
struct MOnValueChangeParams : MEventParams
{
    enum class Phase
    {
        Begin,
        Change,
        End
    };

    MControlValue* control = nullptr;
    Phase phase = Phase::Change;
};

/// Shows a value and lets it be edited: by dragging up or right, by wheel and keys, by typing after a double
/// click. Ctrl makes all of it ten times finer; Del and Ctrl with a click bring the default back.
class MControlValue : public MControl
{
public:
    MControlValue();
    ~MControlValue() override;

    MValue* Value() const { return value; }
    /// Not owned; it has to outlive the control. Null: none, which disables editing.
    void SetValue(MValue* shown);
    void OwnValue(std::unique_ptr<MValue> shown);
    /// The value may be another one now, by somebody else's doing.
    void RefreshValue();
    MCallback<MOnValueChangeParams>& OnValueChange() { return valueChange; }

    /// The text of the value, as it is shown.
    MString ValueText() const;
    /// 0 to 1; 0 without a value.
    double ValuePosition() const;
    MStyle::ValueLook Look() const;

    /// Opens a field for typing where the control shows its value. False: it can't be typed.
    bool BeginTyping();
    bool IsTyping() const { return field != nullptr; }

    /// "type" makes a value, "value" and "maxvalue" set it.
    void LoadXml(const MAttribute& node) override;
    bool OnEvent(const MControlEvent& event) override;
    void OnCaptureEnd() override;

    static constexpr double DragUnits = 200;   ///< for the whole range

protected:
    /// Where a field for typing stands; empty: nowhere.
    virtual MRectangle TypingArea() const { return OwnRectangle(); }
    virtual MStdFont ValueFont() const { return MStdFont::Value; }
    /// A press that begins a drag; answers the position that it sets, below 0 for none.
    virtual double PositionAt(std::int32_t, std::int32_t) const { return -1; }
    /// Pixels of a drag for the whole range.
    virtual double DragLength() const;
    virtual void OnValueChanged() { Invalidate(); }

    void BeginGesture();
    void EndGesture();
    /// One gesture by itself. Answers whether there is a value to change.
    bool ChangeBySteps(int steps, bool fine);
    bool ChangeTo(double position);
    bool Reset();

private:
    bool OnMouse(const MControlEvent& event);
    bool OnKey(const MControlEvent& event);
    void Drag(const MControlEvent& event);
    void Tell(MOnValueChangeParams::Phase phase);
    void Changed();
    void StepValue(int steps, bool fine);
    void EndTyping(bool takes);
    void OnFieldDone(const MOnClickParams& params);

    MValue* value = nullptr;
    std::unique_ptr<MValue> owned;
    MCallback<MOnValueChangeParams> valueChange;
    MEdit* field = nullptr;
    MString shownText;
    double shownPosition = -1;
    double dragPosition = 0;
    MPoint dragPlace;
    bool dragging = false;
    bool dragged = false;
    bool typingByKey = false;   // begun by a key: the user stays at the keyboard
};
