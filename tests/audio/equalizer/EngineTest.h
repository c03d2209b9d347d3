// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "audio/filters/Filter.h"
#include "tests/Signals.h"

/// What the tests of the engines share.
namespace EngineTest
{
using namespace Signals;
using Filters = std::vector<MAudioFilters::Filter<double>>;

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

/// Runs an engine in place over all channels from `start`, `frames` long.
template <typename Engine>
void ProcessBlock(Engine& engine, Channels& channels, std::size_t start, std::int32_t frames)
{
    std::vector<float*> pointers;
    for (std::vector<float>& channel : channels)
        pointers.push_back(channel.data() + start);
    engine.Process(pointers.data(), pointers.data(), frames);
}

/// Blocks of random length up to maxBlock; `before` is told where each begins.
template <typename Engine, typename Before>
void ProcessAll(Engine& engine, Channels& channels, std::int32_t maxBlock, Before before)
{
    std::mt19937 random(static_cast<std::uint32_t>(maxBlock));
    std::uniform_int_distribution<std::int32_t> lengths(0, maxBlock);
    for (std::size_t position = 0; position < channels[0].size();)
    {
        const std::int32_t n =
            std::min(lengths(random), static_cast<std::int32_t>(channels[0].size() - position));
        before(position);
        ProcessBlock(engine, channels, position, n);
        position += static_cast<std::size_t>(n);
    }
}
template <typename Engine>
void ProcessAll(Engine& engine, Channels& channels, std::int32_t maxBlock)
{
    ProcessAll(engine, channels, maxBlock, [](std::size_t) {});
}
}   // namespace EngineTest
