// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "foundation/containers/MCallback.h"
#include "gui/widgets/MButton.h"

/// A button that shows a colour and opens a window to choose another one. Thread: GUI.
class MColorSelectButton : public MButton
{
public:
    MColorSelectButton();

    MColor Color() const { return color; }
    /// From outside: no event.
    void SetColor(MColor shown);
    /// The user has chosen another one.
    MCallback<MOnNotifyParams>& OnColor() { return changed; }

    /// "value" and "default": six or eight hexadecimal digits, red first.
    void LoadXml(const MAttribute& node) override;

    MColor defaultColor{ 255, 255, 255 };   ///< that the window offers
    MString title;   ///< of the window

protected:
    MSize ContentMinimum() const override;
    void PaintContent(MDrawer& drawer, const MRectangle& area, std::uint16_t state) override;

private:
    void OnClick(const MOnControlClickParams& params);

    MCallback<MOnNotifyParams> changed;
    std::shared_ptr<int> alive = std::make_shared<int>(0);   // for a window that answers later
    MColor color{ 255, 255, 255 };
};
