// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/driver/Transport.h"

#include <algorithm>
#include <cmath>

void Transport::Take(const Report& report)
{
    position = report.position.value_or(position);
    tempo = report.tempo.value_or(tempo);
    if (report.signature)
    {
        timeSignatureNumerator = report.signature->numerator;
        timeSignatureDenominator = report.signature->denominator;
    }
    if (report.barStart)
    {
        // Hosts report it with rounding errors; bars start on quarters, or on finer steps with a finer
        // denominator.
        const double steps = std::max(timeSignatureDenominator / 4, 1);
        barStart = std::floor(steps * *report.barStart + 0.5) / steps;
    }
    const bool hasCycle = report.cycleEnd - 1e-20 > report.cycleStart;
    cycleStart = hasCycle ? report.cycleStart : -1;
    cycleEnd = hasCycle ? report.cycleEnd : -1;

    // Some hosts say that they play one block before the position moves there.
    constexpr double longestStep = 2;
    if (!report.playing)
        playing = false;
    else if (std::fabs(lastPosition - position) <= longestStep)
        playing = true;
    lastPosition = position;
}

void Transport::Advance(std::int32_t sampleCount, double sampleRate)
{
    position += sampleCount * tempo / (sampleRate * 60);
}

MProcessContext Transport::Context(std::int32_t maxBlockSize) const
{
    MProcessContext context;
    context.tempo = tempo;
    if (playing)
    {
        context.position = position;
        context.barStart = barStart;
        context.timeSignatureNumerator = timeSignatureNumerator;
        context.timeSignatureDenominator = timeSignatureDenominator;
    }
    context.updateTimeInfo = true;
    context.maxBlockSize = maxBlockSize;
    return context;
}
