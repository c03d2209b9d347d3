// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "audio/stages/ChannelRouting.h"
#include "plugin/driver/MQuorvaneAudioEffectPlugin.h"
#include "tests/plugin/driver/TestEffect.h"

namespace
{
// An effect that doubles what it gets, late by nothing: what comes out doubled went through it.
class Doubling : public TestEffect
{
public:
    static std::int64_t Entry(MPlugin* instance, std::int64_t command, MPluginArgument* arguments)
    {
        if (instance == nullptr)
            instance = new Doubling;
        if (command == PluginCommand::GetInstance)
            return static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(instance));
        return instance->Dispatch(command, arguments);
    }
    void Process(const MProcessContext&, float** inputs, float** outputs, std::int32_t count) override
    {
        for (std::int32_t channel = 0; channel < channelGroups; ++channel)
            for (std::int32_t index = 0; index < count; ++index)
                outputs[channel][index] = 2 * inputs[channel][index];
    }
};

class Routing : public ::testing::Test
{
protected:
    void Make(ChannelMode mode, std::int32_t latency = 0, std::int32_t width = 2)
    {
        plugin = std::make_unique<MQuorvaneAudioEffectPlugin>();
        plugin->Initialize("Test", "Quorvane", &Doubling::Entry, 800, 560);
        effect = TestEffect::last;
        effect->latency = latency;
        plugin->buses.SetStride(width);
        if (width == 8)
            plugin->SetSurround(true);
        plugin->channelMode = mode;
    }

    std::vector<std::vector<float>> Run(std::vector<std::vector<float>> input)
    {
        plugin->InitProcessing();
        std::vector<std::vector<float>> output(input.size(), std::vector<float>(input[0].size(), -99));
        std::vector<float*> in, out;
        for (std::size_t channel = 0; channel < input.size(); ++channel)
        {
            in.push_back(input[channel].data());
            out.push_back(output[channel].data());
        }
        const std::vector<std::vector<float>> before = input;
        plugin->ProcessBlock(in.data(), out.data(), static_cast<std::int32_t>(input[0].size()), true);
        for (std::size_t channel = 0; channel < input.size(); ++channel)
            EXPECT_NEAR(input[channel][1], before[channel][1], 1e-12) << "the host's input stays";
        return output;
    }

    std::unique_ptr<MQuorvaneAudioEffectPlugin> plugin;
    TestEffect* effect = nullptr;
};
}   // namespace

