// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <limits>

#include "foundation/text/FormatGrammar.h"
#include "foundation/text/MString.h"

/// Takes a text apart by the pattern that could have formatted it.
///
/// The pattern has the grammar of MStringFormat. A run of whitespace matches any run of whitespace, other
/// characters match themselves, an argument takes the input up to the character that follows it in the
/// pattern, or up to whitespace. Scanning stops at the first mismatch: CapturedCount() tells how far it
/// came. Throws MException only for an argument index outside 0 to 31.
class MStringScan
{
public:
    MStringScan(const MString& pattern, const MString& input);

    /// How many arguments the input gave; falls back to the number read when an integer has no digit.
    int CapturedCount() const { return capturedCount; }
    /// The number of slots that the pattern names.
    int SlotCount() const { return slotCount; }

    /// Reads the next captured argument; beyond the captured ones the variable keeps its value. Decimal
    /// integers are clamped to their type's range, hexadecimal ones cut to its bits.
    template <std::integral Integer>
    MStringScan& Get(Integer& value);
    MStringScan& Get(double& value);
    MStringScan& Get(MString& value);

private:
    struct Slot
    {
        MString text;
        bool isHexadecimal = false;
    };
    struct ParsedInteger
    {
        bool isNegative = false;
        std::uint64_t magnitude = 0;   // saturates
        bool hasDigits = false;
        bool isHexadecimal = false;
    };

    void Scan(const MString& pattern);
    bool MatchWhitespace(const MString& pattern, int& place, int& position) const;
    bool Capture(const MString& pattern, int& place, int& position);
    const Slot* NextSlot();
    static ParsedInteger Parse(const Slot& slot);

    std::array<Slot, ArgumentSpecification::SlotCount> slots;
    MString input;
    int capturedCount = 0;
    int slotCount = 0;
    int nextArgument = 0;
};

template <std::integral Integer>
MStringScan& MStringScan::Get(Integer& value)
{
    const Slot* slot = NextSlot();
    if (slot == nullptr)
        return *this;
    const ParsedInteger parsed = Parse(*slot);
    if (!parsed.hasDigits && sizeof(Integer) <= sizeof(std::int32_t))
    {
        capturedCount = --nextArgument;
        return *this;
    }
    const std::uint64_t bits = parsed.isNegative ? 0 - parsed.magnitude : parsed.magnitude;
    if (parsed.isHexadecimal)
    {
        value = static_cast<Integer>(bits);
        return *this;
    }
    constexpr auto Largest = static_cast<std::uint64_t>(std::numeric_limits<Integer>::max());
    // A signed type reaches one further below 0 than above.
    constexpr std::uint64_t Lowest = std::signed_integral<Integer> ? Largest + 1 : 0;
    if (parsed.magnitude > (parsed.isNegative ? Lowest : Largest))
        value = parsed.isNegative ? std::numeric_limits<Integer>::min() : std::numeric_limits<Integer>::max();
    else
        value = static_cast<Integer>(bits);
    return *this;
}
