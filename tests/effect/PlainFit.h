// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "effect/FilterSearch.h"

/// The search as it is defined, with no step left out: the oracle of FilterSearch.
namespace PlainFit
{
inline double Limit(double gain, double lowest)
{
    return std::max(std::min(gain, 1.0), lowest);
}

// Sixteen partial sums, element i in sum i mod 16.
inline double Dot(const float* a, const float* b, int n)
{
    double parts[16] = {};
    for (int i = 0; i < n; ++i)
        parts[i % 16] += static_cast<double>(a[i]) * static_cast<double>(b[i]);
    double sum = 0;
    for (const double part : parts)
        sum += part;
    return sum;
}

inline double DotAt(const float* wanted, const FilterCandidate& candidate, int shift)
{
    const float* shape = candidate.shape.data();
    double head = 0;
    for (int i = 0; i < -shift; ++i)
        head += wanted[i];
    double tail = 0;
    for (int i = 1023; i >= 1024 - shift; --i)
        tail += wanted[i];
    const double overlap =
        Dot(wanted + std::max(-shift, 0), shape + std::max(shift, 0), 1024 - std::abs(shift));
    if (shift < 0)
        return shape[0] * head + overlap;
    return shape[1023] * tail + overlap;
}

// The curve with what is not judged as zeros.
inline std::vector<float> Judged(const FilterDictionary& dictionary, const float* curve)
{
    std::vector<float> judged(1024);
    std::copy_n(curve, dictionary.JudgedCount(), judged.begin());
    return judged;
}

inline FitChoice Exhaustive(const FilterDictionary& dictionary, const float* curve,
                            const FitSelection& selection)
{
    FitChoice best;
    const std::vector<float> judged = Judged(dictionary, curve);
    const float* wanted = judged.data();
    const int count = dictionary.JudgedCount();
    const double wantedEnergy = Dot(wanted, wanted, 1024);
    for (const FilterCandidate& candidate : dictionary.Candidates())
    {
        if (candidate.q > selection.maxQ + 1e-50 || (!selection.allowPassNotch && !candidate.hasGain))
            continue;
        const auto square = [&](int i)
        {
            const double value = candidate.shape[static_cast<std::size_t>(i)];
            return value * value;
        };
        double energy = candidate.maxShift * square(0);
        for (int i = 0; i < count - candidate.maxShift; ++i)
            energy += square(i);
        for (int shift = -candidate.maxShift; shift < 512; ++shift)
        {
            const double dot = DotAt(wanted, candidate, shift);
            const double gain = Limit(dot / energy, candidate.hasGain ? -1.0 : 1.0);
            const double error = gain * gain * energy - 2.0 * gain * dot + wantedEnergy;
            if (error < best.error)
                best = { &candidate, error, gain, 512 - shift };
            energy += square(std::min(shift + count, 1023));
            energy -= square(std::max(shift, 0));
        }
    }
    return best;
}

// The convolution in double by its sum instead of by transforms.
inline FitChoice Convolving(const FilterDictionary& dictionary, const float* curve,
                            const FitSelection& selection)
{
    FitChoice best;
    const std::vector<float> judged = Judged(dictionary, curve);
    const float* wanted = judged.data();
    const double wantedEnergy = Dot(wanted, wanted, 1024);
    std::vector<double> convolution(2048);
    for (const FilterCandidate& candidate : dictionary.Candidates())
    {
        if (candidate.q > selection.maxQ + 1e-50 || (!selection.allowPassNotch && !candidate.hasGain))
            continue;
        std::fill(convolution.begin(), convolution.end(), 0.0);
        for (std::size_t i = 0; i < 1024; ++i)
            for (std::size_t k = 0; k < 1024; ++k)
                convolution[(512 + i + k) % 2048] += static_cast<double>(wanted[i]) * candidate.shape[k];
        const auto [low, high] = std::minmax_element(convolution.begin(), convolution.end());
        const auto extreme = std::abs(*low) > std::abs(*high) ? low : high;
        const int index = static_cast<int>(extreme - convolution.begin());
        const int position = std::max(std::min(index - 1024, candidate.maxShift + 511), 0);
        const int shift = 512 - position;

        double energy = 0;
        for (int i = 0; i < dictionary.JudgedCount(); ++i)
        {
            const double value = candidate.shape[static_cast<std::size_t>(std::clamp(i + shift, 0, 1023))];
            energy += value * value;
        }
        const double dot = DotAt(wanted, candidate, shift);
        const double gain = Limit(dot / energy, candidate.hasGain ? -1.0 : 1.0);
        const double error = gain * gain * energy - 2.0 * gain * dot + wantedEnergy;
        if (error < best.error)
            best = { &candidate, error, gain, position };
    }
    return best;
}
}   // namespace PlainFit
