// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Held by every host adapter while it lives: the first one starts what the whole module shares, the last one
/// ends it, so that a host that unloads the module afterwards finds nothing left behind. Any thread.
class ModuleUse
{
public:
    /// Throws MException "Could not acquire mutex.".
    ModuleUse();
    ~ModuleUse();
    ModuleUse(const ModuleUse&) = delete;
    ModuleUse& operator=(const ModuleUse&) = delete;

    /// Adapters alive in this module.
    static int Count();
};
