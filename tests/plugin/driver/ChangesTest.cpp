// SPDX-License-Identifier: GPL-3.0-or-later
// What the outside hears of changes, and in which condition the locks are then.
#include <atomic>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "control/parameters/ParameterAdapters.h"
#include "foundation/text/MException.h"
#include "plugin/driver/EditorUpdates.h"
#include "plugin/driver/MQuorvaneAudioEffectPlugin.h"
#include "plugin/driver/PluginState.h"
#include "state/tree/MAttribute.h"
#include "tests/plugin/driver/TestEffect.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace
{
// A host that writes down what it is told. While it is told it lets another thread run a block and waits for
// that, as some hosts do: with a lock held the block would be dropped.
class StrictHost : public MAudioPluginAdapter
{
public:
    explicit StrictHost(MQuorvaneAudioEffectPlugin& hosted) : plugin(hosted) {}

    void SendAutomation(std::int32_t index, double value) override
    {
        Note("value " + std::to_string(index) + " " + MString::FromDouble(value, 2).ToUTF8());
    }
    void SendBypassAutomation() override { Note("bypass"); }
    void GenerateMIDIEvent(std::uint8_t, std::uint8_t, std::uint8_t, std::int32_t) override {}
    void ReportLatency() override { Note("latency " + std::to_string(plugin.reportedLatency)); }
    void ChangeEditorSize(std::int32_t, std::int32_t) override {}
    void BeginGesture(std::int32_t index) override { Note("begin " + std::to_string(index)); }
    void EndGesture(std::int32_t index) override { Note("end " + std::to_string(index)); }
    void BeginGroup() override { Note("group"); }
    void EndGroup() override { Note("end of group"); }
    void ReportAllValues() override { Note("all values"); }

    std::vector<std::string> Take() { return std::exchange(told, {}); }
    int dropped = 0;

private:
    void Note(const std::string& text)
    {
        told.push_back(text);
        std::thread(
            [this]
            {
                std::array<float, 8> left{}, right{}, outLeft{}, outRight{};
                float* inputs[] = { left.data(), right.data() };
                float* outputs[] = { outLeft.data(), outRight.data() };
                try
                {
                    plugin.ProcessBlock(inputs, outputs, 8, true);
                }
                catch (const MException&)
                {
                    ++dropped;
                }
            })
            .join();
    }

    MQuorvaneAudioEffectPlugin& plugin;
    std::vector<std::string> told;
};

class Changes : public ::testing::Test
{
protected:
    void SetUp() override
    {
        plugin.Initialize("Test", "Quorvane", &TestEffect::Entry, 800, 560);
        effect = TestEffect::last;
        plugin.adapter = &host;
        plugin.buses.SetStride(2);
        plugin.InitProcessing();
        host.Take();
    }
    void TearDown() override
    {
        EXPECT_EQ(host.dropped, 0) << "the host was called with a lock held";
        plugin.adapter = nullptr;
    }
    MQuorvaneAudioEffectPlugin plugin;
    StrictHost host{ plugin };
    TestEffect* effect = nullptr;
};
}   // namespace

TEST_F(Changes, AScreenIsFilledByWhoeverBringsItAndLeavesNoGestureOpen)
{
    struct Screens : EffectScreens
    {
        explicit Screens(MQuorvaneAudioEffectPlugin& shown) : plugin(shown) {}
        void CreateEditor(MPlugin& effect, MControl* parent) override { Note("made", effect, parent); }
        void DestroyEditor(MPlugin& effect, MControl* editor) override { Note("gone", effect, editor); }
        void Note(const char* what, MPlugin& effect, MControl* control)
        {
            EXPECT_EQ(&effect, &plugin.Effect());
            EXPECT_TRUE(effect.description.environment->editorVisible());
            said.push_back(what + std::to_string(reinterpret_cast<std::intptr_t>(control)));
        }
        MQuorvaneAudioEffectPlugin& plugin;
        std::vector<std::string> said;
    } screens(plugin);
    MControl* const parent = reinterpret_cast<MControl*>(std::intptr_t{ 24 });

    plugin.CreateEditorContents(parent);
    plugin.DestroyEditorContents(parent);
    EXPECT_THAT(screens.said, IsEmpty()) << "without a screen nothing is made";
    plugin.SetScreens(screens);
    plugin.CreateEditorContents(parent);
    plugin.BeginEdit(0);
    plugin.DestroyEditorContents(parent);
    EXPECT_THAT(screens.said, ElementsAre("made24", "gone24"));
    EXPECT_THAT(host.Take(), ElementsAre("begin 0", "end 0"));
    EXPECT_EQ(effect->description.environment->editor, EditorPresence::Closed);
}

