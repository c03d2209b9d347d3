// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "foundation/text/MObject.h"

/// Frame-wise processing in the time domain with overlapping frames.
///
/// Each call of n new samples makes one frame of n + left + right samples: what stands before the new samples
/// is zeros (padLeft) or the last samples of the call before, what stands behind is zeros (padRight) or,
/// again, taken from a longer past. The first `left` and the next `right` samples of the result have the end
/// of the last frame added.
class MAudioOverlapAdd : public MObject
{
public:
    /// Samples; takes effect at the next Process.
    void SetOverlaps(std::int32_t leftSamples, std::int32_t rightSamples)
    {
        left = leftSamples;
        right = rightSamples;
    }
    std::int32_t Left() const { return left; }
    std::int32_t Right() const { return right; }
    void SetPadding(bool paddedLeft, bool paddedRight)
    {
        padLeft = paddedLeft;
        padRight = paddedRight;
    }
    void SetAdding(bool addedLeft, bool addedRight)
    {
        addLeft = addedLeft;
        addRight = addedRight;
    }

    /// n below left + right answers zeros. output and input may be the same array. Thread: audio. Allocates
    /// after a change of the overlaps, and when n exceeds any before.
    void Process(float* output, const float* input, std::int32_t n);
    void ReleaseBuffers();
    /// Zeros, without giving memory back.
    void ClearBuffers();

protected:
    virtual void ProcessFrame(float* frame, std::int32_t length) = 0;

private:
    void PrepareBuffers(std::int32_t n);

    std::vector<float> tail;   // of the last frame, left + right samples
    std::vector<float> work;
    std::vector<float> carry;   // last input samples that the next frame begins with
    std::int32_t left = 0;
    std::int32_t right = 0;
    bool padLeft = true;
    bool padRight = true;
    bool addLeft = true;
    bool addRight = true;
};
