// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// How often this thread has taken memory by operator new since it began. A program that links this has all
/// forms of new and delete replaced.
std::int64_t AllocationsOfThisThread();
