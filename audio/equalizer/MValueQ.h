// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/equalizer/BandPoint.h"
#include "control/values/MValueNumber.h"

/// A band's width, 0 to 1, shown and typed as its Q, 10 to 0.05. See QFromWidth.
class MValueQ : public MValueDouble
{
public:
    /// What a user reads and types.
    enum class Display
    {
        Q,
        Percent   ///< the width
    };

    explicit MValueQ(MRelaxed<double>* variable = nullptr, Display display = Display::Q)
        : MValueDouble(variable, 0.0, 1.0, BandPoint::DefaultWidth), displayMode(display)
    {
    }

protected:
    MString TextOf(double width) const override;
    bool ReadText(const MString& text, double& width) const override;

private:
    Display displayMode;
};
