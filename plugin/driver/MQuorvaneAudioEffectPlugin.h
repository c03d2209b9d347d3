// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "plugin/driver/MAudioEffectPluginToAudioPluginAdapter.h"

/// What an operation that listens to real playback for seconds needs from whoever runs it. Both run on the
/// caller's thread.
struct AGCHooks
{
    /// Lets the given time pass while audio plays, and keeps a user interface alive meanwhile.
    std::function<void(std::int32_t milliseconds)> wait;
    /// Hears what is being done, how many of how many steps are. False cancels. May be empty.
    std::function<bool(const MString& title, std::int32_t done, std::int32_t total)> progress;
};

/// The plug-in object as hosts own it: the standard layer with the settings that belong to its editor.
class MQuorvaneAudioEffectPlugin : public MAudioEffectPluginToAudioPluginAdapter
{
public:
    void Store(const MStoreParams& params) override;

    /// Brings effect and driver in line with `upsampling` and `highQualityUpsampling`; to be called after a
    /// change of either. Main thread.
    void UpdateUpsamplingFactor() noexcept;
    /// To be called after a change of `agc`. Main thread.
    void OnAGCChange() noexcept;

    /// Turns the gain control on for four seconds of playback and adds what it then applies to the output
    /// gain of the effect. While the control is on anyway, its present gain is taken at once. False, with the
    /// output gain unchanged, when cancelled or when the effect has none. Main thread. Throws what the hooks
    /// throw, with the control off again.
    bool ComputeAGC(const AGCHooks& hooks);

    /// A bank of settings for ComputeAGCOfPresets.
    struct PresetBank
    {
        std::int32_t count = 0;
        std::function<void(std::int32_t index)> load;   ///< into this plug-in
        std::function<void(std::int32_t index)> store;   ///< back from it
    };
    /// The same for each preset of a bank, over five seconds of playback. Answers how many were done; those
    /// stay changed when it is cancelled or a hook throws.
    std::int32_t ComputeAGCOfPresets(const PresetBank& bank, const AGCHooks& hooks);

    MRelaxed<std::int32_t> upsampling = 1;   ///< 1 to 4, the choice; see UpdateUpsamplingFactor
    MRelaxed<std::int32_t> agc = 0;   ///< the choice; see OnAGCChange
    std::int32_t presetIndex = 0;

protected:
    bool WantsGainControl() const override { return agc != 0; }

private:
    class AGCScope;
};
