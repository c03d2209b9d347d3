// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MCallback.h"
#include "gui/controls/MControl.h"
#include "gui/fields/EditModel.h"
#include "gui/fields/MScrollBar.h"

/// A field with lines of text. Lines aren't wrapped; what doesn't fit is scrolled to.
class MMultiLineEdit : public MControl
{
public:
    MMultiLineEdit();

    MString Text() const { return model.String(); }
    /// From outside: nothing to undo, and no event.
    void SetText(const MString& text);
    MCallback<MOnNotifyParams>& OnTextChange() { return textChange; }

    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;

    bool readOnly = false;
    std::int32_t minimalLines = 3;

protected:
    MSize ContentMinimum() const override;
    void OnPlaced() override;

private:
    struct Line
    {
        std::size_t first = 0;   // characters of the text
        std::size_t last = 0;   // behind the last one
    };

    void SplitLines();
    std::size_t LineOf(std::size_t place) const;
    MString LineText(std::size_t line) const;
    MRectangle TextArea() const;
    std::int32_t LineHeight() const;
    std::size_t PlaceAt(std::int32_t x, std::int32_t y);
    double XOf(std::size_t place);
    void MoveDown(std::int32_t lines, bool selects);
    bool OnKey(const MControlEvent& event);
    bool OnCommand(const MControlEvent& event);
    bool OnMouse(const MControlEvent& event);
    void Insert(std::u16string_view piece, bool typed);
    void Copy(bool cuts);
    void Paste();
    void Edited();
    void Moved();
    void ShowCaret();
    void PaintLine(MDrawer& drawer, std::size_t line);
    void OnScrolled(const MOnNotifyParams&) { Invalidate(); }

    EditModel model;
    std::vector<Line> lines;
    MScrollBar* bar = nullptr;
    MCallback<MOnNotifyParams> textChange;
    double scrolled = 0;   // pixels of text left of the field
    double wantedX = -1;   // that Up and Down keep
    bool selecting = false;
    bool hasKeyboard = false;
};
