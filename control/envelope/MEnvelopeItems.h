// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>

#include "control/envelope/MEnvelopeComputer.h"

/// The formulas of a compiled curve. u is the place in a segment, 0 at its start and 1 at its end.

/// Where a segment starts and ends.
struct EnvelopeSegmentEnds
{
    double x0;
    double y0;
    double x1;
    double y1;

    double Width() const { return x1 - x0; }
    double Height() const { return y1 - y0; }
    double PlaceOf(double x) const { return (x - x0) / (x1 - x0); }
};

/// Turns `double At(double x) const` of a formula into loops without a virtual call for each value. The
/// slopes come from `double SlopeAt(double x) const`, at a corner the one to the right.
template <typename Formula>
class EnvelopeItem : public MEnvelopeComputer::Item
{
public:
    void Fill(float* values, double x, double step, int count) const override
    {
        for (int index = 0; index < count; ++index)
            values[index] = static_cast<float>(Self().At(x + step * index));
    }
    void FillDouble(double* values, double x, double step, int count) const override
    {
        for (int index = 0; index < count; ++index)
            values[index] = Self().At(x + step * index);
    }
    double Value(double x) const override { return Self().At(x); }
    double LeftSlope(double x) const override { return Self().SlopeAt(x); }   // corners override it
    double RightSlope(double x) const override { return Self().SlopeAt(x); }

private:
    const Formula& Self() const { return static_cast<const Formula&>(*this); }
};

class ItemConstant final : public EnvelopeItem<ItemConstant>
{
public:
    explicit ItemConstant(double constant) : value(constant) {}
    double At(double) const { return value; }
    double SlopeAt(double) const { return 0.0; }

private:
    double value;
};

class ItemLinear final : public EnvelopeItem<ItemLinear>
{
public:
    explicit ItemLinear(const EnvelopeSegmentEnds& segment)
        : ends(segment), slope(segment.Height() / segment.Width())
    {
    }
    double At(double x) const { return ends.y0 + slope * (x - ends.x0); }
    double SlopeAt(double) const { return slope; }

private:
    EnvelopeSegmentEnds ends;
    double slope;
};

/// The parabola through both ends that starts with 1 - curvature times the mean slope.
class ItemQuadratic final : public EnvelopeItem<ItemQuadratic>
{
public:
    ItemQuadratic(const EnvelopeSegmentEnds& segment, double curvature)
        : ends(segment), startSlope((1.0 - curvature) * segment.Height() / segment.Width()),
          bend(curvature * segment.Height() / (segment.Width() * segment.Width()))
    {
    }
    double At(double x) const
    {
        const double distance = x - ends.x0;
        return ends.y0 + (startSlope + bend * distance) * distance;
    }
    double SlopeAt(double x) const { return startSlope + 2.0 * bend * (x - ends.x0); }

private:
    EnvelopeSegmentEnds ends;
    double startSlope;
    double bend;
};

/// f(u) from 0 to 1 of fourth order, bent by k of -1 to 1; k = 0 is straight.
struct FourthOrderShape
{
    explicit FourthOrderShape(double bend) : k(bend) {}
    double At(double u) const
    {
        const double square = u * u;
        if (k >= 0.0)
            return ((-k * u + 4.0 * k) * u - 6.0 * k) * square + (3.0 * k + 1.0) * u;
        return -k * square * square + (k + 1.0) * u;
    }
    double SlopeAt(double u) const
    {
        if (k >= 0.0)
            return ((-4.0 * k * u + 12.0 * k) * u - 12.0 * k) * u + 3.0 * k + 1.0;
        return -4.0 * k * u * u * u + k + 1.0;
    }

    double k;
};

