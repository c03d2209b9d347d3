// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/MValueQ.h"

#include <algorithm>

#include "control/values/ValueText.h"

MString MValueQ::TextOf(double width) const
{
    return displayMode == Display::Percent ? PercentText(width) : MString::FromDouble(QFromWidth(width), 2);
}

bool MValueQ::ReadText(const MString& text, double& width) const
{
    if (displayMode == Display::Percent)
        return ReadPercent(text, width);
    double q = 0.0;
    if (!ReadNumber(text, q))
        return false;
    // Beyond the ends the map turns back.
    width = std::clamp(WidthFromQ(std::clamp(q, QFromWidth(1.0), QFromWidth(0.0))), 0.0, 1.0);
    return true;
}
