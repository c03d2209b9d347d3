// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <span>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "effect/TonalignAudioEffectPlugin.h"
#include "effect/TonalignInterface.h"
#include "foundation/streams/MMemoryStream.h"
#include "foundation/streams/MStdFileStream.h"
#include "plugin/contract/ChangeListener.h"
#include "plugin/contract/MPluginArgument.h"
#include "state/tree/MAttribute.h"
#include "state/tree/XML.h"
#include "tests/Signals.h"
#include "tests/foundation/audiofile/TestFiles.h"

namespace
{
using Work = TonalignAudioEffectPlugin::WorkResult;
constexpr std::size_t latency = 32768;

std::size_t PointAt(double hertz)
{
    return static_cast<std::size_t>(1024 * std::log10(hertz / 20) / 3);
}

// The highest level within two points of a frequency.
double LevelAt(const AnalysisArray& analysis, double hertz)
{
    const auto place = analysis.begin() + static_cast<std::ptrdiff_t>(PointAt(hertz));
    return static_cast<double>(*std::max_element(place - 2, place + 3));
}

class Effect : public ::testing::Test
{
protected:
    Effect() { Prepare(48000); }

    void Prepare(double rate)
    {
        effect.InitProcessing(2, rate);
        effect.Update();
        effect.AcceptValues();
    }

    // What comes out of the second channel; the first one gets and brings the opposite.
    std::vector<float> Play(const std::vector<float>& samples)
    {
        std::vector<float> output(samples.size(), 77.0f);
        for (std::size_t position = 0; position < samples.size(); position += 512)
        {
            const std::size_t count = std::min<std::size_t>(512, samples.size() - position);
            std::vector<float> left(512), right(512), leftOut(512), rightOut(512, 77.0f);
            for (std::size_t i = 0; i < count; ++i)
            {
                right[i] = samples[position + i];
                left[i] = -right[i] / 2;
            }
            float* inputs[] = { left.data(), right.data() };
            float* outputs[] = { leftOut.data(), rightOut.data() };
            effect.Process({}, inputs, outputs, static_cast<std::int32_t>(count));
            std::copy_n(rightOut.begin(), count, output.begin() + static_cast<std::ptrdiff_t>(position));
        }
        return output;
    }

    void Measure(bool source, const std::vector<float>& samples)
    {
        source ? effect.ToggleSourceAnalysis() : effect.ToggleTargetAnalysis();
        Play(samples);
        source ? effect.ToggleSourceAnalysis() : effect.ToggleTargetAnalysis();
    }

    double OwnLevel()
    {
        AnalysisArray shown;
        effect.analyzer.GetSpectrum(effect.analyzer.OwnClient(0), shown.data(), ProcessorAverage, 0);
        return static_cast<double>(*std::max_element(shown.begin(), shown.end()));
    }

    TonalignAudioEffectPlugin effect;
    ChangeListener listener{ effect.Changes() };
};

std::string StateOf(MPlugin& effect)
{
    MAttribute tree("settings");
    MPluginArguments arguments;
    EXPECT_EQ(TonalignAudioEffectPluginInterface(&effect, PluginCommand::SaveSettings,
                                                 arguments.SetPointer(0, &tree).Records()),
              1);
    MMemoryStream stream;
    WriteXML(tree, stream, true, "utf-8");
    std::string text(static_cast<std::size_t>(stream.GetSize()), '\0');
    stream.Seek(0, MStream::Begin);
    stream.Read(text.data(), static_cast<std::int32_t>(text.size()));
    return text;
}

void ReadState(MAttribute& tree, const std::string& state)
{
    MMemoryStream stream;
    stream.Write(state.data(), static_cast<std::int32_t>(state.size()));
    stream.Seek(0, MStream::Begin);
    ReadXML(tree, stream);
}

MString TestPath(const char* name)
{
    return MString::FromUTF8(std::string(std::getenv("TONALIGN_TEST_FOLDER")) + "/" + name);
}
}   // namespace

