// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MCallback.h"
#include "gui/controls/MControl.h"
#include "gui/fields/EditModel.h"

/// What fields for text have in common: the text itself, the clipboard, dropped texts, undo.
class MTextField : public MControl
{
public:
    MTextField();

    MString Text() const { return model.String(); }
    void SelectAll();
    /// With each change that the user makes.
    MCallback<MOnNotifyParams>& OnTextChange() { return textChange; }
    /// Goes in where it was let go.
    bool OnDropText(const MString& text, std::int32_t x, std::int32_t y) override;

    bool readOnly = false;

protected:
    /// Ctrl with a letter: all, copy, cut, paste, undo, redo.
    bool OnCommand(const MControlEvent& event);
    /// Presses, drags and double clicks move the caret and choose.
    bool OnMouse(const MControlEvent& event);
    void Copy(bool cuts);
    void Paste();
    /// What of a piece goes in.
    virtual std::u16string Accepted(std::u16string_view piece) const = 0;
    /// @param typed  letters in a row are undone together
    virtual void Insert(std::u16string_view piece, bool typed);
    void InsertText(const MString& text);
    /// The user has changed the text: shows it and tells.
    virtual void Edited();
    /// The caret stands elsewhere, or something else is chosen.
    virtual void Moved();
    /// Brings the caret into sight.
    virtual void ShowCaret() = 0;
    virtual std::size_t PlaceAt(std::int32_t x, std::int32_t y) = 0;
    static std::u16string CharactersOf(const MString& text);

    EditModel model;
    double scrolled = 0;   // pixels of text left of the field
    bool selecting = false;
    bool hasKeyboard = false;

private:
    MCallback<MOnNotifyParams> textChange;
};
