// SPDX-License-Identifier: GPL-3.0-or-later
// An effect with a parameter of every kind, driven by commands as a driver does it.
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "plugin/contract/ChangeListener.h"
#include "plugin/contract/MAudioEffectPlugin.h"
#include "plugin/contract/MPluginArgument.h"
#include "plugin/contract/MPluginHost.h"
#include "plugin/contract/MRandom.h"
#include "state/tree/MAttribute.h"
#include "state/tree/MStoreParams.h"

using ::testing::ElementsAre;

namespace
{
class Special : public SpecialParameterObject
{
public:
    void Reinitialize() override { ++reinitialized; }
    void ResetToDefault() override { ++reset; }
    int reinitialized = 0;
    int reset = 0;
};

// Writes down what is asked of it.
class Full : public MAudioEffectPlugin
{
public:
    enum Parameter
    {
        FirstGroup,
        Linear,
        Square,
        Fourth,
        Whole,
        Steps,
        Choice,
        Toggle,
        Label,
        SecondGroup,
        Fixed,
        Count
    };

    Full()
    {
        static constexpr const char* names[] = { "One", "Two", "Three" };
        parameters[FirstGroup] = MPluginParameterInfo::Group("First");
        parameters[FirstGroup].group.enabled = &groupEnabled;
        parameters[Linear] = MPluginParameterInfo::Float("Linear", " 2linear 10", -2, 6, 1);
        parameters[Square] = MPluginParameterInfo::Float("Square", "square", 10, 20, 12);
        parameters[Square].curve = 1;
        parameters[Fourth] = MPluginParameterInfo::Float("Fourth", "fourth", 0, 16, 1);
        parameters[Fourth].curve = 2;
        parameters[Whole] = MPluginParameterInfo::Float("Whole", "whole", 0.5, 9.4, 3)
                                .WithFlags(ParameterFlag::RandomizedToWhole);
        parameters[Steps].type = ParameterType::Integer;
        parameters[Steps].id = "steps";
        parameters[Steps].integer.minimum = -5;
        parameters[Steps].integer.maximum = 5;
        parameters[Choice] = MPluginParameterInfo::Enumeration("Choice", "choice", names, 3, 1);
        parameters[Toggle] = MPluginParameterInfo::Boolean("Toggle", "toggle", true);
        parameters[Label].type = ParameterType::Text;
        parameters[Label].id = "label";
        parameters[SecondGroup] = MPluginParameterInfo::Group("Second");
        parameters[Fixed] = MPluginParameterInfo::Float("Fixed", "fixed", 0, 1, 0.5)
                                .WithFlags(0, ParameterFlag::Randomizable | ParameterFlag::NeedsUpdate);
        parameters[Linear].owner = &special;
        specials[0].owner = &special;
        description.parameters = parameters.data();
        description.parameterCount = Count;
        description.specialParameters = specials.data();
        description.specialParameterCount = 1;
        last = this;
    }
    ~Full() override { last = nullptr; }

    static std::int64_t Entry(MPlugin* instance, std::int64_t command, MPluginArgument* arguments)
    {
        if (instance == nullptr)
            instance = new Full;
        return instance->Dispatch(command, arguments);
    }

