// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/envelope/MEnvelopeItems.h"

namespace
{
// Some formulas stand upright at an end. Corners and smooth neighbours need a slope that is a number: the
// one this share of the segment inside.
constexpr double UprightShare = 1e-6;
}   // namespace

ItemDouble::ItemDouble(const EnvelopeSegmentEnds& segment, double curvature)
    : middle(0.5 * (segment.x0 + segment.x1)),
      first({ segment.x0, segment.y0, middle, 0.5 * (segment.y0 + segment.y1) }, -curvature),
      second({ middle, 0.5 * (segment.y0 + segment.y1), segment.x1, segment.y1 }, curvature)
{
}

double ItemExponencial::SlopeAt(double x) const
{
    const double u = std::clamp(ends.PlaceOf(x), UprightShare, 1.0 - UprightShare);
    const double rest = 1.0 - std::pow(u, exponent);
    const double slope =
        std::pow(std::max(rest, UprightShare), inverseExponent - 1.0) * std::pow(u, exponent - 1.0);
    return ends.Height() / ends.Width() * slope;
}

double ItemBezier::SlopeAt(double x) const
{
    const double t = ParameterAt(x);
    return (bendY * t + halfSpeedY) / std::max(Root(x), UprightShare * ends.Width());
}
