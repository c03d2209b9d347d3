// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/driver/MAudioEffectPluginToAudioPluginAdapter.h"

/// The plug-in object as hosts own it: the standard layer with the settings that belong to its editor.
class MQuorvaneAudioEffectPlugin : public MAudioEffectPluginToAudioPluginAdapter
{
public:
    void Store(const MStoreParams& params) override;

    std::int32_t upsampling = 1;
    std::int32_t highQualityUpsampling = 1;
    std::int32_t agc = 0;
    std::int32_t presetIndex = 0;
};
