// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/TonalignAudioEffectPlugin.h"

#include <algorithm>

#include "control/parameters/ParameterAdapters.h"
#include "foundation/text/MException.h"
#include "foundation/vector/VectorOperations.h"

namespace
{
constexpr const char* channelModeNames[] = { "Left", "Right", "Mix", "Left and right" };
// Blocks up to this length are aligned without growing anything.
constexpr std::size_t expectedBlock = 8192;
}   // namespace

TonalignAudioEffectPlugin::TonalignAudioEffectPlugin() : equalizer(*this)
{
    DescribeParameters();
    description.flags = EffectFlag::Default | EffectFlag::PanelInMainEditor | EffectFlag::SeparatePages;
    bandParameters = { .name = "Bands", .id = "bands", .adapter = &equalizer.automation, .owner = nullptr };
    description.specialParameters = &bandParameters;
    description.specialParameterCount = 1;

    analyzer.SetLock(lock);
    analyzer.AddClient(outputClient, ProcessorAverage);
    analyzer.AddClient(analysisClient, ProcessorAverageInfinite);

    SourceAnalysisEnvelope.SetLimits(BandMinimumX, BandMaximumX, -90, 0);
    SourceAnalysisEnvelope.Edit(
        [](MArray<MEnvelopePoint>& points)
        {
            points.Clear();
            for (const auto& [x, y] :
                 { std::pair{ BandMinimumX, -20.0 }, { 2.0, 0.0 }, { 3.0, 0.0 }, { BandMaximumX, -40.0 } })
                points.Add({ .x = x, .y = y });
        });
}

TonalignAudioEffectPlugin::~TonalignAudioEffectPlugin() = default;

void TonalignAudioEffectPlugin::DescribeParameters()
{
    using Info = MPluginParameterInfo;
    MEqualizerProcessorPlugin::DescribeParameters(parameters.data());
    parameters[4] =
        Info::Group("Analyser")
            .WithFlags(ParameterFlag::OpenInPage0 | ParameterFlag::OpenInPage1 | ParameterFlag::OpenInPage2)
            .WithHelp("<name>Analyser panel</name> contains settings of the analyser engine. None of the "
                      "parameters affect the resulting sound, <reference>Smoothness</reference> affects "
                      "automatic equalization however.");
    parameters[5] =
        Info::Float("Smoothness", "smooth", 0, 0.2, 0.05)
            .WithFormatter(&FormatPercent)
            .WithFlags(ParameterFlag::DisplayVariant1)
            .WithHelp(
                "<name>Smoothness</name> makes the analyser smooth out the curve, so it contains less "
                "bumping. It approximates energy in each frequency and the resulting graph may be easier "
                "to understand. Also the smoothness affects the automatic equalization. Usually higher "
                "value provides more natural results, however you should verify using your ears.");
    parameters[6] =
        Info::Float("Average length", "average", 0, 5, 1)
            .WithFormatter(&FormatTime)
            .WithHelp(
                "<name>Averaging</name> makes the analyser show mean values over a specified period of "
                "time, which makes the values \"jump\" less and display more user-friendly value, which "
                "is however not so accurate in the time-domain.");
    parameters[7] =
        Info::Float("RESERVED1", "slope", 0, 6, 3)
            .WithFormat("{+0.2} dB")
            .WithFlags(ParameterFlag::NotInGenericPanel)
            .WithHelp(
                "<name>Slope</name> makes the analyser increase magnitude of higher frequencies, since "
                "they are typically lower in energy. 3dB per octave is a typical value, which makes pink "
                "noise horizontal as pink noise contains equal energy in each octave.");
    parameters[8] =
        Info::Float("RESERVED2", "overlap", 0, 0.8, 0.5)
            .WithFormatter(&FormatPercent)
            .WithFlags(ParameterFlag::NotInGenericPanel)
            .WithHelp(
                "<name>Overlapping</name> makes the analyser perform multiple FFT processing on the same "
                "data which results in better precision at the cost of higher CPU impact.");
    parameters[9] = Info::Enumeration("RESERVED3", "channelmode", channelModeNames, 4, 2)
                        .WithFlags(ParameterFlag::NotInGenericPanel)
                        .WithHelp("<name>Channel mode</name> defines which channels should be analyzed.");
    parameters[10] = Info::Float("RESERVED4", "analyzergain", -24, 24, 0)
                         .WithFormat("{+0.2} dB")
                         .WithFlags(ParameterFlag::NotInGenericPanel)
                         .WithHelp("<name>Gain</name> defines input gain applied on the analyzed signal.");
    parameters[11] =
        Info::Boolean("RESERVED5", "psychoacousticsimulation", false)
            .WithFlags(ParameterFlag::NotInGenericPanel)
            .WithHelp(
                "<name>Psycho-acoustic simulation</name> makes the source signal processed through a "
                "filter that emulates human perceivation of sound. Theory says, that if the result is a "
                "horizontal line in 0dB slope, then the frequencies are equally balanced. When enabled, "
                "<reference>Slope</reference> parameter is ignored.");
    description.parameters = parameters.data();
    description.parameterCount = ParameterCount;
}

