// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <vector>

#include "gui/richtext/STMLOwner.h"
#include "gui/richtext/STMLPiece.h"

/// Which width of an object counts.
enum class STMLMeasure
{
    Preferred,
    Present   ///< of the box that it has in the line last laid out for
};

/// A part of a word in one piece: characters `first` to `end` - 1, or an object or padding.
struct STMLSegment
{
    std::size_t piece = 0;
    int first = 0;
    int end = 0;
    double width = 0;
};

/// What no line is broken in, if it can be helped.
struct STMLWord
{
    enum class Kind
    {
        Text,
        LineFeed,   ///< ends the line, an empty one too
        LineStart   ///< ends the line if it has something
    };

    Kind kind = Kind::Text;
    std::size_t firstSegment = 0;
    std::size_t endSegment = 0;
    double gap = 0;   ///< blanks before it, which a line doesn't begin with
    double width = 0;
    std::size_t piece = 0;   ///< of a line feed
};

/// The pieces of a paragraph, taken apart at blanks.
struct STMLWords
{
    std::vector<STMLWord> words;
    std::vector<STMLSegment> segments;
    double widest = 0;   ///< of the words
    double longest = 0;   ///< of the lines with none broken
};

/// @param pieces  with their characters measured
/// @param singleLine  line feeds are blanks, and nothing begins a line of its own
STMLWords MakeWords(const std::vector<STMLPiece>& pieces, const STMLOwner& owner, STMLMeasure measure,
                    bool singleLine);
