// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "control/values/MValueQuantities.h"

/// Hertz on a logarithmic scale.
class MValueFrequency : public MValueQuantity<MValueDoubleNormalized, FrequencyText, ReadFrequency>
{
public:
    explicit MValueFrequency(MRelaxed<double>* variable = nullptr, double minimum = 20.0,
                             double maximum = 20000.0, double initialDefault = 1000.0);
    void SetRange(double minimum, double maximum) override;

protected:
    double PositionOf(double value) const override;
    double ValueAt(double position) const override;

private:
    void UpdateLogarithms();

    double logMin = 0.0;   // log10 of the range
    double logMax = 0.0;
};

/// The decimal logarithm of Hertz, linear in the logarithm.
class MValueFrequencyLog : public MValueDouble
{
public:
    static constexpr double LowestLog = 1.3010299956639813;   // 20 Hz
    static constexpr double HighestLog = 4.301029995663981;   // 20 kHz

    explicit MValueFrequencyLog(MRelaxed<double>* variable = nullptr, double minimum = LowestLog,
                                double maximum = HighestLog, double initialDefault = 2.0)
        : MValueDouble(variable, minimum, maximum, initialDefault)
    {
    }

protected:
    MString TextOf(double value) const override;
    bool ReadText(const MString& text, double& value) const override;
};

/// Hertz on a linear scale.
class MValueFrequencyLinear : public MValueQuantity<MValueDouble, FrequencyText, ReadFrequency>
{
public:
    explicit MValueFrequencyLinear(MRelaxed<double>* variable = nullptr, double minimum = 20.0,
                                   double maximum = 20000.0, double initialDefault = 1000.0)
        : MValueQuantity(variable, minimum, maximum, initialDefault)
    {
    }
};
