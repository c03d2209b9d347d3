// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/tonalign/Interrupt.h"

#include <csignal>

namespace
{
volatile std::sig_atomic_t interrupted = 0;

void NoteInterrupt(int)
{
    interrupted = 1;
}
}   // namespace

void CatchInterrupts()
{
    struct sigaction action = {};
    action.sa_handler = &NoteInterrupt;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    std::signal(SIGXFSZ, SIG_IGN);
}

bool Interrupted()
{
    return interrupted != 0;
}
