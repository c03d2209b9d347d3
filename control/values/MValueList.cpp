// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/values/MValueList.h"

MValue::TextResult MValueListBase::TakeText(const MString& text)
{
    for (int index = 0; index < LabelCount(); ++index)
        if (LabelAt(index).EqualsNoCase(text))
            return Set(index) ? TextResult::Changed : TextResult::Unchanged;
    return TextResult::Refused;
}

MValueTableList::MValueList(IndexVariable boundVariable, const char* const* labelTable, int labelCount,
                            int initialDefault)
    : MValueListBase(boundVariable, initialDefault), labels(labelTable), count(labelCount)
{
    MValueIndex::Clamp();
    changed = false;
}

MValueStringList::MValueList(IndexVariable boundVariable, const MStringList& labelList, int initialDefault)
    : MValueListBase(boundVariable, initialDefault), labels(labelList)
{
    MValueIndex::Clamp();
    changed = false;
}
