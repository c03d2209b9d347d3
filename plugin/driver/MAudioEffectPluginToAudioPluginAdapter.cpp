// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/driver/MAudioEffectPluginToAudioPluginAdapter.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "foundation/module/MModule.h"
#include "foundation/text/Boundary.h"
#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "foundation/text/Translate.h"
#include "plugin/contract/MPluginArgument.h"
#include "plugin/driver/StoreScope.h"
#include "state/presets/DefaultSettings.h"
#include "state/tree/MAttribute.h"
#include "state/tree/StoredNode.h"

MAudioEffectPluginToAudioPluginAdapter::~MAudioEffectPluginToAudioPluginAdapter()
{
    // The adapters point into the effect, which goes with its host.
    editorUpdates.StopListening();
    automation.Clear();
    host.reset();
}

void MAudioEffectPluginToAudioPluginAdapter::Initialize(const MString& effectName, const MString& makerName,
                                                        MPluginEntry entry, std::int32_t editorWidth,
                                                        std::int32_t editorHeight)
{
    MPluginSystem system;
    if (system.CreatePlugin(effectName, entry, host) != MPluginSystem::Success)
        throw MException("Error creating plugin.");
    effect = dynamic_cast<MAudioEffectPlugin*>(
        reinterpret_cast<MPlugin*>(static_cast<std::intptr_t>(host->Send(PluginCommand::GetInstance))));
    if (effect == nullptr)
        throw MException("Error creating plugin.");

    name = effectName;
    maker = makerName;
    defaultEditorWidth = editorWidth;
    defaultEditorHeight = editorHeight;
    // No event does anything yet, and hosts treat a plug-in with an event input as an instrument: Ardour then
    // connects the first of two audio inputs only.
    takesMIDI = false;
    SetSurround(false);
    host->driver = this;
    automation.Add(&channelModeAdapter);
    RebuildParameters();
    UpdateMaxBufferSize();
    environment.editor = EditorPresence::Closed;
    presets.SetPrefix(name);
    presets.name = name;
    // Damaged ones leave the list empty: no reason to go without the plug-in.
    AtBoundary("MAudioPlugin::Initialize", [this] { presets.ReadFactoryPresets(); });
}

void MAudioEffectPluginToAudioPluginAdapter::SetDefaultSettingsToCurrent()
{
    SaveDefaultSettings([this](const MStoreParams& params) { Store(params); });
    if (presets.dialogs != nullptr)
        presets.dialogs->ShowMessage(Translate("Default settings have successfuly been set."));
}

bool MAudioEffectPluginToAudioPluginAdapter::LoadDefaultSettings() noexcept
{
    return MModule::Main() != nullptr &&
           ::LoadDefaultSettings([this](const MStoreParams& params) { Store(params); });
}

void MAudioEffectPluginToAudioPluginAdapter::SetSurround(bool active)
{
    buses.SetUp(active ? BusLayout::SurroundWidth : BusLayout::StereoWidth,
                effect->description.inputBusCount);
}

void MAudioEffectPluginToAudioPluginAdapter::RebuildParameters()
{
    updateTimeInfo = effect->description.Has(EffectFlag::WantsTimeInfo);
    wantsTimeInfo = updateTimeInfo;
    // From here on the effect and the driver share one lock.
    effect->lock = &settingsLock;
    effect->description.environment = &environment;
    automation.Build(*effect, { .plugin = this, .prefix = {} });
    automation.AssignIndices();
    interpolator.Rebuild(automation);
}

void MAudioEffectPluginToAudioPluginAdapter::UpdateMaxBufferSize()
{
    maxProcessBlockLimit = std::max(1, effect->description.maxBlockSize);
}

void MAudioEffectPluginToAudioPluginAdapter::CreateEditorContents(MControl* parent)
{
    MPluginArguments arguments;
    arguments.SetPointer(0, parent);
    SetEditorPresence(EditorPresence::Visible);
    host->Send(PluginCommand::CreateEditor, arguments.Records());
}

void MAudioEffectPluginToAudioPluginAdapter::DestroyEditorContents(MControl* editor)
{
    MPluginArguments arguments;
    arguments.SetPointer(0, editor);
    host->Send(PluginCommand::DestroyEditor, arguments.Records());
    EndAllEdits();
    SetEditorPresence(EditorPresence::Closed);
}

void MAudioEffectPluginToAudioPluginAdapter::Update()
{
    effect->Update();
}

std::int32_t MAudioEffectPluginToAudioPluginAdapter::GetLatency()
{
    return effect->GetLatency();
}

std::int32_t MAudioEffectPluginToAudioPluginAdapter::GetTailSize()
{
    return effect->GetTailSize();
}

void MAudioEffectPluginToAudioPluginAdapter::ProcessUpdate()
{
    if (environment.editor != EditorPresence::Closed)
        effect->ProcessUpdate();
}

namespace
{
// By the type of the parameter; those that have no decibels stay.
void AddDecibels(MPluginParameterInfo& info, double decibels)
{
    if (info.type == ParameterType::Float)
        info.number.value =
            std::clamp(info.number.value + decibels, info.number.minimum, info.number.maximum);
    else if (info.type == ParameterType::Integer)
        info.integer.value = static_cast<std::int32_t>(std::lround(
            std::clamp<double>(info.integer.value + decibels, info.integer.minimum, info.integer.maximum)));
}
}   // namespace

