// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/values/MValueQuantities.h"

#include <algorithm>
#include <cmath>

#include "foundation/text/MStringFormat.h"
#include "foundation/text/MStringScan.h"
#include "state/tree/MAttribute.h"

MValueGain::MValueGain(MRelaxed<double>* variable, double minimum, double maximum, double initialDefault,
                       const MString& textFormat)
    : MValueDouble(variable, minimum, maximum, initialDefault)
{
    SetFormat(textFormat);
}

MValuePitch::MValuePitch(MRelaxed<double>* variable, double minimum, double maximum, double initialDefault)
    : MValueDouble(variable, minimum, maximum, initialDefault)
{
    SetFormat("{0;+.02}");
    SetNarrowedSteps(0.1, 1.0);
}

MValueMIDINote::MValueMIDINote(MRelaxed<int>* variable, int minimum, int maximum, int initialDefault)
    : MValueInt(variable, minimum, maximum, initialDefault)
{
}

MString MValueMIDINote::TextOf(int value) const
{
    return NoteText(value);
}

bool MValueMIDINote::ReadText(const MString& text, int& value) const
{
    MStringScan scan("{0}", text);
    scan.Get(value);
    return scan.CapturedCount() == 1;
}

MValue2Pow::MValue2Pow(MRelaxed<int>* variable, int minimum, int maximum, int initialDefault,
                       const MString& textFormat)
    : MValueInt(variable, minimum, maximum, initialDefault)
{
    SetFormat(textFormat);
}

MString MValue2Pow::TextOf(int value) const
{
    const std::int64_t power = std::int64_t{ 1 } << std::clamp(value, 0, 62);
    return TextFormat().IsEmpty() ? MString::FromInt(power) : Format(TextFormat(), power);
}

bool MValue2Pow::ReadText(const MString& text, int& value) const
{
    std::int64_t power = 0;
    if (!ReadInteger(text, power))
        return false;
    value = 0;
    for (; power > 1; power /= 2)
        ++value;
    return true;
}

MValueStepDouble::MValueStepDouble(MRelaxed<double>* variable, double minimum, double maximum,
                                   double initialDefault, double quantum)
    : MValueDouble(variable, minimum, maximum, initialDefault)
{
    SetQuantum(quantum);
    MValueStepDouble::Clamp();
    changed = false;
}

void MValueStepDouble::SetQuantum(double quantum)
{
    step = quantum > 0.0 ? quantum : 0.0;
    inverseStep = quantum > 0.0 ? 1.0 / quantum : 0.0;
}

void MValueStepDouble::LoadDefinition(MAttribute& item)
{
    double quantum = step;
    if (item.HasAttribute("step") && ReadNumber(item.GetCachedAttribute(), quantum))
        SetQuantum(quantum);
    MValueDouble::LoadDefinition(item);
}

void MValueStepDouble::Clamp()
{
    if (step > 0.0)
        Set(std::floor(Get() * inverseStep + 0.5) * step);
    MValueDouble::Clamp();
}
