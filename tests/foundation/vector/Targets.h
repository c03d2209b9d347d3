// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

#include <hwy/highway.h>
#include <hwy/targets.h>

#include <gtest/gtest.h>

/// Runs `body` once with each instruction set that the build contains and this processor has, the plain
/// fallback included.
template <typename Body>
void ForEveryTarget(Body body)
{
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets())
    {
        SCOPED_TRACE(std::string("instruction set ") + hwy::TargetName(target));
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(target);
        body();
        if (::testing::Test::HasFatalFailure())
            break;
    }
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().DeInit();
}
