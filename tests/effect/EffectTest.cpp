// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>
#include <cstdlib>
#include <random>

#include <gtest/gtest.h>

#include "effect/TonalignAudioEffectPlugin.h"
#include "effect/TonalignInterface.h"
#include "foundation/streams/MMemoryStream.h"
#include "foundation/streams/MStdFileStream.h"
#include "plugin/contract/ChangeListener.h"
#include "plugin/contract/MPluginArgument.h"
#include "state/tree/MAttribute.h"
#include "state/tree/MStoreParams.h"
#include "state/tree/XML.h"

namespace
{
class Effect : public ::testing::Test
{
protected:
    void SetUp() override
    {
        effect.InitProcessing(2, 48000);
        effect.Update();
        effect.AcceptValues();
    }

    // Runs `seconds` of white noise through a one-pole low-pass of that share: 0 leaves it white.
    void Play(double seconds, double darkness, unsigned seed = 1)
    {
        std::mt19937 generator(seed);
        std::normal_distribution<float> samples(0, 0.1f);
        constexpr std::int32_t block = 512;
        std::vector<float> left(block), right(block), outLeft(block), outRight(block);
        double memory = 0;
        for (int run = 0; run < seconds * 48000 / block; ++run)
        {
            for (float& sample : left)
            {
                memory = darkness * memory + (1 - darkness) * static_cast<double>(samples(generator));
                sample = static_cast<float>(memory);
            }
            right = left;
            float* inputs[] = { left.data(), right.data() };
            float* outputs[] = { outLeft.data(), outRight.data() };
            effect.Process({}, inputs, outputs, block);
        }
    }

    void Measure(bool source, double darkness)
    {
        source ? effect.ToggleSourceAnalysis() : effect.ToggleTargetAnalysis();
        Play(4, darkness);
        source ? effect.ToggleSourceAnalysis() : effect.ToggleTargetAnalysis();
    }

    double Distance()
    {
        TonalignAudioEffectPlugin::ComparedCurves curves = effect.Compare(false);
        const std::array<float, 1024> response = effect.BandResponse();
        for (std::size_t index = 0; index < 1024; ++index)
            curves.target[index] += response[index];
        double mean = 0;
        double squares = 0;
        for (std::size_t index = 0; index < 1024; ++index)
        {
            const double difference = static_cast<double>(curves.reference[index]) - curves.target[index];
            mean += difference / 1024;
            squares += difference * difference / 1024;
        }
        return std::sqrt(squares - mean * mean);
    }

    TonalignAudioEffectPlugin effect;
    ChangeListener listener{ effect.Changes() };
};

std::string StateOf(TonalignAudioEffectPlugin& effect)
{
    MAttribute tree("settings");
    effect.SaveSettings(tree);
    MMemoryStream stream;
    WriteXML(tree, stream, true, "utf-8");
    std::string text(static_cast<std::size_t>(stream.GetSize()), '\0');
    stream.Seek(0, MStream::Begin);
    stream.Read(text.data(), static_cast<std::int32_t>(text.size()));
    return text;
}
}   // namespace

TEST_F(Effect, MeasuringPassesThroughItsStates)
{
    EXPECT_TRUE(effect.CurrentEditorState().analyseTargetEnabled);
    effect.ToggleSourceAnalysis();
    EXPECT_TRUE(effect.Analysing && effect.AnalysingSource);
    EXPECT_FALSE(effect.equalizer.bandsEnabled) << "the signal passes unfiltered";
    EXPECT_TRUE(effect.CurrentEditorState().analyseSourcePressed);
    EXPECT_FALSE(effect.CurrentEditorState().analyseTargetEnabled);
    Play(1, 0);
    effect.ToggleSourceAnalysis();
    EXPECT_FALSE(effect.Analysing || effect.AnalysingSource);
    EXPECT_TRUE(effect.SourceAnalysisDefined);
    EXPECT_TRUE(effect.equalizer.bandsEnabled);
    EXPECT_GT(effect.SourceAnalysis[500], 1e-5f);
    const AnalysisArray first = effect.SourceAnalysis;
    effect.ToggleSourceAnalysis();
    EXPECT_FALSE(effect.SourceAnalysisDefined) << "starting anew drops the old one at once";
    effect.ToggleSourceAnalysis();
    EXPECT_TRUE(effect.SourceAnalysisDefined);
    EXPECT_NE(effect.SourceAnalysis, first) << "a measurement that saw no audio";
}

