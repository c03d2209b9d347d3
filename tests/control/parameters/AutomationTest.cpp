// SPDX-License-Identifier: GPL-3.0-or-later
// A table with a record of every kind, seen through the list as a host sees it.
#include <algorithm>
#include <functional>
#include <memory>
#include <numeric>
#include <random>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "control/parameters/AutomationList.h"
#include "control/parameters/ParameterAdapters.h"
#include "foundation/text/MException.h"
#include "plugin/contract/MRandom.h"

using ::testing::ElementsAre;
using ::testing::Pair;

namespace
{
constexpr const char* names[] = { "Low", "Middle", "High" };

void FormatSteps(MPluginParameterInfo& record, MString& text, bool parse)
{
    if (parse)
        record.integer.value = static_cast<std::int32_t>(text.SubString(1, text.Length() - 1).ToInt());
    else
        text = MString("#") + MString::FromInt(record.integer.value);
}

class Effect : public MPlugin
{
public:
    enum Record
    {
        Hidden,
        Gain,
        Panel,
        Share,
        Time,
        Bent,
        Steep,
        Bare,
        Steps,
        Named,
        Single,
        Choice,
        Toggle,
        Switched,
        Last,
        Count
    };

    Effect()
    {
        using Info = MPluginParameterInfo;
        const auto integer = [](const char* name, MParameterFormatter formatter)
        {
            Info info;
            info.type = ParameterType::Integer;
            info.name = info.id = name;
            info.integer = { .minimum = -4, .maximum = 6, .defaultValue = 1, .value = 1, .smoothedValue = 1 };
            info.formatter = formatter;
            return info;
        };
        records = { Info::Enumeration("Hidden", "hidden", names, 3, 0).WithFlags(0, ParameterFlag::Visible),
                    Info::Float("Gain", "gain", -24, 24, 6).WithFormat("{+0.2} dB"),
                    Info::Group("Panel"),
                    Info::Float("Share", "share", 0, 1, 0.25).WithFormatter(&FormatPercent),
                    Info::Float("Time", "time", 0, 5, 1).WithFormatter(&FormatTime),
                    Info::Float("Bent", "bent", 0, 16, 0).WithFlags(ParameterFlag::Interpolated),
                    Info::Float("Steep", "steep", 0, 16, 0),
                    Info::Float("Bare", "bare", -1, 3, 0).WithFlags(0, ParameterFlag::NeedsUpdate),
                    integer("Steps", &FormatSteps),
                    integer("Named", nullptr),
                    Info::Enumeration("Single", "single", names, 1, 0),
                    Info::Enumeration("Choice", "choice", names, 3, 1),
                    Info::Boolean("Toggle", "toggle", true),
                    Info::Group("Switched"),
                    Info::Float("Last", "last", 0, 1, 0)
                        .WithFlags(ParameterFlag::StartsPrefixGroup, ParameterFlag::Randomizable) };
        records[Bent].curve = 1;
        records[Steep].curve = 2;
        records[Named].format = "{0} steps";
        records[Switched].group.enabled = &switched;
        description.parameters = records.data();
        description.parameterCount = Count;
    }
    void OnParameterChange(std::int32_t index) override { changed.push_back(index); }

    std::vector<MPluginParameterInfo> records;
    MRelaxed<bool> switched = true;
    std::vector<std::int32_t> changed;
};

class Owner : public AutomationOwner
{
public:
    void SendAutomation(std::int32_t index, double value) override { sent.emplace_back(index, value); }
    void MarkParameterChanged(std::int32_t index) override { marked.push_back(index); }
    void MarkParameterChangedInside(std::int32_t index) override { marked.push_back(1000 + index); }
    std::vector<std::pair<std::int32_t, double>> sent;
    std::vector<std::int32_t> marked;
};

// Many targets of 0 to 1.
class Many : public AutomationAdapter
{
public:
    explicit Many(std::int32_t count) : values(static_cast<std::size_t>(count), 0.5)
    {
        targetCount = count;
        owned = false;
    }
    void SetValue(std::int32_t sub, double value01, bool silent) override
    {
        values.at(static_cast<std::size_t>(sub)) = value01;
        ++sets;
        silentSets += silent ? 1 : 0;
    }
    double GetValue(std::int32_t sub) const override { return values.at(static_cast<std::size_t>(sub)); }
    bool IsRandomizable() const override { return randomizable; }
    std::vector<double> values;
    int sets = 0;
    int silentSets = 0;
    bool randomizable = true;
};

class Automation : public ::testing::Test
{
protected:
    void SetUp() override
    {
        list.Build(effect, { .plugin = &owner, .prefix = {} });
        list.AssignIndices();
    }
    AutomationAdapter& Of(Effect::Record record)
    {
        std::int32_t sub = 0;
        for (std::int32_t index = 0; index < list.HostParameterCount(); ++index)
        {
            auto* adapter = dynamic_cast<ParameterBase*>(list.Find(index, sub));
            if (adapter != nullptr && adapter->index == record)
                return *adapter;
        }
        throw MException("no adapter");
    }

