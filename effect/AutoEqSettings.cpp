// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/AutoEqSettings.h"

#include "control/values/MValueFrequency.h"
#include "control/values/MValueQuantities.h"
#include "state/tree/StoredNode.h"

AutoEqSettings::AutoEqSettings()
{
    autoEqEnvelope.Reset(0, 1);
}

void AutoEqSettings::Store(const MStoreParams& params)
{
    StoredNode node(params);
    node.AlwaysOr("MaxAdaptionBars", maxAdaptionBars, 4, { 1, 10 });
    node.Always("NeverAmplify", neverAmplify);
    node.Always("DisablePassNotch", disablePassNotch);
    node.Child("AdaptionFrequencyMin", MValueFrequency(&adaptionFrequencyMin, 20, 20000, 20));
    node.Child("AdaptionFrequencyMax", MValueFrequency(&adaptionFrequencyMax, 20, 20000, 20000));
    node.Child("SpaceInMixLimit", MValueGain(&spaceInMixLimit, -100, 0, -40));
    std::int32_t algorithm = adaptionAlgorithm;
    node.Always("AdaptionAlgorithm", algorithm);
    adaptionAlgorithm = algorithm == MFAOptimized ? MFAOptimized : MFADefault;
}
