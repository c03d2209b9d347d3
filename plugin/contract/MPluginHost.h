// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

#include "plugin/contract/MPlugin.h"

/// What a driver does for an effect that changes its parameters or limits at run time.
class MPluginDriver
{
public:
    virtual ~MPluginDriver() = default;
    virtual std::int64_t OnDestroyTemporaryAdapters() = 0;
    virtual std::int64_t OnRebuildParameters() = 0;
    virtual std::int64_t OnRefreshAdapters() = 0;
    virtual std::int64_t OnBlockLimitChanged() = 0;
};

/// The driver's side of one effect: holds the entry function and the instance, and answers the effect's
/// host commands. It owns the effect: its end sends the command Destroy.
class MPluginHost : public MEventTarget
{
public:
    MPluginHost() = default;
    ~MPluginHost() override;

    /// Makes the effect. 0 for success, 1 if there is none.
    virtual std::int32_t Connect() = 0;
    virtual void OnConnected() {}
    /// A command from the effect: what tells of a change is marked in the feed, on whatever thread it comes.
    /// A number above 7 answers -1.
    virtual std::int64_t Dispatch(std::int64_t command, MPluginArgument* arguments);
    virtual std::int64_t OnCommand(std::int64_t argument);

    std::int64_t Send(std::int64_t command, MPluginArgument* arguments);
    /// Sends a command whose arguments are all empty.
    std::int64_t Send(std::int64_t command);

    MPluginEntry entry = nullptr;
    MPlugin* instance = nullptr;
    MString name;
    MPluginDescription* description = nullptr;
    MPluginDriver* driver = nullptr;   ///< answers the host commands 4 to 7; without one they answer 0
};

class MAudioEffectPluginHost : public MPluginHost
{
public:
    std::int32_t Connect() override;
    std::int32_t QueryTailSize();
    void SendProcessUpdate();
};

/// Makes effects from nothing but their entry function. Lives on the stack of whoever does so; the hosts
/// that it makes survive it.
class MPluginSystem : public MObject
{
public:
    enum Result : std::int32_t
    {
        Success = 0,
        NoEntry = 4,
        NotConnected = 5,
        NoDescription = 6
    };

    std::int32_t CreatePlugin(const MString& name, MPluginEntry entry,
                              std::unique_ptr<MAudioEffectPluginHost>& host);
};