TEST_F(Effect, EqualizeBringsTheTargetToTheSource)
{
    Measure(false, 0.9);
    Measure(true, 0.0);
    const double before = Distance();
    EXPECT_GT(before, 3);
    double last = before;
    for (const std::int32_t bands : { 1, 2, 4, 8, 10 })
    {
        effect.settings.maxAdaptionBars = bands;
        EXPECT_EQ(effect.Equalize(false).result, TonalignAudioEffectPlugin::EqualizeResult::Done);
        int enabled = 0;
        for (std::int32_t index = 0; index < 10; ++index)
        {
            enabled += effect.equalizer.Band(index).enabled ? 1 : 0;
            EXPECT_EQ(effect.equalizer.Band(index).enabled, index < bands);
        }
        const double after = Distance();
        EXPECT_LT(after, last + 0.1) << bands << " bands";
        last = after;
    }
    EXPECT_LT(last, 0.2 * before);
    EXPECT_TRUE(listener.Drain() && listener.Has(Change::Bands));
    EXPECT_EQ(effect.suspendCount, 0);
}

TEST_F(Effect, StateReturnsByteForByte)
{
    EXPECT_EQ(StateOf(effect).find("<TargetAnalysis>"), std::string::npos) << "nothing was measured yet";
    Measure(false, 0.9);
    Measure(true, 0.1);
    effect.settings.maxAdaptionBars = 7;
    effect.settings.adaptionFrequencyMin = 55;
    effect.settings.neverAmplify = true;
    effect.Equalize(false);
    effect.areas.areas.push_back({ .minX = 2, .maxX = 3, .name = "Voice" });
    effect.description.parameters[2].number.value = -3.25;
    const std::string state = StateOf(effect);

    TonalignAudioEffectPlugin other;
    MAttribute tree;
    MMemoryStream stream;
    stream.Write(state.data(), static_cast<std::int32_t>(state.size()));
    stream.Seek(0, MStream::Begin);
    ReadXML(tree, stream);
    other.LoadSettings(tree);
    EXPECT_EQ(StateOf(other), state);
    EXPECT_EQ(other.SourceAnalysis, effect.SourceAnalysis);
    EXPECT_EQ(other.settings.maxAdaptionBars, 7);
    EXPECT_DOUBLE_EQ(other.settings.adaptionFrequencyMin, 55);
    EXPECT_EQ(other.equalizer.Band(0).type, effect.equalizer.Band(0).type);

    MAttribute wrong("settings");
    wrong.SetAttribute("SourceAnalysisDefined", "1");
    wrong.GetSubItem("SourceAnalysis").SetText("0011");
    other.LoadSettings(wrong);
    EXPECT_EQ(other.SourceAnalysis, AnalysisArray{}) << "a block of another length reads as silence";
    EXPECT_EQ(other.settings.maxAdaptionBars, 4);
}

TEST_F(Effect, CommandsReachIt)
{
    MPluginArguments arguments;
    const std::int64_t instance =
        TonalignAudioEffectPluginInterface(nullptr, PluginCommand::GetInstance, arguments.Records());
    auto* made = reinterpret_cast<MPlugin*>(instance);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(TonalignAudioEffectPluginInterface(made, PluginCommand::GetLatency, arguments.Records()),
              32768);
    const auto* description = reinterpret_cast<MPluginDescription*>(
        TonalignAudioEffectPluginInterface(made, PluginCommand::GetDescription, arguments.Records()));
    EXPECT_EQ(description->parameterCount, 12);
    EXPECT_EQ(description->flags, 0x2Eu);
    EXPECT_EQ(TonalignAudioEffectPluginInterface(made, PluginCommand::Destroy, arguments.Records()), 0);
}

