// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/containers/MEvent.h"
#include "foundation/text/MString.h"

class AutomationAdapter;

/// What an adapter needs of the plug-in object that lists it.
class AutomationOwner
{
public:
    virtual ~AutomationOwner() = default;
    /// Tells the host that a parameter was moved from inside.
    virtual void SendAutomation(std::int32_t index, double value01) = 0;
    /// Marks that a parameter moved, for whoever shows it. Any thread; never waits or allocates.
    virtual void MarkParameterChanged(std::int32_t index) = 0;
    /// The same where the host doesn't know of it yet.
    virtual void MarkParameterChangedInside(std::int32_t index) = 0;
};

/// Stands between a run of host parameters and the fields of an effect: each of its targets turns a value
/// from 0 to 1 into a field and back, has a name, and prints and parses its value.
///
/// Values may be set on any thread. `sub` is the number of a target inside the adapter, the host's index
/// less `firstIndex`.
class AutomationAdapter : public MEventTarget
{
public:
    enum class Type : std::int32_t
    {
        Float = 1,
        Integer = 2,
        Enumeration = 3,
        Boolean = 4
    };

    /// Sets a target from 0 to 1. `silent` writes the field only, without telling anybody.
    virtual void SetValue(std::int32_t sub, double value01, bool silent);
    /// The same where the value differs by 1e-50 or more.
    virtual void SetValueIfChanged(std::int32_t sub, double value01, bool silent);
    virtual double GetValue(std::int32_t sub) const;
    virtual void GetName(MString& out, std::int32_t sub) const;
    virtual void GetShortName(MString& out, std::int32_t sub) const;
    virtual void GetID(MString& out, std::int32_t sub) const;
    virtual void GetValueName(MString& out, std::int32_t sub) const;
    virtual void GetValueNameFrom01(MString& out, std::int32_t sub, double value01) const;
    /// The position, 0 to 1, that a text stands for.
    virtual double ParseValueName(std::int32_t sub, const MString& text) const;
    virtual void GetUnitsName(MString& out, std::int32_t sub) const;
    virtual bool IsInterpolated(std::int32_t sub) const;
    virtual void SetInterpolation(std::int32_t sub, bool on);
    virtual Type GetType(std::int32_t sub) const;
    virtual double GetDefaultValue(std::int32_t sub) const;
    /// Runs after the plug-in's list was built anew.
    virtual void OnReconnect() {}
    /// A target was found changed. Thread: GUI.
    virtual void UpdateEditor() {}
    virtual bool IsRandomizable() const;
    /// Moves every target by up to `amount`, or draws it anew from amount 1 on.
    virtual void Randomize(double amount);

    /// Tells the host a target's default value; all targets' with SendAllAutomation.
    void SendAutomation(std::int32_t sub);
    void SendAutomationValue(std::int32_t sub, double value01);
    /// Sends a value beside the true one first: some hosts drop a value that repeats the last.
    void SendAutomationValueWithChange(std::int32_t sub, double value01);
    void SendAllAutomation();

    /// Where to find a set value: what follows every SetValue that isn't silent. Thread: any.
    void MarkChanged(std::int32_t sub);
    void MarkChangedInside(std::int32_t sub);

    std::int32_t targetCount = 1;
    std::int32_t firstIndex = 0;
    bool owned = true;   ///< the list deletes it
    bool temporary = false;   ///< of a dynamic parameter, outside the stable host list
    bool ofEffect = false;   ///< built from a description, and built anew with it
    AutomationOwner* plugin = nullptr;
    MString prefix;   ///< start of the id of all targets
    MString groupName;
    std::int32_t sortKey = 0;
};
