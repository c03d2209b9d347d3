// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

/// A delay of a fixed number of samples for one channel, in pieces of at most MaxPiece. Samples that are not
/// finite are taken as 0.
class DelayRing
{
public:
    static constexpr std::int32_t MaxPiece = 1024;

    /// Allocates; silence.
    void Prepare(std::int32_t delaySamples);
    void Reset();
    /// How many samples, at most `wanted`, the next piece may have.
    std::int32_t PieceLength(std::int32_t wanted) const;
    /// Takes a piece in and answers the delayed one, which stays until the next call. Thread: audio.
    const float* Exchange(const float* piece, std::int32_t n);

private:
    std::vector<float> ring;   // the delay and a piece
    std::int32_t writePosition = 0;
    std::int32_t readPosition = 0;
};