    Effect effect;
    Owner owner;
    AutomationList list;
};

std::string NameOf(const AutomationAdapter& adapter)
{
    MString text;
    adapter.GetName(text, 0);
    return text.ToUTF8();
}
}   // namespace

TEST_F(Automation, EachVisibleRecordHasItsAdapterAndGroup)
{
    std::vector<std::string> found;
    for (const AutomationAdapter* adapter : list.Adapters())
        found.push_back(NameOf(*adapter) + "/" + adapter->groupName.ToUTF8());
    EXPECT_THAT(found, ElementsAre("Gain/", "Share/Panel", "Time/Panel", "Bent/Panel", "Steep/Panel",
                                   "Bare/Panel", "Steps/Panel", "Named/Panel", "Single/Panel", "Choice/Panel",
                                   "Toggle/Panel", "Switched/Switched", "Last/"))
        << "a group without a switch takes no number, and a prefix group ends one";
    EXPECT_EQ(list.FindParameter(Effect::Hidden), nullptr);
    EXPECT_EQ(list.FindParameter(Effect::Panel), nullptr);
    for (std::int32_t index = 0; index < Effect::Count; ++index)
    {
        const auto* adapter = dynamic_cast<ParameterBase*>(list.FindParameter(index));
        EXPECT_EQ(adapter != nullptr ? adapter->index : index, index);
    }
    MString id;
    Of(Effect::Share).GetID(id, 0);
    EXPECT_EQ(id.ToUTF8(), "SharesharePanel") << "name, id and group side by side";

    effect.records[0].type = ParameterType::Invalid;
    effect.records[0].WithFlags(ParameterFlag::Visible);
    AutomationList refused;
    EXPECT_THROW(refused.Build(effect, {}), MException);
}

TEST_F(Automation, SpecialAndFurtherRecordsTakeTheirPlaces)
{
    MPluginParameterInfo further = MPluginParameterInfo::Float("Further", "further", 0, 1, 0);
    further.hostIndex = -5;
    effect.records[Effect::Toggle].hostIndex = -1;
    effect.description.groupList = { &further };
    Many bands(3);
    MPluginSpecialParameterInfo special{
        .name = "Bands", .id = "bands", .adapter = &bands, .owner = nullptr
    };
    effect.description.specialParameters = &special;
    effect.description.specialParameterCount = 1;
    {
        AutomationList full;
        full.Build(effect, { .plugin = &owner, .prefix = "p" });
        full.AssignIndices();
        EXPECT_EQ(full.HostParameterCount(), 16);
        EXPECT_EQ(full.ParameterCount(), 17);
        EXPECT_EQ(NameOf(*full.Adapters().front()), "Toggle") << "sorted by the record's key";
        EXPECT_EQ(NameOf(*full.Adapters().back()), "Further") << "what may go again stands behind all others";
        EXPECT_TRUE(full.Adapters().back()->temporary);
        EXPECT_EQ(bands.firstIndex, 13);
        EXPECT_EQ(bands.groupName.ToUTF8() + bands.prefix.ToUTF8(), "Bandsp");
        EXPECT_EQ(dynamic_cast<ParameterBase*>(full.FindParameter(Effect::Gain))->index, Effect::Gain)
            << "a further record hides none of the description's";
        bands.MarkChangedInside(2);
        EXPECT_THAT(owner.marked, ElementsAre(1015));
        full.RemoveTemporary();
        full.AssignIndices();
        EXPECT_EQ(full.ParameterCount(), 16);
    }
    bands.MarkChangedInside(2);
    EXPECT_EQ(owner.marked.size(), 1u) << "with its list gone it tells nobody";
}

