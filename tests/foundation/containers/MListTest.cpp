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
        const int index = static_cast<int>(random() % 12) - 1;
        switch (random() % 8)
        {
        case 0:
        case 1:
        case 2:
        {
            auto element = std::make_unique<Element>();
            const Element* added = element.get();
            allocationsLeft = random() % 3 == 0 ? 0 : -1;
            try
            {
                EXPECT_EQ(random() % 2 == 0 ? list.Add(std::move(element)) : list.Add(element.release()),
                          added);
                expected.push_back(added);
            }
            catch (const std::bad_alloc&)
            {
            }
            allocationsLeft = -1;
            break;
        }
        case 3:
        {
            const bool fits = index >= 0 && index <= count;
            const Element* added = nullptr;
            EXPECT_EQ(ErrorOf([&] { added = list.Insert(index, new Element); }),
                      fits ? "" : "Index out of range.");
            if (fits)
                expected.insert(expected.begin() + index, added);
            break;
        }
        case 4:
        case 5:
        {
            const bool fits = index >= 0 && index < count;
            std::unique_ptr<Element> detached;
            EXPECT_EQ(ErrorOf(
                          [&]
                          {
                              if (round % 2 == 0)
                                  list.Delete(index);
                              else
                                  detached = list.Detach(index);
                          }),
                      fits ? "" : "Index out of range.");
            EXPECT_EQ(detached != nullptr, fits && round % 2 != 0);
            if (detached != nullptr)
            {
                EXPECT_EQ(detached.get(), expected[static_cast<std::size_t>(index)]);
                EXPECT_EQ(list.IndexOf(detached.get()), -1);
            }
            if (fits)
                expected.erase(expected.begin() + index);
            break;
        }
        case 6:
        {
            MList<Element> moved(std::move(list));
            EXPECT_TRUE(list.IsEmpty());
            list = std::move(moved);
            break;
        }
        default:
            if (index != 0)
                break;
            list.Clear();
            expected.clear();
        }
        ASSERT_TRUE(std::equal(list.begin(), list.end(), expected.begin(), expected.end()));
        ASSERT_EQ(Element::living, list.Count());
        for (int at = 0; at < list.Count(); ++at)
            ASSERT_EQ(list.IndexOf(list[at]), at);
    }
    list.Clear();
    EXPECT_EQ(Element::living, 0);
}

TEST(MFlagManager, KeepsEachBitForItself)
{
    MFlagManager<32> flags;
    for (int set = 0; set < 32; ++set)
    {
        flags.SetFlag(set);
        for (int index = 0; index < 32; ++index)
            EXPECT_EQ(flags.TestFlag(index), index == set);
        flags.ClearFlag(set);
    }
}
}   // namespace
