// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/tonalign/Session.h"

#include <algorithm>
#include <cmath>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/text/MException.h"
#include "foundation/text/PathText.h"
#include "hosts/module/HostPresetFile.h"
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

std::vector<std::uint8_t> BytesOf(MMemoryStream& stream)
{
    stream.Seek(0, MStream::Begin);
    const std::uint8_t* begin = stream.GetCurrentPointer();
    return { begin, begin + stream.GetSize() };
}

Stage StageOf(WorkStage stage)
{
    switch (stage)
    {
    case WorkStage::LoadingFile:
        return Stage::Loading;
    case WorkStage::Resampling:
        return Stage::Resampling;
    case WorkStage::Analysing:
        break;
    }
    return Stage::Analysing;
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
    const std::string* outputs[] = { &options.output, &options.saveStateFile, &options.savePresetFile };
    for (std::size_t index = 0; index < std::size(outputs); ++index)
    {
        const std::string& output = *outputs[index];
        if (output.empty())
            continue;
        for (const std::string* input : inputs)
            if (!input->empty() && IsSameFile(output, *input))
                throw FileError{ output, "The output is one of the inputs." };
        for (std::size_t other = 0; other < index; ++other)
            if (!outputs[other]->empty() && IsSameFile(output, *outputs[other]))
                throw FileError{ output, "Two outputs can't be one file." };
        // Better told before the work than after it.
        OnFile(output, [&] { OutputFile probe(output, options.force); });
    }
}

void Session::LoadAudio(AudioInput& input, const std::string& path)
{
    OnFile(path,
           [&]
           {
               LoadAudioInput(input, path,
                              [this](double fraction) { return progress.Report(Stage::Loading, fraction); });
           });
}

void Session::Measure(AudioInput& input, bool isSource)
{
    OnFile(input.path,
           [&]
           {
               CheckMeasurable(input, host.Plugin().sampleRate);
               const auto result =
                   host.Effect().AnalyseBuffer(input.buffer, isSource,
                                               [this](WorkStage stage, double fraction)
                                               { return progress.Report(StageOf(stage), fraction); });
               if (result == TonalignAudioEffectPlugin::WorkResult::Cancelled)
                   throw MException("Cancelled.");
           });
}

InputKind Session::MeasurableKind(const std::string& path)
{
    return OnFile(path,
                  [&]
                  {
                      const InputKind kind = DetectInput(path);
                      if (kind == InputKind::State)
                          throw MException("It is a plug-in state, neither a recording nor an analysis.");
                      return kind;
                  });
}

void Session::MeasureFile(const std::string& path, bool isSource)
{
    if (MeasurableKind(path) == InputKind::Analysis)
    {
        OnFile(path, [&] { host.Effect().SetAnalysis(LoadCheckedAnalysis(path), isSource); });
        return;
    }
    AudioInput input;
    LoadAudio(input, path);
    Measure(input, isSource);
}

void Session::CheckRange(double usableHz) const
{
    if (options.lowHz.value_or(20) >= usableHz)
        throw UsageError{ "--low: TARGET's sample rate leaves nothing to equalize above " +
                          std::to_string(static_cast<int>(usableHz)) + " Hz" };
}

