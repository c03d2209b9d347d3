// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "foundation/text/MStringList.h"
#include "gui/styles/StyleDefinition.h"

// Where styles come from: files in one folder, and those inside the module, so that the program has its look
// without any file. A file of the same name goes first.

/// The folder: a configuration's `StylePath`, or "QStyles" in the user's data folder, or, where that isn't
/// there, in the machine's.
MString GetStylePath(const MAttribute& configuration);
/// The names that a user can choose from, sorted: of the files, and of the module's own styles.
MArray<MString> ListStyles(const MString& folder);
/// A style by its name, or what stands in for it: see MTexturedStyle::Apply. What it lacks is taken from the
/// common definition. Throws MException "No styles are available. Please reinstall the software.", and what
/// reading throws.
std::unique_ptr<StyleDefinition> FindStyleDefinition(const MString& name, const MString& folder);
/// The common definition: the module's resource `qstyle`, or the file beside the module or in the current
/// folder. Throws MException "No style definition has been found.".
std::unique_ptr<StyleDefinition> LoadCommonDefinition();
