// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/windows/RegisterWindowControls.h"

#include "gui/loader/MXmlLoader.h"
#include "gui/windows/MColorSelectButton.h"

void RegisterWindowControls(MXmlLoader& loader)
{
    loader.AddControl<MColorSelectButton>("colorselectbutton");
}
