// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/contract/MRandom.h"

#include "foundation/threads/MRelaxed.h"

namespace
{
constinit MRelaxed<std::uint32_t> generatorState{ 0 };
}   // namespace

std::int32_t MRandom::Next15()
{
    const std::uint32_t next = generatorState.Get() * 214013u + 2531011u;
    generatorState = next;
    return static_cast<std::int32_t>((next >> 16) & 0x7FFF);
}

double MRandom::Next01()
{
    return Next15() * 3.051850947599719e-05;   // 1 / 32767
}

bool MRandom::NextBit()
{
    return (Next15() & 1) != 0;
}

void MRandom::Seed(std::uint32_t state)
{
    generatorState = state;
}
