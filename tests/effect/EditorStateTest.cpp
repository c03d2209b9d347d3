// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "effect/EditorState.h"

TEST(EditorState, FollowsMeasuringAndDrawing)
{
    struct Case
    {
        EditorState::Facts facts;
        bool bands, target, source, analysis, analyseTarget, analyseSource, pressed, equalize, save, load,
            draw;
    };
    const Case cases[] = {
        //  measuring, of source, drawing, target, source defined
        { { false, false, false, true, true }, 1, 1, 1, 0, 1, 1, 0, 1, 1, 1, 1 },
        { { false, false, false, true, false }, 1, 1, 0, 0, 1, 1, 0, 0, 0, 1, 1 },
        { { true, false, false, false, true }, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0 },
        { { true, true, false, true, false }, 0, 0, 0, 1, 0, 1, 1, 0, 0, 0, 0 },
        { { false, false, true, true, true }, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 1 },
    };
    for (const Case& each : cases)
    {
        SCOPED_TRACE(&each - cases);
        const EditorState state = EditorState::From(each.facts);
        EXPECT_EQ(state.bandsVisible, each.bands);
        EXPECT_EQ(state.outputCurveVisible, each.bands);
        EXPECT_EQ(state.targetCurveVisible, each.target);
        EXPECT_EQ(state.sourceCurveVisible, each.source);
        EXPECT_EQ(state.analysisCurveVisible, each.analysis);
        EXPECT_EQ(state.analyseTargetEnabled, each.analyseTarget);
        EXPECT_EQ(state.analyseSourceEnabled, each.analyseSource);
        EXPECT_EQ(state.analyseSourcePressed, each.pressed);
        EXPECT_EQ(state.equalizeEnabled, each.equalize);
        EXPECT_EQ(state.saveEnabled, each.save);
        EXPECT_EQ(state.loadEnabled, each.load);
        EXPECT_EQ(state.drawEnabled, each.draw);
        EXPECT_EQ(state.sourceEnvelopeVisible, each.facts.drawingSource);
    }
}
