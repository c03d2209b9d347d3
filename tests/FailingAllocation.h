// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>

/// Counts down to an allocation of this program that fails; below 0 all succeed.
extern std::atomic<int> allocationsLeft;