    void Say(const std::string& text) { said.push_back(text); }
    void OnConnected() override { Say("connected"); }
    void OnParameterChange(std::int32_t index) override { Say("change " + std::to_string(index)); }
    void Update() override { Say("update"); }
    void OnSettingsLoaded() override { Say("loaded"); }
    void Store(const MStoreParams& params) override
    {
        Say(params.saving == 1 ? "save" : "load");
        if (params.saving == 1)
            params.item->SetAttribute("own", "1");
    }
    void CreateEditor(MControl* parent) override
    {
        Say("editor " + std::to_string(reinterpret_cast<std::intptr_t>(parent)));
    }
    void DestroyEditor(MControl* editor) override
    {
        Say("no editor " + std::to_string(reinterpret_cast<std::intptr_t>(editor)));
    }
    void OnCommand13() override { Say("13"); }
    std::int32_t OnCommand14(std::int64_t value) override { return static_cast<std::int32_t>(value); }
    std::int64_t OnCommand20(std::int64_t first, std::int64_t second) override { return 10 * first + second; }
    std::int64_t InitProcessing(std::int32_t channels, double rate) override
    {
        Say("init " + std::to_string(channels) + " " + std::to_string(static_cast<int>(rate)));
        return 42;
    }
    void InitProcessingGUI() override { Say("init GUI"); }
    void Process(const MProcessContext& context, float** inputs, float** outputs, std::int32_t n) override
    {
        Say("process " + std::to_string(static_cast<int>(context.tempo)));
        for (std::int32_t i = 0; i < n; ++i)
            outputs[0][i] = 2 * inputs[0][i];
    }
    void ProcessUpdate() override { Say("tick"); }
    void SetOption(std::int32_t option) override { Say("option " + std::to_string(option)); }
    std::int32_t GetTailSize() override { return 77; }

    static inline Full* last = nullptr;
    std::array<MPluginParameterInfo, Count> parameters;
    std::array<MPluginSpecialParameterInfo, 1> specials;
    MRelaxed<bool> groupEnabled = true;
    Special special;
    std::vector<std::string> said;
};

class Driver : public MPluginDriver
{
public:
    std::int64_t OnDestroyTemporaryAdapters() override { return 14; }
    std::int64_t OnRebuildParameters() override { return 15; }
    std::int64_t OnRefreshAdapters() override { return 16; }
    std::int64_t OnBlockLimitChanged() override { return 17; }
};

struct Watched : MObject
{
    explicit Watched(int& deaths) : count(deaths) {}
    ~Watched() override { ++count; }
    int& count;
};

std::vector<std::string> Take(Full& effect)
{
    return std::exchange(effect.said, {});
}
}   // namespace

TEST(Contract, AHostMakesConnectsAndEndsItsEffect)
{
    MPluginSystem system;
    std::unique_ptr<MAudioEffectPluginHost> host;
    EXPECT_EQ(system.CreatePlugin("Test", nullptr, host), MPluginSystem::NoEntry);
    const auto refusal = [](MPlugin*, std::int64_t, MPluginArgument*)
    {
        return std::int64_t{ 0 };
    };
    EXPECT_EQ(system.CreatePlugin("Test", refusal, host), MPluginSystem::NotConnected);
    EXPECT_EQ(host, nullptr);
    ASSERT_EQ(system.CreatePlugin("Test", &Full::Entry, host), MPluginSystem::Success);
    Full& effect = *Full::last;
    EXPECT_THAT(Take(effect), ElementsAre("connected"));
    EXPECT_EQ(host->description, &effect.description);
    EXPECT_EQ(host->name.ToUTF8(), "Test");
    EXPECT_EQ(host->QueryTailSize(), 77);
    host->SendProcessUpdate();
    EXPECT_THAT(Take(effect), ElementsAre("tick"));

    for (const std::int64_t command : { 4, 5, 6, 7 })
        EXPECT_EQ(effect.SendToHost(command), 0) << "nobody drives it";
    Driver driver;
    host->driver = &driver;
    for (const std::int64_t command : { 4, 5, 6, 7 })
        EXPECT_EQ(effect.SendToHost(command), 10 + command);
    ChangeListener listener(effect.Changes());
    EXPECT_EQ(effect.SendToHost(HostCommand::EqualizerParametersChanged), 0);
    EXPECT_EQ(effect.SendToHost(HostCommand::ParameterChangedInside, 6), 0);
    EXPECT_TRUE(listener.Drain() && listener.Has(Change::Response) && !listener.Has(Change::ParameterGroup));
    EXPECT_THAT(listener.Bands(), ElementsAre(6));
    EXPECT_EQ(effect.SendToHost(HostCommand::ParameterGroupLoaded), 0);
    EXPECT_TRUE(listener.Drain() && listener.Has(Change::ParameterGroup));
    EXPECT_EQ(effect.SendToHost(HostCommand::Query), -1);
    EXPECT_EQ(effect.SendToHost(8), -1);
    host.reset();
    EXPECT_EQ(Full::last, nullptr);

    Full detached;
    EXPECT_EQ(detached.SendToHost(HostCommand::RebuildParameters), -1);
}