TEST_F(Automation, ValuesMapBothWaysAndAsText)
{
    using Type = AutomationAdapter::Type;
    struct Case
    {
        Effect::Record record;
        Type type;
        double value01;
        double back;
        const char* text;
    };
    const Case cases[] = {
        { Effect::Gain, Type::Float, 0, 0, "-24.00 dB" },
        { Effect::Gain, Type::Float, 0.75, 0.75, "+12.00 dB" },
        { Effect::Share, Type::Float, 0.5, 0.5, "50.0%" },
        { Effect::Time, Type::Float, 0.05, 0.05, "250 ms" },
        { Effect::Bent, Type::Float, 0.5, 0.5, "4.000000" },
        { Effect::Steep, Type::Float, 0.5, 0.5, "1.000000" },
        { Effect::Bare, Type::Float, 0.25, 0.25, "0.000000" },
        { Effect::Steps, Type::Integer, 0.84, 0.8, "#4" },
        { Effect::Steps, Type::Integer, 0, 0, "#-4" },
        { Effect::Named, Type::Integer, 1, 1, "6 steps" },
        { Effect::Single, Type::Enumeration, 1, 0, "Low" },
        { Effect::Choice, Type::Enumeration, 0.3, 0, "Low" },
        { Effect::Choice, Type::Enumeration, 0.5, 0.5, "Middle" },
        { Effect::Choice, Type::Enumeration, 0.7, 1, "High" },
        { Effect::Toggle, Type::Boolean, 0.49, 0, "Off" },
        { Effect::Toggle, Type::Boolean, 0.5, 1, "On" },
        { Effect::Switched, Type::Boolean, 0.2, 0, "Off" },
    };
    for (const Case& each : cases)
    {
        SCOPED_TRACE(::testing::Message() << each.record << " at " << each.value01);
        AutomationAdapter& adapter = Of(each.record);
        EXPECT_EQ(adapter.GetType(0), each.type);
        MString text;
        adapter.GetValueNameFrom01(text, 0, each.value01);
        EXPECT_EQ(text.ToUTF8(), each.text) << "of any value";
        adapter.SetValue(0, each.value01, false);
        EXPECT_NEAR(adapter.GetValue(0), each.back, 1e-12);
        adapter.GetValueName(text, 0);
        EXPECT_EQ(text.ToUTF8(), each.text);
        EXPECT_NEAR(adapter.ParseValueName(0, text), each.back, 1e-12);
    }
    EXPECT_FALSE(effect.switched);
    // Typed texts that are none, or too much.
    EXPECT_EQ(Of(Effect::Gain).ParseValueName(0, "999"), 1);
    EXPECT_EQ(Of(Effect::Gain).ParseValueName(0, "-999"), 0);
    EXPECT_EQ(Of(Effect::Steps).ParseValueName(0, "#99"), 1);
    EXPECT_EQ(Of(Effect::Choice).ParseValueName(0, "high"), 0) << "labels are taken as they stand";
    EXPECT_EQ(Of(Effect::Toggle).ParseValueName(0, "on"), 1);
    EXPECT_EQ(Of(Effect::Toggle).ParseValueName(0, "3"), 1);
    EXPECT_EQ(Of(Effect::Toggle).ParseValueName(0, "no"), 0);
    const double share = effect.records[Effect::Share].number.value;
    EXPECT_NEAR(Of(Effect::Share).ParseValueName(0, "none"), share, 1e-12)
        << "what is no number changes nothing";

    const double defaults[] = { 0.625, 0.25, 0.2, 0, 0, 0.25, 0.5, 0.5, 0, 0.5, 1, 0, 0 };
    for (std::size_t index = 0; index < list.Adapters().size(); ++index)
        EXPECT_DOUBLE_EQ(list.Adapters()[index]->GetDefaultValue(0), defaults[index]) << index;
    effect.records[Effect::Toggle].boolean.defaultValue = false;
    EXPECT_EQ(Of(Effect::Toggle).GetDefaultValue(0), 0);
}

TEST_F(Automation, ASetTellsTheEffectAtOnceAndLeavesAMark)
{
    AutomationAdapter& gain = Of(Effect::Gain);
    gain.SetValue(0, 0.9, true);
    EXPECT_TRUE(effect.changed.empty() && owner.marked.empty()) << "silence tells nobody";
    EXPECT_FALSE(effect.description.Has(EffectFlag::UpdatePending));
    for (std::size_t index = 0; index < list.Adapters().size(); ++index)
    {
        auto& adapter = dynamic_cast<ParameterBase&>(*list.Adapters()[index]);
        adapter.SetValue(0, 0.4, false);
        EXPECT_THAT(std::exchange(effect.changed, {}), ElementsAre(adapter.index));
        EXPECT_THAT(std::exchange(owner.marked, {}), ElementsAre(adapter.firstIndex));
        EXPECT_EQ(effect.description.TakeUpdateRequest(), adapter.index != Effect::Bare);
        adapter.SetValueIfChanged(0, adapter.GetValue(0), false);
        EXPECT_TRUE(effect.changed.empty()) << "no change, no news";
    }
    gain.MarkChangedInside(0);
    EXPECT_THAT(owner.marked, ElementsAre(1000 + gain.firstIndex));

    // A ramp of the driver runs beside the value that the host set.
    AutomationAdapter& bent = Of(Effect::Bent);
    EXPECT_TRUE(bent.IsInterpolated(0));
    EXPECT_FALSE(gain.IsInterpolated(0));
    bent.SetValue(0, 0.5, true);
    bent.SetInterpolation(0, true);
    EXPECT_EQ(effect.records[Effect::Bent].RunningValue(), 4) << "it starts from where it stands";
    bent.SetValue(0, 0.25, true);
    EXPECT_EQ(effect.records[Effect::Bent].RunningValue(), 1);
    EXPECT_EQ(effect.records[Effect::Bent].number.value, 4);
    bent.SetInterpolation(0, false);
    EXPECT_EQ(effect.records[Effect::Bent].RunningValue(), 4);
    MPluginParameterInfo& steps = effect.records[Effect::Steps];
    steps.WithFlags(ParameterFlag::Interpolating);
    Of(Effect::Steps).SetValue(0, 1, true);
    EXPECT_EQ(std::pair(steps.integer.value.Get(), steps.integer.smoothedValue.Get()), std::pair(0, 6));
}

