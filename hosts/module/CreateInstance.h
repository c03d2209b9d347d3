// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "effect/TonalignAudioEffectPlugin.h"
#include "plugin/driver/MQuorvaneAudioEffectPlugin.h"

/// A new plug-in object with its effect. Throws MException "Error creating plugin.". Main thread.
std::unique_ptr<MQuorvaneAudioEffectPlugin> CreateInstance();

/// The effect of an object that CreateInstance made.
TonalignAudioEffectPlugin& EffectOf(MQuorvaneAudioEffectPlugin& plugin);