TEST_F(Effect, MeasuringHearsTheInputAndPassesItUnfiltered)
{
    effect.equalizer.Band(5).y = 20;
    effect.Update();
    const std::vector<float> white = Signals::Noise(200000, 1, 0.1f);
    std::vector<float> dark(white.size());
    for (std::size_t i = 1; i < white.size(); ++i)
        dark[i] = 0.9f * dark[i - 1] + 0.1f * white[i];
    for (const bool source : { false, true })
    {
        source ? effect.ToggleSourceAnalysis() : effect.ToggleTargetAnalysis();
        EXPECT_TRUE(effect.CurrentEditorState().analysisCurveVisible);
        EXPECT_EQ(effect.CurrentEditorState().analyseSourcePressed, source);
        const std::vector<float>& input = source ? white : dark;
        EXPECT_LT(Signals::LargestDifference(Play(input), input, latency, input.size(), latency), 1e-6);
        EXPECT_FALSE(source ? effect.SourceAnalysisDefined : effect.TargetAnalysisDefined);
        source ? effect.ToggleSourceAnalysis() : effect.ToggleTargetAnalysis();
        EXPECT_TRUE(source ? effect.SourceAnalysisDefined : effect.TargetAnalysisDefined);
        EXPECT_FALSE(effect.Analysing || effect.AnalysingSource);
        EXPECT_TRUE(listener.Drain() && listener.Has(Change::AnalysisState));
    }
    EXPECT_GT(Signals::LargestDifference(Play(white), white, latency, white.size(), latency), 0.1)
        << "the bands are back";
    for (const double hertz : { 100.0, 1000.0, 5000.0, 15000.0 })
    {
        // The one-pole low-pass; the same noise, so that its chance is no part of the difference.
        const double w = 2 * std::numbers::pi * hertz / 48000;
        const double expected = 0.1 / std::abs(1.0 - std::polar(0.9, -w));
        const std::size_t i = PointAt(hertz);
        EXPECT_NEAR(effect.TargetAnalysis[i] / effect.SourceAnalysis[i], expected, 0.03 * expected) << hertz;
    }
    const AnalysisArray first = effect.SourceAnalysis;
    Measure(true, {});
    EXPECT_NE(effect.SourceAnalysis, first) << "starting anew drops what was measured";
}

TEST_F(Effect, IsSilentWhileSuspended)
{
    const std::vector<float> noise = Signals::Noise(2 * latency, 4);
    Play(noise);
    {
        const SuspendGuard suspended(effect);
        EXPECT_EQ(Signals::PeakOf(Play(noise)), 0.0f);
    }
    EXPECT_GT(Signals::PeakOf(Play(noise)), 0.1f);
}

TEST_F(Effect, ShowsTheInputAsLateAsTheOutputWhereAnybodyLooks)
{
    struct Case
    {
        EditorPresence editor;
        bool whenHidden, measuring, early, late;
    };
    const Case cases[] = { { EditorPresence::Visible, false, false, false, true },
                           { EditorPresence::Visible, false, true, true, true },
                           { EditorPresence::Hidden, true, false, false, true },
                           { EditorPresence::Hidden, false, false, false, false },
                           { EditorPresence::Closed, true, false, false, false } };
    const double silence = OwnLevel() + 1e-8;
    for (const Case& each : cases)
    {
        SCOPED_TRACE(&each - cases);
        Prepare(48000);
        effect.description.environment->editor = each.editor;
        effect.analyzer.settings.enableWhenHidden = each.whenHidden;
        if (each.measuring)
            effect.ToggleTargetAnalysis();
        effect.analyzer.ResetAll();
        const std::vector<float> noise = Signals::Noise(latency - 1024, 3);
        Play(noise);
        EXPECT_EQ(OwnLevel() > silence, each.early) << "before anything comes out";
        Play(noise);
        const double shown = OwnLevel();
        EXPECT_EQ(shown > silence, each.late);
        effect.SetAnalysis({}, true);
        EXPECT_EQ(OwnLevel(), shown) << "a loaded analysis doesn't restart the averages";
        if (each.measuring)
            effect.ToggleTargetAnalysis();
    }
}

