// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/RegisterGraphs.h"

#include "gui/graphs/MGraphEditor.h"
#include "gui/graphs/MZoomer.h"
#include "gui/loader/MXmlLoader.h"

void RegisterGraphs(MXmlLoader& loader)
{
    loader.AddControl<MGraphEditor>("grapheditor");
    loader.AddControl<MZoomer>("zoomer");
}
