// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "control/values/MValue.h"

/// Base of values that choose one of some labels: enumerations and lists. Stored and shown as the label,
/// so that a changed order of labels does no harm to what is stored.
class MValueIndex : public MValue
{
public:
    /// A null variable: owns one, which starts at the default.
    MValueIndex(int* boundVariable, int initialDefault);

    int Get() const;
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

    int owned = 0;
    int* bound;
    int defaultIndex;
};