TEST_F(Effect, StateReturnsByteForByteThroughTheCommands)
{
    const std::string empty = StateOf(effect);
    EXPECT_EQ(empty.find("<TargetAnalysis>"), std::string::npos) << "nothing was measured yet";
    EXPECT_NE(empty.find("<Areas/>"), std::string::npos) << "nothing differs from its default";
    Measure(false, Signals::Noise(20000, 1));
    Measure(true, Signals::Noise(20000, 2));
    AutoEqSettings& settings = effect.settings;
    settings.maxAdaptionBars = 7;
    settings.neverAmplify = settings.disablePassNotch = true;
    settings.adaptionFrequencyMin = 55;
    settings.adaptionFrequencyMax = 5500;
    settings.spaceInMixLimit = -33;
    settings.adaptionAlgorithm = MFAOptimized;
    settings.autoEqEnvelope.Reset(0, 0.5);
    effect.SourceAnalysisEnvelope.Reset(-10, -20);
    effect.Equalize(false);
    effect.areas.rowHeight = 7;
    effect.areas.fromTop = effect.areas.invertRows = effect.areas.maximizeRows = true;
    effect.areas.alpha = 0.25;
    effect.areas.areas = { { .minX = 2,
                             .maxX = 3,
                             .color = 0x80112233,
                             .colorEnabled = true,
                             .row = 1,
                             .height = 2,
                             .name = "Voice" },
                           {} };
    MPluginParameterInfo* parameters = effect.description.parameters;
    parameters[TonalignAudioEffectPlugin::AverageLength].number.value = 2.5;
    effect.OnParameterChange(TonalignAudioEffectPlugin::AverageLength);
    parameters[2].number.value = -3.25;
    const std::string state = StateOf(effect);

    TonalignAudioEffectPlugin other;
    other.InitProcessing(2, 48000);
    MAttribute tree;
    ReadState(tree, state);
    MPluginArguments arguments;
    EXPECT_EQ(TonalignAudioEffectPluginInterface(&other, PluginCommand::LoadSettings,
                                                 arguments.SetPointer(0, &tree).Records()),
              1);
    EXPECT_EQ(StateOf(other), state);
    EXPECT_EQ(other.SourceAnalysis, effect.SourceAnalysis);
    EXPECT_EQ(other.TargetAnalysis, effect.TargetAnalysis);
    EXPECT_TRUE(other.SourceAnalysisDefined && other.TargetAnalysisDefined);
    const auto fields = [](const TonalignAudioEffectPlugin& from)
    {
        const AutoEqSettings& equalize = from.settings;
        const FrequencyAreas& drawn = from.areas;
        const FrequencyAreas::Area& area = drawn.areas[0];
        return std::tuple(
            equalize.maxAdaptionBars.Get(), equalize.neverAmplify.Get(), equalize.disablePassNotch.Get(),
            equalize.adaptionFrequencyMin.Get(), equalize.adaptionFrequencyMax.Get(),
            equalize.spaceInMixLimit.Get(), equalize.adaptionAlgorithm.Get(),
            equalize.autoEqEnvelope.Points()[1].y, from.SourceAnalysisEnvelope.Points()[1].y, drawn.rowHeight,
            drawn.fromTop, drawn.invertRows, drawn.maximizeRows, drawn.alpha, drawn.areas.size(), area.minX,
            area.maxX, area.color, area.colorEnabled, area.row, area.height, area.name.ToUTF8());
    };
    EXPECT_EQ(fields(other), fields(effect));
    EXPECT_EQ(other.analyzer.settings.averageLength, 2.5);
    EXPECT_EQ(other.BandResponse(), effect.BandResponse());
    EXPECT_EQ(other.description.parameters[2].number.previousValue, -3.25) << "no ramp from the old value";

    MAttribute overlay("settings");
    other.LoadSettings(overlay, MLoadMode::Overlay);
    EXPECT_EQ(StateOf(other), state) << "what isn't named stays";
    MAttribute wrong;
    ReadState(wrong, empty);
    wrong.SetAttribute("SourceAnalysisDefined", "1");
    wrong.SetAttribute("AdaptionAlgorithm", "7");
    wrong.SetAttribute("MaxAdaptionBars", "99");
    wrong.GetSubItem("SourceAnalysis").SetText("0011");
    other.LoadSettings(wrong);
    EXPECT_EQ(other.SourceAnalysis, AnalysisArray{}) << "a block of another length reads as silence";
    EXPECT_TRUE(other.areas.areas.empty());
    EXPECT_EQ(other.settings.adaptionAlgorithm, MFADefault);
    EXPECT_LE(other.settings.maxAdaptionBars, 10);
    wrong.SetAttribute("SourceAnalysisDefined", "0");
    wrong.SetAttribute("MaxAdaptionBars", "4");
    other.LoadSettings(wrong);
    EXPECT_EQ(StateOf(other), empty);
}

