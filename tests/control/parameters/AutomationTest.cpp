// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "control/parameters/AutomationList.h"
#include "control/parameters/ParameterAdapters.h"
#include "control/values/MValueList.h"
#include "control/values/MValueQuantities.h"
#include "foundation/text/MException.h"

namespace
{
class Effect : public MPlugin
{
public:
    explicit Effect(std::vector<MPluginParameterInfo> table) : records(std::move(table))
    {
        description.parameters = records.data();
        description.parameterCount = static_cast<std::int32_t>(records.size());
    }
    void OnParameterChange(std::int32_t index) override { changed = index; }
    std::vector<MPluginParameterInfo> records;
    std::int32_t changed = -1;
};

class Owner : public AutomationOwner
{
public:
    void SendAutomation(std::int32_t index, double value) override { sent.emplace_back(index, value); }
    void MarkParameterChanged(std::int32_t) override { ++requests; }
    void MarkParameterChangedInside(std::int32_t) override { ++requests; }
    std::vector<std::pair<std::int32_t, double>> sent;
    int requests = 0;
};

class Many : public AutomationAdapter
{
public:
    Many()
    {
        targetCount = 70;
        owned = false;
    }
};

constexpr const char* names[] = { "Low", "Middle", "High" };

std::vector<MPluginParameterInfo> Table()
{
    using Info = MPluginParameterInfo;
    std::vector<MPluginParameterInfo> table;
    table.push_back(Info::Enumeration("Hidden", "hidden", names, 3, 0).WithFlags(0, ParameterFlag::Visible));
    table.push_back(Info::Float("Gain", "gain", -24, 24, 0).WithFormat("{+0.2} dB"));
    table.push_back(Info::Group("Panel"));
    table.push_back(Info::Float("Share", "share", 0, 1, 0.25).WithFormatter(&FormatPercent));
    table.push_back(Info::Enumeration("Choice", "choice", names, 3, 1));
    table.push_back(Info::Boolean("Toggle", "toggle", true));
    return table;
}
}   // namespace

TEST(Automation, HiddenRecordsAndPlainGroupsTakeNoIndex)
{
    Effect effect(Table());
    Owner owner;
    Many bands;
    MPluginSpecialParameterInfo special{
        .name = "Bands", .id = "bands", .adapter = &bands, .owner = nullptr
    };
    effect.description.specialParameters = &special;
    effect.description.specialParameterCount = 1;
    AutomationList list;
    list.Build(effect, { .plugin = &owner, .prefix = {} });
    list.AssignIndices();
    EXPECT_EQ(list.HostParameterCount(), 4 + 70);

    std::int32_t sub = -1;
    MString text;
    AutomationAdapter* share = list.Find(1, sub);
    share->GetName(text, sub);
    EXPECT_EQ(text.ToUTF8(), "Share");
    share->GetID(text, sub);
    EXPECT_EQ(text.ToUTF8(), "SharesharePanel") << "name, id and group side by side";
    EXPECT_EQ(list.FindParameter(3), share);
    EXPECT_EQ(list.FindParameter(0), nullptr);
    for (std::int32_t index = 0; index < 74; ++index)
    {
        AutomationAdapter* found = list.Find(index, sub);
        EXPECT_EQ(found->firstIndex + sub, index);
        EXPECT_LT(sub, found->targetCount);
        EXPECT_EQ(found == &bands, index >= 4);
    }
}

TEST(Automation, ValuesMapBothWaysAndAsText)
{
    Effect effect(Table());
    Owner owner;
    AutomationList list;
    list.Build(effect, { .plugin = &owner, .prefix = {} });
    list.AssignIndices();
    struct Case
    {
        std::int32_t index;
        double value01;
        double back;
        const char* text;
    };
    const Case cases[] = {
        { 0, 0.0, 0.0, "-24.00 dB" }, { 0, 0.5, 0.5, "0.00 dB" },   { 0, 0.75, 0.75, "+12.00 dB" },
        { 1, 0.5, 0.5, "50.0%" },     { 1, 0.005, 0.005, "0.50%" }, { 2, 0.0, 0.0, "Low" },
        { 2, 0.5, 0.5, "Middle" },    { 2, 1.0, 1.0, "High" },      { 2, 0.3, 0.0, "Low" },
        { 3, 0.5, 1.0, "On" },        { 3, 0.49, 0.0, "Off" },
    };
    for (const Case& each : cases)
    {
        SCOPED_TRACE(each.text);
        std::int32_t sub = 0;
        AutomationAdapter& adapter = *list.Find(each.index, sub);
        adapter.SetValue(sub, each.value01, false);
        EXPECT_NEAR(adapter.GetValue(sub), each.back, 1e-12);
        MString text;
        adapter.GetValueName(text, sub);
        EXPECT_EQ(text.ToUTF8(), each.text);
        EXPECT_NEAR(adapter.ParseValueName(sub, text), each.back, 1e-12);
    }
}

