// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/SectionMagnitudes.h"

#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "tests/foundation/vector/Targets.h"

namespace
{
TEST(SectionMagnitudes, MultiplyTheQuotientOfAllSectionsForEveryCountOfPoints)
{
    ForEveryTarget(
        []
        {
            std::mt19937 random(5);
            std::uniform_real_distribution<double> values(0.1, 1.9);
            for (const std::int32_t sectionCount : { 0, 1, 7, 8, 9, 33 })
            {
                std::vector<MVector::SectionQuotient> sections(static_cast<std::size_t>(sectionCount));
                for (MVector::SectionQuotient& s : sections)
                    s = { values(random), -values(random), values(random),
                          values(random), -values(random), values(random) };
                for (std::int32_t n = 0; n <= 35; ++n)
                {
                    std::vector<double> t(static_cast<std::size_t>(n) + 1);
                    std::vector<double> s(t.size());
                    std::vector<double> actual(t.size(), 3.0);   // one guard behind
                    for (std::size_t i = 0; i < t.size(); ++i)
                    {
                        t[i] = values(random);
                        s[i] = values(random);
                    }
                    MVector::MultiplySectionMagnitudes(sections.data(), sectionCount, t.data(), s.data(),
                                                       actual.data(), n);
                    ASSERT_EQ(actual.back(), 3.0);
                    for (std::size_t i = 0; i + 1 < t.size(); ++i)
                    {
                        long double expected = 3.0L;
                        for (const MVector::SectionQuotient& q : sections)
                        {
                            const long double above = static_cast<long double>(q.n0) + q.n1 * t[i];
                            const long double below = static_cast<long double>(q.d0) + q.d1 * t[i];
                            expected *=
                                std::sqrt((above * above + q.n2 * s[i]) / (below * below + q.d2 * s[i]));
                        }
                        // A few roundings a section.
                        ASSERT_NEAR(actual[i] / static_cast<double>(expected), 1.0,
                                    1e-14 * (sectionCount + 1))
                            << "point " << i << " of " << n << ", sections " << sectionCount;
                    }
                }
            }
        });
}
}   // namespace
