// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/fft/MSignalWindowType.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>

#include "foundation/text/MException.h"
#include "foundation/vector/VectorOperations.h"

namespace
{
/// Modified Bessel function of the first kind, order 0, by its power series.
double BesselI0(double x)
{
    constexpr int MaxTerms = 25;
    double sum = 1.0;
    double term = 1.0;
    for (int k = 1; k <= MaxTerms; ++k)
    {
        term *= x / 2.0 / k;
        sum += term * term;
        if (term * term < 1e-8 * sum)
            break;
    }
    return sum;
}

double KaiserPoint(double i, double size, double attenuation)
{
    const double b = attenuation >= 20.0 ? (attenuation - 8.7) * 0.1102 : 0.0;
    const double offset = i - size / 2.0;
    return BesselI0(b * std::sqrt(1.0 - 4.0 * offset * offset / (size * size))) / BesselI0(b);
}

/// sin(x) / x without a factor pi in x: the window runs from about 0.84 over 1 back to 0.84.
double LanczosPoint(double i, double last)
{
    const double x = 2.0 * i / last - 1.0;
    return std::abs(x) < 1e-50 ? 1.0 : std::sin(x) / x;
}

double GaussPoint(double i, double last)
{
    const double centre = last / 2.0;
    const double distance = (i - centre) / (0.4 * centre);
    return std::exp(-0.5 * distance * distance);
}

template <typename Shape>
void Fill(std::vector<float>& data, Shape shape)
{
    for (std::size_t i = 0; i < data.size(); ++i)
        data[i] = static_cast<float>(shape(static_cast<double>(i)));
}
}   // namespace

const char* const MSignalWindowType::Names[TypeCount] = { "Rectangular", "Hamming", "Hann",
                                                          "Blackman",    "Cosine",  "Lanczos",
                                                          "Bartlett",    "Gauss",   "Kaiser" };

void MSignalWindowType::Build(std::int32_t newSize, std::int32_t newType, bool complementary)
{
    if (newType < 0 || newType >= TypeCount)
        throw MException("Unknown signal window type.");
    Resize(newSize);
    size = newSize;
    type = newType;
    // A window of one point is taken at its left edge.
    const double last = size > 1 ? size - 1 : 1;
    switch (type)
    {
    case Hamming:
        Fill(data,
             [last](double i) { return 0.53836 - 0.46164 * std::cos(2.0 * std::numbers::pi * i / last); });
        break;
    case Hann:
        MVector::WindowHann(data.data(), size);
        break;
    case Blackman:
        MVector::WindowBlackman(data.data(), size);
        break;
    case Cosine:
        Fill(data, [last](double i) { return std::sin(std::numbers::pi * i / last); });
        break;
    case Lanczos:
        Fill(data, [last](double i) { return LanczosPoint(i, last); });
        break;
    case Bartlett:
        MVector::WindowBartlett(data.data(), size);
        break;
    case Gauss:
        Fill(data, [last](double i) { return GaussPoint(i, last); });
        break;
    case Kaiser:
        Fill(data, [this](double i) { return KaiserPoint(i, size, KaiserAttenuation); });
        break;
    default:
        break;
    }
    if (complementary)
    {
        const auto half = static_cast<std::size_t>(size / 2);
        for (std::size_t i = 0; i < half; ++i)
            data[i] = 1.0f - data[i + half];
    }
    sum = 0;
    sumOfSquares = 0;
    MVector::Sum(data.data(), size, &sum);
    MVector::DotProduct(data.data(), data.data(), size, &sumOfSquares);
}

/// Ones, in storage of the next power of two: sizes that change often, as an analyzer's do, share it.
void MSignalWindowType::Resize(std::int32_t count)
{
    const auto wanted = static_cast<std::size_t>(count > 0 ? count : 0);
    const std::size_t capacity = std::bit_ceil(wanted);
    if (capacity != data.capacity())
    {
        std::vector<float> fresh;
        fresh.reserve(capacity);
        data = std::move(fresh);
    }
    data.assign(wanted, 1.0f);
}
