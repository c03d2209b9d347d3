// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/plugin/ModuleLoad.h"

#include <memory>
#include <mutex>
#include <vector>

#include "foundation/text/Boundary.h"
#include "hosts/module/ModuleUse.h"

namespace ModuleLoad
{
namespace
{
struct Holds
{
    std::mutex mutex;
    std::vector<std::unique_ptr<ModuleUse>> uses;
};

Holds& AllHolds()
{
    static Holds holds;
    return holds;
}
}   // namespace

bool Hold() noexcept
{
    const bool held = AtBoundary("MLibraryDLLInitialize", false,
                                 []
                                 {
                                     Holds& holds = AllHolds();
                                     const std::lock_guard guard(holds.mutex);
                                     holds.uses.push_back(std::make_unique<ModuleUse>());
                                     return true;
                                 });
    if (!held)
        LogLine("Fatal exception occured. Please contact the developer.");
    return held;
}

bool Release() noexcept
{
    return AtBoundary("ModuleExit", false,
                      []
                      {
                          Holds& holds = AllHolds();
                          const std::lock_guard guard(holds.mutex);
                          if (holds.uses.empty())
                              return false;
                          holds.uses.pop_back();
                          return true;
                      });
}
}   // namespace ModuleLoad
