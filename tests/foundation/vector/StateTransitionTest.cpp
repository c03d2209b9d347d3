// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/StateTransition.h"

#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "tests/foundation/vector/Targets.h"

namespace
{
using MVector::CascadeMemory;

TEST(StateTransition, AppliesTheTriangularMapToBothChannels)
{
    ForEveryTarget(
        []
        {
            std::mt19937 random(8);
            std::uniform_real_distribution<double> values(-1.0, 1.0);
            const auto randomMemory = [&]
            {
                return CascadeMemory{ { values(random), values(random) },
                                      { values(random), values(random) } };
            };
            MVector::StateTransition transition;
            transition.Prepare(23);
            for (const std::int32_t count : { 0, 1, 2, 3, 4, 5, 8, 23, 6 })
            {
                SCOPED_TRACE(count);
                const auto size = static_cast<std::size_t>(count);
                const auto padded = static_cast<std::size_t>(MVector::StateTransition::PaddedCount(count));
                transition.Begin(count);
                std::vector<CascadeMemory> input(size);
                std::vector<CascadeMemory> actual(padded + 1);
                for (CascadeMemory& memory : input)
                    memory = randomMemory();
                for (CascadeMemory& memory : actual)
                    memory = randomMemory();
                std::vector<CascadeMemory> expected = actual;
                for (std::size_t section = 0; section < size; ++section)
                {
                    std::vector<CascadeMemory> image(size);
                    for (std::size_t i = section; i < size; ++i)
                        image[i] = randomMemory();
                    transition.SetSection(static_cast<std::int32_t>(section), image.data());
                    for (std::size_t i = section; i < size; ++i)
                    {
                        for (std::size_t channel = 0; channel < 2; ++channel)
                        {
                            const double s1 = input[section].s1[channel];
                            const double s2 = input[section].s2[channel];
                            expected[i].s1[channel] += image[i].s1[0] * s1 + image[i].s1[1] * s2;
                            expected[i].s2[channel] += image[i].s2[0] * s1 + image[i].s2[1] * s2;
                        }
                    }
                }
                transition.Apply(input.data(), actual.data());
                for (std::size_t i = 0; i < expected.size(); ++i)
                {
                    if (i >= size && i < padded)
                        continue;   // padding may hold anything
                    for (std::size_t channel = 0; channel < 2; ++channel)
                    {
                        // Up to 46 products of values below 1, in another order.
                        ASSERT_NEAR(actual[i].s1[channel], expected[i].s1[channel], 1e-14) << "section " << i;
                        ASSERT_NEAR(actual[i].s2[channel], expected[i].s2[channel], 1e-14) << "section " << i;
                    }
                }
            }
        });
}
}   // namespace
