// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/FilterSearch.h"

#include <algorithm>
#include <cmath>

#include "foundation/vector/VectorOperations.h"

namespace
{
constexpr std::int32_t N = FitGrid::Count;
constexpr std::int32_t TransformSize = FilterCandidate::SpectrumSize;
constexpr double NoError = 3.3999999521443642e38;
constexpr float SpectrumGuard = 1e-15f;

// The best multiplier of the shape. Not a number counts as 1, which makes no difference: the error is then
// not a number either.
inline double Multiplier(double dot, double energy, double lowest)
{
    double gain = dot / energy;
    gain = gain < 1.0 ? gain : 1.0;
    return gain > lowest ? gain : lowest;
}

inline double SquaredError(double gain, double energy, double dot, double wantedEnergy)
{
    return gain * gain * energy - 2.0 * gain * dot + wantedEnergy;
}

// Product of two packed spectra: two real bins, then complex ones.
void MultiplyPacked(const float* a, const float* b, float* dst)
{
    dst[0] = a[0] * b[0];
    dst[1] = a[1] * b[1];
    MVector::ComplexMultiply(a + 2, b + 2, dst + 2, TransformSize / 2 - 1);
}

std::size_t Index(std::int32_t value)
{
    return static_cast<std::size_t>(value);
}
}   // namespace

double FitDot(const float* a, const float* b, std::int32_t n)
{
    constexpr std::int32_t Lanes = 16;
    double sums[Lanes] = {};
    std::int32_t i = 0;
    for (; i + Lanes <= n; i += Lanes)
        for (std::int32_t lane = 0; lane < Lanes; ++lane)
            sums[lane] += static_cast<double>(a[i + lane]) * static_cast<double>(b[i + lane]);
    for (std::int32_t lane = 0; i + lane < n; ++lane)
        sums[lane] += static_cast<double>(a[i + lane]) * static_cast<double>(b[i + lane]);
    double sum = 0;
    for (const double part : sums)
        sum += part;
    return sum;
}

FilterSearch::FilterSearch(const FilterDictionary& usedDictionary)
    : dictionary(usedDictionary), fft(FilterCandidate::SpectrumOrder, FFTDivideInverse), judged(Index(N)),
      headSums(Index(N + 1)), tailSums(Index(N + 1)), curveSpectrum(Index(TransformSize)),
      correlation(Index(TransformSize)), dots(Index(N)), errors(Index(N))
{
}

// False for a curve with a value that isn't finite: no error can be below the limit then.
bool FilterSearch::TakeCurve(const float* curve)
{
    std::fill(judged.begin(), judged.end(), 0.0f);
    std::copy_n(curve, dictionary.JudgedCount(), judged.begin());
    wanted = judged.data();
    wantedEnergy = FitDot(wanted, wanted, N);
    headSums[0] = 0;
    tailSums[0] = 0;
    for (std::int32_t i = 0; i < N; ++i)
    {
        headSums[Index(i + 1)] = headSums[Index(i)] + wanted[i];
        tailSums[Index(i + 1)] = tailSums[Index(i)] + wanted[N - 1 - i];
    }
    return std::isfinite(wantedEnergy);
}

// D by its definition: the flat continuation of the shape at one end, and the overlap.
double FilterSearch::Dot(const FilterCandidate& candidate, std::int32_t shift) const
{
    const float* shape = candidate.shape.data();
    if (shift < 0)
        return shape[0] * headSums[Index(-shift)] + FitDot(wanted - shift, shape, N + shift);
    return shape[N - 1] * tailSums[Index(shift)] + FitDot(wanted, shape + shift, N - shift);
}

// E by its definition: the flat continuation of the shape at one end, and the overlap.
double FilterSearch::Energy(const FilterCandidate& candidate, std::int32_t shift)
{
    const float* shape = candidate.shape.data();
    const float* overlap = shape + std::max(shift, 0);
    const double end = shift > 0 ? shape[N - 1] : shape[0];
    const std::int32_t count = candidate.judgedCount;
    const std::int32_t beyond = std::clamp(shift > 0 ? shift + count - N : -shift, 0, count);
    return FitDot(overlap, overlap, count - beyond) + beyond * (end * end);
}

