// SPDX-License-Identifier: GPL-3.0-or-later
#include <atomic>
#include <random>
#include <set>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/threads/MRelaxed.h"
#include "plugin/contract/ChangeListener.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Random marks, drained at random times by listeners of random ages: each hears of everything that was marked
// since its own last look, and of nothing else.
TEST(ChangeFeed, EachListenerHearsJustWhatIsNewToIt)
{
    struct Expected
    {
        std::set<std::int32_t> changes, bands, parameters, inside;
    };
    std::mt19937 random(7);
    ChangeFeed feed;
    feed.MarkParameter(3);
    std::array<ChangeListener, 3> listeners{ ChangeListener(feed), ChangeListener(feed),
                                             ChangeListener(feed) };
    std::array<Expected, 3> expected;
    const auto below = [&random](int count)
    {
        return static_cast<std::int32_t>(random() % static_cast<unsigned>(count));
    };
    const auto note = [&expected](std::set<std::int32_t> Expected::*kind, std::int32_t place)
    {
        for (Expected& each : expected)
            (each.*kind).insert(place);
    };
    for (int step = 0; step < 20000; ++step)
    {
        switch (below(5))
        {
        case 0:
        {
            const std::int32_t what = below(static_cast<int>(Change::Count));
            feed.Mark(static_cast<Change>(what));
            note(&Expected::changes, what);
            break;
        }
        case 1:
        {
            const std::int32_t band = below(ChangeFeed::MaxBands + 2) - 1;
            feed.MarkBand(band);
            if (band >= 0 && band < ChangeFeed::MaxBands)
                note(&Expected::bands, band);
            break;
        }
        case 2:
        case 3:
        {
            const std::int32_t index = below(ChangeFeed::MaxParameters + 2) - 1;
            const bool inside = below(2) == 0;
            inside ? feed.MarkParameterInside(index) : feed.MarkParameter(index);
            if (index < 0 || index >= ChangeFeed::MaxParameters)
                break;
            note(&Expected::parameters, index);
            if (inside)
                note(&Expected::inside, index);
            break;
        }
        default:
        {
            const auto which = static_cast<std::size_t>(below(3));
            ChangeListener& listener = listeners[which];
            Expected& wanted = expected[which];
            const bool any = !(wanted.changes.empty() && wanted.bands.empty() && wanted.parameters.empty());
            EXPECT_EQ(listener.IsBehind(), any);
            EXPECT_EQ(listener.Drain(), any);
            for (std::int32_t what = 0; what < static_cast<std::int32_t>(Change::Count); ++what)
                EXPECT_EQ(listener.Has(static_cast<Change>(what)), wanted.changes.count(what) > 0) << what;
            const auto as = [](const std::set<std::int32_t>& set)
            {
                return std::vector<std::int32_t>(set.begin(), set.end());
            };
            EXPECT_EQ(listener.Bands(), as(wanted.bands));
            EXPECT_EQ(listener.Parameters(), as(wanted.parameters));
            EXPECT_EQ(listener.InsideParameters(), as(wanted.inside));
            wanted = {};
            ASSERT_FALSE(::testing::Test::HasFailure()) << "step " << step;
        }
        }
    }
}

TEST(ChangeFeed, WhateverAListenerEndsOnIsTheLastValueWritten)
{
    constexpr std::int32_t last = 200000;
    ChangeFeed feed;
    std::array<MRelaxed<std::int32_t>, 4> values{};
    ChangeListener listener(feed);
    std::atomic<int> running = static_cast<int>(values.size());
    std::vector<std::thread> writers;
    for (std::size_t place = 0; place < values.size(); ++place)
        writers.emplace_back(
            [&, place]
            {
                for (std::int32_t number = 1; number <= last; ++number)
                {
                    values[place] = number;
                    feed.MarkParameter(static_cast<std::int32_t>(place));
                }
                --running;
            });
    std::array<std::int32_t, 4> shown{};
    const auto show = [&]
    {
        if (listener.Drain())
            for (const std::int32_t index : listener.Parameters())
                shown[static_cast<std::size_t>(index)] = values[static_cast<std::size_t>(index)];
    };
    while (running > 0)
        show();
    for (std::thread& writer : writers)
        writer.join();
    show();
    EXPECT_THAT(shown, ElementsAre(last, last, last, last));
    EXPECT_FALSE(listener.Drain());
    EXPECT_THAT(listener.Parameters(), IsEmpty());
}
