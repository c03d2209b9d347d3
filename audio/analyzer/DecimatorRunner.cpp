// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/DecimatorRunner.h"

#include "foundation/vector/VectorOperations.h"

namespace
{
// Silence would let the recursion die away into denormal numbers.
constexpr float denormalGuard = 1e-15f;

struct Taps
{
    explicit Taps(const MAudioFilters::Filter<float>& section)
        : values{ section.b0, section.b1, section.b2, 1.0f, -section.a1, -section.a2 }
    {
    }
    float values[6];
};
}   // namespace

void DecimatorRunner::Prepare(const MAudioFilters::DecimatorCascade& cascade)
{
    for (std::size_t i = 0; i < SectionCount; ++i)
    {
        BiquadStateFloat* state = nullptr;
        BiquadCreateFloat(&state, Taps(cascade.sections[i]).values, 1, 0);
        states[i].reset(state);
        generations[i] = cascade.sections[i].generation;
    }
}

void DecimatorRunner::Run(const MAudioFilters::DecimatorCascade& cascade, float* samples, std::int32_t n)
{
    MVector::AddConstantInPlace(denormalGuard, samples, n);
    for (std::size_t i = 0; i < static_cast<std::size_t>(cascade.count); ++i)
    {
        const auto& section = cascade.sections[i];
        if (section.generation != generations[i])
        {
            BiquadSetTapsFloat(Taps(section).values, states[i].get());
            generations[i] = section.generation;
        }
        BiquadRunFloat(samples, samples, n, states[i].get());
    }
}
