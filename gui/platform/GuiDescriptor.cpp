// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/platform/GuiDescriptor.h"

#include <cerrno>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include "foundation/text/MException.h"

GuiDescriptor::GuiDescriptor()
    : all(epoll_create1(EPOLL_CLOEXEC)), wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      timer(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK))
{
    if (all < 0 || wake < 0 || timer < 0)
    {
        const MString reason = SystemErrorText(errno);
        CloseAll();
        throw MException(reason);
    }
    Watch(wake);
    Watch(timer);
}

GuiDescriptor::~GuiDescriptor()
{
    CloseAll();
}

void GuiDescriptor::CloseAll()
{
    for (const int descriptor : { timer, wake, all })
        if (descriptor >= 0)
            close(descriptor);
}

void GuiDescriptor::Watch(int descriptor)
{
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = descriptor;
    epoll_ctl(all, EPOLL_CTL_ADD, descriptor, &event);
}

void GuiDescriptor::Unwatch(int descriptor)
{
    epoll_ctl(all, EPOLL_CTL_DEL, descriptor, nullptr);
}

void GuiDescriptor::Wake()
{
    if (!isAwake.exchange(true))
        eventfd_write(wake, 1);
}

bool GuiDescriptor::TakeWake()
{
    if (!isAwake.load())
        return false;
    // In this order: a wake-up in between is told once more rather than lost.
    eventfd_t count = 0;
    eventfd_read(wake, &count);
    return isAwake.exchange(false);
}

void GuiDescriptor::SetTimer(std::uint64_t now, std::int32_t milliseconds)
{
    const std::uint64_t moment = milliseconds < 0 ? 0 : now + static_cast<std::uint64_t>(milliseconds);
    if (moment == due)
        return;
    due = moment;
    itimerspec setting{};
    if (due != 0)
    {
        setting.it_value.tv_sec = milliseconds / 1000;
        // All zero would switch it off.
        setting.it_value.tv_nsec = milliseconds == 0 ? 1 : milliseconds % 1000 * 1000000L;
    }
    timerfd_settime(timer, 0, &setting, nullptr);
}

void GuiDescriptor::Wait(std::int32_t milliseconds) const
{
    pollfd waited{ all, POLLIN, 0 };
    poll(&waited, 1, milliseconds);
}
