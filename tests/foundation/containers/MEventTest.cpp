// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/containers/MEvent.h"

#include <algorithm>
#include <array>
#include <functional>
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
#include "tests/ErrorOf.h"
#include "tests/FailingAllocation.h"

namespace
{
using Params = MOnItemParams<int>;
using Event = MEvent<Params>;
using Callback = MCallback<Params>;

Params Item(int item)
{
    Params params;
    params.item = item;
    return params;
}

// By every listener since it was cleared: names, context words, items.
std::string heard;

class Listener : public MEventTarget
{
public:
    explicit Listener(char listenerName) : name(listenerName) {}
    // Takes no memory as long as `heard` has some.
    void Hear(const Params& params, std::uintptr_t context)
    {
        heard += name;
        heard.append(context, '\'').append(std::to_string(params.item)) += ' ';
        if (then)
            then(params.item);
    }
    std::function<void(int)> then;

private:
    char name;
};

// Random posts, deaths and failing allocations, against a plain list of what has to be heard.
TEST(MEvent, DeliversEveryPostOnceInOrderWhateverDiesOrFails)
{
    std::mt19937 random(2718);
    struct Post
    {
        std::size_t processor;
        std::size_t event;
        int item;
    };
    std::list<Post> waiting;
    std::array<std::optional<MEventProcessor>, 3> processors;
    std::array<std::optional<Event>, 3> events;
    std::array<std::vector<std::string>, 3> heardBy;   // by event, in the order of subscription
    std::array<std::optional<Listener>, 2> listeners;
    for (auto& processor : processors)
        processor.emplace();
    for (auto& event : events)
        event.emplace();
    listeners[0].emplace('a');
    listeners[1].emplace('b');
    int failures = 0;
    // Answers whether the operation got all the memory it asked for.
    const auto works = [&](auto&& operation)
    {
        bool isDone = true;
        allocationsLeft = random() % 3 == 0 ? static_cast<int>(random() % 4) : -1;
        try
        {
            operation();
        }
        catch (const std::bad_alloc&)
        {
            isDone = false;
        }
        allocationsLeft = -1;
        failures += isDone ? 0 : 1;
        return isDone;
    };
    for (int round = 0; round < 30000; ++round)
    {
        SCOPED_TRACE(round);
        const std::size_t p = random() % processors.size();
        const std::size_t e = random() % events.size();
        const std::size_t l = random() % listeners.size();
        const char name = l == 0 ? 'a' : 'b';
        const auto isOfListener = [name](const std::string& names)
        {
            return names[0] == name;
        };
        const auto isForProcessor = [p](const Post& post)
        {
            return post.processor == p;
        };
        const auto isOfEvent = [e](const Post& post)
        {
            return post.event == e;
        };
        heard.clear();
        heard.reserve(10000);
        switch (random() % 20)
        {
        case 0:
            processors[p].emplace();
            std::erase_if(waiting, isForProcessor);
            break;
        case 1:
            events[e].emplace();
            heardBy[e].clear();
            std::erase_if(waiting, isOfEvent);
            break;
        case 2:
            listeners[l].emplace(name);
            for (std::vector<std::string>& names : heardBy)
                std::erase_if(names, isOfListener);
            break;
        case 3:
            events[e]->RemoveTarget(&*listeners[l]);
            std::erase_if(heardBy[e], isOfListener);
            break;
        case 4:
            events[e]->ClearPending();
            std::erase_if(waiting, isOfEvent);
            break;
        case 5:
        case 6:
        {
            const std::size_t context = random() % 3;
            if (heardBy[e].size() < 3 &&
                works([&] { events[e]->AddHandler<&Listener::Hear>(*listeners[l], {}, context); }))
                heardBy[e].push_back(name + std::string(context, '\''));
            break;
        }
        case 7:
        case 8:
        {
            works([&] { processors[p]->Process(); });
            // What failed stays for the next time.
            std::string expected;
            auto taken =
                std::count_if(waiting.begin(), waiting.end(), isForProcessor) - processors[p]->PendingCount();
            for (; taken > 0; --taken)
            {
                const auto post = std::find_if(waiting.begin(), waiting.end(), isForProcessor);
                for (const std::string& names : heardBy[post->event])
                    expected += names + std::to_string(post->item) + " ";
                waiting.erase(post);
            }
            ASSERT_EQ(heard, expected);
            heard.clear();
            break;
        }
        default:
        {
            bool isPosted = false;
            const bool isDone = works([&] { isPosted = events[e]->Post(*processors[p], Item(round)); });
            ASSERT_EQ(isPosted, isDone && !heardBy[e].empty());
            if (isPosted)
                waiting.push_back({ p, e, round });
        }
        }
        ASSERT_EQ(heard, "");
        ASSERT_EQ(events[e]->HandlerCount(), static_cast<int>(heardBy[e].size()));
    }
    EXPECT_GT(failures, 100);
}

TEST(MEvent, PostingTakesNoMemoryOnceTheQueuesHaveGrown)
{
    MEventProcessor processor;
    Event event;
    Listener listener('l');
    event.AddHandler<&Listener::Hear>(listener);
    for (int round = 0; round < 20; ++round)
    {
        allocationsLeft = round == 0 ? -1 : 0;
        EXPECT_NO_THROW(for (int item = 0; item < 100; ++item) event.Post(processor, Item(item)));
        allocationsLeft = -1;
        // Never empty in between: what was taken must make room for what comes.
        if (round % 3 != 1)
            processor.Process();
        else
            event.ClearPending();
    }
}

// An event or a callback, and two listeners; what is raised is posted to the one or handed to the other.
struct Stage
{
    explicit Stage(bool isEvent)
    {
        if (isEvent)
            event = std::make_unique<Event>();
        else
            callback = std::make_unique<Callback>();
    }
    void Add(Listener& listener, std::uintptr_t context = 0)
    {
        if (event)
            event->AddHandler<&Listener::Hear>(listener, {}, context);
        else
            callback->AddHandler<&Listener::Hear>(listener, {}, context);
    }
    void Remove(Listener& listener)
    {
        event ? event->RemoveTarget(&listener) : callback->RemoveTarget(&listener);
    }
    void Raise(int item)
    {
        if (event)
            event->Post(processor, Item(item));
        else if (callback)
            callback->Call(Item(item));
    }
    void Destroy()
    {
        event.reset();
        callback.reset();
    }

