// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/containers/MArrayQueue.h"

#include <deque>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace
{
TEST(MArrayQueue, BehavesLikeADequeUnderRandomOperations)
{
    constexpr unsigned Seed = 4711;
    SCOPED_TRACE(Seed);
    std::mt19937 random(Seed);
    const auto pick = [&random](int low, int high)
    {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    MArrayQueue<float> queue;
    std::deque<float> expected;
    float next = 0.0f;
    for (int round = 0; round < 50000; ++round)
    {
        SCOPED_TRACE(round);
        const int amount = pick(0, 100);
        std::vector<float> samples(static_cast<std::size_t>(amount));
        switch (pick(0, 7))
        {
        case 0:
        case 1:
            for (float& sample : samples)
                expected.push_back(sample = next++);
            queue.Push(samples.data(), amount);
            break;
        case 2:
            queue.PushZeros(amount);
            expected.insert(expected.end(), static_cast<std::size_t>(amount), 0.0f);
            break;
        case 3:
        case 4:
        {
            const int held = static_cast<int>(expected.size());
            if (amount > held)
            {
                ASSERT_THROW(queue.Pull(samples.data(), amount), MException);
                ASSERT_THROW(queue.DropFront(amount), MException);
                break;
            }
            queue.Pull(samples.data(), amount);
            for (const float sample : samples)
            {
                ASSERT_EQ(sample, expected.front());
                expected.pop_front();
            }
            break;
        }
        case 5:
            if (amount <= queue.Count())
            {
                queue.DropFront(amount);
                expected.erase(expected.begin(), expected.begin() + amount);
            }
            break;
        case 6:
            queue.Normalize();
            break;
        default:
            if (amount < 2)
            {
                queue.Clear();
                expected.clear();
            }
            else if (amount < 10)
            {
                queue.FillZero();
                std::fill(expected.begin(), expected.end(), 0.0f);
            }
            break;
        }
        ASSERT_EQ(queue.Count(), static_cast<int>(expected.size()));
        std::vector<float> held(expected.size());
        queue.Peek(held.data(), queue.Count());
        ASSERT_TRUE(std::equal(held.begin(), held.end(), expected.begin()));
    }
}

TEST(MArrayQueue, SaysWhatIsMissingAndKeepsWhatItHas)
{
    MArrayQueue<float> queue;
    const float samples[] = { 1.0f, 2.0f, 3.0f };
    float target[4] = {};
    queue.Push(samples, 3);
    try
    {
        queue.Pull(target, 4);
        FAIL();
    }
    catch (const MException& error)
    {
        EXPECT_EQ(error.Message.ToUTF8(), "Not enough data in the queue.");
    }
    EXPECT_EQ(target[0], 0.0f);
    queue.Pull(target, 3);
    EXPECT_EQ(target[2], 3.0f);
    EXPECT_EQ(queue.Count(), 0);
}

TEST(MArrayQueue, StopsGrowingWhenItsFillIsBounded)
{
    MArrayQueue<float> queue;
    queue.Reserve(1000);
    const int capacity = queue.Capacity();
    EXPECT_EQ(capacity, 1024);
    std::vector<float> block(333);
    queue.PushZeros(600);
    for (int round = 0; round < 1000; ++round)
    {
        queue.Push(block.data(), 333);
        queue.Pull(block.data(), 333);
    }
    EXPECT_EQ(queue.Capacity(), capacity);
}
}   // namespace
