// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/text/MString.h"
#include "state/tree/MStoreParams.h"

/// Attributes that are left out at their default, in both directions.
class StoredKeys
{
public:
    explicit StoredKeys(MStoreParams& storeParams) : params(storeParams) {}

    bool IsSaving() const { return params.saving != 0; }
    void Bool(const MString& key, bool& value);
    void Int(const MString& key, std::int32_t& value, std::int32_t defaultValue = 0);
    /// 12 significant digits; 0 to within 1e-50 is left out. Loads finite numbers only.
    void Double(const MString& key, double& value) { DoubleOr(key, value, 0.0); }
    /// A missing key leaves the value.
    void DoubleOrUnchanged(const MString& key, double& value) { DoubleOr(key, value, value); }
    bool Has(const MString& key) const;

private:
    void DoubleOr(const MString& key, double& value, double missing);
    void Save(const MString& key, const MString& text, bool isDefault);

    MStoreParams& params;
};
