// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "plugin/contract/PluginCommands.h"

/// The entry of the effect: a null instance makes one, then the command goes to it. Command 7 answers the
/// instance. Never throws; a failure answers 0.
extern "C" __attribute__((visibility("default"))) std::int64_t TonalignAudioEffectPluginInterface(
    MPlugin* instance, std::int64_t command, MPluginArgument* arguments);
