// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "control/parameters/AutomationAdapter.h"

class MAudioPlugin;

/// The channel mode as a parameter, behind all others, so that a host without our editor can choose it.
///
/// A choice is one relaxed store; processing takes it over at the next MAudioPlugin::ApplyChoices, on the GUI
/// thread, since that allocates. So it isn't for automation.
class ChannelModeAdapter : public AutomationAdapter
{
public:
    /// Behind the effect's own parameters, in front of those of the standard layer.
    static constexpr std::int32_t SortKey = 1;

    explicit ChannelModeAdapter(MAudioPlugin& plugin);

    void SetValue(std::int32_t sub, double value01, bool silent) override;
    double GetValue(std::int32_t sub) const override;
    void GetName(MString& out, std::int32_t sub) const override;
    void GetID(MString& out, std::int32_t sub) const override;
    void GetValueName(MString& out, std::int32_t sub) const override;
    void GetValueNameFrom01(MString& out, std::int32_t sub, double value01) const override;
    double ParseValueName(std::int32_t sub, const MString& text) const override;
    Type GetType(std::int32_t) const override { return Type::Enumeration; }
    double GetDefaultValue(std::int32_t) const override { return 0; }

private:
    MAudioPlugin& driver;
};
