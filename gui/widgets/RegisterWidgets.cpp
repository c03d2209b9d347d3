// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/RegisterWidgets.h"

#include "gui/fields/MEdit.h"
#include "gui/fields/MMultiLineEdit.h"
#include "gui/fields/MScrollBar.h"
#include "gui/loader/MXmlLoader.h"
#include "gui/widgets/MButton.h"
#include "gui/widgets/MCheckBox.h"
#include "gui/widgets/MColorEditor.h"
#include "gui/widgets/MComboEdit.h"
#include "gui/widgets/MKnob.h"
#include "gui/widgets/MLevelMeter.h"
#include "gui/widgets/MListBox.h"
#include "gui/widgets/MMenuBar.h"
#include "gui/widgets/MProgressBar.h"
#include "gui/widgets/MRepeaterButton.h"
#include "gui/widgets/MSplitter.h"
#include "gui/widgets/MStatic.h"
#include "gui/widgets/MStaticMultiLine.h"
#include "gui/widgets/MSwitcher.h"
#include "gui/widgets/MTabSet.h"
#include "gui/widgets/MTracker.h"
#include "gui/widgets/MTreeControl.h"
#include "gui/widgets/MValueButton.h"
#include "gui/widgets/MVector2DEditor.h"

void RegisterWidgets(MXmlLoader& loader)
{
    loader.AddControl<MStatic>("static");
    loader.AddControl<MStaticMultiLine>("multilinestatic");
    loader.AddControl<MButton>("button");
    loader.AddControl<MRepeaterButton>("repeaterbutton");
    loader.AddControl<MCheckBox>("checkbox");
    loader.AddControl<MEdit>("edit");
    loader.AddControl<MComboEdit>("comboedit");
    loader.AddControl<MValueButton>("valuebutton");
    loader.AddControl<MMenuBar>("menubar");
    loader.AddControl<MTreeControl>("treecontrol");
    loader.AddControl<MMultiLineEdit>("multilineedit");
    loader.AddControl<MVector2DEditor>("vector2deditor");
    loader.AddControl<MColorEditor>("coloreditor");
    loader.AddControl<MTabSet>("tabset");
    loader.AddControl<MListBox>("listbox");
    loader.AddControl<MProgressBar>("progressbar");
    loader.AddControl<MScrollBar>("scrollbar");
    loader.AddControl<MTracker>("tracker");
    loader.AddControl<MRotator>("rotator");
    loader.AddControl<MKnob>("knob");
    loader.AddControl<MSplitter>("splitter");
    loader.AddControl<MSwitcher>("switcher");
    loader.AddControl<MLevelMeter>("levelmeter");
}
