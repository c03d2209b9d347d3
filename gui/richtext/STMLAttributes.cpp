// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/STMLAttributes.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"

namespace
{
/// What is no number is none.
double Limited(double value, double most)
{
    return value > 0 ? std::min(value, most) : 0;
}

STMLFit FitOf(const MString& name, std::initializer_list<const char*> names, const MString& kind)
{
    std::uint8_t index = 0;
    for (const char* known : names)
    {
        if (name.EqualsNoCase(MString::Literal(known)))
            return static_cast<STMLFit>(index);
        ++index;
    }
    ThrowInvalidName(kind, name);
}

/// Eight digits, red first and alpha last.
std::optional<MColor> ColorOfDigits(const MString& text)
{
    int consumed = 0;
    const std::uint64_t digits = text.ToUnsigned(16, &consumed);
    if (text.Length() != 8 || consumed != 8)
        return std::nullopt;
    return MColor(static_cast<std::uint32_t>(digits >> 8 | digits << 24));
}
}   // namespace

void ThrowInvalidName(const MString& kind, const MString& name)
{
    throw MException(Format("Invalid {0} identifier to parse ({1}).", kind, name));
}

const MString* STMLAttributes::Find(const char* key) const
{
    const MString wanted = MString::Literal(key);
    const MString* found = nullptr;
    for (const MAttributePair& pair : attributes)
        if (pair.key == wanted)
            found = &pair.value;   // the last of several
    return found;
}

void STMLAttributes::Read(const char* key, MString& text) const
{
    if (const MString* found = Find(key))
        text = *found;
}

void STMLAttributes::Read(const char* key, std::int64_t& number) const
{
    if (const MString* found = Find(key))
        number = found->ToInt();
}

void STMLAttributes::Read(const char* key, bool& flag) const
{
    if (const MString* found = Find(key))
        flag = found->ToInt() != 0;
}

void STMLAttributes::Read(const char* key, std::uint8_t& byte) const
{
    if (const MString* found = Find(key))
        byte = static_cast<std::uint8_t>(std::clamp<std::int64_t>(found->ToInt(), 0, 255));
}

void STMLAttributes::Read(const char* key, std::optional<std::uint8_t>& byte) const
{
    if (Has(key))
        Read(key, byte.emplace());
}

void STMLAttributes::Read(const char* key, std::optional<STMLColor>& color) const
{
    const MString* found = Find(key);
    if (found == nullptr)
        return;
    if (const std::optional<MColor> stated = ColorOfDigits(*found))
        color = STMLColor{ stated, 0 };
    else if (const std::optional<std::int32_t> index = resources.FindColor(*found))
        color = STMLColor{ std::nullopt, *index };
    else
        ThrowInvalidName("MStdColor", *found);
}

void STMLAttributes::Read(const char* key, STMLLength& length) const
{
    const MString* found = Find(key);
    if (found == nullptr)
        return;
    int consumed = 0;
    const double value = found->ToDouble(&consumed);
    if (consumed > 0 && std::isfinite(value))
    {
        const bool isShare = (*found)[consumed] == u'%';
        length.kind = isShare ? STMLLength::Kind::Share : STMLLength::Kind::Units;
        length.value = isShare ? Limited(value / 100, 1) : Limited(value, STMLLength::MostUnits);
        return;
    }
    if (!resources.FindMetric(*found))
        ThrowInvalidName("size", *found);
    length.kind = STMLLength::Kind::Metric;
    length.metric = *found;
}

void STMLAttributes::ReadUnits(const char* key, double& units) const
{
    if (const MString* found = Find(key))
        units = Limited(found->ToDouble(), STMLLength::MostUnits);
}

void STMLAttributes::ReadShare(const char* key, double& share) const
{
    const MString* found = Find(key);
    if (found == nullptr)
        return;
    int consumed = 0;
    const double value = found->ToDouble(&consumed);
    share = Limited((*found)[consumed] == u'%' ? value / 100 : value, 1);
}

void STMLAttributes::ReadAcross(const char* key, std::optional<STMLFit>& fit) const
{
    if (const MString* found = Find(key))
        fit = FitOf(*found, { "left", "center", "right", "stretch" }, "MHorizontalObjectLayout");
}

void STMLAttributes::ReadDown(const char* key, std::optional<STMLFit>& fit) const
{
    if (const MString* found = Find(key))
        fit = FitOf(*found, { "top", "center", "bottom", "stretch" }, "MVerticalObjectLayout");
}
