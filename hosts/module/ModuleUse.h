// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Held by every host adapter while it lives, so that the module knows whether somebody uses it. What all
/// plug-in objects share starts with the first of them (see CreateInstance) and goes when the host unloads
/// the module. Any thread.
class ModuleUse
{
public:
    /// Throws MException "Could not acquire mutex.".
    ModuleUse();
    ~ModuleUse();
    ModuleUse(const ModuleUse&) = delete;
    ModuleUse& operator=(const ModuleUse&) = delete;

    /// Notes the format of the host that made the last adapter, as the module's host type.
    static void SetHostType(const char* type);
    /// Adapters alive in this module.
    static int Count();
};
