// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/ResponseCeiling.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "audio/filters/Filter.h"
#include "audio/filters/FilterTypes.h"
#include "effect/FilterFitter.h"

namespace
{
// Beyond the ends of the grid responses bend slowly: those of the widest bands run out, those of the highest
// end at half the sample rate.
constexpr std::int32_t pointsBelow = 12;
constexpr std::int32_t pointsAbove = 24;
constexpr double lowestHz = 0.5;
// Of half the sample rate: there some types have a zero and the others their last value.
constexpr double highestShare = 0.999;
}   // namespace

ResponseCeiling::ResponseCeiling(double fitRate, double usedCeilingDb) : ceilingDb(usedCeilingDb)
{
    if (ceilingDb >= None)
        return;
    std::size_t count = 0;
    for (const double sampleRate : { fitRate, 44100.0, 48000.0, 96000.0 })
    {
        Rate& rate = rates.emplace_back(Rate{ .sampleRate = sampleRate, .points = {} });
        const double nyquistHz = highestShare * sampleRate / 2;
        const auto add = [&](double hertz)
        {
            rate.points.push_back(MAudioFilters::InverseZ(std::min(hertz, nyquistHz), sampleRate));
        };
        for (const float hertz : FitGrid::Hertz())
            add(static_cast<double>(hertz));
        for (std::int32_t i = 0; i < pointsBelow; ++i)
            add(lowestHz * std::pow(FitGrid::MinHz / lowestHz, static_cast<double>(i) / pointsBelow));
        for (std::int32_t i = 1; i <= pointsAbove; ++i)
            add(FitGrid::MaxHz + (nyquistHz - FitGrid::MaxHz) * i / pointsAbove);
        count += 2 * rate.points.size();
    }
    sumDb.resize(count);
}

// The response as the mode without linear phase runs it, then as the others do: those run every section
// twice, peaks with half the gain. Shelves run so in all modes.
std::vector<double> ResponseCeiling::ResponseDb(const FittedFilter& filter) const
{
    std::vector<double> response;
    response.reserve(sumDb.size());
    for (const Rate& rate : rates)
    {
        const auto append = [&](double gainDb, double decibels)
        {
            MAudioFilters::Filter<double> section;
            section.Set(filter.type, gainDb, filter.frequency, rate.sampleRate, filter.q);
            for (const MAudioFilters::InverseZPowers& point : rate.points)
                response.push_back(decibels *
                                   std::log10(std::max(MAudioFilters::MagnitudeAt(section, point), 1e-30)));
        };
        if (filter.type == MAudioFilters::Peak)
            append(filter.gain, 20);
        else
            append(filter.gain / 2, 40);
        append(filter.gain / 2, 40);
    }
    return response;
}

bool ResponseCeiling::Admits(const FittedFilter& filter) const
{
    const std::vector<double> response = ResponseDb(filter);
    for (std::size_t i = 0; i < response.size(); ++i)
        if (sumDb[i] + response[i] > ceilingDb)
            return false;
    return true;
}

FittedFilter ResponseCeiling::Fitting(FittedFilter filter) const
{
    if (Admits(filter))
        return filter;
    // The height of a response grows with its gain, and without gain there is none.
    double fitting = 0;
    double tooMuch = filter.gain;
    constexpr int halvings = 12;
    for (int step = 0; step < halvings; ++step)
    {
        filter.gain = (fitting + tooMuch) / 2;
        (Admits(filter) ? fitting : tooMuch) = filter.gain;
    }
    filter.gain = fitting;
    return filter;
}

void ResponseCeiling::Add(const FittedFilter& filter)
{
    const std::vector<double> response = ResponseDb(filter);
    for (std::size_t i = 0; i < response.size(); ++i)
        sumDb[i] += response[i];
}