bool MAudioEffectPluginToAudioPluginAdapter::SetAGC(double gainRatio)
{
    MPluginDescription& description = effect->description;
    for (std::int32_t index = 0; index < description.parameterCount; ++index)
    {
        MPluginParameterInfo& info = description.parameters[index];
        if (!info.Has(ParameterFlag::OutputGain))
            continue;
        if (gainRatio > 0 && std::isfinite(gainRatio))
        {
            AddDecibels(info, 20 * std::log10(gainRatio));
            effect->OnParameterChange(index);
            if (info.Has(ParameterFlag::NeedsUpdate))
                description.RequestUpdate();
            if (AutomationAdapter* adapterOfGain = automation.FindParameter(index))
                adapterOfGain->MarkChangedInside(0);
        }
        return true;
    }
    return false;
}

void MAudioEffectPluginToAudioPluginAdapter::PrepareProcessing()
{
    MAudioPlugin::PrepareProcessing();
    // Directly and not by a command: what fails here has to reach the host adapter.
    effect->InitProcessing(effectChannels, processingSampleRate);
    effect->Update();
    effect->AcceptValues();
}

void MAudioEffectPluginToAudioPluginAdapter::ProcessingBegin(float* const*, float* const*, std::int32_t, bool)
{
    interpolationBlock = maxLFOBlockSize;
    maxProcessBlock = maxProcessBlockLimit;
}

void MAudioEffectPluginToAudioPluginAdapter::FillContext()
{
    if (!updateTimeInfo)
        return;
    context = transport.Context(maxProcessBlock);
}

void MAudioEffectPluginToAudioPluginAdapter::Process(float** inputs, float** outputs,
                                                     std::int32_t sampleCount)
{
    FillContext();
    if (effect->description.TakeUpdateRequest())
        effect->Update();
    effect->Process(context, inputs, outputs, sampleCount);
}

void MAudioEffectPluginToAudioPluginAdapter::StoreChannelMode(const MStoreParams& params)
{
    MAttribute& item = *params.item;
    if (params.saving)
    {
        item.SetAttribute("ChannelMode", InfoOf(channelMode).longName);
        if (channelMode != ChannelMode::Surround)
            return;
        MString flags;
        for (const bool enabled : enabledChannels)
            flags.Append(enabled ? u'1' : u'0');
        item.SetAttribute("SurroundChannelsEnable", flags);
        return;
    }
    if (item.HasAttribute("ChannelMode"))
    {
        const MString label = item.GetCachedAttribute();
        ChannelMode mode = channelMode;
        int digits = 0;
        const std::int64_t number = label.ToInt(10, &digits);
        if (FindChannelMode(label, mode))
            channelMode = mode;
        else if (digits > 0 && number >= 0 && number < ChannelModeCount)
            channelMode = static_cast<ChannelMode>(number);
    }
    if (item.HasAttribute("SurroundChannelsEnable"))
    {
        const MString& flags = item.GetCachedAttribute();
        for (int index = 0; index < flags.Length() && index < 8; ++index)
            enabledChannels[static_cast<std::size_t>(index)] = flags[index] != u'0';
    }
    // States from before the channel modes knew surround.
    if (item.HasAttribute("EnableSurroundProcessing"))
        channelMode =
            item.GetCachedAttribute().ToInt() > 0 ? ChannelMode::Surround : ChannelMode::LeftAndRight;
    if (channelMode == ChannelMode::Surround && !buses.IsSurround())
        channelMode = ChannelMode::LeftAndRight;
}

void MAudioEffectPluginToAudioPluginAdapter::Store(const MStoreParams& params)
{
    StoreScope scope(*this, params);
    StoredNode node(params);
    node.AlwaysOr("Version", version, FirstVersion);
    StoreChannelMode(params);
    node.Optional("Bypass", bypass, false);
    node.Optional("MaxLFOBlockSize", maxLFOBlockSize, 256);
    StoreSettings(params);
    scope.Finish();
}

void MAudioEffectPluginToAudioPluginAdapter::StoreSettings(const MStoreParams& params)
{
    StoreScope scope(*this, params);
    if (params.saving)
    {
        effect->SaveSettings(*params.item);
        presets.StoreCurrentIndex(params);
        return;
    }
    effect->LoadSettings(*params.item, params.mode);
    presets.StoreCurrentIndex(params);
    interpolator.SkipNextRamp();
    environment.changes.Mark(Change::Settings);
    // A state comes from the host, which reads the values again by itself; a preset comes from inside.
    if (params.scope == MStoreScope::Preset)
    {
        environment.changes.Mark(Change::SettingsInside);
        environment.changes.Mark(Change::Preset);
    }
    OnSettingsChanged();
    scope.Finish();
}

std::int64_t MAudioEffectPluginToAudioPluginAdapter::OnDestroyTemporaryAdapters()
{
    ProcessingChange change(*this);
    OnAdaptersChanging();
    automation.RemoveTemporary();
    automation.AssignIndices();
    interpolator.Rebuild(automation);
    change.Finish();
    return 0;
}

std::int64_t MAudioEffectPluginToAudioPluginAdapter::OnRebuildParameters()
{
    ProcessingChange change(*this);
    OnAdaptersChanging();
    automation.RemoveBuilt();
    RebuildParameters();
    OnRefreshAdapters();
    change.Finish();
    return 0;
}

std::int64_t MAudioEffectPluginToAudioPluginAdapter::OnRefreshAdapters()
{
    for (AutomationAdapter* each : automation.Adapters())
        each->OnReconnect();
    return 0;
}

std::int64_t MAudioEffectPluginToAudioPluginAdapter::OnBlockLimitChanged()
{
    UpdateMaxBufferSize();
    return 0;
}