// Every mode by every route, at both rates, replacing and adding, in place and crosswise, bypassed or not:
// each output channel is written with what belongs there, and no input is.
TEST_F(Routing, EveryChannelIsWrittenInEveryModeAndRoute)
{
    // In: left 1, right 0.25, so mid 0.625 and side 0.375; the effect doubles what it gets.
    constexpr double ofMode[7][2] = { { 2, 0.5 },        { 2, 0.25 }, { 1, 0.5 }, { 1.625, 0.875 },
                                      { 1.375, -0.125 }, { 2, 0.5 },  { 2, -0.5 } };
    constexpr std::int32_t effectChannels[7] = { 2, 1, 1, 1, 1, 2, 2 };
    enum Route
    {
        Stereo,
        MonoToStereo,
        OneInputTwice,
        MonoToMono,
        LeftOutputOnly,
        RightOutputOnly,
        OneOutputTwice,
        InPlace,
        Crosswise,
        NoInput,
        Surround,
        FiveOne,
        RouteCount
    };
    constexpr std::size_t count = 3000;
    std::vector<int> cases(7 * RouteCount * 8);
    std::iota(cases.begin(), cases.end(), 0);
    for (const int number : cases)
    {
        const int mode = number % 7;
        const int route = number / 7 % RouteCount;
        const bool upsampled = number / 7 / RouteCount % 2 == 1;
        const bool replacing = number / 7 / RouteCount / 2 % 2 == 0;
        const bool bypassed = number / 7 / RouteCount / 4 == 1;
        const bool wide = route == Surround || route == FiveOne;
        SCOPED_TRACE(::testing::Message() << InfoOf(static_cast<ChannelMode>(mode)).longName << ", route "
                                          << route << (upsampled ? ", upsampled" : "")
                                          << (replacing ? "" : ", adding") << (bypassed ? ", bypassed" : ""));
        Make(static_cast<ChannelMode>(mode), 100, wide ? 8 : 2);
        plugin->upsampling = upsampled ? 2 : 1;
        plugin->UpdateUpsamplingFactor();
        if (route == MonoToStereo)
            plugin->SetConnectedChannels(1, 2);
        if (route == MonoToMono)
            plugin->SetConnectedChannels(1, 1);
        if (route == FiveOne)
            plugin->SetConnectedChannels(6, 6);
        plugin->bypass = bypassed;
        plugin->InitProcessing();
        const std::size_t width = wide ? 8 : 2;
        std::vector<std::vector<float>> input, output;
        std::vector<float*> in, out;
        for (std::size_t channel = 0; channel < width; ++channel)
        {
            input.emplace_back(count, channel == 0 ? 1.0f : 0.25f * static_cast<float>(channel));
            output.emplace_back(count, replacing ? std::nanf("") : 100.0f);
        }
        for (std::size_t channel = 0; channel < width; ++channel)
        {
            in.push_back(input[channel].data());
            out.push_back(output[channel].data());
        }
        if (route == InPlace || route == Crosswise)
        {
            out = route == InPlace ? in : std::vector<float*>{ in[1], in[0] };
            if (!replacing)
                continue;   // a host can't add to what it wants read
        }
        const bool mono = route == MonoToStereo || route == OneInputTwice || route == MonoToMono;
        if (mono)
            in[1] = route == OneInputTwice ? in[0] : nullptr;
        if (route == LeftOutputOnly || route == MonoToMono)
            out[1] = nullptr;
        if (route == RightOutputOnly)
            out[0] = nullptr;
        if (route == OneOutputTwice)
            out[1] = out[0];
        const auto before = input;
        plugin->ProcessBlock(route == NoInput ? nullptr : in.data(), out.data(), count, replacing);

        if (route != InPlace && route != Crosswise)
        {
            EXPECT_TRUE(input == before) << "the host's inputs stay";
        }
        const std::size_t latency = static_cast<std::size_t>(plugin->TotalLatency());
        for (std::size_t channel = 0; channel < (route == FiveOne ? 6 : width); ++channel)
        {
            if (out[channel] == nullptr || (route == OneOutputTwice && channel == 1))
                continue;
            double expected = channel < 2 ? ofMode[mode][channel] : input[channel][0];
            if (mono)
                expected = 2;   // no sides: the effect works on the one channel in every mode
            if (bypassed)
                expected = before[mono ? 0 : channel][0];
            if (route == NoInput)
                expected = 0;
            // The filters of upsampling pass a constant within 0.1 %.
            EXPECT_NEAR(out[channel][count - 1] - (replacing ? 0 : 100), expected, upsampled ? 2e-3 : 1e-5)
                << "channel " << channel;
            for (std::size_t i = 0; i < count; ++i)
                ASSERT_TRUE(std::isfinite(out[channel][i])) << "channel " << channel << " at " << i;
            if (bypassed && latency > 0)
            {
                EXPECT_EQ(out[channel][latency - 1], replacing ? 0.0f : 100.0f) << "as late as the effect";
            }
        }
        if (!bypassed && !mono && route != NoInput)
        {
            EXPECT_EQ(effect->channelGroups, effectChannels[mode]);
        }
    }
}

TEST_F(Routing, WhatTheEffectLeavesOutRunsAsLate)
{
    std::vector<float> ramp(4000);
    std::iota(ramp.begin(), ramp.end(), 0.0f);
    for (const ChannelMode mode : { ChannelMode::Left, ChannelMode::Right })
    {
        Make(mode, 2048);
        const auto output = Run({ ramp, ramp });
        const auto& other = output[mode == ChannelMode::Left ? 1 : 0];
        EXPECT_FLOAT_EQ(other[2047], 0);
        EXPECT_FLOAT_EQ(other[2048 + 100], 100);
    }
}

TEST_F(Routing, SurroundSelectsChannels)
{
    std::vector<std::vector<float>> input;
    for (int channel = 0; channel < 8; ++channel)
        input.emplace_back(300, static_cast<float>(channel + 1));
    Make(ChannelMode::Surround, 100, 8);
    auto output = Run(input);
    EXPECT_EQ(effect->channelGroups, 8);
    EXPECT_FLOAT_EQ(output[7][10], 16) << "all of them are the effect's";

    Make(ChannelMode::Surround, 100, 8);
    plugin->enabledChannels = { false, true, false, false, true, false, false, false };
    output = Run(input);
    EXPECT_EQ(effect->channelGroups, 2);
    EXPECT_FLOAT_EQ(output[1][0], 4);
    EXPECT_FLOAT_EQ(output[4][0], 10);
    EXPECT_NEAR(output[0][99], 0, 1e-9) << "the others pass, as late as the effect";
    EXPECT_FLOAT_EQ(output[0][100], 1);
    EXPECT_FLOAT_EQ(output[7][100], 8);
}

