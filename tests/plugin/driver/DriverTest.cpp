// SPDX-License-Identifier: GPL-3.0-or-later
#include <atomic>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/text/MException.h"
#include "plugin/driver/MQuorvaneAudioEffectPlugin.h"
#include "plugin/driver/PluginState.h"
#include "state/tree/XML.h"
#include "tests/Signals.h"
#include "tests/plugin/driver/TestEffect.h"

using ::testing::ElementsAre;
using namespace Signals;

namespace
{
class RecordingAdapter : public MAudioPluginAdapter
{
public:
    void SendAutomation(std::int32_t index, double value) override { sent.emplace_back(index, value); }
    void SendBypassAutomation() override {}
    void GenerateMIDIEvent(std::uint8_t, std::uint8_t, std::uint8_t, std::int32_t) override {}
    void ReportLatency() override { ++latencyReports; }
    void ChangeEditorSize(std::int32_t, std::int32_t) override {}

    std::vector<std::pair<std::int32_t, double>> sent;
    int latencyReports = 0;
};

class Driver : public ::testing::Test
{
protected:
    void SetUp() override
    {
        plugin.adapter = &adapter;
        plugin.Initialize("Test", "Quorvane", &TestEffect::Entry, 800, 560);
        effect = TestEffect::last;
        effect->latency = 2048;
        plugin.sampleRate = 48000;
        plugin.buses.SetStride(2);
        plugin.InitProcessing();
        effect->updateCount = 0;
    }

    // One block of `count` frames; the left channel counts up from `start`, the right is its negative.
    void Run(std::int32_t count, float start = 1, bool replacing = true)
    {
        left.assign(static_cast<std::size_t>(count), 0);
        for (std::size_t index = 0; index < left.size(); ++index)
            left[index] = start + static_cast<float>(index);
        right = left;
        for (float& sample : right)
            sample = -sample;
        outLeft.resize(left.size());
        outRight.resize(left.size());
        float* inputs[] = { left.data(), right.data() };
        float* outputs[] = { outLeft.data(), outRight.data() };
        plugin.ProcessBlock(inputs, outputs, count, replacing);
    }

    RecordingAdapter adapter;
    MQuorvaneAudioEffectPlugin plugin;
    TestEffect* effect = nullptr;
    std::vector<float> left, right, outLeft, outRight;
};
}   // namespace

TEST_F(Driver, PassesChannelsAndReportsTheLatencyOnce)
{
    EXPECT_EQ(plugin.reportedLatency, 2048);
    EXPECT_EQ(adapter.latencyReports, 1);
    plugin.InitProcessing();
    EXPECT_EQ(adapter.latencyReports, 1) << "an unchanged latency isn't news";
    Run(16);
    EXPECT_FLOAT_EQ(outLeft[3], 4);
    EXPECT_FLOAT_EQ(outRight[3], -4);
    EXPECT_EQ(plugin.buses.InputNames().Count(), 2);
    EXPECT_EQ(plugin.buses.InputNames()[1].ToUTF8(), "In R");
}

TEST_F(Driver, RampsAHostsChangeAcrossTheBlockInSteps)
{
    Run(1024);   // the first block takes the values as they are
    plugin.SetParameter(TestEffect::Ramp, 1.0);
    effect->runs.clear();
    effect->rampValues.clear();
    effect->updateCount = 0;
    effect->description.TakeUpdateRequest();
    Run(1024);
    EXPECT_THAT(effect->runs, ElementsAre(256, 256, 256, 256));
    EXPECT_THAT(effect->rampValues,
                ElementsAre(::testing::DoubleNear(5, 1e-9), ::testing::DoubleNear(6.25, 1e-9),
                            ::testing::DoubleNear(7.5, 1e-9), ::testing::DoubleNear(8.75, 1e-9)));
    EXPECT_EQ(effect->updateCount, 5) << "once to prepare, three times between, once at the end";
    EXPECT_DOUBLE_EQ(effect->parameters[TestEffect::Ramp].RunningValue(), 10);
}

TEST_F(Driver, ShortBlocksJumpAndLoadedSettingsDontRamp)
{
    Run(1024);
    plugin.SetParameter(TestEffect::Ramp, 0.0);
    effect->runs.clear();
    Run(256);
    EXPECT_THAT(effect->runs, ElementsAre(256)) << "no more than a step: no ramp";
    MMemoryStream state;
    WritePluginState(plugin, state);
    plugin.SetParameter(TestEffect::Ramp, 1.0, true);
    Run(1024);
    state.Seek(0, MStream::Begin);
    ReadPluginState(plugin, state);
    effect->runs.clear();
    Run(1024);
    EXPECT_THAT(effect->runs, ElementsAre(1024))
        << "the first block after a load starts from the loaded value";
}

