// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/streams/MFile.h"
#include "foundation/streams/MSafeFileStream.h"
#include "foundation/text/PathText.h"
#include "tests/ErrorOf.h"

namespace
{
namespace fs = std::filesystem;

class Files : public testing::Test
{
protected:
    Files() : folder(fs::path(std::getenv("TONALIGN_TEST_FOLDER")) / "files")
    {
        fs::remove_all(folder);
        fs::create_directories(folder);
    }

    MString Path(const std::string& name) const { return PathText((folder / name).native()); }
    std::string Quoted(const std::string& name) const { return "\"" + (folder / name).string() + "\""; }
    void Put(const std::string& name, const std::string& content,
             fs::perms permissions = fs::perms(0640)) const
    {
        std::ofstream(folder / name, std::ios::binary) << content;
        fs::permissions(folder / name, permissions);
    }
    std::string Content(const std::string& name) const
    {
        std::ifstream file(folder / name, std::ios::binary);
        return { std::istreambuf_iterator<char>(file), {} };
    }
    int EntryCount() const
    {
        return static_cast<int>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }

    fs::path folder;
};

TEST_F(Files, AreReadChangedAndCreated)
{
    const std::string name = "\xC3\xA9t\xC3\xA9.txt";
    Put(name, "an older and longer one");
    {
        MStdFileStream file(Path(name), MStdFileStream::WriteAccess | MStdFileStream::CreateFile);
        file.Write("0123456789", 10);
        EXPECT_EQ(file.GetSize(), 10);
        file.Seek(2, MStream::Begin);
        char byte = 0;
        EXPECT_EQ(file.Read(&byte, 1), 1);
        EXPECT_EQ(byte, '2');
        file.Write("XY", 2);   // right behind a read
        EXPECT_EQ(file.Read(&byte, 1), 1);
        EXPECT_EQ(byte, '5');
    }
    EXPECT_EQ(Content(name), "012XY56789");
    MStdFileStream file(Path(name), MStdFileStream::ReadAccess);
    char buffer[20];
    EXPECT_FALSE(file.IsEnd());
    EXPECT_EQ(file.Read(buffer, 20), 10);
    EXPECT_TRUE(file.IsEnd());
    EXPECT_EQ(file.Read(buffer, 20), 0);
    file.Seek(-3, MStream::End);
    EXPECT_EQ(file.GetPosition(), 7);
    file.Seek(-1, MStream::Current);
    EXPECT_EQ(file.GetPosition(), 6);
    EXPECT_EQ(CodedErrorOf([&] { file.Seek(-1, MStream::Begin); }), "256 Could not perform file seek.");
    for (const int origin : { -1, 3 })
        EXPECT_EQ(CodedErrorOf([&] { file.Seek(0, origin); }), "2 Invalid seek origin.");
    // Another file by the same object, from its middle on.
    file.Open(Path(name), MStdFileStream::WriteAccess);
    file.Seek(4, MStream::Begin);
    EXPECT_FALSE(file.IsEnd());
    file.Truncate();
    EXPECT_TRUE(file.IsEnd());
    EXPECT_TRUE(file.IsOpen());
    file.Open("", MStdFileStream::ReadAccess);
    EXPECT_FALSE(file.IsOpen());
    const char closed[] = "258 File stream is not initialized.";
    EXPECT_EQ(CodedErrorOf([&] { file.GetSize(); }), closed);
    EXPECT_EQ(CodedErrorOf([&] { file.Write("x", 1); }), closed);
    EXPECT_EQ(Content(name), "012X");
}

TEST_F(Files, SayWhyTheyDoNotOpenOrWrite)
{
    const std::string notOpened = " could not be open. Make sure it exists.";
    const std::string notCreated =
        " could not be created. Make sure there is no write-protected file already existing.";
    for (const int flags : { MStdFileStream::ReadAccess, MStdFileStream::WriteAccess })
        EXPECT_EQ(CodedErrorOf([&] { MStdFileStream(Path("none"), flags); }),
                  "257 File " + Quoted("none") + notOpened);
    EXPECT_EQ(CodedErrorOf([&] { MStdFileStream(Path("."), MStdFileStream::ReadAccess); }),
              "257 File " + Quoted(".") + notOpened);
    EXPECT_EQ(CodedErrorOf([&] { MStdFileStream(Path("."), 6); }), "257 File " + Quoted(".") + notCreated);
    for (const char* name : { ".", "nowhere/x" })
        EXPECT_EQ(CodedErrorOf([&] { MSafeFileStream(Path(name)); }),
                  "257 File " + Quoted(name) + notCreated);
    if (!fs::exists("/dev/full"))
        GTEST_SKIP();
    const char full[] = "256 Error writing to file \"/dev/full\". Probably disk full.";
    MStdFileStream file("/dev/full", MStdFileStream::WriteAccess);
    file.Write("x", 1);
    EXPECT_EQ(CodedErrorOf([&] { file.Flush(); }), full);
    file.Open("/dev/full", MStdFileStream::WriteAccess);
    file.Write("x", 1);
    EXPECT_EQ(CodedErrorOf([&] { file.Close(); }), full);
    EXPECT_FALSE(file.IsOpen());
    file.Open("/dev/full", MStdFileStream::WriteAccess);
    const std::string much(100000, 'x');
    EXPECT_EQ(CodedErrorOf([&] { file.Write(much.data(), 100000); }), full);
}

TEST_F(Files, AreReplacedWholeOrNotAtAll)
{
    Put("settings.xml", "old");
    fs::create_symlink("settings.xml", folder / "link.xml");
    {
        MSafeFileStream file(Path("settings.xml"));
        file.WriteText("half of the n");
        EXPECT_EQ(Content("settings.xml"), "old");
    }
    EXPECT_EQ(Content("settings.xml"), "old");
    EXPECT_EQ(EntryCount(), 2);
    MSafeFileStream file(Path("link.xml"));
    file.WriteText("new");
    file.Commit();
    EXPECT_EQ(Content("settings.xml"), "new");
    EXPECT_TRUE(fs::is_symlink(folder / "link.xml"));
    EXPECT_EQ(static_cast<int>(fs::status(folder / "settings.xml").permissions()), 0640);
    MSafeFileStream(Path("fresh.xml")).Commit();
    EXPECT_EQ(EntryCount(), 3);
}

TEST_F(Files, AreMovedAndRemoved)
{
    for (int round = 0; round < 2; ++round)
        MFile::CreatePath(Path("a/b/c"));
    EXPECT_TRUE(MFile::Exists(Path("a/b/c")));
    Put("a/b/one.txt", "1");
    MFile::Rename(Path("a/b/one.txt"), Path("a/b/c/two.txt"));
    EXPECT_FALSE(MFile::Exists(Path("a/b/one.txt")));
    EXPECT_EQ(Content("a/b/c/two.txt"), "1");

    EXPECT_EQ(CodedErrorOf([&] { MFile::RemoveDirectory(Path("a/b")); }),
              "0 Could not remove directory " + Quoted("a/b") + ". Directory not empty");
    EXPECT_EQ(CodedErrorOf([&] { MFile::Delete(Path("none")); }),
              "0 Could not delete file " + Quoted("none") + ". No such file or directory");
    EXPECT_EQ(CodedErrorOf([&] { MFile::Rename(Path("none"), Path("x")); }),
              "0 Could not rename file " + Quoted("none") + " to " + Quoted("x") +
                  ". No such file or directory");
    EXPECT_EQ(CodedErrorOf([&] { MFile::CreatePath(Path("a/b/c/two.txt")); }),
              "0 Could not create path " + Quoted("a/b/c/two.txt") + ". Not a directory");
    EXPECT_EQ(CodedErrorOf([&] { MFile::DeleteTree(Path("a/b/c/two.txt")); }),
              "0 Could not remove directory " + Quoted("a/b/c/two.txt") + ". Not a directory");

    fs::create_directories(folder / "outside");
    Put("outside/kept.txt", "1");
    fs::create_directory_symlink(folder / "outside", folder / "a/link");
    MFile::DeleteTree(Path("a"));
    EXPECT_FALSE(MFile::Exists(Path("a")));
    EXPECT_TRUE(MFile::Exists(Path("outside/kept.txt")));
    MFile::Delete(Path("outside/kept.txt"));
    MFile::RemoveDirectory(Path("outside"));
    EXPECT_EQ(EntryCount(), 0);
}

// A name is bytes: none is lost, none means anything but the slash, and up to 255 of them are allowed.
TEST_F(Files, KeepEveryByteOfTheirNames)
{
    for (const std::string& name :
         { std::string("a\\b.txt"), std::string("\xE9t\xE9"), std::string("\xEF\xBB\xBFmarked"),
           std::string("\xF0\x9F\x8E"), std::string(" "), std::string(255, 'x') })
    {
        SCOPED_TRACE(testing::PrintToString(name));
        MStdFileStream(Path(name), MStdFileStream::WriteAccess | MStdFileStream::CreateFile)
            .WriteText("plain");
        EXPECT_EQ(Content(name), "plain");
        MSafeFileStream file(Path(name));
        file.WriteText("safe");
        file.Commit();
        EXPECT_EQ(Content(name), "safe");
        const MFileIterator found(Path(""), "");
        ASSERT_FALSE(found.IsEnd());
        const MString listed = Path("") + found.Name();
        EXPECT_EQ(listed, Path(name));
        MFile::Rename(listed, Path("renamed"));
        MFile::Rename(Path("renamed"), listed);
        EXPECT_TRUE(MFile::Exists(listed));
        MFile::Delete(listed);
        EXPECT_EQ(EntryCount(), 0);
    }
}

TEST_F(Files, MoveToOtherFileSystems)
{
    struct stat here = {};
    struct stat there = {};
    const std::string other = "/dev/shm";
    if (stat(folder.c_str(), &here) != 0 || stat(other.c_str(), &there) != 0 || here.st_dev == there.st_dev ||
        access(other.c_str(), W_OK) != 0)
        GTEST_SKIP() << "no second file system";
    const fs::path outside = fs::path(other) / ("tonalign-test-" + std::to_string(getpid()));
    const MString away = PathText(outside.native());
    Put("file", "content");
    MFile::Rename(Path("file"), away);
    EXPECT_EQ(EntryCount(), 0);
    EXPECT_EQ(static_cast<int>(fs::status(outside).permissions()), 0640);
    Put("file", "older");
    MFile::Rename(away, Path("file"));
    EXPECT_EQ(Content("file"), "content");
    fs::create_directories(folder / "tree/inner");
    Put("tree/inner/leaf", "leaf");
    MFile::Rename(Path("tree"), away);
    EXPECT_TRUE(fs::exists(outside / "inner/leaf"));
    // What can't be moved stays where it is, and nothing is left there.
    EXPECT_THROW(MFile::Rename(Path("file"), away), MException);
    EXPECT_EQ(Content("file"), "content");
    EXPECT_EQ(std::distance(fs::directory_iterator(outside), fs::directory_iterator()), 1);
    fs::remove_all(outside);
}

TEST_F(Files, AreListedByFilter)
{
    for (const char* name : { "b.WAV", "a.wav", "c.wav.txt", "wav", "d.waves" })
        Put(name, "");
    fs::create_directory(folder / "e.wav");
    const auto list = [](const MString& path, const MString& filter, int flags)
    {
        std::string names;
        for (MFileIterator item(path, filter, flags); !item.IsEnd(); item.Next())
            names += item.Name().ToUTF8() + (item.IsDirectory() ? "/ " : " ");
        return names;
    };
    const struct
    {
        const char* filter;
        int flags;
        const char* names;
    } cases[] = { { "*.wav", MFileIterator::Files, "a.wav b.WAV " },
                  { "*.wav", MFileIterator::Directories, "a.wav b.WAV e.wav/ " },
                  { "E.wav", MFileIterator::Directories, "e.wav/ " },
                  { "", MFileIterator::Files, "a.wav b.WAV c.wav.txt d.waves wav " },
                  { "?.w*v*", MFileIterator::Files, "a.wav b.WAV c.wav.txt d.waves " },
                  { "*a*", MFileIterator::Files, "a.wav b.WAV c.wav.txt d.waves wav " },
                  { "*w*v*s", MFileIterator::Files, "d.waves " },
                  { "**t", MFileIterator::Files, "c.wav.txt " } };
    for (const auto& [filter, flags, names] : cases)
        EXPECT_EQ(list(Path(""), filter, flags), names) << filter;
    EXPECT_EQ(list("", "", MFileIterator::Drives), "// ");
    const std::pair<const char*, bool> patterns[] = { { "", true },         { " ; ", true },
                                                      { "*.wav", true },    { "*.flac; *.WAV", true },
                                                      { "*.flac;", false }, { "*.flac;?.mp3", false } };
    for (const auto& [pattern, matches] : patterns)
        EXPECT_EQ(MFile::MatchesPatterns("a.wav", MString(pattern)), matches) << pattern;
    Put("a.wav", "twelve bytes");
    ASSERT_EQ(utimensat(AT_FDCWD, (folder / "a.wav").c_str(),
                        std::array<timespec, 2>{ timespec{ 5, 0 }, timespec{ 86400, 0 } }.data(), 0),
              0);
    MFileIterator detailed(Path(""), "?.wav", MFileIterator::Directories | MFileIterator::Details);
    EXPECT_EQ(detailed.Size(), 12);
    EXPECT_EQ(detailed.WriteTime(), 86400);
    for (detailed.Next(); !detailed.IsDirectory(); detailed.Next())
        EXPECT_EQ(detailed.Size(), 0);
    EXPECT_EQ(detailed.Size(), 0);
    EXPECT_GT(detailed.WriteTime(), 86400);
    EXPECT_EQ(CodedErrorOf([&] { list(Path("none"), "", 0); }),
              "0 Could not access path " + Quoted("none") + " to get file list. No such file or directory");
}

TEST_F(Files, AreOpenedByTheDesktopOrRun)
{
    EXPECT_EQ(ErrorOf([&] { MFile::Execute(Path("none")); }),
              "Could not execute file " + Quoted("none") + ". No such file or directory");
    // A stand-in for the desktop's opener writes down what it was given.
    const std::string output = (folder / "opened").string();
    Put("xdg-open",
        "#!/bin/sh\nprintf %s \"$1\" > '" + output + ".part'\nmv '" + output + ".part' '" + output + "'\n",
        fs::perms::owner_all);
    const std::string oldPath = std::getenv("PATH");
    setenv("PATH", (folder.string() + ":" + oldPath).c_str(), 1);
    const std::pair<void (*)(), const char*> cases[] = {
        { [] { MFile::Execute("https://example.org/?a=1&b=$HOME"); }, "https://example.org/?a=1&b=$HOME" },
        { [] { MFile::ExecuteWWW("www.example.org/?q='$HOME'"); }, "http://www.example.org/?q='$HOME'" },
        { [] { MFile::ExecuteWWW("https://example.org"); }, "https://example.org" },
        { [] { MFile::ExecuteMail("a@example.org", ""); }, "mailto: a@example.org" },
        { [] { MFile::ExecuteMail("a@b.org", "It's; late"); }, "mailto: a@b.org?subject=It's; late" },
    };
    for (const auto& [open, given] : cases)
    {
        fs::remove(output);
        open();
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!fs::exists(output) && std::chrono::steady_clock::now() < end)
            std::this_thread::yield();   // the opener runs by itself
        EXPECT_EQ(Content("opened"), given);
    }
    // Where everything may be executed, a document is still a document, and a script a program.
    Put("page.html", "exit 3\n", fs::perms::owner_all);
    Put("script", "#!/bin/sh\nprintf '%s|' \"$@\" > out\nexit 7\n", fs::perms::owner_all);
    Put("plain", "#!/bin/sh\nexit 1\n");
    fs::create_directory(folder / "there");
    for (const char* document : { "page.html", "plain", "there" })
    {
        EXPECT_EQ(MFile::Execute(Path(document), "", "", true), 0);
        EXPECT_EQ(Content("opened"), (folder / document).string());
    }
    EXPECT_EQ(MFile::Execute(Path("script"), "one 'two three'", Path("there"), true), 7);
    EXPECT_EQ(Content("there/out"), "one|two three|");
    Put("killed", "#!/bin/sh\nkill -9 $$\n", fs::perms::owner_all);
    EXPECT_EQ(MFile::Execute(Path("killed"), "", "", true), 128 + 9);
    EXPECT_EQ(MFile::Execute(Path("script"), "", Path("there")), 0);
    for (const bool waits : { false, true })
        EXPECT_EQ(ErrorOf([&] { MFile::Execute(Path("script"), "", Path("nowhere"), waits); }),
                  "Could not execute file " + Quoted("script") + ". No such file or directory");
    setenv("PATH", oldPath.c_str(), 1);
}

