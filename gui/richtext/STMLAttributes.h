// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/text/MArray.h"
#include "gui/richtext/MSTMLObject.h"
#include "gui/richtext/STMLLength.h"
#include "gui/richtext/STMLParagraphFormat.h"
#include "state/tree/MAttribute.h"

/// A tag's attributes as values. Keys are exact, names in values go without case. What is missing leaves the
/// value as it is; a number ends at the first character that doesn't fit. Throws MException "Invalid {0}
/// identifier to parse ({1})." with the kind of name.
class STMLAttributes
{
public:
    STMLAttributes(const MArray<MAttributePair>& tagAttributes, const STMLResources& named)
        : attributes(tagAttributes), resources(named)
    {
    }

    bool Has(const char* key) const { return Find(key) != nullptr; }
    void Read(const char* key, MString& text) const;
    void Read(const char* key, std::int64_t& number) const;
    void Read(const char* key, bool& flag) const;
    /// 0 to 255.
    void Read(const char* key, std::uint8_t& byte) const;
    void Read(const char* key, std::optional<std::uint8_t>& byte) const;
    void Read(const char* key, std::optional<STMLColor>& color) const;
    void Read(const char* key, STMLLength& length) const;
    /// Units that can't be a share: 0 to STMLLength::MostUnits.
    void ReadUnits(const char* key, double& units) const;
    /// 0 to 1, or in percent.
    void ReadShare(const char* key, double& share) const;
    /// "left", "center", "right" or "stretch".
    void ReadAcross(const char* key, std::optional<STMLFit>& fit) const;
    /// "top", "center", "bottom" or "stretch".
    void ReadDown(const char* key, std::optional<STMLFit>& fit) const;

private:
    const MString* Find(const char* key) const;

    const MArray<MAttributePair>& attributes;
    const STMLResources& resources;
};

/// Of a name that is none.
[[noreturn]] void ThrowInvalidName(const MString& kind, const MString& name);
