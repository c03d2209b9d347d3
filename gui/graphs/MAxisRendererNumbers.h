// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/graphs/MAxisRendererList.h"

/// Levels of an axis that is linear in the square root of the amplitude: "silence", then each 6 dB.
class MAxisRendererVolumedB : public MAxisRendererList
{
public:
    /// @param topdB  at the upper end
    explicit MAxisRendererVolumedB(double topdB);
};

/// Decibels on a linear axis; 0 stands out where it isn't an end.
class MAxisRendererVolumedBValues : public MAxisRendererList
{
public:
    /// @param step  above 0; so small a one that there were more than 1000 labels leaves them all out
    MAxisRendererVolumedBValues(double minimum, double maximum, double step);
};

class MAxisRendererPercents : public MAxisRendererList
{
public:
    explicit MAxisRendererPercents(double minimum = 0, double maximum = 100, double step = 10);
};

class MAxisRendererIntegers : public MAxisRendererList
{
public:
    MAxisRendererIntegers(std::int32_t minimum, std::int32_t maximum, std::int32_t step = 1);
};