class ItemFourthOrder final : public EnvelopeItem<ItemFourthOrder>
{
public:
    ItemFourthOrder(const EnvelopeSegmentEnds& segment, double bend) : ends(segment), shape(bend) {}
    double At(double x) const { return ends.y0 + ends.Height() * shape.At(ends.PlaceOf(x)); }
    double SlopeAt(double x) const { return ends.Height() / ends.Width() * shape.SlopeAt(ends.PlaceOf(x)); }

private:
    EnvelopeSegmentEnds ends;
    FourthOrderShape shape;
};

/// Two fourth-order halves, bent against each other, that meet in the middle.
class ItemDouble final : public EnvelopeItem<ItemDouble>
{
public:
    ItemDouble(const EnvelopeSegmentEnds& segment, double curvature);
    double At(double x) const { return HalfAt(x).At(x); }
    double SlopeAt(double x) const { return HalfAt(x).SlopeAt(x); }

private:
    const ItemFourthOrder& HalfAt(double x) const { return x < middle ? first : second; }

    double middle;
    ItemFourthOrder first;
    ItemFourthOrder second;
};

/// 1 - (1 - u^e)^(1/e): the quarter of a superellipse.
class ItemExponencial final : public EnvelopeItem<ItemExponencial>
{
public:
    ItemExponencial(const EnvelopeSegmentEnds& segment, double curvature)
        : ends(segment), exponent(std::exp(3.0 * curvature)), inverseExponent(1.0 / exponent)
    {
    }
    double At(double x) const
    {
        const double rest = std::max(0.0, 1.0 - std::pow(std::max(0.0, ends.PlaceOf(x)), exponent));
        return ends.y0 + ends.Height() * (1.0 - std::pow(rest, inverseExponent));
    }
    double SlopeAt(double x) const;

private:
    EnvelopeSegmentEnds ends;
    double exponent;
    double inverseExponent;
};

/// A quadratic Bezier curve whose control point lies between the ends in x, so that x grows with the
/// curve's parameter.
class ItemBezier final : public EnvelopeItem<ItemBezier>
{
public:
    ItemBezier(const EnvelopeSegmentEnds& segment, double controlX, double controlY)
        : ends(segment), halfSpeedX(controlX - segment.x0), bendX(segment.x0 - 2.0 * controlX + segment.x1),
          halfSpeedY(controlY - segment.y0), bendY(segment.y0 - 2.0 * controlY + segment.y1)
    {
    }
    double At(double x) const
    {
        const double t = ParameterAt(x);
        return (bendY * t + 2.0 * halfSpeedY) * t + ends.y0;
    }
    double SlopeAt(double x) const;

private:
    // dx/dt / 2 at x
    double Root(double x) const
    {
        return std::sqrt(std::max(0.0, halfSpeedX * halfSpeedX + bendX * (x - ends.x0)));
    }
    // x = bendX t^2 + 2 halfSpeedX t + x0, solved in the form that has no difference of near numbers and
    // holds for bendX = 0 as well.
    double ParameterAt(double x) const
    {
        const double divisor = halfSpeedX + Root(x);
        return divisor > 0.0 ? (x - ends.x0) / divisor : 0.0;
    }

    EnvelopeSegmentEnds ends;
    double halfSpeedX;
    double bendX;
    double halfSpeedY;
    double bendY;
};

/// The cubic through both ends with given slopes there.
class ItemCubic final : public EnvelopeItem<ItemCubic>
{
public:
    ItemCubic(const EnvelopeSegmentEnds& segment, double startSlope, double endSlope)
        : ends(segment), a1(startSlope)
    {
        const double width = segment.Width();
        const double mean = segment.Height() / width;
        a2 = (3.0 * mean - 2.0 * startSlope - endSlope) / width;
        a3 = (startSlope + endSlope - 2.0 * mean) / (width * width);
    }
    double At(double x) const
    {
        const double distance = x - ends.x0;
        return ends.y0 + ((a3 * distance + a2) * distance + a1) * distance;
    }
    double SlopeAt(double x) const
    {
        const double distance = x - ends.x0;
        return (3.0 * a3 * distance + 2.0 * a2) * distance + a1;
    }

private:
    EnvelopeSegmentEnds ends;
    double a1;
    double a2;
    double a3;
};

