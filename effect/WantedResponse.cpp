// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/WantedResponse.h"

#include <algorithm>
#include <cmath>

#include "control/envelope/MEnvelopeComputer.h"
#include "foundation/vector/VectorOperations.h"

namespace
{
constexpr std::int32_t count = 1024;
constexpr float decibelsPerNeper = 8.6858892f;   // 20 / ln 10
constexpr float floorDb = -200.0f;
}   // namespace

void PrepareAnalysis(GridCurve& analysis, Interpolator& smoothing)
{
    // Silence stays what it is: smoothing by FFT would leave its guard against denormal numbers, and that
    // would be brought to 0 dB.
    float largest = 0;
    MVector::Max(analysis.data(), count, &largest);
    if (!(std::fabs(largest) < 1e-20f))
    {
        if (smoothing.HalfLength() > 1)
            smoothing.Convolve(analysis.data(), analysis.data(), count, true);
        MVector::Max(analysis.data(), count, &largest);
        MVector::MultiplyConstantInPlace(analysis.data(), count, 1 / largest);
    }
    // A logarithm wants something above zero; whatever lies that low ends on the floor anyway.
    MVector::ThresholdLowInPlace(analysis.data(), count, 1e-30f);
    MVector::Ln(analysis.data(), analysis.data(), count);
    MVector::MultiplyConstantInPlace(analysis.data(), count, decibelsPerNeper);
    MVector::ThresholdLowInPlace(analysis.data(), count, floorDb);
}

WantedResponse::WantedResponse(const GridCurve& target, const GridCurve& reference)
{
    MVector::Sub(target.data(), reference.data(), values.data(), count);
}

GridCurve WantedResponse::RoomBeside(const GridCurve& target, const GridCurve& mix, double limitDb)
{
    const auto limit = static_cast<float>(limitDb);
    GridCurve reference = target;
    for (std::size_t index = 0; index < reference.size(); ++index)
        reference[index] = std::min(reference[index], limit - std::max(mix[index], limit));
    return reference;
}

bool WantedResponse::IsFlat() const
{
    float largest = 0;
    MVector::AbsMax(values.data(), count, &largest);
    return largest < 0.01f;
}

void WantedResponse::Limit(const std::array<float, 1024>& gridHz, const WantedLimits& limits)
{
    const auto at = [](std::int32_t index)
    {
        return static_cast<std::size_t>(index);
    };
    for (first = 0; first < count && gridHz[at(first)] < limits.frequencyMinHz - 1e-20; ++first)
        values[at(first)] = 0;
    for (last = count - 1; last >= 0 && gridHz[at(last)] - 1e-20 > limits.frequencyMaxHz; --last)
        values[at(last)] = 0;
    if (!limits.neverAmplify)
        return;
    float highest = 0;
    MVector::Max(values.data(), count, &highest);
    MVector::AddConstantInPlace(-highest, values.data(), count);
}

void WantedResponse::Transform(const MEnvelope& curve)
{
    const std::int32_t pointCount = last - first;
    if (pointCount <= 0)
        return;
    float lowest = 0;
    float highest = 0;
    MVector::MinMax(values.data() + first, pointCount, &lowest, &highest);
    if (!(highest > lowest))
        return;
    MEnvelopeComputer computer;
    computer.Compile(curve);
    const double largest =
        std::max(std::fabs(static_cast<double>(highest)), std::fabs(static_cast<double>(lowest)));
    for (std::int32_t index = first; index <= last; ++index)
    {
        float& value = values[static_cast<std::size_t>(index)];
        const double position = std::fabs(static_cast<double>(value)) / largest;
        computer.Rewind(position);
        const double mapped = computer.Value(position) * largest;
        value = static_cast<float>(value < 0 ? -mapped : mapped);
    }
}

double SpectralDistanceDb(const GridCurve& reference, const GridCurve& target, std::int32_t first,
                          std::int32_t last)
{
    if (last < first)
        return 0;
    const double points = last - first + 1;
    double sum = 0;
    double sumOfSquares = 0;
    for (auto index = static_cast<std::size_t>(first); index <= static_cast<std::size_t>(last); ++index)
    {
        const double difference = static_cast<double>(reference[index]) - target[index];
        sum += difference;
        sumOfSquares += difference * difference;
    }
    const double mean = sum / points;
    return std::sqrt(std::max(0.0, sumOfSquares / points - mean * mean));
}
