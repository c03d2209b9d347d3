// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/streams/MStdFileStream.h"

#include <algorithm>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "foundation/text/PathText.h"

namespace
{
// "e": the file isn't inherited by programs that the host starts.
std::FILE* OpenExisting(const std::string& path, bool isForWriting)
{
    std::FILE* file = std::fopen(path.c_str(), isForWriting ? "r+be" : "rbe");
    struct stat information = {};
    if (file != nullptr && fstat(fileno(file), &information) == 0 && S_ISDIR(information.st_mode))
    {
        std::fclose(file);
        return nullptr;
    }
    return file;
}

std::FILE* Create(const std::string& path)
{
    unlink(path.c_str());   // a failure shows when the file is opened
    return std::fopen(path.c_str(), "w+be");
}
}   // namespace

MStdFileStream::~MStdFileStream()
{
    if (file != nullptr)
        std::fclose(file);
}

void MStdFileStream::Open(const MString& newPath, int flags)
{
    Close();
    if (newPath.IsEmpty())
        return;
    const std::string name = PathBytes(newPath);
    if ((flags & CreateFile) != 0)
    {
        std::FILE* created = Create(name);
        if (created == nullptr)
            throw MException(Format("File \"{0}\" could not be created. Make sure there is no "
                                    "write-protected file already existing.",
                                    newPath),
                             MErrorCode::CannotOpen);
        Attach(created, newPath);
        return;
    }
    std::FILE* opened = OpenExisting(name, (flags & WriteAccess) != 0);
    if (opened == nullptr)
        throw MException(Format("File \"{0}\" could not be open. Make sure it exists.", newPath),
                         MErrorCode::CannotOpen);
    Attach(opened, newPath);
}

void MStdFileStream::Attach(std::FILE* openFile, const MString& filePath)
{
    if (file != nullptr)
        std::fclose(file);
    file = openFile;
    path = filePath;
    lastOperation = LastOperation::None;
    sizeAtOpening = GetSize();
}

void MStdFileStream::Close()
{
    if (file == nullptr)
        return;
    std::FILE* closed = file;
    file = nullptr;
    if (std::fclose(closed) != 0)
        throw MException(Format("Error writing to file \"{0}\". Probably disk full.", path),
                         MErrorCode::Content);
}

std::FILE* MStdFileStream::File() const
{
    if (file == nullptr)
        throw MException("File stream is not initialized.", MErrorCode::NotInitialized);
    return file;
}

void MStdFileStream::PrepareFor(LastOperation operation)
{
    if (lastOperation != LastOperation::None && lastOperation != operation)
        std::fseek(file, 0, SEEK_CUR);
    lastOperation = operation;
}

void MStdFileStream::Write(const void* bytes, std::int32_t size)
{
    std::FILE* target = File();
    if (size <= 0)
        return;
    PrepareFor(LastOperation::Writing);
    const auto count = static_cast<std::size_t>(size);
    if (std::fwrite(bytes, 1, count, target) != count)
        throw MException(Format("Error writing to file \"{0}\". Probably disk full.", path),
                         MErrorCode::Content);
}

std::int32_t MStdFileStream::Read(void* buffer, std::int32_t size)
{
    std::FILE* source = File();
    if (size <= 0)
        return 0;
    PrepareFor(LastOperation::Reading);
    const std::size_t got = std::fread(buffer, 1, static_cast<std::size_t>(size), source);
    if (got < static_cast<std::size_t>(size) && std::ferror(source) != 0)
    {
        std::clearerr(source);
        throw MException(Format("Error reading from file \"{0}\".", path), MErrorCode::Content);
    }
    return static_cast<std::int32_t>(got);
}

void MStdFileStream::Seek(std::int64_t offset, int origin)
{
    std::FILE* target = File();
    constexpr int Origins[] = { SEEK_SET, SEEK_CUR, SEEK_END };
    if (origin < Begin || origin > End)
        throw MException("Invalid seek origin.", MErrorCode::InvalidArgument);
    if (fseeko(target, offset, Origins[origin]) != 0)
        throw MException("Could not perform file seek.", MErrorCode::Content);
    lastOperation = LastOperation::None;
}

std::int64_t MStdFileStream::GetPosition()
{
    return ftello(File());
}

void MStdFileStream::Flush()
{
    if (std::fflush(File()) != 0)
        throw MException(Format("Error writing to file \"{0}\". Probably disk full.", path),
                         MErrorCode::Content);
}

bool MStdFileStream::IsEnd()
{
    return GetPosition() >= sizeAtOpening;
}

void MStdFileStream::Truncate()
{
    Flush();
    const std::int64_t position = GetPosition();
    if (ftruncate(fileno(File()), position) != 0)
        throw MException(Format("Error writing to file \"{0}\". Probably disk full.", path),
                         MErrorCode::Content);
    sizeAtOpening = std::min(sizeAtOpening, position);
}

std::int64_t MStdFileStream::GetSize()
{
    // What is written may still be in the buffer; reading needs no flush.
    if (lastOperation == LastOperation::Writing)
        Flush();
    struct stat information = {};
    return fstat(fileno(File()), &information) == 0 ? information.st_size : 0;
}

bool MStdFileStream::IsOpen()
{
    return file != nullptr;
}
