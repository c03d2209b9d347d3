// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/filters/HighBandDesign.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "audio/filters/Filter.h"

namespace MAudioFilters
{
namespace
{
/// Where a band sounds as it was meant to: most of the audible range lies far below half of it.
constexpr double ReferenceRate = 96000.0;
/// 96 kHz over the highest frequency of a band, 20 kHz.
constexpr double ReferenceShare = 4.8;
/// Up to this share of the rate the wanted magnitude glides.
constexpr double GlideEndShare = 0.47;
/// Low enough, as a share of the rate, that a slope is that at 0 Hz.
constexpr double LowShare = 1e-3;
/// Keeps levels apart from zero: 200 dB.
constexpr double LowestLevel = 1e-10;

double Tangent(double share)
{
    return std::tan(std::numbers::pi * share);
}

/// The wanted magnitude, by a share of the sample rate.
class WantedLevel
{
public:
    WantedLevel(std::int32_t type, double gainDb, double frequency, double usedSampleRate, double q)
        : sampleRate(usedSampleRate)
    {
        const double reference = std::max(ReferenceRate, ReferenceShare * frequency);
        const double share = frequency / sampleRate;
        const double glide =
            std::min((share - HighestBilinearShare) / (GlideEndShare - HighestBilinearShare), 1.0);
        const double rate = 1.0 / ((1.0 - glide) / sampleRate + glide / reference);
        band.Set(type, gainDb, std::min(frequency, HighestBilinearShare * rate), rate, q);
    }
    double At(double share) const { return std::max(band.Magnitude(share * sampleRate), LowestLevel); }

private:
    double sampleRate;
    Filter<double> band;
};

/// g (1 + P s) / (1 + Q s)
SectionCoefficients Shelf(double g, double P, double Q)
{
    const double n = 1.0 / (1.0 + Q);
    return { g * n * (1.0 + P), g * n * (1.0 - P), 0.0, -n * (1.0 - Q), 0.0 };
}

SectionCoefficients DesignShelf(const WantedLevel& wanted)
{
    // Q^2 v, at the highest share: from a gain that goes on rising by 7 dB up to half the rate, to one that
    // is reached far below.
    constexpr double lowestTurn = 0.25;
    constexpr double highestTurn = 256.0;
    // The bottom of a notch has no level to meet.
    constexpr double deepest = 1e4;
    const double level = wanted.At(0.0);
    const double vTop = std::pow(Tangent(HighestBilinearShare), 2);
    const double vHalf = std::pow(Tangent(0.5 * HighestBilinearShare), 2);
    double top = std::pow(wanted.At(HighestBilinearShare) / level, 2);
    double half = std::pow(wanted.At(0.5 * HighestBilinearShare) / level, 2);
    // A cut is the inverse of a boost.
    const bool cuts = top < 1.0;
    if (cuts)
    {
        top = 1.0 / top;
        half = 1.0 / half;
    }
    top = std::min(top, deepest);
    // top (1 + q vTop) = 1 + p vTop, half (1 + q vHalf) = 1 + p vHalf, for the squares p and q.
    const double rest = (half - 1.0) - (top - 1.0) * vHalf / vTop;
    const double turn = top > half ? rest / (top - half) * vTop / vHalf : highestTurn;
    const double q = std::clamp(turn, lowestTurn, highestTurn) / vTop;
    double p = (top * (1.0 + q * vTop) - 1.0) / vTop;
    if (turn < lowestTurn)
    {
        // Steeper than a first order can be: too much half way up, and twice as far from it at the top.
        const double pHalf = (half * (1.0 + q * vHalf) - 1.0) / vHalf;
        p = std::max(p * std::pow(std::max(pHalf / p, 0.001), 2.0 / 3.0), q);
    }
    return cuts ? Shelf(level, std::sqrt(q), std::sqrt(p)) : Shelf(level, std::sqrt(p), std::sqrt(q));
}

/// The slope at 0 Hz over the bilinear variable, and where the magnitude leaves it.
struct Slope
{
    Slope(const WantedLevel& wanted, std::int32_t order)
        : level(std::pow(wanted.At(LowShare), 1.0 / order) / Tangent(LowShare)),
          excessHalf(Excess(wanted, 0.5 * HighestBilinearShare, order)),
          excessTop(Excess(wanted, HighestBilinearShare, order))
    {
    }
    /// The square of slope over wanted magnitude, less 1; of a power of them that leaves a first order.
    double Excess(const WantedLevel& wanted, double share, std::int32_t order) const
    {
        const double magnitude = std::pow(wanted.At(share), 1.0 / order);
        return std::pow(level * Tangent(share) / magnitude, 2) - 1.0;
    }
    double level;
    double excessHalf;
    double excessTop;
};

// Q^2 v at the highest share: keeps poles away from half the rate.
constexpr double LowestPoleTurn = 0.25;

SectionCoefficients DesignFirstOrderHighPass(const WantedLevel& wanted)
{
    const Slope slope(wanted, 1);
    const double Q = std::sqrt(std::max(slope.excessTop, LowestPoleTurn)) / Tangent(HighestBilinearShare);
    const double n = 1.0 / (1.0 + Q);
    return { slope.level * n, -slope.level * n, 0.0, -n * (1.0 - Q), 0.0 };
}

SectionCoefficients DesignHighPass(const WantedLevel& wanted)
{
    const Slope slope(wanted, 2);
    const double vTop = std::pow(Tangent(HighestBilinearShare), 2);
    const double vHalf = std::pow(Tangent(0.5 * HighestBilinearShare), 2);
    // (1 + q v)^2 at the highest share ...
    const double lowest = LowestPoleTurn / vTop;
    double q1 = std::max(slope.excessTop / vTop, lowest);
    double q2 = q1;
    // ... or 1 + b v + c v^2 = (1 + q1 v) (1 + q2 v) at both, where a low Q has the poles apart.
    const double half = (std::pow(slope.excessHalf + 1.0, 2) - 1.0) / vHalf;
    const double top = (std::pow(slope.excessTop + 1.0, 2) - 1.0) / vTop;
    const double c = (top - half) / (vTop - vHalf);
    const double b = half - c * vHalf;
    if (c > 0.0 && b * b > 4.0 * c && b > 0.0)
    {
        q1 = std::max(0.5 * (b + std::sqrt(b * b - 4.0 * c)), lowest);
        q2 = std::max(c / q1, lowest);
    }
    const double Q1 = std::sqrt(q1);
    const double Q2 = std::sqrt(q2);
    const double n1 = 1.0 / (1.0 + Q1);
    const double n2 = 1.0 / (1.0 + Q2);
    const double K = slope.level * slope.level * n1 * n2;
    const double pole1 = -n1 * (1.0 - Q1);
    const double pole2 = -n2 * (1.0 - Q2);
    return { K, -2.0 * K, K, pole1 + pole2, -pole1 * pole2 };
}
}   // namespace

SectionCoefficients DesignHighBand(std::int32_t type, double gainDb, double frequency, double sampleRate,
                                   double q)
{
    switch (type)
    {
    case AllPass:
    case AllPass6:
    {
        Filter<double> section;
        section.Set(type, gainDb, HighestBilinearShare * sampleRate, sampleRate, q);
        return { section.b0, section.b1, section.b2, section.a1, section.a2 };
    }
    case HighPass:
        return DesignHighPass({ type, gainDb, frequency, sampleRate, q });
    case HighPass6:
    case BandPass:
        return DesignFirstOrderHighPass({ type, gainDb, frequency, sampleRate, q });
    default:
        return DesignShelf({ type, gainDb, frequency, sampleRate, q });
    }
}
}   // namespace MAudioFilters
