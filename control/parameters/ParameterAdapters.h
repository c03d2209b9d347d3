// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "control/parameters/AutomationAdapter.h"
#include "plugin/contract/MPlugin.h"

/// The adapter of one parameter record.
class ParameterMainBase : public AutomationAdapter
{
public:
    void GetName(MString& out, std::int32_t sub) const override;
    void GetID(MString& out, std::int32_t sub) const override;

    MString name;
    MString id;
    MString group;
    MPlugin* effect = nullptr;
    MPluginParameterInfo* info = nullptr;
};

/// A parameter of the effect's description.
class ParameterBase : public ParameterMainBase
{
public:
    bool IsRandomizable() const override;
    void Randomize(double amount) override;

    std::int32_t index = -1;   ///< in the description's array

protected:
    /// What follows every set that isn't silent: the effect hears at once, Update waits for the next
    /// block, a screen finds the mark.
    void NotifyChanged(std::int32_t sub);
};

/// A parameter with no record in a description, for values that belong to the standard layer.
class ParameterBaseCustom : public ParameterMainBase
{
public:
    ParameterBaseCustom() { info = &ownInfo; }

    struct ChangeCallback
    {
        MEventTarget* target = nullptr;
        std::intptr_t context = 0;
        void (*function)(MEventTarget* target, std::intptr_t context, void* argument) = nullptr;
    };
    /// Called on every change, on the thread that makes it, with a null argument.
    void AddCallback(const ChangeCallback& callback) { callbacks.push_back(callback); }

    MPluginParameterInfo ownInfo;
    void UpdateEditor() override;
    /// Posted after a change by whoever drains the marks, not by whoever makes it.
    MEvent<MOnNotifyParams, MHandlerNoAdditionals> OnChanged;

protected:
    void NotifyChanged(std::int32_t sub);

private:
    std::vector<ChangeCallback> callbacks;
};

template <typename B>
class ParameterFloatT : public B
{
public:
    void SetValue(std::int32_t sub, double value01, bool silent) override;
    double GetValue(std::int32_t sub) const override;
    void GetValueName(MString& out, std::int32_t sub) const override;
    void GetValueNameFrom01(MString& out, std::int32_t sub, double value01) const override;
    double ParseValueName(std::int32_t sub, const MString& text) const override;
    bool IsInterpolated(std::int32_t sub) const override;
    void SetInterpolation(std::int32_t sub, bool on) override;
    double GetDefaultValue(std::int32_t sub) const override;
};

template <typename B>
class ParameterIntT : public B
{
public:
    void SetValue(std::int32_t sub, double value01, bool silent) override;
    double GetValue(std::int32_t sub) const override;
    void GetValueName(MString& out, std::int32_t sub) const override;
    void GetValueNameFrom01(MString& out, std::int32_t sub, double value01) const override;
    double ParseValueName(std::int32_t sub, const MString& text) const override;
    AutomationAdapter::Type GetType(std::int32_t) const override { return AutomationAdapter::Type::Integer; }
    double GetDefaultValue(std::int32_t sub) const override;
};

template <typename B>
class ParameterEnumT : public B
{
public:
    void SetValue(std::int32_t sub, double value01, bool silent) override;
    double GetValue(std::int32_t sub) const override;
    void GetValueName(MString& out, std::int32_t sub) const override;
    void GetValueNameFrom01(MString& out, std::int32_t sub, double value01) const override;
    double ParseValueName(std::int32_t sub, const MString& text) const override;
    AutomationAdapter::Type GetType(std::int32_t) const override
    {
        return AutomationAdapter::Type::Enumeration;
    }
    double GetDefaultValue(std::int32_t sub) const override;
};

template <typename B>
class ParameterBoolT : public B
{
public:
    void SetValue(std::int32_t sub, double value01, bool silent) override;
    double GetValue(std::int32_t sub) const override;
    void GetValueName(MString& out, std::int32_t sub) const override;
    void GetValueNameFrom01(MString& out, std::int32_t sub, double value01) const override;
    double ParseValueName(std::int32_t sub, const MString& text) const override;
    AutomationAdapter::Type GetType(std::int32_t) const override { return AutomationAdapter::Type::Boolean; }
    double GetDefaultValue(std::int32_t sub) const override;

protected:
    virtual MRelaxed<bool>* Field() const { return &this->info->boolean.value; }
};

/// A group that can be switched off as a whole.
template <typename B>
class ParameterGroupT : public ParameterBoolT<B>
{
protected:
    MRelaxed<bool>* Field() const override { return this->info->group.enabled; }
};

extern template class ParameterFloatT<ParameterBase>;
extern template class ParameterFloatT<ParameterBaseCustom>;
extern template class ParameterIntT<ParameterBase>;
extern template class ParameterIntT<ParameterBaseCustom>;
extern template class ParameterEnumT<ParameterBase>;
extern template class ParameterEnumT<ParameterBaseCustom>;
extern template class ParameterBoolT<ParameterBase>;
extern template class ParameterBoolT<ParameterBaseCustom>;
extern template class ParameterGroupT<ParameterBase>;

/// The two common formatters of parameter records: a factor as percents, seconds as milliseconds.
void FormatPercent(MPluginParameterInfo& record, MString& text, bool parse);
void FormatTime(MPluginParameterInfo& record, MString& text, bool parse);