TEST_F(Effect, TheEntryFunctionMakesDescribesAndEndsIt)
{
    MPluginArguments arguments;
    const auto command = [&](MPlugin* plugin, std::int64_t number)
    {
        return TonalignAudioEffectPluginInterface(plugin, number, arguments.Records());
    };
    auto* made = reinterpret_cast<MPlugin*>(command(nullptr, PluginCommand::GetInstance));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(command(made, PluginCommand::GetInstance), reinterpret_cast<std::intptr_t>(made));
    EXPECT_EQ(command(made, PluginCommand::GetLatency), 32768) << "known from the start";
    made->Update();
    made->OnParameterChange(TonalignAudioEffectPlugin::AverageLength);
    static_cast<TonalignAudioEffectPlugin*>(made)->UpdateAnalysisState(true);
    EXPECT_EQ(static_cast<TonalignAudioEffectPlugin*>(made)->equalizer.mode, -1) << "not prepared yet";
    const auto* description =
        reinterpret_cast<MPluginDescription*>(command(made, PluginCommand::GetDescription));
    EXPECT_EQ(description->parameterCount, 12);
    EXPECT_EQ(description->specialParameters[0].adapter->targetCount, 70);
    // Hosts keep positions in these ranges: none may change.
    std::ostringstream ranges;
    for (const MPluginParameterInfo& each : std::span(description->parameters, 12))
    {
        EXPECT_EQ(each.help.IsEmpty(), each.id == MString("depth")) << each.id.ToUTF8();
        if (each.type == ParameterType::Float)
            ranges << each.id.ToUTF8() << " " << each.number.minimum << ".." << each.number.maximum << ":"
                   << each.number.value << " ";
        else if (each.type == ParameterType::Enumeration)
            ranges << each.id.ToUTF8() << " " << each.enumeration.count << ":" << each.enumeration.index
                   << " ";
    }
    EXPECT_EQ(ranges.str(), "mode 3:1 depth 0..1:1 gain -24..24:0 SoftSaturation 0..1:0 smooth 0..0.2:0.05 "
                            "average 0..5:1 slope 0..6:3 overlap 0..0.8:0.5 channelmode 4:2 "
                            "analyzergain -24..24:0 ");
    EXPECT_TRUE(description->Has(EffectFlag::PanelInMainEditor) &&
                description->Has(EffectFlag::SeparatePages));
    EXPECT_EQ(command(made, PluginCommand::Destroy), 0);
}

TEST_F(Effect, AnalysisFilesKeepEveryPoint)
{
    Measure(true, Signals::Noise(20000, 1));
    const MString path = TestPath("kept.TonalignComparison");
    SaveAnalysisFile(path, effect.SourceAnalysis);
    EXPECT_EQ(LoadAnalysisFile(path), effect.SourceAnalysis);
    std::vector<std::uint8_t> written(AnalysisFileBytes(effect.SourceAnalysis));
    MStdFileStream(TestPath("bytes"), 6).Write(written.data(), static_cast<std::int32_t>(written.size()));
    EXPECT_EQ(LoadAnalysisFile(TestPath("bytes")), effect.SourceAnalysis);
    MAttribute plain("Anything");
    StoreAnalysis(plain, effect.SourceAnalysis);
    SaveXML(plain, TestPath("plain"), false, "utf-8");
    EXPECT_EQ(LoadAnalysisFile(TestPath("plain")), effect.SourceAnalysis)
        << "XML by hand reads like a compressed file";
    MStdFileStream(TestPath("broken"), 6).Write("no analysis", 11);
    EXPECT_THROW(LoadAnalysisFile(TestPath("broken")), MException);
    EXPECT_THAT(AnalysisFolder().ToUTF8(), testing::EndsWith("Comparisons"));
}

