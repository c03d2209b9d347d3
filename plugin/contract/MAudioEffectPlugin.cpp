// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/contract/MAudioEffectPlugin.h"

#include "plugin/contract/MPluginArgument.h"

std::int64_t MAudioEffectPlugin::Dispatch(std::int64_t command, MPluginArgument* arguments)
{
    switch (command)
    {
    case PluginCommand::InitProcessing:
    {
        const std::int64_t result = InitProcessing(arguments[0].AsInt32(), *arguments[1].AsPointer<double>());
        Update();
        AcceptValues();
        return result;
    }
    case PluginCommand::Process:
        Process(*arguments[0].AsPointer<MProcessContext>(), arguments[1].AsPointer<float*>(),
                arguments[2].AsPointer<float*>(), arguments[3].AsInt32());
        return 0;
    case PluginCommand::GetChannelRatio:
        return GetChannelRatio();
    case PluginCommand::GetLatency:
        return GetLatency();
    case PluginCommand::SetOption:
        SetOption(arguments[0].AsInt32());
        return 0;
    case PluginCommand::GetTailSize:
        return GetTailSize();
    case PluginCommand::ProcessUpdate:
        ProcessUpdate();
        return 0;
    case PluginCommand::InitProcessingGUI:
        InitProcessingGUI();
        return 0;
    default:
        return MPlugin::Dispatch(command, arguments);
    }
}

SuspendGuard::SuspendGuard(MAudioEffectPlugin& suspended) : effect(suspended)
{
    const MSynchronizerGuard guard(effect.lock);
    ++effect.suspendCount;
}

SuspendGuard::~SuspendGuard()
{
    // An infinite wait on a lock can't fail.
    const MSynchronizerGuard guard(effect.lock);
    --effect.suspendCount;
}
