// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/richtext/MSTMLObject.h"

/// Which picture: one of those that the caller gave, or one of the style's.
struct STMLPictureName
{
    enum class Source
    {
        Number,
        Icon,
        Bitmap
    };

    Source source = Source::Number;
    std::int64_t number = -1;
    MString name;   ///< of an icon or bitmap
};

/// A picture in a text. One that isn't there takes no room. Given a size it is stretched, given a place, too,
/// it stands there in a box of that size.
class MSTMLImage : public MSTMLObject
{
public:
    MSTMLImage(const STMLOwner& itemOwner, STMLObjectFormat objectFormat, STMLPictureName picture)
        : MSTMLObject(itemOwner, std::move(objectFormat)), name(std::move(picture))
    {
    }

    std::unique_ptr<MSTMLItem> Clone() const override { return std::make_unique<MSTMLImage>(*this); }
    void Paint(MDrawer& drawer, const MRectangle& area) override;

protected:
    Size NaturalSize() const override;
    bool KeepsProportion() const override { return !Format().across && !Format().down; }

private:
    const MBitmap* Picture() const;   // null: none

    STMLPictureName name;
};