TEST_F(Effect, FilesAreMeasuredWholeAtTheEffectsRate)
{
    // Levels of two tones change places in the middle; a third one sounds in the second channel alone. The
    // averages are of decibels, so that all end up at the same level.
    constexpr std::int32_t frames = 60000;
    for (const double rate : { 48000.0, 96000.4 })
    {
        SCOPED_TRACE(rate);
        Prepare(rate);
        AudioSampleBuffer buffer;
        buffer.Allocate(2, frames);
        buffer.sampleRate = 44100;
        const std::vector<float> low = Signals::Sine(frames, 500, 44100);
        const std::vector<float> middle = Signals::Sine(frames, 2000, 44100);
        const std::vector<float> high = Signals::Sine(frames, 8000, 44100);
        for (std::size_t i = 0; i < frames; ++i)
        {
            const bool early = i < frames / 2;
            buffer.channelData[0][i] = (early ? 0.4f : 0.1f) * low[i] + (early ? 0.1f : 0.4f) * middle[i];
            buffer.channelData[1][i] = 0.2f * high[i];
        }
        double reached = -1;
        std::vector<WorkStage> stages;
        const auto progress = [&](WorkStage stage, double fraction)
        {
            if (stages.empty() || stages.back() != stage)
                stages.push_back(stage), reached = 0;
            EXPECT_GE(fraction, reached);
            EXPECT_LE(fraction, 1);
            reached = fraction;
            EXPECT_EQ(effect.suspendCount, 1);
            return true;
        };
        effect.ToggleTargetAnalysis();   // a measurement by ear is over then
        ASSERT_EQ(effect.AnalyseBuffer(buffer, true, progress), Work::Done);
        EXPECT_EQ(stages, (std::vector<WorkStage>{ WorkStage::Resampling, WorkStage::Analysing }));
        EXPECT_TRUE(effect.SourceAnalysisDefined);
        EXPECT_FALSE(effect.Analysing);
        const AnalysisArray& analysis = effect.SourceAnalysis;
        const double level = LevelAt(analysis, 500);
        EXPECT_NEAR(LevelAt(analysis, 2000) / level, 1, 0.2);
        EXPECT_NEAR(LevelAt(analysis, 8000) / level, 1, 0.2);
        for (const double between : { 300.0, 1000.0, 4000.0, 15000.0 })
            EXPECT_LT(LevelAt(analysis, between), 0.05 * level) << between;
    }
    // A file in full: a tone of 0.0589 of its rate.
    const FileBytes wave =
        WaveFile({ .frames = 30000, .sampleRate = 22050, .before = {}, .compression = {} });
    MStdFileStream(TestPath("tone.wav"), 6).Write(wave.data(), static_cast<std::int32_t>(wave.size()));
    ASSERT_EQ(effect.AnalyseFile(TestPath("tone.wav"), false), Work::Done);
    const AnalysisArray& target = effect.TargetAnalysis;
    EXPECT_NEAR(static_cast<double>(std::max_element(target.begin(), target.end()) - target.begin()),
                static_cast<double>(PointAt(0.37 / (2 * std::numbers::pi) * 22050)), 2);
}

TEST_F(Effect, ACancelledFileAnalysisLeavesTheEarlierOne)
{
    const FileBytes wave =
        WaveFile({ .frames = 200000, .sampleRate = 44100, .before = {}, .compression = {} });
    MStdFileStream(TestPath("long.wav"), 6).Write(wave.data(), static_cast<std::int32_t>(wave.size()));
    Measure(true, Signals::Noise(20000, 1));
    const AnalysisArray measured = effect.SourceAnalysis;
    for (const WorkStage last : { WorkStage::LoadingFile, WorkStage::Resampling, WorkStage::Analysing })
    {
        SCOPED_TRACE(WorkStageTitle(last));
        bool stopped = false;
        const auto progress = [&](WorkStage stage, double fraction)
        {
            EXPECT_FALSE(stopped) << "asked again";
            stopped = stage == last && fraction > 0;
            return !stopped;
        };
        EXPECT_EQ(effect.AnalyseFile(TestPath("long.wav"), true, progress), Work::Cancelled);
        EXPECT_TRUE(stopped && effect.SourceAnalysisDefined && effect.CurrentEditorState().saveEnabled);
        EXPECT_EQ(effect.SourceAnalysis, measured) << "the one before is still there";
        EXPECT_FALSE(effect.Analysing || effect.AnalysingSource || effect.TargetAnalysisDefined);
        EXPECT_TRUE(effect.equalizer.bandsEnabled);
    }
    EXPECT_THROW(effect.AnalyseFile("/nowhere/at/all.wav", false), MException);
    EXPECT_FALSE(effect.TargetAnalysisDefined);
    EXPECT_EQ(effect.suspendCount, 0);
}

