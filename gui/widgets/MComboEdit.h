// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/fields/MEdit.h"
#include "gui/widgets/MPopupMenu.h"

/// A field whose text can also be chosen from a menu.
class MComboEdit : public MEdit
{
public:
    MComboEdit();

    void SetChoices(const std::vector<MString>& texts);
    /// Elements "item" with "text" are its choices.
    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;
    MStdCursor GetCursor(std::int32_t x, std::int32_t y) const override;

protected:
    std::int32_t RightRoom() const override;

private:
    MRectangle CaretArea() const;
    void OpenMenu();
    void OnChosen(const MOnItemParams<std::int32_t>& params);

    MMenuItem choices;
    MPopupMenu menu;
};
