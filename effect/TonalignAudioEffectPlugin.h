// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

#include "audio/analyzer/MSpectralAnalyzerAdvanced.h"
#include "effect/AnalysisFile.h"
#include "effect/AutoEqSettings.h"
#include "effect/EditorState.h"
#include "effect/FilterFitter.h"
#include "effect/FrequencyAreas.h"
#include "effect/MEqualizerProcessorPlugin.h"
#include "effect/WorkProgress.h"
#include "foundation/audiofile/AudioFile.h"
#include "plugin/contract/MAudioEffectPlugin.h"

/// The automatic equalizer: measures a target and a source, turns their difference into bands, and runs the
/// bands on audio.
///
/// The audio thread enters Process; everything else runs on one other thread, that of an editor or of an
/// offline host, but for parameter changes, which come on any. They share `lock`. Long work holds
/// `suspendCount` up instead of the lock. What a screen shows is told by marks in Changes(), and then read:
/// CurrentEditorState, the bands, the analyses.
class TonalignAudioEffectPlugin : public MAudioEffectPlugin
{
public:
    static constexpr std::int32_t ParameterCount = 12;
    static constexpr std::int32_t MaxChannels = 8;
    /// The analyser panel's records behind those of the equalizer.
    enum Parameter : std::int32_t
    {
        AnalyserGroup = 4,
        Smoothness = 5,
        AverageLength = 6,
        Overlap = 8
    };
    enum class EqualizeResult
    {
        Done,
        NothingToDo   ///< the analyses agree within 0.01 dB; the bands stay as they were
    };
    /// What to tell a user of EqualizeResult::NothingToDo.
    static MString NothingToDoText(bool separate);
    enum class WorkResult
    {
        Done,
        Cancelled   ///< by the progress; the analyses are as they were
    };

    TonalignAudioEffectPlugin();
    ~TonalignAudioEffectPlugin() override;

    std::int64_t InitProcessing(std::int32_t channelCount, double newSampleRate) override;
    void Process(const MProcessContext& context, float** inputs, float** outputs,
                 std::int32_t sampleCount) override;
    std::int32_t GetLatency() override { return equalizer.GetLatency(); }
    std::int32_t GetTailSize() override { return equalizer.GetTailSize(); }
    void SetUpsamplingRatio(std::int32_t ratio) override;
    /// Only the minimum-phase mode leaves it to the driver.
    bool NeedsDownsamplingFilter() const override { return equalizer.mode == 0; }
    void OnParameterChange(std::int32_t index) override;
    void Update() override;
    void Store(const MStoreParams& params) override;

    /// Starts a measurement of the target, or ends the running one and takes it over.
    void ToggleTargetAnalysis();
    void ToggleSourceAnalysis();
    /// Brings the analyzer in line with the flags and marks the analysis state; `rebuildAnalyzer` restarts
    /// the statistics. Thread: GUI.
    void UpdateAnalysisState(bool rebuildAnalyzer);
    /// Configures the analyzer for parameters that were moved since: they only mark, since they may come on
    /// the audio thread. For whoever is about to read the analyzer, and for a screen that sees
    /// Change::AnalyzerSettings. Thread: GUI.
    void BringAnalyzerUpToDate();
    /// Measures a whole file as source or target, at the effect's rate. The effect is silent meanwhile.
    /// Throws MException and leaves the analyses alone when the file can't be read.
    WorkResult AnalyseFile(const MString& path, bool isSource, const WorkProgress& progress = {});
    /// The same for audio in memory, which is brought to the effect's rate in place.
    WorkResult AnalyseBuffer(AudioSampleBuffer& buffer, bool isSource, const WorkProgress& progress = {});
    /// The prepared curves that Equalize compares: what it wants to reach, and where it starts.
    struct ComparedCurves
    {
        std::array<float, 1024> reference;
        std::array<float, 1024> target;
    };
    ComparedCurves Compare(bool separate);

    /// What Equalize did, and what it went by.
    struct Equalization
    {
        EqualizeResult result;
        ComparedCurves curves;
        std::int32_t first;   ///< the grid points from `first` to `last` lie inside the frequency limits
        std::int32_t last;
    };
    /// Fits bands that bring the target to the source (or, to separate, make room for it) and puts them in
    /// place of all that were there. With NeverAmplify the bands together raise nothing by more than 0.05 dB.
    /// Throws MException "Invalid source data. Please perform analyzation.".
    Equalization Equalize(bool separate);

    enum class DrySignal
    {
        LeftOut,
        MixedIn   ///< by the parameter "Dry/wet"
    };
    /// The bands' summed response in dB at the points of the fitter's grid.
    std::array<float, 1024> BandResponse(DrySignal dry = DrySignal::LeftOut);
    static const std::array<float, 1024>& FitterGrid() { return FitGrid::Hertz(); }

    /// Sets one of the analyses from elsewhere, such as a file.
    void SetAnalysis(const AnalysisArray& analysis, bool isSource);
    EditorState CurrentEditorState() const;

    AnalysisArray TargetAnalysis{};
    MRelaxed<bool> TargetAnalysisDefined = false;
    AnalysisArray SourceAnalysis{};
    MRelaxed<bool> SourceAnalysisDefined = false;
    MRelaxed<bool> Analysing = false;
    MRelaxed<bool> AnalysingSource = false;
    MRelaxed<bool> DrawingSource = false;
    AutoEqSettings settings;
    MEnvelope SourceAnalysisEnvelope;   ///< the curve of Draw mode, dB over log10 of Hz
    FrequencyAreas areas;
    MEqualizerProcessorPlugin equalizer;
    MSpectralAnalyzerAdvanced analyzer;

private:
    void DescribeParameters();
    /// What a match is made of, as it stood when it began.
    struct MatchInput
    {
        AnalysisArray target;
        AnalysisArray source;
        bool sourceDefined = false;
        AutoEqSettings settings;
    };
    /// What a cancelled file analysis returns to.
    struct Measurement
    {
        bool targetDefined = false;
        bool sourceDefined = false;
    };
    /// What BringAnalyzerUpToDate has to do.
    enum AnalyzerWork : std::uint32_t
    {
        SmoothingWork = 1,
        ClientsWork = 2
    };

    void TakeLock();
    MatchInput TakeMatchInput() const;
    ComparedCurves Compare(const MatchInput& input, bool separate);
    Measurement RunningMeasurement() const;
    void ReturnTo(const Measurement& before);
    void ToggleAnalysis(bool source);
    bool IsAnalyzerShown() const;
    void AlignInputs(float** inputs, std::int32_t sampleCount);
    void WriteBands(const std::vector<FittedFilter>& fitted);
    void StoreAnalyses(const MStoreParams& params);
    void StoreCurvesAndBands(const MStoreParams& params);

    std::array<MPluginParameterInfo, ParameterCount> parameters;
    MPluginSpecialParameterInfo bandParameters;
    AnalyzerClient outputClient;
    AnalyzerClient analysisClient;
    FilterFitter fitter;
    Interpolator smoothing;   // of compared analyses
    std::vector<std::vector<float>> alignedInputs;
    std::array<float*, MaxChannels> alignedPointers{};
    std::atomic<std::uint32_t> analyzerWork = 0;
};
