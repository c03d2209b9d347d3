// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "tools/tonalign/Interrupt.h"

/// A file that appears under its name only when everything has succeeded: it is written beside its place
/// and renamed at the end. Without Commit the temporary file goes and an old file stays as it was.
class OutputFile
{
public:
    /// Makes the temporary file. Through a symbolic link it is the file at its end that gets replaced. Throws
    /// MException when the folder can't take it, or the target exists and may not be replaced; devices, pipes
    /// and folders never are.
    OutputFile(const std::string& targetPath, bool replace);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// The open temporary file; belongs to this object.
    int Descriptor() const { return descriptor; }
    /// Appends to the file. Throws MException that names the target.
    void Write(const void* bytes, std::size_t size);
    const std::string& TargetPath() const { return targetPath; }
    /// Brings the data to the disk and the file to its name. Throws MException.
    void Commit();

private:
    [[noreturn]] void FailToWrite() const;

    std::string targetPath;
    std::string temporaryPath;
    bool mayReplace;
    int descriptor = -1;
    std::unique_ptr<InterruptedFile> untilCommitted;
};

/// Whether two paths mean one file, which need not exist yet.
bool IsSameFile(const std::string& a, const std::string& b);
