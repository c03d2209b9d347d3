// SPDX-License-Identifier: GPL-3.0-or-later
// Equalize and Separate: from two analyses to bands.
#include <algorithm>
#include <cmath>

#include "effect/TonalignAudioEffectPlugin.h"
#include "effect/WantedResponse.h"
#include "foundation/text/MException.h"
#include "foundation/text/Translate.h"

namespace
{
constexpr double maximalQ = 20;
// What "never amplify" lets pass: that a band is kept with 32-bit numbers changes it by less than the rest to
// 0.05 dB.
constexpr double highestOfCutsDb = 0.03;

// What a damaged state may hold instead of levels.
bool IsFinite(const AnalysisArray& analysis)
{
    return std::all_of(analysis.begin(), analysis.end(), [](float value) { return std::isfinite(value); });
}
}   // namespace

TonalignAudioEffectPlugin::MatchInput TonalignAudioEffectPlugin::TakeMatchInput() const
{
    const MSynchronizerGuard guard(lock);
    return { .target = TargetAnalysis,
             .source = SourceAnalysis,
             .sourceDefined = SourceAnalysisDefined,
             .settings = settings };
}

TonalignAudioEffectPlugin::ComparedCurves TonalignAudioEffectPlugin::Compare(bool separate)
{
    return Compare(TakeMatchInput(), separate);
}

TonalignAudioEffectPlugin::ComparedCurves TonalignAudioEffectPlugin::Compare(const MatchInput& input,
                                                                             bool separate)
{
    ComparedCurves curves;
    curves.target = input.target;
    GridCurve source = input.source;
    // Not the analyzer's kernel, which a change of the parameter may be making anew.
    smoothing.SetWidth(MSpectralAnalyzerAdvanced::SmoothingWidth(parameters[Smoothness].RunningValue()));
    PrepareAnalysis(curves.target, smoothing);
    PrepareAnalysis(source, smoothing);
    if (separate)
        curves.reference = WantedResponse::RoomBeside(curves.target, source, input.settings.spaceInMixLimit);
    else if (input.sourceDefined)
        curves.reference = source;
    else
        curves.reference.fill(0);
    return curves;
}

MString TonalignAudioEffectPlugin::NothingToDoText(bool separate)
{
    MString text =
        Translate("There is nothing to equalize, because the analysis shows it is already perfect.");
    if (!separate)
        return text;
    return text + "\n\n" +
           Translate("Since you are trying to separate, you may want to use Settings/Space in mix limit "
                     "controller to increase requested separation limit.");
}

TonalignAudioEffectPlugin::Equalization TonalignAudioEffectPlugin::Equalize(bool separate)
{
    // A copy: a host may load a state while this works.
    MatchInput input = TakeMatchInput();
    if (!IsFinite(input.target) || (input.sourceDefined && !IsFinite(input.source)))
        throw MException("Invalid source data. Please perform analyzation.");
    Equalization done{
        .result = EqualizeResult::Done, .curves = Compare(input, separate), .first = 0, .last = 0
    };
    WantedResponse wanted(done.curves.target, done.curves.reference);
    if (wanted.IsFlat())
        done.result = EqualizeResult::NothingToDo;
    wanted.Limit(FitterGrid(), { .frequencyMinHz = input.settings.adaptionFrequencyMin,
                                 .frequencyMaxHz = input.settings.adaptionFrequencyMax,
                                 .neverAmplify = input.settings.neverAmplify });
    done.first = wanted.First();
    done.last = wanted.Last();
    if (done.result == EqualizeResult::NothingToDo)
        return done;
    wanted.Transform(input.settings.autoEqEnvelope);
    std::vector<FittedFilter> fitted;
    fitter.Fit(wanted.Values().data(), sampleRate, fitted, input.settings.maxAdaptionBars,
               !input.settings.disablePassNotch, input.settings.adaptionAlgorithm, maximalQ,
               input.settings.neverAmplify ? highestOfCutsDb : ResponseCeiling::None);
    {
        // A short gap in the audio, so that the bands can change without the lock.
        const SuspendGuard suspended(*this);
        const EqualizerAutomation::Values before = equalizer.automation.PresentValues();
        WriteBands(fitted);
        Update();
        equalizer.automation.MarkChangesSince(before);
    }
    equalizer.UpdateAllBandControls();
    return done;
}

void TonalignAudioEffectPlugin::WriteBands(const std::vector<FittedFilter>& fitted)
{
    equalizer.SetDefaults(false);
    for (std::int32_t index = 0; index < MEqualizerBase::BandCount; ++index)
    {
        BandPoint& band = equalizer.Band(index);
        const auto place = static_cast<std::size_t>(index);
        band.enabled = place < fitted.size();
        if (place >= fitted.size())
            continue;
        const FittedFilter& filter = fitted[place];
        band.type = filter.type;
        band.y = filter.gain;
        band.x = std::log10(filter.frequency);
        band.width = WidthFromQ(filter.q);
        band.order = 0;
        band.harmonicsDepth = 0.0;
        band.RoundToStored();
    }
}

std::array<float, 1024> TonalignAudioEffectPlugin::BandResponse(DrySignal dry)
{
    const std::array<float, 1024>& grid = FitterGrid();
    const ResponseCurve curve = equalizer.CurrentResponse(dry == DrySignal::MixedIn);
    std::array<float, 1024> response;
    for (std::size_t index = 0; index < response.size(); ++index)
        response[index] = static_cast<float>(curve.DecibelsAt(std::log10(static_cast<double>(grid[index]))));
    return response;
}
