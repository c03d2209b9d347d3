// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/containers/MEvent.h"

#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/containers/MCallback.h"
#include "foundation/text/MException.h"

namespace
{
using Event = MEvent<MOnStringParams>;
std::vector<std::string> heard;   // by every listener of a test

class MEventTest : public testing::Test
{
protected:
    MEventTest() { heard.clear(); }
    static MOnStringParams Text(const char* text)
    {
        MOnStringParams params;
        params.text = text;
        return params;
    }
    MEventProcessor processor;
};

class Listener : public MEventTarget
{
public:
    explicit Listener(std::string listenerName) : name(std::move(listenerName)) {}
    void Hear(const MOnStringParams& params) { heard.push_back(name + ":" + params.text.ToUTF8()); }
    void HearWithContext(const MOnStringParams& params, std::uintptr_t context)
    {
        heard.push_back(name + std::to_string(context) + ":" + params.text.ToUTF8());
    }
    int SubscriptionCount() const { return events.Count(); }

private:
    std::string name;
};

TEST_F(MEventTest, QueuesNothingWithoutHandlers)
{
    Event event;
    EXPECT_FALSE(event.Post(processor, Text("lost")));
    EXPECT_EQ(processor.PendingCount(), 0);
}

TEST_F(MEventTest, DeliversInPostingOrderAcrossEvents)
{
    Event first;
    Event second;
    Listener a("a");
    Listener b("b");
    first.AddHandler<&Listener::Hear>(a);
    first.AddHandler<&Listener::HearWithContext>(b, {}, 7);
    second.AddHandler<&Listener::Hear>(b);
    EXPECT_EQ(b.SubscriptionCount(), 2);
    EXPECT_TRUE(first.Post(processor, Text("1")));
    EXPECT_TRUE(second.Post(processor, Text("2")));
    EXPECT_TRUE(first.Post(processor, Text("3")));
    EXPECT_EQ(processor.PendingCount(), 3);
    EXPECT_TRUE(heard.empty());
    processor.Process();
    EXPECT_EQ(heard, (std::vector<std::string>{ "a:1", "b7:1", "b:2", "a:3", "b7:3" }));
    EXPECT_EQ(processor.PendingCount(), 0);
}

TEST_F(MEventTest, SubscribesATargetOnceAndForgetsItWhole)
{
    Event event;
    Listener a("a");
    event.AddHandler<&Listener::Hear>(a);
    event.AddHandler<&Listener::HearWithContext>(a);
    EXPECT_EQ(a.SubscriptionCount(), 1);
    event.RemoveTarget(&a);
    EXPECT_EQ(event.HandlerCount(), 0);
    EXPECT_EQ(a.SubscriptionCount(), 0);
}

TEST_F(MEventTest, SurvivesTheDeathOfEitherSide)
{
    Listener survivor("s");
    auto event = std::make_unique<Event>();
    event->AddHandler<&Listener::Hear>(survivor);
    {
        Listener dying("d");
        event->AddHandler<&Listener::Hear>(dying);
        event->Post(processor, Text("1"));
    }
    EXPECT_EQ(event->HandlerCount(), 1);
    processor.Process();
    EXPECT_EQ(heard, (std::vector<std::string>{ "s:1" }));

    event->Post(processor, Text("2"));
    event->Post(processor, Text("3"));
    event.reset();
    EXPECT_EQ(processor.PendingCount(), 0);
    EXPECT_EQ(survivor.SubscriptionCount(), 0);
    processor.Process();
    EXPECT_EQ(heard.size(), 1u);

    Event left;
    left.AddHandler<&Listener::Hear>(survivor);
    {
        MEventProcessor shortLived;
        left.Post(shortLived, Text("4"));
    }
    EXPECT_THROW(left.Dispatch(), MException);
}

// Does to the event, while handling it, what handlers are allowed to do.
class Meddler : public MEventTarget
{
public:
    explicit Meddler(MEventProcessor& eventProcessor) : processor(eventProcessor) {}

    void PostAgain(const MOnStringParams& params)
    {
        heard.push_back(params.text.ToUTF8());
        MOnStringParams next;
        next.text = MString::FromInt(params.text.ToInt() - 1);
        if (params.text.ToInt() > 0)
            event->Post(processor, next);
    }
    void KillVictim(const MOnStringParams&) { victim.reset(); }
    void KillEvent(const MOnStringParams&) { event.reset(); }
    void Throw(const MOnStringParams&) { throw MException("handler"); }
    void AddAnother(const MOnStringParams&) { event->AddHandler<&Listener::Hear>(*victim); }

