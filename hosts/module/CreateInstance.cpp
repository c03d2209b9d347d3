// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/module/CreateInstance.h"

#include "effect/AnalysisFile.h"
#include "effect/TonalignInterface.h"
#include "foundation/module/Configuration.h"
#include "foundation/text/Boundary.h"
#include "hosts/module/PluginIdentity.h"
#include "resources/RegisterResources.h"

std::unique_ptr<MQuorvaneAudioEffectPlugin> CreateInstance(StartingSettings starting)
{
    StartModuleWithResources();
    auto plugin = std::make_unique<MQuorvaneAudioEffectPlugin>();
    plugin->Initialize(PluginIdentity::Name, PluginIdentity::Maker, &TonalignAudioEffectPluginInterface, 800,
                       560);
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
