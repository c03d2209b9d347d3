// SPDX-License-Identifier: GPL-3.0-or-later
// Upsampling and gain control on the road of a block.
#include <algorithm>
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "foundation/text/MException.h"
#include "plugin/driver/MQuorvaneAudioEffectPlugin.h"
#include "state/tree/MAttribute.h"
#include "tests/AllocationCounter.h"
#include "tests/plugin/driver/TestEffect.h"

namespace
{
class SilentAdapter : public MAudioPluginAdapter
{
public:
    void SendAutomation(std::int32_t, double) override {}
    void SendBypassAutomation() override {}
    void GenerateMIDIEvent(std::uint8_t, std::uint8_t, std::uint8_t, std::int32_t) override {}
    void ReportLatency() override { ++latencyReports; }
    void ChangeEditorSize(std::int32_t, std::int32_t) override {}

    int latencyReports = 0;
};

struct Stereo
{
    explicit Stereo(std::size_t frames = 0) : left(frames), right(frames) {}
    bool operator==(const Stereo&) const = default;

    std::vector<float> left, right;
};

Stereo Noise(std::size_t frames)
{
    std::mt19937 generator(11);
    std::uniform_real_distribution<float> samples(-0.5f, 0.5f);
    Stereo noise(frames);
    for (std::size_t index = 0; index < frames; ++index)
    {
        noise.left[index] = samples(generator);
        noise.right[index] = samples(generator);
    }
    return noise;
}

class Stages : public ::testing::Test
{
protected:
    void SetUp() override
    {
        plugin.adapter = &adapter;
        plugin.Initialize("Test", "Quorvane", &TestEffect::Entry, 800, 560);
        effect = TestEffect::last;
        plugin.sampleRate = 48000;
        plugin.buses.SetStride(2);
        plugin.InitProcessing();
        effect->runs.reserve(100000);
        effect->rampValues.reserve(100000);
    }

    void Upsample(std::int32_t factor, bool highQuality)
    {
        plugin.upsampling = factor;
        plugin.highQualityUpsampling = highQuality;
        plugin.UpdateUpsamplingFactor();
    }

    Stereo Run(Stereo input, std::size_t blockFrames, bool replacing = true, bool inPlace = false)
    {
        Stereo output(input.left.size());
        for (std::size_t done = 0; done < input.left.size(); done += blockFrames)
        {
            const auto run = static_cast<std::int32_t>(std::min(blockFrames, input.left.size() - done));
            float* inputs[] = { input.left.data() + done, input.right.data() + done };
            float* outputs[] = { output.left.data() + done, output.right.data() + done };
            plugin.ProcessBlock(inputs, inPlace ? inputs : outputs, run, replacing);
        }
        return inPlace ? input : output;
    }

    void MarkRampAsGain()
    {
        MPluginParameterInfo& info = effect->parameters[TestEffect::Ramp];
        info.flags = info.flags | ParameterFlag::OutputGain;
        info.number.minimum = -24;
        info.number.maximum = 24;
        info.number.value = 0;
    }
    double Gain() const { return effect->parameters[TestEffect::Ramp].number.value; }

    SilentAdapter adapter;
    MQuorvaneAudioEffectPlugin plugin;
    TestEffect* effect = nullptr;
};
}   // namespace

TEST_F(Stages, FactorOneLeavesEveryBitAlone)
{
    const Stereo noise = Noise(3000);
    Upsample(2, true);
    Run(noise, 512);
    Upsample(1, true);
    EXPECT_EQ(Run(noise, 512), noise);
    EXPECT_EQ(plugin.TotalLatency(), 0);
    EXPECT_DOUBLE_EQ(effect->sampleRate, 48000);
}

TEST_F(Stages, TheEffectSeesTheHigherRateAndLongerBlocks)
{
    const int reports = adapter.latencyReports;
    effect->latency = 3000;
    Upsample(3, true);
    EXPECT_DOUBLE_EQ(effect->sampleRate, 144000);
    EXPECT_EQ(plugin.TotalLatency(), 1000 + 512);
    EXPECT_EQ(plugin.reportedLatency, 1512);
    EXPECT_EQ(adapter.latencyReports, reports + 1);
    EXPECT_EQ(plugin.TotalTailSize(), 77 / 3 + 16384);
    effect->runs.clear();
    Run(Noise(100), 100);
    EXPECT_EQ(effect->runs.at(0), 300);
    Upsample(3, false);
    EXPECT_EQ(plugin.TotalLatency(), 1000);
    EXPECT_EQ(plugin.reportedLatency, 1000) << "a change of quality alone is prepared and reported too";
    plugin.sampleRate = 192000;
    Upsample(4, true);
    EXPECT_EQ(plugin.TotalLatency(), 750 + 1536);
}