// Evaluates one shift by the definition and keeps it if it is better than all before it.
void FilterSearch::Offer(const FilterCandidate& candidate, std::int32_t shift, double energy,
                         double lowestMultiplier, FitChoice& best) const
{
    const double dot = Dot(candidate, shift);
    const double gain = Multiplier(dot, energy, lowestMultiplier);
    const double error = SquaredError(gain, energy, dot, wantedEnergy);
    if (error < best.error)
        best = { &candidate, error, gain, FitGrid::CentreIndex - shift };
}

FitChoice FilterSearch::Exhaustive(const float* curve, const FitSelection& selection)
{
    FitChoice best;
    if (!TakeCurve(curve))
        return best;
    TransformForCorrelation();
    const double bound = CollectSurvivors(selection);
    for (const Survivor& survivor : survivors)
        if (survivor.lowestError <= bound && survivor.lowestError < best.error)
            Offer(*survivor.candidate, survivor.shift, survivor.candidate->EnergyAt(survivor.shift),
                  selection.LowestMultiplier(*survivor.candidate), best);
    return best;
}

// Lists, in the definition's order, every shift that may be the choice. Answers a bound: the error of the
// choice is at or below it.
double FilterSearch::CollectSurvivors(const FitSelection& selection)
{
    survivors.clear();
    double bound = NoError;
    double earlierBound = NoError;   // of the shifts before the present one only: these win a tie
    for (const FilterCandidate& candidate : dictionary.Candidates())
    {
        if (!selection.Admits(candidate))
            continue;
        EstimateDots(candidate);
        const double least = EstimateErrors(candidate, selection.LowestMultiplier(candidate));
        const double margin = ErrorMargin(candidate);
        if (least - margin > bound)
            continue;
        bound = std::min(bound, least + margin);
        const std::int32_t count = candidate.maxShift + FilterCandidate::ShiftEnd;
        for (std::int32_t i = 0; i < count; ++i)
        {
            const double lowest = errors[Index(i)] - margin;
            if (lowest > bound || lowest >= earlierBound)
                continue;
            survivors.push_back({ &candidate, i - candidate.maxShift, lowest });
            earlierBound = std::min(earlierBound, errors[Index(i)] + margin);
        }
    }
    return bound;
}

// The least error over |g| <= 1 falls at most twice as fast as D rises, so an error of D counts double. The
// second part covers the rounding of the formula itself.
double FilterSearch::ErrorMargin(const FilterCandidate& candidate) const
{
    const double dotMargin = CorrelationMargin * candidate.norm * std::sqrt(wantedEnergy);
    return 2.0 * dotMargin + 1e-12 * (wantedEnergy + candidate.energyLimit);
}

// The spectrum of the curve, mirrored in time, so that a product with a shape's spectrum is a correlation.
// The curve is scaled by a power of two to about 1, which keeps single precision away from its limits.
void FilterSearch::TransformForCorrelation()
{
    float peak = 0;
    MVector::AbsMax(wanted, N, &peak);
    int exponent = 0;
    std::frexp(peak, &exponent);
    curveScale = std::ldexp(1.0, exponent);
    for (std::int32_t i = 0; i < N; ++i)
        curveSpectrum[Index(i)] = static_cast<float>(wanted[i] / curveScale);
    MVector::Zero(curveSpectrum.data() + N, N);
    fft.Forward(curveSpectrum.data());
    for (std::int32_t i = 3; i < TransformSize; i += 2)
        curveSpectrum[Index(i)] = -curveSpectrum[Index(i)];
}

