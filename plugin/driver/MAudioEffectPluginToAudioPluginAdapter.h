// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "plugin/contract/MAudioEffectPlugin.h"
#include "plugin/contract/MPluginHost.h"
#include "plugin/driver/ChannelModeAdapter.h"
#include "plugin/driver/MAudioPlugin.h"
#include "state/presets/MPresetManagerT.h"

/// Gives every effect what all of them share: parameters, stored settings, bypass, the road of its blocks.
/// Owns the effect through its host object.
class MAudioEffectPluginToAudioPluginAdapter : public MAudioPlugin, private MPluginDriver
{
public:
    /// What a state without a version number counts as.
    static constexpr std::int32_t FirstVersion = 0x50300;

    ~MAudioEffectPluginToAudioPluginAdapter() override;

    /// Makes the effect and its parameter list. Throws MException "Error creating plugin.".
    virtual void Initialize(const MString& effectName, const MString& makerName, MPluginEntry entry,
                            std::int32_t editorWidth, std::int32_t editorHeight);

    /// Groups of 8 channels instead of 2, and their names; changed only before a host has seen the object.
    void SetSurround(bool active);

    void Update() override;
    std::int32_t GetLatency() override;
    std::int32_t GetTailSize() override;
    void ProcessUpdate() override;
    /// On the first parameter that is marked as output gain. A ratio that isn't a positive number, as before
    /// the first block, changes nothing.
    bool SetAGC(double gainRatio) override;
    /// The settings of the standard layer, then StoreSettings, in both directions.
    void Store(const MStoreParams& params) override;

    /// Makes the present settings those that every new instance starts with. Throws MException.
    void SetDefaultSettingsToCurrent();
    /// Takes them over. False when there are none, or none that can be read. Never throws.
    bool LoadDefaultSettings() noexcept;

    /// Whoever brings a screen gives it here before the first editor. It outlives the object.
    void SetScreens(EffectScreens& newScreens) { environment.screens = &newScreens; }
    /// Has the effect fill `parent`, and let go of it again. Thread: GUI.
    void CreateEditorContents(MControl* parent);
    void DestroyEditorContents(MControl* editor);

    MAudioEffectPlugin& Effect() { return *effect; }
    const MString& EffectName() const { return name; }
    const MString& MakerName() const { return maker; }

    /// Presets of the whole state; the factory presets are the programs that a host sees.
    MPresetManagerT<MAudioEffectPluginToAudioPluginAdapter> presets{ *this };
    std::int32_t version = FirstVersion;
    std::int32_t maxLFOBlockSize = 256;   ///< the finest step in which modulators are followed

protected:
    virtual void RebuildParameters();
    virtual void UpdateMaxBufferSize();
    /// Parameters and settings of the effect, under all locks. After a read, processing is prepared anew
    /// and the next block starts without ramps.
    virtual void StoreSettings(const MStoreParams& params);

    void PrepareProcessing() override;
    bool NeedsDownFilter() const override { return effect->NeedsDownsamplingFilter(); }
    void Process(float** inputs, float** outputs, std::int32_t sampleCount) override;
    void ProcessingBegin(float* const* inputs, float* const* outputs, std::int32_t sampleCount,
                         bool replacing) override;

private:
    std::int64_t OnDestroyTemporaryAdapters() override;
    std::int64_t OnRebuildParameters() override;
    std::int64_t OnRefreshAdapters() override;
    std::int64_t OnBlockLimitChanged() override;
    void StoreChannelMode(const MStoreParams& params);
    void FillContext();

    ChannelModeAdapter channelModeAdapter{ *this };
    MString name;
    MString maker;
    std::int32_t defaultEditorWidth = 0;
    std::int32_t defaultEditorHeight = 0;
    std::unique_ptr<MAudioEffectPluginHost> host;
    MAudioEffectPlugin* effect = nullptr;
    MProcessContext context;
    bool updateTimeInfo = false;
    std::int32_t maxProcessBlockLimit = 0x7FFFFFFF;
};
