// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "state/tree/MAttribute.h"

/// Two settings files outside of any project, each a tree with the root `Configuration`. Nothing is cached:
/// each access is a whole read, or a read, a change and a write, so that the instances in all processes see
/// each other's writes at their next access. A file is replaced as a whole (the last writer wins).
/// Thread: main.

/// `GlobalConfiguration.xml` in the module's data folder: this plug-in's own. A missing or broken file gives
/// an empty tree. Throws only without memory.
void LoadConfiguration(MAttribute& configuration);
/// Throws MException when the file can't be written; the old one stays then.
void SaveConfiguration(MAttribute& configuration);
/// `MPluginConfiguration.xml` in special folder 1: what all plug-ins of the user share.
void LoadPluginConfiguration(MAttribute& configuration);
void SavePluginConfiguration(MAttribute& configuration);

/// What the shared file says, with the defaults of what it doesn't.
struct PluginConfiguration
{
    int surround = 0;   ///< `Surround`
    bool confirmationEnabled = true;   ///< `ConfirmationEnabled`
    bool tabletMode = false;   ///< `TabletMode`
    MString onlinePresetExchange = {};   ///< `OnlinePresetExchange`, kept as it is
};
PluginConfiguration ReadPluginConfiguration();
/// Changes these keys and leaves the others alone. Throws MException.
void WritePluginConfiguration(const PluginConfiguration& configuration);
