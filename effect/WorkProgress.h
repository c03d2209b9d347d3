// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>

/// The parts of long work, for whoever shows how far it is.
enum class WorkStage : std::int32_t
{
    LoadingFile,
    Resampling,
    Analysing
};

/// "Loading the file...", "Resampling...", "Analysing...": the title of a progress window.
const char* WorkStageTitle(WorkStage stage);

/// Hears the stage and the share of it that is done, 0 to 1, on the thread that works. False cancels. An
/// empty one never does.
using WorkProgress = std::function<bool(WorkStage stage, double fraction)>;
