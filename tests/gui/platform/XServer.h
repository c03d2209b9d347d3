// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

/// A server without a screen, for a test alone; needs Xvfb.
class XServer
{
public:
    explicit XServer(const std::vector<std::string>& options = {})
    {
        int ends[2] = { -1, -1 };
        if (pipe(ends) != 0)
            return;
        process = fork();
        if (process == 0)
        {
            close(ends[0]);
            Run(ends[1], options);
        }
        close(ends[1]);
        // The number comes, with the end of its line, when the server can be connected to.
        std::string digits;
        char digit = 0;
        while (read(ends[0], &digit, 1) == 1 && digit != '\n')
            digits += digit;
        if (!digits.empty())
            display = ":" + digits;
        close(ends[0]);
        setenv("DISPLAY", display.c_str(), 1);
    }
    ~XServer() { Kill(); }
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    bool IsRunning() const { return process > 0 && !display.empty(); }
    const std::string& Display() const { return display; }
    void Kill()
    {
        if (process > 0)
        {
            kill(process, SIGKILL);
            waitpid(process, nullptr, 0);
        }
        process = 0;
    }

private:
    [[noreturn]] static void Run(int displayEnd, const std::vector<std::string>& options)
    {
        std::vector<std::string> words = { "Xvfb",      "-displayfd", std::to_string(displayEnd),
                                           "-screen",   "0",          "1280x800x24",
                                           "-nolisten", "tcp",        "-noreset" };
        words.insert(words.end(), options.begin(), options.end());
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        // It ends with the tests, however they end.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        // Its warnings about fonts and keys are of no use to anybody.
        if (std::freopen("/dev/null", "w", stderr) != nullptr)
            execvp(arguments[0], arguments.data());
        _exit(1);
    }

    pid_t process = 0;
    std::string display;
};
