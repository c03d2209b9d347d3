// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class MBaseStyle;
class MWindowSystem;

/// Hands a window system the cursors that a style draws, for those that the desktop has none of. After each
/// change of the style.
void GiveCursors(const MBaseStyle& style, MWindowSystem& system);
