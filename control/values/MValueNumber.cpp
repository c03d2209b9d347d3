// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/values/MValueNumber.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "control/values/ValueText.h"
#include "foundation/text/MStringFormat.h"
#include "foundation/text/MStringScan.h"
#include "state/tree/MAttribute.h"

namespace
{
constexpr int StoredPrecision = 6;
constexpr double StandardShare = 0.001;   // of the range, for one step
constexpr double LargestShare = 0.01;   // of the range, for a step that is kept as given
constexpr double PositionStep = 0.001;

// The nearest number that the type holds; what is no number becomes the lowest.
template <typename V>
V Saturated(double number)
{
    constexpr auto Low = static_cast<double>(std::numeric_limits<V>::lowest());
    constexpr auto High = static_cast<double>(std::numeric_limits<V>::max());
    if (!(number > Low))
        return std::numeric_limits<V>::lowest();
    return number < High ? static_cast<V>(number) : std::numeric_limits<V>::max();
}

template <typename V>
bool ReadAsNumber(const MString& text, V& value)
{
    if constexpr (std::is_integral_v<V>)
    {
        std::int64_t number = 0;
        if (!ReadInteger(text, number))
            return false;
        value = static_cast<V>(std::clamp<std::int64_t>(number, std::numeric_limits<V>::lowest(),
                                                        std::numeric_limits<V>::max()));
        return true;
    }
    else
    {
        return ReadNumber(text, value);
    }
}

template <typename V>
void ReadKey(MAttribute& item, const MString& key, V& value)
{
    if (item.HasAttribute(key))
        ReadAsNumber(item.GetCachedAttribute(), value);
}
}   // namespace

template <typename T, typename V, int Integral, int StepsNormalized>
MValueNumber<T, V, Integral, StepsNormalized>::MValueNumber(MRelaxed<T>* boundVariable, V minimum, V maximum,
                                                            V initialDefault)
    : owned(boundVariable == nullptr ? std::make_unique<MRelaxed<T>>(static_cast<T>(initialDefault))
                                     : nullptr),
      bound(boundVariable == nullptr ? owned.get() : boundVariable), min(minimum), max(maximum),
      defaultValue(initialDefault)
{
    UpdateSteps();
    MValueNumber::Clamp();
    changed = false;
}

template <typename T, typename V, int Integral, int StepsNormalized>
T MValueNumber<T, V, Integral, StepsNormalized>::Get() const
{
    return bound->Get();
}

template <typename T, typename V, int Integral, int StepsNormalized>
bool MValueNumber<T, V, Integral, StepsNormalized>::Set(V value)
{
    const T before = Get();
    T after = static_cast<T>(value);
    if constexpr (Integral != 0 && sizeof(T) < sizeof(V))
        after = Saturated<T>(static_cast<double>(value));
    bound->Set(after);
    const bool differs = before != after;
    changed = changed || differs;
    return differs;
}

template <typename T, typename V, int Integral, int StepsNormalized>
V MValueNumber<T, V, Integral, StepsNormalized>::FromNumber(double number)
{
    if constexpr (Integral != 0)
        return Saturated<V>(std::floor(number + 0.5));
    else
        return static_cast<V>(number);
}

template <typename T, typename V, int Integral, int StepsNormalized>
bool MValueNumber<T, V, Integral, StepsNormalized>::SetNumber(double number)
{
    return Set(FromNumber(number));
}

template <typename T, typename V, int Integral, int StepsNormalized>
void MValueNumber<T, V, Integral, StepsNormalized>::SetRange(V minimum, V maximum)
{
    min = minimum;
    max = maximum;
    UpdateSteps();
}

template <typename T, typename V, int Integral, int StepsNormalized>
void MValueNumber<T, V, Integral, StepsNormalized>::SetSteps(V step, V largestStep)
{
    stepRule = StepRule::Given;
    givenInc = step;
    givenMaxInc = largestStep;
    UpdateSteps();
}

