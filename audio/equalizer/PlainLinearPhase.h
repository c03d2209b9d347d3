// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "audio/equalizer/SectionList.h"
#include "audio/fft/MAudioOverlapAdd.h"
#include "audio/fft/MSignalWindowType.h"
#include "foundation/containers/MArrayQueue.h"

/// Linear-phase filtering of one channel in its plain form, which tells what LinearPhaseEngine has to do:
/// whenever a hop of 16384 samples is complete, one frame of 32768 is filtered from its end to its start, the
/// frames are added up, and the sum is filtered forward. Correct, and a burst of work in one block: for tests
/// and benchmarks, not for the audio path.
class PlainLinearPhase
{
public:
    PlainLinearPhase();

    /// Silence; the latency of 32768 samples is primed. The filters stay.
    void Reset();
    void SetFilters(const MAudioFilters::Filter<double>* sections, std::int32_t count);
    void SetEnabled(bool filtered) { enabled = filtered; }
    /// output and input may be the same array.
    void Process(const float* input, float* output, std::int32_t frames);

private:
    /// Frames of two hops that advance by one, each filtered backward between its fades.
    class BackwardPass : public MAudioOverlapAdd
    {
    public:
        explicit BackwardPass(const PlainLinearPhase& newOwner);

    protected:
        void ProcessFrame(float* frame, std::int32_t length) override;

    private:
        const PlainLinearPhase& owner;
        std::vector<double> pairs;
    };

    const SectionList& ActiveList() const { return enabled ? sections : none; }
    void ProcessHop();

    SectionList sections;
    SectionList none;
    bool enabled = true;
    MSignalWindowType fade;
    BackwardPass backward;
    std::vector<MVector::CascadeMemory> forwardMemory;
    MArrayQueue<float> inputQueue;
    MArrayQueue<float> processedQueue;
    std::vector<float> hop;
    std::vector<double> hopPairs;
};
