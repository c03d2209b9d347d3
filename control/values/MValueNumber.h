// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

#include "control/values/MValue.h"
#include "foundation/threads/MRelaxed.h"

/// A number in a range.
///
/// T is the variable's type, V that of the range and of computing. Integral 1: integer text and rounding
/// of positions. StepsNormalized 1: Increment moves the position by thousandths instead of the value by
/// steps. A new value is stored as "value", shown by "{0}" and moves by a thousandth of its range.
template <typename T, typename V, int Integral, int StepsNormalized>
class MValueNumber : public MValue
{
public:
    /// Binds a variable, which must outlive this, and clamps what it holds. Null: owns a variable, which
    /// starts at the default.
    MValueNumber(MRelaxed<T>* boundVariable, V minimum, V maximum, V initialDefault);

    T Get() const;
    /// Without clamping; answers whether it differs from before.
    bool Set(V value);
    V Minimum() const { return min; }
    V Maximum() const { return max; }
    V DefaultValue() const { return defaultValue; }
    V Inc() const { return inc; }
    V MaxInc() const { return maxInc; }
    const MString& TextFormat() const { return format; }
    virtual void SetRange(V minimum, V maximum);
    void SetDefaultValue(V value) { defaultValue = value; }
    void SetSteps(V step, V largestStep);
    void SetFormat(const MString& newFormat) { format = newFormat; }

    MString GetText() const override;
    void SetText(const MString& text) override;
    void SetDefault() override;
    /// "id", "min", "max", "default", "value", "inc", "maxinc", "format".
    void LoadDefinition(MAttribute& item) override;
    const MCharFilter& GetCharFilter() const override;
    MString ToText() const override { return TextOf(static_cast<V>(Get())); }
    bool FromText(const MString& text) override { return TakeText(text) == TextResult::Changed; }
    MContent CreateContentAt(double position) const override;
    void Clamp() override;
    bool Step(int direction, int acceleration) override;
    bool Increment(int steps) override;
    double GetNormalized() const override { return PositionOf(static_cast<V>(Get())); }
    double GetOrigin() const override { return min < V{} && max > V{} ? PositionOf(V{}) : 0; }
    bool SetNormalized(double position) override;
    int GetStepCount() const override;

protected:
    virtual MString TextOf(V value) const;
    /// Answers false, leaving `value`, for a text that can't be read.
    virtual bool ReadText(const MString& text, V& value) const;
    virtual double PositionOf(V value) const;
    virtual V ValueAt(double position) const;
    /// A step that is a hundredth of the range or more becomes that, and the largest ten times as much.
    void SetNarrowedSteps(V step, V largestStep);

    TextResult TakeText(const MString& text) override;
    double GetNumber() const override { return static_cast<double>(Get()); }
    bool SetNumber(double number) override;

private:
    static V FromNumber(double number);
    void UpdateSteps();

    std::unique_ptr<MRelaxed<T>> owned;
    MRelaxed<T>* bound;
    V min;
    V max;
    V inc = {};
    V maxInc = {};
    V defaultValue;
    MString format = "{0}";
    // How the steps came about: anew from the range, as they were given, or given and narrowed.
    enum class StepRule
    {
        Standard,
        Given,
        Narrowed
    };
    StepRule stepRule = StepRule::Standard;
    V givenInc = {};
    V givenMaxInc = {};
};

using MValueDouble = MValueNumber<double, double, 0, 0>;
using MValueFloat = MValueNumber<float, double, 0, 0>;
using MValueDoubleNormalized = MValueNumber<double, double, 0, 1>;
using MValueInt = MValueNumber<int, int, 1, 0>;
using MValueInt64 = MValueNumber<std::int64_t, std::int64_t, 1, 0>;
using MValueShort = MValueNumber<short, int, 1, 0>;

/// A switch: 0 or 1.
class MValueFlag : public MValueNumber<bool, int, 1, 0>
{
public:
    explicit MValueFlag(MRelaxed<bool>* variable = nullptr, bool initialDefault = false)
        : MValueNumber(variable, 0, 1, initialDefault ? 1 : 0)
    {
    }
};

extern template class MValueNumber<double, double, 0, 0>;
extern template class MValueNumber<float, double, 0, 0>;
extern template class MValueNumber<double, double, 0, 1>;
extern template class MValueNumber<int, int, 1, 0>;
extern template class MValueNumber<std::int64_t, std::int64_t, 1, 0>;
extern template class MValueNumber<short, int, 1, 0>;
extern template class MValueNumber<bool, int, 1, 0>;
