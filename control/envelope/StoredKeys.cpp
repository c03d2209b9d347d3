// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/envelope/StoredKeys.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "state/tree/MAttribute.h"

namespace
{
constexpr double Nothing = 1e-50;
constexpr int SignificantDigits = 12;
}   // namespace

void StoredKeys::Save(const MString& key, const MString& text, bool isDefault)
{
    if (isDefault)
        params.item->RemoveAttribute(key);
    else
        params.item->SetAttribute(key, text);
}

bool StoredKeys::Has(const MString& key) const
{
    return params.item->HasAttribute(key);
}

void StoredKeys::Bool(const MString& key, bool& value)
{
    std::int32_t number = value ? 1 : 0;
    Int(key, number);
    value = number != 0;
}

void StoredKeys::Int(const MString& key, std::int32_t& value, std::int32_t defaultValue)
{
    if (IsSaving())
    {
        Save(key, MString::FromInt(value), value == defaultValue);
        return;
    }
    value = defaultValue;
    if (Has(key))
        value = static_cast<std::int32_t>(std::clamp<std::int64_t>(params.item->GetCachedAttribute().ToInt(),
                                                                   std::numeric_limits<std::int32_t>::min(),
                                                                   std::numeric_limits<std::int32_t>::max()));
}

void StoredKeys::DoubleOr(const MString& key, double& value, double missing)
{
    if (IsSaving())
    {
        Save(key, MString::FromDouble(value, SignificantDigits), std::fabs(value) < Nothing);
        return;
    }
    const double loaded = Has(key) ? params.item->GetCachedAttribute().ToDouble() : missing;
    value = std::isfinite(loaded) ? loaded : missing;
}
