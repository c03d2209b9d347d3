// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/containers/MList.h"

#include <algorithm>
#include <new>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/containers/MFlagManager.h"
#include "tests/ErrorOf.h"
#include "tests/FailingAllocation.h"

namespace
{
// Knows how many of its kind live.
struct Element
{
    static int living;
    Element() { ++living; }
    Element(const Element&) = delete;
    ~Element() { --living; }
};
int Element::living = 0;

// Against a vector of the same pointers. What the list can't take for want of memory it destroys.
TEST(MList, OwnsItsElementsUnderRandomOperations)
{
    std::mt19937 random(1618);
    MList<Element> list;
    std::vector<const Element*> expected;
    for (int round = 0; round < 5000; ++round)
    {
        SCOPED_TRACE(round);
        const auto count = static_cast<int>(expected.size());
        const int place = static_cast<int>(random() % (expected.size() + 1));
        const int kind = static_cast<int>(random() % 8);
        if (kind < 4)
        {
            auto element = std::make_unique<Element>();
            const Element* added = element.get();
            allocationsLeft = random() % 3 == 0 ? 0 : -1;
            try
            {
                const Element* taken = kind == 0   ? list.Add(std::move(element))
                                       : kind == 1 ? list.Add(element.release())
                                       : kind == 2 ? list.Insert(place, std::move(element))
                                                   : list.Insert(place, element.release());
                EXPECT_EQ(taken, added);
                expected.insert(kind < 2 ? expected.end() : expected.begin() + place, added);
            }
            catch (const std::bad_alloc&)
            {
            }
            allocationsLeft = -1;
        }
        else if (kind < 7 && place < count)
        {
            std::unique_ptr<Element> detached;
            if (kind == 4)
                list.Delete(place);
            else
                detached = list.Detach(place);
            EXPECT_EQ(detached.get(), kind == 4 ? nullptr : expected[static_cast<std::size_t>(place)]);
            EXPECT_EQ(list.IndexOf(detached.get()), -1);
            expected.erase(expected.begin() + place);
        }
        else if (round % 8 == 0)
        {
            list.Clear();
            expected.clear();
        }
        else
        {
            MList<Element> moved(std::move(list));
            EXPECT_TRUE(list.IsEmpty());
            list = std::move(moved);
        }
        ASSERT_TRUE(std::equal(list.begin(), list.end(), expected.begin(), expected.end()));
        ASSERT_EQ(Element::living, list.Count());
        for (int at = 0; at < list.Count(); ++at)
            ASSERT_EQ(list.IndexOf(list[at]), at);
        for (const int outside : { -1, list.Count(), 1000 })
        {
            const char error[] = "Index out of range.";
            EXPECT_EQ(ErrorOf([&] { list.Delete(outside); }), error);
            EXPECT_EQ(ErrorOf([&] { list.Detach(outside); }), error);
            EXPECT_EQ(ErrorOf([&] { static_cast<void>(list[outside]); }), error);
        }
        for (const int outside : { -1, list.Count() + 1 })
            EXPECT_EQ(ErrorOf([&] { list.Insert(outside, new Element); }), "Index out of range.");
    }
    list.Clear();
    EXPECT_EQ(Element::living, 0);
}

TEST(MFlagManager, KeepsEachBitForItself)
{
    MFlagManager<32> flags;
    for (int set = 31; set >= 0; --set)
    {
        flags.SetFlag(set);
        for (int index = 0; index < 32; ++index)
            EXPECT_EQ(flags.TestFlag(index), index == set);
        flags.ClearFlag(set);
    }
}
}   // namespace
