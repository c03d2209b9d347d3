// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/text/MException.h"

namespace MAudioFilters
{
enum FilterType : std::int32_t
{
    Peak = 0,
    LowShelf = 1,
    HighShelf = 2,
    LowPass = 3,
    HighPass = 4,
    LowPass6 = 5,
    HighPass6 = 6,
    BandPass = 7,
    Notch = 8,
    AllPass = 9,
    AllPass6 = 10
};

/// 1e-15 rounded to single precision: added to every coefficient, so that no exact zero enters a
/// recursion.
inline constexpr double CoefficientGuard = 1.0000000036274937e-15;

/// One recursive section, a plain value: y[n] = b0 x[n] + b1 x[n-1] + b2 x[n-2] + a1 y[n-1] + a2 y[n-2].
/// The feedback signs are the reverse of the usual denominator form.
template <typename T>
struct Filter
{
    double cosW = 0;   ///< cos w of the last second-order design
    double alpha = 0;   ///< sin w / (2 Q) of the last second-order design
    std::int32_t generation = 0;   ///< raised with each new set of coefficients
    std::int32_t type = 0;
    T gain = 0;   ///< dB
    T frequency = 0;   ///< Hz
    T sampleRate = 0;   ///< Hz
    T q = 0;
    T b0 = 0;
    T b2 = 0;
    T a2 = 0;
    T b1 = 0;
    T a1 = 0;

    /// Designs the section. gain in dB, frequencies in Hz. Filter<float> knows types 0 to 4 and 7 to 9.
    ///
    /// Up to HighestBilinearShare of the sample rate by R. Bristow-Johnson, Audio EQ Cookbook, with the Q
    /// form of alpha for shelves too; above, and beyond half the rate, see DesignHighBand (Filter<double>
    /// only). Both poles lie inside the unit circle, whatever the arguments: a section that couldn't be
    /// stable, for a frequency or a Q that isn't above 0, passes its input. Throws MException "Invalid filter
    /// type.".
    void Set(std::int32_t type, T gain, T frequency, T sampleRate, T q);
    /// The second-order coefficients for amplitude factor A = 10^(gain / 40), from cosW, alpha and type.
    void Update(double amplitude);
    /// Linear magnitude at a frequency in Hz.
    double Magnitude(double frequency) const;

private:
    void Design(T newGain);
};

extern template struct Filter<double>;
extern template struct Filter<float>;
}   // namespace MAudioFilters
