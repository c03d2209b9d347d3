// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/tonalign/BandSpec.h"

/// The outcome of a command, ready to be shown. What a command has nothing to say about stays empty.
struct Report
{
    std::string commandName;
    std::vector<BandSpec> bands;
    std::optional<double> rmsBeforeDb;
    std::optional<double> rmsAfterDb;
    std::optional<std::int32_t> latency;   ///< samples that the plug-in reports and the program takes out
    double sampleRate = 0;
    std::optional<std::int32_t> channels;
    std::optional<std::int64_t> frames;
    std::optional<double> peakDbfs;
    std::optional<std::int64_t> clipped;
    bool nothingToDo = false;
    std::string information;
    std::string outputPath;
    std::vector<std::pair<std::string, double>> seconds;
};

/// The band table, the match figures, the output's level.
std::string AsText(const Report& report);
/// One JSON object with everything.
std::string AsJson(const Report& report);
/// The table alone.
std::string BandTable(const std::vector<BandSpec>& bands);
/// 20 log10 of an amplitude; silence is -200.
double DecibelsOf(double amplitude);
