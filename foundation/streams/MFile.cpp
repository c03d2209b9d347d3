// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/streams/MFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>

#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "foundation/streams/TemporaryName.h"
#include "foundation/text/Boundary.h"
#include "foundation/text/LetterFolding.h"
#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "foundation/text/PathText.h"

namespace
{
[[noreturn]] void ThrowSystemError(const MString& text, int errorNumber)
{
    throw MException(text + " " + SystemErrorText(errorNumber));
}

void CheckSuccess(bool isSuccess, const MString& format, const MString& path)
{
    const int errorNumber = errno;
    if (!isSuccess)
        ThrowSystemError(Format(format, path), errorNumber);
}

bool IsDirectory(const std::string& path)
{
    struct stat information = {};
    return stat(path.c_str(), &information) == 0 && S_ISDIR(information.st_mode);
}

// "*" and "?" as usual. Only the last "*" is ever tried again: linear in practice.
bool MatchesFilter(const MString& name, const MString& filter)
{
    int place = 0;
    int position = 0;
    int starPlace = -1;
    int starPosition = 0;
    while (position < name.Length())
    {
        const bool isStar = place < filter.Length() && filter[place] == u'*';
        const bool isMatch =
            place < filter.Length() &&
            (filter[place] == u'?' || FoldLetter(filter[place]) == FoldLetter(name[position]));
        if (isStar)
        {
            starPlace = place++;
            starPosition = position;
        }
        else if (isMatch)
        {
            ++place;
            ++position;
        }
        else if (starPlace >= 0)
        {
            place = starPlace + 1;
            position = ++starPosition;
        }
        else
        {
            return false;
        }
    }
    while (place < filter.Length() && filter[place] == u'*')
        ++place;
    return place == filter.Length();
}

// Runs a shell script with its arguments; answers its exit code, or the negative error of the start.
int RunScript(const char* script, std::string path, std::string parameters, std::string folder)
{
    std::string words[] = { "sh", "-c", script, "sh" };
    char* pointers[] = { words[0].data(), words[1].data(),   words[2].data(), words[3].data(),
                         path.data(),     parameters.data(), folder.data(),   nullptr };
    pid_t child = 0;
    const int error = posix_spawn(&child, "/bin/sh", nullptr, nullptr, pointers, environ);
    if (error != 0)
        return -error;
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            return 0;   // a host that ignores its children collects them by itself
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// In the background the shell ends at once, so that no child is left for the host to collect.
constexpr const char* openInBackground = "command -v xdg-open >/dev/null 2>&1 || exit 127; "
                                         "xdg-open \"$1\" </dev/null >/dev/null 2>&1 &";
constexpr const char* openAndWait = "command -v xdg-open >/dev/null 2>&1 || exit 127; "
                                    "exec xdg-open \"$1\" </dev/null >/dev/null 2>&1";
constexpr const char* runInBackground =
    "program=$1; folder=$3; eval \"set -- $2\"; cd \"${folder:-.}\" || exit 127; "
    "\"$program\" \"$@\" </dev/null >/dev/null 2>&1 &";
constexpr const char* runAndWait =
    "program=$1; folder=$3; eval \"set -- $2\"; cd \"${folder:-.}\" || exit 127; "
    "exec \"$program\" \"$@\" </dev/null >/dev/null 2>&1";

bool IsAddress(const MString& path)
{
    return path.Find("://") > 0 || path.Find("mailto:") == 0;
}

// File systems of other systems let every file be executed, documents too: what begins like neither a binary
// nor a script is no program.
bool IsProgram(const std::string& path)
{
    if (IsDirectory(path) || access(path.c_str(), X_OK) != 0)
        return false;
    char start[4] = {};
    std::ifstream(path, std::ios::binary).read(start, sizeof start);
    const std::string_view bytes(start, sizeof start);
    return bytes == "\177ELF" || bytes.substr(0, 2) == "#!";
}

// A copy beside the target first, so that the target is there as a whole or not at all.
void MoveAcrossFileSystems(const std::string& from, const std::string& to)
{
    namespace fs = std::filesystem;
    constexpr auto Options = fs::copy_options::recursive | fs::copy_options::copy_symlinks;
    const fs::path temporary = fs::path(to).parent_path() / TemporaryName();
    try
    {
        fs::copy(from, temporary, Options);
        fs::rename(temporary, to);
    }
    catch (...)
    {
        std::error_code ignored;
        fs::remove_all(temporary, ignored);
        throw;
    }
    fs::remove_all(from);
}
}   // namespace

void MFile::CreatePath(const MString& path)
{
    std::error_code error;
    std::filesystem::create_directories(PathBytes(path), error);
    if (!error && !IsDirectory(PathBytes(path)))
        error = std::make_error_code(std::errc::not_a_directory);
    if (error)
        ThrowSystemError(Format("Could not create path \"{0}\".", path), error.value());
}

void MFile::Rename(const MString& from, const MString& to)
{
    int errorNumber = std::rename(PathBytes(from).c_str(), PathBytes(to).c_str()) == 0 ? 0 : errno;
    if (errorNumber == EXDEV)
    {
        try
        {
            MoveAcrossFileSystems(PathBytes(from), PathBytes(to));
            return;
        }
        catch (const std::filesystem::filesystem_error& error)
        {
            errorNumber = error.code().value();
        }
    }
    if (errorNumber != 0)
        ThrowSystemError(Format("Could not rename file \"{0}\" to \"{1}\".", from, to), errorNumber);
}

void MFile::Delete(const MString& path)
{
    CheckSuccess(unlink(PathBytes(path).c_str()) == 0, "Could not delete file \"{0}\".", path);
}

void MFile::RemoveDirectory(const MString& path)
{
    CheckSuccess(rmdir(PathBytes(path).c_str()) == 0, "Could not remove directory \"{0}\".", path);
}

void MFile::DeleteTree(const MString& path)
{
    errno = ENOTDIR;
    CheckSuccess(IsDirectory(PathBytes(path)), "Could not remove directory \"{0}\".", path);
    std::error_code error;
    std::filesystem::remove_all(PathBytes(path), error);
    if (error)
        ThrowSystemError(Format("Could not remove directory \"{0}\".", path), error.value());
}

bool MFile::Exists(const MString& path) noexcept
{
    try
    {
        return access(PathBytes(path).c_str(), F_OK) == 0;
    }
    catch (...)
    {
        return false;   // no memory for the path
    }
}

int MFile::Execute(const MString& path, const MString& parameters, const MString& folder, bool waitForEnd)
{
    constexpr int CannotStart = 127;
    const bool isAddress = IsAddress(path);
    errno = ENOENT;
    CheckSuccess(isAddress || Exists(path), "Could not execute file \"{0}\".", path);
    std::string target = PathBytes(path);
    if (!isAddress)   // absolute, so that neither the working folder nor PATH matters
        target = std::filesystem::absolute(PathBytes(path)).string();
    const bool isProgram = !isAddress && IsProgram(target);
    const char* script = isProgram ? (waitForEnd ? runAndWait : runInBackground)
                                   : (waitForEnd ? openAndWait : openInBackground);
    const int result = RunScript(script, target, parameters.ToUTF8(), PathBytes(folder));
    if (result < 0 || result == CannotStart)
        ThrowSystemError(Format("Could not execute file \"{0}\".", path), result < 0 ? -result : ENOENT);
    return waitForEnd ? result : 0;
}

namespace
{
// What goes wrong here is worth a line and nothing more: nobody waits for the page.
void OpenLogged(const char* operation, auto&& open) noexcept
{
    try
    {
        open();
    }
    catch (...)
    {
        LogSystemException(operation);
    }
}
}   // namespace

void MFile::ExecuteWWW(const MString& address) noexcept
{
    OpenLogged("MFile::ExecuteWWW",
               [&] { Execute(address.Find("://") > 0 ? address : "http://" + address); });
}

void MFile::ExecuteMail(const MString& address, const MString& subject) noexcept
{
    OpenLogged("MFile::ExecuteMail",
               [&]
               {
                   MString target = "mailto: " + address;
                   if (!subject.IsEmpty())
                       target += "?subject=" + subject;
                   Execute(target);
               });
}

bool MFile::IsFolder(const MString& path) noexcept
{
    try
    {
        return IsDirectory(PathBytes(path));
    }
    catch (...)
    {
        return false;   // no memory for the path
    }
}

bool MFile::MatchesPatterns(const MString& name, const MString& patterns)
{
    bool isEmpty = true;
    int start = 0;
    while (start <= patterns.Length())
    {
        int end = patterns.Find(u';', start);
        end = end < 0 ? patterns.Length() : end;
        while (start < end && patterns[start] == u' ')
            ++start;
        const MString pattern = patterns.SubString(start, end - start);
        if (!pattern.IsEmpty() && MatchesFilter(name, pattern))
            return true;
        isEmpty = isEmpty && pattern.IsEmpty();
        start = end + 1;
    }
    return isEmpty;
}

MFileIterator::MFileIterator(const MString& path, const MString& filter, int flags)
{
    if (path.IsEmpty() && (flags & Drives) != 0)
    {
        entries.Add({ "/", true });
        return;
    }
    ListFolder(path, filter, flags);
}

void MFileIterator::ListFolder(const MString& path, const MString& filter, int flags)
{
    std::error_code error;
    std::filesystem::directory_iterator item(PathBytes(path), error);
    for (; !error && item != std::filesystem::directory_iterator(); item.increment(error))
    {
        std::error_code ignored;   // an entry that vanished meanwhile is a file without properties
        const bool isDirectory = item->is_directory(ignored);
        const MString name = PathText(item->path().filename().native());
        if (((flags & Directories) == 0 && isDirectory) ||
            (!filter.IsEmpty() && !MatchesFilter(name, filter)))
            continue;
        Entry entry{ .name = name, .isDirectory = isDirectory };
        struct stat information = {};
        if ((flags & Details) != 0 && stat(item->path().c_str(), &information) == 0)
        {
            entry.size = isDirectory ? 0 : information.st_size;
            entry.writeTime = information.st_mtime;
        }
        entries.Add(std::move(entry));
    }
    if (error)
        ThrowSystemError(Format("Could not access path \"{0}\" to get file list.", path), error.value());
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b)
              {
                  const int order = MString::CompareNoCase(a.name, b.name);
                  return order != 0 ? order < 0 : PathBytes(a.name) < PathBytes(b.name);
              });
}
