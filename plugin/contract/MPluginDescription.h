// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>
#include <limits>
#include <vector>

#include "plugin/contract/ChangeFeed.h"
#include "plugin/contract/EffectScreens.h"
#include "plugin/contract/MPluginParameterInfo.h"

/// Whether somebody looks. Of all flags that say so this is the only one.
enum class EditorPresence : std::int32_t
{
    Closed,   ///< no editor exists
    Hidden,   ///< one exists, but isn't shown
    Visible
};

/// State that a driver shares with its effect.
struct MEffectEnvironment
{
    MRelaxed<EditorPresence> editor = EditorPresence::Visible;   ///< written on the GUI thread
    const double* automationSmoothing = nullptr;
    EffectScreens* screens = nullptr;   ///< null where there is no screen; set before an editor is made
    ChangeFeed changes;   ///< where effect and driver mark what a screen shows

    bool editorVisible() const { return editor == EditorPresence::Visible; }
};

namespace EffectFlag
{
enum : std::uint32_t
{
    Default = 0x0022,
    PanelInMainEditor = 0x0004,
    SeparatePages = 0x0008,
    WantsTimeInfo = 0x0040,
    FeedsSecondMeters = 0x0200,
    UpdatePending = 0x0400   ///< set by parameter code, cleared by the driver just before Process
};
}   // namespace EffectFlag

/// What an effect publishes about itself. A member of the effect; lives as long as it.
struct MPluginDescription
{
    std::atomic<std::uint32_t> flags = EffectFlag::Default;
    MPluginParameterInfo* parameters = nullptr;
    std::int32_t parameterCount = 0;
    MPluginSpecialParameterInfo* specialParameters = nullptr;
    std::int32_t specialParameterCount = 0;
    std::vector<MPluginParameterInfo*> groupList;   ///< further parameters; their adapters are temporary
    std::vector<MPluginParameterInfo*> extraList;   ///< reserved
    std::int32_t inputBusCount = 1;   ///< main input and side-chains
    std::int32_t maxInputGroups = 1;
    std::int32_t reservedCount = 1;
    MEffectEnvironment ownEnvironment;
    MEffectEnvironment* environment = &ownEnvironment;
    std::int32_t defaultChannelIndex = -1;
    std::int32_t minBlockSize = 0;
    std::int32_t maxBlockSize = std::numeric_limits<std::int32_t>::max();
    double scales[8] = { 1, 1, 1, 1, 1, 1, 1, 1 };

    bool Has(std::uint32_t flag) const { return (flags.load(std::memory_order_relaxed) & flag) != 0; }
    void RequestUpdate() { flags.fetch_or(EffectFlag::UpdatePending, std::memory_order_release); }
    /// Answers whether an update was pending, and clears it.
    bool TakeUpdateRequest()
    {
        if (!Has(EffectFlag::UpdatePending))
            return false;
        flags.fetch_and(~std::uint32_t{ EffectFlag::UpdatePending }, std::memory_order_acquire);
        return true;
    }
};
