// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

/// A file that appears under its name only when everything has succeeded: it is written beside its place
/// and renamed at the end. Without Commit the temporary file goes and an old file stays as it was.
class OutputFile
{
public:
    /// Makes the temporary file. Throws MException when the folder can't take it, or the target exists and
    /// may not be replaced.
    OutputFile(const std::string& targetPath, bool replace);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// The open temporary file; belongs to this object.
    int Descriptor() const { return descriptor; }
    const std::string& TemporaryPath() const { return temporaryPath; }
    const std::string& TargetPath() const { return targetPath; }
    /// Brings the data to the disk and the file to its name. Throws MException.
    void Commit();

private:
    std::string targetPath;
    std::string temporaryPath;
    bool mayReplace;
    int descriptor = -1;
};

/// Whether two paths are the same existing file.
bool IsSameFile(const std::string& a, const std::string& b);
