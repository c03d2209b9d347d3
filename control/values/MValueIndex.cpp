// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/values/MValueIndex.h"

#include <algorithm>
#include <cmath>

MValueIndex::MValueIndex(IndexVariable boundVariable, int initialDefault)
    : owned(initialDefault), bound(boundVariable.IsBound() ? boundVariable : IndexVariable(&owned)),
      defaultIndex(initialDefault)
{
}

bool MValueIndex::Set(int index)
{
    const bool differs = Get() != index;
    bound.Set(index);
    changed = changed || differs;
    return differs;
}

bool MValueIndex::SetNumber(double number)
{
    return Set(static_cast<int>(std::clamp(number, 0.0, static_cast<double>(LabelCount()))));
}

MString MValueIndex::ToText() const
{
    const int index = Get();
    return index >= 0 && index < LabelCount() ? LabelAt(index) : MString();
}

int MValueIndex::IndexAt(double position) const
{
    return std::max(0, static_cast<int>(std::lround(LimitedPosition(position) * (LabelCount() - 1))));
}

MContent MValueIndex::CreateContentAt(double position) const
{
    const int index = IndexAt(position);
    return MakeContent(DisplayTextOf(index, index < LabelCount() ? LabelAt(index) : MString()));
}

void MValueIndex::Clamp()
{
    Set(std::clamp(Get(), 0, std::max(LabelCount() - 1, 0)));
}

bool MValueIndex::Step(int direction, int)
{
    return Increment(direction);
}

bool MValueIndex::Increment(int steps)
{
    const int before = Get();
    const std::int64_t moved = std::int64_t{ before } + steps;
    Set(static_cast<int>(std::clamp<std::int64_t>(moved, 0, std::max(LabelCount() - 1, 0))));
    return Get() != before;
}

double MValueIndex::GetNormalized() const
{
    const int count = LabelCount();
    return count < 2 ? 0.0 : LimitedPosition(static_cast<double>(Get()) / (count - 1));
}

bool MValueIndex::SetNormalized(double position)
{
    return Set(IndexAt(position));
}
