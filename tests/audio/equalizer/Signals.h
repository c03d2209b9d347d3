// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "audio/filters/Filter.h"

/// Signals and section lists that the tests of the engines share. Everything follows from a seed.
namespace EngineTest
{
using Filters = std::vector<MAudioFilters::Filter<double>>;
using Channels = std::vector<std::vector<float>>;

inline Channels Noise(std::size_t channelCount, std::size_t length, std::uint32_t seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> values(-1.0f, 1.0f);
    Channels channels(channelCount, std::vector<float>(length));
    for (std::vector<float>& channel : channels)
        std::generate(channel.begin(), channel.end(), [&] { return values(random); });
    return channels;
}

/// Sections of all kinds from 25 Hz to 18 kHz at 48 kHz; gains shrink with their number, as in a real list.
inline Filters Sections(std::int32_t count, std::uint32_t seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> place(std::log(25.0), std::log(18000.0));
    std::uniform_real_distribution<double> gain(-6.0, 6.0);
    std::uniform_real_distribution<double> q(0.3, 6.0);
    Filters sections(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < sections.size(); ++i)
    {
        const auto type =
            static_cast<std::int32_t>(i % 12 < 9 ? i % 3 : i % 12 - 6);   // a few of types 3 to 5
        sections[i].Set(type, gain(random) / std::sqrt(1.0 + count / 10.0), std::exp(place(random)), 48000.0,
                        type >= 3 ? 0.7 : q(random));
        if (type == MAudioFilters::LowPass || type == MAudioFilters::LowPass6)
            sections[i].Set(type, 0.0, 17000.0, 48000.0, 0.7);
        if (type == MAudioFilters::HighPass)
            sections[i].Set(type, 0.0, 30.0, 48000.0, 0.7);
    }
    return sections;
}

/// What no design gives, but a fault might: poles outside the unit circle.
inline Filters Unstable()
{
    Filters sections(1);
    sections[0].Set(MAudioFilters::Peak, 12.0, 3000.0, 48000.0, 1.0);
    sections[0].a2 = -1.3;
    return sections;
}

inline float Peak(const std::vector<float>& samples)
{
    float peak = 0.0f;
    for (const float sample : samples)
        peak = std::max(peak, std::abs(sample));
    return peak;
}

/// Runs an engine in place over all channels from `start`, `frames` long.
template <typename Engine>
void ProcessBlock(Engine& engine, Channels& channels, std::size_t start, std::int32_t frames)
{
    std::vector<float*> pointers;
    for (std::vector<float>& channel : channels)
        pointers.push_back(channel.data() + start);
    engine.Process(pointers.data(), pointers.data(), frames);
}
}   // namespace EngineTest
