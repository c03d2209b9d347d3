// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "effect/EditorState.h"

TEST(EditorState, FollowsMeasuringAndDrawing)
{
    const auto expect = [](const EditorState::Facts& facts, const EditorState& expected, const char* when)
    {
        EXPECT_TRUE(EditorState::From(facts) == expected) << when;
    };
    // Facts: measuring, of source, drawing, target, source defined. Visible: bands, envelope, target, source,
    // analysis, output, display. Then target and source enabled, pressed, Equalize, save, load, draw.
    expect({ 0, 0, 0, 1, 1 }, { 1, 0, 1, 1, 0, 1, 1, 1, 1, 0, 1, 1, 1, 1 }, "both are there");
    expect({ 0, 0, 0, 1, 0 }, { 1, 0, 1, 0, 0, 1, 1, 1, 1, 0, 0, 0, 1, 1 }, "no source");
    expect({ 0, 0, 0, 0, 1 }, { 1, 0, 0, 1, 0, 1, 1, 1, 1, 0, 0, 1, 1, 1 }, "no target");
    expect({ 1, 0, 0, 0, 1 }, { 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0 }, "measuring the target");
    expect({ 1, 1, 0, 1, 0 }, { 0, 0, 0, 0, 1, 0, 0, 0, 1, 1, 0, 0, 0, 0 }, "measuring the source");
    expect({ 0, 0, 1, 1, 1 }, { 0, 1, 1, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1 }, "drawing");
}
