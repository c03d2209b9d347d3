// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <concepts>
#include <cstdint>
#include <limits>
#include <span>
#include <type_traits>

#include "foundation/threads/MRelaxed.h"
#include "state/tree/MAttribute.h"
#include "state/tree/MStoreParams.h"

class MStorable;

/// The numbers that a stored value may have; others become the nearest. An enumeration names its own.
template <typename Value>
struct StoredRange
{
    Value lowest = std::numeric_limits<Value>::lowest();
    Value highest = std::numeric_limits<Value>::max();
};

template <typename T>
struct PlainOf
{
    using Type = T;
};
template <typename T>
struct PlainOf<MRelaxed<T>>
{
    using Type = T;
};

/// One item of a settings tree, in either direction: each operation names a key once, so that saving and
/// loading can't get out of step.
///
/// Values are bool, std::int32_t, double (12 significant digits), enumerations (as their number) and MString,
/// plain or as MRelaxed. Loading takes anything: what can't be read, and what is no finite number, counts as
/// absent; numbers out of range become the nearest. What absent keys mean stands at each operation; in an
/// overlay (see MLoadMode) they change nothing. One thread at a time.
class StoredNode
{
public:
    /// The type of a value that may be an MRelaxed.
    template <typename Stored>
    using Plain = typename PlainOf<Stored>::Type;

    explicit StoredNode(const MStoreParams& storeParams) : params(storeParams) {}

    bool IsSaving() const { return params.saving != 0; }
    bool IsOverlay() const { return params.mode == MLoadMode::Overlay; }
    const MStoreParams& Params() const { return params; }
    MAttribute& Item() const { return *params.item; }
    bool Has(const MString& key) const { return Item().FindAttribute(key) != nullptr; }
    bool HasChild(const MString& name) const { return Item().FindSubItem(name) != nullptr; }

    /// Always saved. Absent: the value stays.
    template <typename Stored>
    void Always(const MString& key, Stored& value, StoredRange<Plain<Stored>> range = {})
    {
        if (IsSaving())
            Item().SetAttribute(key, TextOf<Plain<Stored>>(value));
        else
            Read(key, value, range);
    }

    /// Always saved. Absent: the default.
    template <typename Stored>
    void AlwaysOr(const MString& key, Stored& value, Plain<Stored> absent,
                  StoredRange<Plain<Stored>> range = {})
    {
        if (IsSaving())
            Item().SetAttribute(key, TextOf<Plain<Stored>>(value));
        else
            ReadOr(key, value, absent, range);
    }

    /// Not saved at its default, which is what absent means.
    template <typename Stored>
    void Optional(const MString& key, Stored& value, Plain<Stored> defaultValue,
                  StoredRange<Plain<Stored>> range = {})
    {
        if (IsSaving())
            Save(key, IsSame<Plain<Stored>>(value, defaultValue), TextOf<Plain<Stored>>(value));
        else
            ReadOr(key, value, defaultValue, range);
    }

    /// Saved as its label, always. Absent: the default; a label that the table doesn't hold: `unknown`.
    void Label(const MString& key, std::int32_t& value, std::span<const char* const> labels,
               std::int32_t absent, std::int32_t unknown);
    /// A colour 0xAARRGGBB as eight digits in the order red, green, blue, alpha, always saved. Six digits
    /// have alpha FF. Absent: the value stays.
    void Color(const MString& key, std::uint32_t& color);
    /// The same, not saved as 0, which is what absent means.
    void OptionalColor(const MString& key, std::uint32_t& color);
    /// An object that stores itself as one attribute, alone in a child of its own. Absent: its default.
    void Child(const MString& name, MStorable&& value);

    /// visit(child) with a node. Absent: the child counts as empty, and the tree stays as it is.
    template <std::invocable<StoredNode&> Visit>
    void Child(const MString& name, Visit&& visit)
    {
        MAttribute empty;
        StoredNode child(params.At(IsSaving() || HasChild(name) ? Item().GetSubItem(name) : empty));
        visit(child);
    }

    /// The same; absent: visit isn't called.
    template <std::invocable<StoredNode&> Visit>
    void ChildIfPresent(const MString& name, Visit&& visit)
    {
        if (IsSaving() || HasChild(name))
            Child(name, visit);
    }

private:
    // One store: another thread may read the variable meanwhile.
    template <typename Stored>
    void ReadOr(const MString& key, Stored& value, Plain<Stored> absent,
                const StoredRange<Plain<Stored>>& range)
    {
        Plain<Stored> read = IsOverlay() ? Plain<Stored>(value) : absent;
        Read(key, read, range);
        value = read;
    }
    template <typename Value>
    void Read(const MString& key, MRelaxed<Value>& value, const StoredRange<Value>& range)
    {
        Value read = value;
        Read(key, read, range);
        value = read;
    }

    template <typename Value>
    static MString TextOf(const Value& value)
    {
        if constexpr (std::is_same_v<Value, MString>)
            return value;
        else if constexpr (std::is_same_v<Value, double>)
            return NumberText(value);
        else
            return MString::FromInt(static_cast<std::int64_t>(value));
    }

    template <typename Value>
    static bool IsSame(const Value& a, const Value& b)
    {
        if constexpr (std::is_same_v<Value, double>)
            return IsSameNumber(a, b);
        else
            return a == b;
    }

    // Leaves the value when nothing fits.
    template <typename Value>
    void Read(const MString& key, Value& value, const StoredRange<Value>& range)
    {
        if constexpr (std::is_same_v<Value, MString>)
            ReadText(key, value);
        else if constexpr (std::is_same_v<Value, double>)
            ReadNumber(key, value, range);
        else if constexpr (std::is_same_v<Value, bool>)
            value = ReadInteger(key, value ? 1 : 0, {}) != 0;
        else
            value = static_cast<Value>(ReadInteger(
                key, static_cast<std::int32_t>(value),
                { static_cast<std::int32_t>(range.lowest), static_cast<std::int32_t>(range.highest) }));
    }

    static MString NumberText(double value);
    static bool IsSameNumber(double a, double b);
    void ReadText(const MString& key, MString& value) const;
    void ReadNumber(const MString& key, double& value, const StoredRange<double>& range) const;
    std::int32_t ReadInteger(const MString& key, std::int32_t value,
                             const StoredRange<std::int32_t>& range) const;
    void Save(const MString& key, bool isDefault, const MString& text) const;

    MStoreParams params;
};

/// Eight digits in the order red, green, blue, alpha, for a colour 0xAARRGGBB.
MString StoredColorText(std::uint32_t color);
/// Of six digits alpha is FF.
std::uint32_t StoredColorOf(const MString& text);
