// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "control/envelope/MEnvelopeComputer.h"
#include "foundation/threads/MLock.h"

/// A curve that the audio thread evaluates: compiled on any other thread, handed over by one exchange.
///
/// Three compiled curves take turns. One is the audio thread's, one the writers', and the third lies between
/// them: it is the newest, or the one that the audio thread gave back. So nobody waits for the audio thread,
/// it waits for nobody, and the memory of an old curve is freed by the writer who needs its place.
class MPublishedEnvelope
{
public:
    /// Compiles the curve, unless it is the one published last, and lets the audio thread have it. Answers
    /// whether it was compiled. Thread: any but audio. Throws MException "Invalid control point type."; the
    /// last curve stays then.
    bool Publish(const MEnvelope& envelope);
    /// The curve published last, or constant 0. What it answers stays as it is until the next call.
    /// Thread: audio. Never waits, allocates or throws.
    MEnvelopeComputer& Current() noexcept;

private:
    static constexpr std::uint32_t IsFresh = 4;   // a flag beside the index

    std::array<MEnvelopeComputer, 3> computers;
    std::atomic<std::uint32_t> between = 1;
    std::uint32_t audioIndex = 0;   // of the audio thread

    MLock writersLock;   // guards what follows
    std::uint32_t writerIndex = 2;
    std::uint64_t publishedStamp = 0;   // 0: nothing yet
};
