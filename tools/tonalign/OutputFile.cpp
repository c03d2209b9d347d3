// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/tonalign/OutputFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"

namespace
{
[[noreturn]] void FailToCreate(const std::string& path, const char* reason)
{
    throw MException(
        Format("File \"{0}\" could not be created. {1}.", MString::FromUTF8(path), MString::FromUTF8(reason)),
        MErrorCode::CannotOpen);
}
}   // namespace

OutputFile::OutputFile(const std::string& path, bool replace) : targetPath(path), mayReplace(replace)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) == 0)
    {
        if (S_ISDIR(status.st_mode))
            FailToCreate(path, "It is a folder");
        if (!mayReplace)
            FailToCreate(path, "It exists already; --force replaces it");
    }
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
    const std::string name = path.substr(folder.size());
    if (name.empty())
        FailToCreate(path, "It is a folder");
    const std::string pattern = folder + "." + name.substr(0, 100) + ".XXXXXX";
    std::vector<char> made(pattern.begin(), pattern.end());
    made.push_back('\0');
    descriptor = mkstemp(made.data());
    if (descriptor < 0)
        FailToCreate(path, std::strerror(errno));
    temporaryPath = made.data();
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

void OutputFile::Commit()
{
    const bool written = fsync(descriptor) == 0;
    const int error = errno;
    close(descriptor);
    descriptor = -1;
    if (!written && error != EINVAL && error != EROFS)
        throw MException(
            Format("Error writing to file \"{0}\". Probably disk full.", MString::FromUTF8(targetPath)),
            MErrorCode::Content);
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
    struct stat first = {};
    struct stat second = {};
    return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}
