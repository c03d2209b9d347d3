// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

class AutomationAdapter;
class AutomationList;

/// One automation target's ramp across a block.
struct MParameterInterpolation
{
    AutomationAdapter* adapter = nullptr;
    std::int32_t subIndex = 0;
    double lastValue = 0;
    double targetValue = 0;
    double currentValue = 0;
    double step = 0;   ///< a sample
    bool changing = false;
};

/// Turns what a host changed between two blocks into straight ramps across the next one.
///
/// For each block: Prepare; if it answers true, Advance after each part of the block but the last, and
/// Finish. Each of the three is followed by an Update of the effect, which is the caller's. Audio thread;
/// Rebuild on the main thread under the processing locks.
class ParameterInterpolator
{
public:
    /// Lists the targets that can be interpolated.
    void Rebuild(const AutomationList& list);
    /// The next block starts from the values as they are, without a ramp.
    void SkipNextRamp() { firstBlock = true; }

    bool Prepare(std::int32_t sampleCount);
    void Advance(std::int32_t sampleCount);
    void Finish();

private:
    std::vector<MParameterInterpolation> active;
    bool firstBlock = true;
};