template <typename T, typename V, int Integral, int StepsNormalized>
void MValueNumber<T, V, Integral, StepsNormalized>::SetNarrowedSteps(V step, V largestStep)
{
    SetSteps(step, largestStep);
    stepRule = StepRule::Narrowed;
    UpdateSteps();
}

template <typename T, typename V, int Integral, int StepsNormalized>
void MValueNumber<T, V, Integral, StepsNormalized>::UpdateSteps()
{
    const double range = static_cast<double>(max) - static_cast<double>(min);
    if (stepRule == StepRule::Standard)
    {
        inc = Saturated<V>(range * StandardShare);
        maxInc = Saturated<V>(range * StandardShare * 10.0);
    }
    else
    {
        const bool isTooLarge =
            stepRule == StepRule::Narrowed && !(static_cast<double>(givenInc) < range * LargestShare);
        inc = isTooLarge ? Saturated<V>(range * LargestShare) : givenInc;
        maxInc = isTooLarge ? Saturated<V>(range * LargestShare * 10.0) : givenMaxInc;
    }
    if constexpr (Integral != 0)
    {
        inc = std::max<V>(inc, 1);
        maxInc = std::max<V>(maxInc, 10);
    }
}

template <typename T, typename V, int Integral, int StepsNormalized>
MString MValueNumber<T, V, Integral, StepsNormalized>::GetText() const
{
    if constexpr (Integral != 0)
        return MString::FromInt(static_cast<std::int64_t>(Get()));
    else
        return MString::FromDouble(static_cast<double>(Get()), StoredPrecision);
}

template <typename T, typename V, int Integral, int StepsNormalized>
void MValueNumber<T, V, Integral, StepsNormalized>::SetText(const MString& text)
{
    MString piece;
    MStringScan("{0}", text).Get(piece);
    V value = {};
    if (!ReadAsNumber(piece, value))
        return;
    Set(value);
    changed = true;
}

template <typename T, typename V, int Integral, int StepsNormalized>
void MValueNumber<T, V, Integral, StepsNormalized>::SetDefault()
{
    Set(defaultValue);
}

template <typename T, typename V, int Integral, int StepsNormalized>
void MValueNumber<T, V, Integral, StepsNormalized>::LoadDefinition(MAttribute& item)
{
    MValue::LoadDefinition(item);
    V minimum = min;
    V maximum = max;
    ReadKey(item, "min", minimum);
    ReadKey(item, "max", maximum);
    SetRange(minimum, maximum);
    ReadKey(item, "default", defaultValue);
    if (item.HasAttribute("inc") || item.HasAttribute("maxinc"))
    {
        V step = inc;
        ReadKey(item, "inc", step);
        V largestStep = item.HasAttribute("maxinc") ? maxInc : static_cast<V>(step * 10);
        ReadKey(item, "maxinc", largestStep);
        if (stepRule == StepRule::Narrowed)
            SetNarrowedSteps(step, largestStep);
        else
            SetSteps(step, largestStep);
    }
    if (item.HasAttribute("format"))
        format = item.GetCachedAttribute();
    if (item.HasAttribute("value"))
        SetText(item.GetCachedAttribute());
    Clamp();
}

template <typename T, typename V, int Integral, int StepsNormalized>
const MCharFilter& MValueNumber<T, V, Integral, StepsNormalized>::GetCharFilter() const
{
    static const FloatFilter floatFilter;
    static const IntegerFilter integerFilter;
    if constexpr (Integral != 0)
        return integerFilter;
    else
        return floatFilter;
}

template <typename T, typename V, int Integral, int StepsNormalized>
MString MValueNumber<T, V, Integral, StepsNormalized>::TextOf(V value) const
{
    return Format(format, value);
}

