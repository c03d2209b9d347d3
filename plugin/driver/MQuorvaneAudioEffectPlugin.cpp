// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/driver/MQuorvaneAudioEffectPlugin.h"

#include <algorithm>

#include "state/tree/MAttribute.h"
#include "state/tree/MStoreParams.h"

namespace
{
void StoreNumber(const MStoreParams& params, const MString& key, std::int32_t& value, std::int32_t minimum,
                 std::int32_t maximum)
{
    if (params.saving)
        params.item->SetAttribute(key, MString::FromInt(value));
    else if (params.item->HasAttribute(key))
        value = static_cast<std::int32_t>(
            std::clamp<std::int64_t>(params.item->GetCachedAttribute().ToInt(), minimum, maximum));
}
}   // namespace

void MQuorvaneAudioEffectPlugin::Store(const MStoreParams& params)
{
    // The audio thread drops its blocks meanwhile, rather than see settings half read.
    const MSynchronizerGuard processGuard(processLock);
    const MSynchronizerGuard initGuard(initLock);
    const MSynchronizerGuard settingsGuard(settingsLock);
    StoreNumber(params, "upsampling", upsampling, 1, 4);
    if (!params.saving)
        highQualityUpsampling = 1;
    StoreNumber(params, "hqupsampling", highQualityUpsampling, 0, 1);
    StoreNumber(params, "AGC", agc, 0, 1);
    StoreNumber(params, "PresetIndex", presetIndex, 0, 7);
    MAudioEffectPluginToAudioPluginAdapter::Store(params);
}
