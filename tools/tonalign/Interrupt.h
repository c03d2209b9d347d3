// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Makes SIGINT and SIGTERM ask the work to stop; a second one ends the program at once. A file that
/// outgrows a limit gives an error instead of a signal.
void CatchInterrupts();
/// Whether one of them came.
bool Interrupted();
