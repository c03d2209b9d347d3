// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "gui/controls/MControl.h"
#include "gui/graphs/MAxisRenderer.h"

/// Shows an axis by itself, lying where it is wider than tall. Thread: GUI.
class MStaticAxis : public MControl
{
public:
    MStaticAxis();
    void SetAxis(std::shared_ptr<const MAxisRenderer> shown);
    void Paint(MDrawer& drawer) override;

private:
    std::shared_ptr<const MAxisRenderer> axis;
};
