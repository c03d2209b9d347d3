// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/FrequencyAreas.h"

#include <algorithm>
#include <cmath>

#include "foundation/text/MStringFormat.h"
#include "foundation/text/MStringScan.h"
#include "state/tree/MAttribute.h"
#include "state/tree/MStoreParams.h"

namespace
{
// One key in both directions, left out at its default.
class KeyStore
{
public:
    explicit KeyStore(const MStoreParams& store) : params(store) {}

    void Integer(const char* key, std::int32_t& value, std::int32_t defaultValue)
    {
        if (params.saving)
            Write(key, value == defaultValue, MString::FromInt(value));
        else if (params.item->HasAttribute(key))
            value = static_cast<std::int32_t>(
                std::clamp<std::int64_t>(params.item->GetCachedAttribute().ToInt(), -100000, 100000));
        else
            value = defaultValue;
    }
    void Flag(const char* key, bool& value, bool defaultValue)
    {
        std::int32_t number = value ? 1 : 0;
        Integer(key, number, defaultValue ? 1 : 0);
        value = number != 0;
    }
    void Number(const char* key, double& value, double defaultValue)
    {
        if (params.saving)
        {
            Write(key, std::fabs(value - defaultValue) < 1e-50, MString::FromDouble(value, 12));
            return;
        }
        value = params.item->HasAttribute(key) ? params.item->GetCachedAttribute().ToDouble() : defaultValue;
        if (!std::isfinite(value))
            value = defaultValue;
    }
    void Text(const char* key, MString& value, const char* defaultValue)
    {
        if (params.saving)
            Write(key, value == MString(defaultValue), value);
        else
            value = params.item->GetAttribute(key, defaultValue);
    }
    // Eight hexadecimal digits: red, green, blue, alpha.
    void Color(const char* key, std::uint32_t& value)
    {
        if (params.saving)
        {
            Write(key, value == 0,
                  Format("{0x;02}{1x;02}{2x;02}{3x;02}", (value >> 16) & 0xFF, (value >> 8) & 0xFF,
                         value & 0xFF, value >> 24));
            return;
        }
        const MString text = params.item->GetAttribute(key);
        const auto digits = static_cast<std::uint32_t>(text.ToInt(16));
        value = text.Length() == 8 ? (digits >> 8) | (digits << 24)
                                   : (text.IsEmpty() ? 0 : (digits & 0xFFFFFF) | 0xFF000000u);
    }

private:
    void Write(const char* key, bool isDefault, const MString& text)
    {
        if (isDefault)
            params.item->RemoveAttribute(key);
        else
            params.item->SetAttribute(key, text);
    }
    const MStoreParams& params;
};

void StoreArea(FrequencyAreas::Area& area, const MStoreParams& params)
{
    constexpr double lowest = 1.3010299956639813;
    KeyStore keys(params);
    keys.Number("Min", area.minX, lowest);
    keys.Number("Max", area.maxX, lowest);
    keys.Color("Color", area.color);
    keys.Flag("ColorEnabled", area.colorEnabled, false);
    keys.Integer("Row", area.row, 0);
    keys.Integer("Height", area.height, 0);
    keys.Text("Name", area.name, "Undefined");
}
}   // namespace

void FrequencyAreas::Store(const MStoreParams& params)
{
    KeyStore keys(params);
    keys.Integer("RowHeight", rowHeight, 20);
    keys.Flag("FromTop", fromTop, false);
    keys.Flag("InvertRows", invertRows, false);
    keys.Flag("MaximizeRows", maximizeRows, false);
    keys.Number("Alpha", alpha, 0.5);
    if (params.saving)
    {
        for (Area& area : areas)
            StoreArea(area, { .saving = 1, .item = &params.item->AddSubItem("Item") });
        return;
    }
    areas.clear();
    for (int index = 0; index < params.item->SubItemCount(); ++index)
    {
        MAttribute& item = params.item->SubItemAt(index);
        if (!item.Name().EqualsNoCase("Item"))
            continue;
        StoreArea(areas.emplace_back(), { .saving = 0, .item = &item });
    }
}
