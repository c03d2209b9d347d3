// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "foundation/threads/MSynchronizer.h"

class MAudioPlugin;

/// A change of what processing reads: holds the locks of the plug-in object for a scope, so that blocks are
/// dropped meanwhile.
///
/// Changes nest: settings that are loaded contain a change of the upsampling, which contains a new
/// preparation. Only the outermost one prepares, once, and only after its locks are gone is the host told of
/// what came of it, since a host may answer by calling back, from another thread and waiting for it.
/// Thread: any but audio.
class ProcessingChange
{
public:
    enum class Preparation
    {
        WhereNeeded,   ///< unless rate, channels and upsampling are as they were: the sound goes on then
        Always   ///< processing starts from silence
    };

    explicit ProcessingChange(MAudioPlugin& plugin);
    /// Without Finish, as when an exception passes, prepares what was asked for all the same, and tells
    /// nobody.
    ~ProcessingChange();
    ProcessingChange(const ProcessingChange&) = delete;
    ProcessingChange& operator=(const ProcessingChange&) = delete;

    /// Asks for a preparation at the end of the outermost change.
    void Prepare(Preparation how);
    /// Ends the change. Throws what the preparation throws.
    void Finish();

private:
    void Unlock();

    MAudioPlugin& plugin;
    std::optional<MSynchronizerGuard> processGuard;
    std::optional<MSynchronizerGuard> initGuard;
    std::optional<MSynchronizerGuard> settingsGuard;
    bool outermost = false;
};
