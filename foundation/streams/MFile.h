// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/text/MString.h"
#include "foundation/text/MStringList.h"

/// Operations on files and folders. Paths are UTF-8 with either separator. Failures throw MException with
/// the operation's text, a blank and the system's reason.
class MFile
{
public:
    /// Kinds of special folders.
    enum SpecialFolder
    {
        Data = 0,   ///< what the machine's users share, of this maker
        UserData = 1,   ///< the user's, of this maker
        User = 2,
        Documents = 3,
        UserDocuments = 4,
        ProgramFiles = 5,
        Components = 6,
        StartMenu = 7,
        UserStartMenu = 8,
        StartMenuPrograms = 9,
        UserStartMenuPrograms = 10,
        Desktop = 11,
        UserDesktop = 12,
        System = 13,
        Fonts = 14,
        Temp = 15,
        SpecialFolderCount = 16
    };
    /// The words by which the kinds are known, such as "userdata".
    static const char* const SpecialFolderLabels[SpecialFolderCount];

    /// The folder of a kind, absolute and normalised, without a separator at its end; it need not exist.
    /// Throws "Could not retrieve system path." with the reason. Temp never fails.
    static MString GetSpecialFolder(int kind);
    /// One of the folders that a desktop gives its user, by its name there, such as "MUSIC"; it need not
    /// exist. Throws as GetSpecialFolder.
    /// @param otherwise  its name in the user's folder where the desktop tells none
    static MString GetUserFolder(const char* name, const char* otherwise);

    /// Makes a folder and all missing parents; one that exists is fine.
    static void CreatePath(const MString& path);
    static void Rename(const MString& from, const MString& to);
    static void Delete(const MString& path);
    /// The folder has to be empty.
    static void RemoveDirectory(const MString& path);
    /// A folder with all it holds. Links are removed, not followed.
    static void DeleteTree(const MString& path);
    static bool Exists(const MString& path) noexcept;
    static bool IsFolder(const MString& path) noexcept;
    /// Whether a name fits one of some patterns with "*" and "?", without case, such as "*.wav;*.flac". No
    /// pattern takes all.
    static bool MatchesPatterns(const MString& name, const MString& patterns);
    /// Opens a document or an address with what the desktop has for it, or runs a program.
    /// @param parameters  of a program: words with the quoting of the shell
    /// @param folder  the working folder of a program; empty leaves the present one
    /// Answers the exit code with `waitForEnd`, else 0. Throws "Could not execute file \"{0}\".".
    static int Execute(const MString& path, const MString& parameters = {}, const MString& folder = {},
                       bool waitForEnd = false);
    /// Opens a web page; an address without a protocol gets "http://". Never throws: failures are logged.
    static void ExecuteWWW(const MString& address) noexcept;
    /// Opens a new mail. Never throws: failures are logged.
    static void ExecuteMail(const MString& address, const MString& subject) noexcept;
};

/// Walks what a folder holds, sorted by name, as it was at construction.
class MFileIterator
{
public:
    enum Flags
    {
        Files = 0,
        Directories = 1,   ///< folders as well as files
        Drives = 2,   ///< with an empty path: the roots of the file system
        Details = 4   ///< sizes and times, too, which takes longer
    };

    /// @param filter  names with "*" and "?", without case, such as "*.wav"; empty takes all
    /// Throws MException "Could not access path \"{0}\" to get file list.".
    MFileIterator(const MString& path, const MString& filter, int flags = Files);

    bool IsEnd() const { return current >= entries.Count(); }
    void Next() { ++current; }
    /// The name without the folder's path. Throws at the end.
    const MString& Name() const { return entries[current].name; }
    bool IsDirectory() const { return entries[current].isDirectory; }
    /// With Details: bytes, 0 for a folder and for what can't be looked at.
    std::int64_t Size() const { return entries[current].size; }
    /// With Details: when it was last written, seconds since 1970; 0 for what can't be looked at.
    std::int64_t WriteTime() const { return entries[current].writeTime; }

private:
    struct Entry
    {
        MString name;
        bool isDirectory = false;
        std::int64_t size = 0;
        std::int64_t writeTime = 0;
    };

    void ListFolder(const MString& path, const MString& filter, int flags);

    MArray<Entry> entries;
    int current = 0;
};