template <typename T, typename V, int Integral, int StepsNormalized>
bool MValueNumber<T, V, Integral, StepsNormalized>::ReadText(const MString& text, V& value) const
{
    MStringScan scan(format, text);
    if (scan.CapturedCount() != 1)
        return false;
    if constexpr (Integral != 0)
    {
        scan.Get(value);   // with the format's radix
        return scan.CapturedCount() == 1;
    }
    else
    {
        MString piece;
        scan.Get(piece);
        return ReadAsNumber(piece, value);
    }
}

template <typename T, typename V, int Integral, int StepsNormalized>
MValue::TextResult MValueNumber<T, V, Integral, StepsNormalized>::TakeText(const MString& text)
{
    V value = {};
    if (!ReadText(text, value))
        return TextResult::Refused;
    const bool differs = Set(value);
    changed = true;
    return differs ? TextResult::Changed : TextResult::Unchanged;
}

template <typename T, typename V, int Integral, int StepsNormalized>
MContent MValueNumber<T, V, Integral, StepsNormalized>::CreateContentAt(double position) const
{
    const V value = ValueAt(LimitedPosition(position));
    return MakeContent(DisplayTextOf(static_cast<double>(value), TextOf(value)));
}

template <typename T, typename V, int Integral, int StepsNormalized>
void MValueNumber<T, V, Integral, StepsNormalized>::Clamp()
{
    const V value = static_cast<V>(Get());
    if (!(value >= min))   // also what is no number
        Set(min);
    else if (value > max)
        Set(max);
}

template <typename T, typename V, int Integral, int StepsNormalized>
bool MValueNumber<T, V, Integral, StepsNormalized>::Step(int direction, int acceleration)
{
    const T before = Get();
    const double size =
        std::min(std::ldexp(static_cast<double>(inc), acceleration), static_cast<double>(maxInc));
    const double moved = static_cast<double>(before) + direction * size;
    SetNumber(moved);
    Clamp();
    return Get() != before;
}

template <typename T, typename V, int Integral, int StepsNormalized>
bool MValueNumber<T, V, Integral, StepsNormalized>::Increment(int steps)
{
    const T before = Get();
    if constexpr (StepsNormalized != 0)
    {
        SetNormalized(LimitedPosition(GetNormalized() + steps * PositionStep));
    }
    else
    {
        const double moved = static_cast<double>(before) + steps * static_cast<double>(inc);
        SetNumber(moved);
    }
    Clamp();
    return Get() != before;
}

template <typename T, typename V, int Integral, int StepsNormalized>
double MValueNumber<T, V, Integral, StepsNormalized>::PositionOf(V value) const
{
    const double range = static_cast<double>(max) - static_cast<double>(min);
    if (range == 0.0)
        return 0.0;
    return LimitedPosition((static_cast<double>(value) - static_cast<double>(min)) / range);
}

template <typename T, typename V, int Integral, int StepsNormalized>
V MValueNumber<T, V, Integral, StepsNormalized>::ValueAt(double position) const
{
    const double range = static_cast<double>(max) - static_cast<double>(min);
    if constexpr (Integral != 0)
        return Saturated<V>(std::trunc(range * position + 0.5) + static_cast<double>(min));
    else
        return min + position * range;
}

template <typename T, typename V, int Integral, int StepsNormalized>
bool MValueNumber<T, V, Integral, StepsNormalized>::SetNormalized(double position)
{
    return Set(ValueAt(LimitedPosition(position)));
}

template <typename T, typename V, int Integral, int StepsNormalized>
int MValueNumber<T, V, Integral, StepsNormalized>::GetStepCount() const
{
    if constexpr (Integral == 0)
        return 0;
    else
        return Saturated<int>(static_cast<double>(max) - static_cast<double>(min) + 1.0);
}

template class MValueNumber<double, double, 0, 0>;
template class MValueNumber<float, double, 0, 0>;
template class MValueNumber<double, double, 0, 1>;
template class MValueNumber<int, int, 1, 0>;
template class MValueNumber<std::int64_t, std::int64_t, 1, 0>;
template class MValueNumber<short, int, 1, 0>;
template class MValueNumber<bool, int, 1, 0>;
