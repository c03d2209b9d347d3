// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/tonalign/Session.h"

#include <algorithm>
#include <cmath>

#include "foundation/streams/MStdFileStream.h"
#include "foundation/text/MException.h"
#include "plugin/driver/PluginState.h"
#include "state/tree/MAttribute.h"
#include "state/tree/MStoreParams.h"
#include "state/tree/XML.h"

namespace
{
// Below this rate the analyzer's grid ends under 20 kHz and no longer agrees with the fitter's.
constexpr double lowestAnalysisRate = 40000;
constexpr double analysisRateForLowRates = 48000;

double AnalysisRateFor(double sampleRate)
{
    return sampleRate < lowestAnalysisRate ? analysisRateForLowRates : sampleRate;
}

// Runs work on a file and names the file in whatever goes wrong.
template <typename Work>
auto OnFile(const std::string& path, Work&& work)
{
    try
    {
        return work();
    }
    catch (const MException& exception)
    {
        throw FileError{ path, exception.Message.ToUTF8() };
    }
}

std::string StageName(const std::string& title)
{
    static constexpr std::pair<const char*, const char*> names[] = { { "Loading the file...", "loading" },
                                                                     { "Resampling...", "resampling" },
                                                                     { "Analysing...", "analysing" },
                                                                     { "Fitting...", "fitting" },
                                                                     { "Rendering...", "rendering" } };
    for (const auto& [known, name] : names)
        if (title == known)
            return name;
    return title;
}
}   // namespace

Session::Session(const Options& commandOptions)
    : options(commandOptions), progress(commandOptions.quiet || commandOptions.json)
{
    static constexpr const char* commandNames[] = { "equalize", "separate", "render", "analyse", "show" };
    report.commandName = commandNames[static_cast<int>(options.command)];
}

std::string Session::Run()
{
    CheckOutputs();
    switch (options.command)
    {
    case Command::Equalize:
    case Command::Separate:
        return RunFit();
    case Command::Render:
        return RunRender();
    case Command::Analyse:
        return RunAnalyse();
    case Command::Show:
        return RunShow();
    }
    return {};
}

void Session::CheckOutputs()
{
    const std::string* inputs[] = { &options.input, &options.source, &options.stateFile };
    const std::string* outputs[] = { &options.output, &options.saveStateFile };
    for (const std::string* output : outputs)
        for (const std::string* input : inputs)
            if (!output->empty() && !input->empty() && IsSameFile(*output, *input))
                throw FileError{ *output, "The output is one of the inputs." };
    if (!options.output.empty() && options.output == options.saveStateFile)
        throw FileError{ options.output, "The output and the state can't be one file." };
    // Better told before the work than after it.
    for (const std::string* output : outputs)
        if (!output->empty())
            OnFile(*output, [&] { OutputFile probe(*output, options.force); });
}

void Session::LoadAudio(AudioInput& input, const std::string& path)
{
    OnFile(path,
           [&]
           {
               LoadAudioInput(input, path,
                              [this](double fraction)
                              { return progress.Report("Loading the file...", fraction); });
           });
}

void Session::Measure(AudioInput& input, bool isSource)
{
    OnFile(input.path,
           [&]
           {
               CheckMeasurable(input, host.Plugin().sampleRate);
               const auto result = host.Effect().AnalyseBuffer(
                   input.buffer, isSource, [this](WorkStage stage, double fraction)
                   { return progress.Report(WorkStageTitle(stage), fraction); });
               if (result == TonalignAudioEffectPlugin::WorkResult::Cancelled)
                   throw MException("Cancelled.");
           });
}

void Session::MeasureFile(const std::string& path, bool isSource)
{
    if (HasAnalysisEnding(path))
    {
        OnFile(path, [&] { host.Effect().SetAnalysis(LoadCheckedAnalysis(path), isSource); });
        return;
    }
    AudioInput input;
    LoadAudio(input, path);
    Measure(input, isSource);
}

