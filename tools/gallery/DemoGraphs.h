// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

#include "gui/graphs/MGraphEditor.h"

/// Curves as an equalizer has them, for the page of graphs. They have to outlive the editors that show them.
class DemoGraphs
{
public:
    /// Fills the graph editors below a control.
    void Attach(MControl& control);

private:
    void Fill(MGraphEditor& editor);

    std::vector<std::unique_ptr<MGraph>> graphs;
};
