// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "audio/equalizer/EqualizerEngine.h"
#include "audio/equalizer/EqualizerGeometry.h"
#include "audio/equalizer/FilterList.h"
#include "audio/filters/FilterMagnitudes.h"
#include "foundation/vector/SpectralFrame.h"

/// The "Linear-phase FFT based" mode: the product of all sections' magnitudes is multiplied onto the spectrum
/// of frames of 32768 samples, a new one each hop of 2048.
///
/// A frame holds 15 hops of the signal under the window sin^2(pi (i + 1/2) / 30720), whose copies add up to
/// 7.5 at a distance of a hop, and one hop of zeros. The zeros are the time that the work has: a frame is
/// complete one hop before its first sample is due. The channels' frames, which all begin at the same sample
/// and see the same gains, are computed one after the other in this hop, and so are the gains of the next
/// frame, a sixteenth of them at a time. A new list is thus heard from the second frame after it on.
class FFTEngine final : public EqualizerEngine
{
public:
    static constexpr std::int32_t HopSize = EqualizerGeometry::FrameSize / 16;
    static constexpr std::int32_t WindowSize = EqualizerGeometry::FrameSize - HopSize;

    void Prepare(std::int32_t channels) override;
    void Reset() override;
    /// Gains of wet * |sections| + 1 - wet. Between two blocks, under the owner's lock. Never allocates.
    void SetFilters(const FilterList& list, double wet);
    /// Makes the filters set last the ones of the very next frame: some milliseconds at most. Main thread.
    void SettleFilters();
    /// From the next frame on.
    void SetEnabled(bool filtered) override { enabled = filtered; }
    void Process(const float* const* inputs, float* const* outputs, std::int32_t frames) override;

private:
    static constexpr std::int32_t FrameSize = EqualizerGeometry::FrameSize;
    /// Shares of work of a hop; the channels' frames fall into different ones.
    static constexpr std::int32_t ShareCount = 16;
    static constexpr std::int32_t ShareSize = HopSize / ShareCount;
    static constexpr std::int32_t SumSize = FrameSize + HopSize;

    struct Channel
    {
        std::vector<float> input;   // ring of the last FrameSize samples
        std::vector<float> sum;   // ring of what is to come out
    };

    void BeginFrame();
    void WorkShare(std::int32_t share);
    void ComputeFrame(Channel& channel);
    void EvaluateShare(std::int32_t share);

    std::vector<Channel> channels;
    std::vector<float> window;
    std::vector<float> zeros;   // one hop
    float scale = 1.0f;
    std::unique_ptr<SpectralFrame> frame;   // of all channels, one after the other

    FilterList given;
    double givenWet = 1.0;
    bool enabled = true;
    bool changed = true;   // `given` since the last evaluation began
    MAudioFilters::MagnitudeGrid grid;
    double evaluatedWet = 1.0;
    bool evaluating = false;   // the next curve, a share at a time
    std::array<std::vector<float>, 2> curves;   // gains of each bin twice, as a packed spectrum has it
    std::size_t active = 0;   // of `curves`, that of the present frame
    bool filtersFrame = true;   // `enabled` as the present frame has it

    std::int32_t hopPosition = 0;   // in the present hop
    std::int32_t inputPosition = 0;   // in the input rings
    std::int32_t outputPosition = 0;   // in the sum rings
    std::int32_t frameBegin = 0;   // of the present frame, in the input rings
    std::int32_t frameOutput = 0;   // of its first sample, in the sum rings
};
