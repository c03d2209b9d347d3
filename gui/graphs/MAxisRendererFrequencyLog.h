// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/graphs/MAxisRendererList.h"

/// Frequencies 20, 50, 100 and so on up to 20k on a logarithmic axis.
class MAxisRendererFrequencyLog : public MAxisRendererList
{
public:
    /// @param logMin, logMax  decimal logarithms of Hertz at the ends
    MAxisRendererFrequencyLog(double logMin, double logMax);
};
