// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/controls/MStyle.h"

/// A page with every part that a style paints, in all states: 960 x 640 units at the style's scale.
MBitmap PaintPartsSheet(const MStyle& style);
