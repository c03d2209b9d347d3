// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// The module's one generator of random numbers: state = state * 214013 + 2531011 in 32 bits. Any thread;
/// concurrent use only changes the sequence.
namespace MRandom
{
/// The next 15-bit number.
std::int32_t Next15();
/// The next number in 0 to 1.
double Next01();
/// The low bit of the next number.
bool NextBit();
void Seed(std::uint32_t state);
}   // namespace MRandom