// correlation[s mod 2048] is the overlap's part of D for |s| < 1024: with zeros behind both, a circular
// correlation of 2048 points is the plain one.
void FilterSearch::EstimateDots(const FilterCandidate& candidate)
{
    MultiplyPacked(curveSpectrum.data(), candidate.spectrum.data(), correlation.data());
    fft.Inverse(correlation.data());

    const double scale = candidate.absoluteSum * curveScale;
    const double first = candidate.shape.front();
    const double last = candidate.shape.back();
    const std::int32_t maxShift = candidate.maxShift;
    const float* below = correlation.data() + TransformSize - maxShift;
    const double* heads = headSums.data();
    const double* tails = tailSums.data();
    double* out = dots.data();
    for (std::int32_t i = 0; i < maxShift; ++i)
        out[i] = first * heads[maxShift - i] + scale * static_cast<double>(below[i]);
    const float* above = correlation.data();
    out += maxShift;
    for (std::int32_t i = 0; i < FilterCandidate::ShiftEnd; ++i)
        out[i] = last * tails[i] + scale * static_cast<double>(above[i]);
}

// Fills `errors` from `dots` and answers the least.
double FilterSearch::EstimateErrors(const FilterCandidate& candidate, double lowest)
{
    const std::int32_t count = candidate.maxShift + FilterCandidate::ShiftEnd;
    const double* energy = candidate.energy.data();
    const double* dot = dots.data();
    double* out = errors.data();
    const double curveEnergy = wantedEnergy;
    for (std::int32_t i = 0; i < count; ++i)
        out[i] = SquaredError(Multiplier(dot[i], energy[i], lowest), energy[i], dot[i], curveEnergy);

    constexpr std::int32_t Lanes = 8;
    double least[Lanes];
    std::fill_n(least, Lanes, NoError);
    std::int32_t i = 0;
    for (; i + Lanes <= count; i += Lanes)
        for (std::int32_t lane = 0; lane < Lanes; ++lane)
            least[lane] = out[i + lane] < least[lane] ? out[i + lane] : least[lane];
    for (; i < count; ++i)
        least[0] = std::min(least[0], out[i]);
    return *std::min_element(least, least + Lanes);
}

void FilterSearch::CorrelateAll(const float* curve, const FilterCandidate& candidate, double* out)
{
    TakeCurve(curve);
    TransformForCorrelation();
    EstimateDots(candidate);
    std::copy_n(dots.data(), candidate.maxShift + FilterCandidate::ShiftEnd, out);
}

FitChoice FilterSearch::Convolving(const float* curve, const FitSelection& selection)
{
    FitChoice best;
    if (!TakeCurve(curve))
        return best;
    TransformForConvolution();
    for (const FilterCandidate& candidate : dictionary.Candidates())
    {
        if (!selection.Admits(candidate))
            continue;
        const std::int32_t shift = ConvolutionShift(candidate);
        Offer(candidate, shift, Energy(candidate, shift), selection.LowestMultiplier(candidate), best);
    }
    return best;
}

void FilterSearch::TransformForConvolution()
{
    constexpr std::int32_t Pad = (TransformSize - N) / 2;
    MVector::Zero(curveSpectrum.data(), TransformSize);
    MVector::Copy(wanted, curveSpectrum.data() + Pad, N);
    fft.Forward(curveSpectrum.data());
    MVector::AddConstantInPlace(SpectrumGuard, curveSpectrum.data(), TransformSize);
}

// For a shape that is symmetric about its centre, convolution is correlation and its extreme stands at the
// best position; for others it only comes near.
std::int32_t FilterSearch::ConvolutionShift(const FilterCandidate& candidate)
{
    MultiplyPacked(curveSpectrum.data(), candidate.spectrum.data(), correlation.data());
    fft.Inverse(correlation.data());
    float highest = 0, lowest = 0;
    std::int32_t highestIndex = 0, lowestIndex = 0;
    MVector::MaxIndex(correlation.data(), TransformSize, &highest, &highestIndex);
    MVector::MinIndex(correlation.data(), TransformSize, &lowest, &lowestIndex);
    const std::int32_t index = std::abs(lowest) > std::abs(highest) ? lowestIndex : highestIndex;
    const std::int32_t position = std::max(std::min(index - N, candidate.maxShift + 511), 0);
    return FitGrid::CentreIndex - position;
}