void Session::ApplyFitSettings(double usableHz)
{
    AutoEqSettings& settings = host.Effect().settings;
    settings.maxAdaptionBars = options.bandCount;
    settings.adaptionAlgorithm = static_cast<MFAAlgorithm>(options.algorithm);
    settings.adaptionFrequencyMin = options.lowHz.value_or(20);
    settings.adaptionFrequencyMax = std::min(options.highHz.value_or(20000), usableHz);
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
    const bool targetIsAnalysis = MeasurableKind(options.input) == InputKind::Analysis;
    if (targetIsAnalysis && !options.output.empty())
        throw UsageError{ "TARGET is an analysis, which can't be rendered: leave out -o, or give audio" };
    AudioInput target;
    double rate = options.rateHz.value_or(48000);
    if (!targetIsAnalysis)
    {
        LoadAudio(target, options.input);
        rate = target.buffer.sampleRate;
    }
    // A little below half the rate: what lies above can't be heard in this file.
    const double usableHz = rate < lowestAnalysisRate ? 0.45 * rate : 20000;
    CheckRange(usableHz);
    host.Prepare(AnalysisRateFor(rate), targetIsAnalysis ? 2 : target.buffer.channels);
    ApplyFitSettings(usableHz);
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
    if (!progress.Report(Stage::Fitting, 0))
        throw MException("Cancelled.");
    TonalignAudioEffectPlugin& effect = host.Effect();
    const bool separate = options.command == Command::Separate;
    effect.equalizer.SetDefaults(true);
    const TonalignAudioEffectPlugin::Equalization done = effect.Equalize(separate);
    report.nothingToDo = done.result == TonalignAudioEffectPlugin::EqualizeResult::NothingToDo;
    if (report.nothingToDo)
    {
        report.information = TonalignAudioEffectPlugin::NothingToDoText(separate).ToUTF8();
        for (std::int32_t band = 0; band < MEqualizerBase::BandCount; ++band)
            effect.equalizer.Band(band).enabled = false;
    }
    effect.Update();
    FillBands();

    // The match is that of the bands alone, without the share of dry signal.
    const auto distance = [&done](const GridCurve& target)
    {
        return SpectralDistanceDb(done.curves.reference, target, done.first, done.last);
    };
    GridCurve equalized = effect.BandResponse();
    for (std::size_t index = 0; index < equalized.size(); ++index)
        equalized[index] += done.curves.target[index];
    report.rmsBeforeDb = distance(done.curves.target);
    report.rmsAfterDb = distance(equalized);
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
               LoadXML(tree, PathText(path));
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
    format.samples = options.sampleFormat;
    const AudioSampleBuffer& buffer = input.buffer;
    if (format.samples == SampleFormat::AsInput)
    {
        if (buffer.isFloatSource || buffer.bitsPerSample > 24)
            format.samples = SampleFormat::Float32;
        else
            format.samples = buffer.bitsPerSample > 16  ? SampleFormat::Int24
                             : buffer.bitsPerSample > 8 ? SampleFormat::Int16
                                                        : SampleFormat::Int8;
        if (format.file == FileFormat::Flac && format.samples == SampleFormat::Float32)
            format.samples = SampleFormat::Int24;   // FLAC has no floats
    }
    format.sampleRate = static_cast<std::int32_t>(std::lround(buffer.sampleRate));
    format.channels = buffer.channels;
    return format;
}

void Session::WriteSettings(std::vector<std::unique_ptr<OutputFile>>& files)
{
    const auto write = [&](const std::string& path, const auto& bytesOf)
    {
        if (path.empty())
            return;
        OnFile(path,
               [&]
               {
                   OutputFile& file = *files.emplace_back(std::make_unique<OutputFile>(path, options.force));
                   const auto bytes = bytesOf();
                   file.Write(bytes.data(), bytes.size());
               });
    };
    write(options.saveStateFile,
          [this]
          {
              MMemoryStream stream;
              WritePluginState(host.Plugin(), stream);
              return BytesOf(stream);
          });
    write(options.savePresetFile,
          [this]
          {
              const std::string& path = options.savePresetFile;
              const std::string file = path.substr(path.rfind('/') + 1);
              return HostPresetFile::Make(*HostPresetFile::FormatOf(path), host.Plugin(),
                                          file.substr(0, file.rfind('.')));
          });
}

void Session::RenderAndCommit(AudioInput* input)
{
    std::vector<std::unique_ptr<OutputFile>> settings;
    WriteSettings(settings);
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
                       [this](double fraction) { return progress.Report(Stage::Rendering, fraction); });
                   output.Close();
                   if (!progress.Report(Stage::Rendering, 1))
                       throw MException("Cancelled.");
                   output.Commit();
                   report.peakDbfs = DecibelsOf(output.Peak());
                   report.clipped = output.ClippedCount();
                   report.outputPath = options.output;
               });
        progress.Finish();
    }
    for (const std::unique_ptr<OutputFile>& file : settings)
        OnFile(file->TargetPath(), [&] { file->Commit(); });
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
               const std::vector<std::uint8_t> bytes = AnalysisFileBytes(host.Effect().SourceAnalysis);
               file.Write(bytes.data(), bytes.size());
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
    for (const auto& [stage, spent] : progress.Seconds())
        report.seconds.emplace_back(StageName(stage), spent);
    if (options.json)
        return AsJson(report);
    return options.quiet ? std::string() : AsText(report);
}