TEST_F(Routing, ModesAreStoredByTheirNames)
{
    Make(ChannelMode::Side);
    MAttribute tree("settings");
    plugin->Store({ .saving = 1, .item = &tree });
    EXPECT_EQ(tree.GetAttribute("ChannelMode").ToUTF8(), "Stereo");
    plugin->channelMode = ChannelMode::LeftAndRight;
    plugin->Store({ .saving = 0, .item = &tree });
    EXPECT_EQ(plugin->channelMode, ChannelMode::Side);
    tree.SetAttribute("ChannelMode", "6");
    plugin->Store({ .saving = 0, .item = &tree });
    EXPECT_EQ(plugin->channelMode, ChannelMode::LeftAndInvertedRight) << "numbers are read, too";
    tree.SetAttribute("EnableSurroundProcessing", "1");
    plugin->Store({ .saving = 0, .item = &tree });
    EXPECT_EQ(plugin->channelMode, ChannelMode::LeftAndRight) << "a stereo plug-in has no surround";

    Make(ChannelMode::Surround, 0, 8);
    plugin->enabledChannels[2] = false;
    MAttribute wide("settings");
    plugin->Store({ .saving = 1, .item = &wide });
    EXPECT_EQ(wide.GetAttribute("SurroundChannelsEnable").ToUTF8(), "11011111");
    wide.SetAttribute("SurroundChannelsEnable", "01");
    plugin->Store({ .saving = 0, .item = &wide });
    EXPECT_FALSE(plugin->enabledChannels[0]);
    EXPECT_FALSE(plugin->enabledChannels[2]) << "a short text leaves the rest";
}

namespace
{
// Adds three times its second bus to the first.
class SideChained : public TestEffect
{
public:
    SideChained() { description.inputBusCount = 2; }
    static std::int64_t Entry(MPlugin* instance, std::int64_t command, MPluginArgument* arguments)
    {
        return TestEffect::Entry(instance == nullptr ? new SideChained : instance, command, arguments);
    }
    void Process(const MProcessContext&, float** inputs, float** outputs, std::int32_t count) override
    {
        for (std::int32_t channel = 0; channel < channelGroups; ++channel)
            for (std::int32_t index = 0; index < count; ++index)
                outputs[channel][index] = inputs[channel][index] + 3 * inputs[2 + channel][index];
    }
};
}   // namespace

TEST(SideChains, ReachTheEffectBehindTheMainBusAtAnyStrideAndRate)
{
    MQuorvaneAudioEffectPlugin plugin;
    plugin.Initialize("Test", "Quorvane", &SideChained::Entry, 800, 560);
    for (const std::int32_t stride : { 2, 8 })
        for (const std::int32_t factor : { 1, 2 })
            for (const bool present : { true, false })
                for (const bool bypassed : { false, true })
                {
                    plugin.buses.SetStride(stride);
                    plugin.upsampling = factor;
                    plugin.UpdateUpsamplingFactor();
                    plugin.bypass = bypassed;
                    plugin.InitProcessing();
                    constexpr std::size_t count = 2000;
                    std::vector<std::vector<float>> input, output(2, std::vector<float>(count, -9.0f));
                    for (const float level : { 1.0f, 0.25f, 0.5f, 0.125f })
                        input.emplace_back(count, level);
                    std::vector<float*> in(16), out(16);
                    for (std::size_t channel = 0; channel < 2; ++channel)
                    {
                        in[channel] = input[channel].data();
                        if (present)
                            in[static_cast<std::size_t>(stride) + channel] = input[2 + channel].data();
                        out[channel] = output[channel].data();
                    }
                    plugin.ProcessBlock(in.data(), out.data(), count, true);
                    const float side = present && !bypassed ? 3.0f : 0.0f;
                    EXPECT_NEAR(output[0].back(), 1 + side * 0.5f, 0.01) << stride << " " << factor;
                    EXPECT_NEAR(output[1].back(), 0.25 + side * 0.125f, 0.01) << stride << " " << factor;
                }
    const auto names = [&plugin]
    {
        std::string all;
        for (int index = 0; index < plugin.buses.InputNames().Count(); ++index)
            all += plugin.buses.InputNames()[index].ToUTF8() + ",";
        return all;
    };
    EXPECT_EQ(names(), "In L,In R,Sidechain L,Sidechain R,");
    plugin.buses.SetUp(BusLayout::StereoWidth, 3);
    EXPECT_EQ(names(), "In L,In R,Sidechain L 1,Sidechain R 1,Sidechain L 2,Sidechain R 2,");
    plugin.SetSurround(true);
    EXPECT_EQ(plugin.buses.InputNames().Count(), 16);
    EXPECT_EQ(plugin.buses.InputNames()[15].ToUTF8(), "Sidechain 7");
    EXPECT_EQ(plugin.buses.OutputNames()[7].ToUTF8(), "Out 7");
}
