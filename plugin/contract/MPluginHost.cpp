// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/contract/MPluginHost.h"

#include "plugin/contract/MPluginArgument.h"

namespace
{
std::int64_t CallHost(void* hostObject, std::int64_t command, MPluginArgument* arguments)
{
    return static_cast<MPluginHost*>(hostObject)->Dispatch(command, arguments);
}
}   // namespace

MPluginHost::~MPluginHost()
{
    if (instance != nullptr)
        Send(PluginCommand::Destroy);
}

std::int64_t MPluginHost::Send(std::int64_t command, MPluginArgument* arguments)
{
    return entry(instance, command, arguments);
}

std::int64_t MPluginHost::Send(std::int64_t command)
{
    MPluginArguments arguments;
    return Send(command, arguments.Records());
}

std::int64_t MPluginHost::OnCommand(std::int64_t)
{
    return -1;
}

std::int64_t MPluginHost::Dispatch(std::int64_t command, MPluginArgument* arguments)
{
    switch (command)
    {
    case HostCommand::Query:
        return OnCommand(arguments[0].value);
    case HostCommand::EqualizerParametersChanged:
        if (instance != nullptr)
            instance->Changes().Mark(Change::Response);
        return 0;
    case HostCommand::ParameterGroupLoaded:
        if (instance != nullptr)
            instance->Changes().Mark(Change::ParameterGroup);
        return 0;
    case HostCommand::ParameterChangedInside:
        if (instance != nullptr)
            instance->Changes().MarkBand(arguments[0].AsInt32());
        return 0;
    case HostCommand::DestroyTemporaryAdapters:
        return driver != nullptr ? driver->OnDestroyTemporaryAdapters() : 0;
    case HostCommand::RebuildParameters:
        return driver != nullptr ? driver->OnRebuildParameters() : 0;
    case HostCommand::RefreshAdapters:
        return driver != nullptr ? driver->OnRefreshAdapters() : 0;
    case HostCommand::BlockLimitChanged:
        return driver != nullptr ? driver->OnBlockLimitChanged() : 0;
    default:
        return -1;
    }
}

std::int32_t MAudioEffectPluginHost::Connect()
{
    MPluginArguments arguments;
    arguments.SetPointer(0, static_cast<MPluginHost*>(this));
    arguments.SetInteger(1, static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(&CallHost)));
    arguments.SetInteger(2, 0).SetInteger(3, 0);
    const std::int64_t made = entry(nullptr, PluginCommand::SetHost, arguments.Records());
    instance = reinterpret_cast<MPlugin*>(static_cast<std::intptr_t>(made));
    return instance != nullptr ? 0 : 1;
}

std::int32_t MAudioEffectPluginHost::QueryTailSize()
{
    return static_cast<std::int32_t>(Send(PluginCommand::GetTailSize));
}

void MAudioEffectPluginHost::SendProcessUpdate()
{
    Send(PluginCommand::ProcessUpdate);
}

std::int32_t MPluginSystem::CreatePlugin(const MString& name, MPluginEntry entry,
                                         std::unique_ptr<MAudioEffectPluginHost>& host)
{
    if (entry == nullptr)
        return NoEntry;
    auto made = std::make_unique<MAudioEffectPluginHost>();
    made->entry = entry;
    if (made->Connect() != 0)
        return NotConnected;
    made->description = reinterpret_cast<MPluginDescription*>(
        static_cast<std::intptr_t>(made->Send(PluginCommand::GetDescription)));
    if (made->description == nullptr)
        return NoDescription;
    made->OnConnected();
    made->Send(PluginCommand::Connected);
    made->name = name;
    host = std::move(made);
    return Success;
}
