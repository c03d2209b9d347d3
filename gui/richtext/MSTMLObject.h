// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "gui/richtext/MSTMLItem.h"
#include "gui/richtext/STMLLength.h"
#include "gui/richtext/STMLPiece.h"

/// Where something stands in its box, along one axis.
enum class STMLFit : std::uint8_t
{
    Begin,
    Middle,
    End,
    Stretch
};

/// What the tags of all objects can say.
struct STMLObjectFormat
{
    STMLLength width;
    STMLLength height;   ///< a share is of a line of text
    std::optional<STMLFit> across;   ///< without a width: in what the line leaves free
    std::optional<STMLFit> down;   ///< absent: centred on the capitals of the text beside it
    STMLTextStyle style;   ///< of the text around it
    bool followsInk = false;
};

/// Something that stands in a line as a word does. Its width is that of its box; a line's objects that state
/// a place without a width share what the line leaves free. Thread: GUI.
class MSTMLObject : public MSTMLItem
{
public:
    /// More would only make pictures that fill the memory.
    static constexpr double MostUnits = 1024;
    static constexpr double MostPixels = 3 * MostUnits;

    std::int32_t GetMinimalWidth() override;
    std::int32_t GetPreferredWidth() override;
    std::int32_t GetHeight(std::int32_t width) override;
    /// @param width  of the line that it stands in
    void Layout(std::int32_t width) override { lineWidth = width; }
    /// Of its box, for the line last laid out for.
    virtual std::int32_t GetWidth() const;
    virtual std::int32_t GetObjectHeight() const;

    /// Whether a line's free space goes to it.
    virtual bool TakesFreeWidth() const { return format.across && !format.width.IsGiven(); }
    /// Whether nothing else stands in its line.
    virtual bool IsAlone() const { return false; }
    const STMLObjectFormat& Format() const { return format; }

protected:
    struct Size
    {
        std::int32_t width = 0;
        std::int32_t height = 0;
    };

    MSTMLObject(const STMLOwner& itemOwner, STMLObjectFormat objectFormat);
    MSTMLObject(const MSTMLObject&) = default;

    /// What it takes where the text states no size.
    virtual Size NaturalSize() const = 0;
    /// Whether a side that isn't stated follows the other one.
    virtual bool KeepsProportion() const { return false; }
    /// The colour, or that of the text around it.
    MColor ColorOr(const std::optional<STMLColor>& color, std::uint8_t alpha) const;

private:
    STMLObjectFormat format;
    std::int32_t lineWidth = 0;
};
