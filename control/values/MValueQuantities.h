// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "control/values/MValueNumber.h"
#include "control/values/ValueText.h"

/// A number class whose text is that of a quantity instead of a format.
template <typename Base, MString (*WriteText)(double), bool (*ReadQuantity)(const MString&, double&)>
class MValueQuantity : public Base
{
public:
    using Base::Base;

protected:
    MString TextOf(double value) const override { return WriteText(value); }
    bool ReadText(const MString& text, double& value) const override { return ReadQuantity(text, value); }
};

/// A factor shown as a percentage.
class MValuePercents : public MValueQuantity<MValueDouble, PercentText, ReadPercent>
{
public:
    explicit MValuePercents(MRelaxed<double>* variable = nullptr, double minimum = 0.0, double maximum = 1.0,
                            double initialDefault = 0.0)
        : MValueQuantity(variable, minimum, maximum, initialDefault)
    {
    }
};

class MValuePercentsF : public MValueQuantity<MValueFloat, PercentText, ReadPercent>
{
public:
    explicit MValuePercentsF(MRelaxed<float>* variable = nullptr, double minimum = 0.0, double maximum = 1.0,
                             double initialDefault = 0.0)
        : MValueQuantity(variable, minimum, maximum, initialDefault)
    {
    }
};

/// Seconds shown as milliseconds.
class MValueTimeMS : public MValueQuantity<MValueDouble, MillisecondsText, ReadMilliseconds>
{
public:
    explicit MValueTimeMS(MRelaxed<double>* variable = nullptr, double minimum = 0.0, double maximum = 1.0,
                          double initialDefault = 1.0)
        : MValueQuantity(variable, minimum, maximum, initialDefault)
    {
        SetNarrowedSteps(0.001, 0.01);
    }
};

/// A linear gain shown in decibels.
class MValueVolume : public MValueQuantity<MValueDouble, GainText, ReadGain>
{
public:
    explicit MValueVolume(MRelaxed<double>* variable = nullptr, double minimum = 0.0, double maximum = 1.0,
                          double initialDefault = 1.0)
        : MValueQuantity(variable, minimum, maximum, initialDefault)
    {
        SetNarrowedSteps(0.0004, 0.1);
    }
};

/// A balance of -1, left, to 1, right.
class MValuePan : public MValueQuantity<MValueDouble, PanText, ReadPan>
{
public:
    explicit MValuePan(MRelaxed<double>* variable = nullptr, double minimum = -1.0, double maximum = 1.0,
                       double initialDefault = 0.0)
        : MValueQuantity(variable, minimum, maximum, initialDefault)
    {
        SetNarrowedSteps(0.01, 0.1);
    }
};

/// A fraction of a turn shown in degrees.
class MValueDegreesFrom01 : public MValueQuantity<MValueDouble, DegreesText, ReadDegrees>
{
public:
    explicit MValueDegreesFrom01(MRelaxed<double>* variable = nullptr, double minimum = 0.0,
                                 double maximum = 1.0, double initialDefault = 0.0)
        : MValueQuantity(variable, minimum, maximum, initialDefault)
    {
    }
};

/// Decibels.
class MValueGain : public MValueDouble
{
public:
    MValueGain(MRelaxed<double>* variable, double minimum, double maximum, double initialDefault,
               const MString& textFormat = "{+0.2} dB");
};

/// A pitch factor.
class MValuePitch : public MValueDouble
{
public:
    explicit MValuePitch(MRelaxed<double>* variable = nullptr, double minimum = 0.25, double maximum = 4.0,
                         double initialDefault = 1.0);
};

/// A MIDI key shown as a note; typed as a number.
class MValueMIDINote : public MValueInt
{
public:
    explicit MValueMIDINote(MRelaxed<int>* variable = nullptr, int minimum = 0, int maximum = 127,
                            int initialDefault = 60);

protected:
    MString TextOf(int value) const override;
    bool ReadText(const MString& text, int& value) const override;
};

/// An exponent shown as the power of two, 0 to 62.
class MValue2Pow : public MValueInt
{
public:
    MValue2Pow(MRelaxed<int>* variable, int minimum, int maximum, int initialDefault,
               const MString& textFormat = {});

protected:
    MString TextOf(int value) const override;
    /// The number of halvings that bring the number to 1.
    bool ReadText(const MString& text, int& value) const override;
};

/// A number that snaps to multiples of a step.
class MValueStepDouble : public MValueDouble
{
public:
    /// @param quantum  0 leaves the number as it is
    MValueStepDouble(MRelaxed<double>* variable, double minimum, double maximum, double initialDefault,
                     double quantum);

    void LoadDefinition(MAttribute& item) override;   // and "step"
    void Clamp() override;
    double Quantum() const { return step; }

private:
    void SetQuantum(double quantum);

    double step = 0.0;
    double inverseStep = 0.0;
};

/// The same for a factor shown as a percentage.
class MValueStepPercents : public MValueQuantity<MValueStepDouble, PercentText, ReadPercent>
{
public:
    using MValueQuantity::MValueQuantity;
};