TEST_F(Stages, OutputIsAsLateAsReportedInEveryFormOfCall)
{
    Stereo impulse(4096);
    impulse.left[10] = 1;
    impulse.right[10] = -0.5f;
    for (const std::int32_t factor : { 2, 3, 4 })
        for (const bool replacing : { true, false })
            for (const bool inPlace : { false, true })
            {
                if (inPlace && !replacing)
                    continue;
                SCOPED_TRACE(testing::Message() << factor << " " << replacing << " " << inPlace);
                Upsample(factor, true);
                plugin.ResetUpsamplers();
                const Stereo output = Run(impulse, 256, replacing, inPlace);
                const auto place = static_cast<std::size_t>(10 + plugin.TotalLatency());
                EXPECT_EQ(std::max_element(output.left.begin(), output.left.end()) - output.left.begin(),
                          static_cast<std::ptrdiff_t>(place));
                // The pass band's share of an impulse: 0.98, less at the edge of the flattest of the filters.
                EXPECT_NEAR(output.left[place], 0.975, 0.01);
                EXPECT_NEAR(output.right[place], -0.4875, 0.005);
            }
}

TEST_F(Stages, BlockLengthsAndPlacesDontChangeTheUpsampledSound)
{
    const Stereo noise = Noise(6000);
    for (const bool highQuality : { true, false })
    {
        Upsample(2, highQuality);
        plugin.ResetUpsamplers();
        const Stereo whole = Run(noise, 6000);
        for (const std::size_t length : { 1u, 37u, 512u, 4096u })
            for (const bool inPlace : { false, true })
            {
                plugin.ResetUpsamplers();
                EXPECT_EQ(Run(noise, length, true, inPlace), whole) << length << inPlace;
            }
    }
}

TEST_F(Stages, TellsTheEffectWhetherItHasToFilter)
{
    Upsample(3, true);
    EXPECT_EQ(effect->upsamplingRatio, 1);
    Upsample(3, false);
    EXPECT_EQ(effect->upsamplingRatio, 3);
    // An effect that amplifies nothing but says it filters: the plain way down is then left open. White
    // noise through one low-pass instead of two keeps more of its top.
    const auto energy = [this]
    {
        plugin.ResetUpsamplers();
        const Stereo output = Run(Noise(8192), 512);
        double sum = 0;
        for (const float sample : output.left)
            sum += static_cast<double>(sample) * static_cast<double>(sample);
        return sum;
    };
    effect->needsDownFilter = true;
    const double filteredTwice = energy();
    effect->needsDownFilter = false;
    EXPECT_GT(energy(), 1.005 * filteredTwice);
}

TEST_F(Stages, SettingsAreStoredAndTakenUp)
{
    Upsample(4, false);
    plugin.agc = 1;
    MAttribute tree;
    plugin.Store({ .saving = true, .item = &tree });
    Upsample(1, true);
    plugin.agc = 0;
    plugin.InitProcessing();
    EXPECT_FALSE(plugin.agcActive);
    plugin.Store({ .saving = false, .item = &tree });
    EXPECT_EQ(plugin.upsamplingFactor, 4);
    EXPECT_FALSE(plugin.highQualityUpsampling);
    EXPECT_DOUBLE_EQ(effect->sampleRate, 192000);
    EXPECT_TRUE(plugin.agcActive);
    tree.RemoveAttribute("hqupsampling");
    plugin.Store({ .saving = false, .item = &tree });
    EXPECT_TRUE(plugin.highQualityUpsampling) << "what an older state doesn't know has its default";
    EXPECT_EQ(plugin.reportedLatency, 384);
}

TEST_F(Stages, SteadyBlocksDontAllocate)
{
    Stereo noise = Noise(1024);
    Stereo output(1024);
    float* inputs[] = { noise.left.data(), noise.right.data() };
    float* outputs[] = { output.left.data(), output.right.data() };
    plugin.agc = 1;
    for (const bool highQuality : { true, false })
        for (const std::int32_t factor : { 1, 2, 3, 4 })
        {
            Upsample(factor, highQuality);
            plugin.InitProcessing();
            for (const bool replacing : { true, false })
                plugin.ProcessBlock(inputs, outputs, 1024, replacing);
            const std::int64_t before = AllocationCounter::TakenByThisThread();
            for (const std::int32_t length : { 1, 1024, 17, 512, 1000 })
                for (int turn = 0; turn < 20; ++turn)
                    plugin.ProcessBlock(inputs, outputs, length, turn % 2 == 0);
            EXPECT_EQ(AllocationCounter::TakenByThisThread() - before, 0) << factor << " " << highQuality;
        }
}

TEST_F(Stages, GainControlBringsALouderEffectBackInPlaceToo)
{
    effect->gain = 2;
    plugin.agc = 1;
    plugin.OnAGCChange();
    const Stereo noise = Noise(48000);
    for (const bool inPlace : { false, true })
    {
        const Stereo output = Run(noise, 480, true, inPlace);
        EXPECT_NEAR(output.left.back(), noise.left.back(), 1e-5);
        EXPECT_NEAR(plugin.CurrentAGCGain(), 0.5, 1e-5);
    }
}

