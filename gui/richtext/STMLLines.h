// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <vector>

#include "gui/richtext/STMLParagraphFormat.h"
#include "gui/richtext/STMLWords.h"

/// What is painted at once: text of one piece, or an object, or padding.
struct STMLRun
{
    std::size_t piece = 0;
    MString text;
    double x = 0;   ///< from the left of the paragraph
    double width = 0;
    std::int32_t top = 0;   ///< of an object, from the top of the paragraph
    std::int32_t height = 0;   ///< the same
};

struct STMLLine
{
    std::int32_t top = 0;   ///< from the top of the paragraph
    std::int32_t height = 0;
    std::int32_t baseline = 0;   ///< the same
    std::size_t firstRun = 0;
    std::size_t endRun = 0;
};

struct STMLLines
{
    std::vector<STMLLine> lines;   ///< one at least
    std::vector<STMLRun> runs;
    std::int32_t height = 0;
};

/// Breaks words into lines: each takes what fits, and a word that fits no line is broken between its
/// characters. In a paragraph of one line what is too much is cut with an ellipsis.
/// @param style  of a paragraph without text
/// @param left  where lines begin
/// @param width  of the lines
STMLLines BreakLines(const std::vector<STMLPiece>& pieces, const STMLWords& words, const STMLOwner& owner,
                     const STMLParagraphFormat& format, const STMLTextStyle& style, std::int32_t left,
                     std::int32_t width);
