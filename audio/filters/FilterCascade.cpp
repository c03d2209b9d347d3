// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/filters/FilterCascade.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numbers>

namespace MAudioFilters
{
namespace
{
constexpr double TwoPi = 6.283185307179586;
constexpr double FirstOrderQ = 0.7071067811865476;

/// Q of pole pair i = 1 to pairCount of a Butterworth low-pass of order 2 * pairCount.
double ButterworthQ(std::int32_t i, std::int32_t pairCount)
{
    return 1.0 / (2.0 * std::sin((2 * i - 1) * std::numbers::pi / (4.0 * pairCount)));
}
}   // namespace

void FilterCascade::SetLowPass(double frequency, double sampleRate, std::int32_t orderIndex)
{
    Set(LowPass6, LowPass, frequency, sampleRate, orderIndex);
}

void FilterCascade::SetHighPass(double frequency, double sampleRate, std::int32_t orderIndex)
{
    Set(HighPass6, HighPass, frequency, sampleRate, orderIndex);
}

void FilterCascade::Set(FilterType first, FilterType second, double frequency, double sampleRate,
                        std::int32_t orderIndex)
{
    assert(orderIndex >= 0 && orderIndex <= MaxSections);
    if (orderIndex <= 0)
    {
        sections[0].Set(first, 0.0, frequency, sampleRate, FirstOrderQ);
        count = 1;
        return;
    }
    count = std::min(orderIndex, MaxSections);
    const double w = TwoPi * frequency / sampleRate;
    const double cosW = std::cos(w);
    const double sinW = std::sin(w);
    for (std::int32_t i = 0; i < count; ++i)
    {
        Filter<double>& section = sections[i];
        section.type = second;
        section.gain = 0.0;
        section.frequency = frequency;
        section.sampleRate = sampleRate;
        section.q = ButterworthQ(i + 1, count);
        section.cosW = cosW;
        section.alpha = sinW / (2.0 * section.q);
        section.Update(1.0);
    }
}

void DecimatorCascade::SetLowPass(float frequency, float sampleRate)
{
    count = MaxSections;
    for (std::int32_t i = 0; i < count; ++i)
        sections[i].Set(LowPass, 0.0f, frequency, sampleRate, static_cast<float>(ButterworthQ(i + 1, count)));
}

void LoudnessWeighting::Design(double sampleRate)
{
    const double shelfW = 9434.20273873015 / sampleRate;
    shelf.type = HighShelf;
    shelf.frequency = 1501.5;
    shelf.gain = 4.0;
    shelf.q = 0.7072;
    shelf.sampleRate = sampleRate;
    shelf.cosW = std::cos(shelfW);
    shelf.alpha = std::sin(shelfW) / 1.4144;
    shelf.Update(std::pow(10.0, 0.1));

    const double highPassW = 239.07520093818323 / sampleRate;
    highPass.type = HighPass;
    highPass.frequency = 38.05;
    highPass.gain = 0.0;
    highPass.q = 0.5;
    highPass.sampleRate = sampleRate;
    highPass.cosW = std::cos(highPassW);
    highPass.alpha = std::sin(highPassW);
    highPass.Update(1.0);
    const double level = std::pow(10.0, 0.00216);
    highPass.b0 *= level;
    highPass.b1 *= level;
    highPass.b2 *= level;
}
}   // namespace MAudioFilters
