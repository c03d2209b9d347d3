// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/containers/MEvent.h"

#include <algorithm>
#include <array>
#include <list>
#include <memory>
#include <new>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/containers/MCallback.h"
#include "foundation/text/MException.h"
#include "tests/foundation/containers/FailingAllocation.h"

namespace
{
using Event = MEvent<MOnStringParams>;

template <typename Exception>
bool Throws(auto&& operation)
{
    try
    {
        operation();
    }
    catch (const Exception&)
    {
        return true;
    }
    return false;
}

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

private:
    std::string name;
};

TEST_F(MEventTest, DeliversInPostingOrderAcrossEvents)
{
    Event first;
    Event second;
    Listener a("a");
    Listener b("b");
    first.AddHandler<&Listener::Hear>(a);
    first.AddHandler<&Listener::HearWithContext>(b, {}, 7);
    second.AddHandler<&Listener::Hear>(b);
    EXPECT_TRUE(first.Post(processor, Text("1")));
    EXPECT_TRUE(second.Post(processor, Text("2")));
    EXPECT_TRUE(first.Post(processor, Text("3")));
    EXPECT_EQ(processor.PendingCount(), 3);
    EXPECT_TRUE(heard.empty());
    processor.Process();
    EXPECT_EQ(heard, (std::vector<std::string>{ "a:1", "b7:1", "b:2", "a:3", "b7:3" }));
    EXPECT_EQ(processor.PendingCount(), 0);
}

// Notes what it hears without taking memory.
class Counter : public MEventTarget
{
public:
    explicit Counter(int counterName) : name(counterName) {}
    void Hear(const MOnItemParams<int>& params) { notes.emplace_back(name, params.item); }
    static std::vector<std::pair<int, int>> notes;

private:
    int name;
};
std::vector<std::pair<int, int>> Counter::notes;

// Random posts, deaths and failing allocations, against a plain list of what has to be heard.
TEST(MEvent, DeliversEveryPostOnceInOrderWhateverDiesOrFails)
{
    using CountEvent = MEvent<MOnItemParams<int>>;
    constexpr unsigned Seed = 2718;
    constexpr int Rounds = 30000;
    SCOPED_TRACE(Seed);
    std::mt19937 random(Seed);
    struct Post
    {
        std::size_t processor;
        std::size_t event;
        int item;
    };
    std::list<Post> waiting;
    std::array<std::optional<MEventProcessor>, 3> processors;
    std::array<std::optional<CountEvent>, 3> events;
    std::array<std::vector<int>, 3> heardBy;   // by event, the counters in the order of their subscription
    std::array<std::optional<Counter>, 2> counters;
    for (std::size_t index = 0; index < processors.size(); ++index)
    {
        processors[index].emplace();
        events[index].emplace();
    }
    for (std::size_t index = 0; index < counters.size(); ++index)
        counters[index].emplace(static_cast<int>(index));
    Counter::notes.reserve(Rounds);
    int failures = 0;
    // Answers whether the operation got all the memory it asked for.
    const auto works = [&](auto&& operation)
    {
        allocationsLeft = random() % 3 == 0 ? static_cast<int>(random() % 4) : -1;
        const bool isDone = !Throws<std::bad_alloc>(operation);
        allocationsLeft = -1;
        failures += isDone ? 0 : 1;
        return isDone;
    };
    for (int round = 0; round < Rounds; ++round)
    {
        SCOPED_TRACE(round);
        const std::size_t p = random() % processors.size();
        const std::size_t e = random() % events.size();
        const std::size_t c = random() % counters.size();
        const auto name = static_cast<int>(c);
        switch (random() % 20)
        {
        case 0:
            processors[p].emplace();
            std::erase_if(waiting, [p](const Post& post) { return post.processor == p; });
            break;
        case 1:
            events[e].emplace();
            heardBy[e].clear();
            std::erase_if(waiting, [e](const Post& post) { return post.event == e; });
            break;
        case 2:
            counters[c].emplace(name);
            for (std::vector<int>& names : heardBy)
                std::erase(names, name);
            break;
        case 3:
            events[e]->RemoveTarget(&*counters[c]);
            std::erase(heardBy[e], name);
            break;
        case 4:
            events[e]->ClearPending();
            std::erase_if(waiting, [e](const Post& post) { return post.event == e; });
            break;
        case 5:
        case 6:
            if (heardBy[e].size() < 3 && works([&] { events[e]->AddHandler<&Counter::Hear>(*counters[c]); }))
                heardBy[e].push_back(name);
            break;
        case 7:
        case 8:
        {
            Counter::notes.clear();
            std::vector<std::pair<int, int>> expected;
            works([&] { processors[p]->Process(); });
            // What failed stays for the next time.
            const auto isForProcessor = [p](const Post& post)
            {
                return post.processor == p;
            };
            auto taken =
                std::count_if(waiting.begin(), waiting.end(), isForProcessor) - processors[p]->PendingCount();
            for (auto post = waiting.begin(); taken > 0 && post != waiting.end();)
            {
                if (!isForProcessor(*post))
                {
                    ++post;
                    continue;
                }
                for (const int counter : heardBy[post->event])
                    expected.emplace_back(counter, post->item);
                post = waiting.erase(post);
                --taken;
            }
            ASSERT_EQ(Counter::notes, expected);
            break;
        }
        default:
        {
            MOnItemParams<int> params;
            params.item = round;
            bool isPosted = false;
            const bool isDone = works([&] { isPosted = events[e]->Post(*processors[p], params); });
            ASSERT_EQ(isPosted, isDone && !heardBy[e].empty());
            if (isPosted)
                waiting.push_back({ p, e, round });
            break;
        }
        }
        ASSERT_EQ(events[e]->HandlerCount(), static_cast<int>(heardBy[e].size()));
    }
    EXPECT_GT(failures, 100);
    EXPECT_THROW(CountEvent().Dispatch(*processors[0]), MException);
}

