// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/filters/FilterMagnitudes.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <numbers>

namespace MAudioFilters
{
namespace
{
constexpr double TwoPi = 6.283185307179586;

MVector::SectionQuotient LowerQuotient(const Filter<double>& section)
{
    const double numerator = section.b0 + section.b2;
    const double denominator = 1.0 - section.a2;
    const double numeratorSide = section.b0 - section.b2;
    const double denominatorSide = 1.0 + section.a2;
    return { numerator + section.b1,   -numerator,   numeratorSide * numeratorSide,
             denominator - section.a1, -denominator, denominatorSide * denominatorSide };
}

MVector::SectionQuotient UpperQuotient(const Filter<double>& section)
{
    MVector::SectionQuotient quotient = LowerQuotient(section);
    quotient.n0 = section.b1 - (section.b0 + section.b2);
    quotient.n1 = -quotient.n1;
    quotient.d0 = -section.a1 - (1.0 - section.a2);
    quotient.d1 = -quotient.d1;
    return quotient;
}
}   // namespace

InverseZPowers InverseZ(double frequency, double sampleRate)
{
    const double w = TwoPi * frequency / sampleRate;
    const double cosW = std::cos(w);
    const double sinW = std::sin(w);
    const Complex one{ 1.0, 0.0 };
    return { one / Complex{ cosW, sinW }, one / Complex{ cosW * cosW - sinW * sinW, 2.0 * sinW * cosW } };
}

template <typename T>
double MagnitudeAt(const Filter<T>& section, const InverseZPowers& z)
{
    const auto b0 = static_cast<double>(section.b0);
    const auto b1 = static_cast<double>(section.b1);
    const auto b2 = static_cast<double>(section.b2);
    const auto a1 = static_cast<double>(section.a1);
    const auto a2 = static_cast<double>(section.a2);
    const Complex numerator{ b0 + b1 * z.z1.re + b2 * z.z2.re, b1 * z.z1.im + b2 * z.z2.im };
    const Complex denominator{ 1.0 - a1 * z.z1.re - a2 * z.z2.re, -(a1 * z.z1.im) - a2 * z.z2.im };
    const Complex response = numerator / denominator;
    return std::sqrt(response.re * response.re + response.im * response.im);
}

template double MagnitudeAt(const Filter<double>& section, const InverseZPowers& z);
template double MagnitudeAt(const Filter<float>& section, const InverseZPowers& z);

double MagnitudeOfList(const Filter<double>* sections, std::int32_t count, double frequency)
{
    if (count <= 0)
        return 1.0;
    const InverseZPowers z = InverseZ(frequency, sections[0].sampleRate);
    double product = 1.0;
    for (std::int32_t i = 0; i < count; ++i)
        product *= MagnitudeAt(sections[i], z);
    return product;
}

void MagnitudeGrid::Prepare(std::int32_t pointCount, std::int32_t maxSections)
{
    assert(pointCount > 0 && pointCount % 2 == 0);
    const auto count = static_cast<std::size_t>(pointCount);
    distance.resize(count);
    sineSquared.resize(count);
    magnitudes.resize(count);
    lower.reserve(static_cast<std::size_t>(maxSections));
    upper.reserve(static_cast<std::size_t>(maxSections));
    for (std::size_t k = 0; k < count; ++k)
    {
        // Angles of the upper half are taken from its end, so that sine and distance keep all their digits.
        const std::size_t fromEdge = k < count / 2 ? k : count - k;
        const double w = std::numbers::pi * static_cast<double>(fromEdge) / static_cast<double>(count);
        const double sineOfHalf = std::sin(0.5 * w);
        const double sine = std::sin(w);
        distance[k] = 2.0 * sineOfHalf * sineOfHalf;
        sineSquared[k] = sine * sine;
    }
}

void MagnitudeGrid::Begin(const Filter<double>* sections, std::int32_t count)
{
    lower.clear();
    upper.clear();
    for (std::int32_t i = 0; i < count; ++i)
    {
        lower.push_back(LowerQuotient(sections[i]));
        upper.push_back(UpperQuotient(sections[i]));
    }
}

const double* MagnitudeGrid::Evaluate(std::int32_t first, std::int32_t n)
{
    const std::int32_t half = PointCount() / 2;
    assert(first >= 0 && n >= 0 && first + n <= (first < half ? half : 2 * half));
    const std::vector<MVector::SectionQuotient>& quotients = first < half ? lower : upper;
    double* values = magnitudes.data() + first;
    std::fill_n(values, n, 1.0);
    MVector::MultiplySectionMagnitudes(quotients.data(), static_cast<std::int32_t>(quotients.size()),
                                       distance.data() + first, sineSquared.data() + first, values, n);
    return values;
}

const double* MagnitudeGrid::EvaluateAll(const Filter<double>* sections, std::int32_t count)
{
    Begin(sections, count);
    const std::int32_t half = PointCount() / 2;
    Evaluate(0, half);
    Evaluate(half, half);
    return magnitudes.data();
}
}   // namespace MAudioFilters