void Session::ApplyFitSettings(double usableHz)
{
    AutoEqSettings& settings = host.Effect().settings;
    limits.frequencyMinHz = options.lowHz.value_or(20);
    limits.frequencyMaxHz = std::min(options.highHz.value_or(20000), usableHz);
    limits.neverAmplify = options.neverAmplify;
    settings.maxAdaptionBars = options.bandCount;
    settings.adaptionAlgorithm = static_cast<MFAAlgorithm>(options.algorithm);
    settings.adaptionFrequencyMin = limits.frequencyMinHz;
    settings.adaptionFrequencyMax = limits.frequencyMaxHz;
    settings.neverAmplify = options.neverAmplify;
    settings.disablePassNotch = options.noPassNotch;
    settings.spaceInMixLimit = options.limitDb;
    host.SetParameterById("smooth", options.smoothPercent / 100);
}

void Session::ApplySoundSettings()
{
    if (options.mode)
        host.SetParameterById("mode", *options.mode);
    if (options.dryWetPercent)
        host.SetParameterById("depth", *options.dryWetPercent / 100);
    if (options.gainDb)
        host.SetParameterById("gain", *options.gainDb);
    if (options.saturationPercent)
        host.SetParameterById("SoftSaturation", *options.saturationPercent / 100);
}

void Session::ApplyStages(std::int32_t channels)
{
    const bool surround = options.channelMode == ChannelMode::Surround;
    if (options.channelMode && channels > 2 && !surround)
        throw UsageError{ "--channel-mode: this mode takes one or two channels, and the file has " +
                          std::to_string(channels) };
    if (surround && channels <= 2)
        throw UsageError{ "--channel-mode: surround takes 3 to 8 channels" };
    MQuorvaneAudioEffectPlugin& plugin = host.Plugin();
    if (options.channelMode && !surround)
        plugin.channelMode = *options.channelMode;
    if (options.agc)
        plugin.agc = 1;
    if (options.upsampling)
        plugin.upsampling = *options.upsampling;
    if (options.highQualityUpsampling)
        plugin.highQualityUpsampling = *options.highQualityUpsampling;
    plugin.UpdateUpsamplingFactor();
}

std::string Session::RunFit()
{
    const bool targetIsAnalysis = HasAnalysisEnding(options.input);
    if (targetIsAnalysis && !options.output.empty())
        throw UsageError{ "TARGET is an analysis, which can't be rendered: leave out -o, or give audio" };
    AudioInput target;
    double rate = options.rateHz.value_or(48000);
    if (!targetIsAnalysis)
    {
        LoadAudio(target, options.input);
        rate = target.buffer.sampleRate;
    }
    host.Prepare(AnalysisRateFor(rate), targetIsAnalysis ? 2 : target.buffer.channels);
    // A little below half the rate: what lies above can't be heard in this file.
    ApplyFitSettings(rate < lowestAnalysisRate ? 0.45 * rate : 20000);
    ApplySoundSettings();
    if (targetIsAnalysis)
    {
        MeasureFile(options.input, false);
    }
    else if (rate < lowestAnalysisRate)
    {
        AudioInput copy;   // resampled for the analysis, while the original is what gets rendered
        LoadAudio(copy, options.input);
        Measure(copy, false);
    }
    else
    {
        Measure(target, false);
    }
    MeasureFile(options.source, true);
    const std::int32_t channels = targetIsAnalysis ? 2 : target.buffer.channels;
    ApplyStages(channels);
    host.Prepare(rate, channels);
    Fit();
    RenderAndCommit(targetIsAnalysis ? nullptr : &target);
    return Finish();
}

