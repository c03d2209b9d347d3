// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/envelope/MEnvelopeComputer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>
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
constexpr double Step = 1e-6;

double SlopeAfter(const MEnvelope& envelope, double x)
{
    return (At(envelope, x + Step) - At(envelope, x)) / Step;
}

double SlopeBefore(const MEnvelope& envelope, double x)
{
    return (At(envelope, x - Step) - At(envelope, x - 2.0 * Step)) / Step;
}

// The fourth-order shape: between a line and u^4, or that turned by half a turn.
double BentLine(double u, double c)
{
    return c >= 0.0 ? std::lerp(u, std::pow(u, 4.0), c) : std::lerp(u, 1.0 - std::pow(1.0 - u, 4.0), -c);
}

// De Casteljau: the curve as lines between lines; t is sought until x fits.
double BezierAt(double x, double controlX, double controlY)
{
    const auto along = [](double control, double t)
    {
        return std::lerp(std::lerp(0.0, control, t), std::lerp(control, 1.0, t), t);
    };
    double low = 0.0;
    double high = 1.0;
    for (int turn = 0; turn < 60; ++turn)
        (along(controlX, 0.5 * (low + high)) < x ? low : high) = 0.5 * (low + high);
    return along(controlY, low);
}

// The shapes by their definitions, from 0 to 1.
double Shape(MEnvelopeSegment type, double c, double cx, double u)
{
    using enum MEnvelopeSegment;
    const double count = std::max(1.0, std::round(64.0 * c * c));
    const double period = u * count - std::floor(u * count);
    const double sides = u * (2.0 * count - 1.0);
    const double along = sides - std::floor(sides);
    const bool isFalling = static_cast<int>(sides) % 2 == 1;
    const auto turned = [c](double value)
    {
        return c < 0.0 ? 1.0 - value : value;
    };
    switch (type)
    {
    case Quadratic:
        return (1.0 - c) * u + c * u * u;
    case MEnvelopeSegment::FourthOrder:
        return BentLine(u, c);
    case Exponential:   // u^e + (1 - y)^e = 1
        return 1.0 - std::pow(1.0 - std::pow(u, std::exp(3.0 * c)), std::exp(-3.0 * c));
    case MEnvelopeSegment::Bezier:
        return BezierAt(u, 0.5 * (cx + 1.0), 0.5 * (c + 1.0));
    case Double:
        return u < 0.5 ? 0.5 * BentLine(2.0 * u, c) : 0.5 + 0.5 * BentLine(2.0 * u - 1.0, -c);
    case Stairs:
        return std::floor(u * count) / count;
    case Pulses:
        return (period < 0.5) == (c > 0.0) ? 1.0 : 0.0;
    case Saw:
        return turned(period);
    case Triangles:
        return turned(isFalling ? 1.0 - along : along);
    case Sines:
        return turned(0.5 - 0.5 * std::cos(std::numbers::pi * (isFalling ? along + 1.0 : along)));
    default:   // alone, a smooth segment leaves and arrives level
        return u * u * (3.0 - 2.0 * u);
    }
}