TEST_F(Automation, SendingAndRandomizingReachEveryTarget)
{
    Many bands(4);
    bands.firstIndex = 10;
    bands.SendAllAutomation();
    EXPECT_TRUE(owner.sent.empty()) << "a detached adapter sends nothing";
    bands.plugin = &owner;
    bands.SendAutomationValueWithChange(3, 0.0);
    bands.SendAutomationValueWithChange(3, 0.5);
    EXPECT_THAT(std::exchange(owner.sent, {}),
                ElementsAre(Pair(13, 1e-10), Pair(13, 0.0), Pair(13, 0.5 - 1e-10), Pair(13, 0.5)))
        << "some hosts drop a repeated value";
    bands.SendAllAutomation();
    EXPECT_THAT(owner.sent, ElementsAre(Pair(10, 0.5), Pair(11, 0.5), Pair(12, 0.5), Pair(13, 0.5)));

    MRandom::Seed(4);
    // By up to the amount around 0.6, or anew.
    for (const auto& [amount, low, high] :
         { std::tuple(0.2, 0.4, 0.8), std::tuple(0.6, 0.0, 1.0), std::tuple(1.0, 0.0, 1.0) })
    {
        std::vector<double> drawn;
        for (int round = 0; round < 500; ++round)
        {
            std::fill(bands.values.begin(), bands.values.end(), 0.6);
            bands.Randomize(amount);
            drawn.insert(drawn.end(), bands.values.begin(), bands.values.end());
        }
        EXPECT_NEAR(*std::min_element(drawn.begin(), drawn.end()), low, 0.01);
        EXPECT_NEAR(*std::max_element(drawn.begin(), drawn.end()), high, 0.01);
        EXPECT_NEAR(std::accumulate(drawn.begin(), drawn.end(), 0.0) / 2000, amount < 1 ? 0.58 : 0.5, 0.03);
    }
    EXPECT_EQ(bands.silentSets, bands.sets);
    const int sets = bands.sets;
    bands.randomizable = false;
    bands.Randomize(1);
    EXPECT_EQ(bands.sets, sets);
    EXPECT_TRUE(Of(Effect::Gain).IsRandomizable());
    EXPECT_FALSE(Of(Effect::Last).IsRandomizable());
    effect.records[Effect::Gain].number.value = 23.9;
    Of(Effect::Gain).Randomize(0.1);
    EXPECT_NEAR(effect.records[Effect::Gain].number.value, 23.9, 4.8 + 1e-9);
    EXPECT_NE(effect.records[Effect::Gain].number.value, 23.9);
}