void Session::Fit()
{
    if (!progress.Report("Fitting...", 0))
        throw MException("Cancelled.");
    TonalignAudioEffectPlugin& effect = host.Effect();
    const bool separate = options.command == Command::Separate;
    effect.equalizer.SetDefaults(true);
    report.nothingToDo = effect.Equalize(separate) == TonalignAudioEffectPlugin::EqualizeResult::NothingToDo;
    if (report.nothingToDo)
        report.information = TonalignAudioEffectPlugin::NothingToDoText(separate).ToUTF8();
    if (report.nothingToDo)
        for (std::int32_t band = 0; band < MEqualizerBase::BandCount; ++band)
            effect.equalizer.Band(band).enabled = false;
    effect.Update();
    FillBands();

    // The match is that of the bands alone, without the share of dry signal.
    TonalignAudioEffectPlugin::ComparedCurves curves = effect.Compare(separate);
    WantedResponse range(curves.target, curves.reference);
    range.Limit(effect.FitterGrid(), limits);
    report.rmsBeforeDb = SpectralDistanceDb(curves.reference, curves.target, range.First(), range.Last());
    const std::array<float, 1024> response = effect.BandResponse();
    for (std::size_t index = 0; index < response.size(); ++index)
        curves.target[index] += response[index];
    report.rmsAfterDb = SpectralDistanceDb(curves.reference, curves.target, range.First(), range.Last());
    progress.Finish();
}

void Session::FillBands()
{
    report.bands.clear();
    for (std::int32_t index = 0; index < MEqualizerBase::BandCount; ++index)
        if (const BandPoint& band = host.Effect().equalizer.Band(index); band.enabled)
            report.bands.push_back(BandSpecOf(band));
}

void Session::LoadStateFrom(const std::string& path)
{
    OnFile(path,
           [&]
           {
               MAttribute tree;
               LoadXML(tree, MString::FromUTF8(path));
               if (!tree.Name().EqualsNoCase("settings"))
                   throw MException("The file is not a plug-in state.", MErrorCode::Content);
               host.Plugin().Store({ .saving = 0, .item = &tree });
           });
}

std::string Session::RunRender()
{
    AudioInput input;
    LoadAudio(input, options.input);
    MEqualizerBase& equalizer = host.Effect().equalizer;
    if (!options.stateFile.empty())
        LoadStateFrom(options.stateFile);
    if (options.stateFile.empty() || !options.bands.empty())
        for (std::int32_t index = 0; index < MEqualizerBase::BandCount; ++index)
            equalizer.Band(index).enabled = false;
    for (std::size_t index = 0; index < options.bands.size(); ++index)
        ApplyBandSpec(options.bands[index], equalizer.Band(static_cast<std::int32_t>(index)));
    ApplySoundSettings();
    ApplyStages(input.buffer.channels);
    host.Prepare(input.buffer.sampleRate, input.buffer.channels);
    FillBands();
    RenderAndCommit(&input);
    return Finish();
}

