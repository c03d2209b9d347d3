// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/controls/MPanel.h"

void MPanel::Realize()
{
    const MStyle* style = Style();
    if (style == nullptr || Width() > 0 || Height() > 0)
        return;
    const MSize size = style->GetDefaultSize(controlType);
    SetSize(size.width, size.height);
}