TEST(Contract, EachCommandReachesItsOperationWithItsArguments)
{
    Full effect;
    const auto send = [&effect](std::int64_t command, std::int64_t a0 = 0, std::int64_t a1 = 0,
                                std::int64_t a2 = 0, std::int64_t a3 = 0)
    {
        MPluginArguments arguments;
        arguments.SetInteger(0, a0).SetInteger(1, a1).SetInteger(2, a2).SetInteger(3, a3);
        return effect.Dispatch(command, arguments.Records());
    };
    const auto at = [](const void* object)
    {
        return static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(object));
    };
    double rate = 48000;
    double amount = 0.25;
    MProcessContext context;
    context.tempo = 99;
    std::array<float, 3> in{ 1, 2, 3 }, out{};
    float* inputs[] = { in.data() };
    float* outputs[] = { out.data() };
    MAttribute node("settings");

    EXPECT_EQ(send(PluginCommand::GetDescription), at(&effect.description));
    EXPECT_EQ(send(PluginCommand::CreateEditor, 11), 0);
    EXPECT_EQ(send(PluginCommand::DestroyEditor, 12), 0);
    EXPECT_EQ(send(PluginCommand::Command13), 0);
    EXPECT_EQ(send(PluginCommand::Command14, 3, 9), 3);
    EXPECT_EQ(send(PluginCommand::Command20, 3, 4), 34);
    EXPECT_THAT(Take(effect), ElementsAre("editor 11", "no editor 12", "13"));
    EXPECT_EQ(send(PluginCommand::ParameterChange, Full::Linear), 0);
    EXPECT_EQ(send(PluginCommand::ParameterChange, Full::Fixed), 0);
    EXPECT_EQ(send(PluginCommand::ParameterChange, -1), 0);
    EXPECT_EQ(send(PluginCommand::ParameterChange, Full::Count), 0);
    EXPECT_THAT(Take(effect),
                ElementsAre("change 1", "update", "change 10", "change -1", "update", "change 11", "update"));
    EXPECT_EQ(send(PluginCommand::SaveSettings, at(&node)), 1);
    EXPECT_EQ(send(PluginCommand::LoadSettings, at(&node)), 1);
    EXPECT_THAT(Take(effect), ElementsAre("save", "load", "loaded", "update"));
    effect.parameters[Full::Linear].number.value = 2.5;
    EXPECT_EQ(send(PluginCommand::InitProcessing, 2, at(&rate)), 42);
    EXPECT_EQ(effect.parameters[Full::Linear].number.previousValue, 2.5) << "no ramp after a preparation";
    EXPECT_EQ(send(PluginCommand::Process, at(&context), at(inputs), at(outputs), 3), 0);
    EXPECT_THAT(out, ElementsAre(2, 4, 6));
    EXPECT_EQ(send(PluginCommand::GetChannelRatio), 1);
    EXPECT_EQ(send(PluginCommand::GetLatency), 0);
    EXPECT_EQ(send(PluginCommand::SetOption, 5), 0);
    EXPECT_EQ(send(PluginCommand::GetTailSize), 77);
    EXPECT_EQ(send(PluginCommand::InitProcessingGUI), 0);
    EXPECT_EQ(send(PluginCommand::Randomize, at(&amount)), 0);
    EXPECT_THAT(Take(effect),
                ElementsAre("init 2 48000", "update", "process 99", "option 5", "init GUI", "update"));

    int deaths = 0;
    for (const std::int64_t command : { 7, 8, 9, 10, 16, 17, 18, 19, 21, 99, 108, -1 })
    {
        MPluginArguments arguments;
        arguments.SetOwned(2, new Watched(deaths));
        EXPECT_EQ(effect.Dispatch(command, arguments.Records()), -1) << command;
    }
    EXPECT_EQ(deaths, 12) << "what a caller hands over goes with the call, whatever the answer";
}

