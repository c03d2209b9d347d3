// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

class MEnvelope;

/// A curve compiled into formulas on intervals of x. It keeps nothing of the envelope and has to be
/// compiled again when that changes. One thread at a time; evaluating never allocates and never throws.
class MEnvelopeComputer
{
public:
    class Item
    {
    public:
        virtual ~Item() = default;
        /// `count` values at x, x + step, ...
        virtual void Fill(float* values, double x, double step, int count) const = 0;
        virtual void FillDouble(double* values, double x, double step, int count) const = 0;
        virtual double Value(double x) const = 0;
        /// The slope towards lower x; differs from RightSlope where the formula has a corner.
        virtual double LeftSlope(double x) const = 0;
        virtual double RightSlope(double x) const = 0;

        double end = 0.0;   ///< the x at which the next item takes over
    };

    /// The end of the last item, and ZeroFrom of a curve that doesn't end in silence.
    static constexpr double Endless = 1.7e308;

    /// Constant 0 until something is compiled.
    MEnvelopeComputer();
    explicit MEnvelopeComputer(const MEnvelope& envelope);
    MEnvelopeComputer(MEnvelopeComputer&&) noexcept = default;
    MEnvelopeComputer& operator=(MEnvelopeComputer&&) noexcept = default;

    /// Throws MException "Invalid control point type."; the old curve stays then.
    void Compile(const MEnvelope& envelope);

    /// Has to come before an x below the last one.
    void Rewind(double x);
    /// Walks forward only: below the last x it evaluates the present interval's formula.
    double Value(double x);
    /// `count` values at startX, startX + step, ...; step > 0.
    void Fill(float* values, double startX, double step, int count);

    double MinimumX() const { return minX; }
    double MaximumX() const { return maxX; }
    /// From here on the curve is 0.
    double ZeroFrom() const { return zeroFrom; }

private:
    std::vector<std::unique_ptr<Item>> items;   // sorted by end
    double position = 0.0;   // the x of the last evaluation
    std::int32_t index = 0;   // the item that holds it
    double minX = 0.0;
    double maxX = 0.0;
    double zeroFrom = Endless;
};
