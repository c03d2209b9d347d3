// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MEvent.h"
#include "gui/fields/MTextField.h"

class MCharFilter;

/// A field with one line of text. Text is taken over with Enter and when another control gets the keyboard,
/// given up with Escape.
class MEdit : public MTextField
{
public:
    /// Of OnDone.
    static constexpr std::uintptr_t Taken = 1;
    static constexpr std::uintptr_t GivenUp = 2;

    MEdit();

    /// From outside: nothing to undo, and no event.
    void SetText(const MString& text);
    /// A part of the text, with the caret at its end.
    void Select(std::size_t begin, std::size_t end);
    /// Characters that it doesn't accept are left out. Null: takes all. It has to outlive the field.
    void SetFilter(const MCharFilter& accepted) { filter = &accepted; }
    MEvent<MOnClickParams>& OnDone() { return done; }

    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;

    MPlacement alignment = MPlacement::Begin;
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
    /// How a text that begins so could go on; empty: nothing is known. Asked after a letter was typed at the
    /// end; what is answered stands behind it, chosen, so that the next letter takes its place.
    virtual MString Continuation(const MString& /*typed*/) { return {}; }

    std::u16string Accepted(std::u16string_view piece) const override;
    void Insert(std::u16string_view piece, bool typed) override;
    void ShowCaret() override;
    std::size_t PlaceAt(std::int32_t x, std::int32_t y) override;

private:
    bool OnKey(const MControlEvent& event);
    void OnFocus(bool focused);
    void Suggest();
    MRectangle TextArea() const;
    /// Where the text starts, from the control's left.
    double TextStart();

    const MCharFilter* filter = nullptr;
    MEvent<MOnClickParams> done;
    MString textBefore;   // when it got the keyboard
};
