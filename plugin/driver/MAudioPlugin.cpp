// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/driver/MAudioPlugin.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "control/parameters/ParameterAdapters.h"
#include "foundation/text/Boundary.h"
#include "plugin/driver/ChannelModeAdapter.h"

MAudioPlugin::MAudioPlugin() = default;

std::int32_t MAudioPlugin::GetEffectInputChannels() const
{
    return buses.InputGroups() == 0 ? 0 : std::max(1, std::min(buses.UsedWidth(), modeInputChannels));
}

std::int32_t MAudioPlugin::GetEffectChannels() const
{
    if (InfoOf(activeChannelMode).countsByMode)
        return std::max(1, inputsPerGroup == 2 ? modeInputChannels : buses.UsedWidth());
    return std::max(1, std::min(buses.UsedWidth(), modeInputChannels));
}

std::int32_t MAudioPlugin::GetInputChannelsPerGroup() const
{
    return buses.InputGroups() == 0 ? 0 : std::max(1, std::min(buses.UsedWidth(), modeOutputChannels));
}

std::int32_t MAudioPlugin::GetOutputChannelsPerGroup() const
{
    return std::max(1, std::min(buses.UsedWidth(), modeOutputChannels));
}

void MAudioPlugin::SetConnectedChannels(std::int32_t inputs, std::int32_t outputs)
{
    ProcessingChange change(*this);
    if (buses.Connect(inputs, outputs))
        change.Prepare(ProcessingChange::Preparation::Always);
    change.Finish();
}

void MAudioPlugin::PrepareProcessing()
{
    processingSampleRate = upsamplingFactor * sampleRate;
    activeChannelMode = channelMode;
    modeInputChannels = InfoOf(activeChannelMode).inputChannels;
    modeOutputChannels = InfoOf(activeChannelMode).outputChannels;
    midSideEffect = InfoOf(activeChannelMode).midSide;
    if (activeChannelMode == ChannelMode::Surround)
    {
        // Of the channels that are there: the effect must not be promised more than the routing hands on.
        const std::ptrdiff_t present = std::clamp<std::int32_t>(buses.UsedWidth(), 0, 8);
        modeInputChannels = std::min(modeInputChannels,
                                     static_cast<std::int32_t>(std::count(
                                         enabledChannels.begin(), enabledChannels.begin() + present, true)));
    }
    inputsPerGroup = GetInputChannelsPerGroup();
    outputsPerGroup = GetOutputChannelsPerGroup();
    effectChannels = GetEffectChannels();
    PrepareUpsamplers();
}

void MAudioPlugin::InitProcessing()
{
    ProcessingChange change(*this);
    change.Prepare(ProcessingChange::Preparation::Always);
    change.Finish();
}

void MAudioPlugin::InitProcessing(double newSampleRate)
{
    // Hosts differ in whether they stop the audio thread first.
    ProcessingChange change(*this);
    sampleRate = newSampleRate;
    InitProcessing();
    change.Finish();
}

MAudioPlugin::Prepared MAudioPlugin::WantedSetup() const
{
    return { .rates = UpsamplerSetup(),
             .mode = channelMode,
             .enabledChannels = enabledChannels,
             .usedWidth = buses.UsedWidth(),
             .width = buses.Width() };
}

void MAudioPlugin::FinishChange()
{
    if (!wantedPreparation)
        return;
    const bool always = *wantedPreparation == ProcessingChange::Preparation::Always;
    wantedPreparation.reset();
    const bool hadGainControl = agcActive;
    agcActive = WantsGainControl();
    const Prepared wanted = WantedSetup();
    const bool anew = always || prepared != wanted;
    if (anew)
    {
        prepared.reset();   // should it fail half-way
        PrepareAnew();
        prepared = wanted;
    }
    if (anew || !hadGainControl)
        RestartGainControl();
}

void MAudioPlugin::PrepareAnew()
{
    PrepareProcessing();
    routing.Prepare({ .mode = activeChannelMode,
                      .enabled = enabledChannels,
                      .width = std::max(inputsPerGroup, outputsPerGroup),
                      .groupStride = buses.Width(),
                      .inputGroups = buses.InputGroups(),
                      .outputGroups = buses.OutputGroups(),
                      .latency = GetLatency() });
    const std::int32_t groups = std::min(buses.InputGroups(), buses.OutputGroups());
    dryPath.Prepare(sampleRate, bypass, groups * buses.Width(), TotalLatency());
}

void MAudioPlugin::RestartGainControl()
{
    const MSynchronizerGuard guard(settingsLock);
    if (agcActive)
        gainControl.Init(sampleRate, std::max(inputsPerGroup, outputsPerGroup), dryPath.Latency());
}

