// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/containers/MThread.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include "foundation/text/Boundary.h"

namespace
{
// The usual body, with everything that a test wants to see.
class Worker : public MThread
{
public:
    ~Worker() override
    {
        Stop();
        Wait(InfiniteTimeout);
    }

    std::int32_t Thread() override
    {
        while (!IsCancelled())
        {
            niceValue = getpriority(PRIO_PROCESS, 0);
            sigset_t blocked;
            pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
            isShielded = sigismember(&blocked, SIGTERM) == 1 && sigismember(&blocked, SIGPROF) == 1;
            ++rounds;
            hasRun.Release();
            if (throwsAfterFirst)
                throw 5;
            wakeSemaphore.Acquire(InfiniteTimeout);
        }
        return 42;
    }
    void OnFinished() override { codeAtFinish = ExitCode(); }

    std::atomic<int> rounds = 0;
    std::atomic<int> codeAtFinish = 0;
    std::atomic<int> niceValue = 0;
    std::atomic<bool> isShielded = false;   // from the host's signals
    std::atomic<bool> throwsAfterFirst = false;
    MSemaphore hasRun;
};

TEST(MThread, RunsUntilItIsStoppedAndStartsAnew)
{
    Worker worker;
    EXPECT_TRUE(worker.Wait(InfiniteTimeout));   // never created
    for (int run = 1; run <= 3; ++run)
    {
        EXPECT_EQ(worker.ExitCode(), -2);
        worker.Start();
        EXPECT_EQ(worker.hasRun.Acquire(InfiniteTimeout), 0);
        worker.codeAtFinish = 0;
        worker.Stop();
        EXPECT_TRUE(worker.Wait(InfiniteTimeout));
        EXPECT_EQ(worker.codeAtFinish, 42);
        EXPECT_FALSE(worker.IsCancelled());
    }
    EXPECT_GE(worker.rounds, 3);
}

TEST(MThread, RunsOnlyWhenStartedAndNotStoppedMeanwhile)
{
    Worker worker;
    worker.Stop();   // there is nothing to stop
    worker.Create();
    worker.Create();
    EXPECT_FALSE(worker.Wait(20));
    EXPECT_EQ(worker.rounds, 0);
    worker.Start();
    EXPECT_EQ(worker.hasRun.Acquire(InfiniteTimeout), 0);
    EXPECT_FALSE(worker.Wait(1));   // and it goes on
    worker.Stop();
    EXPECT_TRUE(worker.Wait(InfiniteTimeout));
    EXPECT_EQ(worker.codeAtFinish, 42);
    const int rounds = worker.rounds;

    worker.codeAtFinish = 0;
    worker.Create();
    worker.Stop();
    worker.Start();
    EXPECT_TRUE(worker.Wait(InfiniteTimeout));
    worker.Create();
    worker.Stop();   // a suspended thread ends, too
    EXPECT_TRUE(worker.Wait(InfiniteTimeout));
    EXPECT_EQ(worker.rounds, rounds);
    EXPECT_EQ(worker.codeAtFinish, 0);
    MThread suspended;   // without a body, it may leave the stop to its destructor
    suspended.Create();
}

TEST(MThread, LowersItsPriorityAndLeavesSignalsToTheHost)
{
    Worker worker;
    worker.SetPriority(MThread::Priority::Low);
    worker.Start();
    worker.hasRun.Acquire(InfiniteTimeout);
    EXPECT_EQ(worker.niceValue, std::min(19, getpriority(PRIO_PROCESS, 0) + 5));
    EXPECT_TRUE(worker.isShielded);
    sigset_t blocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    EXPECT_EQ(sigismember(&blocked, SIGTERM), 0);
    EXPECT_THROW(worker.SetPriority(static_cast<MThread::Priority>(7)), MException);
}

std::atomic<int> loggedThreadErrors = 0;

TEST(MThread, EndsOnAnExceptionAndLogsIt)
{
    loggedThreadErrors = 0;
    SetLogSink([](const MString& line)
               { loggedThreadErrors += line == MString("SYSTEM EXCEPTION! MThreadProc"); });
    Worker worker;
    worker.throwsAfterFirst = true;
    worker.Start();
    EXPECT_TRUE(worker.Wait(InfiniteTimeout));
    SetLogSink(nullptr);
    EXPECT_EQ(loggedThreadErrors, 1);
}

class EndListener : public MEventTarget
{
public:
    void OnEnd(const MOnThreadNotifyParams& params) { ended = params.source; }
    void OnEventPosted() override { posted.Release(); }
    MObject* ended = nullptr;
    MSemaphore posted;
};

TEST(MThread, TellsItsTargetOnTheProcessorsThread)
{
    EndListener listener;
    Worker worker;
    worker.Finished.AddHandler<&EndListener::OnEnd>(listener);
    worker.SetNotifyTarget(&listener);
    worker.Start();
    worker.Stop();
    EXPECT_TRUE(worker.Wait(InfiniteTimeout));
    // Stopped before it came up, it says nothing; otherwise exactly one message waits.
    if (worker.rounds > 0)
    {
        EXPECT_EQ(listener.posted.Acquire(0), 0);
        EXPECT_EQ(listener.ended, nullptr);
        GlobalEventProcessor().Process();
        EXPECT_EQ(listener.ended, &worker);
    }
}

// Its destructor does what that of every derived class does.
class SelfDeleting : public MThread
{
public:
    SelfDeleting(MSemaphore& signal, bool isFailing) : deleted(signal), fails(isFailing)
    {
        SetAutoDelete(true);
    }
    ~SelfDeleting() override
    {
        Stop();
        Wait(InfiniteTimeout);
        deleted.Release();
    }

private:
    std::int32_t Thread() override
    {
        if (fails)
            throw MException("body");
        return 0;
    }

