// SPDX-License-Identifier: GPL-3.0-or-later
// Blocks must not allocate.
#include <memory>

#include <gtest/gtest.h>

#include "audio/equalizer/FFTEngine.h"
#include "audio/equalizer/LinearPhaseEngine.h"
#include "audio/equalizer/NormalEngine.h"
#include "tests/AllocationCounter.h"
#include "tests/audio/equalizer/EngineTest.h"

namespace
{
using namespace EngineTest;

/// Allocations of four hops in blocks of all kinds, with a change before every 50th.
template <typename Engine, typename Change>
std::int64_t CountAllocations(Engine& engine, Change change)
{
    Channels channels = NoiseChannels(3, 70000, 3);
    float* pointers[3] = { channels[0].data(), channels[1].data(), channels[2].data() };
    const std::int64_t before = AllocationCounter::TakenByThisThread();
    int block = 0;
    for (std::int32_t done = 0; done < 4 * 16384;)
    {
        const std::int32_t n = block % 7 == 0 ? 4000 : block % 7 * 64 - 1;
        if (block % 50 == 0)
            change(block / 50);
        engine.Process(pointers, pointers, n);
        done += n;
        ++block;
    }
    return AllocationCounter::TakenByThisThread() - before;
}

template <typename Engine>
std::int64_t CountWithFilters()
{
    Engine engine;
    engine.Prepare(3);
    const Filters one = Sections(12, 1);
    const Filters other = Sections(40, 2);
    return CountAllocations(engine,
                            [&](int turn)
                            {
                                const Filters& sections = turn % 2 == 0 ? one : other;
                                engine.SetFilters(sections.data(),
                                                  static_cast<std::int32_t>(sections.size()));
                                engine.SetEnabled(turn % 5 != 4);
                            });
}

TEST(Engines, DoNotAllocateInBlocksNorWhenTheirFiltersChange)
{
    EXPECT_TRUE(!AllocationCounter::IsCounting() || AllocationCounter::TakenByThisThread() > 0);
    EXPECT_EQ(CountWithFilters<LinearPhaseEngine>(), 0);
    EXPECT_EQ(CountWithFilters<NormalEngine>(), 0);
    FFTEngine engine;
    engine.Prepare(3);
    FilterList list;
    EXPECT_EQ(CountAllocations(engine,
                               [&](int turn)
                               {
                                   list.Clear();
                                   for (int i = 0; i < turn % 3 * 20; ++i)
                                       list.Add(MAudioFilters::Peak, turn, 1000, 48000, 1);
                                   engine.SetFilters(list, 0.7);
                                   engine.SetEnabled(turn % 5 != 4);
                               }),
              0);
}
}   // namespace
