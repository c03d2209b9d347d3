// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

/// Makes SIGINT, SIGTERM and SIGHUP ask the work to stop; a second one removes the temporary files and ends
/// the program at once. A file that outgrows a limit gives an error instead of a signal.
void CatchInterrupts();
/// Whether one of them came.
bool Interrupted();

/// A file that goes when the program is ended by a signal. A few live at a time; none of a name too long to
/// be kept.
class InterruptedFile
{
public:
    explicit InterruptedFile(const std::string& path);
    ~InterruptedFile();
    InterruptedFile(const InterruptedFile&) = delete;
    InterruptedFile& operator=(const InterruptedFile&) = delete;

private:
    int slot = -1;
};
