// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

#include "control/values/MValueIndex.h"
#include "foundation/text/MEnumLabels.h"

/// Parsing takes a label that is not in the table for the first one.
class MValueEnumBase : public MValueIndex
{
public:
    MValueEnumBase(IndexVariable boundVariable, int initialDefault, std::span<const char* const> labelTable);

    int LabelCount() const override { return static_cast<int>(labels.size()); }
    MString LabelAt(int index) const override
    {
        return MString::Literal(labels[static_cast<std::size_t>(index)]);
    }

protected:
    TextResult TakeText(const MString& text) override;

private:
    int IndexOf(const MString& text) const;

    std::span<const char* const> labels;
};

/// Chooses a value of E, bound as E or as an int.
template <typename E>
class MValueEnum : public MValueEnumBase
{
public:
    explicit MValueEnum(IndexVariable boundVariable = nullptr, E initialDefault = {})
        : MValueEnumBase(boundVariable, static_cast<int>(initialDefault), MEnumLabels<E>::Labels)
    {
    }

    E GetEnum() const { return static_cast<E>(Get()); }
    bool SetEnum(E value) { return Set(static_cast<int>(value)); }
};