void MAudioPlugin::PrepareUpsamplers()
{
    if (upsamplingFactor < 2)
        return;
    const MUpsampler::Setup wanted = UpsamplerSetup();
    for (std::int32_t group = 0; group < buses.MostGroups(); ++group)
        for (std::int32_t channel = 0; channel < std::max(inputsPerGroup, outputsPerGroup); ++channel)
        {
            std::unique_ptr<MUpsampler>& upsampler = upsamplers[buses.SlotOf(group, channel)];
            if (!upsampler)
                upsampler = std::make_unique<MUpsampler>();
            if (!(upsampler->CurrentSetup() == wanted))
                upsampler->Init(wanted);
        }
}

void MAudioPlugin::SetUpsamplingFactor(std::int32_t factor)
{
    if (factor == upsamplingFactor)
        return;
    ProcessingChange change(*this);
    upsamplingFactor = std::clamp(factor, 1, MaxUpsamplingFactor);
    // What an upsampler still holds is from before it was last switched off.
    ResetUpsamplers();
    change.Prepare(ProcessingChange::Preparation::WhereNeeded);
    change.Finish();
}

void MAudioPlugin::SetBypass(bool bypassed)
{
    if (bypass == bypassed)
        return;
    bypass = bypassed;
    Changes().Mark(Change::Bypass);
}

bool MAudioPlugin::SetAGC(double)
{
    return false;
}

void MAudioPlugin::ResetUpsamplers()
{
    const MSynchronizerGuard processGuard(processLock);
    const MSynchronizerGuard settingsGuard(settingsLock);
    for (const std::unique_ptr<MUpsampler>& upsampler : upsamplers)
        if (upsampler)
            upsampler->Reset();
}

std::int32_t MAudioPlugin::TotalTailSize()
{
    // Generous for both filter lengths, and for the plain filter, which rings for ever but inaudibly soon.
    constexpr std::int32_t upsamplingTail = 16384;
    const std::int32_t tail = GetTailSize();
    if (tail < 0)
        return -1;
    return tail / upsamplingFactor + (upsamplingFactor >= 2 ? upsamplingTail : 0);
}

void MAudioPlugin::ChooseChannelMode(ChannelMode mode)
{
    channelMode = mode == ChannelMode::Surround && !buses.IsSurround() ? ChannelMode::LeftAndRight : mode;
    choicesPending = true;
}

void MAudioPlugin::ApplyChoices()
{
    if (!choicesPending.exchange(false))
        return;
    ProcessingChange change(*this);
    change.Prepare(ProcessingChange::Preparation::WhereNeeded);
    change.Finish();
}

void MAudioPlugin::CheckLatency()
{
    const std::int32_t latency = TotalLatency();
    if (latency == reportedLatency)
        return;
    reportedLatency = latency;
    Changes().Mark(Change::Latency);
    if (adapter != nullptr)
        adapter->ReportLatency();
}

void MAudioPlugin::SendAutomation(std::int32_t index, double value01)
{
    reporter.Send(index, value01);
}

void MAudioPlugin::BeginEdit(std::int32_t index) noexcept
{
    AtBoundary("MAudioPlugin::BeginEdit", [&] { reporter.Begin(index); });
}

void MAudioPlugin::Edit(std::int32_t index, double value01) noexcept
{
    AtBoundary("MAudioPlugin::Edit",
               [&]
               {
                   SetParameter(index, value01);
                   // As it was taken: clamped, and on a step where there are steps.
                   reporter.Send(index, GetParameter(index));
               });
}

void MAudioPlugin::EndEdit(std::int32_t index) noexcept
{
    AtBoundary("MAudioPlugin::EndEdit", [&] { reporter.End(index); });
}

void MAudioPlugin::EndAllEdits() noexcept
{
    AtBoundary("MAudioPlugin::EndAllEdits", [this] { reporter.EndAll(); });
}

void MAudioPlugin::ReportChanges() noexcept
{
    AtBoundary("MAudioPlugin::ReportChanges", [this] { reporter.Report(); });
}

namespace
{
// Finds the adapter of a host index and runs one of its operations at the edge of the system.
template <typename Operation>
void WithAdapter(const AutomationList& list, std::int32_t index, const char* name, Operation&& operation)
{
    AtBoundary(name,
               [&]
               {
                   std::int32_t sub = 0;
                   if (index < 0 || index >= list.ParameterCount())
                       return;
                   if (AutomationAdapter* found = list.Find(index, sub))
                       operation(*found, sub);
               });
}
}   // namespace

void MAudioPlugin::SetParameter(std::int32_t index, double value01, bool silent) noexcept
{
    WithAdapter(
        automation, index, "MAudioPlugin::SetParameter",
        [&](AutomationAdapter& target, std::int32_t sub)
        { target.SetValue(sub, std::isfinite(value01) ? std::clamp(value01, 0.0, 1.0) : 0.0, silent); });
}

void MAudioPlugin::SetParameterIfChanged(std::int32_t index, double value01, bool silent) noexcept
{
    if (std::fabs(GetParameter(index) - value01) > 1e-07)
        SetParameter(index, value01, silent);
}

