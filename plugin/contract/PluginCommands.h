// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

struct MPluginArgument;
class MPlugin;

/// Commands to an effect, through its entry function or `MPlugin::Dispatch`. An unknown one answers -1.
namespace PluginCommand
{
enum : std::int64_t
{
    SetHost = 0,   ///< a0 host object, a1 host callback
    Destroy = 1,
    GetDescription = 2,
    Connected = 3,
    ParameterChange = 4,   ///< a0 index
    CreateEditor = 5,   ///< a0 parent
    DestroyEditor = 6,   ///< a0 editor
    GetInstance = 7,   ///< answered by the entry function
    SaveSettings = 11,   ///< a0 node
    LoadSettings = 12,   ///< a0 node
    Command13 = 13,
    Command14 = 14,
    Randomize = 15,   ///< a0 pointer to double
    Command20 = 20,
    InitProcessing = 100,   ///< a0 channel count, a1 pointer to double sample rate
    Process = 101,   ///< a0 context, a1 inputs, a2 outputs, a3 count
    GetChannelRatio = 102,
    GetLatency = 103,
    SetOption = 104,
    GetTailSize = 105,
    ProcessUpdate = 106,
    InitProcessingGUI = 107
};
}   // namespace PluginCommand

/// Commands from an effect to its host. Without a callback the answer is -1.
namespace HostCommand
{
enum : std::int64_t
{
    Query = 0,
    EqualizerParametersChanged = 1,
    ParameterGroupLoaded = 2,
    ParameterChangedInside = 3,   ///< a0 index
    DestroyTemporaryAdapters = 4,
    RebuildParameters = 5,
    RefreshAdapters = 6,
    BlockLimitChanged = 7
};
}   // namespace HostCommand

/// The entry function of an effect: a null instance makes one.
using MPluginEntry = std::int64_t (*)(MPlugin* instance, std::int64_t command, MPluginArgument* arguments);
using MHostCallback = std::int64_t (*)(void* hostObject, std::int64_t command, MPluginArgument* arguments);
