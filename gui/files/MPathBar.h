// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MEvent.h"
#include "gui/controls/MControl.h"
#include "gui/files/MFileNameEdit.h"

/// Where a folder is: its path in parts, each of which can be pressed, also by Left, Right and Enter. A press
/// beside them, F2 or a letter opens a field to type a path in. Thread: GUI.
class MPathBar : public MControl
{
public:
    MPathBar();

    const MString& Path() const { return path; }
    /// From outside: no event. Ends typing.
    void SetPath(const MString& newPath);
    /// The user wants to go there. What was typed needn't exist; the field stays until SetPath or EndTyping.
    MEvent<MOnStringParams>& OnPath() { return pathChosen; }
    void BeginTyping(const MString& text);
    void EndTyping();
    bool IsTyping() const { return field->IsVisible(); }

    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;
    void OnMouseLeave() override;

protected:
    MSize ContentMinimum() const override;
    void OnPlaced() override;

private:
    struct Part
    {
        MString text;
        MString path;
        std::int32_t first = 0;   // pixels
        std::int32_t last = -1;
    };

    MRectangle AreaOf(const Part& part) const;
    /// Places as many of the last parts as there is room for; one before them stands for all others.
    void Place();
    std::int32_t PartAt(std::int32_t x, std::int32_t y) const;
    bool OnKey(const MControlEvent& event);
    void Tell(const MString& chosen);
    void OnFieldDone(const MOnClickParams& params);

    MEvent<MOnStringParams> pathChosen;
    MString path = "/";
    std::vector<Part> parts;   // that are shown, from the left
    MFileNameEdit* field = nullptr;
    std::int32_t hovered = -1;
    std::int32_t current = 0;   // that Enter presses
};
