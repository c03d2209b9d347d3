// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "effect/TonalignAudioEffectPlugin.h"
#include "plugin/driver/MQuorvaneAudioEffectPlugin.h"

enum class StartingSettings
{
    OfTheUser,   ///< the defaults and the choice of surround that the user has made
    OfTheSystem   ///< always the same: for scripts
};

/// A new plug-in object with its effect. Throws MException "Error creating plugin.". Main thread.
std::unique_ptr<MQuorvaneAudioEffectPlugin> CreateInstance(
    StartingSettings starting = StartingSettings::OfTheUser);

/// The effect of an object that CreateInstance made.
TonalignAudioEffectPlugin& EffectOf(MQuorvaneAudioEffectPlugin& plugin);
