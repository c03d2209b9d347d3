// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

/// Writes each factory preset as NAME.vstpreset into the folder, which is made where it is missing: the whole
/// settings of a new instance with that preset. Throws MException.
void WriteVst3Presets(const std::string& folder);
