// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/module/CreateInstance.h"

#include "effect/AnalysisFile.h"
#include "effect/TonalignInterface.h"
#include "foundation/module/Configuration.h"
#include "foundation/text/Boundary.h"
#include "hosts/module/PluginIdentity.h"
#include "resources/RegisterResources.h"

namespace
{
// Behind the effect's own 80: the channel mode, and room for what the standard layer is to bring, by its sort
// keys: the multiparameters (3 and 71), and the controllers of MIDI and notes with the steps through presets
// (73).
void ReserveParameterPlaces(MQuorvaneAudioEffectPlugin& plugin)
{
    plugin.automation.Reserve({ { .sortKey = 0, .first = 0, .count = 80 },
                                { .sortKey = ChannelModeAdapter::SortKey, .first = 80, .count = 1 },
                                { .sortKey = 3, .first = 81, .count = 4 },
                                { .sortKey = 71, .first = 85, .count = 4 },
                                { .sortKey = 73, .first = 89, .count = 258 } });
    plugin.automation.AssignIndices();
}
}   // namespace

std::unique_ptr<MQuorvaneAudioEffectPlugin> CreateInstance(StartingSettings starting)
{
    StartModuleWithResources();
    auto plugin = std::make_unique<MQuorvaneAudioEffectPlugin>();
    plugin->Initialize(PluginIdentity::Name, PluginIdentity::Maker, &TonalignAudioEffectPluginInterface, 800,
                       560);
    ReserveParameterPlaces(*plugin);
    if (starting == StartingSettings::OfTheUser)
    {
        plugin->SetSurround(ReadPluginConfiguration().surround != 0);
        plugin->LoadDefaultSettings();
        // A disk that takes nothing is no reason to go without the plug-in.
        AtBoundary("MAudioPlugin::Initialize", [] { AnalysisFolder(); });
    }
    return plugin;
}

TonalignAudioEffectPlugin& EffectOf(MQuorvaneAudioEffectPlugin& plugin)
{
    return static_cast<TonalignAudioEffectPlugin&>(plugin.Effect());
}
