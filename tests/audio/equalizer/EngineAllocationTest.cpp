// SPDX-License-Identifier: GPL-3.0-or-later
// Blocks must not allocate: every operator new of this program is counted.
#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>

#include <gtest/gtest.h>

#include "audio/equalizer/FFTEngine.h"
#include "audio/equalizer/LinearPhaseEngine.h"
#include "audio/equalizer/NormalEngine.h"
#include "tests/audio/equalizer/Signals.h"

namespace
{
std::atomic<long> allocations{ 0 };

void* Allocate(std::size_t size, std::size_t alignment)
{
    ++allocations;
    const std::size_t rounded = (size + alignment - 1) / alignment * alignment;
    void* memory = std::aligned_alloc(alignment, rounded == 0 ? alignment : rounded);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}
}   // namespace

void* operator new(std::size_t size)
{
    return Allocate(size, alignof(std::max_align_t));
}
void* operator new[](std::size_t size)
{
    return Allocate(size, alignof(std::max_align_t));
}
void* operator new(std::size_t size, std::align_val_t alignment)
{
    return Allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment)
{
    return Allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept
{
    std::free(memory);
}
void operator delete[](void* memory) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept
{
    std::free(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept
{
    std::free(memory);
}

namespace
{
using namespace EngineTest;

/// Allocations of four hops in blocks of all kinds, with a change before every 50th.
template <typename Engine, typename Change>
long CountAllocations(Engine& engine, Change change)
{
    Channels channels = Noise(3, 70000, 3);
    float* pointers[3] = { channels[0].data(), channels[1].data(), channels[2].data() };
    const long before = allocations;
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
    return allocations - before;
}

template <typename Engine>
long CountWithFilters()
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
    EXPECT_GT(allocations.load(), 0) << "the count works";
    EXPECT_EQ(CountWithFilters<LinearPhaseEngine>(), 0);
    EXPECT_EQ(CountWithFilters<NormalEngine>(), 0);
    FFTEngine engine;
    engine.Prepare(3);
    const std::vector<float> curve(32768, 0.5f);
    EXPECT_EQ(CountAllocations(engine, [&](int turn)
                               { engine.SetGainCurve(turn % 2 == 0 ? curve.data() : nullptr); }),
              0);
}
}   // namespace