TEST(MEnvelopeComputer, DrawsEverySegmentByItsDefinition)
{
    for (int type = 0; type < MEnvelopeSegmentCount; ++type)
        for (const double c : { -1.0, -0.8, -0.3, 0.0, 0.15, 0.4, 1.0 })
            for (const double cx : { -1.0, 0.0, 1e-12, 0.7 })
            {
                SCOPED_TRACE(testing::Message() << "type " << type << " curvature " << c << " " << cx);
                const auto segment = static_cast<MEnvelopeSegment>(type);
                const MEnvelope envelope = Segment(segment, c, cx);
                MEnvelopeComputer computer(envelope);
                EXPECT_EQ(computer.Value(-100.0), Y0);
                for (double u = 0.0003; u < 1.0; u += 0.0127)
                    ASSERT_NEAR(computer.Value(X0 + u * (X1 - X0)), Y0 + Shape(segment, c, cx, u) * (Y1 - Y0),
                                1e-8)
                        << u;
                for (const double x : { X1, 1e9, std::numeric_limits<double>::infinity() })
                    EXPECT_EQ(computer.Value(x), Y1);
                const MEnvelope flat =
                    Curve({ PointAt(0.0, 0.7, segment, c, cx), PointAt(1.0, 0.7, segment) });
                EXPECT_NEAR(At(flat, 0.123), 0.7, 1e-15);
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

TEST(MEnvelopeComputer, RoundsCornersOfAllSegmentsWithoutAKink)
{
    for (int type = 0; type < MEnvelopeSegmentCount; ++type)
        for (const double c : { -0.7, 0.0, 0.2, 0.6 })
            for (const std::int32_t smoothingType :
                 { MEnvelopePoint::BezierWherePossible, MEnvelopePoint::AlwaysCubic })
            {
                SCOPED_TRACE(testing::Message()
                             << "type " << type << " curvature " << c << " by " << smoothingType);
                const auto segment = static_cast<MEnvelopeSegment>(type);
                MEnvelope envelope = Curve({ PointAt(0.0, 0.0, segment, c, c),
                                             PointAt(2.0, 4.0, segment, c, -c), PointAt(3.0, 1.0, segment) });
                envelope.Edit(
                    [&](MArray<MEnvelopePoint>& points)
                    {
                        points[1].smoothLeft = 0.5;
                        points[1].smoothingType = smoothingType;
                    });
                // The nearer neighbour decides: half its distance, and half of that.
                for (const double x : { 1.75, 2.25 })
                {
                    EXPECT_NEAR(At(envelope, x - 1e-12), At(envelope, x + 1e-12), 1e-9) << x;
                    const double slope = SlopeAfter(envelope, x);
                    EXPECT_NEAR(SlopeBefore(envelope, x), slope, 1e-3 * std::max(1.0, std::fabs(slope))) << x;
                }
            }
}

TEST(MEnvelopeComputer, ReachesAsFarAsCornersSay)
{
    using enum MEnvelopeSegment;
    for (const std::int32_t smoothingType :
         { MEnvelopePoint::BezierWherePossible, MEnvelopePoint::AlwaysCubic })
        for (const bool isProportional : { false, true })
            for (const bool locksSides : { false, true })
            {
                SCOPED_TRACE(testing::Message() << smoothingType << isProportional << locksSides);
                MEnvelope envelope = Curve({ PointAt(0.0, 0.0, Quadratic), PointAt(2.0, 4.0, Quadratic),
                                             PointAt(3.0, 1.0, Quadratic) });
                const MEnvelope sharp = envelope;
                envelope.Edit(
                    [&](MArray<MEnvelopePoint>& points)
                    {
                        points[1].smoothingType = smoothingType;
                        points[1].smoothLeft = 0.5;
                        points[1].smoothRight = 0.8;
                        points[1].flags =
                            static_cast<std::uint8_t>((isProportional ? MEnvelopePoint::Proportional : 0) |
                                                      (locksSides ? MEnvelopePoint::LockSides : 0));
                    });
                // Half the way to the neighbour, or to the nearer one, times the share.
                const double left = 2.0 - 0.5 * (isProportional ? 0.5 : 1.0);
                const double right = 2.0 + (locksSides ? 0.5 : 0.8) * 0.5;
                for (const double x : { 0.1, left - 1e-9, right + 1e-9, 2.9 })
                    EXPECT_EQ(At(envelope, x), At(sharp, x)) << x;
                const double yLeft = At(sharp, left);
                const double yRight = At(sharp, right);
                const double width = right - left;
                for (const double u : { 0.1, 0.5, 0.8 })
                {
                    // The tangents of straight neighbours meet in the corner; or the cubic with both slopes,
                    // by Hermite.
                    double expected =
                        yLeft + BezierAt(u, (2.0 - left) / width, (4.0 - yLeft) / (yRight - yLeft)) *
                                    (yRight - yLeft);
                    if (smoothingType == MEnvelopePoint::AlwaysCubic)
                        expected = std::lerp(yLeft, yRight, u * u * (3.0 - 2.0 * u)) +
                                   width * u * (1.0 - u) * (2.0 * (1.0 - u) + 3.0 * u);
                    EXPECT_NEAR(At(envelope, left + u * width), expected, 1e-9) << u;
                }
            }
    // At the ends the reach is mirrored.
    MEnvelope envelope = Curve({ PointAt(0.0, 0.0, Quadratic), PointAt(2.0, 4.0, Quadratic) });
    envelope.Edit([](MArray<MEnvelopePoint>& points) { points[0].smoothLeft = points[1].smoothLeft = 0.5; });
    for (const double x : { -0.51, 0.51, 1.49, 2.51 })
        EXPECT_NEAR(At(envelope, x), 2.0 * std::clamp(x, 0.0, 2.0), 1e-12) << x;
    for (const double x : { -0.4, 0.4 })
    {
        EXPECT_GT(At(envelope, x), 2.0 * std::max(x, 0.0)) << x;
        EXPECT_NEAR(At(envelope, x) + At(envelope, 2.0 - x), 4.0, 1e-12) << "one end is the other, turned";
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
