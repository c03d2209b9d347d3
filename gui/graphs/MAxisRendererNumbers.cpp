// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/MAxisRendererNumbers.h"

#include <cmath>

#include "foundation/text/MStringFormat.h"

namespace
{
constexpr double MostLabels = 1000;   // more are a mistake, and no screen shows them
constexpr double StepTolerance = 1e-9;   // of the last step: 0.1 taken ten times is 1

void AddNumbers(MAxisRendererList& list, double minimum, double maximum, double step, const char* format,
                bool marksZero)
{
    const double count = (maximum - minimum) / step + StepTolerance;
    if (!(count >= 0 && count <= MostLabels))
        return;
    for (std::int32_t i = 0; i <= static_cast<std::int32_t>(count); ++i)
    {
        const double value = minimum + i * step;
        const double rounded = std::round(value);
        const bool isWhole = std::abs(value - rounded) < StepTolerance;
        const MString text = isWhole ? Format(MString::Literal(format), static_cast<std::int64_t>(rounded))
                                     : Format(MString::Literal(format), MString::FromDouble(value, 1));
        const bool isZero = isWhole && rounded == 0 && minimum < 0 && maximum > 0;
        list.AddLabel(text, maximum > minimum ? (value - minimum) / (maximum - minimum) : 0,
                      marksZero && isZero);
    }
}
}   // namespace

MAxisRendererVolumedB::MAxisRendererVolumedB(double topdB)
{
    constexpr std::int32_t lowest = -120;
    constexpr std::int32_t step = 6;
    AddLabel("silence", 0);
    for (std::int32_t level = lowest; level <= topdB + StepTolerance; level += step)
        AddLabel(Format("{0} dB", level), std::sqrt(std::pow(10.0, (level - topdB) / 20)));
}

MAxisRendererVolumedBValues::MAxisRendererVolumedBValues(double minimum, double maximum, double step)
{
    AddNumbers(*this, minimum, maximum, step, "{0} dB", true);
}

MAxisRendererPercents::MAxisRendererPercents(double minimum, double maximum, double step)
{
    AddNumbers(*this, minimum, maximum, step, "{0}%", false);
}

MAxisRendererIntegers::MAxisRendererIntegers(std::int32_t minimum, std::int32_t maximum, std::int32_t step)
{
    AddNumbers(*this, minimum, maximum, step, "{0}", false);
}