TEST_F(Files, StandInTheDesktopsSpecialFolders)
{
    const std::string home = folder.string();
    Put("user-dirs.dirs",
        "# a comment\nXDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\nXDG_DOCUMENTS_DIR=\"/data/papers/\"\n"
        "XDG_DOCUMENTS_DIR=\"relative\"\nXDG_DOCUMENTS_DIR=\"\"\nXDG_DOCUMENTS_DIR=\"\n");
    const struct
    {
        const char* variable;
        const char* value;
        std::vector<int> kinds;
        std::string folder;
    } cases[] = {
        { "UNRELATED", "", { MFile::Data }, "/opt/share/Quorvane" },
        { "XDG_DATA_DIRS", nullptr, { MFile::Data }, "/usr/local/share/Quorvane" },
        { "XDG_DATA_DIRS", "relative", { MFile::Data }, "/usr/local/share/Quorvane" },
        { "XDG_DATA_HOME", "/x/../y//", { MFile::UserData }, "/y/Quorvane" },
        { "XDG_DATA_HOME", nullptr, { MFile::UserData }, home + "/.local/share/Quorvane" },
        { "XDG_DATA_HOME", "relative", { MFile::UserData }, home + "/.local/share/Quorvane" },
        { "UNRELATED", "", { MFile::User }, home },
        { "HOME", "/home//x/", { MFile::User }, "/home/x" },
        { "HOME", nullptr, { MFile::User }, getpwuid(getuid())->pw_dir },
        { "UNRELATED", "", { MFile::Documents, MFile::UserDocuments }, "/data/papers" },
        { "XDG_CONFIG_HOME", "/nowhere", { MFile::Documents, MFile::UserDocuments }, home + "/Documents" },
        { "UNRELATED", "", { MFile::ProgramFiles }, "/usr/lib" },
        { "UNRELATED", "", { MFile::Components }, "/usr/share" },
        { "UNRELATED", "", { MFile::StartMenu, MFile::StartMenuPrograms }, "/opt/share/applications" },
        { "XDG_DATA_HOME", "/d", { MFile::UserStartMenu, MFile::UserStartMenuPrograms }, "/d/applications" },
        { "UNRELATED", "", { MFile::Desktop, MFile::UserDesktop }, home + "/Schreibtisch" },
        { "UNRELATED", "", { MFile::System }, "/" },
        { "UNRELATED", "", { MFile::Fonts }, "/usr/share/fonts" },
        { "TMPDIR", home.c_str(), { MFile::Temp }, home },
        { "TMPDIR", "/does/not/exist", { MFile::Temp }, fs::is_directory("/tmp") ? "/tmp" : "/temp" },
    };
    for (const auto& [variable, value, kinds, wanted] : cases)
        for (const int kind : kinds)
        {
            // The environment of a process of its own.
            const auto ask = [&, name = variable, text = value, folder = wanted]
            {
                setenv("HOME", home.c_str(), 1);
                setenv("XDG_CONFIG_HOME", home.c_str(), 1);
                setenv("XDG_DATA_DIRS", "/opt/share/:/usr/share", 1);
                text != nullptr ? setenv(name, text, 1) : unsetenv(name);
                const std::string answer = MFile::GetSpecialFolder(kind).ToUTF8();
                std::fputs(answer.c_str(), stderr);
                _exit(answer == folder ? 0 : 1);
            };
            EXPECT_EXIT(ask(), testing::ExitedWithCode(0), "") << kind << " with " << variable;
        }
    for (const int kind : { -1, int{ MFile::SpecialFolderCount } })
        EXPECT_EQ(ErrorOf([kind] { MFile::GetSpecialFolder(kind); }),
                  "Could not retrieve system path. Invalid argument");
}
}   // namespace
