// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

/// Signals that tests of all rooms share, and what they measure of them. Everything follows from a seed.
namespace Signals
{
using Channels = std::vector<std::vector<float>>;

/// White noise, evenly spread up to the amplitude.
inline std::vector<float> Noise(std::size_t count, std::uint32_t seed, float amplitude = 1.0f)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> values(-amplitude, amplitude);
    std::vector<float> noise(count);
    std::generate(noise.begin(), noise.end(), [&] { return values(random); });
    return noise;
}

/// Other noise in each channel.
inline Channels NoiseChannels(std::size_t channelCount, std::size_t count, std::uint32_t seed,
                              float amplitude = 1.0f)
{
    Channels channels;
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        channels.push_back(Noise(count, seed + 7919 * static_cast<std::uint32_t>(channel), amplitude));
    return channels;
}

inline std::vector<float> Sine(std::size_t count, double hertz, double sampleRate, double amplitude = 1.0)
{
    std::vector<float> sine(count);
    for (std::size_t i = 0; i < count; ++i)
        sine[i] = static_cast<float>(
            amplitude * std::sin(2.0 * std::numbers::pi * hertz / sampleRate * static_cast<double>(i)));
    return sine;
}

/// The largest amount; not a number where one of the samples isn't.
inline float PeakOf(const std::vector<float>& samples)
{
    float peak = 0.0f;
    for (const float sample : samples)
        peak = std::isnan(sample) || std::isnan(peak) ? sample - sample : std::max(peak, std::abs(sample));
    return peak;
}

/// The largest difference of the samples from `first` up to `end`; `delay` samples lie between the two.
inline double LargestDifference(const std::vector<float>& output, const std::vector<float>& input,
                                std::size_t first, std::size_t end, std::size_t delay = 0)
{
    double largest = 0;
    for (std::size_t i = first; i < std::min(end, output.size()); ++i)
    {
        const double expected = i < delay ? 0.0 : input[i - delay];
        const double difference = std::abs(output[i] - expected);
        largest = difference <= largest ? largest : difference;   // not a number stays
    }
    return largest;
}

/// Magnitude in dB of an impulse response at a frequency, by the definition of the Fourier transform.
inline double MeasuredDb(const std::vector<float>& response, double hertz, double sampleRate)
{
    const double w = -2.0 * std::numbers::pi * hertz / sampleRate;
    const std::complex<double> step = std::polar(1.0, w);
    std::complex<double> rotation = 1.0;
    std::complex<double> sum = 0.0;
    for (std::size_t i = 0; i < response.size(); ++i)
    {
        if (i % 1024 == 0)
            rotation = std::polar(1.0, w * static_cast<double>(i));
        sum += static_cast<double>(response[i]) * rotation;
        rotation *= step;
    }
    return 20.0 * std::log10(std::abs(sum));
}
}   // namespace Signals
