// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/driver/PluginState.h"

#include "plugin/driver/MQuorvaneAudioEffectPlugin.h"
#include "state/tree/MAttribute.h"
#include "state/tree/MStoreParams.h"
#include "state/tree/XML.h"

void WritePluginState(MQuorvaneAudioEffectPlugin& plugin, MStream& stream)
{
    MAttribute root("settings");
    plugin.Store({ .saving = 1, .item = &root });
    WriteCompressedXML(root, stream, "utf-8");
}

void ReadPluginState(MQuorvaneAudioEffectPlugin& plugin, MStream& stream)
{
    MAttribute root;
    ReadCompressedXML(root, stream);
    plugin.Store({ .saving = 0, .item = &root });
}
