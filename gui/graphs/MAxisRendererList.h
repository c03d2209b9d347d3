// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/graphs/MAxisRenderer.h"

/// An axis with a list of labels and of marks without text. Derived classes only fill the lists. Texts never
/// touch: the ends come first, the others from the last to the first, and what has no room is left out.
class MAxisRendererList : public MAxisRenderer
{
public:
    void Render(MDrawer& drawer, const MRectangle& rectangle, bool isHorizontal,
                std::vector<MAxisLabel>& placed, const Options& options, double viewFrom,
                double viewTo) const override;

    /// In ascending order of places.
    void AddLabel(const MString& text, double position, bool strong = false);
    void AddMark(double position) { marks.push_back(position); }
    void Clear();

private:
    struct Space;

    void Paint(MDrawer& drawer, const Space& space, const std::vector<MAxisLabel>& placed,
               const std::vector<double>& seenMarks) const;

    std::vector<MAxisLabel> list;
    std::vector<double> marks;
};