TEST(Contract, SettingsAndGroupsReturnThroughATree)
{
    Full effect;
    effect.parameters[Full::Linear].number.value = 0.123456789012;
    effect.parameters[Full::Steps].integer.value = -4;
    effect.parameters[Full::Choice].enumeration.index = 0;
    effect.parameters[Full::Toggle].boolean.value = false;
    effect.parameters[Full::Label].textValue = "a text";
    effect.parameters[Full::Fixed].number.value = 0.75;
    MAttribute node("settings");
    effect.SaveSettings(node);
    MAttribute group("group");
    effect.SaveParameterGroup(Full::FirstGroup, group);
    EXPECT_EQ(group.GetAttribute("linear").ToUTF8(), "0.123456789012") << "the number around it is gone";
    EXPECT_FALSE(group.HasAttribute("fixed")) << "the next group is another one";

    const auto expectSame = [&effect](const Full& other, bool withSecondGroup)
    {
        EXPECT_EQ(other.parameters[Full::Linear].number.value, 0.123456789012);
        EXPECT_EQ(other.parameters[Full::Linear].number.previousValue, 0.123456789012);
        EXPECT_EQ(other.parameters[Full::Steps].integer.value, -4);
        EXPECT_EQ(other.parameters[Full::Choice].enumeration.index, 0);
        EXPECT_FALSE(other.parameters[Full::Toggle].boolean.value);
        EXPECT_EQ(other.parameters[Full::Label].textValue.ToUTF8(), "a text");
        EXPECT_EQ(other.parameters[Full::Fixed].number.value, withSecondGroup ? 0.75 : 0.5);
        EXPECT_EQ(other.parameters[Full::Square].number.value, effect.parameters[Full::Square].number.value);
    };
    Full loaded;
    loaded.LoadSettings(node);
    expectSame(loaded, true);
    Full grouped;
    grouped.LoadParameterGroup(Full::FirstGroup, group);
    expectSame(grouped, false);
    EXPECT_THAT(Take(grouped), ElementsAre("loaded", "update"));

    // What is missing, damaged or out of range harms nothing.
    MAttribute empty("settings");
    loaded.LoadSettings(empty);
    expectSame(loaded, true);
    MAttribute hostile("settings");
    hostile.SetAttribute("parameter 2linear 10", "nan");
    hostile.SetAttribute("parametersquare", "-1e300");
    hostile.SetAttribute("parameterfourth", "1e300");
    hostile.SetAttribute("parametersteps", "99999999999");
    hostile.SetAttribute("parameterchoiceEnum", "Four");
    hostile.SetAttribute("parameterchoice", "99999999999");
    loaded.LoadSettings(hostile);
    EXPECT_EQ(loaded.parameters[Full::Linear].number.value, 0.123456789012);
    EXPECT_EQ(loaded.parameters[Full::Square].number.value, 10);
    EXPECT_EQ(loaded.parameters[Full::Fourth].number.value, 16);
    EXPECT_EQ(loaded.parameters[Full::Steps].integer.value, 5);
    EXPECT_EQ(loaded.parameters[Full::Choice].enumeration.index, 2) << "an index where the label is unknown";
    hostile.SetAttribute("parameterchoice", "-3");
    loaded.LoadSettings(hostile);
    EXPECT_EQ(loaded.parameters[Full::Choice].enumeration.index, 0);
}

