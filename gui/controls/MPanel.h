// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/MControl.h"

/// A face with controls on it.
class MPanel : public MControl
{
public:
    MPanel() { controlType = MControlType::Panel; }

protected:
    void Realize() override;
};

/// Holds controls and shows nothing of itself.
class MContainer : public MPanel
{
public:
    MContainer() { controlType = MControlType::NoBackground; }
};