std::int64_t TonalignAudioEffectPlugin::InitProcessing(std::int32_t channelCount, double newSampleRate)
{
    TakeLock();
    const MSynchronizerGuard guard(lock);
    channelGroups = std::clamp(channelCount, 1, MaxChannels);
    sampleRate = newSampleRate;
    UpdateAnalysisState(true);
    equalizer.InitProcessing(channelGroups, sampleRate);
    alignedInputs.resize(static_cast<std::size_t>(channelGroups));
    for (std::vector<float>& buffer : alignedInputs)
        buffer.resize(std::max(buffer.size(), expectedBlock));
    return 0;
}

// The driver lends its lock before the first preparation. Later on the pointers are only read, by any thread.
void TonalignAudioEffectPlugin::TakeLock()
{
    if (equalizer.lock == lock)
        return;
    equalizer.lock = lock;
    analyzer.SetLock(lock);
}

void TonalignAudioEffectPlugin::OnParameterChange(std::int32_t index)
{
    // The other records of the panel stay for the sake of hosts; nothing reads them.
    if (index == Smoothness)
        analyzerWork.fetch_or(SmoothingWork);
    else if (index == AverageLength)
        analyzerWork.fetch_or(ClientsWork);
    else
        return;
    Changes().Mark(Change::AnalyzerSettings);
}

void TonalignAudioEffectPlugin::SetUpsamplingRatio(std::int32_t ratio)
{
    {
        const MSynchronizerGuard guard(lock);
        if (equalizer.upsamplingRatio == ratio)
            return;
        equalizer.upsamplingRatio = ratio;
    }
    description.RequestUpdate();
}

void TonalignAudioEffectPlugin::Update()
{
    if (!(sampleRate > 0))
        return;
    const MSynchronizerGuard guard(lock);
    equalizer.ApplyParameters();
}

void TonalignAudioEffectPlugin::Process(const MProcessContext&, float** inputs, float** outputs,
                                        std::int32_t sampleCount)
{
    const MSynchronizerGuard guard(lock);
    if (suspendCount > 0)
    {
        for (std::int32_t channel = 0; channel < channelGroups; ++channel)
            MVector::Zero(outputs[channel], sampleCount);
        return;
    }
    const bool shown = IsAnalyzerShown();
    float** analysed = inputs;
    if (shown && !Analysing)
    {
        AlignInputs(inputs, sampleCount);
        analysed = alignedPointers.data();
    }
    equalizer.Process(inputs, outputs, sampleCount, channelGroups);
    if (shown)
    {
        analyzer.AnalyseOwn(analysed, sampleCount, channelGroups);
        analyzer.AnalyseClient(outputClient, outputs, sampleCount, channelGroups);
    }
    if (Analysing)
        analyzer.AnalyseClient(analysisClient, analysed, sampleCount, channelGroups);
}

