// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

#include "foundation/containers/MEvent.h"
#include "foundation/text/MEnumLabels.h"
#include "foundation/threads/MMutex.h"
#include "foundation/threads/MSemaphore.h"

/// A thread whose body a derived class gives, with a stop that the body has to agree to.
///
/// The usual body: while not IsCancelled(), do one round, then wakeSemaphore.Acquire(periodMs). Stop()
/// ends that wait early. A derived class whose data the body uses calls Stop() and Wait() in its own
/// destructor. After Wait() the object can be started anew.
///
/// No thread outlives the code that it runs: before a library is unloaded, and at a program's end, all that
/// still run are stopped and joined.
class MThread : public MObject
{
public:
    enum class Priority
    {
        Idle,
        Lowest,
        Low,
        Normal,
        High,
        Highest,
        Critical
    };

    MThread();
    MThread(const MThread&) = delete;
    MThread& operator=(const MThread&) = delete;
    /// Stops and joins.
    ~MThread() override;

    /// Makes the system thread, suspended, unless there is one. Throws MException "Could not create system
    /// thread.".
    void Create();
    /// Creates it if necessary and lets it run.
    void Start();
    /// Creates it if necessary. Priorities above Normal need a privilege. Throws MException "Could not set
    /// thread priority.".
    void SetPriority(Priority priority);
    /// Asks the body to return; a suspended thread ends without running it. Does nothing when there is no
    /// thread. Thread: any.
    void Stop();
    /// Joins; true when the thread has ended in the time, or there is none. A thread that has not goes on,
    /// and can be waited for again. On the thread itself it answers false at once: the destructor of an
    /// object that deletes itself may call it.
    bool Wait(std::uint32_t timeoutMs);
    /// The body asks this often.
    bool IsCancelled();
    /// -2 until the body has returned.
    std::int32_t ExitCode();
    /// Lets the object delete itself when the thread ends, however it does.
    void SetAutoDelete(bool deletesItself);
    /// Who is told when the thread ends, through `Finished`.
    void SetNotifyTarget(MEventTarget* target);

    MEvent<MOnThreadNotifyParams> Finished;

protected:
    /// The body; its answer is the exit code.
    virtual std::int32_t Thread();
    /// On the thread, after the body has returned.
    virtual void OnFinished();

    MSemaphore wakeSemaphore;

private:
    struct System;   // what the system thread may touch when the object is gone
    class Registry;   // of all system threads that nobody has joined

    static void* MThreadProc(void* argument);
    void Run();
    void RunBody();
    void Notify();
    void Cancel();
    void DeleteIfAsked();
    void Forget();

    std::shared_ptr<System> handle;   // null until created and after the join
    std::int32_t exitCode = -2;
    bool autoDelete = false;
    bool cancelled = false;
    MEventTarget* notifyTarget = nullptr;
    MLock stateLock;   // guards the four above
    MMutex creationLock;   // guards `handle`
};

template <>
struct MEnumLabels<MThread::Priority>
{
    static constexpr const char* Labels[] = {
        "Idle", "Lowest", "Low", "Normal", "High", "Highest", "Critical"
    };
};
