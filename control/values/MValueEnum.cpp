// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/values/MValueEnum.h"

#include <algorithm>

namespace
{
// Tells most labels apart without comparing texts.
std::uint32_t LabelHash(const MString& label)
{
    std::uint32_t hash = 1;
    for (int index = 0; index < label.Length(); ++index)
    {
        const char16_t character = label[index];
        const bool isCapital = character >= u'A' && character <= u'Z';
        const std::uint32_t folded = isCapital ? character + (u'a' - u'A') : character;
        hash ^= folded * (5 + static_cast<std::uint32_t>(index));
    }
    return hash;
}
}   // namespace

MValueEnumBase::MValueEnumBase(IndexVariable boundVariable, int initialDefault,
                               std::span<const char* const> labelTable)
    : MValueIndex(boundVariable, initialDefault), labels(labelTable)
{
    MValueIndex::Set(std::clamp(Get(), 0, static_cast<int>(labels.size()) - 1));
    changed = false;
}

int MValueEnumBase::IndexOf(const MString& text) const
{
    const std::uint32_t hash = LabelHash(text);
    for (int index = 0; index < LabelCount(); ++index)
        if (const MString label = LabelAt(index); LabelHash(label) == hash && text.EqualsNoCase(label))
            return index;
    return 0;
}

MValue::TextResult MValueEnumBase::TakeText(const MString& text)
{
    return Set(IndexOf(text)) ? TextResult::Changed : TextResult::Unchanged;
}
