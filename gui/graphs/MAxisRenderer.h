// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "foundation/text/MObject.h"
#include "gui/painting/MDrawer.h"

/// A text at an axis.
struct MAxisLabel
{
    MString text;   ///< empty: a place without one
    double position = 0;   ///< 0 to 1 along the whole axis
    double viewPosition = 0;   ///< 0 to 1 along what is seen of it
    std::int32_t start = 0;   ///< of the text along the axis, in pixels from the near end
    std::int32_t size = 0;   ///< of the text along the axis, in pixels
    bool strong = false;   ///< a value that stands out, such as zero
};

/// Puts captions beside an axis. Thread: GUI.
class MAxisRenderer : public MObject
{
public:
    struct Options
    {
        std::int32_t gap = 0;   ///< that texts keep from each other, in pixels
        bool subdivides = true;   ///< a place whose text doesn't fit keeps a mark
        bool paints = true;   ///< otherwise only the labels are wanted
        bool isMirrored = false;   ///< the graph lies to the right of an upright axis, or below the other
    };

    /// @param rectangle  as long as the axis, from its first to its last pixel; beside the graph
    /// @param labels  gets those that are seen, from the last to the first, and the neighbours outside of the
    /// view, without their texts
    /// @param viewFrom, viewTo  what is seen of the axis, 0 to 1
    virtual void Render(MDrawer& drawer, const MRectangle& rectangle, bool isHorizontal,
                        std::vector<MAxisLabel>& labels, const Options& options, double viewFrom,
                        double viewTo) const = 0;
};
