// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

/// Appends two upper-case digits a byte, the high one first.
void AppendHexadecimal(const std::uint8_t* bytes, std::int32_t count, std::string& digits);

/// Decodes `byteCount` bytes from twice as many digits of either case. Throws MException "Invalid character
/// to be converted to a number.".
template <typename Character>
void DecodeHexadecimal(const Character* digits, std::int32_t byteCount, std::uint8_t* bytes);

[[noreturn]] void ThrowInvalidDigit();
