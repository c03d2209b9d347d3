// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/values/MValueFrequency.h"

#include <algorithm>
#include <cmath>

MValueFrequency::MValueFrequency(MRelaxed<double>* variable, double minimum, double maximum,
                                 double initialDefault)
    : MValueQuantity(variable, minimum, maximum, initialDefault)
{
    UpdateLogarithms();
}

void MValueFrequency::SetRange(double minimum, double maximum)
{
    MValueQuantity::SetRange(minimum, maximum);
    UpdateLogarithms();
}

void MValueFrequency::UpdateLogarithms()
{
    constexpr double LowestHz = 1e-10;   // a range that starts at 0 has no logarithm
    logMin = std::log10(std::max(Minimum(), LowestHz));
    logMax = std::log10(std::max(Maximum(), LowestHz));
}

double MValueFrequency::PositionOf(double value) const
{
    if (logMin == logMax)
        return 1.0;
    return LimitedPosition((std::log10(value) - logMin) / (logMax - logMin));
}

double MValueFrequency::ValueAt(double position) const
{
    return std::pow(10.0, logMin + position * (logMax - logMin));
}

MString MValueFrequencyLog::TextOf(double value) const
{
    return FrequencyText(std::pow(10.0, value));
}

bool MValueFrequencyLog::ReadText(const MString& text, double& value) const
{
    double hz = 0.0;
    if (!ReadFrequency(text, hz) || !(hz > 0.0))
        return false;
    value = std::log10(hz);
    return true;
}
