// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/equalizer/MEqualizerProcessor.h"
#include "effect/EqualizerAutomation.h"
#include "plugin/contract/MAudioEffectPlugin.h"

/// Binds the equalizer to its effect: reads the effect's parameters and tells the effect's host of changes.
class MEqualizerProcessorPlugin : public MEqualizerProcessor
{
public:
    /// Where the equalizer's parameters stand in the effect's description.
    enum Parameter : std::int32_t
    {
        Mode = 0,
        DryWet = 1,
        Gain = 2,
        SoftSaturation = 3,
        ParameterCount = 4
    };
    /// The four records, with their texts, for the effect's table.
    static void DescribeParameters(MPluginParameterInfo* records);

    explicit MEqualizerProcessorPlugin(MAudioEffectPlugin& effect);

    /// Takes the lock, the rate and the parameters of the effect in. Under the effect's lock.
    void ApplyParameters();
    /// Bands, output gain and saturation. Audio thread, under the effect's lock.
    void Process(float** inputs, float** outputs, std::int32_t frames, std::int32_t channels);
    void BandChanged(std::int32_t band) override;
    void UpdateBandControls(std::int32_t band) override;
    void UpdateAllBandControls() override;
    void Update() override;

    EqualizerAutomation automation;

private:
    void ApplyOutputGain(float* const* outputs, std::int32_t frames, std::int32_t channels);

    MAudioEffectPlugin& effect;
};
