// SPDX-License-Identifier: GPL-3.0-or-later
#include <barrier>
#include <chrono>
#include <fstream>
#include <future>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "foundation/text/MException.h"
#include "foundation/threads/MERWLock.h"
#include "foundation/threads/MLock.h"
#include "foundation/threads/MMutex.h"
#include "foundation/threads/MSemaphore.h"
#include "foundation/threads/MessageLoopCounter.h"

namespace
{
// What an operation answers on a thread of its own.
template <typename Operation>
auto Elsewhere(Operation&& operation)
{
    return std::async(std::launch::async, std::forward<Operation>(operation)).get();
}

template <typename Operation>
std::string ErrorOf(Operation&& operation)
{
    try
    {
        operation();
    }
    catch (const MException& error)
    {
        return error.Message.ToUTF8();
    }
    return {};
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

TEST(MLock, BelongsToOneThreadAsOftenAsItLikes)
{
    MLock lock;
    MMutex mutex;
    for (MSynchronizer* synchronizer :
         { static_cast<MSynchronizer*>(&lock), static_cast<MSynchronizer*>(&mutex) })
    {
        EXPECT_EQ(synchronizer->Acquire(InfiniteTimeout), 0);
        EXPECT_EQ(synchronizer->Acquire(0), 0);
        EXPECT_NE(TryElsewhere(*synchronizer), 0);
        synchronizer->Release();
        EXPECT_NE(TryElsewhere(*synchronizer), 0);
        synchronizer->Release();
        EXPECT_EQ(TryElsewhere(*synchronizer), 0);
    }
}

TEST(MSynchronizerGuard, ThrowsWhenItCannotHoldAndLetsGoAtItsEnd)
{
    MLock lock;
    {
        const MSynchronizerGuard guard(lock);
        EXPECT_EQ(
            Elsewhere([&lock] { return ErrorOf([&lock] { const MSynchronizerGuard other(lock, 0); }); }),
            "Could not acquire mutex.");
    }
    EXPECT_EQ(TryElsewhere(lock), 0);
    const MSynchronizerGuard nothing(static_cast<MSynchronizer*>(nullptr));
}

TEST(MMutex, WaitsForItsTimeout)
{
    MMutex mutex;
    ASSERT_EQ(mutex.Acquire(InfiniteTimeout), 0);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_NE(Elsewhere([&mutex] { return mutex.Acquire(30); }), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
    mutex.Release();
}

TEST(MMutex, IsInheritedFromADeadOwner)
{
    MMutex mutex;
    std::thread([&mutex] { mutex.Acquire(InfiniteTimeout); }).join();
    EXPECT_EQ(mutex.Acquire(0), 0);
    mutex.Release();
    EXPECT_EQ(TryElsewhere(mutex), 0);
}

TEST(MMutex, GrantsEverythingWithoutAHandle)
{
    MMutex mutex(MMutex::Form::WithoutHandle);
    EXPECT_EQ(mutex.Acquire(InfiniteTimeout), 0);
    EXPECT_EQ(TryElsewhere(mutex), 0);
    mutex.Release();
}

TEST(MSemaphore, CountsItsReleases)
{
    MSemaphore semaphore;
    EXPECT_NE(semaphore.Acquire(0), 0);
    EXPECT_NE(semaphore.Acquire(5), 0);
    semaphore.Release();
    semaphore.Release();
    EXPECT_EQ(semaphore.Acquire(0), 0);
    EXPECT_EQ(semaphore.Acquire(InfiniteTimeout), 0);
    EXPECT_NE(semaphore.Acquire(0), 0);
    auto waiter = std::async(std::launch::async, [&semaphore] { return semaphore.Acquire(InfiniteTimeout); });
    semaphore.Release();
    EXPECT_EQ(waiter.get(), 0);
}

// Tries until the state that another thread is about to bring about is there.
template <typename Condition>
bool Eventually(Condition&& condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition())
    {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::yield();
    }
    return true;
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
    for (MSynchronizer* synchronizer :
         { static_cast<MSynchronizer*>(&lock), static_cast<MSynchronizer*>(&mutex) })
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

int TryMode(MERWLock& lock, MERWLock::Mode mode)
{
    return Elsewhere(
        [&lock, mode]
        {
            const int result = lock.AcquireMode(mode, 0);
            if (result == 0)
                lock.ReleaseMode(mode);
            return result;
        });
}

TEST(MERWLock, LetsReadersInTogetherAndWritersAlone)
{
    MERWLock lock;
    {
        const MSyncGuard reading(&lock, MERWLock::Read);
        EXPECT_EQ(TryMode(lock, MERWLock::Read), 0);
        EXPECT_EQ(TryMode(lock, MERWLock::Write), 1);
        EXPECT_EQ(TryMode(lock, MERWLock::Read), 0);   // the failed writer left no trace
    }
    {
        const MSyncGuard writing(&lock, MERWLock::Write | MSynchronizationObject::NoYieldOnRelease);
        const MSyncGuard again(&lock, MERWLock::Write);
        const MSyncGuard reading(&lock, MERWLock::Read);
        EXPECT_EQ(TryMode(lock, MERWLock::Read), 1);
        EXPECT_EQ(TryMode(lock, MERWLock::Write), 1);
    }
    EXPECT_EQ(TryMode(lock, MERWLock::Write), 0);
    const MSyncGuard nothing(nullptr, MERWLock::Write);
}

TEST(MERWLock, KeepsNewReadersOutWhileAWriterWaits)
{
    MERWLock lock;
    lock.AcquireMode(MERWLock::Read, InfiniteTimeout);
    auto writer =
        std::async(std::launch::async, [&lock] { const MSyncGuard writing(&lock, MERWLock::Write); });
    EXPECT_TRUE(Eventually([&lock] { return TryMode(lock, MERWLock::Read) == 1; }));
    EXPECT_EQ(lock.AcquireMode(MERWLock::Read, 0), 0);   // who is in stays in
    lock.ReleaseMode(MERWLock::Read);
    lock.ReleaseMode(MERWLock::Read);
    writer.get();
    EXPECT_EQ(TryMode(lock, MERWLock::Read), 0);
}

TEST(MERWLock, LetsReadersBecomeWritersOneAfterTheOther)
{
    MERWLock lock;
    std::barrier bothRead(2);
    int value = 0;   // guarded by the lock; a lost update would show
    const auto upgrade = [&]
    {
        for (int round = 0; round < 50; ++round)
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
    EXPECT_EQ(value, 100);
}

TEST(MERWLock, ForgetsAWriterWhoseTimeIsUp)
{
    MERWLock lock;
    lock.AcquireMode(MERWLock::Read, InfiniteTimeout);
    Elsewhere(
        [&lock]
        {
            // A reader that wants to write while another reads: its own hold must not stay counted.
            const MSyncGuard reading(&lock, MERWLock::Read);
            EXPECT_EQ(lock.AcquireMode(MERWLock::Write, 20), 1);
            return 0;
        });
    EXPECT_EQ(TryMode(lock, MERWLock::Write), 1);
    EXPECT_EQ(TryMode(lock, MERWLock::Read), 0);
    EXPECT_EQ(lock.AcquireMode(MERWLock::Write, 0), 0);
    lock.ReleaseMode(MERWLock::Write);
    lock.ReleaseMode(MERWLock::Read);
}

TEST(MERWLock, ProtectsWhatItGuards)
{
    MERWLock lock;
    int first = 0;
    int second = 0;
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index)
        threads.emplace_back(
            [&, index]
            {
                for (int round = 0; round < 500; ++round)
                {
                    const bool isWriter = (round + index) % 4 == 0;
                    const MSyncGuard guard(&lock, isWriter ? MERWLock::Write : MERWLock::Read);
                    if (isWriter)
                        second = ++first;
                    else
                        EXPECT_EQ(first, second);
                }
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(first, 500);
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
        EXPECT_EQ(check(), "");
        EXPECT_EQ(Elsewhere(check), "MessageLoopCounter not available.");
    }
    EXPECT_EQ(Elsewhere(check), "");
}
}   // namespace
