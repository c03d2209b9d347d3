// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>

#include "gui/controls/MControl.h"

/// What controls need to know of their texts before they paint. All of it 0 without a style.
namespace WidgetText
{
inline std::int32_t Width(const MControl& control, MStdFont font, const MString& text)
{
    MStyle* style = control.Style();
    return style != nullptr && !text.IsEmpty()
               ? static_cast<std::int32_t>(std::ceil(style->GetFont(font).Width(text)))
               : 0;
}

inline std::int32_t LineHeight(const MControl& control, MStdFont font)
{
    MStyle* style = control.Style();
    return style != nullptr ? style->GetFont(font).LineHeight() : 0;
}

/// What a control needs inside of its frame so that it has a size with it.
inline MSize Inside(const MControl& control, MSize whole)
{
    const MStyle::Frame frame = control.Style()->GetFrame(control);
    return { whole.width - frame.left - frame.right, whole.height - frame.top - frame.bottom };
}

/// Of what stands on a face in a state.
inline MStdColor ColorOf(std::uint16_t state, MStdColor usual = MStdColor::Text)
{
    if ((state & DrawEnabled) == 0)
        return MStdColor::TextDisabled;
    if ((state & DrawPrimary) != 0)
        return MStdColor::AccentInk;
    return (state & DrawOn) != 0 ? MStdColor::OnText : usual;
}
}   // namespace WidgetText
