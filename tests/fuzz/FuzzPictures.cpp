// SPDX-License-Identifier: GPL-3.0-or-later
// rooms: gui/painting
// Pictures, masks and fonts from anywhere. The first byte chooses between a picture, a mask and a font.
#include <cstddef>
#include <cstdint>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/text/MException.h"
#include "gui/painting/ImageFiles.h"
#include "gui/painting/MAlphaMask.h"
#include "gui/painting/MDrawerToMBitmap.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1)
        return 0;
    MMemoryStream stream = MMemoryStream::Borrow(data + 1, static_cast<std::int32_t>(size - 1));
    MBitmap canvas(64, 32);
    MDrawerToMBitmap drawer(canvas);
    try
    {
        switch (data[0] % 6)
        {
        case 0:
        case 1:
        case 4:
        case 5:
        {
            MBitmap bitmap;
            ImageFiles::Load(bitmap, stream);   // by the marks of the formats
            if (bitmap.Width() * std::int64_t{ bitmap.Height() } < 1 << 16)
                drawer.StretchBlt(canvas.Bounds(), bitmap, bitmap.Bounds(), 255, MColorOp::Overlay);
            break;
        }
        case 2:
        {
            MAlphaMask mask;
            mask.Load(stream);
            drawer.AlphaMask(1, 1, mask, MColor(1, 2, 3), MColorOp::Alphablend);
            break;
        }
        default:
        {
            MFont font;
            font.Load(stream);
            drawer.TextOut(1, 20, "Ag0-5", font, MColor(255, 255, 255), MColorOp::Alphablend);
            break;
        }
        }
    }
    catch (const MException&)
    {
        // Refused.
    }
    return 0;
}