OutputFormat Session::FormatFor(const AudioInput& input) const
{
    OutputFormat format;
    format.file = options.fileFormat;
    if (format.file == FileFormat::FromEnding)
    {
        const auto endsWith = [this](const char* ending)
        {
            const std::string lower = [this]
            {
                std::string text = options.output;
                std::transform(text.begin(), text.end(), text.begin(),
                               [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
                return text;
            }();
            return lower.ends_with(ending);
        };
        if (endsWith(".flac"))
            format.file = FileFormat::Flac;
        else if (endsWith(".aif") || endsWith(".aiff") || endsWith(".aifc"))
            format.file = FileFormat::Aiff;
        else if (endsWith(".wav") || endsWith(".wave"))
            format.file = FileFormat::Wav;
        else
            throw UsageError{ "the format of " + options.output +
                              " can't be told from its ending: use .wav, .flac or .aiff, or give --format" };
    }
    format.samples = options.sampleFormat;
    const AudioSampleBuffer& buffer = input.buffer;
    if (format.samples == SampleFormat::AsInput)
    {
        if (buffer.isFloatSource || buffer.bitsPerSample > 24)
            format.samples = SampleFormat::Float32;
        else
            format.samples = buffer.bitsPerSample > 16 ? SampleFormat::Int24 : SampleFormat::Int16;
        if (format.file == FileFormat::Flac && format.samples == SampleFormat::Float32)
            format.samples = SampleFormat::Int24;   // FLAC has no floats
    }
    if (format.file == FileFormat::Flac && format.samples == SampleFormat::Float32)
        throw UsageError{ "FLAC doesn't hold 32-bit floats: use --bits 16 or 24, or another format" };
    format.sampleRate = static_cast<std::int32_t>(std::lround(buffer.sampleRate));
    format.channels = buffer.channels;
    // An input of 8 or 16 bits counts in 16-bit steps, any other in 24-bit ones.
    const bool wantsFine = format.samples == SampleFormat::Int24;
    const double offset = input.fullScale == 32768 || input.fullScale == 8388608 ? 0 : 1;
    format.fullScale = (wantsFine ? 8388608 : 32768) - offset;
    return format;
}

void Session::RenderAndCommit(AudioInput* input)
{
    std::unique_ptr<OutputFile> state;
    if (!options.saveStateFile.empty())
        OnFile(options.saveStateFile,
               [&]
               {
                   state = std::make_unique<OutputFile>(options.saveStateFile, options.force);
                   MStdFileStream stream(MString::FromUTF8(state->TemporaryPath()),
                                         MStdFileStream::WriteAccess);
                   WritePluginState(host.Plugin(), stream);
                   stream.Close();
               });
    if (input != nullptr)
    {
        report.sampleRate = input->buffer.sampleRate;
        report.channels = input->buffer.channels;
        report.frames = input->buffer.frames;
    }
    else
    {
        report.sampleRate = host.Plugin().sampleRate;
    }
    report.latency = host.LatencySamples();
    if (input != nullptr && !options.output.empty())
    {
        host.Prepare(input->buffer.sampleRate, input->buffer.channels);
        OnFile(options.output,
               [&]
               {
                   AudioOutput output(options.output, FormatFor(*input), options.force);
                   host.Render(
                       input->buffer, options.blockFrames,
                       [&](const float* const* channels, std::int32_t frames)
                       { output.Write(channels, frames); },
                       [this](double fraction) { return progress.Report("Rendering...", fraction); });
                   output.Close();
                   if (!progress.Report("Rendering...", 1))
                       throw MException("Cancelled.");
                   output.Commit();
                   report.peakDbfs = DecibelsOf(output.Peak());
                   report.clipped = output.ClippedCount();
                   report.outputPath = options.output;
               });
        progress.Finish();
    }
    if (state != nullptr)
        OnFile(options.saveStateFile, [&] { state->Commit(); });
}

std::string Session::RunAnalyse()
{
    AudioInput input;
    LoadAudio(input, options.input);
    report.sampleRate = input.buffer.sampleRate;
    report.channels = input.buffer.channels;
    report.frames = input.buffer.frames;
    host.Prepare(AnalysisRateFor(input.buffer.sampleRate), input.buffer.channels);
    Measure(input, true);
    OnFile(options.output,
           [&]
           {
               OutputFile file(options.output, options.force);
               SaveAnalysisFile(MString::FromUTF8(file.TemporaryPath()), host.Effect().SourceAnalysis);
               file.Commit();
               report.outputPath = options.output;
           });
    return Finish();
}

std::string Session::RunShow()
{
    switch (OnFile(options.input, [this] { return DetectInput(options.input); }))
    {
    case InputKind::State:
        return ShowState();
    case InputKind::Analysis:
        return ShowSpectrum(OnFile(options.input, [this] { return LoadCheckedAnalysis(options.input); }),
                            nullptr);
    case InputKind::Audio:
        break;
    }
    AudioInput input;
    LoadAudio(input, options.input);
    report.sampleRate = input.buffer.sampleRate;
    report.channels = input.buffer.channels;
    report.frames = input.buffer.frames;
    report.peakDbfs = DecibelsOf(input.peak);
    host.Prepare(AnalysisRateFor(input.buffer.sampleRate), input.buffer.channels);
    Measure(input, true);
    return ShowSpectrum(host.Effect().SourceAnalysis, &input);
}

std::string Session::Finish()
{
    progress.Finish();
    for (const auto& [title, spent] : progress.Seconds())
        report.seconds.emplace_back(StageName(title), spent);
    if (options.json)
        return AsJson(report);
    return options.quiet ? std::string() : AsText(report);
}
