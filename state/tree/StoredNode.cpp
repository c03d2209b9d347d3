// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/tree/StoredNode.h"

#include <algorithm>
#include <cmath>

#include "state/tree/MStorable.h"

MString StoredNode::NumberText(double value)
{
    constexpr int SignificantDigits = 12;
    return MString::FromDouble(value, SignificantDigits);
}

bool StoredNode::IsSameNumber(double a, double b)
{
    return std::fabs(a - b) < 1e-50;
}

void StoredNode::Save(const MString& key, bool isDefault, const MString& text) const
{
    if (isDefault)
        Item().RemoveAttribute(key);
    else
        Item().SetAttribute(key, text);
}

void StoredNode::ReadText(const MString& key, MString& value) const
{
    if (const MString* text = Item().FindAttribute(key))
        value = *text;
}

void StoredNode::ReadNumber(const MString& key, double& value, const StoredRange<double>& range) const
{
    int used = 0;
    const MString* text = Item().FindAttribute(key);
    const double number = text != nullptr ? text->ToDouble(&used) : 0.0;
    if (used > 0 && std::isfinite(number))
        value = std::clamp(number, range.lowest, range.highest);
}

std::int32_t StoredNode::ReadInteger(const MString& key, std::int32_t value,
                                     const StoredRange<std::int32_t>& range) const
{
    int used = 0;
    const MString* text = Item().FindAttribute(key);
    const std::int64_t number = text != nullptr ? text->ToInt(10, &used) : 0;
    return used > 0 ? static_cast<std::int32_t>(std::clamp<std::int64_t>(number, range.lowest, range.highest))
                    : value;
}

void StoredNode::Label(const MString& key, std::int32_t& value, std::span<const char* const> labels,
                       std::int32_t absent, std::int32_t unknown)
{
    const auto label = [&labels](std::int32_t index)
    {
        return MString::Literal(labels[static_cast<std::size_t>(index)]);
    };
    const auto count = static_cast<std::int32_t>(labels.size());
    if (IsSaving())
    {
        Item().SetAttribute(key, label(value >= 0 && value < count ? value : unknown));
        return;
    }
    const MString* text = Item().FindAttribute(key);
    if (text == nullptr)
    {
        value = IsOverlay() ? value : absent;
        return;
    }
    value = unknown;
    for (std::int32_t index = 0; index < count; ++index)
        if (text->EqualsNoCase(label(index)))
            value = index;
}

void StoredNode::Color(const MString& key, std::uint32_t& color)
{
    if (IsSaving())
        Item().SetAttribute(key, StoredColorText(color));
    else if (const MString* text = Item().FindAttribute(key))
        color = StoredColorOf(*text);
}

void StoredNode::OptionalColor(const MString& key, std::uint32_t& color)
{
    if (IsSaving())
        Save(key, color == 0, StoredColorText(color));
    else if (const MString* text = Item().FindAttribute(key); text != nullptr || !IsOverlay())
        color = text != nullptr && !text->IsEmpty() ? StoredColorOf(*text) : 0;
}

void StoredNode::Child(const MString& name, MStorable&& value)
{
    Child(name,
          [this, &value](StoredNode& child)
          {
              if (IsSaving())
                  value.Store(child.Item());
              else if (!IsOverlay() || child.Has(value.Name))
                  value.Load(child.Item());
          });
}

MString StoredColorText(std::uint32_t color)
{
    return MString::FromUnsigned((color << 8) | (color >> 24), 16, 8, '0');
}

std::uint32_t StoredColorOf(const MString& text)
{
    constexpr int WithAlpha = 8;
    if (text.Length() == WithAlpha)
    {
        const auto value = static_cast<std::uint32_t>(text.ToInt(16));
        return (value >> 8) | (value << 24);
    }
    return (static_cast<std::uint32_t>(text.SubString(0, std::min(text.Length(), 6)).ToInt(16)) &
            0x00FFFFFFu) |
           0xFF000000u;
}
