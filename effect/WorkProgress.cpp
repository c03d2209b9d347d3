// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/WorkProgress.h"

const char* WorkStageTitle(WorkStage stage)
{
    switch (stage)
    {
    case WorkStage::LoadingFile:
        return "Loading the file...";
    case WorkStage::Resampling:
        return "Resampling...";
    case WorkStage::Analysing:
        return "Analysing...";
    }
    return "";
}
