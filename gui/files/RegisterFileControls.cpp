// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/files/RegisterFileControls.h"

#include "gui/files/MDirectoryTreeControl.h"
#include "gui/files/MFileListBox.h"
#include "gui/files/MFileSelector.h"
#include "gui/loader/MXmlLoader.h"

void RegisterFileControls(MXmlLoader& loader)
{
    loader.AddControl<MDirectoryTreeControl>("directorytree");
    loader.AddControl<MFileListBox>("filelistbox");
    loader.AddControl<MFileSelector>("fileselector");
}