TEST(Automation, CurvesBendTheRange)
{
    std::vector<MPluginParameterInfo> table;
    for (const std::int32_t curve : { 0, 1, 2 })
    {
        table.push_back(MPluginParameterInfo::Float("F", "f", 0, 16, 0));
        table.back().curve = curve;
    }
    Effect effect(table);
    AutomationList list;
    list.Build(effect, {});
    list.AssignIndices();
    const double expected[] = { 8, 4, 1 };
    for (std::int32_t index = 0; index < 3; ++index)
    {
        std::int32_t sub = 0;
        list.Find(index, sub)->SetValue(sub, 0.5, false);
        EXPECT_NEAR(effect.records[static_cast<std::size_t>(index)].number.value, expected[index], 1e-12);
        EXPECT_NEAR(list.Find(index, sub)->GetValue(sub), 0.5, 1e-12);
    }
}

TEST(Automation, ASetTellsTheEffectAtOnceAndSilenceTellsNobody)
{
    Effect effect(Table());
    Owner owner;
    AutomationList list;
    list.Build(effect, { .plugin = &owner, .prefix = {} });
    list.AssignIndices();
    std::int32_t sub = 0;
    AutomationAdapter& gain = *list.Find(0, sub);
    gain.SetValue(sub, 0.9, true);
    EXPECT_EQ(effect.changed, -1);
    EXPECT_FALSE(effect.description.Has(EffectFlag::UpdatePending));
    gain.SetValue(sub, 0.1, false);
    EXPECT_EQ(effect.changed, 1);
    EXPECT_TRUE(effect.description.TakeUpdateRequest());
    EXPECT_FALSE(effect.description.TakeUpdateRequest());
    EXPECT_EQ(owner.requests, 1);
    gain.SetValueIfChanged(sub, gain.GetValue(sub), false);
    EXPECT_EQ(owner.requests, 1) << "no change, no mark";
}

TEST(Automation, ASentValueIsNudgedFirst)
{
    Owner owner;
    Many bands;
    bands.firstIndex = 10;
    bands.SendAutomationValueWithChange(3, 0.0);
    EXPECT_TRUE(owner.sent.empty()) << "a detached adapter sends nothing";
    bands.plugin = &owner;
    bands.SendAutomationValueWithChange(3, 0.0);
    bands.SendAutomationValueWithChange(3, 0.5);
    ASSERT_EQ(owner.sent.size(), 4u);
    EXPECT_EQ(owner.sent[0].first, 13);
    EXPECT_DOUBLE_EQ(owner.sent[0].second, 1e-10);
    EXPECT_DOUBLE_EQ(owner.sent[1].second, 0);
    EXPECT_DOUBLE_EQ(owner.sent[2].second, 0.5 - 1e-10);
    EXPECT_DOUBLE_EQ(owner.sent[3].second, 0.5);
}

TEST(Automation, AnInvalidTypeIsRefused)
{
    std::vector<MPluginParameterInfo> table(1);
    table[0].type = ParameterType::Invalid;
    Effect effect(table);
    AutomationList list;
    try
    {
        list.Build(effect, {});
        ADD_FAILURE() << "no exception";
    }
    catch (const MException& exception)
    {
        EXPECT_EQ(exception.Message.ToUTF8(), "Invalid plugin parameter type.");
    }
}

TEST(Automation, AControlEditsTheVeryVariablesThatTheEffectReads)
{
    Effect effect(Table());
    MPluginParameterInfo& gain = effect.records[1];
    MValueGain gainControl(&gain.number.value, gain.number.minimum, gain.number.maximum, 0);
    MValueTableList choiceControl(&effect.records[4].enumeration.index, names, 3, 1);
    MValueFlag toggleControl(&effect.records[5].boolean.value);
    EXPECT_TRUE(gainControl.SetDisplayText("-6 dB"));
    EXPECT_TRUE(choiceControl.SetDisplayText("high"));
    EXPECT_TRUE(toggleControl.SetNormalized(0));
    EXPECT_EQ(gain.RunningValue(), -6);
    EXPECT_EQ(effect.records[4].enumeration.index, 2);
    EXPECT_FALSE(effect.records[5].boolean.value);
}
