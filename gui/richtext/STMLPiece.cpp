// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/STMLPiece.h"

#include <utility>

#include "gui/richtext/MSTMLObject.h"

STMLPiece::STMLPiece(Kind pieceKind, STMLTextStyle textStyle) : kind(pieceKind), style(std::move(textStyle))
{
}

STMLPiece::STMLPiece(const STMLPiece& other)
    : kind(other.kind), style(other.style), text(other.text), widths(other.widths)
{
    if (other.object != nullptr)
        object.reset(static_cast<MSTMLObject*>(other.object->Clone().release()));
}

STMLPiece::STMLPiece(STMLPiece&&) noexcept = default;
STMLPiece::~STMLPiece() = default;
