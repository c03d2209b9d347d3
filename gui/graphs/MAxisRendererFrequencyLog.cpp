// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/MAxisRendererFrequencyLog.h"

#include <cmath>
#include <iterator>

namespace
{
struct Frequency
{
    double hz;
    const char* text;
    std::int32_t marksBehind;   // up to the next, evenly spaced in Hz: each whole hundred, thousand and so on
};
constexpr Frequency frequencies[] = { { 20, "20", 2 },    { 50, "50", 4 },   { 100, "100", 0 },
                                      { 200, "200", 2 },  { 500, "500", 4 }, { 1000, "1k", 0 },
                                      { 2000, "2k", 2 },  { 5000, "5k", 4 }, { 10000, "10k", 0 },
                                      { 20000, "20k", 0 } };
// 20 Hz and 20 kHz are ends that callers give with all their digits.
constexpr double LogTolerance = 1e-9;
}   // namespace

MAxisRendererFrequencyLog::MAxisRendererFrequencyLog(double logMin, double logMax)
{
    const auto positionOf = [logMin, logMax](double hz)
    {
        return (std::log10(hz) - logMin) / (logMax - logMin);
    };
    const auto isInside = [logMin, logMax](double hz)
    {
        return std::log10(hz) >= logMin - LogTolerance && std::log10(hz) <= logMax + LogTolerance;
    };
    if (!(logMax > logMin))
        return;
    for (const Frequency& each : frequencies)
    {
        if (isInside(each.hz))
            AddLabel(MString::Literal(each.text), positionOf(each.hz));
        for (std::int32_t i = 1; i <= each.marksBehind; ++i)
        {
            const Frequency& next = *(&each + 1);
            const double hz = each.hz + (next.hz - each.hz) * i / (each.marksBehind + 1);
            if (isInside(hz))
                AddMark(positionOf(hz));
        }
    }
}
