// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

#include "gui/richtext/STMLResources.h"

class MSTMLObject;

/// What stands behind and below a text; one object for each place where a text opens it.
struct STMLDecoration
{
    std::optional<STMLField> field;
    bool underlined = false;
};

/// How a text looks. Font and colour are indexes of MDrawerOwner.
struct STMLTextStyle
{
    std::int32_t font = 0;
    std::int32_t color = 0;
    std::uint8_t alpha = 255;
    std::shared_ptr<const STMLDecoration> decoration;

    bool operator==(const STMLTextStyle&) const = default;
};

/// A part of a paragraph that looks alike throughout.
struct STMLPiece
{
    enum class Kind
    {
        Text,
        Object,
        Padding   ///< of a field, before or behind its text
    };

    STMLPiece(Kind pieceKind, STMLTextStyle textStyle);
    STMLPiece(const STMLPiece& other);
    STMLPiece(STMLPiece&&) noexcept;
    STMLPiece& operator=(const STMLPiece&) = delete;
    STMLPiece& operator=(STMLPiece&&) = delete;
    ~STMLPiece();

    Kind kind;
    STMLTextStyle style;
    MString text;   ///< a line feed in it breaks the line
    std::unique_ptr<MSTMLObject> object;
    std::vector<float> widths;   ///< of the text's characters, once it is measured
};
