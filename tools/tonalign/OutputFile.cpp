// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/tonalign/OutputFile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "foundation/text/PathText.h"

namespace
{
[[noreturn]] void FailToCreate(const std::string& path, const char* reason)
{
    throw MException(
        Format("File \"{0}\" could not be created. {1}.", PathText(path), MString::FromUTF8(reason)),
        MErrorCode::CannotOpen);
}
// The folder with its slash, empty for the present one.
std::string FolderOf(const std::string& path)
{
    return path.substr(0, path.rfind('/') + 1);
}

bool IsOneInode(const std::string& a, const std::string& b)
{
    struct stat first = {};
    struct stat second = {};
    return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}
}   // namespace

OutputFile::OutputFile(const std::string& path, bool replace) : targetPath(path), mayReplace(replace)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) == 0)
    {
        if (S_ISDIR(status.st_mode))
            FailToCreate(path, "It is a folder");
        if (!S_ISREG(status.st_mode))
            FailToCreate(path, "It is no plain file");
        if (!mayReplace)
            FailToCreate(path, "It exists already; --force replaces it");
        const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), &std::free);
        if (real != nullptr)
            targetPath = real.get();
    }
    const std::string folder = FolderOf(targetPath);
    const std::string name = targetPath.substr(folder.size());
    if (name.empty())
        FailToCreate(path, "It is a folder");
    const std::string pattern = folder + "." + name.substr(0, 100) + ".XXXXXX";
    std::vector<char> made(pattern.begin(), pattern.end());
    made.push_back('\0');
    descriptor = mkstemp(made.data());
    if (descriptor < 0)
        FailToCreate(path, std::strerror(errno));
    temporaryPath = made.data();
    untilCommitted = std::make_unique<InterruptedFile>(temporaryPath);
    // mkstemp makes a private file; the result gets the permissions of any other new file.
    const mode_t mask = umask(0);
    umask(mask);
    (void)fchmod(descriptor, 0666 & ~mask);
}

OutputFile::~OutputFile()
{
    if (descriptor >= 0)
        close(descriptor);
    if (!temporaryPath.empty())
        unlink(temporaryPath.c_str());
}

void OutputFile::FailToWrite() const
{
    throw MException(Format("Error writing to file \"{0}\". Probably disk full.", PathText(targetPath)),
                     MErrorCode::Content);
}

void OutputFile::Write(const void* bytes, std::size_t size)
{
    const auto* from = static_cast<const char*>(bytes);
    while (size > 0)
    {
        const ssize_t written = write(descriptor, from, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            FailToWrite();
        from += written;
        size -= static_cast<std::size_t>(written);
    }
}

void OutputFile::Commit()
{
    const bool written = fsync(descriptor) == 0;
    const int error = errno;
    close(descriptor);
    descriptor = -1;
    if (!written && error != EINVAL && error != EROFS)
        FailToWrite();
    // A link fails where a file has come up meanwhile; a rename replaces it.
    if (mayReplace)
    {
        if (std::rename(temporaryPath.c_str(), targetPath.c_str()) != 0)
            FailToCreate(targetPath, std::strerror(errno));
        temporaryPath.clear();
        return;
    }
    if (link(temporaryPath.c_str(), targetPath.c_str()) != 0)
    {
        const bool noLinks = errno == EPERM || errno == ENOSYS || errno == EOPNOTSUPP;
        if (!noLinks || std::rename(temporaryPath.c_str(), targetPath.c_str()) != 0)
            FailToCreate(targetPath, std::strerror(errno));
        temporaryPath.clear();
    }
}

bool IsSameFile(const std::string& a, const std::string& b)
{
    if (IsOneInode(a, b))
        return true;
    const std::string folderOfA = FolderOf(a);
    const std::string folderOfB = FolderOf(b);
    return a.substr(folderOfA.size()) == b.substr(folderOfB.size()) &&
           IsOneInode(folderOfA.empty() ? "." : folderOfA, folderOfB.empty() ? "." : folderOfB);
}