TEST_F(Stages, SetAGCAddsDecibelsWithinTheRange)
{
    EXPECT_FALSE(plugin.SetAGC(2)) << "no parameter is an output gain";
    MarkRampAsGain();
    effect->changes.clear();
    EXPECT_TRUE(plugin.SetAGC(1));
    EXPECT_DOUBLE_EQ(Gain(), 0);
    EXPECT_TRUE(plugin.SetAGC(2));
    EXPECT_NEAR(Gain(), 6.0206, 1e-4);
    EXPECT_EQ(effect->changes.back(), TestEffect::Ramp);
    plugin.SetAGC(100);
    EXPECT_DOUBLE_EQ(Gain(), 24);
    plugin.SetAGC(1e-9);
    EXPECT_DOUBLE_EQ(Gain(), -24);
    for (const double useless : { 0.0, -1.0, std::nan(""), HUGE_VAL })
        EXPECT_TRUE(plugin.SetAGC(useless));
    EXPECT_DOUBLE_EQ(Gain(), -24) << "no ratio, no change";
}

TEST_F(Stages, ComputeAGCListensForFourSecondsAndSetsTheGain)
{
    MarkRampAsGain();
    effect->gain = 0.5f;
    const Stereo noise = Noise(480);
    std::int32_t waited = 0;
    const auto play = [&](std::int32_t milliseconds)
    {
        waited += milliseconds;
        for (std::int32_t done = 0; done < milliseconds; done += 10)
            Run(noise, 480);
    };
    std::vector<std::int32_t> steps;
    const AGCHooks hooks{ .wait = play,
                          .progress = [&](const MString& title, std::int32_t done, std::int32_t total)
                          {
                              EXPECT_EQ(title.ToUTF8(), "Computing optimal output gain using AGC");
                              EXPECT_EQ(total, 40);
                              EXPECT_TRUE(plugin.agcActive);
                              steps.push_back(done);
                              return true;
                          } };
    EXPECT_TRUE(plugin.ComputeAGC(hooks));
    EXPECT_EQ(waited, 4000);
    EXPECT_EQ(steps.size(), 40u);
    EXPECT_NEAR(Gain(), 6.02, 0.01);
    EXPECT_FALSE(plugin.agcActive);

    // Cancelled: nothing is set, and the control is off again.
    const AGCHooks cancelled{ .wait = play,
                              .progress = [](const MString&, std::int32_t done, std::int32_t)
                              {
                                  return done < 3;
                              } };
    EXPECT_FALSE(plugin.ComputeAGC(cancelled));
    EXPECT_NEAR(Gain(), 6.02, 0.01);
    EXPECT_FALSE(plugin.agcActive);
    const AGCHooks failing{ .wait = [](std::int32_t) { throw MException("Gone."); }, .progress = {} };
    EXPECT_THROW(plugin.ComputeAGC(failing), MException);
    EXPECT_FALSE(plugin.agcActive);

    // While it is on, the present gain is taken without waiting.
    plugin.agc = 1;
    plugin.OnAGCChange();
    play(4000);
    EXPECT_TRUE(plugin.ComputeAGC(failing));
    EXPECT_NEAR(Gain(), 12.04, 0.02);
    EXPECT_TRUE(plugin.agcActive);
}

TEST_F(Stages, ComputeAGCOfPresetsMeasuresEachUntilCancelled)
{
    MarkRampAsGain();
    const Stereo noise = Noise(480);
    std::vector<float> levels{ 0.5f, 2.0f, 0.25f };
    std::vector<double> stored;
    const MQuorvaneAudioEffectPlugin::PresetBank bank{ .count = 3,
                                                       .load =
                                                           [&](std::int32_t index)
                                                       {
                                                           effect->gain =
                                                               levels[static_cast<std::size_t>(index)];
                                                           effect->parameters[TestEffect::Ramp].number.value =
                                                               0;
                                                           plugin.agc = 0;
                                                       },
                                                       .store =
                                                           [&](std::int32_t)
                                                       {
                                                           EXPECT_EQ(plugin.agc, 0)
                                                               << "the preset's own choice";
                                                           stored.push_back(Gain());
                                                       } };
    const AGCHooks hooks{ .wait =
                              [&](std::int32_t milliseconds)
                          {
                              for (std::int32_t done = 0; done < milliseconds; done += 10)
                                  Run(noise, 480);
                          },
                          .progress =
                              [](const MString&, std::int32_t done, std::int32_t)
                          {
                              return done < 2;
                          } };
    EXPECT_EQ(plugin.ComputeAGCOfPresets(bank, hooks), 2);
    ASSERT_EQ(stored.size(), 2u);
    EXPECT_NEAR(stored[0], 6.02, 0.02);
    EXPECT_NEAR(stored[1], -6.02, 0.02);
    EXPECT_FALSE(plugin.agcActive);
}
