// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/text/MString.h"

/// How the formatter and the scanner see one "{...}".
struct ArgumentSpecification
{
    static constexpr int SlotCount = 32;

    int index = 0;   ///< 0 to SlotCount - 1
    bool isHexadecimal = false;
    bool hasPlus = false;
    char filler = ' ';
    std::int8_t width = 0;
    std::int8_t precision = 4;
    bool isTerminated = false;   ///< false: the text ended before "}"
};

/// Reads the specification whose "{" stands at `position`, and moves `position` behind its "}".
/// Throws MException for an index that no slot has.
ArgumentSpecification ReadArgumentSpecification(const MString& text, int& position);
