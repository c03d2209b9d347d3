// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

/// The grid of automatic equalization: 1024 bin-centred points, evenly spaced on a logarithmic axis from
/// 20 Hz to 20 kHz. Point i lies at 10^(log10(20) + (i + 0.5) 3 / 1024) Hz.
namespace FitGrid
{
inline constexpr std::int32_t Count = 1024;
inline constexpr double MinHz = 20.0;
inline constexpr double MaxHz = 20000.0;
/// Where every template stands: 10^2.801029996 Hz, the geometric middle of the grid.
inline constexpr std::int32_t CentreIndex = 512;
inline constexpr double CentreLog10 = 2.801029996;

/// The points' frequencies in Hz. Thread: any.
const std::array<float, Count>& Hertz();

/// The highest frequency, as a share of the sample rate, at which a fit places a filter or judges one:
/// further up a filter bends so much that it can't be told what a band is good for.
inline constexpr double HighestShare = 0.45;
/// How many of the Count points lie at or below that.
std::int32_t UsableCount(double sampleRate);
}   // namespace FitGrid

/// The response of one real section at the grid points. Design and evaluation run in double, so that a
/// response is the same on every processor.
class FitResponse
{
public:
    explicit FitResponse(double sampleRate);

    /// @param outPower  FitGrid::Count values of |H|^2
    /// Throws MException "Complex division by zero." where the section has a pole on a grid point.
    void Evaluate(std::int32_t type, double gainDb, double frequencyHz, double q, double* outPower) const;

private:
    double sampleRate;
    // z^-1 and z^-2 at the grid points, real and imaginary parts apart so that the loop runs in vectors.
    std::array<double, FitGrid::Count> z1Re, z1Im, z2Re, z2Im;
};

/// One entry of the dictionary: the response of a type at a Q, standing at the centre of the grid.
/// Moving the filter in frequency is shifting its shape along the grid.
struct FilterCandidate
{
    static constexpr std::int32_t SpectrumOrder = 11;
    static constexpr std::int32_t SpectrumSize = 1 << SpectrumOrder;
    /// Shifts run from -maxShift up to and without this one.
    static constexpr std::int32_t ShiftEnd = 512;

    std::int32_t type = 0;   ///< FilterType
    double q = 0;
    bool hasGain = false;
    std::int32_t maxShift = 0;   ///< how far the shape may move towards high frequencies, in points
    std::int32_t judgedCount = 0;   ///< the points, from the first one on, that errors see
    double absoluteSum = 0;   ///< sum of |shape|
    double norm = 0;   ///< root of the sum of squares of shape
    float highest = 0;   ///< largest value of shape
    double energyLimit = 0;   ///< no |energy| is above it
    /// dB at the grid points: gain -24 dB for a type with gain, otherwise the response of two sections.
    std::array<float, FitGrid::Count> shape;
    /// FFT of shape / absoluteSum, padded with zeros behind, packed, 1e-15 added to each float.
    std::array<float, SpectrumSize> spectrum;
    /// Energy of the shifted shape on the judged points, n of them, for s = -maxShift, -maxShift + 1, ...
    /// ShiftEnd - 1, by the running update E(s + 1) = E(s) + shape[min(s + n, 1023)]^2 - shape[max(s, 0)]^2
    /// in double. Its rounding is part of what the search means by "energy", so it is kept rather than
    /// computed afresh.
    std::vector<double> energy;

    double EnergyAt(std::int32_t shift) const
    {
        const std::int32_t index = shift + maxShift;
        return energy[static_cast<std::size_t>(index)];
    }
};

/// All shapes for one sample rate, 227 of them, in the order of type and then rising Q. Immutable, so that
/// all the instances of a process share one: about 4.6 MB.
class FilterDictionary
{
public:
    explicit FilterDictionary(double sampleRate);

    /// The dictionary for a sample rate, built on the first demand and kept while anybody holds it. A call
    /// that builds takes some 10 ms; others that want a dictionary meanwhile wait. Thread: any but audio.
    static std::shared_ptr<const FilterDictionary> Shared(double sampleRate);

    double SampleRate() const { return sampleRate; }
    /// Points that the searches judge.
    std::int32_t JudgedCount() const { return judgedCount; }
    const FitResponse& Response() const { return response; }
    const std::vector<FilterCandidate>& Candidates() const { return candidates; }

private:
    void AddCandidates(const FitResponse& shapes);
    void AddCandidate(const FitResponse& shapes, std::int32_t type, double q);

    double sampleRate;
    std::int32_t judgedCount = 0;
    FitResponse response;
    std::vector<FilterCandidate> candidates;
};
