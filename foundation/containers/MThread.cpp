// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/containers/MThread.h"

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>

#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "foundation/text/Boundary.h"

namespace
{
constexpr std::int32_t NotReturned = -2;

struct PriorityRow
{
    const char* label;
    int nice;   // Linux gives a thread its weight by its nice value, 19 lowest, -20 highest
};

constexpr PriorityRow PriorityRows[MThread::PriorityCount] = {
    { "Idle", 19 }, { "Lowest", 10 },   { "Low", 5 },        { "Normal", 0 },
    { "High", -5 }, { "Highest", -10 }, { "Critical", -20 },
};

// A thread takes over the signal mask of its maker. The host's signals are none of our threads' business.
class SignalsBlocked
{
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }

private:
    sigset_t before;
};

const PriorityRow& RowOf(MThread::Priority priority)
{
    return PriorityRows[CheckListIndex(static_cast<int>(priority), MThread::PriorityCount)];
}
}   // namespace

struct MThread::System
{
    pthread_t thread = {};
    MThread* object = nullptr;

    std::mutex lock;
    std::condition_variable changed;
    pid_t id = 0;   // of the system; 0 until the thread has come up
    bool isResumed = false;
    bool hasEnded = false;

    template <typename Change>
    void Set(Change&& change)
    {
        const std::lock_guard guard(lock);
        change();
        changed.notify_all();
    }

    template <typename Condition>
    bool WaitFor(std::uint32_t timeoutMs, Condition&& condition)
    {
        std::unique_lock guard(lock);
        if (timeoutMs != InfiniteTimeout)
            return changed.wait_for(guard, std::chrono::milliseconds(timeoutMs), condition);
        changed.wait(guard, condition);
        return true;
    }
};

const char* MThread::PriorityLabel(Priority priority)
{
    return RowOf(priority).label;
}

MThread::MThread()
{
    wakeSemaphore.Consumes = true;
}

MThread::~MThread()
{
    const MSynchronizerGuard guard(creationLock);
    const std::shared_ptr<System> running = handle;
    if (running == nullptr)
        return;
    if (pthread_equal(running->thread, pthread_self()) != 0)
    {
        Forget(running, false);   // it deletes itself on its own thread, where nobody can join it
        return;
    }
    Stop();
    running->Set([&running] { running->isResumed = true; });
    Wait(InfiniteTimeout);
}

std::int32_t MThread::Thread()
{
    return 0;
}

void MThread::OnFinished() {}

void MThread::Create()
{
    const MSynchronizerGuard guard(creationLock);
    if (handle != nullptr)
        return;
    auto created = std::make_shared<System>();
    created->object = this;
    auto argument = std::make_unique<std::shared_ptr<System>>(created);
    const SignalsBlocked signalsBlocked;
    if (pthread_create(&created->thread, nullptr, &MThread::MThreadProc, argument.get()) != 0)
        throw MException("Could not create system thread.");
    static_cast<void>(argument.release());   // the thread's from here on
    handle = std::move(created);
}

void MThread::Start()
{
    const MSynchronizerGuard guard(creationLock);
    Create();
    handle->Set([this] { handle->isResumed = true; });
}

void MThread::SetPriority(Priority priority)
{
    const int nice = RowOf(priority).nice;
    const MSynchronizerGuard guard(creationLock);
    Create();
    handle->WaitFor(InfiniteTimeout, [this] { return handle->id != 0; });
    if (setpriority(PRIO_PROCESS, static_cast<id_t>(handle->id), nice) != 0)
        throw MException("Could not set thread priority.");
}

void MThread::Stop()
{
    {
        const MSynchronizerGuard guard(stateLock);
        cancelled = true;
    }
    wakeSemaphore.Release();
}

bool MThread::Wait(std::uint32_t timeoutMs)
{
    std::shared_ptr<System> waited;
    {
        const MSynchronizerGuard guard(creationLock);
        waited = handle;
    }
    if (waited == nullptr)
        return true;
    const bool hasEnded = waited->WaitFor(timeoutMs, [&waited] { return waited->hasEnded; });
    const MSynchronizerGuard guard(creationLock);
    if (handle == waited)
        Forget(waited, hasEnded);
    return hasEnded;
}

void MThread::Forget(const std::shared_ptr<System>& forgotten, bool hasEnded)
{
    if (hasEnded)
        pthread_join(forgotten->thread, nullptr);
    else
        pthread_detach(forgotten->thread);
    handle.reset();
    const MSynchronizerGuard guard(stateLock);
    exitCode = NotReturned;
    cancelled = false;
}

bool MThread::IsCancelled()
{
    const MSynchronizerGuard guard(stateLock);
    return cancelled;
}

std::int32_t MThread::ExitCode()
{
    const MSynchronizerGuard guard(stateLock);
    return exitCode;
}

void MThread::SetAutoDelete(bool deletesItself)
{
    const MSynchronizerGuard guard(stateLock);
    autoDelete = deletesItself;
}

void MThread::SetNotifyTarget(MEventTarget* target)
{
    const MSynchronizerGuard guard(stateLock);
    notifyTarget = target;
}

void* MThread::MThreadProc(void* argument)
{
    const std::unique_ptr<std::shared_ptr<System>> owned(static_cast<std::shared_ptr<System>*>(argument));
    const std::shared_ptr<System> system = *owned;
    system->Set([&system] { system->id = static_cast<pid_t>(syscall(SYS_gettid)); });
    system->WaitFor(InfiniteTimeout, [&system] { return system->isResumed; });

    constexpr std::intptr_t Failed = -1;
    std::intptr_t exitValue = Failed;
    try
    {
        Run(system->object);
        exitValue = 0;
    }
    catch (...)
    {
        LogSystemException("MThreadProc");
    }
    system->Set([&system] { system->hasEnded = true; });
    return reinterpret_cast<void*>(exitValue);
}

void MThread::Run(MThread* thread)
{
    if (thread->IsCancelled())
        return;
    thread->RunBody();
    thread->OnFinished();
    thread->Notify();
    bool deletesItself = false;
    {
        const MSynchronizerGuard guard(thread->stateLock);
        deletesItself = thread->autoDelete;
    }
    if (deletesItself)
        delete thread;
}

void MThread::RunBody()
{
    const std::int32_t code = Thread();
    const MSynchronizerGuard guard(stateLock);
    exitCode = code;
}

void MThread::Notify()
{
    MEventTarget* target = nullptr;
    {
        const MSynchronizerGuard guard(stateLock);
        target = notifyTarget;
    }
    if (target == nullptr)
        return;
    MOnThreadNotifyParams params;
    params.source = this;
    Finished.Post(GlobalEventProcessor(), params);
    target->OnEventPosted();
}
