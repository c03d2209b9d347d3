// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

/// Decodes UTF-8 up to a zero byte or the end into UTF-16 at `target`, which has room for one character a
/// byte; answers the characters written. Code points above U+FFFF become surrogate pairs, U+FEFF is
/// dropped wherever it stands, a byte that can't start a sequence is skipped, a broken sequence yields
/// U+0001. Never throws. Source of the bit layout: RFC 3629.
int DecodeUTF8(std::string_view bytes, char16_t* target) noexcept;

/// Appends the UTF-8 form. Surrogate pairs are joined, a lone surrogate is skipped.
void EncodeUTF8(std::u16string_view text, std::string& bytes);
