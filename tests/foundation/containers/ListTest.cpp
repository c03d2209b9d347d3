// SPDX-License-Identifier: GPL-3.0-or-later
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/containers/MFlagManager.h"
#include "foundation/containers/MList.h"
#include "foundation/text/MException.h"
#include "foundation/text/MStringList.h"
#include "tests/foundation/containers/FailingAllocation.h"

namespace
{
// An element that knows how many of its kind live, and whose copy may fail.
struct Element
{
    static int living;
    static int copiesLeft;   // below 0: no copy fails

    explicit Element(int initial) : value(initial) { ++living; }
    Element(const Element& other) : value(other.value)
    {
        if (copiesLeft >= 0 && copiesLeft-- == 0)
            throw std::string("copy");
        ++living;
    }
    Element& operator=(const Element&) = default;
    ~Element() { --living; }

    int value;
};
int Element::living = 0;
int Element::copiesLeft = -1;

std::vector<int> ValuesOf(const MArray<Element>& array)
{
    std::vector<int> values;
    for (const Element& element : array)
        values.push_back(element.value);
    return values;
}

std::string ErrorOf(auto&& operation)
{
    try
    {
        operation();
    }
    catch (const MException& error)
    {
        return error.Message.ToUTF8();
    }
    return {};
}

TEST(MArray, KeepsTheCapacityOfItsRuleInBothDirections)
{
    MArray<int> array;
    const int capacities[] = { 0, 1, 2, 4, 4, 8, 8, 8, 8, 16 };
    for (int count = 1; count < 10; ++count)
    {
        array.Add(count);
        EXPECT_EQ(array.Capacity(), capacities[count]) << count;
    }
    for (int count = 8; count >= 0; --count)
    {
        array.Delete(array.Count() / 2);
        EXPECT_EQ(array.Capacity(), capacities[count]) << count;
    }
    EXPECT_EQ(array.begin(), nullptr);
}

TEST(MArray, TakesElementsFromItself)
{
    MStringList list;
    list.Add(MString::Copy("first"));
    for (int round = 0; round < 20; ++round)
        list.Insert(0, list[list.Count() - 1]);
    for (const MString& text : list)
        EXPECT_EQ(text.ToUTF8(), "first");
    EXPECT_EQ(list[0].ShareCount(), 21);
}

TEST(MArray, RefusesIndexesOutside)
{
    MArray<int> array;
    array.Add(5);
    MList<int> list;
    list.Add(new int(5));
    for (const int index : { -1, 1, 1000 })
    {
        EXPECT_EQ(ErrorOf([&] { array.Delete(index); }), "Index out of range.");
        EXPECT_EQ(ErrorOf([&] { array[index]; }), "Index out of range.");
        EXPECT_EQ(ErrorOf([&] { list.Delete(index); }), "Index out of range.");
        EXPECT_EQ(ErrorOf([&] { list.Detach(index); }), "Index out of range.");
        EXPECT_EQ(ErrorOf([&] { list[index]; }), "Index out of range.");
        EXPECT_EQ(ErrorOf([&] { array.Insert(index * 2, 1); }), "Index out of range.");
    }
    EXPECT_EQ(array.Count(), 1);
    EXPECT_EQ(list.Count(), 1);
}

// Each operation is repeated with every copy and every allocation failing in turn.
TEST(MArray, IsAsItWasWhenAddingFails)
{
    for (int count = 0; count < 9; ++count)
        for (const bool failsByAllocation : { false, true })
        {
            int failures = 0;
            for (int step = 0;; ++step)
            {
                SCOPED_TRACE(testing::Message() << "count " << count << " step " << step);
                MArray<Element> array;
                for (int value = 0; value < count; ++value)
                    array.Add(Element(value));
                const std::vector<int> before = ValuesOf(array);
                const int livingBefore = Element::living;
                bool hasFailed = false;
                try
                {
                    const Element added(99);
                    allocationsLeft = failsByAllocation ? step : -1;
                    Element::copiesLeft = failsByAllocation ? -1 : step;
                    array.Add(added);
                }
                catch (...)
                {
                    hasFailed = true;
                }
                allocationsLeft = Element::copiesLeft = -1;
                if (!hasFailed)
                {
                    EXPECT_EQ(array.Count(), count + 1);
                    break;
                }
                ++failures;
                EXPECT_EQ(ValuesOf(array), before);
                EXPECT_EQ(Element::living, livingBefore);
            }
            const bool reallocates = count < 2 || count == 2 || count == 4 || count == 8;
            EXPECT_EQ(failures, failsByAllocation ? int{ reallocates } : (reallocates ? count + 1 : 1))
                << count;
        }
    EXPECT_EQ(Element::living, 0);
}

TEST(MArray, RemovesWithoutMemoryForTheSmallerStorage)
{
    MArray<Element> array;
    for (int value = 0; value < 5; ++value)
        array.Add(Element(value));
    allocationsLeft = 0;
    array.Delete(1);
    allocationsLeft = -1;
    EXPECT_EQ(ValuesOf(array), (std::vector<int>{ 0, 2, 3, 4 }));
    EXPECT_EQ(array.Capacity(), 8);
    array.Delete(0);
    EXPECT_EQ(array.Capacity(), 4);
    EXPECT_EQ(Element::living, 3);
}

TEST(MList, OwnsItsElementsAlsoWhenItCannotTakeThem)
{
    {
        MList<Element> list;
        for (int value = 0; value < 6; ++value)
            list.Insert(0, std::make_unique<Element>(value));
        EXPECT_EQ(list[0]->value, 5);
        list.Delete(0);
        const std::unique_ptr<Element> detached = list.Detach(1);
        EXPECT_EQ(detached->value, 3);
        EXPECT_EQ(Element::living, 5);
        EXPECT_EQ(list.IndexOf(list[2]), 2);
        EXPECT_EQ(list.IndexOf(detached.get()), -1);

        auto* unwanted = new Element(7);
        allocationsLeft = 0;
        EXPECT_THROW(list.Add(unwanted), std::bad_alloc);
        allocationsLeft = -1;
        EXPECT_EQ(list.Count(), 4);
        EXPECT_EQ(Element::living, 5);
    }
    EXPECT_EQ(Element::living, 0);
}

TEST(MFlagManager, KeepsEachBitForItself)
{
    MFlagManager<32> flags;
    flags.SetFlag(31);
    flags.SetFlag(0);
    flags.ClearFlag(0);
    for (int index = 0; index < 32; ++index)
        EXPECT_EQ(flags.TestFlag(index), index == 31);
}
}   // namespace
