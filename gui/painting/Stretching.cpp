// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/Stretching.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace
{
/// Which old places make up each new one along an axis.
class Weights
{
public:
    Weights(std::int32_t oldSize, std::int32_t newSize)
    {
        const double step = static_cast<double>(oldSize) / newSize;
        const double radius = std::max(1.0, step);
        for (std::int32_t place = 0; place < newSize; ++place)
        {
            const double centre = (place + 0.5) * step - 0.5;
            const auto first = static_cast<std::int32_t>(std::ceil(centre - radius));
            const auto last = static_cast<std::int32_t>(std::floor(centre + radius));
            const std::size_t begin = entries.size();
            double sum = 0;
            for (std::int32_t old = first; old <= last; ++old)
            {
                const double weight = 1 - std::abs(old - centre) / radius;
                if (weight <= 0)
                    continue;
                entries.push_back({ std::clamp(old, 0, oldSize - 1), static_cast<float>(weight) });
                sum += weight;
            }
            for (std::size_t i = begin; i < entries.size(); ++i)
                entries[i].weight /= static_cast<float>(sum);
            ends.push_back(entries.size());
        }
    }

    struct Entry
    {
        std::int32_t old = 0;
        float weight = 0;
    };
    template <typename Visit>
    void Each(std::int32_t place, Visit&& visit) const
    {
        const auto index = static_cast<std::size_t>(place);
        for (std::size_t i = index == 0 ? 0 : ends[index - 1]; i < ends[index]; ++i)
            visit(entries[i]);
    }

private:
    std::vector<Entry> entries;
    std::vector<std::size_t> ends;
};

/// Blue, green, red times alpha, and alpha.
using Premultiplied = std::array<float, 4>;

Premultiplied Of(MColor color)
{
    const float alpha = color.Alpha();
    return { color.Blue() * alpha, color.Green() * alpha, color.Red() * alpha, alpha };
}

MColor ColorOf(const Premultiplied& sum)
{
    if (sum[3] < 0.5f)
        return {};
    const auto channel = [&sum](std::size_t index)
    {
        return static_cast<std::uint8_t>(std::min(sum[index] / sum[3] + 0.5f, 255.0f));
    };
    return { channel(2), channel(1), channel(0), static_cast<std::uint8_t>(std::min(sum[3] + 0.5f, 255.0f)) };
}

void AddTo(Premultiplied& sum, const Premultiplied& more, float weight)
{
    for (std::size_t i = 0; i < sum.size(); ++i)
        sum[i] += more[i] * weight;
}
}   // namespace

MBitmap Stretched(const MBitmap& source, const MRectangle& part, std::int32_t width, std::int32_t height)
{
    MBitmap result(width, height);
    if (result.IsEmpty() || part.IsEmpty())
        return result;
    const Weights across(part.Width(), width);
    const Weights down(part.Height(), height);

    // First across, in all old rows, then down.
    const auto columns = static_cast<std::size_t>(width);
    std::vector<Premultiplied> narrow(columns * static_cast<std::size_t>(part.Height()));
    for (std::int32_t y = 0; y < part.Height(); ++y)
    {
        const std::uint32_t* row = source.Row(part.top + y) + part.left;
        Premultiplied* target = narrow.data() + static_cast<std::size_t>(y) * columns;
        for (std::int32_t x = 0; x < width; ++x)
            across.Each(x, [&](const Weights::Entry& entry)
                        { AddTo(target[x], Of(MColor(row[entry.old])), entry.weight); });
    }
    std::vector<Premultiplied> sums(columns);
    for (std::int32_t y = 0; y < height; ++y)
    {
        std::fill(sums.begin(), sums.end(), Premultiplied{});
        down.Each(y,
                  [&](const Weights::Entry& entry)
                  {
                      const Premultiplied* old =
                          narrow.data() + static_cast<std::size_t>(entry.old) * columns;
                      for (std::size_t x = 0; x < columns; ++x)
                          AddTo(sums[x], old[x], entry.weight);
                  });
        std::uint32_t* row = result.Row(y);
        for (std::size_t x = 0; x < columns; ++x)
            row[x] = ColorOf(sums[x]).value;
    }
    return result;
}
