// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/richtext/STMLOwner.h"

/// A length as a text states it: in units, as a share of something, or by a name of the style.
struct STMLLength
{
    enum class Kind
    {
        None,
        Units,
        Share,
        Metric
    };
    /// Nothing is longer: sums of many such lengths are still whole numbers.
    static constexpr double MostUnits = 10000;

    bool IsGiven() const { return kind != Kind::None; }
    bool IsShare() const { return kind == Kind::Share; }
    /// 0 where none is given.
    /// @param whole  what a share is of, in pixels
    std::int32_t Pixels(const STMLOwner& owner, std::int32_t whole) const;

    Kind kind = Kind::None;
    double value = 0;   ///< units, or a share from 0 to 1
    MString metric;
};

/// The sum of two extents, or the largest that still leaves room for arithmetic.
std::int32_t SumOfExtents(std::int32_t first, std::int32_t second);