TEST(Contract, RandomizingDrawsEvenlyOrMovesByItsAmount)
{
    constexpr int rounds = 4000;
    Full effect;
    MRandom::Seed(42);
    double linear = 0, square = 0, fourth = 0;
    std::array<int, 3> choices{};
    std::array<int, 11> steps{};
    int on = 0, groupOn = 0;
    for (int round = 0; round < rounds; ++round)
    {
        effect.Randomize(1);
        linear += (effect.parameters[Full::Linear].number.value + 2) / 8 / rounds;
        square += std::sqrt((effect.parameters[Full::Square].number.value - 10) / 10) / rounds;
        fourth += std::pow(effect.parameters[Full::Fourth].number.value / 16, 0.25) / rounds;
        EXPECT_EQ(effect.parameters[Full::Linear].number.previousValue,
                  effect.parameters[Full::Linear].number.value);
        const double whole = effect.parameters[Full::Whole].number.value;
        EXPECT_TRUE(whole == std::floor(whole) || whole == 0.5) << whole;
        EXPECT_LE(whole, 9.4);
        ++choices.at(static_cast<std::size_t>(effect.parameters[Full::Choice].enumeration.index.Get()));
        ++steps.at(static_cast<std::size_t>(effect.parameters[Full::Steps].integer.value + 5));
        on += effect.parameters[Full::Toggle].boolean.value ? 1 : 0;
        groupOn += effect.groupEnabled ? 1 : 0;
    }
    for (const double mean : { linear, square, fourth })
        EXPECT_NEAR(mean, 0.5, 0.03) << "evenly along the curve";
    for (const int hits : choices)
        EXPECT_NEAR(hits, rounds / 3, rounds / 20);
    for (std::size_t step = 1; step < 10; ++step)
        EXPECT_NEAR(steps[step], rounds / 10, rounds / 30) << step;
    EXPECT_NEAR(on, rounds / 2, rounds / 15);
    EXPECT_NEAR(groupOn, rounds / 2, rounds / 15);
    EXPECT_NEAR(effect.special.reinitialized, rounds / 2, rounds / 15);
    EXPECT_EQ(effect.parameters[Full::Fixed].number.value, 0.5) << "takes no part";

    effect.parameters[Full::Toggle].boolean.value = true;
    effect.groupEnabled = true;
    const int special = effect.special.reinitialized;
    double furthest = 0, up = 0;
    int furthestStep = 0;
    for (int round = 0; round < rounds; ++round)
    {
        effect.parameters[Full::Linear].number.value = 2;
        effect.parameters[Full::Square].number.value = 10;
        effect.parameters[Full::Steps].integer.value = 0;
        effect.Randomize(0.2);
        const double moved = (effect.parameters[Full::Linear].number.value - 2) / 8;
        furthest = std::max(furthest, std::fabs(moved));
        up += (moved > 0 ? 1.0 : 0.0) / rounds;
        EXPECT_LE(effect.parameters[Full::Square].number.value, 10 + 10 * 0.04 + 1e-9);
        furthestStep = std::max(furthestStep, std::abs(effect.parameters[Full::Steps].integer.value.Get()));
    }
    EXPECT_NEAR(furthest, 0.2, 0.002);
    EXPECT_NEAR(up, 0.5, 0.05);
    EXPECT_EQ(furthestStep, 2) << "a fifth of ten";
    EXPECT_TRUE(effect.parameters[Full::Toggle].boolean.value && effect.groupEnabled)
        << "below one half nothing is switched";
    EXPECT_EQ(effect.special.reinitialized, special);
    effect.ResetSpecial();
    EXPECT_EQ(effect.special.reset, 1);

    MRandom::Seed(0);
    EXPECT_EQ(MRandom::Next15(), (2531011u >> 16) & 0x7FFF);
    EXPECT_EQ(MRandom::Next15(), ((2531011u * 214013u + 2531011u) >> 16) & 0x7FFF);
}

TEST(Contract, UpdateRequestsAndSuspensionsAreCounted)
{
    Full effect;
    EXPECT_FALSE(effect.description.TakeUpdateRequest());
    effect.description.RequestUpdate();
    effect.description.RequestUpdate();
    EXPECT_TRUE(effect.description.TakeUpdateRequest());
    EXPECT_FALSE(effect.description.TakeUpdateRequest());
    EXPECT_EQ(effect.description.flags, EffectFlag::Default) << "the other flags stay";
    {
        const SuspendGuard outer(effect);
        const SuspendGuard inner(effect);
        EXPECT_EQ(effect.suspendCount, 2);
    }
    EXPECT_EQ(effect.suspendCount, 0);
    EXPECT_TRUE(effect.description.environment->editorVisible()) << "without a driver somebody may look";
}
