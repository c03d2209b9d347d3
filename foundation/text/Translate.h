// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/text/MString.h"

/// The hook through which every text passes before a user sees it. With no table installed it answers
/// its input.
MString Translate(const MString& text, const MString& context = {});

/// Installs one row of the table; a later row of the same text and context replaces it. Any thread.
void AddTranslation(const MString& text, const MString& context, const MString& translation);
void ClearTranslations();
