// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// What a graph editor leaves around its graphs, in units at 100 %.
namespace GraphSizes
{
constexpr std::int32_t AxisSide = 44;   // captions at the left and right
constexpr std::int32_t AxisBottom = 16;
constexpr std::int32_t Zoomer = 12;   // more where an axis can be zoomed
constexpr std::int32_t Legend = 24;   // at the top
constexpr std::int32_t Edge = 8;   // without captions
constexpr std::int32_t LabelGap = 10;
constexpr std::int32_t CornerRadius = 5;
}   // namespace GraphSizes
