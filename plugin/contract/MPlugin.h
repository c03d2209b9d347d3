// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/containers/MEvent.h"
#include "foundation/threads/MMutex.h"
#include "plugin/contract/MPluginDescription.h"
#include "plugin/contract/PluginCommands.h"
#include "state/tree/MStoreParams.h"

class MAttribute;
class MControl;

/// An effect as its driver sees it: a static description of parameters, numbered commands, and settings.
///
/// Life: an entry function makes the effect; SetHost and OnConnected tell it who drives it; the driver
/// points `lock` and `description.environment` at its own before anything else. `lock` guards what processing
/// reads; parameter records are single stores. The command Destroy ends it.
///
/// Threads: "main" is one thread at a time that a host chooses for making, preparing and storing, not audio
/// and not always that of the screen; "GUI" is that of the screen; "any" includes audio.
class MPlugin : public MEventTarget
{
public:
    MPlugin();
    ~MPlugin() override = default;

    /// Thread: that of the operation that the command stands for.
    virtual std::int64_t Dispatch(std::int64_t command, MPluginArgument* arguments);
    /// Thread: main, before all others.
    virtual MPlugin* SetHost(void* newHostObject, MHostCallback newHostCallback);
    virtual void OnConnected() {}
    /// Copies `value` to `previousValue` of every float parameter. Thread: main.
    virtual void AcceptValues();
    /// A parameter has its new value. May neither wait nor allocate: what takes long is marked and done
    /// later. Thread: any.
    virtual void OnParameterChange(std::int32_t index);
    /// Takes the parameters over. Under `lock`, on audio before a block when one asked for it, else on main.
    /// Never allocates once InitProcessing has run. Thread: any.
    virtual void Update() {}
    /// By the environment's screens, if there are any. Thread: GUI.
    virtual void CreateEditor(MControl* parent);
    virtual void DestroyEditor(MControl* editor);
    /// Every parameter by its id, then Store. Answers 1. Blocks may run meanwhile. Thread: main.
    virtual std::int8_t SaveSettings(MAttribute& node);
    /// A missing parameter keeps its value; numbers are clamped to their range. Answers 1. No block runs
    /// meanwhile. Thread: main.
    virtual std::int8_t LoadSettings(MAttribute& node, MLoadMode mode = MLoadMode::Plain);
    virtual void Store(const MStoreParams& params);
    /// The parameters from `first` up to the next group, ids without digits and blanks at their ends. Thread:
    /// GUI, these and all that follow.
    virtual void SaveParameterGroup(std::int32_t first, MAttribute& node);
    virtual void LoadParameterGroup(std::int32_t first, MAttribute& node);
    virtual void OnSettingsLoaded() {}
    virtual void OnCommand13() {}
    virtual std::int32_t OnCommand14(std::int64_t value);
    /// Amount 1 draws every parameter anew, a smaller one moves it by up to that share of its range.
    virtual std::int32_t Randomize(double amount);
    virtual void RandomizeSpecial();
    virtual void ResetSpecial();
    virtual std::int64_t OnCommand20(std::int64_t first, std::int64_t second);

    /// Where changes are marked. Thread: any.
    ChangeFeed& Changes() { return description.environment->changes; }
    /// Sends a command to the host; -1 without a callback.
    std::int64_t SendToHost(std::int64_t command, std::int64_t argument = 0);

    MHostCallback hostCallback = nullptr;
    void* hostObject = nullptr;

private:
    MMutex ownLock;

public:
    MSynchronizer* lock = &ownLock;
    MPluginDescription description;
};

/// Draws (amount 1) or moves the value of one record; records that don't take part are left alone.
void RandomizeParameter(MPluginParameterInfo& info, double amount);
/// Writes one parameter's value under `key`, or reads it back, clamped.
void SaveParameterValue(const MPluginParameterInfo& info, MAttribute& node, const MString& key);
void LoadParameterValue(MPluginParameterInfo& info, MAttribute& node, const MString& key);
