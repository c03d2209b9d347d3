// SPDX-License-Identifier: GPL-3.0-or-later
// rooms: gui/styles gui/painting foundation/streams foundation/text
// A style file from anywhere: it is refused, or something can be painted with it.
#include <cstddef>
#include <cstdint>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/text/MException.h"
#include "gui/painting/MDrawerToMBitmap.h"
#include "gui/styles/MTexturedStyle.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > (1u << 20))
        return 0;
    try
    {
        MMemoryStream stream = MMemoryStream::Borrow(data, static_cast<std::int32_t>(size));
        const std::unique_ptr<StyleDefinition> definition = StyleDefinition::Read(stream);
        MTexturedStyle style;
        style.Load(*definition, nullptr);
        MBitmap canvas(120, 80);
        MDrawerToMBitmap painter(canvas, &style);
        const MRectangle area{ 4, 5, 90, 30 };
        for (std::size_t type = 0; type < std::size(MEnumLabels<MControlType>::Labels); ++type)
            for (const int state :
                 { 0, int{ DrawEnabled }, DrawEnabled | DrawOn, DrawEnabled | DrawLearning })
            {
                style.PaintFace(painter, area, static_cast<MControlType>(type),
                                static_cast<std::uint16_t>(state));
                style.PaintItem(painter, area, static_cast<MControlType>(type),
                                static_cast<std::uint16_t>(state));
            }
        style.PaintKnob(painter, area, { 0.3, 0.5, 7 }, DrawEnabled);
        style.PaintTracker(painter, area, Axis::X, { 0.3, 0.5, 0 }, DrawEnabled);
        style.PaintTracker(painter, area, Axis::Y, { 0.3, 0.5, 0 }, DrawEnabled);
        style.PaintProgress(painter, area, 0.4);
        style.PaintScrollBar(painter, area, area, Axis::X, DrawEnabled);
        style.PaintCheckBox(painter, area, MCheckBoxState::Grayed, DrawEnabled);
        style.PaintRadioButton(painter, area, DrawEnabled);
        style.PaintTab(painter, area, DrawEnabled | DrawOn);
        style.PaintFocusRing(painter, area);
        style.PaintShadow(painter, area);
        for (std::size_t icon = 0; icon < std::size(MEnumLabels<MStdIcon>::Labels); ++icon)
            style.PaintIcon(painter, area, static_cast<MStdIcon>(icon), MColor(1, 2, 3));
        static_cast<MDrawer&>(painter).TextOut(3, 20, "Ag0", style.GetFont(MStdFont::Normal),
                                               MColor(9, 9, 9));
    }
    catch (const MException&)
    {
        // Refused.
    }
    return 0;
}
