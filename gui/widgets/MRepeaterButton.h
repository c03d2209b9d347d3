// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/widgets/MButton.h"

/// A button that goes on clicking while it is held down.
class MRepeaterButton : public MButton
{
public:
    bool OnEvent(const MControlEvent& event) override;
    void OnTimer() override;
    void OnCaptureEnd() override;

    static constexpr std::int32_t FirstMilliseconds = 400;
    static constexpr std::int32_t NextMilliseconds = 60;
};
