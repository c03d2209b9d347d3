// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/envelope/MPublishedEnvelope.h"

#include "control/envelope/MEnvelope.h"

bool MPublishedEnvelope::Publish(const MEnvelope& envelope)
{
    const MSynchronizerGuard guard(writersLock);
    if (publishedStamp == envelope.ChangeStamp())
        return false;
    computers[writerIndex].Compile(envelope);
    writerIndex = between.exchange(writerIndex | IsFresh, std::memory_order_acq_rel) & ~IsFresh;
    publishedStamp = envelope.ChangeStamp();
    return true;
}

MEnvelopeComputer& MPublishedEnvelope::Current() noexcept
{
    if ((between.load(std::memory_order_relaxed) & IsFresh) != 0)
        audioIndex = between.exchange(audioIndex, std::memory_order_acq_rel) & ~IsFresh;
    return computers[audioIndex];
}
