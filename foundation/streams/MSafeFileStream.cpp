// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/streams/MSafeFileStream.h"

#include <cerrno>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/streams/TemporaryName.h"
#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "foundation/text/PathText.h"

namespace
{
std::string ResolveLinks(const std::string& path)
{
    const std::unique_ptr<char, void (*)(void*)> resolved(realpath(path.c_str(), nullptr), &std::free);
    return resolved != nullptr ? resolved.get() : path;
}

// What another program left there is passed over.
int CreateBeside(const std::string& path, std::string& temporaryPath)
{
    constexpr int AttemptCount = 100;
    for (int attempt = 0; attempt < AttemptCount; ++attempt)
    {
        temporaryPath = path.substr(0, path.rfind('/') + 1) + TemporaryName();
        const int descriptor = open(temporaryPath.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor >= 0 || errno != EEXIST)
            return descriptor;
    }
    return -1;
}
}   // namespace

MSafeFileStream::MSafeFileStream(const MString& target) : targetPath(ResolveLinks(PathBytes(target)))
{
    struct stat information = {};
    const bool exists = stat(targetPath.c_str(), &information) == 0;
    const bool canBeReplaced = !exists || S_ISREG(information.st_mode);
    const int descriptor = canBeReplaced ? CreateBeside(targetPath, temporaryPath) : -1;
    std::FILE* opened = descriptor >= 0 ? fdopen(descriptor, "w+b") : nullptr;
    if (opened == nullptr)
    {
        if (descriptor >= 0)
        {
            close(descriptor);
            RemoveTemporary();
        }
        throw MException(Format("File \"{0}\" could not be created. Make sure there is no write-protected "
                                "file already existing.",
                                target),
                         MErrorCode::CannotOpen);
    }
    if (exists)
        static_cast<void>(fchmod(descriptor, information.st_mode & 07777));
    Attach(opened, target);
}

MSafeFileStream::~MSafeFileStream()
{
    RemoveTemporary();
}

void MSafeFileStream::Commit()
{
    Flush();
    const bool isOnDisk = fsync(fileno(File())) == 0;
    Close();
    if (!isOnDisk || std::rename(temporaryPath.c_str(), targetPath.c_str()) != 0)
        throw MException(Format("Error writing to file \"{0}\". Probably disk full.", Path()),
                         MErrorCode::Content);
    temporaryPath.clear();
}

void MSafeFileStream::RemoveTemporary() noexcept
{
    if (!temporaryPath.empty())
        unlink(temporaryPath.c_str());
}
