// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/filters/Filter.h"

#include <cmath>
#include <type_traits>

#include "audio/filters/FilterMagnitudes.h"
#include "audio/filters/HighBandDesign.h"

namespace MAudioFilters
{
namespace
{
constexpr double TwoPi = 6.283185307179586;

/// Numerator B and denominator A of a section before it is divided by A0.
struct Quotient
{
    double B0, B1, B2;
    double A0, A1, A2;
};

Quotient LowShelfQuotient(double A, double c, double s)
{
    const double r = 2.0 * std::sqrt(A) * s;
    return { A * ((A + 1) - (A - 1) * c + r), 2 * A * ((A - 1) - (A + 1) * c),
             A * ((A + 1) - (A - 1) * c - r), (A + 1) + (A - 1) * c + r,
             -2 * ((A - 1) + (A + 1) * c),    (A + 1) + (A - 1) * c - r };
}

Quotient HighShelfQuotient(double A, double c, double s)
{
    const double r = 2.0 * std::sqrt(A) * s;
    return { A * ((A + 1) + (A - 1) * c + r), -2 * A * ((A - 1) + (A + 1) * c),
             A * ((A + 1) + (A - 1) * c - r), (A + 1) - (A - 1) * c + r,
             2 * ((A - 1) - (A + 1) * c),     (A + 1) - (A - 1) * c - r };
}

/// c = cos w, s = sin w / (2 Q), A the square root of the linear gain.
Quotient QuotientOf(std::int32_t type, double A, double c, double s)
{
    switch (type)
    {
    case Peak:
        return { 1 + s * A, -2 * c, 1 - s * A, 1 + s / A, -2 * c, 1 - s / A };
    case LowShelf:
        return LowShelfQuotient(A, c, s);
    case HighShelf:
        return HighShelfQuotient(A, c, s);
    case LowPass:
        return { (1 - c) / 2, 1 - c, (1 - c) / 2, 1 + s, -2 * c, 1 - s };
    case HighPass:
        return { (1 + c) / 2, -(1 + c), (1 + c) / 2, 1 + s, -2 * c, 1 - s };
    case BandPass:
        return { s, 0, -s, 1 + s, -2 * c, 1 - s };
    case Notch:
        return { 1, -2 * c, 1, 1 + s, -2 * c, 1 - s };
    case AllPass:
        return { 1 - s, -2 * c, 1 + s, 1 + s, -2 * c, 1 - s };
    default:
        throw MException("Invalid filter type.", MErrorCode::InvalidArgument);
    }
}

/// The rounding to the section's precision comes before the guard is added.
template <typename T>
T Guarded(double coefficient)
{
    return static_cast<T>(coefficient) + static_cast<T>(CoefficientGuard);
}

/// First-order sections, which have no Q and no gain. Returns false for any other type.
bool SetFirstOrder(Filter<double>& section, double w)
{
    switch (section.type)
    {
    case LowPass6:
    {
        const double p = std::exp(-w);
        section.b0 = (1 - p) + CoefficientGuard;
        section.b1 = 0;
        section.a1 = p + CoefficientGuard;
        break;
    }
    case HighPass6:
    {
        const double p = std::exp(-w);
        const double h = (p + 1) / 2;
        section.b0 = h + CoefficientGuard;
        section.b1 = CoefficientGuard - h;
        section.a1 = p + CoefficientGuard;
        break;
    }
    case AllPass6:
    {
        // (p - z^-1) / (1 - p z^-1), the -1 with the guard added.
        const double p = std::exp(-w) + CoefficientGuard;
        section.b0 = p;
        section.b1 = -0.999999999999999;
        section.a1 = p;
        break;
    }
    default:
        return false;
    }
    section.b2 = 0;
    section.a2 = 0;
    ++section.generation;
    return true;
}

void SetHighBand(Filter<double>& section)
{
    const SectionCoefficients taps =
        DesignHighBand(section.type, section.gain, section.frequency, section.sampleRate, section.q);
    ++section.generation;
    section.b0 = taps.b0 + CoefficientGuard;
    section.b1 = taps.b1 + CoefficientGuard;
    section.b2 = taps.b2 + CoefficientGuard;
    section.a1 = taps.a1 + CoefficientGuard;
    section.a2 = taps.a2 + CoefficientGuard;
}

/// Whether both poles lie inside the unit circle, and all is finite.
template <typename T>
bool IsStable(const Filter<T>& section)
{
    const auto a1 = static_cast<double>(section.a1);
    const auto a2 = static_cast<double>(section.a2);
    return std::isfinite(section.b0) && std::isfinite(section.b1) && std::isfinite(section.b2) &&
           std::fabs(a2) < 1.0 && std::fabs(a1) < 1.0 - a2;
}
}   // namespace

template <typename T>
void Filter<T>::Set(std::int32_t newType, T newGain, T newFrequency, T newSampleRate, T newQ)
{
    type = newType;
    frequency = newFrequency;
    sampleRate = newSampleRate;
    q = newQ;
    Design(newGain);
    if (IsStable(*this))
        return;
    // Only numbers that are no frequency or no Q get here. What recursions make of them would be silence or
    // worse; without the band the signal still passes.
    b0 = 1;
    b1 = b2 = a1 = a2 = 0;
}

template <typename T>
void Filter<T>::Design(T newGain)
{
    const double w = TwoPi * static_cast<double>(frequency) / static_cast<double>(sampleRate);
    if constexpr (std::is_same_v<T, double>)
    {
        const bool high = frequency > HighestBilinearShare * sampleRate;
        if (!high && SetFirstOrder(*this, w))
            return;
        if (high)
        {
            gain = newGain;
            SetHighBand(*this);
            return;
        }
    }
    cosW = std::cos(w);
    alpha = std::sin(w) / (2.0 * static_cast<double>(q));
    gain = newGain;
    Update(std::pow(10.0, static_cast<double>(gain) * 0.5 * 0.05));
}

template <typename T>
void Filter<T>::Update(double amplitude)
{
    ++generation;
    const Quotient quotient = QuotientOf(type, amplitude, cosW, alpha);
    const double n = 1.0 / quotient.A0;
    b0 = Guarded<T>(n * quotient.B0);
    b1 = Guarded<T>(n * quotient.B1);
    b2 = Guarded<T>(n * quotient.B2);
    a1 = Guarded<T>(-(n * quotient.A1));
    a2 = Guarded<T>(-(n * quotient.A2));
}

template <typename T>
double Filter<T>::Magnitude(double atFrequency) const
{
    return MagnitudeAt(*this, InverseZ(atFrequency, static_cast<double>(sampleRate)));
}

template struct Filter<double>;
template struct Filter<float>;
}   // namespace MAudioFilters
