// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/text/MString.h"
#include "foundation/text/MStringList.h"

/// Operations on files and folders. Paths are UTF-8 with either separator. Failures throw MException with
/// the operation's text, a blank and the system's reason.
class MFile
{
public:
    /// Makes a folder and all missing parents; one that exists is fine.
    static void CreatePath(const MString& path);
    static void Rename(const MString& from, const MString& to);
    static void Delete(const MString& path);
    /// The folder has to be empty.
    static void RemoveDirectory(const MString& path);
    /// A folder with all it holds. Links are removed, not followed.
    static void DeleteTree(const MString& path);
    static bool Exists(const MString& path) noexcept;
    /// Opens a document, a program or an address with what the desktop has for it.
    static void Execute(const MString& path);
};

/// Walks what a folder holds, sorted by name, as it was at construction.
class MFileIterator
{
public:
    enum Flags
    {
        Files = 0,
        Directories = 1,   ///< folders as well as files
        Drives = 2   ///< with an empty path: the roots of the file system
    };

    /// @param filter  names with "*" and "?", without case, such as "*.wav"; empty takes all
    /// Throws MException "Could not access path \"{0}\" to get file list.".
    MFileIterator(const MString& path, const MString& filter, int flags = Files);

    bool IsEnd() const { return current >= entries.Count(); }
    void Next() { ++current; }
    /// The name without the folder's path. Throws at the end.
    const MString& Name() const { return entries[current].name; }
    bool IsDirectory() const { return entries[current].isDirectory; }

private:
    struct Entry
    {
        MString name;
        bool isDirectory = false;
    };

    void ListFolder(const MString& path, const MString& filter, bool withDirectories);

    MArray<Entry> entries;
    int current = 0;
};
