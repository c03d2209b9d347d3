// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/MEqualizerProcessorPlugin.h"

#include <cmath>

#include "control/parameters/ParameterAdapters.h"
#include "foundation/vector/Saturation.h"
#include "foundation/vector/VectorOperations.h"

namespace
{
constexpr const char* modeNames[] = { "Normal", "Linear-phase", "Linear-phase FFT based" };
}   // namespace

void MEqualizerProcessorPlugin::DescribeParameters(MPluginParameterInfo* records)
{
    // The mode has no adapter: a host that automated it would cut the sound at every step.
    records[Mode] =
        MPluginParameterInfo::Enumeration("Mode", "mode", modeNames, 3, 1)
            .WithFlags(ParameterFlag::DisplayVariant1, ParameterFlag::Visible | ParameterFlag::Randomizable)
            .WithHelp("<name>Mode</name> defines equalizer type.");
    records[DryWet] = MPluginParameterInfo::Float("Dry/wet", "depth", 0, 1, 1).WithFormatter(&FormatPercent);
    records[Gain] =
        MPluginParameterInfo::Float("Gain", "gain", -24, 24, 0)
            .WithFormat("{+0.2} dB")
            .WithFlags(ParameterFlag::OutputGain, ParameterFlag::NeedsUpdate | ParameterFlag::Randomizable)
            .WithHelp("<name>Gain</name> defines output gain applied after the equalization.");
    records[SoftSaturation] =
        MPluginParameterInfo::Float("Soft saturation", "SoftSaturation", 0, 1, 0)
            .WithFormatter(&FormatPercent)
            .WithHelp(
                "<name>Soft saturation</name> defines amount of saturation simulating analog equalizers.");
}

MEqualizerProcessorPlugin::MEqualizerProcessorPlugin(MAudioEffectPlugin& owner)
    : automation(*this, [this](std::int32_t band) { BandChanged(band); }), effect(owner)
{
    lock = owner.lock;
}

void MEqualizerProcessorPlugin::BandChanged(std::int32_t band)
{
    // The lists are rebuilt by the next block: two changes inside one block cost one update.
    effect.description.RequestUpdate();
    effect.SendToHost(HostCommand::ParameterChangedInside, band);
}

void MEqualizerProcessorPlugin::UpdateBandControls(std::int32_t band)
{
    effect.Changes().MarkBand(band);
}

void MEqualizerProcessorPlugin::UpdateAllBandControls()
{
    effect.Changes().Mark(Change::Bands);
}

void MEqualizerProcessorPlugin::Update()
{
    effect.SendToHost(HostCommand::EqualizerParametersChanged);
    MEqualizerProcessor::Update();
}

void MEqualizerProcessorPlugin::ApplyParameters()
{
    automation.RefreshCache();
    const MPluginParameterInfo* records = effect.description.parameters;
    SetModeAndRatio(records[Mode].enumeration.index, records[DryWet].RunningValue(), effect.sampleRate);
}

void MEqualizerProcessorPlugin::Process(float** inputs, float** outputs, std::int32_t frames,
                                        std::int32_t channels)
{
    ProcessChannels(inputs, outputs, frames);
    ApplyOutputGain(outputs, frames, channels);
    saturator.SetAmount(effect.description.parameters[SoftSaturation].RunningValue());
    if (saturator.IsActive())
        for (std::int32_t channel = 0; channel < channels; ++channel)
            saturator.Process(outputs[channel], frames);
}

void MEqualizerProcessorPlugin::ApplyOutputGain(float* const* outputs, std::int32_t frames,
                                                std::int32_t channels)
{
    MPluginParameterInfo& gain = effect.description.parameters[Gain];
    const double present = gain.RunningValue();
    const double previous = gain.number.previousValue;
    const double target = std::pow(10.0, present * 0.05);
    if (present != previous)
    {
        const double start = std::pow(10.0, previous * 0.05);
        for (std::int32_t channel = 0; channel < channels; ++channel)
            MVector::MultiplyRampInPlace(outputs[channel], frames, start, (target - start) / frames);
        gain.number.previousValue = present;
        return;
    }
    if (std::fabs(target - 1) < 1e-50)
        return;
    for (std::int32_t channel = 0; channel < channels; ++channel)
        MVector::MultiplyConstantInPlace(outputs[channel], frames, static_cast<float>(target));
}
