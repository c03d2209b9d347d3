// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

#include "foundation/text/MString.h"

// A file's name is bytes without a meaning, mostly UTF-8. As text it keeps every one of them: a byte that is
// no part of well-formed UTF-8 travels as the lone surrogate U+DC00 plus the byte. Source: M. v. Loewis, PEP
// 383.

/// The text of a name or path. PathBytes of it gives the same bytes again, whatever they are but zero.
MString PathText(std::string_view bytes);
/// The bytes that the system knows the path by.
std::string PathBytes(const MString& path);
