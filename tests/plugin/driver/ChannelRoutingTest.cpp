// SPDX-License-Identifier: GPL-3.0-or-later
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "audio/stages/ChannelRouting.h"
#include "plugin/driver/MQuorvaneAudioEffectPlugin.h"
#include "tests/plugin/driver/TestEffect.h"

namespace
{
struct Stereo
{
    std::vector<float> left, right;
};

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
        plugin->groupStride = width;
        if (width == 8)
        {
            plugin->channelsPerGroup = 8;
            for (MStringList* names : { &plugin->inputNames, &plugin->outputNames })
                while (names->Count() < 8)
                    names->Add("More");
        }
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

TEST_F(Routing, EachModeHandsTheEffectItsChannels)
{
    // In: left 1, right 0.25, so mid 0.625 and side 0.375; the effect doubles what it gets.
    struct Case
    {
        ChannelMode mode;
        std::int32_t channels;
        double left, right;
    };
    const Case cases[] = {
        { ChannelMode::LeftAndRight, 2, 2, 0.5 },
        { ChannelMode::Left, 1, 2, 0.25 },
        { ChannelMode::Right, 1, 1, 0.5 },
        { ChannelMode::Mid, 1, 1.25 + 0.375, 1.25 - 0.375 },
        { ChannelMode::Side, 1, 0.625 + 0.75, -0.125 },
        { ChannelMode::MidAndSide, 2, 2, 0.5 },
        { ChannelMode::LeftAndInvertedRight, 2, 2, -0.5 },
    };
    for (const Case& each : cases)
    {
        SCOPED_TRACE(InfoOf(each.mode).longName);
        Make(each.mode);
        const auto output = Run({ std::vector<float>(8, 1.0f), std::vector<float>(8, 0.25f) });
        EXPECT_EQ(effect->channelGroups, each.channels);
        EXPECT_NEAR(output[0][3], each.left, 1e-6);
        EXPECT_NEAR(output[1][3], each.right, 1e-6);
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

TEST_F(Routing, AMonoHostIsNotConverted)
{
    Make(ChannelMode::MidAndSide);
    plugin->connectedInputs = 1;
    plugin->connectedOutputs = 1;
    plugin->InitProcessing();
    std::vector<float> in(8, 1.0f), out(8), discarded(8);
    float* inputs[] = { in.data(), nullptr };
    float* outputs[] = { out.data(), discarded.data() };
    plugin->ProcessBlock(inputs, outputs, 8, true);
    EXPECT_NEAR(out[3], 2, 1e-6);
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
