// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "effect/FilterDictionary.h"
#include "foundation/vector/FFT.h"

/// What a search of one round found.
struct FitChoice
{
    const FilterCandidate* candidate = nullptr;   ///< null if no shape had an error below 3.4e38
    double error = 3.3999999521443642e38;   ///< squared, in dB^2
    double gain = 0;   ///< multiplier of the shape
    std::int32_t position = 0;   ///< grid point of the shape's centre, 0 to 1024
};

/// The sum of a[i] b[i] in double: products of floats are exact there, element i goes to partial sum i mod
/// 16, and the partial sums are added in the order of their numbers. Every error that the searches compare
/// stands on this order, so that the choice is the same on every processor.
double FitDot(const float* a, const float* b, std::int32_t n);

/// Which shapes a round may use.
struct FitSelection
{
    bool allowPassNotch = true;
    double maxQ = 20.0;
    bool cutsOnly = false;   ///< a type with gain only lowers; of the others those that rise nowhere

    bool Admits(const FilterCandidate& candidate) const
    {
        return candidate.q <= maxQ + 1e-50 && (allowPassNotch || candidate.hasGain) &&
               (!cutsOnly || candidate.highest < HighestOfCut);
    }
    /// The least multiplier of a shape: the shapes with gain are cuts, so that a negative one raises.
    double LowestMultiplier(const FilterCandidate& candidate) const
    {
        if (!candidate.hasGain)
            return 1.0;
        return cutsOnly ? 0.0 : -1.0;
    }

    /// dB. Steep shelves and resonant low-passes rise beside their slope. Chosen: cuts that pass add up to
    /// 0.01 dB at most.
    static constexpr float HighestOfCut = 0.001f;
};

/// One round of the pursuit: the best shape, shift and gain for a wanted curve.
///
/// What lies above FitGrid::UsableCount doesn't count: neither the curve nor the shapes. At a shift s, point
/// i of the curve sees shape[clamp(i + s, 0, 1023)]. With D the sum of wanted x shifted shape, E the shifted
/// shape's energy and W the curve's, the best multiplier g is D / E limited to -1..1 (a type with gain; 0..1
/// where only cuts are asked for) or just 1, and the squared error g^2 E - 2 g D + W. The least error wins;
/// of equal ones the earlier shape in the dictionary and then the lower shift.
///
/// Keeps its scratch from round to round. Thread: one at a time.
class FilterSearch
{
public:
    explicit FilterSearch(const FilterDictionary& usedDictionary);

    /// Every shift of every shape.
    ///
    /// One correlation by FFT for each shape gives D at all shifts to within CorrelationMargin; E is in the
    /// dictionary. A shift whose error is above the best one for certain is dropped, and only what is left,
    /// typically a few dozen shifts of 200000, is evaluated by the definition, in the definition's order.
    FitChoice Exhaustive(const float* wanted, const FitSelection& selection);

    /// The one shift of each shape that the extreme of a convolution by FFT names.
    FitChoice Convolving(const float* wanted, const FitSelection& selection);

    /// How far a value of the FFT correlation may lie from the true sum, in units of |shape| |wanted|
    /// (Euclidean norms). Chosen: single precision transforms of 2048 points stay some 20 times below.
    static constexpr double CorrelationMargin = 4e-6;

    /// D at all shifts of a shape through the FFT, as Exhaustive sees them before it looks closer; for
    /// measuring the margin. out[s + maxShift], maxShift + 512 values.
    void CorrelateAll(const float* wanted, const FilterCandidate& candidate, double* out);

private:
    struct Survivor
    {
        const FilterCandidate* candidate;
        std::int32_t shift;
        double lowestError;
    };

    bool TakeCurve(const float* curve);
    void TransformForCorrelation();
    void TransformForConvolution();
    std::int32_t ConvolutionShift(const FilterCandidate& candidate);
    double Dot(const FilterCandidate& candidate, std::int32_t shift) const;
    static double Energy(const FilterCandidate& candidate, std::int32_t shift);
    void Offer(const FilterCandidate& candidate, std::int32_t shift, double energy, double lowestMultiplier,
               FitChoice& best) const;
    void EstimateDots(const FilterCandidate& candidate);
    double EstimateErrors(const FilterCandidate& candidate, double lowestMultiplier);
    double ErrorMargin(const FilterCandidate& candidate) const;
    double CollectSurvivors(const FitSelection& selection);

    const FilterDictionary& dictionary;
    MFFT fft;

    std::vector<float> judged;   // the curve, zero where no error is judged
    const float* wanted = nullptr;   // the same
    double wantedEnergy = 0;
    std::vector<double> headSums;   // [k]: sum of the first k values of the curve
    std::vector<double> tailSums;   // [k]: sum of the last k values
    std::vector<float> curveSpectrum;
    double curveScale = 1;   // the curve is transformed divided by this power of two
    std::vector<float> correlation;
    std::vector<double> dots;   // [s + maxShift], estimates
    std::vector<double> errors;   // the same for errors
    std::vector<Survivor> survivors;
};