    MEventProcessor& processor;
    std::unique_ptr<Event> event = std::make_unique<Event>();
    std::unique_ptr<Listener> victim = std::make_unique<Listener>("victim");
};

TEST_F(MEventTest, DeliversWhatAHandlerPostsInTheSameRun)
{
    Meddler meddler(processor);
    meddler.event->AddHandler<&Meddler::PostAgain>(meddler);
    meddler.event->Post(processor, Text("2"));
    processor.Process();
    EXPECT_EQ(heard, (std::vector<std::string>{ "2", "1", "0" }));
}

TEST_F(MEventTest, LetsAHandlerDestroyLaterTargetsAndTheEvent)
{
    Meddler meddler(processor);
    meddler.event->AddHandler<&Meddler::KillVictim>(meddler);
    meddler.event->AddHandler<&Listener::Hear>(*meddler.victim);
    meddler.event->Post(processor, Text("x"));
    processor.Process();
    EXPECT_TRUE(heard.empty());
    EXPECT_EQ(meddler.event->HandlerCount(), 1);

    Meddler other(processor);
    Listener after("after");
    other.event->AddHandler<&Meddler::KillEvent>(other);
    other.event->AddHandler<&Listener::Hear>(after);
    other.event->Post(processor, Text("x"));
    other.event->Post(processor, Text("y"));
    processor.Process();
    EXPECT_TRUE(heard.empty());
    EXPECT_EQ(processor.PendingCount(), 0);
}

TEST_F(MEventTest, CallsAddedHandlersFromTheNextDispatchOn)
{
    Meddler meddler(processor);
    meddler.event->AddHandler<&Meddler::AddAnother>(meddler);
    meddler.event->Post(processor, Text("1"));
    meddler.event->Post(processor, Text("2"));
    processor.Process();
    EXPECT_EQ(heard, (std::vector<std::string>{ "victim:2" }));
}

TEST_F(MEventTest, KeepsTheRestOfTheQueueWhenAHandlerThrows)
{
    Meddler meddler(processor);
    Listener listener("l");
    Event other;
    meddler.event->AddHandler<&Meddler::Throw>(meddler);
    other.AddHandler<&Listener::Hear>(listener);
    meddler.event->Post(processor, Text("x"));
    other.Post(processor, Text("1"));
    EXPECT_THROW(processor.Process(), MException);
    EXPECT_TRUE(heard.empty());
    processor.Process();
    EXPECT_EQ(heard, (std::vector<std::string>{ "l:1" }));
}

TEST_F(MEventTest, TakesPostsFromManyThreads)
{
    Event event;
    Listener listener("l");
    event.AddHandler<&Listener::Hear>(listener);
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index)
        threads.emplace_back(
            [&]
            {
                for (int round = 0; round < 250; ++round)
                    event.Post(processor, Text("x"));
            });
    while (heard.size() < 1000)
        processor.Process();
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(heard.size(), 1000u);
}

class KeyListener : public MEventTarget
{
public:
    void Press(const MOnKeyboardShortcutParams&) { ++pressed; }
    int pressed = 0;
};

TEST(MKeyboardShortcut, ComparesKeyAndModifiers)
{
    constexpr std::uint8_t Control = 8;
    constexpr std::uint8_t Shift = 16;
    const struct
    {
        MKeyboardShortcut shortcut;
        std::int32_t keyCode;
        int modifiers;
        int keyType;
        bool isCalled;
    } cases[] = {
        { { 65, 0, Control, false, 1 }, 65, Control, 1, true },
        { { 65, 0, Control, false, 1 }, 65, Control | 7, 1, true },   // the three lowest don't count
        { { 65, 0, Control, false, 1 }, 65, Control | Shift, 1, false },
        { { 65, 0, Control, true, 1 }, 65, Control | Shift, 1, true },
        { { 65, 0, Control, true, 1 }, 65, Shift, 1, false },
        { { 65, 0, 0, false, 1 }, 65, 0, 1, true },
        { { 65, 0, 0, false, 1 }, 66, 0, 1, false },
        { { 65, 0, 0, false, 1 }, 65, 0, 2, false },
    };
    for (const auto& [shortcut, keyCode, modifiers, keyType, isCalled] : cases)
    {
        KeyListener listener;
        MCallback<MOnKeyboardShortcutParams, MKeyboardShortcut> callback;
        callback.AddHandler<&KeyListener::Press>(listener, shortcut);
        MOnKeyboardShortcutParams params;
        params.keyCode = keyCode;
        params.modifiers = static_cast<std::uint8_t>(modifiers);
        params.keyType = static_cast<std::uint8_t>(keyType);
        callback.Call(params);
        EXPECT_EQ(listener.pressed, isCalled ? 1 : 0) << keyCode << " " << modifiers << " " << keyType;
        callback.RemoveTarget(&listener);
        callback.Call(params);
        EXPECT_EQ(listener.pressed, isCalled ? 1 : 0);
    }
}
}   // namespace