/// The inputs as late as the outputs, so that the two curves belong together.
void TonalignAudioEffectPlugin::AlignInputs(float** inputs, std::int32_t sampleCount)
{
    for (std::int32_t channel = 0; channel < channelGroups; ++channel)
    {
        std::vector<float>& buffer = alignedInputs[static_cast<std::size_t>(channel)];
        if (buffer.size() < static_cast<std::size_t>(sampleCount))
            buffer.resize(static_cast<std::size_t>(sampleCount));
        equalizer.ReadDelayedInput(channel, inputs[channel], buffer.data(), sampleCount);
        alignedPointers[static_cast<std::size_t>(channel)] = buffer.data();
    }
}

// Without an editor nothing is shown, whatever the settings say: a session may hold a hundred of these.
bool TonalignAudioEffectPlugin::IsAnalyzerShown() const
{
    const EditorPresence editor = description.environment->editor;
    return editor == EditorPresence::Visible ||
           (editor == EditorPresence::Hidden && analyzer.settings.enableWhenHidden);
}

EditorState TonalignAudioEffectPlugin::CurrentEditorState() const
{
    return EditorState::From({ .analysing = Analysing,
                               .analysingSource = AnalysingSource,
                               .drawingSource = DrawingSource,
                               .targetDefined = TargetAnalysisDefined,
                               .sourceDefined = SourceAnalysisDefined });
}

void TonalignAudioEffectPlugin::BringAnalyzerUpToDate()
{
    if (!(sampleRate > 0))
        return;
    const std::uint32_t work = analyzerWork.exchange(0);
    if (work == 0)
        return;
    const MSynchronizerGuard guard(lock);
    analyzer.settings.averageLength = parameters[AverageLength].RunningValue();
    analyzer.SetSmoothness(parameters[Smoothness].RunningValue());
    if ((work & ClientsWork) != 0)
        analyzer.Initialise(sampleRate, true);
}

void TonalignAudioEffectPlugin::UpdateAnalysisState(bool rebuildAnalyzer)
{
    if (!(sampleRate > 0))
        return;
    {
        const MSynchronizerGuard guard(lock);
        equalizer.bandsEnabled = !Analysing;
        analyzerWork.fetch_or(SmoothingWork | (rebuildAnalyzer ? ClientsWork : 0u));
        BringAnalyzerUpToDate();
    }
    Changes().Mark(Change::AnalysisState);
}

void TonalignAudioEffectPlugin::ToggleTargetAnalysis()
{
    ToggleAnalysis(false);
}

void TonalignAudioEffectPlugin::ToggleSourceAnalysis()
{
    ToggleAnalysis(true);
}

void TonalignAudioEffectPlugin::ToggleAnalysis(bool source)
{
    {
        const MSynchronizerGuard guard(lock);
        AnalysisArray& analysis = source ? SourceAnalysis : TargetAnalysis;
        MRelaxed<bool>& defined = source ? SourceAnalysisDefined : TargetAnalysisDefined;
        if (Analysing)
        {
            analyzer.GetSpectrum(analysisClient, analysis.data(), ProcessorAverageInfinite, 0);
            defined = true;
        }
        else
        {
            analyzer.ResetClient(analysisClient);
            defined = false;
        }
        AnalysingSource = source && !Analysing;
        Analysing = !Analysing;
        equalizer.bandsEnabled = !Analysing;
    }
    UpdateAnalysisState(true);
}

void TonalignAudioEffectPlugin::SetAnalysis(const AnalysisArray& analysis, bool isSource)
{
    {
        const MSynchronizerGuard guard(lock);
        (isSource ? SourceAnalysis : TargetAnalysis) = analysis;
        (isSource ? SourceAnalysisDefined : TargetAnalysisDefined) = true;
    }
    UpdateAnalysisState(false);
}
