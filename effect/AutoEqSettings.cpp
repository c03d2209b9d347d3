// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/AutoEqSettings.h"

#include <algorithm>
#include <array>

#include "control/values/MValueFrequency.h"
#include "control/values/MValueQuantities.h"
#include "state/tree/MAttribute.h"
#include "state/tree/MStoreParams.h"

namespace
{
constexpr std::int32_t defaultBars = 4;

void StoreFlag(const MStoreParams& params, const MString& key, MRelaxed<bool>& value)
{
    if (params.saving)
        params.item->SetAttribute(key, value ? "1" : "0");
    else if (params.item->HasAttribute(key))
        value = params.item->GetCachedAttribute().ToInt() != 0;
}

// A value stores itself as one attribute of a child of its own.
void StoreValue(const MStoreParams& params, const MString& key, MValue&& value)
{
    if (params.saving)
        value.Store(params.item->GetSubItem(key));
    else if (params.item->HasSubItem(key))
        value.Load(params.item->GetCachedSubItem());
    else
        value.SetDefault();
}
}   // namespace

AutoEqSettings::AutoEqSettings()
{
    autoEqEnvelope.Reset(0, 1);
}

void AutoEqSettings::Store(const MStoreParams& params)
{
    if (params.saving)
        params.item->SetAttribute("MaxAdaptionBars", MString::FromInt(maxAdaptionBars));
    else if (params.item->HasAttribute("MaxAdaptionBars"))
        maxAdaptionBars = static_cast<std::int32_t>(
            std::clamp<std::int64_t>(params.item->GetCachedAttribute().ToInt(), 1, 10));
    else
        maxAdaptionBars = defaultBars;
    StoreFlag(params, "NeverAmplify", neverAmplify);
    StoreFlag(params, "DisablePassNotch", disablePassNotch);
    StoreValue(params, "AdaptionFrequencyMin", MValueFrequency(&adaptionFrequencyMin, 20, 20000, 20));
    StoreValue(params, "AdaptionFrequencyMax", MValueFrequency(&adaptionFrequencyMax, 20, 20000, 20000));
    StoreValue(params, "SpaceInMixLimit", MValueGain(&spaceInMixLimit, -100, 0, -40));
    if (params.saving)
        params.item->SetAttribute("AdaptionAlgorithm", MString::FromInt(adaptionAlgorithm));
    else if (params.item->HasAttribute("AdaptionAlgorithm"))
        adaptionAlgorithm =
            params.item->GetCachedAttribute().ToInt() == MFAOptimized ? MFAOptimized : MFADefault;
}

const char* AlgorithmLabel(MFAAlgorithm algorithm)
{
    static constexpr std::array labels = { "Default", "Optimized" };
    return labels[static_cast<std::size_t>(algorithm)];
}
