// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "state/tree/MAttribute.h"
#include "tools/stylebuilder/PathDrawing.h"
#include "tools/stylebuilder/Theme.h"

/// The definition of one look: all that a style reads besides the images.
void MakeDefinition(MAttribute& definition, const Theme& theme, const std::vector<PathDrawing>& drawings);
