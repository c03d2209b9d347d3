// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>
#include <barrier>
#include <chrono>
#include <climits>
#include <fstream>
#include <future>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "foundation/threads/MERWLock.h"
#include "foundation/threads/MLock.h"
#include "foundation/threads/MMutex.h"
#include "foundation/threads/MRelaxed.h"
#include "foundation/threads/MSemaphore.h"
#include "foundation/threads/MessageLoopCounter.h"
#include "tests/ErrorOf.h"

namespace
{
using Clock = std::chrono::steady_clock;

// Longer than anything here takes: what never comes fails a test and doesn't hang it.
constexpr std::uint32_t LongMs = 10000;

// What an operation answers on a thread of its own.
auto Elsewhere(auto&& operation)
{
    return std::async(std::launch::async, operation).get();
}

// 0 when another thread could have it at once; gives it back.
int TryElsewhere(MSynchronizer& synchronizer)
{
    return Elsewhere(
        [&synchronizer]
        {
            const int result = synchronizer.Acquire(0);
            if (result == 0)
                synchronizer.Release();
            return result;
        });
}

// Tries until the state that another thread is about to bring about is there.
bool Eventually(auto&& condition)
{
    const auto end = Clock::now() + std::chrono::milliseconds(LongMs);
    while (!condition())
    {
        if (Clock::now() > end)
            return false;
        std::this_thread::yield();
    }
    return true;
}

// Between the time-out and far more.
template <typename Operation>
void ExpectToTakeAsLong(std::uint32_t timeoutMs, Operation&& operation)
{
    const auto start = Clock::now();
    EXPECT_NE(operation(), 0);
    const auto taken = Clock::now() - start;
    EXPECT_GE(taken, std::chrono::milliseconds(timeoutMs));
    EXPECT_LT(taken, std::chrono::milliseconds(timeoutMs + LongMs));
}

TEST(MLock, BelongsToOneThreadAsOftenAsItLikes)
{
    MLock lock;
    MMutex mutex;
    for (MSynchronizer* synchronizer : std::initializer_list<MSynchronizer*>{ &lock, &mutex })
    {
        EXPECT_EQ(synchronizer->Acquire(InfiniteTimeout), 0);
        EXPECT_EQ(synchronizer->Acquire(0), 0);
        EXPECT_NE(TryElsewhere(*synchronizer), 0);
        synchronizer->Release();
        EXPECT_NE(TryElsewhere(*synchronizer), 0);
        synchronizer->Release();
        EXPECT_EQ(TryElsewhere(*synchronizer), 0);
        {
            const MSynchronizerGuard guard(*synchronizer);
            EXPECT_EQ(
                Elsewhere([=] { return ErrorOf([=] { const MSynchronizerGuard other(synchronizer, 0); }); }),
                "Could not acquire mutex.");
        }
        EXPECT_EQ(TryElsewhere(*synchronizer), 0);
    }
    const MSynchronizerGuard nothing(static_cast<MSynchronizer*>(nullptr));
}

TEST(MMutex, WaitsForItsTimeout)
{
    MMutex mutex;
    ASSERT_EQ(mutex.Acquire(InfiniteTimeout), 0);
    for (const std::uint32_t timeoutMs : { 1u, 30u })
        ExpectToTakeAsLong(timeoutMs, [&] { return Elsewhere([&] { return mutex.Acquire(timeoutMs); }); });
    auto waiter = std::async(std::launch::async, [&mutex] { return mutex.Acquire(LongMs); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));   // until it waits
    mutex.Release();
    EXPECT_EQ(waiter.get(), 0);
}

TEST(MMutex, IsInheritedFromADeadOwnerAndGrantsEverythingWithoutAHandle)
{
    MMutex inherited;
    std::thread([&inherited] { inherited.Acquire(InfiniteTimeout); }).join();
    MMutex bare(MMutex::Form::WithoutHandle);
    for (MMutex* mutex : { &inherited, &bare })
    {
        EXPECT_EQ(mutex->Acquire(0), 0);
        EXPECT_EQ(TryElsewhere(*mutex) == 0, mutex == &bare);
        mutex->Release();
        EXPECT_EQ(TryElsewhere(*mutex), 0);
    }
}

TEST(MSemaphore, CountsItsReleases)
{
    MSemaphore semaphore;
    EXPECT_NE(semaphore.Acquire(0), 0);
    ExpectToTakeAsLong(5, [&] { return semaphore.Acquire(5); });
    for (int count = 0; count < 3; ++count)
        semaphore.Release();
    for (const std::uint32_t timeoutMs : { 0u, 1u, InfiniteTimeout })
        EXPECT_EQ(semaphore.Acquire(timeoutMs), 0);
    EXPECT_NE(semaphore.Acquire(0), 0);
    auto waiter = std::async(std::launch::async, [&] { return semaphore.Acquire(InfiniteTimeout); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));   // until it waits
    semaphore.Release();
    EXPECT_EQ(waiter.get(), 0);
}

// What the scheduler goes by: below 0 for a real-time priority, inherited ones included.
int EffectivePriority(pid_t thread)
{
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string line;
    std::getline(file, line);
    std::istringstream fields(line.substr(line.rfind(')') + 1));
    std::string field;
    for (int index = 3; index <= 18; ++index)
        fields >> field;
    return std::stoi(field);
}

TEST(MLock, GivesItsHolderThePriorityOfWhoWaits)
{
    MLock lock;
    MMutex mutex;
    for (MSynchronizer* synchronizer : std::initializer_list<MSynchronizer*>{ &lock, &mutex })
    {
        synchronizer->Acquire(InfiniteTimeout);
        std::promise<bool> isRealTime;
        std::thread waiter(
            [&]
            {
                const sched_param parameters = { 10 };
                isRealTime.set_value(pthread_setschedparam(pthread_self(), SCHED_FIFO, &parameters) == 0);
                synchronizer->Acquire(InfiniteTimeout);
                synchronizer->Release();
            });
        const bool canTell = isRealTime.get_future().get();
        const auto self = static_cast<pid_t>(syscall(SYS_gettid));
        EXPECT_TRUE(!canTell || Eventually([self] { return EffectivePriority(self) < 0; }));
        synchronizer->Release();
        waiter.join();
        if (!canTell)
            GTEST_SKIP() << "no right to real-time priorities";
        EXPECT_GE(EffectivePriority(self), 0);
    }
}

// Three threads take and give back in random order, one at a time, beside a model of who holds what.
TEST(MERWLock, GrantsWhatItsRulesAllow)
{
    struct Holds
    {
        int reads = 0;
        int writes = 0;
    };
    constexpr std::size_t ThreadCount = 3;
    MERWLock lock;
    std::array<Holds, ThreadCount> held;
    std::barrier<> turn(ThreadCount);
    const auto play = [&](std::size_t me)
    {
        std::mt19937 random(161803);   // the same for each: they agree whose turn it is
        for (int round = 0; round < 600; ++round)
        {
            const bool isMine = random() % ThreadCount == me;
            const bool isWrite = random() % 3 == 0;
            const bool isRelease = random() % 2 == 0;
            const std::uint32_t timeoutMs = random() % 64 == 0 ? 1 : 0;
            std::uint32_t mode = isWrite ? MERWLock::Write : MERWLock::Read;
            mode |= round % 2 == 0 ? MSynchronizationObject::NoYieldOnRelease : 0;
            int& own = isWrite ? held[me].writes : held[me].reads;
            if (isMine && isRelease && own > 0)
            {
                lock.ReleaseMode(mode);
                --own;
            }
            if (isMine && !isRelease)
            {
                Holds others;
                for (std::size_t index = 0; index < ThreadCount; ++index)
                    if (index != me)
                    {
                        others.reads += held[index].reads;
                        others.writes += held[index].writes;
                    }
                const bool isFree =
                    isWrite ? others.reads + others.writes == 0 : others.writes == 0 || held[me].reads > 0;
                const bool isGranted = isFree || held[me].writes > 0;
                EXPECT_EQ(lock.AcquireMode(mode, timeoutMs), isGranted ? 0 : 1) << round;
                own += isGranted ? 1 : 0;
            }
            turn.arrive_and_wait();
        }
    };
    std::vector<std::thread> threads;
    for (std::size_t me = 0; me < ThreadCount; ++me)
        threads.emplace_back(play, me);
    for (std::thread& thread : threads)
        thread.join();
}

TEST(MERWLock, KeepsNewReadersOutWhileAWriterWaits)
{
    MERWLock lock;
    const auto tryRead = [&lock]
    {
        return Elsewhere(
            [&lock]
            {
                const int result = lock.AcquireMode(MERWLock::Read, 0);
                if (result == 0)
                    lock.ReleaseMode(MERWLock::Read);
                return result;
            });
    };
    lock.AcquireMode(MERWLock::Read, InfiniteTimeout);
    ExpectToTakeAsLong(5,
                       [&] { return Elsewhere([&lock] { return lock.AcquireMode(MERWLock::Write, 5); }); });
    auto writer =
        std::async(std::launch::async, [&lock] { const MSyncGuard writing(&lock, MERWLock::Write); });
    EXPECT_TRUE(Eventually([&] { return tryRead() == 1; }));
    EXPECT_EQ(lock.AcquireMode(MERWLock::Read, 0), 0);   // who is in stays in
    lock.ReleaseMode(MERWLock::Read);
    lock.ReleaseMode(MERWLock::Read);
    writer.get();
    EXPECT_EQ(tryRead(), 0);
    const MSyncGuard nothing(nullptr, MERWLock::Write);
    for (int count = 0; count < 2 * PTHREAD_KEYS_MAX; ++count)
        MERWLock().AcquireMode(MERWLock::Write, 0);   // each gives its thread local storage back
}

TEST(MERWLock, LetsReadersBecomeWritersOneAfterTheOther)
{
    MERWLock lock;
    std::barrier bothRead(2);
    int value = 0;   // guarded by the lock; a lost update would show
    const auto upgrade = [&]
    {
        for (int round = 0; round < 20; ++round)
        {
            const MSyncGuard reading(&lock, MERWLock::Read);
            bothRead.arrive_and_wait();
            const MSyncGuard writing(&lock, MERWLock::Write);
            const int seen = value;
            std::this_thread::yield();
            value = seen + 1;
        }
    };
    std::thread first(upgrade);
    std::thread second(upgrade);
    first.join();
    second.join();
    EXPECT_EQ(value, 40);
}

TEST(MessageLoopCounter, RefusesOtherThreadsWhileALoopRuns)
{
    using Purpose = MessageLoopCounter::Guard::Purpose;
    MessageLoopCounter counter;
    const auto check = [&counter]
    {
        return ErrorOf([&counter] { const MessageLoopCounter::Guard guard(counter, Purpose::CheckOnly); });
    };
    EXPECT_EQ(Elsewhere(check), "");
    {
        const MessageLoopCounter::Guard loop(counter, Purpose::EnterLoop);
        {
            const MessageLoopCounter::Guard inner(counter, Purpose::EnterLoop);
        }
        EXPECT_EQ(check(), "");
        EXPECT_EQ(Elsewhere(check), "MessageLoopCounter not available.");
    }
    EXPECT_EQ(Elsewhere(check), "");
}

TEST(MRelaxed, IsReadAsItWasWritten)
{
    MRelaxed<int> first = 5;
    MRelaxed<int> second(first);
    EXPECT_EQ(second, 5);
    second = 6;
    EXPECT_EQ(first.Get(), 5);
    first = second;
    EXPECT_EQ(first, 6);
}
}   // namespace