    MEventProcessor processor;
    Listener a{ 'a' };
    Listener b{ 'b' };
    Listener c{ 'c' };
    std::unique_ptr<Event> event;
    std::unique_ptr<Callback> callback;
};

// What handlers may do while they are called: a does it when it hears the first of two items, and
// something else at a third.
TEST(MEvent, AndACallbackLetTheirHandlersDoAsTheyLike)
{
    const struct
    {
        std::function<void(Stage&)> atFirst;
        std::function<void(Stage&)> atThird;
        const char* fromEvent;
        const char* fromCallback;
    } cases[] = {
        { [](Stage& stage) { stage.Raise(3); }, {}, "a1 b1 a2 b2 a3 b3 ", "a1 a3 b3 b1 a2 b2 " },
        { [](Stage& stage) { stage.Remove(stage.a); }, {}, "a1 b1 b2 ", "a1 b1 b2 " },
        { [](Stage& stage) { stage.Remove(stage.b); }, {}, "a1 a2 ", "a1 a2 " },
        { [](Stage& stage) { stage.Add(stage.c); }, {}, "a1 b1 a2 b2 c2 ", "a1 b1 c1 a2 b2 c2 " },
        { [](Stage& stage) { stage.Destroy(); }, {}, "a1 ", "a1 " },
        { [](Stage&) { throw MException("handler"); }, {}, "a1 a2 b2 ", "a1 a2 b2 " },
        { [](Stage& stage) { stage.Remove(stage.b), stage.Add(stage.b, 1); },
          {},
          "a1 a2 b'2 ",
          "a1 b'1 a2 b'2 " },
        { [](Stage& stage) { stage.Raise(3); }, [](Stage& stage) { stage.Remove(stage.a); },
          "a1 b1 a2 b2 a3 b3 ", "a1 a3 b3 b1 b2 " },
        { [](Stage& stage) { stage.Raise(3); }, [](Stage& stage) { stage.Destroy(); }, "a1 b1 a2 b2 a3 ",
          "a1 a3 " },
    };
    for (const auto& [atFirst, atThird, fromEvent, fromCallback] : cases)
        for (const bool isEvent : { true, false })
        {
            Stage stage(isEvent);
            stage.a.then = [&stage, &first = atFirst, &third = atThird](int item)
            {
                if (item == 1)
                    first(stage);
                else if (item == 3 && third)
                    third(stage);
            };
            stage.Add(stage.a);
            stage.Add(stage.b);
            heard.clear();
            for (const int item : { 1, 2 })
                ErrorOf([&] { stage.Raise(item); });
            while (stage.processor.PendingCount() > 0)
                ErrorOf([&] { stage.processor.Process(); });
            EXPECT_EQ(heard, isEvent ? fromEvent : fromCallback);
        }
}

// Who takes posts out of the queue need not run them in order, nor while event and targets live.
TEST(MEvent, TellsEveryPostOnItsWayWhoHasGone)
{
    MEventProcessor processor;
    auto event = std::make_unique<Event>();
    Listener a('a');
    auto b = std::make_unique<Listener>('b');
    EXPECT_EQ(ErrorOf([&] { event->Dispatch(processor); }), "Index out of range.");
    event->AddHandler<&Listener::Hear>(a);
    event->AddHandler<&Listener::Hear>(*b);
    std::vector<std::unique_ptr<MEventCall>> calls;
    for (const int item : { 1, 2, 3, 4 })
        event->Post(processor, Item(item));
    for (int index = 0; index < 4; ++index)
        calls.push_back(event->Dispatch(processor));
    processor.Dequeue(*event);
    heard.clear();
    calls[1]->Run();
    calls[1].reset();
    b.reset();
    calls[0]->Run();
    calls[0].reset();
    event.reset();
    calls[2]->Run();
    calls[3]->Run();
    EXPECT_EQ(heard, "a2 b2 a1 ");
}

TEST(MEvent, TakesPostsFromManyThreads)
{
    MEventProcessor processor;
    Event event;
    Listener listener('l');
    int count = 0;
    listener.then = [&count](int)
    {
        ++count;
    };
    event.AddHandler<&Listener::Hear>(listener);
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index)
        threads.emplace_back(
            [&]
            {
                for (int round = 0; round < 250; ++round)
                    event.Post(processor, Item(round));
            });
    while (count < 1000)
        processor.Process();
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(processor.PendingCount(), 0);
}

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
        bool isAccepted;
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
    for (const auto& [shortcut, keyCode, modifiers, keyType, isAccepted] : cases)
    {
        MOnKeyboardShortcutParams params;
        params.keyCode = keyCode;
        params.modifiers = static_cast<std::uint8_t>(modifiers);
        params.keyType = static_cast<std::uint8_t>(keyType);
        EXPECT_EQ(shortcut.Accepts(params), isAccepted) << keyCode << " " << modifiers << " " << keyType;
    }
}
}   // namespace
