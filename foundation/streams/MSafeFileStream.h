// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "foundation/streams/MStdFileStream.h"

/// Replaces a file as a whole or not at all: what is written goes to a temporary file beside it, which
/// takes its place, name and access rights in Commit. Without Commit the old file stays as it was.
class MSafeFileStream : public MStdFileStream
{
public:
    /// Throws "File \"{0}\" could not be created. ..." like MStdFileStream, with the target's path.
    explicit MSafeFileStream(const MString& target);
    ~MSafeFileStream() override;

    /// Writes everything through to the disk, renames and closes. Throws and leaves the old file when that
    /// fails.
    void Commit();

private:
    void RemoveTemporary() noexcept;

    std::string targetPath;   // links resolved, so that the file is replaced and not the link
    std::string temporaryPath;   // empty after Commit
};