TEST_F(Changes, AnEditIsToldOnceInsideOneGesture)
{
    ChangeListener screen(plugin.Changes());
    plugin.Edit(TestEffect::Ramp, 0.25);
    EXPECT_THAT(host.Take(), ElementsAre("begin 0", "value 0 0.25", "end 0")) << "a key, the wheel";
    plugin.BeginEdit(1);
    plugin.Edit(1, 0.5);
    plugin.BeginEdit(1);
    plugin.Edit(1, 2.0);
    plugin.EndEdit(1);
    plugin.Edit(TestEffect::Choice, 0.6);
    plugin.EndEdit(1);
    plugin.EndEdit(1);
    EXPECT_THAT(host.Take(), ElementsAre("begin 1", "value 1 0.50", "value 1 1.00", "begin 2", "value 2 0.50",
                                         "end 2", "end 1"))
        << "a drag, the wheel over it; clamped and on a step";
    plugin.BeginEdit(3);
    plugin.BeginEdit(3);
    plugin.BeginEdit(4);
    plugin.EndAllEdits();
    EXPECT_THAT(host.Take(), ElementsAre("begin 3", "begin 4", "end 4", "end 3"));
    ASSERT_TRUE(screen.Drain());
    EXPECT_THAT(screen.Parameters(), ElementsAre(0, 1, 2));
    plugin.ReportChanges();
    EXPECT_THAT(host.Take(), IsEmpty()) << "nothing is told twice";

    plugin.SetParameter(0, 0.75);
    ASSERT_TRUE(screen.Drain()) << "what the host sets, screens hear";
    EXPECT_THAT(screen.Parameters(), ElementsAre(0));
    plugin.SetBypass(true);
    ASSERT_TRUE(screen.Drain() && screen.Has(Change::Bypass));
    plugin.SetBypass(true);
    EXPECT_TRUE(plugin.bypass && !screen.Drain()) << "no change, no news";
    plugin.SetParameter(0, 0.7, true);
    EXPECT_FALSE(screen.Drain()) << "a silent set tells nobody";
    plugin.ReportChanges();
    EXPECT_THAT(host.Take(), IsEmpty()) << "and the host not at all";
}

TEST_F(Changes, WhatMovedInsideIsReportedAsAGroupAndOnce)
{
    plugin.MarkParameterChangedInside(2);
    plugin.ReportChanges();
    EXPECT_THAT(host.Take(), ElementsAre("begin 2", "value 2 0.50", "end 2"));
    plugin.MarkParameterChangedInside(4);
    plugin.MarkParameterChangedInside(0);
    plugin.MarkParameterChangedInside(4);
    plugin.BeginEdit(4);
    host.Take();
    plugin.ReportChanges();
    EXPECT_THAT(host.Take(),
                ElementsAre("group", "begin 0", "value 0 0.50", "end 0", "value 4 0.00", "end of group"));
    plugin.EndEdit(4);
    host.Take();
    plugin.Changes().Mark(Change::SettingsInside);
    plugin.MarkParameterChangedInside(1);
    plugin.ReportChanges();
    EXPECT_THAT(host.Take(), ElementsAre("all values"));
    plugin.ReportChanges();
    EXPECT_THAT(host.Take(), IsEmpty());
}

TEST_F(Changes, ALoadPreparesOnlyWhereItMustAndTellsTheLatencyAfterwards)
{
    ChangeListener screen(plugin.Changes());
    effect->initCount = effect->updateCount = 0;
    MAttribute tree("settings");
    plugin.Store({ .saving = 1, .item = &tree });
    plugin.Store({ .saving = 0, .item = &tree });
    EXPECT_EQ(effect->initCount, 0) << "the sound goes on";
    EXPECT_EQ(effect->updateCount, 1);
    EXPECT_TRUE(screen.Drain() && screen.Has(Change::Settings));
    EXPECT_FALSE(screen.Has(Change::Latency));

    tree.SetAttribute("upsampling", "2");
    tree.SetAttribute("ChannelMode", InfoOf(ChannelMode::Mid).longName);
    plugin.Store({ .saving = 0, .item = &tree });
    EXPECT_EQ(effect->initCount, 1) << "two reasons, one preparation";
    EXPECT_THAT(host.Take(), ElementsAre("latency 768"));
    EXPECT_TRUE(screen.Drain() && screen.Has(Change::Latency));
    tree.SetAttribute("hqupsampling", "0");
    plugin.Store({ .saving = 0, .item = &tree });
    EXPECT_THAT(host.Take(), ElementsAre("latency 0"));
    plugin.upsampling = 1;
    plugin.UpdateUpsamplingFactor();
    EXPECT_THAT(host.Take(), IsEmpty());
    plugin.InitProcessing();
    EXPECT_EQ(effect->initCount, 4) << "an activation always does";
}

