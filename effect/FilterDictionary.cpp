// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/FilterDictionary.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <utility>

#include "audio/filters/Filter.h"
#include "audio/filters/FilterTypes.h"
#include "foundation/text/MException.h"
#include "foundation/vector/FFT.h"
#include "foundation/vector/VectorOperations.h"

namespace
{
constexpr double TemplateGainDb = -24.0;
constexpr double FirstQ = 0.1;
constexpr double QRatio = 1.1;
constexpr double FixedQ = 0.7071067811865476;
// 20 / ln 10 as a float.
constexpr float DecibelsPerNeper = 8.6858892f;
constexpr float SpectrumGuard = 1e-15f;
// Below this rate a wide shape that moves up would differ too much from the filter that it stands for, which
// the Nyquist frequency bends.
constexpr double FreeShiftRate = 50000.0;

// Below the first rate the upper part of the grid lies above half the rate, where a shape that is shifted
// down would take garbage from. Such rates take their shapes from the second one.
constexpr double LowestShapeRate = 40000.0;
constexpr double RateOfOtherShapes = 48000.0;

std::int32_t MaxShift(double q, double sampleRate, std::int32_t judgedCount)
{
    if (sampleRate >= FreeShiftRate)
        return FitGrid::CentreIndex;
    const std::int32_t highest = judgedCount == FitGrid::Count
                                     ? FitGrid::CentreIndex
                                     : std::max(judgedCount - 1 - FitGrid::CentreIndex, 0);
    const double bend = sampleRate < LowestShapeRate ? sampleRate / RateOfOtherShapes : 1.0;
    const double topHz = ((q - FirstQ) * 8000.0 + 1000.0) * bend;
    const auto shift = static_cast<std::int32_t>((std::log10(topHz) - FitGrid::CentreLog10) / 1.5 * 512.0);
    return std::clamp(shift, 0, highest);
}
}   // namespace

const std::array<float, FitGrid::Count>& FitGrid::Hertz()
{
    static const std::array<float, Count> grid = []
    {
        const double first = std::log10(MinHz);
        const double step = (std::log10(MaxHz) - first) / Count;
        std::array<float, Count> hertz;
        for (std::size_t i = 0; i < hertz.size(); ++i)
            hertz[i] = static_cast<float>(std::pow(10.0, first + (static_cast<double>(i) + 0.5) * step));
        return hertz;
    }();
    return grid;
}

std::int32_t FitGrid::UsableCount(double sampleRate)
{
    const double highestHz = HighestShare * sampleRate;
    return static_cast<std::int32_t>(std::count_if(Hertz().begin(), Hertz().end(),
                                                   [highestHz](float hertz) { return hertz <= highestHz; }));
}

FitResponse::FitResponse(double usedSampleRate) : sampleRate(usedSampleRate)
{
    const std::array<float, FitGrid::Count>& grid = FitGrid::Hertz();
    for (std::size_t i = 0; i < grid.size(); ++i)
    {
        const double w = 6.283185307179586 * static_cast<double>(grid[i]) / sampleRate;
        const double c = std::cos(w);
        const double s = std::sin(w);
        z1Re[i] = c;
        z1Im[i] = -s;
        z2Re[i] = c * c - s * s;
        z2Im[i] = -2.0 * s * c;
    }
}

void FitResponse::Evaluate(std::int32_t type, double gainDb, double frequencyHz, double q,
                           double* outPower) const
{
    MAudioFilters::Filter<double> section;
    section.Set(type, gainDb, frequencyHz, sampleRate, q);

    bool poleHit = false;
    for (std::size_t i = 0; i < z1Re.size(); ++i)
    {
        const double numeratorRe = section.b0 + section.b1 * z1Re[i] + section.b2 * z2Re[i];
        const double numeratorIm = section.b1 * z1Im[i] + section.b2 * z2Im[i];
        const double denominatorRe = 1.0 - section.a1 * z1Re[i] - section.a2 * z2Re[i];
        const double denominatorIm = -section.a1 * z1Im[i] - section.a2 * z2Im[i];
        const double denominator = denominatorRe * denominatorRe + denominatorIm * denominatorIm;
        poleHit |= denominator == 0.0;
        outPower[i] = (numeratorRe * numeratorRe + numeratorIm * numeratorIm) / denominator;
    }
    if (poleHit)
        throw MException("Complex division by zero.");
}