TEST_F(Driver, SplitsBlocksByTheEffectsLimitAndFallsBackOn256)
{
    effect->description.maxBlockSize = 100;
    effect->SendToHost(HostCommand::BlockLimitChanged);
    Run(250);
    EXPECT_THAT(effect->runs, ElementsAre(100, 100, 50));
    EXPECT_FLOAT_EQ(outLeft[249], 250) << "pointers move on with each run";
    effect->description.maxBlockSize = -5;
    effect->SendToHost(HostCommand::BlockLimitChanged);
    effect->runs.clear();
    Run(3);
    EXPECT_THAT(effect->runs, ElementsAre(1, 1, 1));
}

TEST_F(Driver, PendingUpdatesRunOnceBeforeTheBlock)
{
    Run(16);
    effect->updateCount = 0;
    plugin.SetParameter(TestEffect::Plain, 0.25);
    plugin.SetParameter(TestEffect::Plain, 0.5);
    EXPECT_EQ(effect->updateCount, 0);
    Run(16);
    Run(16);
    EXPECT_EQ(effect->updateCount, 1);
    plugin.SetParameter(TestEffect::Silent, 0.5);
    Run(16);
    EXPECT_EQ(effect->updateCount, 1) << "a parameter without the flag needs no update";
}

// Both ways at any time: no gap, no old sound, no click, and the same in blocks of any lengths.
TEST_F(Driver, BypassFadesBetweenWhatRunsOnAnyway)
{
    class Late : public TestEffect
    {
    public:
        static std::int64_t Entry(MPlugin* instance, std::int64_t command, MPluginArgument* arguments)
        {
            if (instance == nullptr)
                instance = new Late;
            if (command == PluginCommand::GetInstance)
                return static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(instance));
            return instance->Dispatch(command, arguments);
        }
        std::int32_t GetLatency() override { return 700; }
        void Process(const MProcessContext&, float** inputs, float** outputs, std::int32_t count) override
        {
            for (std::size_t channel = 0; channel < 2; ++channel)
                for (std::int32_t index = 0; index < count; ++index)
                {
                    history[channel].push_back(inputs[channel][index]);
                    const std::size_t size = history[channel].size();
                    outputs[channel][index] = size > 700 ? 3 * history[channel][size - 701] : 0.0f;
                }
        }
        std::vector<float> history[2];
    };
    constexpr std::size_t count = 40000;
    constexpr std::size_t fade = 960;   // 20 ms
    const std::size_t turns[] = { 5000, 11000, 11300, 20000, 20000 + fade, 30011 };
    const Channels input = NoiseChannels(2, count, 3);
    for (const std::vector<std::size_t>& lengths :
         { std::vector<std::size_t>{ 480 }, { 1, 64, 333 }, { 4096 }, { 17 } })
    {
        MQuorvaneAudioEffectPlugin late;
        late.Initialize("Test", "Quorvane", &Late::Entry, 800, 560);
        late.sampleRate = 48000;
        late.buses.SetStride(2);
        late.InitProcessing();
        Channels output(2, std::vector<float>(count));
        std::size_t turn = 0;
        std::size_t block = 0;
        for (std::size_t position = 0; position < count;)
        {
            const std::size_t next = turn < std::size(turns) ? turns[turn] : count;
            if (position == next)
            {
                late.bypass = !late.bypass;
                ++turn;
                continue;
            }
            const std::size_t run = std::min(lengths[block++ % lengths.size()], next - position);
            float* inputs[] = { const_cast<float*>(input[0].data()) + position,
                                const_cast<float*>(input[1].data()) + position };
            float* targets[] = { output[0].data() + position, output[1].data() + position };
            late.ProcessBlock(inputs, targets, static_cast<std::int32_t>(run), true);
            position += run;
        }
        double share = 0;   // of the dry signal
        bool bypassed = false;
        turn = 0;
        for (std::size_t i = 0; i < count; ++i)
        {
            if (turn < std::size(turns) && turns[turn] == i)
            {
                bypassed = !bypassed;
                ++turn;
            }
            const double dry = i < 700 ? 0 : input[0][i - 700];
            ASSERT_NEAR(output[0][i], dry * share + 3 * dry * (1 - share), 2e-6) << i;
            share = std::clamp(share + (bypassed ? 1.0 : -1.0) / fade, 0.0, 1.0);
        }
    }
}

