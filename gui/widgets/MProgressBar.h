// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/MControl.h"

/// How far something has come.
class MProgressBar : public MControl
{
public:
    MProgressBar();
    /// 0 to 1.
    void SetShare(double newShare);
    double Share() const { return share; }
    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;

protected:
    MSize ContentMinimum() const override;

private:
    double share = 0;
};