TEST_F(Changes, SavingWhileItPlaysDropsNoBlock)
{
    std::atomic<bool> stop = false;
    std::atomic<int> saved = 0;
    std::thread saving(
        [&]
        {
            while (!stop)
            {
                MMemoryStream stream;
                WritePluginState(plugin, stream);
                ++saved;
            }
        });
    std::array<float, 64> left{}, right{}, outLeft{}, outRight{};
    float* inputs[] = { left.data(), right.data() };
    float* outputs[] = { outLeft.data(), outRight.data() };
    int dropped = 0;
    while (saved < 50)
        try
        {
            plugin.ProcessBlock(inputs, outputs, 64, true);
        }
        catch (const MException&)
        {
            ++dropped;
        }
    stop = true;
    saving.join();
    EXPECT_EQ(dropped, 0);
}

TEST_F(Changes, FailingPreparationLeavesTheLocksFree)
{
    effect->failsToPrepare = true;
    EXPECT_THROW(plugin.InitProcessing(), MException);
    effect->failsToPrepare = false;
    EXPECT_NO_THROW(plugin.InitProcessing());
    EXPECT_THAT(host.Take(), IsEmpty());
    effect->latency = 512;
    plugin.CheckLatency();
    EXPECT_THAT(host.Take(), ElementsAre("latency 512"));
}

TEST_F(Changes, AdaptersOfOthersOutliveThoseOfTheEffect)
{
    auto* kept = new ParameterBoolT<ParameterBaseCustom>;
    kept->name = "Kept";
    kept->sortKey = 5;
    kept->plugin = &plugin;
    plugin.automation.Add(kept);
    plugin.automation.AssignIndices();
    ASSERT_EQ(plugin.GetParameterCount(), TestEffect::Count + 2) << "and the channel mode";
    MString id;
    plugin.GetParameterID(id, TestEffect::Choice);
    EXPECT_EQ(plugin.FindParameter(id), TestEffect::Choice);
    EXPECT_EQ(plugin.FindParameter("nothing"), -1);

    ChangeListener screen(plugin.Changes());
    EXPECT_FALSE(plugin.wantsTimeInfo);
    effect->description.flags.fetch_or(EffectFlag::WantsTimeInfo);
    effect->SendToHost(HostCommand::RebuildParameters);
    EXPECT_TRUE(plugin.wantsTimeInfo);
    EXPECT_TRUE(screen.Drain() && screen.Has(Change::ParameterList));
    MString name;
    plugin.GetParameterName(name, TestEffect::Count + 1);
    EXPECT_EQ(name.ToUTF8(), "Kept");
    EXPECT_EQ(plugin.FindParameter(id), TestEffect::Choice);
    effect->SendToHost(HostCommand::DestroyTemporaryAdapters);
    EXPECT_EQ(plugin.GetParameterCount(), TestEffect::Count + 2);
    EXPECT_TRUE(screen.Drain() && screen.Has(Change::ParameterList));
    EXPECT_EQ(effect->SendToHost(HostCommand::EqualizerParametersChanged), 0);
    EXPECT_TRUE(screen.Drain() && screen.Has(Change::Response));
    EXPECT_EQ(effect->SendToHost(HostCommand::ParameterGroupLoaded), 0);
    EXPECT_TRUE(screen.Drain() && screen.Has(Change::ParameterGroup));
    EXPECT_EQ(effect->SendToHost(HostCommand::ParameterChangedInside, 7), 0);
    ASSERT_TRUE(screen.Drain());
    EXPECT_THAT(screen.Bands(), ElementsAre(7));
}

TEST(EditorUpdates, WakeTheEditorAndUpdateEachChangedAdapterOnce)
{
    class Watched : public AutomationAdapter
    {
    public:
        Watched(std::vector<int>& list, int ownPlace) : updated(list), place(ownPlace) { targetCount = 3; }
        void UpdateEditor() override { updated.push_back(place); }
        std::vector<int>& updated;
        int place;
    };
    std::vector<int> updated;
    AutomationList adapters;
    for (int place = 0; place < 3; ++place)
        adapters.Add(new Watched(updated, place));
    adapters.AssignIndices();
    ChangeFeed feed;
    EditorUpdates updates(feed);
    feed.MarkParameter(1);
    std::atomic<bool> woken = false;
    updates.StartListening([&woken] { woken = true; });
    EXPECT_FALSE(updates.Deliver(adapters)) << "what was marked before isn't new";
    for (const std::int32_t index : { 0, 2, 7, 8, 100 })
        feed.MarkParameter(index);
    while (!woken)
        std::this_thread::yield();
    EXPECT_TRUE(updates.Deliver(adapters));
    EXPECT_THAT(updated, ElementsAre(0, 2));
    EXPECT_THAT(updates.News().Parameters(), ElementsAre(0, 2, 7, 8, 100));
    updates.StopListening();
    EXPECT_FALSE(updates.Deliver(adapters));
}