TEST(MEvent, PostingTakesNoMemoryOnceTheQueuesHaveGrown)
{
    MEventProcessor processor;
    MEvent<MOnItemParams<int>> event;
    Counter counter(0);
    event.AddHandler<&Counter::Hear>(counter);
    for (int round = 0; round < 20; ++round)
    {
        Counter::notes.clear();
        Counter::notes.reserve(100);
        allocationsLeft = round == 0 ? -1 : 0;
        EXPECT_NO_THROW(for (int item = 0; item < 100; ++item) event.Post(processor, {}));
        allocationsLeft = -1;
        // Never empty in between: what was taken must make room for what comes.
        if (round % 3 != 1)
            processor.Process();
        else
            event.ClearPending();
    }
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

// Does to the callback, while it is called, what handlers are allowed to do.
class Leaver : public MEventTarget
{
public:
    using Callback = MCallback<MOnItemParams<int>>;
    Leaver(Callback*& called, std::string& calls, char letter, int leavingRound)
        : callback(called), heardLetters(calls), name(letter), leaves(leavingRound)
    {
        callback->AddHandler<&Leaver::Hear>(*this);
    }

private:
    void Hear(const MOnItemParams<int>& params)
    {
        heardLetters += name;
        if (params.item != leaves)
            return;
        MOnItemParams<int> inner;
        inner.item = -1;
        if (name == 'c')
            callback->Call(inner);   // with itself still there
        callback->RemoveTarget(this);
        if (name == 'd')
            delete std::exchange(callback, nullptr);
    }

    Callback*& callback;
    std::string& heardLetters;
    char name;
    int leaves;
};

TEST(MCallback, CallsEachHandlerOnceWhoeverLeavesMeanwhile)
{
    auto* callback = new Leaver::Callback;
    std::string letters;
    const Leaver a(callback, letters, 'a', 1);
    const Leaver b(callback, letters, 'b', 1);
    const Leaver c(callback, letters, 'c', 2);
    const Leaver d(callback, letters, 'd', 4);
    const Leaver e(callback, letters, 'e', 9);
    const char* expected[] = { "abcde", "abcde", "ccdede", "de", "d" };
    for (int round = 0; round < 5; ++round)
    {
        letters.clear();
        MOnItemParams<int> params;
        params.item = round;
        callback->Call(params);
        EXPECT_EQ(letters, expected[round]) << round;
    }
    EXPECT_EQ(callback, nullptr);
}
}   // namespace
