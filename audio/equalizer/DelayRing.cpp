// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/DelayRing.h"

#include <algorithm>
#include <cassert>

#include "foundation/vector/VectorOperations.h"

void DelayRing::Prepare(std::int32_t delaySamples)
{
    ring.resize(static_cast<std::size_t>(delaySamples + MaxPiece));
    Reset();
    writePosition = delaySamples;
    readPosition = 0;
}

void DelayRing::Reset()
{
    std::fill(ring.begin(), ring.end(), 0.0f);
}

std::int32_t DelayRing::PieceLength(std::int32_t wanted) const
{
    const auto size = static_cast<std::int32_t>(ring.size());
    return std::min({ wanted, MaxPiece, size - writePosition, size - readPosition });
}

const float* DelayRing::Exchange(const float* piece, std::int32_t n)
{
    assert(n <= PieceLength(n));
    const auto size = static_cast<std::int32_t>(ring.size());
    MVector::CopyFinite(piece, ring.data() + writePosition, n);
    const float* delayed = ring.data() + readPosition;
    writePosition = writePosition + n == size ? 0 : writePosition + n;
    readPosition = readPosition + n == size ? 0 : readPosition + n;
    return delayed;
}
