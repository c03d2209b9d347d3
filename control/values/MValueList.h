// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "control/values/MValueIndex.h"
#include "foundation/text/MStringList.h"

/// Chooses one of a list of labels, which must outlive the value. An unknown label changes nothing.
class MValueListBase : public MValueIndex
{
public:
    using MValueIndex::MValueIndex;

protected:
    TextResult TakeText(const MString& text) override;
};

template <typename T, typename L, typename I>
class MValueList;

/// Over a static array.
template <>
class MValueList<const char*, const char* const*, int> : public MValueListBase
{
public:
    MValueList(IndexVariable boundVariable, const char* const* labelTable, int labelCount,
               int initialDefault = 0);
    int LabelCount() const override { return count; }
    MString LabelAt(int index) const override { return MString::Literal(labels[index]); }

private:
    const char* const* labels;
    int count;
};

/// Over a list of texts, which may grow and shrink.
template <>
class MValueList<MString, const MStringList&, int> : public MValueListBase
{
public:
    MValueList(IndexVariable boundVariable, const MStringList& labelList, int initialDefault = 0);
    int LabelCount() const override { return labels.Count(); }
    MString LabelAt(int index) const override { return labels[index]; }

private:
    const MStringList& labels;
};

using MValueTableList = MValueList<const char*, const char* const*, int>;
using MValueStringList = MValueList<MString, const MStringList&, int>;
