// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/driver/ProcessingChange.h"

#include "foundation/text/Boundary.h"
#include "plugin/driver/MAudioPlugin.h"

ProcessingChange::ProcessingChange(MAudioPlugin& changed)
    : plugin(changed), processGuard(std::in_place, plugin.processLock),
      initGuard(std::in_place, plugin.initLock), settingsGuard(std::in_place, plugin.settingsLock),
      outermost(!plugin.changing)
{
    plugin.changing = true;
}

ProcessingChange::~ProcessingChange()
{
    if (!processGuard)
        return;
    if (outermost)
        AtBoundary("MAudioPlugin::InitProcessing", [this] { plugin.FinishChange(); });
    Unlock();
}

void ProcessingChange::Prepare(Preparation how)
{
    if (plugin.wantedPreparation != Preparation::Always)
        plugin.wantedPreparation = how;
}

void ProcessingChange::Finish()
{
    if (!outermost)
    {
        Unlock();
        return;
    }
    plugin.FinishChange();
    Unlock();
    plugin.CheckLatency();
}

void ProcessingChange::Unlock()
{
    if (outermost)
        plugin.changing = false;
    settingsGuard.reset();
    initGuard.reset();
    processGuard.reset();
}
