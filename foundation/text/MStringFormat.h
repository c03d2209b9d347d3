// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/text/MString.h"

/// A compiled message text with numbered places, filled one argument after the other.
///
/// "{0}" names argument 0. Options between the index and "}": "x" hexadecimal, "+" explicit plus sign,
/// "." and a number: digits after the point (10 and more: significant digits), "0" and a number: width
/// padded with zeros, blank and a number: width padded with blanks. "{{" is one "{", "}}" one "}".
/// Throws MException for a text that ends inside "{...", and for an index outside 0 to 31.
/// Arguments without a place are dropped, places without an argument stay empty. Copies are handles of
/// one object: an argument given to one is seen through all.
class MStringFormat
{
public:
    explicit MStringFormat(const MString& format);
    ~MStringFormat();
    MStringFormat(const MStringFormat& other) noexcept;
    MStringFormat& operator=(const MStringFormat& other) noexcept;

    MStringFormat& Add(const MString& text);
    MStringFormat& Add(const char* text);
    MStringFormat& Add(std::int64_t value);
    MStringFormat& Add(std::uint64_t value);
    MStringFormat& Add(int value) { return Add(static_cast<std::int64_t>(value)); }
    MStringFormat& Add(unsigned value) { return Add(static_cast<std::uint64_t>(value)); }
    MStringFormat& Add(long long value) { return Add(static_cast<std::int64_t>(value)); }
    MStringFormat& Add(unsigned long long value) { return Add(static_cast<std::uint64_t>(value)); }
    MStringFormat& Add(double value);
    /// The text with the arguments given so far in their places.
    MString Text() const;

private:
    struct Compiled;
    Compiled* compiled;
};

/// Format("File \"{0}\" has {1} frames.", path, count): the usual form.
template <typename... Arguments>
MString Format(const MString& format, const Arguments&... arguments)
{
    MStringFormat text(format);
    (text.Add(arguments), ...);
    return text.Text();
}