double MAudioPlugin::GetParameter(std::int32_t index) const noexcept
{
    double value = 0;
    WithAdapter(automation, index, "MAudioPlugin::GetParameter",
                [&](AutomationAdapter& target, std::int32_t sub) { value = target.GetValue(sub); });
    return value;
}

void MAudioPlugin::GetParameterName(MString& out, std::int32_t index) const noexcept
{
    WithAdapter(automation, index, "MAudioPlugin::GetParameterName",
                [&](AutomationAdapter& target, std::int32_t sub) { target.GetName(out, sub); });
}

void MAudioPlugin::GetParameterID(MString& out, std::int32_t index) const noexcept
{
    WithAdapter(automation, index, "MAudioPlugin::GetParameterID",
                [&](AutomationAdapter& target, std::int32_t sub)
                {
                    MString id;
                    MString name;
                    target.GetID(id, sub);
                    target.GetName(name, sub);
                    out = target.prefix + id + name;
                });
}

std::int32_t MAudioPlugin::FindParameter(const MString& storedId) const noexcept
{
    MString id;
    for (std::int32_t index = 0; index < automation.ParameterCount(); ++index)
    {
        GetParameterID(id, index);
        if (id == storedId)
            return index;
    }
    return -1;
}

void MAudioPlugin::GetParameterLabel(MString& out, std::int32_t index) const noexcept
{
    WithAdapter(automation, index, "MAudioPlugin::GetParameterLabel",
                [&](AutomationAdapter& target, std::int32_t sub) { target.GetShortName(out, sub); });
}

void MAudioPlugin::GetParameterValueName(MString& out, std::int32_t index) const noexcept
{
    WithAdapter(automation, index, "MAudioPlugin::GetParameterValueName",
                [&](AutomationAdapter& target, std::int32_t sub) { target.GetValueName(out, sub); });
}

void MAudioPlugin::GetParameterValueNameFrom01(MString& out, std::int32_t index,
                                               double value01) const noexcept
{
    WithAdapter(automation, index, "MAudioPlugin::GetParameterValueNameFrom01",
                [&](AutomationAdapter& target, std::int32_t sub)
                { target.GetValueNameFrom01(out, sub, value01); });
}

double MAudioPlugin::ParseParameterValueName(std::int32_t index, const MString& text) const noexcept
{
    double value = 0;
    WithAdapter(automation, index, "MAudioPlugin::ParseParameterValueName",
                [&](AutomationAdapter& target, std::int32_t sub)
                { value = target.ParseValueName(sub, text); });
    return value;
}

void MAudioPlugin::GetParameterUnitsName(MString& out, std::int32_t index) const noexcept
{
    WithAdapter(automation, index, "MAudioPlugin::GetParameterUnitsName",
                [&](AutomationAdapter& target, std::int32_t sub) { target.GetUnitsName(out, sub); });
}

bool MAudioPlugin::IsParameterDiscrete(std::int32_t index) const noexcept
{
    return GetParameterType(index) != AutomationAdapter::Type::Float;
}

void MAudioPlugin::GetParameterHelp(MString& out, std::int32_t index) const noexcept
{
    WithAdapter(automation, index, "MAudioPlugin::GetParameterHelp",
                [&](AutomationAdapter& target, std::int32_t)
                {
                    if (const auto* parameter = dynamic_cast<const ParameterMainBase*>(&target))
                        out = parameter->info->help;
                });
}

bool MAudioPlugin::IsParameterAutomatable(std::int32_t index) const noexcept
{
    bool prepares = false;
    WithAdapter(automation, index, "MAudioPlugin::IsParameterAutomatable",
                [&](AutomationAdapter& target, std::int32_t)
                { prepares = dynamic_cast<const ChannelModeAdapter*>(&target) != nullptr; });
    return !prepares && !IsParameterHidden(index);
}

bool MAudioPlugin::IsParameterHidden(std::int32_t index) const noexcept
{
    bool hidden = false;
    WithAdapter(automation, index, "MAudioPlugin::IsParameterHidden",
                [&](AutomationAdapter& target, std::int32_t)
                {
                    const auto* parameter = dynamic_cast<const ParameterMainBase*>(&target);
                    hidden = parameter != nullptr && parameter->info->Has(ParameterFlag::NotInGenericPanel);
                });
    return hidden;
}

AutomationAdapter::Type MAudioPlugin::GetParameterType(std::int32_t index) const noexcept
{
    AutomationAdapter::Type type = AutomationAdapter::Type::Float;
    WithAdapter(automation, index, "MAudioPlugin::GetParameterType",
                [&](AutomationAdapter& target, std::int32_t sub) { type = target.GetType(sub); });
    return type;
}

double MAudioPlugin::GetParameterDefaultValue(std::int32_t index) const noexcept
{
    double value = 0;
    WithAdapter(automation, index, "MAudioPlugin::GetParameterDefaultValue",
                [&](AutomationAdapter& target, std::int32_t sub) { value = target.GetDefaultValue(sub); });
    return value;
}
