// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MCallback.h"
#include "foundation/containers/MEvent.h"
#include "gui/controls/MControl.h"
#include "gui/fields/EditModel.h"

class MCharFilter;

/// A field with one line of text. Text is taken over with Enter and when another control gets the keyboard,
/// given up with Escape.
class MEdit : public MControl
{
public:
    /// Of OnDone.
    static constexpr std::uintptr_t Taken = 1;
    static constexpr std::uintptr_t GivenUp = 2;

    MEdit();

    MString Text() const { return model.String(); }
    /// From outside: nothing to undo, and no event.
    void SetText(const MString& text);
    void SelectAll();
    /// Characters that it doesn't accept are left out. Null: takes all. It has to outlive the field.
    void SetFilter(const MCharFilter& accepted) { filter = &accepted; }
    /// With each change that the user makes.
    MCallback<MOnNotifyParams>& OnTextChange() { return textChange; }
    MEvent<MOnClickParams>& OnDone() { return done; }

    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;

    MPlacement alignment = MPlacement::Begin;
    bool readOnly = false;
    MString placeholder;   ///< shown while there is no text

protected:
    void Realize() override;
    MSize ContentMinimum() const override;
    void OnPlaced() override { ShowCaret(); }
    /// Pixels at the right that the text leaves free.
    virtual std::int32_t RightRoom() const { return 0; }
    /// By the user: can be undone, and is told.
    void Replace(const MString& text);
    void Finish(std::uintptr_t how);

private:
    bool OnKey(const MControlEvent& event);
    bool OnCommand(const MControlEvent& event);
    bool OnMouse(const MControlEvent& event);
    void OnFocus(bool focused);
    void Copy(bool cuts);
    void Paste();
    void Insert(std::u16string_view piece, bool typed);
    void Edited();
    void ShowCaret();
    MRectangle TextArea() const;
    /// Where the text starts, from the control's left.
    double TextStart();
    std::size_t PlaceAt(std::int32_t x);

    EditModel model;
    const MCharFilter* filter = nullptr;
    MCallback<MOnNotifyParams> textChange;
    MEvent<MOnClickParams> done;
    MString textBefore;   // when it got the keyboard
    double scrolled = 0;   // pixels of text left of the field
    bool selecting = false;
    bool hasKeyboard = false;
};
