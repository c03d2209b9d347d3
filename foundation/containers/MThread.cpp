// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/containers/MThread.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <iterator>
#include <mutex>
#include <new>
#include <vector>

#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "foundation/text/Boundary.h"

namespace
{
constexpr std::int32_t NotReturned = -2;

// Linux gives a thread its weight by its nice value, 19 lowest, -20 highest. These are added to that of the
// process, so that a thread of low priority stays below the host in a host that is itself put back.
constexpr int NiceOffsets[] = { 19, 10, 5, 0, -5, -10, -20 };
static_assert(std::size(NiceOffsets) == std::size(MEnumLabels<MThread::Priority>::Labels));

// A thread takes over the signal mask of its maker. The host's signals are none of our threads' business,
// but for those that a fault of the thread itself raises: blocked, they would end the process before a
// crash reporter sees them.
class SignalsBlocked
{
public:
    SignalsBlocked()
    {
        sigset_t blocked;
        sigfillset(&blocked);
        for (const int fault : { SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS })
            sigdelset(&blocked, fault);
        pthread_sigmask(SIG_SETMASK, &blocked, &before);
    }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }

private:
    sigset_t before;
};

}   // namespace

struct MThread::System
{
    pthread_t thread = {};

    std::mutex lock;
    std::condition_variable changed;
    MThread* object = nullptr;   // null when it is gone
    pid_t id = 0;   // of the system; 0 until the thread has come up
    bool isResumed = false;
    bool hasEnded = false;
    bool isJoined = false;

    bool IsCurrent() const { return pthread_equal(thread, pthread_self()) != 0; }

    // Once, after the thread's end.
    void Join()
    {
        {
            const std::lock_guard guard(lock);
            if (isJoined)
                return;
            isJoined = true;
        }
        pthread_join(thread, nullptr);
    }

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

class MThread::Registry
{
public:
    static Registry& Get()
    {
        // Never destroyed: objects that outlive EndAll may still come here.
        alignas(Registry) static unsigned char storage[sizeof(Registry)];
        static Registry& registry = *new (storage) Registry;
        static const AtEnd atEnd;
        return registry;
    }

    // Throws std::bad_alloc. Joins what has ended meanwhile with nobody waiting.
    void Add(const std::shared_ptr<System>& added)
    {
        const std::lock_guard guard(lock);
        std::erase_if(systems,
                      [](const std::shared_ptr<System>& system)
                      {
                          const bool isOver = system->WaitFor(0, [&system] { return system->hasEnded; });
                          if (isOver)
                              system->Join();
                          return isOver;
                      });
        systems.push_back(added);
    }

    void Remove(const std::shared_ptr<System>& removed)
    {
        const std::lock_guard guard(lock);
        std::erase(systems, removed);
    }

private:
    struct AtEnd
    {
        ~AtEnd() { Get().EndAll(); }
    };

    void EndAll()
    {
        std::vector<std::shared_ptr<System>> ending;
        {
            const std::lock_guard guard(lock);
            ending.swap(systems);
        }
        for (const std::shared_ptr<System>& system : ending)
        {
            system->Set(
                [&system]
                {
                    if (system->object != nullptr)
                        system->object->Cancel();
                    system->isResumed = true;
                });
            if (!system->IsCurrent())
                system->Join();
        }
    }

    std::mutex lock;
    std::vector<std::shared_ptr<System>> systems;
};

MThread::MThread()
{
    wakeSemaphore.Consumes = true;
}

MThread::~MThread()
{
    std::shared_ptr<System> running;
    {
        const MSynchronizerGuard guard(creationLock);
        running = handle;
    }
    if (running == nullptr)
        return;
    if (running->IsCurrent())
    {
        // It deletes itself. Nobody can join the thread from here: the registry does.
        running->Set([&running] { running->object = nullptr; });
        return;
    }
    Stop();
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
    Registry::Get().Add(created);
    const SignalsBlocked signalsBlocked;
    if (pthread_create(&created->thread, nullptr, &MThread::MThreadProc, argument.get()) != 0)
    {
        Registry::Get().Remove(created);
        throw MException("Could not create system thread.");
    }
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
    const int offset =
        NiceOffsets[CheckListIndex(static_cast<int>(priority), static_cast<int>(std::size(NiceOffsets)))];
    const int nice = std::clamp(getpriority(PRIO_PROCESS, static_cast<id_t>(getpid())) + offset, -20, 19);
    const MSynchronizerGuard guard(creationLock);
    Create();
    handle->WaitFor(InfiniteTimeout, [this] { return handle->id != 0; });
    if (setpriority(PRIO_PROCESS, static_cast<id_t>(handle->id), nice) != 0)
        throw MException("Could not set thread priority.");
}

void MThread::Stop()
{
    std::shared_ptr<System> stopped;
    {
        const MSynchronizerGuard guard(creationLock);
        stopped = handle;
    }
    if (stopped == nullptr)
        return;
    Cancel();
    stopped->Set([&stopped] { stopped->isResumed = true; });
}

void MThread::Cancel()
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
    if (waited->IsCurrent() || !waited->WaitFor(timeoutMs, [&waited] { return waited->hasEnded; }))
        return false;
    waited->Join();
    Registry::Get().Remove(waited);
    const MSynchronizerGuard guard(creationLock);
    if (handle == waited)
        Forget();
    return true;
}

void MThread::Forget()
{
    handle.reset();
    // A wish to stop that no wait has taken would end the first wait of the next run.
    while (wakeSemaphore.Acquire(0) == 0)
    {
    }
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

    MThread* object = nullptr;
    system->Set([&] { object = system->object; });
    constexpr std::intptr_t Failed = -1;
    std::intptr_t exitValue = Failed;
    try
    {
        object->Run();
        exitValue = 0;
    }
    catch (...)
    {
        LogSystemException("MThreadProc");
    }
    AtBoundary("MThreadProc", [object] { object->DeleteIfAsked(); });
    system->Set([&system] { system->hasEnded = true; });
    return reinterpret_cast<void*>(exitValue);
}

void MThread::Run()
{
    if (IsCancelled())
        return;
    RunBody();
    OnFinished();
    Notify();
}

void MThread::DeleteIfAsked()
{
    bool deletesItself = false;
    {
        const MSynchronizerGuard guard(stateLock);
        deletesItself = autoDelete;
    }
    if (deletesItself)
        delete this;
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