FilterDictionary::FilterDictionary(double usedSampleRate)
    : sampleRate(usedSampleRate), judgedCount(FitGrid::UsableCount(usedSampleRate)), response(usedSampleRate)
{
    if (sampleRate >= LowestShapeRate)
        AddCandidates(response);
    else
        AddCandidates(FitResponse(RateOfOtherShapes));
}

void FilterDictionary::AddCandidates(const FitResponse& shapes)
{
    for (std::int32_t type = MAudioFilters::Peak; type <= MAudioFilters::Notch; ++type)
    {
        const auto& properties = MAudioFilters::PropertiesOf(type);
        if (!properties.hasQ)
        {
            AddCandidate(shapes, type, FixedQ);
            continue;
        }
        double q = FirstQ;
        while (q < properties.topQ)
        {
            AddCandidate(shapes, type, q);
            q *= QRatio;
        }
    }
}

void FilterDictionary::AddCandidate(const FitResponse& shapes, std::int32_t type, double q)
{
    FilterCandidate& candidate = candidates.emplace_back();
    candidate.type = type;
    candidate.q = q;
    candidate.hasGain = MAudioFilters::PropertiesOf(type).hasGain;
    candidate.judgedCount = judgedCount;
    candidate.maxShift = MaxShift(q, sampleRate, candidate.judgedCount);

    auto& shape = candidate.shape;
    std::array<double, FitGrid::Count> power;
    shapes.Evaluate(type, TemplateGainDb, std::pow(10.0, FitGrid::CentreLog10), q, power.data());
    for (std::size_t i = 0; i < shape.size(); ++i)
        shape[i] = static_cast<float>(0.5 * std::log(power[i])) * DecibelsPerNeper;
    // The types without gain run as two sections in a row.
    if (!candidate.hasGain)
        MVector::MultiplyConstantInPlace(shape.data(), FitGrid::Count, 2.0f);

    double squares = 0;
    for (const float value : shape)
    {
        candidate.absoluteSum += std::abs(static_cast<double>(value));
        squares += static_cast<double>(value) * value;
    }
    candidate.norm = std::sqrt(squares);
    candidate.highest = *std::max_element(shape.begin(), shape.end());

    candidate.spectrum.fill(0.0f);
    for (std::size_t i = 0; i < shape.size(); ++i)
        candidate.spectrum[i] = static_cast<float>(shape[i] / candidate.absoluteSum);
    MFFT fft(FilterCandidate::SpectrumOrder, FFTDivideInverse);
    fft.Forward(candidate.spectrum.data());
    MVector::AddConstantInPlace(SpectrumGuard, candidate.spectrum.data(), FilterCandidate::SpectrumSize);

    const auto square = [&](std::int32_t index)
    {
        const double value = shape[static_cast<std::size_t>(index)];
        return value * value;
    };
    double energy = candidate.maxShift * square(0);
    for (std::int32_t i = 0; i < candidate.judgedCount - candidate.maxShift; ++i)
        energy += square(i);
    const std::int32_t shiftCount = candidate.maxShift + FilterCandidate::ShiftEnd;
    candidate.energy.reserve(static_cast<std::size_t>(shiftCount));
    for (std::int32_t shift = -candidate.maxShift; shift < FilterCandidate::ShiftEnd; ++shift)
    {
        candidate.energy.push_back(energy);
        candidate.energyLimit = std::max(candidate.energyLimit, std::abs(energy));
        energy += square(std::min(shift + judgedCount, FitGrid::Count - 1));
        energy -= square(std::max(shift, 0));
    }
}

std::shared_ptr<const FilterDictionary> FilterDictionary::Shared(double sampleRate)
{
    // Entries of rates that nobody uses any more are a few bytes each and go at the next build.
    static std::mutex mutex;
    static std::vector<std::pair<double, std::weak_ptr<const FilterDictionary>>> known;

    const std::lock_guard guard(mutex);
    for (const auto& [rate, weak] : known)
        if (std::abs(rate - sampleRate) < 1e-50)
            if (auto held = weak.lock())
                return held;

    std::erase_if(known, [](const auto& entry) { return entry.second.expired(); });
    // Not make_shared: its block would stay as long as the weak pointer.
    std::shared_ptr<const FilterDictionary> built(new FilterDictionary(sampleRate));
    known.emplace_back(sampleRate, built);
    return built;
}
