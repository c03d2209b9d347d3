// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/MColorOp.h"

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"

namespace
{
template <typename Enumeration>
Enumeration Parse(const MString& label, const char* failure)
{
    std::int32_t index = 0;
    for (const char* known : MEnumLabels<Enumeration>::Labels)
    {
        if (label == MString::Literal(known))
            return static_cast<Enumeration>(index);
        ++index;
    }
    throw MException(Format(MString::Literal(failure), label));
}
}   // namespace

MColorOp ParseColorOp(const MString& label)
{
    return Parse<MColorOp>(label, "Invalid MColorOp identifier to parse ({0}).");
}

MBitmapFill ParseBitmapFill(const MString& label)
{
    return Parse<MBitmapFill>(label, "Invalid MBitmapFill identifier to parse ({0}).");
}
