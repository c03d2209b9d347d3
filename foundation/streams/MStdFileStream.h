// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdio>

#include "foundation/streams/MStream.h"

/// A file on disk; its path is UTF-8. Every operation on a stream that is not open throws MException "File
/// stream is not initialized.".
class MStdFileStream : public MStream
{
public:
    enum Flags
    {
        ReadAccess = 1,
        WriteAccess = 2,
        CreateFile = 4
    };

    MStdFileStream() = default;
    MStdFileStream(const MString& filePath, int flags) { Open(filePath, flags); }
    MStdFileStream(const MStdFileStream&) = delete;
    MStdFileStream& operator=(const MStdFileStream&) = delete;
    ~MStdFileStream() override;

    /// Flags 1 read, 2 change an existing file, 6 create (an old file is deleted first). An empty path
    /// closes. Throws "File \"{0}\" could not be open. Make sure it exists." and its kin.
    void Open(const MString& newPath, int flags);
    /// Throws when what is still buffered can't be written. The destructor closes without a word.
    virtual void Close();

    void Write(const void* bytes, std::int32_t size) override;
    std::int32_t Read(void* buffer, std::int32_t size) override;
    void Seek(std::int64_t offset, int origin) override;
    std::int64_t GetPosition() override;
    void Flush() override;
    bool IsEnd() override;
    void Truncate() override;
    std::int64_t GetSize() override;
    bool IsOpen() override;

protected:
    /// Takes over an open file; an earlier one is closed.
    void Attach(std::FILE* openFile, const MString& filePath);
    std::FILE* File() const;   // throws when the stream is not open
    const MString& Path() const { return path; }

private:
    // The C library wants a seek between reading and writing on one handle.
    enum class LastOperation
    {
        None,
        Reading,
        Writing
    };
    void PrepareFor(LastOperation operation);

    MString path;
    std::FILE* file = nullptr;
    std::int64_t sizeAtOpening = 0;
    LastOperation lastOperation = LastOperation::None;
};
