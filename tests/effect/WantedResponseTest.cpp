// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>

#include <gtest/gtest.h>

#include "effect/EditorState.h"
#include "effect/WantedResponse.h"

namespace
{
GridCurve Flat(float value)
{
    GridCurve curve;
    curve.fill(value);
    return curve;
}

std::array<float, 1024> Grid()
{
    std::array<float, 1024> grid;
    FitGrid::Build(20, 20000, 1024, grid.data());
    return grid;
}
}   // namespace

TEST(WantedResponse, PreparedCurvesStandBelowTheirPeak)
{
    Interpolator none;
    GridCurve curve = Flat(0.01f);
    curve[100] = 10;
    curve[200] = 0;
    PrepareAnalysis(curve, none);
    EXPECT_NEAR(curve[100], 0, 1e-4);
    EXPECT_NEAR(curve[0], -60, 1e-3);
    EXPECT_FLOAT_EQ(curve[200], -200);
    GridCurve silent = Flat(0);
    PrepareAnalysis(silent, none);
    EXPECT_FLOAT_EQ(silent[512], -200);
    // Smoothing keeps a flat curve flat, up to its edges.
    Interpolator smooth;
    smooth.SetWidth(51);
    GridCurve flat = Flat(0.3f);
    PrepareAnalysis(flat, smooth);
    EXPECT_NEAR(flat[0], 0, 1e-3);
    EXPECT_NEAR(flat[1023], 0, 1e-3);
}

TEST(WantedResponse, LimitsZeroWhatLiesOutside)
{
    const std::array<float, 1024> grid = Grid();
    WantedResponse wanted(Flat(0), Flat(6));
    EXPECT_FALSE(wanted.IsFlat());
    wanted.Limit(grid, { .frequencyMinHz = 100, .frequencyMaxHz = 1000, .neverAmplify = false });
    EXPECT_GE(grid[static_cast<std::size_t>(wanted.First())], 100);
    EXPECT_LT(grid[static_cast<std::size_t>(wanted.First()) - 1], 100);
    EXPECT_LE(grid[static_cast<std::size_t>(wanted.Last())], 1000);
    EXPECT_GT(grid[static_cast<std::size_t>(wanted.Last()) + 1], 1000);
    for (int index = 0; index < 1024; ++index)
        EXPECT_FLOAT_EQ(wanted.Values()[static_cast<std::size_t>(index)],
                        index >= wanted.First() && index <= wanted.Last() ? 6 : 0);
    WantedResponse crossed(Flat(0), Flat(6));
    crossed.Limit(grid, { .frequencyMinHz = 30000, .frequencyMaxHz = 10, .neverAmplify = false });
    EXPECT_EQ(crossed.First(), 1024);
    EXPECT_EQ(crossed.Last(), -1);
    EXPECT_TRUE(crossed.IsFlat());
}

TEST(WantedResponse, NeverAmplifyLowersTheWholeCurve)
{
    GridCurve reference = Flat(0);
    reference[500] = 6;
    WantedResponse wanted(Flat(0), reference);
    wanted.Limit(Grid(), { .frequencyMinHz = 100, .frequencyMaxHz = 19000, .neverAmplify = true });
    EXPECT_FLOAT_EQ(wanted.Values()[500], 0);
    EXPECT_FLOAT_EQ(wanted.Values()[0], -6) << "also outside the limits";
    EXPECT_FLOAT_EQ(wanted.Values()[700], -6);
}

TEST(WantedResponse, TheCurveMapsSizesAndKeepsSigns)
{
    GridCurve reference = Flat(0);
    reference[100] = 12;
    reference[200] = -6;
    MEnvelope line;
    line.Reset(0, 1);
    WantedResponse same(Flat(0), reference);
    same.Limit(Grid(), {});
    same.Transform(line);
    EXPECT_NEAR(same.Values()[200], -6, 1e-5) << "a straight line changes nothing";
    MEnvelope half;
    half.Reset(0, 0.5);
    WantedResponse halved(Flat(0), reference);
    halved.Limit(Grid(), {});
    halved.Transform(half);
    EXPECT_NEAR(halved.Values()[100], 6, 1e-5);
    EXPECT_NEAR(halved.Values()[200], -3, 1e-5);
}

TEST(WantedResponse, RoomIsMadeOnlyWhereTheMixRisesAboveTheLimit)
{
    GridCurve target = Flat(-10);
    GridCurve mix = Flat(-60);
    mix[300] = -15;
    const GridCurve reference = WantedResponse::RoomBeside(target, mix, -40);
    EXPECT_FLOAT_EQ(reference[0], -10) << "an empty mix leaves the track alone";
    EXPECT_FLOAT_EQ(reference[300], -25) << "25 dB above the limit: at most -25 dB";
    WantedResponse nothing(target, WantedResponse::RoomBeside(target, Flat(-50), -40));
    EXPECT_TRUE(nothing.IsFlat());
}

TEST(WantedResponse, DistanceIgnoresAnOverallLevel)
{
    GridCurve a = Flat(0);
    GridCurve b = Flat(20);
    EXPECT_NEAR(SpectralDistanceDb(a, b, 0, 1023), 0, 1e-5);
    for (std::size_t index = 0; index < 1024; index += 2)
        a[index] = 2;
    EXPECT_NEAR(SpectralDistanceDb(a, b, 0, 1023), 1, 1e-5);
    EXPECT_EQ(SpectralDistanceDb(a, b, 10, 5), 0);
}

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
