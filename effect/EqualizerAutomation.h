// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <functional>

#include "audio/equalizer/MEqualizerBase.h"
#include "control/parameters/AutomationAdapter.h"

/// Makes the bands automatable: seven targets a band, target t is role t % 7 of band t / 7.
class EqualizerAutomation : public AutomationAdapter
{
public:
    enum Role : std::int32_t
    {
        Enable = 0,
        Frequency = 1,
        Gain = 2,
        Q = 3,
        Type_ = 4,
        Harmonics = 5,
        HarmonicsSemitones = 6,
        RoleCount = 7
    };
    static constexpr std::int32_t TargetCount = MEqualizerBase::BandCount * RoleCount;

    /// `changed` is told the band after a set that isn't silent: it has the filters rebuilt before the next
    /// block.
    EqualizerAutomation(MEqualizerBase& equalizer, std::function<void(std::int32_t band)> changed);

    void SetValue(std::int32_t sub, double value01, bool silent) override;
    double GetValue(std::int32_t sub) const override;
    void GetName(MString& out, std::int32_t sub) const override;
    void GetID(MString& out, std::int32_t sub) const override;
    void GetValueName(MString& out, std::int32_t sub) const override;
    void GetValueNameFrom01(MString& out, std::int32_t sub, double value01) const override;
    double ParseValueName(std::int32_t sub, const MString& text) const override;
    Type GetType(std::int32_t sub) const override;
    double GetDefaultValue(std::int32_t sub) const override;
    using Values = std::array<double, TargetCount>;
    Values PresentValues() const;
    /// Marks those that differ from `before` as changed inside: the bands were written without SetValue.
    void MarkChangesSince(const Values& before);

    /// Notes every target's present value, in target order.
    void RefreshCache();
    double CachedValue(std::int32_t sub) const { return cache[static_cast<std::size_t>(sub)]; }

private:
    MEqualizerBase& equalizer;
    std::function<void(std::int32_t)> changed;
    std::array<MRelaxed<double>, TargetCount> cache;
};
