// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "control/envelope/MEnvelope.h"
#include "effect/FilterFitter.h"
#include "foundation/text/MEnumLabels.h"
#include "foundation/threads/MRelaxed.h"

struct MStoreParams;

/// What the user sets for Equalize and Separate. The numbers are for any thread, the curve is guarded by the
/// effect's lock.
struct AutoEqSettings
{
    MRelaxed<std::int32_t> maxAdaptionBars = 4;   ///< bands to fit, 1 to 10
    MRelaxed<double> adaptionFrequencyMin = 20;   ///< Hz
    MRelaxed<double> adaptionFrequencyMax = 20000;   ///< Hz
    MRelaxed<double> spaceInMixLimit = -40;   ///< dB, -100 to 0: where Separate takes a mix as empty
    MRelaxed<MFAAlgorithm> adaptionAlgorithm = MFADefault;
    MRelaxed<bool> neverAmplify = false;
    MRelaxed<bool> disablePassNotch = false;
    MEnvelope autoEqEnvelope;   ///< maps the size of a wish, on the unit square

    AutoEqSettings();
    /// The number settings as far as they stand before the curve in the effect's order of keys.
    void Store(const MStoreParams& params);
};

template <>
struct MEnumLabels<MFAAlgorithm>
{
    static constexpr const char* Labels[] = { "Default", "Optimized" };
};
