// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

#include "foundation/text/MString.h"

// Text as programs copy it to each other.

/// What another program gave as UTF-8: a mark of the byte order and everything from a zero byte on is left
/// out, lines end in a line feed alone.
MString TextOfUTF8Selection(std::string_view bytes);
/// The same of Latin-1, which is all that the type STRING may hold.
MString TextOfLatinSelection(std::string_view bytes);
/// For programs that know no other type: what Latin-1 hasn't got becomes "?".
std::string LatinOf(const MString& text);
