// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "plugin/driver/MAudioPlugin.h"
#include "state/tree/MStoreParams.h"

/// The locks of one Store of the plug-in object. Nests.
///
/// Reading is a change of what processing reads, and prepares at its end where that is needed. Writing keeps
/// out other readers and writers only, and the audio goes on: a host saves its session while it plays.
class StoreScope
{
public:
    StoreScope(MAudioPlugin& plugin, const MStoreParams& params)
    {
        if (params.saving)
            writing.emplace(plugin.initLock);
        else
            reading.emplace(plugin);
    }
    /// Of a read: see ProcessingChange::Finish.
    void Finish()
    {
        if (!reading)
            return;
        reading->Prepare(ProcessingChange::Preparation::WhereNeeded);
        reading->Finish();
    }

private:
    std::optional<MSynchronizerGuard> writing;
    std::optional<ProcessingChange> reading;
};
