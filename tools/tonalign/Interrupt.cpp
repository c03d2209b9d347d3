// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/tonalign/Interrupt.h"

#include <array>
#include <climits>
#include <csignal>
#include <cstring>

#include <unistd.h>

namespace
{
// What the handler reads: names in memory of their own, since a signal may come in the middle of an
// allocation.
struct Slot
{
    volatile std::sig_atomic_t inUse = 0;
    char path[PATH_MAX];
};

std::array<Slot, 4> slots;
volatile std::sig_atomic_t interrupted = 0;

void OnSignal(int signal)
{
    if (interrupted == 0)
    {
        interrupted = 1;
        return;
    }
    for (const Slot& slot : slots)
        if (slot.inUse != 0)
            unlink(slot.path);
    _exit(128 + signal);
}
}   // namespace

void CatchInterrupts()
{
    struct sigaction action = {};
    action.sa_handler = &OnSignal;
    sigemptyset(&action.sa_mask);
    for (const int signal : { SIGINT, SIGTERM, SIGHUP })
        sigaddset(&action.sa_mask, signal);
    for (const int signal : { SIGINT, SIGTERM, SIGHUP })
    {
        // What was ignored from the start stays so, as under nohup.
        struct sigaction before = {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
    std::signal(SIGXFSZ, SIG_IGN);
}

bool Interrupted()
{
    return interrupted != 0;
}

InterruptedFile::InterruptedFile(const std::string& path)
{
    if (path.size() >= PATH_MAX)
        return;
    for (std::size_t index = 0; index < slots.size() && slot < 0; ++index)
        if (slots[index].inUse == 0)
        {
            std::memcpy(slots[index].path, path.c_str(), path.size() + 1);
            slots[index].inUse = 1;
            slot = static_cast<int>(index);
        }
}

InterruptedFile::~InterruptedFile()
{
    if (slot >= 0)
        slots[static_cast<std::size_t>(slot)].inUse = 0;
}
