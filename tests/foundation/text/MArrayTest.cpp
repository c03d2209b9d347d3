// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/MArray.h"

#include <algorithm>
#include <bit>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/text/MStringList.h"
#include "tests/ErrorOf.h"
#include "tests/FailingAllocation.h"

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
    friend bool operator==(const Element& element, int number) { return element.value == number; }

    int value;
};
int Element::living = 0;
int Element::copiesLeft = -1;

// Up to two elements exactly, then powers of two.
int TightCapacity(int count)
{
    return count <= 2 ? count : static_cast<int>(std::bit_ceil(static_cast<unsigned>(count)));
}

TEST(MArray, BehavesLikeAVectorWhateverFails)
{
    std::mt19937 random(3141);
    MArray<Element> array;
    std::vector<int> expected;
    int failures = 0;
    // Answers whether nothing failed.
    const auto works = [&](auto&& operation)
    {
        const int failing = static_cast<int>(random() % 6);
        allocationsLeft = failing == 0 ? 0 : -1;
        Element::copiesLeft = failing == 1 ? static_cast<int>(random() % 4) : -1;
        bool isDone = true;
        try
        {
            operation();
        }
        catch (...)
        {
            isDone = false;
        }
        isDone =
            isDone && (failing != 0 || allocationsLeft == 0) && (failing != 1 || Element::copiesLeft >= 0);
        allocationsLeft = Element::copiesLeft = -1;
        failures += isDone ? 0 : 1;
        return isDone;
    };
    for (int round = 0; round < 30000; ++round)
    {
        SCOPED_TRACE(round);
        const auto count = static_cast<int>(expected.size());
        const int capacity = array.Capacity();
        const int index = static_cast<int>(random() % 14) - 2;
        const bool isInside = index >= 0 && index < count;
        const char* const error = isInside ? "" : "Index out of range.";
        int wanted = std::max(capacity, TightCapacity(count + 1));
        const Element added(round);
        switch (random() % 8)
        {
        case 0:
        case 1:
            if (works([&] { array.Add(added); }))
                expected.push_back(round);
            else
                wanted = capacity;
            break;
        case 2:
            ASSERT_EQ(ErrorOf([&] { array.Insert(index, added); }), index == count ? "" : error);
            if (isInside || index == count)
                expected.insert(expected.begin() + index, round);
            else
                wanted = capacity;
            break;
        case 3:
        case 4:
        case 5:
        {
            // Without memory for the smaller storage the larger one stays.
            const bool isTight = works([&] { ASSERT_EQ(ErrorOf([&] { array.Delete(index); }), error); });
            wanted = isInside && isTight ? TightCapacity(count - 1) : capacity;
            if (isInside)
                expected.erase(expected.begin() + index);
            break;
        }
        case 6:
            wanted = capacity;
            if (random() % 10 > 0)
                break;
            array.Clear();
            expected.clear();
            wanted = 0;
            break;
        default:
        {
            MArray<Element> copy;
            wanted = capacity;
            if (works([&] { copy = array; }))
            {
                MArray<Element> moved(std::move(copy));
                array = std::move(moved);
                wanted = TightCapacity(count);
            }
            else
                EXPECT_TRUE(copy.IsEmpty());
            const auto compare = [&]
            {
                const int value = array[index].value;   // throws where there is none
                EXPECT_EQ(value, expected[static_cast<std::size_t>(index)]);
            };
            ASSERT_EQ(ErrorOf(compare), error);
        }
        }
        ASSERT_TRUE(std::equal(array.begin(), array.end(), expected.begin(), expected.end()));
        ASSERT_EQ(array.Capacity(), wanted);
        ASSERT_EQ(Element::living, array.Count() + 1);
        ASSERT_EQ(array.begin() == nullptr, array.IsEmpty() && wanted == 0);
    }
    EXPECT_GT(failures, 1000);
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
}   // namespace
