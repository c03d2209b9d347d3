// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <optional>
#include <utility>
#include <vector>

/// The parts of a command's work.
enum class Stage
{
    Loading,
    Resampling,
    Analysing,
    Fitting,
    Rendering
};

/// "loading" and so on, as the report names them.
const char* StageName(Stage stage);

/// Times the stages of the work, and on a terminal shows the running one on standard error: its name, a bar
/// and the time left. Nothing is shown in the first quarter of a second of a stage, nor with `quiet`.
class ProgressBar
{
public:
    explicit ProgressBar(bool quiet);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Notes how far a stage has come, 0 to 1; another one ends the stage before. False after an
    /// interrupt.
    bool Report(Stage stage, double fraction);
    /// Ends the running stage and wipes its line.
    void Finish();
    /// Seconds of each stage so far, in order of their start.
    const std::vector<std::pair<Stage, double>>& Seconds() const { return seconds; }

private:
    using Clock = std::chrono::steady_clock;

    void Draw(double fraction);
    void Wipe();

    bool visible;
    bool drawn = false;
    std::optional<Stage> stage;
    Clock::time_point started;
    Clock::time_point lastDrawn;
    std::vector<std::pair<Stage, double>> seconds;
};
