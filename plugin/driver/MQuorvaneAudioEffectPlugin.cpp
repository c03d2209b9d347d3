// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/driver/MQuorvaneAudioEffectPlugin.h"

#include <algorithm>

#include "foundation/text/Boundary.h"
#include "plugin/driver/StoreScope.h"
#include "state/tree/StoredNode.h"

/// The gain control on for a scope, whatever ends it.
class MQuorvaneAudioEffectPlugin::AGCScope
{
public:
    AGCScope(MQuorvaneAudioEffectPlugin& controlled, double windowSeconds)
        : plugin(controlled), windowBefore(plugin.gainControl.windowSeconds)
    {
        plugin.gainControl.windowSeconds = windowSeconds;
        plugin.agc = 1;
        plugin.OnAGCChange();
    }
    ~AGCScope()
    {
        plugin.gainControl.windowSeconds = windowBefore;
        plugin.agc = 0;
        plugin.OnAGCChange();
    }
    AGCScope(const AGCScope&) = delete;
    AGCScope& operator=(const AGCScope&) = delete;

private:
    MQuorvaneAudioEffectPlugin& plugin;
    double windowBefore;
};

void MQuorvaneAudioEffectPlugin::UpdateUpsamplingFactor() noexcept
{
    AtBoundary("UpdateUpsamplingFactor",
               [this]
               {
                   const std::int32_t factor = upsampling;
                   Effect().SetUpsamplingRatio(highQualityUpsampling ? 1 : factor);
                   ProcessingChange change(*this);
                   SetUpsamplingFactor(factor);
                   change.Prepare(ProcessingChange::Preparation::WhereNeeded);
                   change.Finish();
               });
}

void MQuorvaneAudioEffectPlugin::OnAGCChange() noexcept
{
    AtBoundary("MSpecialEventTarget::OnAGCChange",
               [this]
               {
                   ProcessingChange change(*this);
                   change.Prepare(ProcessingChange::Preparation::WhereNeeded);
                   change.Finish();
               });
}

bool MQuorvaneAudioEffectPlugin::ComputeAGC(const AGCHooks& hooks)
{
    constexpr std::int32_t steps = 40;
    constexpr std::int32_t stepMs = 100;
    if (agcActive)
        return SetAGC(CurrentAGCGain());
    const AGCScope scope(*this, gainControl.windowSeconds);
    for (std::int32_t step = 0; step < steps; ++step)
    {
        if (hooks.progress && !hooks.progress("Computing optimal output gain using AGC", step, steps))
            return false;
        hooks.wait(stepMs);
    }
    return SetAGC(CurrentAGCGain());
}

std::int32_t MQuorvaneAudioEffectPlugin::ComputeAGCOfPresets(const PresetBank& bank, const AGCHooks& hooks)
{
    constexpr double windowSeconds = 3;
    constexpr std::int32_t presetMs = 5000;
    const AGCScope scope(*this, windowSeconds);
    for (std::int32_t index = 0; index < bank.count; ++index)
    {
        if (hooks.progress && !hooks.progress("Processing presets", index, bank.count))
            return index;
        bank.load(index);
        // The preset keeps its own choice; what was measured for the one before is nothing to it.
        const std::int32_t ownChoice = agc;
        agc = 1;
        {
            ProcessingChange change(*this);
            change.Prepare(ProcessingChange::Preparation::WhereNeeded);
            change.Finish();
        }
        RestartGainControl();
        hooks.wait(presetMs);
        SetAGC(CurrentAGCGain());
        agc = ownChoice;
        bank.store(index);
    }
    return bank.count;
}

void MQuorvaneAudioEffectPlugin::Store(const MStoreParams& params)
{
    StoreScope scope(*this, params);
    StoredNode node(params);
    node.Always("upsampling", upsampling, { 1, MaxUpsamplingFactor });
    node.AlwaysOr("hqupsampling", highQualityUpsampling, true);
    if (!params.saving)
        UpdateUpsamplingFactor();
    node.Always("AGC", agc, { 0, 1 });
    if (params.scope == MStoreScope::State)
        node.Always("PresetIndex", presetIndex, { 0, 7 });
    MAudioEffectPluginToAudioPluginAdapter::Store(params);
    scope.Finish();
}
