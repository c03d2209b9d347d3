// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "effect/WantedResponse.h"
#include "hosts/offline/OfflineHost.h"
#include "tools/tonalign/AudioOutput.h"
#include "tools/tonalign/Inputs.h"
#include "tools/tonalign/Options.h"
#include "tools/tonalign/ProgressBar.h"
#include "tools/tonalign/Report.h"

/// Thrown when the work fails on a file: status 1. The message stands without the file's name.
struct FileError
{
    std::string path;
    std::string message;
};

/// Carries out one command: what a user at an editor would do, through the offline host. Throws FileError,
/// UsageError and MException; no output file appears then.
class Session
{
public:
    explicit Session(const Options& options);

    /// Runs the command of the options and answers what is to be printed.
    std::string Run();

private:
    std::string RunFit();
    std::string RunRender();
    std::string RunAnalyse();
    std::string RunShow();

    void CheckOutputs();
    /// The kind of a file that has to be measured or to hold what was measured.
    InputKind MeasurableKind(const std::string& path);
    void CheckRange(double usableHz) const;
    void LoadAudio(AudioInput& input, const std::string& path);
    /// Measures audio as target or source at the rate that the host is prepared for.
    void Measure(AudioInput& input, bool isSource);
    void MeasureFile(const std::string& path, bool isSource);
    void ApplyFitSettings(double usableHz);
    void ApplySoundSettings();
    /// The stages around the equalizer: upsampling, gain control, channel mode. In force from the host's next
    /// Prepare on, and kept off until the measuring is done, so that files are measured as they are.
    void ApplyStages(std::int32_t channels);
    /// Reads a plug-in state into the plug-in.
    void LoadStateFrom(const std::string& path);
    void Fit();
    void FillBands();
    /// Writes the state and the preset that were asked for; the caller commits them.
    void WriteSettings(std::vector<std::unique_ptr<OutputFile>>& files);
    /// Renders into the output file; nothing without one. Names the files only when all of them are written.
    void RenderAndCommit(AudioInput* input);
    OutputFormat FormatFor(const AudioInput& input) const;
    std::string ShowState();
    std::string ShowSpectrum(const AnalysisArray& analysis, const AudioInput* audio);
    std::string Finish();

    const Options& options;
    ProgressBar progress;
    OfflineHost host;
    Report report;
};
