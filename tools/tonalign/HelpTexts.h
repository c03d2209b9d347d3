// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// What --help prints, for the program and for each command.
namespace HelpTexts
{
extern const char* const Program;
extern const char* const Equalize;
extern const char* const Separate;
extern const char* const Render;
extern const char* const Analyse;
extern const char* const Show;
}   // namespace HelpTexts
