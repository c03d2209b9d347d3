// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/values/MValueScale.h"

#include <cmath>

MValue::TextResult MValueScale::TakeText(const MString& text)
{
    return inner->FromText(text) ? TextResult::Changed : TextResult::Unchanged;
}

double MValueScale::GetNumber() const
{
    return inner->GetNormalized();
}

bool MValueScale::SetNumber(double number)
{
    return inner->SetNormalized(number);
}

template <int Power>
double MValueScalePower<Power>::ToInner(double position) const
{
    const double square = position * position;
    return Power == 2 ? square : square * square;
}

template <int Power>
double MValueScalePower<Power>::FromInner(double position) const
{
    const double root = std::sqrt(position);
    return Power == 2 ? root : std::sqrt(root);
}

template class MValueScalePower<2>;
template class MValueScalePower<4>;