class ItemStairs final : public EnvelopeItem<ItemStairs>
{
public:
    ItemStairs(const EnvelopeSegmentEnds& segment, int stairCount) : ends(segment), count(stairCount) {}
    double At(double x) const
    {
        return ends.y0 + std::floor(ends.PlaceOf(x) * count) * ends.Height() / count;
    }
    double SlopeAt(double) const { return 0.0; }

private:
    EnvelopeSegmentEnds ends;
    double count;
};

class ItemPulses final : public EnvelopeItem<ItemPulses>
{
public:
    ItemPulses(const EnvelopeSegmentEnds& segment, int pulseCount, double firstValue, double secondValue)
        : ends(segment), halfCount(2.0 * pulseCount), first(firstValue), second(secondValue)
    {
    }
    double At(double x) const
    {
        const double half = std::floor(ends.PlaceOf(x) * halfCount);
        return half - 2.0 * std::floor(half / 2.0) < 0.5 ? first : second;
    }
    double SlopeAt(double) const { return 0.0; }

private:
    EnvelopeSegmentEnds ends;
    double halfCount;   // half periods
    double first;
    double second;
};

/// Saw, triangles and sines run between two levels.
struct EnvelopeWave
{
    EnvelopeSegmentEnds ends;
    double count;
    double start;
    double stop;
};

class ItemSaw final : public EnvelopeItem<ItemSaw>
{
public:
    explicit ItemSaw(const EnvelopeWave& sawWave) : wave(sawWave) {}
    double At(double x) const
    {
        const double teeth = wave.ends.PlaceOf(x) * wave.count;
        return wave.start + (teeth - std::floor(teeth)) * (wave.stop - wave.start);
    }
    double SlopeAt(double) const { return wave.count * (wave.stop - wave.start) / wave.ends.Width(); }

private:
    EnvelopeWave wave;
};

class ItemTriangles final : public EnvelopeItem<ItemTriangles>
{
public:
    explicit ItemTriangles(const EnvelopeWave& triangleWave) : wave(triangleWave) {}
    double At(double x) const
    {
        const double side = Sides(x);
        const double phase = side - 2.0 * std::floor(side / 2.0);   // 0 to 2, up and down
        return wave.start + (1.0 - std::fabs(phase - 1.0)) * (wave.stop - wave.start);
    }
    double SlopeAt(double x) const { return SlopeOfSide(std::floor(Sides(x))); }
    double LeftSlope(double x) const override { return SlopeOfSide(std::ceil(Sides(x)) - 1.0); }

private:
    double SideCount() const { return 2.0 * wave.count - 1.0; }
    double Sides(double x) const { return wave.ends.PlaceOf(x) * SideCount(); }
    double SlopeOfSide(double side) const
    {
        const double slope = SideCount() * (wave.stop - wave.start) / wave.ends.Width();
        return side - 2.0 * std::floor(side / 2.0) < 0.5 ? slope : -slope;
    }

    EnvelopeWave wave;
};

class ItemSines final : public EnvelopeItem<ItemSines>
{
public:
    explicit ItemSines(const EnvelopeWave& sineWave) : wave(sineWave) {}
    double At(double x) const
    {
        return 0.5 * (wave.start + wave.stop) + 0.5 * (wave.stop - wave.start) * std::sin(Phase(x));
    }
    double SlopeAt(double x) const
    {
        return 0.5 * (wave.stop - wave.start) * std::cos(Phase(x)) * Turn() / wave.ends.Width();
    }

private:
    double Turn() const { return (2.0 * wave.count - 1.0) * std::numbers::pi; }
    double Phase(double x) const { return wave.ends.PlaceOf(x) * Turn() - 0.5 * std::numbers::pi; }

    EnvelopeWave wave;
};
