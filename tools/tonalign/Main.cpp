// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>

#include "foundation/text/MException.h"
#include "tools/tonalign/Interrupt.h"
#include "tools/tonalign/Options.h"
#include "tools/tonalign/Session.h"

namespace
{
enum ExitStatus
{
    Done = 0,
    Failed = 1,
    WrongUsage = 2
};

// One line, whatever a message holds.
int Fail(std::string message, ExitStatus status)
{
    std::replace(message.begin(), message.end(), '\n', ' ');
    std::fprintf(stderr, "tonalign: %s\n", message.c_str());
    return status;
}

// False when the text can't be delivered, for example to a full disk.
bool Deliver(const std::string& text)
{
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    return std::fflush(stdout) == 0 && written;
}

int RunProgram(int argumentCount, char** arguments)
{
    const Options options = ParseCommandLine(argumentCount, arguments);
    CatchInterrupts();
    std::string text;
    {
        Session session(options);
        text = session.Run();
    }
    return Deliver(text) ? Done : Fail("standard output can't be written", Failed);
}
}   // namespace

int main(int argumentCount, char** arguments)
{
    try
    {
        return RunProgram(argumentCount, arguments);
    }
    catch (const PrintAndExit& print)
    {
        return Deliver(print.text) ? Done : Failed;
    }
    catch (const UsageError& error)
    {
        Fail(error.message, WrongUsage);
        std::fprintf(stderr, "tonalign: see tonalign --help\n");
        return WrongUsage;
    }
    catch (const FileError& error)
    {
        if (Interrupted())
            return Fail("Interrupted.", Failed);
        return Fail(error.path + ": " + error.message, Failed);
    }
    catch (const MException& exception)
    {
        return Fail(Interrupted() ? "Interrupted." : exception.Message.ToUTF8(), Failed);
    }
    catch (const std::exception& exception)
    {
        return Fail(exception.what(), Failed);
    }
}
