// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

#include <hwy/highway.h>

#include <gtest/gtest.h>

#include "foundation/vector/InstructionSets.h"

/// Runs `body` once with each instruction set that the build contains and this processor has, the plain
/// fallback included.
template <typename Body>
void ForEveryTarget(Body body)
{
    namespace Sets = MVector::InstructionSets;
    for (std::int64_t left = Sets::Supported() & HWY_TARGETS; left != 0; left &= left - 1)
    {
        const std::int64_t target = left & -left;
        SCOPED_TRACE(std::string("instruction set ") + hwy::TargetName(target));
        Sets::Use(target);
        body();
        if (::testing::Test::HasFatalFailure())
            break;
    }
    Sets::Use(0);
}
