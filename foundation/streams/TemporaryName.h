// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <string>

#include <unistd.h>

/// The name of a hidden file that stands for another one beside it until that is whole. The process and a
/// counter make it unique; it is short, however long the other's name may be. Thread: any.
inline std::string TemporaryName()
{
    static std::atomic<unsigned> counter = 0;
    std::string name(1, '.');
    name.append(std::to_string(getpid())).append("-").append(std::to_string(counter++)).append(".tmp");
    return name;
}