TEST_F(Driver, ABlockDuringPreparationIsDroppedAndLeavesTheOutputs)
{
    std::atomic<bool> held = false;
    std::atomic<bool> done = false;
    std::thread preparing(
        [&]
        {
            const MSynchronizerGuard guard(plugin.processLock);
            held = true;
            while (!done)
                std::this_thread::yield();
        });
    while (!held)
        std::this_thread::yield();
    outLeft.assign(4, 3);
    outRight.assign(4, 3);
    try
    {
        Run(4);
        ADD_FAILURE() << "the block was processed";
    }
    catch (const MException& exception)
    {
        EXPECT_EQ(exception.Message.ToUTF8(), "Could not acquire mutex.");
    }
    EXPECT_FLOAT_EQ(outLeft[0], 3);
    // A format's adapter gives the host silence instead of what stood in its buffers; what is added to stays.
    float* inputs[] = { left.data(), nullptr };
    float* outputs[] = { outLeft.data(), outRight.data() };
    EXPECT_FALSE(plugin.ProcessBlockOrSilence(inputs, outputs, 4, false));
    EXPECT_FLOAT_EQ(outLeft[0], 3);
    EXPECT_FALSE(plugin.ProcessBlockOrSilence(inputs, outputs, 3, true));
    EXPECT_THAT(outLeft, ElementsAre(0, 0, 0, 3));
    EXPECT_THAT(outRight, ElementsAre(0, 0, 0, 3));
    done = true;
    preparing.join();
    EXPECT_TRUE(plugin.ProcessBlockOrSilence(inputs, outputs, 4, true));
}

TEST_F(Driver, StateHoldsTheStandardSettingsInTheirForms)
{
    MAttribute tree("settings");
    plugin.Store({ .saving = 1, .item = &tree });
    EXPECT_EQ(tree.GetAttribute("Version").ToUTF8(), "328448");
    EXPECT_EQ(tree.GetAttribute("ChannelMode").ToUTF8(), "Left + Right");
    EXPECT_FALSE(tree.HasAttribute("MaxLFOBlockSize"));
    EXPECT_FALSE(tree.HasAttribute("Bypass"));
    EXPECT_EQ(tree.GetAttribute("parameterchoiceEnum").ToUTF8(), "Two");
    EXPECT_EQ(tree.GetAttribute("parameterramp").ToUTF8(), "5");

    plugin.bypass = true;
    plugin.maxLFOBlockSize = 512;
    plugin.Store({ .saving = 1, .item = &tree });
    EXPECT_EQ(tree.GetAttribute("Bypass").ToUTF8(), "1");
    EXPECT_EQ(tree.GetAttribute("MaxLFOBlockSize").ToUTF8(), "512");

    MAttribute other("settings");
    other.SetAttribute("parameterchoice", "2");
    other.SetAttribute("parameterramp", "99");
    plugin.Store({ .saving = 0, .item = &other });
    EXPECT_FALSE(plugin.bypass);
    EXPECT_EQ(plugin.maxLFOBlockSize, 256);
    EXPECT_EQ(effect->parameters[TestEffect::Choice].enumeration.index, 2)
        << "an index is read where no label is";
    EXPECT_DOUBLE_EQ(effect->parameters[TestEffect::Ramp].number.value, 10) << "clamped to the range";
}

TEST_F(Driver, StateIsAZlibStreamAndADamagedOneChangesNothing)
{
    MMemoryStream state;
    WritePluginState(plugin, state);
    state.Seek(0, MStream::Begin);
    unsigned char header[2] = {};
    ASSERT_EQ(state.Read(header, 2), 2);
    EXPECT_EQ(header[0], 0x78);
    EXPECT_EQ((header[0] * 256 + header[1]) % 31, 0) << "RFC 1950: the header's check";

    const int loadsBefore = effect->loadCount;
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(state.GetSize()));
    state.Seek(0, MStream::Begin);
    state.Read(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    for (const std::size_t length :
         { std::size_t{ 0 }, std::size_t{ 1 }, bytes.size() / 2, bytes.size() - 5 })
    {
        MMemoryStream part = MMemoryStream::Borrow(bytes.data(), static_cast<std::int32_t>(length));
        EXPECT_THROW(ReadPluginState(plugin, part), MException) << length << " bytes";
    }
    EXPECT_EQ(effect->loadCount, loadsBefore);
}

TEST_F(Driver, ParametersOutOfRangeAnswerNeutrally)
{
    EXPECT_EQ(plugin.GetParameterCount(), TestEffect::Count + 1) << "and the channel mode";
    MString text("kept");
    for (const std::int32_t index : { -1, TestEffect::Count + 1, 1000000 })
    {
        plugin.SetParameter(index, 0.5);
        EXPECT_EQ(plugin.GetParameter(index), 0);
        plugin.GetParameterName(text, index);
        EXPECT_EQ(text.ToUTF8(), "kept");
    }
    plugin.SetParameter(TestEffect::Plain, std::nan(""));
    EXPECT_TRUE(std::isfinite(plugin.GetParameter(TestEffect::Plain)));
}
