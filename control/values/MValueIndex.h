// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "control/values/MValue.h"
#include "foundation/threads/MRelaxed.h"

/// The variable that holds an index: an int, an enumeration or a flag.
class IndexVariable
{
public:
    IndexVariable(std::nullptr_t = nullptr) {}
    template <typename T>
    IndexVariable(MRelaxed<T>* boundVariable)
        : variable(boundVariable),
          load([](const void* held)
               { return static_cast<int>(static_cast<const MRelaxed<T>*>(held)->Get()); }),
          store([](void* held, int index) { static_cast<MRelaxed<T>*>(held)->Set(static_cast<T>(index)); })
    {
    }

    bool IsBound() const { return variable != nullptr; }
    int Get() const { return load(variable); }
    void Set(int index) const { store(variable, index); }

private:
    void* variable = nullptr;
    int (*load)(const void*) = nullptr;
    void (*store)(void*, int) = nullptr;
};

/// Base of values that choose one of some labels: enumerations and lists. Stored and shown as the label,
/// so that a changed order of labels does no harm to what is stored.
class MValueIndex : public MValue
{
public:
    /// A null variable: owns one, which starts at the default.
    MValueIndex(IndexVariable boundVariable, int initialDefault);

    int Get() const { return bound.Get(); }
    bool Set(int index);
    virtual int LabelCount() const = 0;
    virtual MString LabelAt(int index) const = 0;

    MString GetText() const override { return ToText(); }
    void SetText(const MString& text) override { TakeText(text); }
    void SetDefault() override { Set(defaultIndex); }
    MString ToText() const override;
    bool FromText(const MString& text) override { return TakeText(text) == TextResult::Changed; }
    MContent CreateContentAt(double position) const override;
    void Clamp() override;
    bool Step(int direction, int acceleration) override;
    bool Increment(int steps) override;
    double GetNormalized() const override;
    bool SetNormalized(double position) override;
    int GetStepCount() const override { return LabelCount(); }

protected:
    double GetNumber() const override { return Get(); }
    bool SetNumber(double number) override;

private:
    int IndexAt(double position) const;

    MRelaxed<int> owned;
    IndexVariable bound;
    int defaultIndex;
};
