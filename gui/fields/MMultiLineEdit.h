// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/fields/MScrollBar.h"
#include "gui/fields/MTextField.h"

/// A field with lines of text. Lines aren't wrapped; what doesn't fit is scrolled to.
class MMultiLineEdit : public MTextField
{
public:
    MMultiLineEdit();

    /// From outside: nothing to undo, and no event.
    void SetText(const MString& text);

    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;

    std::int32_t minimalLines = 3;

protected:
    MSize ContentMinimum() const override;
    void OnPlaced() override;

    std::u16string Accepted(std::u16string_view piece) const override;
    void Edited() override;
    void ShowCaret() override;
    void Moved() override;
    std::size_t PlaceAt(std::int32_t x, std::int32_t y) override;

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
    double XOf(std::size_t place);
    void MoveDown(std::int32_t lines, bool selects);
    bool OnKey(const MControlEvent& event);
    void PaintLine(MDrawer& drawer, std::size_t line);
    void OnScrolled(const MOnNotifyParams&) { Invalidate(); }

    std::vector<Line> lines;
    MScrollBar* bar = nullptr;
    double wantedX = -1;   // that Up and Down keep
};
