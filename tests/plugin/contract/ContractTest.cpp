// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "plugin/contract/MPluginHost.h"
#include "plugin/contract/MRandom.h"
#include "tests/plugin/driver/TestEffect.h"

namespace
{
struct Watched : MObject
{
    explicit Watched(int& deaths) : count(deaths) {}
    ~Watched() override { ++count; }
    int& count;
};
}   // namespace

TEST(PluginContract, TheEntryMakesAnEffectFromNothing)
{
    MPluginArguments arguments;
    const std::int64_t description =
        TestEffect::Entry(nullptr, PluginCommand::GetDescription, arguments.Records());
    ASSERT_NE(description, 0);
    EXPECT_EQ(reinterpret_cast<MPluginDescription*>(description)->parameterCount, TestEffect::Count);
    delete TestEffect::last;

    MPluginSystem system;
    std::unique_ptr<MAudioEffectPluginHost> host;
    EXPECT_EQ(system.CreatePlugin("Test", nullptr, host), MPluginSystem::NoEntry);
    EXPECT_EQ(system.CreatePlugin(
                  "Test", [](MPlugin*, std::int64_t, MPluginArgument*) { return std::int64_t{ 0 }; }, host),
              MPluginSystem::NotConnected);
    ASSERT_EQ(system.CreatePlugin("Test", &TestEffect::Entry, host), MPluginSystem::Success);
    EXPECT_EQ(host->QueryTailSize(), 77);
    EXPECT_EQ(TestEffect::last->SendToHost(HostCommand::Query), -1);
    EXPECT_EQ(TestEffect::last->SendToHost(HostCommand::ParameterChangedInside), 0) << "an empty handler";
    EXPECT_EQ(TestEffect::last->SendToHost(8), -1);
    host.reset();
    EXPECT_EQ(TestEffect::last, nullptr) << "the host owns the effect";
}

TEST(PluginContract, UnknownCommandsAnswerMinusOneAndOwnedArgumentsDie)
{
    TestEffect effect;
    int deaths = 0;
    for (const std::int64_t command : { 7, 8, 9, 10, 16, 17, 18, 19, 21, 99, 108, -1 })
    {
        MPluginArguments arguments;
        arguments.SetOwned(2, new Watched(deaths));
        EXPECT_EQ(effect.Dispatch(command, arguments.Records()), -1) << command;
    }
    EXPECT_EQ(deaths, 12);
}

TEST(PluginContract, AParameterCommandUpdatesWhereItMust)
{
    TestEffect effect;
    const auto send = [&effect](std::int32_t index)
    {
        effect.updateCount = 0;
        MPluginArguments arguments;
        arguments.SetInteger(0, index);
        EXPECT_EQ(effect.Dispatch(PluginCommand::ParameterChange, arguments.Records()), 0);
        return effect.updateCount;
    };
    EXPECT_EQ(send(TestEffect::Plain), 1);
    EXPECT_EQ(send(TestEffect::Silent), 0);
    EXPECT_EQ(send(-1), 1);
    EXPECT_EQ(send(TestEffect::Count), 1);
    EXPECT_EQ(effect.changes, (std::vector<std::int32_t>{ 1, 3, -1, 5 }));
}

TEST(PluginContract, SettingsReturnThroughATree)
{
    TestEffect effect;
    effect.parameters[TestEffect::Plain].number.value = 0.123456789012;
    effect.parameters[TestEffect::Toggle].boolean.value = true;
    MAttribute node("settings");
    EXPECT_EQ(effect.SaveSettings(node), 1);
    TestEffect other;
    EXPECT_EQ(other.LoadSettings(node), 1);
    EXPECT_DOUBLE_EQ(other.parameters[TestEffect::Plain].number.value, 0.123456789012);
    EXPECT_DOUBLE_EQ(other.parameters[TestEffect::Plain].number.previousValue, 0.123456789012);
    EXPECT_TRUE(other.parameters[TestEffect::Toggle].boolean.value);
    MAttribute empty("settings");
    other.LoadSettings(empty);
    EXPECT_TRUE(other.parameters[TestEffect::Toggle].boolean.value) << "a missing key keeps the value";
    MAttribute hostile("settings");
    hostile.SetAttribute("parameterplain", "nan");
    hostile.SetAttribute("parameterramp", "-1e999");
    hostile.SetAttribute("parameterchoice", "-99999999999");
    other.LoadSettings(hostile);
    EXPECT_DOUBLE_EQ(other.parameters[TestEffect::Plain].number.value, 0.123456789012);
    EXPECT_GE(other.parameters[TestEffect::Ramp].number.value, 0);
    EXPECT_EQ(other.parameters[TestEffect::Choice].enumeration.index, 0);
}

TEST(PluginContract, RandomizingStaysInRangeAndFollowsItsAmount)
{
    MRandom::Seed(42);
    TestEffect effect;
    for (int round = 0; round < 200; ++round)
    {
        effect.parameters[TestEffect::Ramp].number.value = 5.0;
        effect.Randomize(0.1);
        EXPECT_NEAR(effect.parameters[TestEffect::Ramp].number.value, 5, 1.0000001) << "a tenth of the range";
        effect.Randomize(1);
        EXPECT_GE(effect.parameters[TestEffect::Ramp].number.value, 0);
        EXPECT_LE(effect.parameters[TestEffect::Ramp].number.value, 10);
        EXPECT_LT(static_cast<unsigned>(effect.parameters[TestEffect::Choice].enumeration.index), 3u);
    }
    MRandom::Seed(0);
    EXPECT_EQ(MRandom::Next15(), (2531011u >> 16) & 0x7FFF);
}