TEST_F(Effect, TellsOfWhatMovesAndDoesTheWorkLater)
{
    for (std::int32_t index = 0; index < TonalignAudioEffectPlugin::ParameterCount; ++index)
    {
        listener.Drain();
        effect.OnParameterChange(index);
        const bool concernsAnalyzer = index == TonalignAudioEffectPlugin::Smoothness ||
                                      index == TonalignAudioEffectPlugin::AverageLength;
        EXPECT_EQ(listener.Drain() && listener.Has(Change::AnalyzerSettings), concernsAnalyzer) << index;
    }
    effect.description.parameters[TonalignAudioEffectPlugin::Smoothness].number.value = 0.2;
    const std::int32_t narrow = effect.analyzer.SmoothingKernel().HalfLength();
    effect.BringAnalyzerUpToDate();
    EXPECT_GT(effect.analyzer.SmoothingKernel().HalfLength(), narrow);

    static std::vector<std::pair<std::int64_t, std::int64_t>> heard;
    heard.clear();
    effect.SetHost(nullptr,
                   [](void*, std::int64_t command, MPluginArgument* arguments) -> std::int64_t
                   {
                       heard.emplace_back(command, arguments[0].value);
                       return 0;
                   });
    effect.description.TakeUpdateRequest();
    effect.equalizer.automation.SetValue(3 * EqualizerAutomation::RoleCount, 1, false);
    EXPECT_THAT(heard, testing::ElementsAre(std::pair{ HostCommand::ParameterChangedInside, 3 }));
    EXPECT_TRUE(effect.description.TakeUpdateRequest());
    effect.SetUpsamplingRatio(effect.equalizer.upsamplingRatio);
    EXPECT_FALSE(effect.description.TakeUpdateRequest());
    effect.SetUpsamplingRatio(4);
    EXPECT_TRUE(effect.description.TakeUpdateRequest());
    heard.clear();
    effect.Update();
    EXPECT_THAT(heard, testing::Contains(testing::Pair(HostCommand::EqualizerParametersChanged, 0)));
    listener.Drain();
    effect.equalizer.UpdateBandControls(6);
    EXPECT_TRUE(listener.Drain());
    EXPECT_THAT(listener.Bands(), testing::ElementsAre(6));
    static MMutex lent;   // outlives the effect
    effect.lock = &lent;
    effect.InitProcessing(99, 48000);
    EXPECT_EQ(effect.channelGroups, TonalignAudioEffectPlugin::MaxChannels);
    EXPECT_EQ(effect.equalizer.lock, &lent) << "one lock for all";
}

TEST_F(Effect, OutputGainRampsOverABlockAndSaturationAddsEvenHarmonics)
{
    MPluginParameterInfo* parameters = effect.description.parameters;
    parameters[MEqualizerProcessorPlugin::Mode].enumeration.index = 0;
    effect.equalizer.Band(5).enabled = false;
    effect.Update();
    EXPECT_TRUE(effect.NeedsDownsamplingFilter());
    std::vector<float> left, right;
    const auto run = [&](std::int32_t count)
    {
        left.assign(static_cast<std::size_t>(count), 0.5f);
        right.assign(static_cast<std::size_t>(count), -0.25f);
        float* channels[] = { left.data(), right.data() };
        effect.Process({}, channels, channels, count);
    };
    run(40000);
    const double target = std::pow(10.0, 0.3);
    parameters[MEqualizerProcessorPlugin::Gain].number.value = 6.0;
    run(1000);
    for (const std::size_t i : { 0, 250, 999 })
    {
        const double gain = 1 + (target - 1) * static_cast<double>(i) / 1000;
        EXPECT_NEAR(left[i], 0.5 * gain, 1e-5) << "a straight line";
        EXPECT_NEAR(right[i], -0.25 * gain, 1e-5);
    }
    run(10);
    EXPECT_NEAR(left[0], 0.5 * target, 1e-5);
    EXPECT_NEAR(right[9], -0.25 * target, 1e-5);

    parameters[MEqualizerProcessorPlugin::Gain].number.value = 0.0;
    parameters[MEqualizerProcessorPlugin::SoftSaturation].number.value = 1.0;
    run(10);
    run(10);
    const auto saturated = [](double x)
    {
        const double v = std::sin(std::numbers::pi / 2 * x);
        return v + 0.8 * (v - x) * (v - x);
    };
    EXPECT_NEAR(left[5], saturated(0.5), 1e-5);
    EXPECT_NEAR(right[5], saturated(-0.25), 1e-5);

    effect.equalizer.Band(2).enabled = true;
    effect.equalizer.Band(2).y = 12;
    parameters[MEqualizerProcessorPlugin::Mode].enumeration.index = 1;
    parameters[MEqualizerProcessorPlugin::DryWet].number.value = 0.0;
    effect.Update();
    using Dry = TonalignAudioEffectPlugin::DrySignal;
    EXPECT_NEAR(LevelAt(effect.BandResponse(Dry::LeftOut), std::pow(10.0, effect.equalizer.Band(2).x)), 12,
                0.1);
    EXPECT_NEAR(LevelAt(effect.BandResponse(Dry::MixedIn), std::pow(10.0, effect.equalizer.Band(2).x)), 0,
                1e-3);
}
