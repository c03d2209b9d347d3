// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "state/tree/MAttribute.h"

// The choice of a style, and what the user changed about it: `Style.cfg` in the module's data folder, with
// the root `StyleConfiguration`. All instances share it; nothing is cached. Thread: GUI.

/// What the user is asked before, and told after ResetStyleConfiguration.
inline constexpr const char* ResetStyleQuestion =
    "Are you sure you want to reset the default editor size and style?";
inline constexpr const char* ResetStyleDone =
    "Default editor size and style has successfuly been reverted to original settings. Please restart your "
    "host for the changes to take effect.";
/// What the user is told when the style can't be had; no editor opens then.
inline constexpr const char* StyleMissingMessage =
    "Could not load required resources. The software hasn't been installed correctly. Please reinstall the "
    "software and contact our support if it won't help.";

/// Without a file, and where it has no `Style`: "Default (light)" with its four main colours. Throws
/// MException for a file that is no XML.
void LoadStyleConfiguration(MAttribute& configuration);
/// Throws MException when it can't be written; the old one stays then.
void SaveStyleConfiguration(MAttribute& configuration);
/// Deletes the file, and the kept size of the editor (`DefaultSize` with what follows it, in the module's
/// configuration). Throws MException.
void ResetStyleConfiguration();
