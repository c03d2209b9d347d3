// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/envelope/MEnvelopeComputer.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "control/envelope/MEnvelope.h"
#include "foundation/text/MException.h"

namespace
{
MEnvelopePoint PointAt(double x, double y, MEnvelopeSegment type, double curvature = 0.0,
                       double curvatureX = 0.0)
{
    MEnvelopePoint point;
    point.x = x;
    point.y = y;
    point.type = static_cast<std::int32_t>(type);
    point.curvature = curvature;
    point.curvatureX = curvatureX;
    return point;
}

MEnvelope Curve(std::initializer_list<MEnvelopePoint> points)
{
    MEnvelope envelope;
    envelope.Edit(
        [&points](MArray<MEnvelopePoint>& edited)
        {
            edited.Clear();
            for (const MEnvelopePoint& point : points)
                edited.Add(point);
        });
    return envelope;
}

// One segment from (1, 2) to (5, -6): no symmetry hides an exchanged axis.
constexpr double X0 = 1.0;
constexpr double Y0 = 2.0;
constexpr double X1 = 5.0;
constexpr double Y1 = -6.0;

MEnvelope Segment(MEnvelopeSegment type, double curvature, double curvatureX = 0.0)
{
    return Curve(
        { PointAt(X0, Y0, type, curvature, curvatureX), PointAt(X1, Y1, MEnvelopeSegment::Quadratic) });
}

double At(const MEnvelope& envelope, double x)
{
    return MEnvelopeComputer(envelope).Value(x);
}

// One-sided difference quotients; the formulas are smooth, so their error is about the step.
double SlopeAfter(const MEnvelope& envelope, double x, double step = 1e-6)
{
    return (At(envelope, x + step) - At(envelope, x)) / step;
}

double SlopeBefore(const MEnvelope& envelope, double x, double step = 1e-6)
{
    return (At(envelope, x - step) - At(envelope, x - 2.0 * step)) / step;
}

constexpr double MeanSlope = (Y1 - Y0) / (X1 - X0);

TEST(MEnvelopeComputer, MeetsBothEndsWithEveryContinuousSegment)
{
    using enum MEnvelopeSegment;
    for (const MEnvelopeSegment type :
         { Quadratic, FourthOrder, Exponential, Bezier, Double, SmoothBySlopes, SmoothByNeighbours })
        for (const double curvature : { -1.0, -0.4, 0.0, 0.3, 1.0 })
        {
            SCOPED_TRACE(testing::Message()
                         << "type " << static_cast<int>(type) << " curvature " << curvature);
            const MEnvelope envelope = Segment(type, curvature, 0.5 * curvature);
            EXPECT_NEAR(At(envelope, X0), Y0, 1e-12);
            // The steepest shape falls by half within a few 1e-5 before its end.
            const double nearEnd = At(envelope, X1 - 1e-13);
            EXPECT_NEAR(nearEnd, Y1, type == Exponential ? 2.0 : 1e-5);
            EXPECT_EQ(At(envelope, X1), Y1);
            EXPECT_EQ(At(envelope, -100.0), Y0);
            EXPECT_EQ(At(envelope, 1e9), Y1);
            EXPECT_EQ(At(envelope, std::numeric_limits<double>::infinity()), Y1);
        }
}

TEST(MEnvelopeComputer, IsStraightWithoutCurvature)
{
    using enum MEnvelopeSegment;
    for (const MEnvelopeSegment type : { Quadratic, FourthOrder, Exponential, Bezier, Double })
        for (const double x : { 1.0, 1.7, 3.0, 4.9 })
            EXPECT_NEAR(At(Segment(type, 0.0), x), Y0 + MeanSlope * (x - X0), 1e-12)
                << static_cast<int>(type);
}

TEST(MEnvelopeComputer, IsFlatBetweenEqualHeights)
{
    for (int type = 0; type < 12; ++type)
    {
        const auto segment = static_cast<MEnvelopeSegment>(type);
        const MEnvelope envelope =
            Curve({ PointAt(0.0, 0.7, segment, 0.9, 0.4), PointAt(1.0, 0.7, segment) });
        for (const double x : { 0.0, 0.123, 0.5, 0.99 })
            EXPECT_NEAR(At(envelope, x), 0.7, 1e-15) << type;
    }
}

TEST(MEnvelopeComputer, StartsAndEndsWithTheSlopesOfItsShapes)
{
    constexpr double Tolerance = 1e-3;   // of the difference quotient
    for (const double c : { -0.8, -0.3, 0.5, 1.0 })
    {
        SCOPED_TRACE(c);
        // The parabola: 1 - c times the mean slope at the start, 1 + c times at the end.
        EXPECT_NEAR(SlopeAfter(Segment(MEnvelopeSegment::Quadratic, c), X0), (1.0 - c) * MeanSlope,
                    Tolerance);
        EXPECT_NEAR(SlopeBefore(Segment(MEnvelopeSegment::Quadratic, c), X1), (1.0 + c) * MeanSlope,
                    Tolerance);
        // The fourth order, from the derivative of f at u = 0 and 1, with k = -c.
        const double k = -c;
        const double atStart = k >= 0.0 ? 3.0 * k + 1.0 : k + 1.0;
        const double atEnd = k >= 0.0 ? 1.0 - k : 1.0 - 3.0 * k;
        EXPECT_NEAR(SlopeAfter(Segment(MEnvelopeSegment::FourthOrder, c), X0), atStart * MeanSlope,
                    Tolerance);
        EXPECT_NEAR(SlopeBefore(Segment(MEnvelopeSegment::FourthOrder, c), X1), atEnd * MeanSlope, Tolerance);
    }
}

TEST(MEnvelopeComputer, DrawsTheSuperellipse)
{
    for (const double c : { -0.5, -0.2, 0.4, 1.0 })
    {
        const double e = std::exp(3.0 * c);
        for (const double u : { 0.1, 0.37, 0.5, 0.8 })
        {
            const double y =
                (At(Segment(MEnvelopeSegment::Exponential, c), X0 + u * (X1 - X0)) - Y0) / (Y1 - Y0);
            // Its equation in the unit square.
            EXPECT_NEAR(std::pow(u, e) + std::pow(1.0 - y, e), 1.0, 1e-9) << c << " " << u;
        }
    }
}

TEST(MEnvelopeComputer, FollowsTheBezierCurve)
{
    for (const double cx : { -1.0, -0.5, 0.0, 1e-12, 0.7, 1.0 })
        for (const double c : { -1.0, -0.2, 0.3, 1.0 })
        {
            const MEnvelope envelope = Segment(MEnvelopeSegment::Bezier, c, cx);
            const double controlX = X0 + (X1 - X0) * (cx + 1.0) / 2.0;
            const double controlY = Y0 + (Y1 - Y0) * (c + 1.0) / 2.0;
            for (double t = 0.05; t < 1.0; t += 0.05)
            {
                // De Casteljau: the curve as lines between lines.
                const double x = std::lerp(std::lerp(X0, controlX, t), std::lerp(controlX, X1, t), t);
                const double y = std::lerp(std::lerp(Y0, controlY, t), std::lerp(controlY, Y1, t), t);
                EXPECT_NEAR(At(envelope, x), y, 1e-9) << cx << " " << c << " " << t;
            }
        }
}

TEST(MEnvelopeComputer, BendsTheDoubleShapeAgainstItselfInTheMiddle)
{
    const double middleX = 0.5 * (X0 + X1);
    const double middleY = 0.5 * (Y0 + Y1);
    for (const double c : { -0.7, 0.4, 1.0 })
    {
        const MEnvelope envelope = Segment(MEnvelopeSegment::Double, c);
        EXPECT_NEAR(At(envelope, middleX), middleY, 1e-12);
        EXPECT_NEAR(SlopeBefore(envelope, middleX), SlopeAfter(envelope, middleX), 1e-3);
        // The second half is the first one turned by half a turn.
        for (const double distance : { 0.3, 1.0, 1.9 })
            EXPECT_NEAR(At(envelope, middleX + distance) + At(envelope, middleX - distance), 2.0 * middleY,
                        1e-12);
        // The first half is the fourth-order shape of the same curvature.
        const MEnvelope half = Curve({ PointAt(X0, Y0, MEnvelopeSegment::FourthOrder, c),
                                       PointAt(middleX, middleY, MEnvelopeSegment::Quadratic) });
        for (const double x : { 1.2, 2.0, 2.9 })
            EXPECT_NEAR(At(envelope, x), At(half, x), 1e-12);
    }
}

TEST(MEnvelopeComputer, ConnectsSmoothSegments)
{
    using enum MEnvelopeSegment;
    // Between two straight lines, of slope 2 and -1, the cubic takes over both slopes.
    const MEnvelope bySlopes = Curve({ PointAt(0.0, 0.0, Quadratic), PointAt(1.0, 2.0, SmoothBySlopes),
                                       PointAt(3.0, 5.0, Quadratic), PointAt(4.0, 4.0, Quadratic) });
    EXPECT_NEAR(SlopeAfter(bySlopes, 1.0), 2.0, 1e-4);
    EXPECT_NEAR(SlopeBefore(bySlopes, 3.0), -1.0, 1e-4);
    // A smooth segment that comes later counts as level at this one's end.
    const MEnvelope twice = Curve({ PointAt(0.0, 0.0, SmoothBySlopes), PointAt(1.0, 2.0, SmoothBySlopes),
                                    PointAt(2.0, 0.0, Quadratic) });
    EXPECT_NEAR(SlopeBefore(twice, 1.0), 0.0, 1e-4);

    // At (1, 2) the mean of the slopes 2 and 1; the lowest point and the ends are level.
    const MEnvelope byNeighbours =
        Curve({ PointAt(0.0, 0.0, SmoothByNeighbours), PointAt(1.0, 2.0, SmoothByNeighbours),
                PointAt(2.0, 3.0, SmoothByNeighbours), PointAt(3.0, -1.0, SmoothByNeighbours),
                PointAt(4.0, 1.0, Quadratic) });
    EXPECT_NEAR(SlopeAfter(byNeighbours, 0.0), 0.0, 1e-4);
    EXPECT_NEAR(SlopeBefore(byNeighbours, 1.0), 1.5, 1e-4);
    EXPECT_NEAR(SlopeAfter(byNeighbours, 1.0), 1.5, 1e-4);
    EXPECT_NEAR(SlopeAfter(byNeighbours, 2.0), -1.5, 1e-4);
    EXPECT_NEAR(SlopeBefore(byNeighbours, 3.0), 0.0, 1e-4);
    EXPECT_NEAR(SlopeBefore(byNeighbours, 4.0), 0.0, 1e-4);
}

std::vector<double> Sampled(const MEnvelope& envelope, int count)
{
    MEnvelopeComputer computer(envelope);
    std::vector<double> values;
    for (int index = 0; index < count; ++index)
        values.push_back(computer.Value(X0 + (X1 - X0) * (index + 0.5) / count));
    return values;
}

TEST(MEnvelopeComputer, RepeatsItsPeriodicShapes)
{
    using enum MEnvelopeSegment;
    const double c = std::sqrt(5.0 / 64.0);   // five of them
    constexpr int SampleCount = 9000;   // a multiple of 5, 9 and 10
    const auto levels = [](const std::vector<double>& values)
    {
        return std::set<double>(values.begin(), values.end()).size();
    };

    const std::vector<double> stairs = Sampled(Segment(Stairs, c), SampleCount);
    EXPECT_EQ(levels(stairs), 5u);
    EXPECT_EQ(stairs.front(), Y0);
    EXPECT_NEAR(stairs.back(), Y0 + 0.8 * (Y1 - Y0), 1e-12);
    EXPECT_EQ(levels(Sampled(Segment(Stairs, 0.15), 100)), 1u);   // fewer than two: one flat step

    const std::vector<double> pulses = Sampled(Segment(Pulses, c), SampleCount);
    const std::vector<double> opposite = Sampled(Segment(Pulses, -c), SampleCount);
    for (int index = 0; index < SampleCount; ++index)
    {
        const bool isFirstHalf = (index / (SampleCount / 10)) % 2 == 0;
        ASSERT_EQ(pulses[static_cast<std::size_t>(index)], isFirstHalf ? Y1 : Y0) << index;
        ASSERT_EQ(opposite[static_cast<std::size_t>(index)], isFirstHalf ? Y0 : Y1) << index;
    }

    for (const double sign : { -1.0, 1.0 })
    {
        const double a = sign > 0.0 ? Y0 : Y1;
        const double b = sign > 0.0 ? Y1 : Y0;
        const std::vector<double> saw = Sampled(Segment(Saw, sign * c), SampleCount);
        const std::vector<double> triangles = Sampled(Segment(Triangles, sign * c), SampleCount);
        const std::vector<double> sines = Sampled(Segment(Sines, sign * c), SampleCount);
        for (int index = 0; index < SampleCount; ++index)
        {
            const auto place = static_cast<std::size_t>(index);
            const double tooth = std::fmod(index + 0.5, SampleCount / 5) / (SampleCount / 5);
            ASSERT_NEAR(saw[place], a + tooth * (b - a), 1e-9) << index;
            // Nine sides: up, down, ... , up.
            const int side = index / (SampleCount / 9);
            const double along = std::fmod(index + 0.5, SampleCount / 9) / (SampleCount / 9);
            const double rise = side % 2 == 0 ? along : 1.0 - along;
            ASSERT_NEAR(triangles[place], a + rise * (b - a), 1e-9) << index;
            const double wave =
                0.5 - 0.5 * std::cos(std::numbers::pi * (side % 2 == 0 ? along : along + 1.0));
            ASSERT_NEAR(sines[place], a + wave * (b - a), 1e-9) << index;
        }
    }
}

TEST(MEnvelopeComputer, KnowsTheOddCurves)
{
    MEnvelope none = Curve({});
    none.SetLimits(0.0, 1.0, -2.0, 6.0);
    EXPECT_EQ(At(none, 0.3), 2.0);
    EXPECT_EQ(At(Curve({ PointAt(0.5, 0.8, MEnvelopeSegment::Saw) }), -7.0), 0.8);
    EXPECT_EQ(MEnvelopeComputer().Value(3.0), 0.0);

    const MEnvelope jump = Curve(
        { PointAt(0.0, 1.0, MEnvelopeSegment::Quadratic), PointAt(0.5, 2.0, MEnvelopeSegment::Quadratic),
          PointAt(0.5, 7.0, MEnvelopeSegment::Quadratic), PointAt(1.0, 8.0, MEnvelopeSegment::Quadratic) });
    EXPECT_NEAR(At(jump, 0.5 - 1e-12), 2.0, 1e-9);
    EXPECT_EQ(At(jump, 0.5), 7.0);

    MEnvelope wrong = Segment(MEnvelopeSegment::Quadratic, 0.0);
    MEnvelopeComputer computer(wrong);
    for (const std::int32_t type : { -1, 12 })
    {
        wrong.Edit([type](MArray<MEnvelopePoint>& points) { points[0].type = type; });
        try
        {
            computer.Compile(wrong);
            FAIL();
        }
        catch (const MException& error)
        {
            EXPECT_EQ(error.Message.ToUTF8(), "Invalid control point type.");
        }
        EXPECT_EQ(computer.Value(X0), Y0);
    }
}

TEST(MEnvelopeComputer, WalksForwardUntilItIsRewound)
{
    const MEnvelope envelope = Curve({ PointAt(0.0, 0.0, MEnvelopeSegment::Quadratic),
                                       PointAt(1.0, 1.0, MEnvelopeSegment::Quadratic),
                                       PointAt(2.0, -1.0, MEnvelopeSegment::Quadratic) });
    MEnvelopeComputer computer(envelope);
    EXPECT_DOUBLE_EQ(computer.Value(1.5), 0.0);
    EXPECT_DOUBLE_EQ(computer.Value(0.5), 2.0);   // the second line, continued
    computer.Value(1.5);
    computer.Rewind(0.5);
    EXPECT_DOUBLE_EQ(computer.Value(0.5), 0.5);
    computer.Rewind(5.0);
    EXPECT_DOUBLE_EQ(computer.Value(5.0), -1.0);
    computer.Rewind(-3.0);
    EXPECT_DOUBLE_EQ(computer.Value(-3.0), 0.0);
}

TEST(MEnvelopeComputer, RoundsCornersWithoutAKink)
{
    using enum MEnvelopeSegment;
    for (const std::int32_t smoothingType :
         { MEnvelopePoint::BezierWherePossible, MEnvelopePoint::AlwaysCubic })
        for (const bool isProportional : { false, true })
            for (const bool locksSides : { false, true })
            {
                MEnvelope envelope =
                    Curve({ PointAt(0.0, 0.0, Quadratic), PointAt(2.0, 4.0, FourthOrder, 0.5),
                            PointAt(3.0, 1.0, Quadratic) });
                const MEnvelope sharp = envelope;
                MEnvelopePoint corner = envelope.Points()[1];
                corner.smoothingType = smoothingType;
                corner.smoothLeft = 0.5;
                corner.smoothRight = 0.8;
                corner.flags = static_cast<std::uint8_t>((isProportional ? MEnvelopePoint::Proportional : 0) |
                                                         (locksSides ? MEnvelopePoint::LockSides : 0));
                envelope.Edit([&corner](MArray<MEnvelopePoint>& points) { points[1] = corner; });
                // Half the way to the neighbour, or to the nearer one, times the share.
                const double left = 2.0 - 0.5 * (isProportional ? 0.5 : 1.0);
                const double right = 2.0 + (locksSides ? 0.5 : 0.8) * 0.5;
                SCOPED_TRACE(testing::Message() << smoothingType << isProportional << locksSides);
                for (const double x : { 0.1, left - 1e-9, right + 1e-9, 2.9 })
                    EXPECT_EQ(At(envelope, x), At(sharp, x)) << x;
                EXPECT_LT(At(envelope, 2.0), 3.9);
                constexpr double Step = 1e-6;
                for (const double x : { left, right })
                {
                    EXPECT_NEAR(At(envelope, x - 1e-12), At(envelope, x + 1e-12), 1e-9);
                    EXPECT_NEAR(SlopeBefore(envelope, x, Step), SlopeAfter(envelope, x, Step), 1e-3);
                }
            }
}

TEST(MEnvelopeComputer, RoundsTheOuterCornersByMirroredReach)
{
    MEnvelope envelope = Curve(
        { PointAt(0.0, 0.0, MEnvelopeSegment::Quadratic), PointAt(2.0, 4.0, MEnvelopeSegment::Quadratic) });
    envelope.Edit([](MArray<MEnvelopePoint>& points) { points[0].smoothLeft = points[1].smoothLeft = 0.5; });
    EXPECT_EQ(At(envelope, -0.51), 0.0);
    EXPECT_GT(At(envelope, -0.4), 0.0);
    EXPECT_GT(At(envelope, 0.4), 0.8);   // above the straight line
    EXPECT_NEAR(At(envelope, 0.51), 1.02, 1e-12);
    EXPECT_LT(At(envelope, 2.4), 4.0);
    EXPECT_EQ(At(envelope, 2.51), 4.0);
}

TEST(MEnvelopeComputer, KnowsFromWhereItIsSilent)
{
    const auto curve = [](double lastY)
    {
        return Curve({ PointAt(0.0, 1.0, MEnvelopeSegment::Quadratic),
                       PointAt(1.0, 0.0, MEnvelopeSegment::Saw, 0.9),
                       PointAt(2.0, 0.0, MEnvelopeSegment::Quadratic),
                       PointAt(3.0, lastY, MEnvelopeSegment::Quadratic) });
    };
    EXPECT_EQ(MEnvelopeComputer(curve(0.0)).ZeroFrom(), 1.0);
    EXPECT_EQ(MEnvelopeComputer(curve(0.1)).ZeroFrom(), MEnvelopeComputer::Endless);
    MEnvelope rounded = curve(0.0);
    rounded.Edit([](MArray<MEnvelopePoint>& points) { points[1].smoothLeft = 0.5; });
    EXPECT_EQ(MEnvelopeComputer(rounded).ZeroFrom(), 1.25);
    EXPECT_NE(At(rounded, 1.2), 0.0);
    EXPECT_NEAR(At(rounded, 1.25), 0.0, 1e-15);
}

TEST(MEnvelopeComputer, FillsWhatItsValuesAre)
{
    constexpr unsigned Seed = 8;
    SCOPED_TRACE(Seed);
    std::mt19937 random(Seed);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int round = 0; round < 300; ++round)
    {
        MEnvelope envelope = Curve({});
        double x = 0.0;
        for (int count = static_cast<int>(random() % 8); count > 0; --count)
        {
            // Continuous shapes only: at a jump a rounded x may lie on the other side.
            auto point = PointAt(x, unit(random), static_cast<MEnvelopeSegment>(random() % 7),
                                 2.0 * unit(random) - 1.0, 2.0 * unit(random) - 1.0);
            point.smoothLeft = random() % 2 == 0 ? unit(random) : 0.0;
            point.smoothingType = static_cast<std::int32_t>(random() % 2);
            envelope.Edit([&point](MArray<MEnvelopePoint>& points) { points.Add(point); });
            x += 0.05 + unit(random);
        }
        MEnvelopeComputer filling(envelope);
        MEnvelopeComputer single(envelope);
        const double start = -0.5 + unit(random);
        const double step = 0.001 + 0.02 * unit(random);
        std::vector<float> values(500);
        // In two parts: the second goes on where the first ended.
        filling.Fill(values.data(), start, step, 200);
        filling.Fill(values.data() + 200, start + 200 * step, step, 300);
        for (int index = 0; index < 500; ++index)
        {
            const double expected = single.Value(start + index * step);
            // Float rounding, and upright ends that magnify the rounding of x.
            const double neighbour = single.Value(start + index * step + 1e-12);
            ASSERT_NEAR(values[static_cast<std::size_t>(index)], expected,
                        1e-6 * (1.0 + std::fabs(expected)) + 10.0 * std::fabs(neighbour - expected))
                << round << " " << index;
        }
    }
}
}   // namespace
