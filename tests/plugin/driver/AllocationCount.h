// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// How often the present thread has taken memory from the heap.
std::int64_t AllocationCount();