    MSemaphore& deleted;
    bool fails;
};

TEST(MThread, DeletesItselfHoweverItEnds)
{
    for (int round = 0; round < 30; ++round)
    {
        MSemaphore deleted;
        auto* thread = new SelfDeleting(deleted, round % 3 == 0);
        thread->Create();
        if (round % 3 == 1)
            thread->Stop();
        else
            thread->Start();
        EXPECT_EQ(deleted.Acquire(InfiniteTimeout), 0);
    }
}

// A fault in a thread has to reach the handler that a host's crash reporter has installed.
TEST(MThreadDeathTest, LeavesFaultsToWhoHandlesThem)
{
    class Faulty : public MThread
    {
        std::int32_t Thread() override { return raise(SIGSEGV); }
    };
    const auto fault = []
    {
        std::signal(SIGSEGV, [](int) { _exit(33); });
        Faulty faulty;
        faulty.Start();
        faulty.Wait(InfiniteTimeout);
    };
    EXPECT_EXIT(fault(), testing::ExitedWithCode(33), "");
}

// What runs at a program's or a library's end is stopped and joined before the code goes.
TEST(MThreadDeathTest, EndsBeforeTheProgramDoes)
{
    struct Endless : MThread
    {
        std::int32_t Thread() override
        {
            hasBegun.Release();
            while (!IsCancelled())
                wakeSemaphore.Acquire(InfiniteTimeout);
            std::fputs("ended", stderr);
            return 0;
        }
        MSemaphore hasBegun;
    };
    const auto leave = [](bool deletesItself)
    {
        auto* endless = new Endless;
        endless->SetAutoDelete(deletesItself);
        endless->Start();
        endless->hasBegun.Acquire(InfiniteTimeout);
        std::exit(0);
    };
    for (const bool deletesItself : { false, true })
        EXPECT_EXIT(leave(deletesItself), testing::ExitedWithCode(0), "ended");
}
}   // namespace
