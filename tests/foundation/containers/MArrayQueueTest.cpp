// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/containers/MArrayQueue.h"

#include <algorithm>
#include <bit>
#include <deque>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "tests/ErrorOf.h"

namespace
{
TEST(MArrayQueue, BehavesLikeADequeUnderRandomOperations)
{
    std::mt19937 random(4711);
    MArrayQueue<float> queue;
    std::deque<float> expected;
    float next = 1.0f;
    unsigned capacity = 0;
    for (int round = 0; round < 50000; ++round)
    {
        SCOPED_TRACE(round);
        const auto size = random() % 101;
        const auto amount = static_cast<int>(size);
        const bool isHeld = size <= expected.size();
        std::vector<float> samples(size, -1.0f);
        const std::uint32_t kind = random() % 32;
        if (kind < 8)
        {
            std::generate(samples.begin(), samples.end(), [&next] { return next++; });
            queue.Push(samples.data(), amount);
            expected.insert(expected.end(), samples.begin(), samples.end());
        }
        else if (kind < 12)
        {
            queue.PushZeros(amount);
            expected.insert(expected.end(), size, 0.0f);
        }
        else if (kind < 24)
        {
            const auto first = expected.begin();
            const bool keeps = kind < 16;
            ASSERT_EQ(ErrorOf([&] { keeps ? queue.DropFront(amount) : queue.Pull(samples.data(), amount); }),
                      isHeld ? "" : "Not enough data in the queue.");
            if (isHeld && !keeps)
                ASSERT_TRUE(std::equal(samples.begin(), samples.end(), first));
            else
                ASSERT_EQ(samples, std::vector<float>(size, -1.0f));
            if (isHeld)
                expected.erase(first, first + amount);
        }
        else if (kind < 28)
            queue.Normalize();
        else if (kind == 28 && size < 10)
        {
            queue.Clear();
            expected.clear();
        }
        else if (kind == 29)
        {
            queue.FillZero();
            std::fill(expected.begin(), expected.end(), 0.0f);
        }
        else if (kind == 30)
        {
            queue.Reserve(5 * amount);
            capacity = std::max(capacity, std::bit_ceil(5 * static_cast<unsigned>(amount)));
        }
        else
        {
            const MArrayQueue<float> copy(queue);
            queue.Clear();
            queue = copy;
        }
        // It grows to what was ever held at once, and no further.
        if (!expected.empty())
            capacity = std::max(capacity, std::bit_ceil(static_cast<unsigned>(expected.size())));
        ASSERT_EQ(queue.Capacity(), static_cast<int>(capacity));
        ASSERT_EQ(queue.Count(), static_cast<int>(expected.size()));
        std::vector<float> held(expected.size());
        queue.Peek(held.data(), queue.Count());
        ASSERT_TRUE(std::equal(held.begin(), held.end(), expected.begin()));
    }
}

TEST(MArrayQueue, RefusesMoreThanAnArrayCanHold)
{
    MArrayQueue<char> queue;
    queue.PushZeros(5);
    const char text[] = "A queue cannot hold more data.";
    EXPECT_EQ(ErrorOf([&] { queue.PushZeros((1 << 30) - 4); }), text);
    EXPECT_EQ(ErrorOf([&] { queue.Reserve((1 << 30) + 1); }), text);
    EXPECT_EQ(queue.Count(), 5);
    EXPECT_EQ(queue.Capacity(), 8);
}
}   // namespace
