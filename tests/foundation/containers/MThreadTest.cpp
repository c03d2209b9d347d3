// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/containers/MThread.h"

#include <atomic>
#include <string>

#include <gtest/gtest.h>
#include <sys/resource.h>

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

TEST(MThread, WaitsSuspendedUntilItIsStarted)
{
    Worker worker;
    worker.Create();
    worker.Create();
    EXPECT_NE(worker.hasRun.Acquire(20), 0);
    worker.Start();
    EXPECT_EQ(worker.hasRun.Acquire(InfiniteTimeout), 0);
}

TEST(MThread, DoesNotRunWhenItWasCancelledBefore)
{
    Worker worker;
    worker.Create();
    worker.Stop();
    worker.Start();
    EXPECT_TRUE(worker.Wait(InfiniteTimeout));
    EXPECT_EQ(worker.rounds, 0);
    EXPECT_EQ(worker.codeAtFinish, 0);
}

// Has no data of its own in the body, so it may leave the stop to the base.
class Sleeper : public MThread
{
};

TEST(MThread, IsDestroyedWhileSuspended)
{
    Sleeper sleeper;
    sleeper.Create();
}

TEST(MThread, LowersItsPriority)
{
    Worker worker;
    worker.SetPriority(MThread::Priority::Low);
    worker.Start();
    worker.hasRun.Acquire(InfiniteTimeout);
    EXPECT_EQ(worker.niceValue, std::max(5, getpriority(PRIO_PROCESS, 0)));
    EXPECT_STREQ(MThread::PriorityLabel(MThread::Priority::Critical), "Critical");
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

class SelfDeleting : public MThread
{
public:
    explicit SelfDeleting(MSemaphore& signal) : deleted(signal) { SetAutoDelete(true); }
    ~SelfDeleting() override { deleted.Release(); }

private:
    MSemaphore& deleted;
};

TEST(MThread, DeletesItselfWhenAsked)
{
    MSemaphore deleted;
    auto* thread = new SelfDeleting(deleted);
    thread->Start();
    EXPECT_EQ(deleted.Acquire(InfiniteTimeout), 0);
}
}   // namespace
