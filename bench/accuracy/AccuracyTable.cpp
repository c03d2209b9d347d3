// SPDX-License-Identifier: GPL-3.0-or-later
// Prints how far the linear modes stray from the magnitude that their filters promise, as the tables of
// docs/ACCURACY.md: the frame of 32768 samples sets a limit to narrow bands at low frequencies.
#include <cstdio>

#include "audio/filters/FilterMagnitudes.h"
#include "tests/audio/equalizer/TestEqualizer.h"

namespace
{
// The largest error in dB over a grid from 20 Hz to 0.45 of the rate, dense around the band.
double LargestErrorDb(EqualizerMode mode, double rate, double hertz, double gainDb, double q)
{
    TestEqualizer equalizer(mode, rate);
    equalizer.SetBand(0, MAudioFilters::Peak, hertz, gainDb, q);
    equalizer.Update();
    const std::vector<float> response = equalizer.Impulse(16384);
    const bool linear = mode == EqualizerMode::LinearPhase;
    const FilterList& list = linear ? equalizer.LinearFilters() : equalizer.filters;
    double largest = 0;
    const auto check = [&](double at)
    {
        const double promised =
            (linear ? 40 : 20) *
            std::log10(MAudioFilters::MagnitudeOfList(list.filters.data(), list.count, at));
        largest = std::max(largest, std::fabs(Signals::MeasuredDb(response, at, rate) - promised));
    };
    for (double at = 20; at < 0.45 * rate; at *= 1.3)
        check(at);
    for (double ratio = 0.7; ratio < 1.4; ratio *= 1.02)
        check(hertz * ratio);
    return largest;
}

void PrintTable(EqualizerMode mode, const char* name, double gainDb)
{
    std::printf("\n**%s, a peak of %+.0f dB: largest error in dB**\n\n", name, gainDb);
    std::printf("| Frequency | Q | 44.1 kHz | 48 kHz | 96 kHz | 192 kHz |\n|---|---|---|---|---|---|\n");
    for (const double hertz : { 20.0, 40.0, 80.0, 160.0, 1000.0 })
        for (const double q : { 0.7, 2.0, 4.0, 10.0 })
        {
            std::printf("| %.0f Hz | %.1f |", hertz, q);
            for (const double rate : { 44100.0, 48000.0, 96000.0, 192000.0 })
                std::printf(" %.4f |", LargestErrorDb(mode, rate, hertz, gainDb, q));
            std::printf("\n");
        }
}
}   // namespace

int main()
{
    for (const double gainDb : { -12.0, 12.0 })
    {
        PrintTable(EqualizerMode::LinearPhase, "Linear-phase", gainDb);
        PrintTable(EqualizerMode::LinearPhaseFFT, "Linear-phase FFT based", gainDb);
    }
    return 0;
}