TEST(AutomationAdapter, HasOneTargetInTheMiddleUntilItKnowsBetter)
{
    AutomationAdapter plain;
    EXPECT_TRUE(plain.owned);
    EXPECT_FALSE(plain.temporary || plain.ofEffect || plain.IsInterpolated(0) || plain.IsRandomizable());
    EXPECT_EQ(std::tuple(plain.targetCount, plain.firstIndex, plain.sortKey), std::tuple(1, 0, 0));
    EXPECT_EQ(std::tuple(plain.GetValue(0), plain.GetDefaultValue(0)), std::tuple(0.0, 0.5));
    EXPECT_EQ(plain.GetType(0), AutomationAdapter::Type::Float);
    EXPECT_EQ(plain.ParseValueName(0, "0.25"), 0.25);
    MString text = "before";
    for (const auto& ask :
         std::initializer_list<std::function<void()>>{
             [&] { plain.GetName(text, 0); }, [&] { plain.GetShortName(text, 0); },
             [&] { plain.GetID(text, 0); }, [&] { plain.GetValueName(text, 0); },
             [&] { plain.GetValueNameFrom01(text, 0, 1); },
             [&]
             {
                 plain.GetUnitsName(text, 0);
             } })
    {
        text = "before";
        ask();
        EXPECT_TRUE(text.IsEmpty());
    }
    std::int32_t sub = 0;
    AutomationList list;
    EXPECT_EQ(list.ParameterCount() + list.HostParameterCount(), 0);
    list.AssignIndices();
    EXPECT_EQ(list.ParameterCount() + list.HostParameterCount(), 0);
    EXPECT_EQ(list.Find(0, sub), nullptr);
    Many bands(3);
    list.Add(&bands);
    list.AssignIndices();
    EXPECT_EQ(list.Find(2, sub), &bands);
    list.Clear();
    EXPECT_EQ(list.ParameterCount() + list.HostParameterCount(), 0);
    EXPECT_EQ(list.Find(0, sub), nullptr);
}

// Lists of random adapters: whoever holds a number is found by it, nobody shares one, and reserved ones stay.
TEST(AutomationNumbers, BelongToOneTargetEachWhateverComesAndGoes)
{
    std::mt19937 random(6);
    const auto below = [&random](int count)
    {
        return static_cast<std::int32_t>(random() % static_cast<unsigned>(count));
    };
    for (int round = 0; round < 300; ++round)
    {
        const bool reserves = round % 3 == 0;
        const bool sorts = round % 5 != 0;
        std::vector<std::unique_ptr<Many>> adapters;
        AutomationList list;
        list.sortingEnabled = sorts;
        if (reserves)
            list.Reserve(
                { { .sortKey = 1, .first = 47, .count = 60 }, { .sortKey = 2, .first = 5, .count = 40 } });
        for (int each = 0; each < 6; ++each)
        {
            Many& made = *adapters.emplace_back(std::make_unique<Many>(1 + below(7)));
            made.sortKey = below(5);
            made.temporary = below(4) == 0;
            list.Add(&made);
        }
        const auto check = [&]
        {
            list.AssignIndices();
            std::vector<const AutomationAdapter*> holders(200, nullptr);
            std::int32_t end = 0, hostEnd = 0;
            for (const AutomationAdapter* each : list.Adapters())
            {
                for (std::int32_t sub = 0; sub < each->targetCount; ++sub)
                {
                    auto& holder = holders.at(static_cast<std::size_t>(each->firstIndex + sub));
                    EXPECT_EQ(holder, nullptr);
                    holder = each;
                }
                end = std::max(end, each->firstIndex + each->targetCount);
                if (!each->temporary)
                    hostEnd = std::max(hostEnd, each->firstIndex + each->targetCount);
                const std::int32_t place = each->firstIndex;
                EXPECT_TRUE(!reserves || each->temporary || each->sortKey != 1 || place >= 47);
                EXPECT_TRUE(!reserves || each->temporary || each->sortKey != 2 || (place >= 5 && place < 45));
                for (const AutomationAdapter* other : list.Adapters())
                    EXPECT_TRUE(!sorts || reserves || each->temporary || other->temporary ||
                                each->sortKey >= other->sortKey || place < other->firstIndex);
            }
            EXPECT_EQ(list.ParameterCount(), end);
            EXPECT_EQ(list.HostParameterCount(), hostEnd);
            for (std::int32_t index = -1; index < 200; ++index)
            {
                std::int32_t sub = -1;
                const AutomationAdapter* found = list.Find(index, sub);
                EXPECT_EQ(found, index < 0 ? nullptr : holders[static_cast<std::size_t>(index)]) << index;
                EXPECT_TRUE(found == nullptr || found->firstIndex + sub == index);
            }
        };
        check();
        list.RemoveTemporary();
        check();
        for (const AutomationAdapter* each : list.Adapters())
            EXPECT_FALSE(each->temporary);
        adapters[0]->ofEffect = true;
        list.RemoveBuilt();
        check();
        EXPECT_EQ(std::count(list.Adapters().begin(), list.Adapters().end(), adapters[0].get()), 0);
        ASSERT_FALSE(::testing::Test::HasFailure()) << "round " << round;
    }
    Many one(2), other(2);
    AutomationList full;
    full.Reserve({ { .sortKey = 0, .first = 0, .count = 3 } });
    full.Add(&one);
    EXPECT_NO_THROW(full.AssignIndices());
    full.Add(&other);
    EXPECT_THROW(full.AssignIndices(), MException);
}