TEST_F(Effect, AnalysisFilesKeepEveryPoint)
{
    Measure(true, 0.3);
    const std::string folder = std::getenv("TONALIGN_TEST_FOLDER");
    const MString path = MString::FromUTF8(folder + "/kept.TonalignComparison");
    SaveAnalysisFile(path, effect.SourceAnalysis);
    EXPECT_EQ(LoadAnalysisFile(path), effect.SourceAnalysis);
    MAttribute plain("Anything");
    StoreAnalysis(plain, effect.SourceAnalysis);
    const MString plainPath = MString::FromUTF8(folder + "/plain.TonalignComparison");
    SaveXML(plain, plainPath, false, "utf-8");
    EXPECT_EQ(LoadAnalysisFile(plainPath), effect.SourceAnalysis)
        << "XML by hand reads like a compressed file";
    const MString broken = MString::FromUTF8(folder + "/broken.TonalignComparison");
    MStdFileStream(broken, 6).Write("no analysis", 11);
    EXPECT_THROW(LoadAnalysisFile(broken), MException);
}

TEST_F(Effect, ACancelledFileAnalysisLeavesTheEarlierOne)
{
    AudioSampleBuffer buffer;
    buffer.Allocate(1, 48000 * 5);
    for (std::int32_t frame = 0; frame < buffer.frames; ++frame)
        buffer.channelData[0][frame] = static_cast<float>(std::sin(frame * 0.1));
    buffer.sampleRate = 48000;
    Measure(true, 0.3);
    const AnalysisArray measured = effect.SourceAnalysis;
    for (const WorkStage last : { WorkStage::Resampling, WorkStage::Analysing })
    {
        AudioSampleBuffer copy;
        copy.Allocate(1, buffer.frames);
        std::copy_n(buffer.channelData[0], buffer.frames, copy.channelData[0]);
        copy.sampleRate = last == WorkStage::Resampling ? 44100 : 48000;
        EXPECT_EQ(effect.AnalyseBuffer(copy, true, [last](WorkStage stage, double) { return stage != last; }),
                  TonalignAudioEffectPlugin::WorkResult::Cancelled);
        EXPECT_TRUE(effect.SourceAnalysisDefined && effect.CurrentEditorState().saveEnabled);
        EXPECT_EQ(effect.SourceAnalysis, measured) << "the one before is still there";
        EXPECT_FALSE(effect.Analysing || effect.AnalysingSource || effect.TargetAnalysisDefined);
        EXPECT_TRUE(effect.equalizer.bandsEnabled);
        EXPECT_EQ(effect.suspendCount, 0);
    }
    EXPECT_EQ(effect.AnalyseBuffer(buffer, true), TonalignAudioEffectPlugin::WorkResult::Done);
    EXPECT_TRUE(effect.SourceAnalysisDefined);
    EXPECT_NE(effect.SourceAnalysis, measured);
    EXPECT_THROW(effect.AnalyseFile("/nowhere/at/all.wav", false), MException);
    EXPECT_FALSE(effect.TargetAnalysisDefined);
    EXPECT_EQ(effect.suspendCount, 0);
}

TEST(EffectBeforePreparation, UpdatesDoNothing)
{
    TonalignAudioEffectPlugin effect;
    effect.Update();
    effect.UpdateAnalysisState(true);
    effect.OnParameterChange(5);
    EXPECT_EQ(effect.equalizer.mode, -1);
    EXPECT_EQ(effect.GetLatency(), 32768) << "known from the start";
}

TEST_F(Effect, OutputGainRampsOverABlockAndSaturationAddsEvenHarmonics)
{
    MPluginParameterInfo* parameters = effect.description.parameters;
    parameters[MEqualizerProcessorPlugin::Mode].enumeration.index = 0;
    effect.equalizer.Band(5).enabled = false;
    effect.Update();
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
    EXPECT_NEAR(left[9], 0.5 * target, 1e-5);

    parameters[MEqualizerProcessorPlugin::Gain].number.value = 0.0;
    parameters[MEqualizerProcessorPlugin::SoftSaturation].number.value = 1.0;
    run(10);
    run(10);
    const auto saturated = [](double x)
    {
        const double v = std::sin(1.5707963267948966 * x);
        return v + 0.8 * (v - x) * (v - x);
    };
    EXPECT_NEAR(left[5], saturated(0.5), 1e-5);
    EXPECT_NEAR(right[5], saturated(-0.25), 1e-5);
}
