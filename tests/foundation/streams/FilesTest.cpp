// SPDX-License-Identifier: GPL-3.0-or-later
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/streams/MFile.h"
#include "foundation/streams/MSafeFileStream.h"
#include "foundation/text/MException.h"
#include "foundation/text/PathText.h"

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

    MString Path(const std::string& name) const { return MString::FromUTF8((folder / name).string()); }
    void Put(const std::string& name, const std::string& content) const
    {
        std::ofstream(folder / name, std::ios::binary) << content;
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

std::string ErrorOf(auto&& operation, int code)
{
    try
    {
        operation();
    }
    catch (const MException& error)
    {
        EXPECT_EQ(error.Code, code);
        return error.Message.ToUTF8();
    }
    return {};
}

TEST_F(Files, AreReadChangedAndCreated)
{
    const std::string name = "\xC3\xA9t\xC3\xA9.txt";
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
    {
        MStdFileStream file(Path(name), MStdFileStream::ReadAccess);
        char buffer[20];
        EXPECT_FALSE(file.IsEnd());
        EXPECT_EQ(file.Read(buffer, 20), 10);
        EXPECT_TRUE(file.IsEnd());
        EXPECT_EQ(file.Read(buffer, 20), 0);
        file.Seek(-3, MStream::End);
        EXPECT_EQ(file.GetPosition(), 7);
        EXPECT_EQ(ErrorOf([&] { file.Seek(-1, MStream::Begin); }, 256), "Could not perform file seek.");
        EXPECT_EQ(ErrorOf([&] { file.Seek(0, 3); }, 2), "Invalid seek origin.");
    }
    {
        MStdFileStream file(Path(name), MStdFileStream::WriteAccess);
        file.Seek(4, MStream::Begin);
        file.Truncate();
        file.Close();
        EXPECT_FALSE(file.IsOpen());
        EXPECT_EQ(ErrorOf([&] { file.GetSize(); }, 258), "File stream is not initialized.");
    }
    EXPECT_EQ(Content(name), "012X");
}

TEST_F(Files, SayWhyTheyDoNotOpen)
{
    const std::string missing = Path("missing").ToUTF8();
    EXPECT_EQ(ErrorOf([&] { MStdFileStream(Path("missing"), MStdFileStream::ReadAccess); }, 257),
              "File \"" + missing + "\" could not be open. Make sure it exists.");
    EXPECT_EQ(ErrorOf([&] { MStdFileStream(Path("missing"), MStdFileStream::WriteAccess); }, 257),
              "File \"" + missing + "\" could not be open. Make sure it exists.");
    const std::string self = MString::FromUTF8(folder.string()).ToUTF8();
    EXPECT_EQ(ErrorOf([&] { MStdFileStream(MString::FromUTF8(self), MStdFileStream::ReadAccess); }, 257),
              "File \"" + self + "\" could not be open. Make sure it exists.");
    const std::string text =
        "File \"" + self +
        "\" could not be created. Make sure there is no write-protected file already existing.";
    EXPECT_EQ(ErrorOf([&] { MStdFileStream(MString::FromUTF8(self), 6); }, 257), text);
    EXPECT_EQ(ErrorOf([&] { MSafeFileStream(MString::FromUTF8(self)); }, 257), text);
}

TEST_F(Files, TellOfAFullDisk)
{
    if (!fs::exists("/dev/full"))
        GTEST_SKIP();
    MStdFileStream file("/dev/full", MStdFileStream::WriteAccess);
    EXPECT_EQ(ErrorOf(
                  [&]
                  {
                      file.Write("x", 1);
                      file.Flush();
                  },
                  256),
              "Error writing to file \"/dev/full\". Probably disk full.");
}

TEST_F(Files, AreReplacedWholeOrNotAtAll)
{
    Put("settings.xml", "old");
    chmod((folder / "settings.xml").c_str(), 0640);
    fs::create_symlink("settings.xml", folder / "link.xml");
    {
        MSafeFileStream file(Path("settings.xml"));
        file.WriteText("half of the n");
        EXPECT_EQ(Content("settings.xml"), "old");
    }
    EXPECT_EQ(Content("settings.xml"), "old");
    EXPECT_EQ(EntryCount(), 2);
    {
        MSafeFileStream file(Path("link.xml"));
        file.WriteText("new");
        file.Commit();
    }
    EXPECT_EQ(Content("settings.xml"), "new");
    EXPECT_TRUE(fs::is_symlink(folder / "link.xml"));
    EXPECT_EQ(static_cast<int>(fs::status(folder / "settings.xml").permissions()), 0640);
    EXPECT_EQ(EntryCount(), 2);
    {
        MSafeFileStream file(Path("fresh.xml"));
        file.Commit();
    }
    EXPECT_TRUE(fs::exists(folder / "fresh.xml"));
    EXPECT_EQ(ErrorOf([&] { MSafeFileStream(Path("nowhere/x.xml")); }, 257).substr(0, 6), "File \"");
}

TEST_F(Files, AreMovedAndRemoved)
{
    MFile::CreatePath(Path("a/b/c"));
    EXPECT_TRUE(MFile::Exists(Path("a/b/c")));
    MFile::CreatePath(Path("a/b/c"));
    Put("a/b/one.txt", "1");
    MFile::Rename(Path("a/b/one.txt"), Path("a/b/c/two.txt"));
    EXPECT_FALSE(MFile::Exists(Path("a/b/one.txt")));
    EXPECT_EQ(Content("a/b/c/two.txt"), "1");

    const auto quoted = [this](const char* name)
    {
        return "\"" + Path(name).ToUTF8() + "\"";
    };
    EXPECT_EQ(ErrorOf([&] { MFile::RemoveDirectory(Path("a/b")); }, 0),
              "Could not remove directory " + quoted("a/b") + ". Directory not empty");
    EXPECT_EQ(ErrorOf([&] { MFile::Delete(Path("none")); }, 0),
              "Could not delete file " + quoted("none") + ". No such file or directory");
    EXPECT_EQ(ErrorOf([&] { MFile::Rename(Path("none"), Path("x")); }, 0),
              "Could not rename file " + quoted("none") + " to " + quoted("x") +
                  ". No such file or directory");
    EXPECT_EQ(ErrorOf([&] { MFile::CreatePath(Path("a/b/c/two.txt")); }, 0),
              "Could not create path " + quoted("a/b/c/two.txt") + ". Not a directory");
    EXPECT_EQ(ErrorOf([&] { MFile::DeleteTree(Path("a/b/c/two.txt")); }, 0),
              "Could not remove directory " + quoted("a/b/c/two.txt") + ". Not a directory");

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
    constexpr unsigned Seed = 161;
    SCOPED_TRACE(Seed);
    std::mt19937 random(Seed);
    std::vector<std::string> names = { "a\\b.txt",
                                       "\xE9t\xE9",
                                       "\xEF\xBB\xBFmarked",
                                       "\xC0\xAF",
                                       "\xED\xB2\x80",
                                       "\xF4\x90\x80\x80",
                                       "\xF0\x9F\x8E\xB5\x80",
                                       "\xF0\x9F\x8E",
                                       " ",
                                       std::string(255, 'x') };
    for (int round = 0; round < 200; ++round)
    {
        std::string name(1 + random() % 12, ' ');
        for (char& byte : name)
            do
                byte = static_cast<char>(random() % 4 == 0 ? random() % 128 : 128 + random() % 128);
            while (byte == 0 || byte == '/');
        if (name != "." && name != "..")
            names.push_back(name);
    }
    for (const std::string& name : names)
    {
        SCOPED_TRACE(testing::PrintToString(name));
        const MString path = PathText((folder / name).native());
        EXPECT_EQ(PathBytes(path), (folder / name).native());
        if (random() % 2 == 0)
        {
            MStdFileStream file(path, MStdFileStream::WriteAccess | MStdFileStream::CreateFile);
            file.WriteText("content");
        }
        else
        {
            MSafeFileStream file(path);
            file.WriteText("content");
            file.Commit();
        }
        EXPECT_EQ(Content(name), "content");
        MFileIterator found(PathText(folder.native()), "");
        ASSERT_FALSE(found.IsEnd());
        const MString listed = PathText(folder.native()) + "/" + found.Name();
        EXPECT_EQ(listed, path);
        EXPECT_EQ(MStdFileStream(listed, MStdFileStream::ReadAccess).GetSize(), 7);
        MFile::Rename(listed, Path("renamed"));
        MFile::Rename(Path("renamed"), listed);
        EXPECT_TRUE(MFile::Exists(listed));
        MFile::Delete(listed);
        EXPECT_EQ(EntryCount(), 0);
    }
    // U+FFFF and other surrogates are in no file's name, but in a text they do no harm.
    EXPECT_EQ(PathBytes(MString(std::u16string_view(u"a\xD800\xDC00\xD800"
                                                    "b\xDFFF"))),
              "a\xF0\x90\x80\x80"
              "b");
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
    Put("file", "content");
    chmod((folder / "file").c_str(), 0640);
    MFile::Rename(Path("file"), PathText(outside.native()));
    EXPECT_EQ(EntryCount(), 0);
    EXPECT_EQ(static_cast<int>(fs::status(outside).permissions()), 0640);
    Put("file", "older");
    MFile::Rename(PathText(outside.native()), Path("file"));
    EXPECT_EQ(Content("file"), "content");
    fs::create_directories(folder / "tree/inner");
    Put("tree/inner/leaf", "leaf");
    MFile::Rename(Path("tree"), PathText(outside.native()));
    EXPECT_TRUE(fs::exists(outside / "inner/leaf"));
    fs::remove_all(outside);
    // What can't be moved stays where it is, and nothing is left there.
    fs::create_directories(outside / "in the way");
    EXPECT_THROW(MFile::Rename(Path("file"), PathText(outside.native())), MException);
    EXPECT_EQ(Content("file"), "content");
    EXPECT_EQ(std::distance(fs::directory_iterator(outside), fs::directory_iterator()), 1);
    fs::remove_all(outside);
}

std::string ListOf(const MString& path, const MString& filter, int flags)
{
    std::string names;
    for (MFileIterator item(path, filter, flags); !item.IsEnd(); item.Next())
        names += item.Name().ToUTF8() + (item.IsDirectory() ? "/ " : " ");
    return names;
}

TEST_F(Files, AreListedByFilter)
{
    for (const char* name : { "b.WAV", "a.wav", "c.wav.txt", "wav", "d.waves" })
        Put(name, "");
    fs::create_directory(folder / "e.wav");
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
                  { "**t", MFileIterator::Files, "c.wav.txt " } };
    for (const auto& [filter, flags, names] : cases)
        EXPECT_EQ(ListOf(MString::FromUTF8(folder.string()), filter, flags), names) << filter;
    EXPECT_EQ(ListOf("", "", MFileIterator::Drives), "// ");
    EXPECT_EQ(ErrorOf([&] { ListOf(Path("none"), "", 0); }, 0),
              "Could not access path \"" + Path("none").ToUTF8() +
                  "\" to get file list. No such file or directory");
}

TEST_F(Files, AreOpenedByTheDesktop)
{
    const std::string oldPath = std::getenv("PATH");
    const std::string missing = Path("none").ToUTF8();
    EXPECT_EQ(ErrorOf([&] { MFile::Execute(Path("none")); }, 0),
              "Could not execute file \"" + missing + "\". No such file or directory");

    // A stand-in for the desktop's opener writes down what it was given.
    const std::string output = Path("opened").ToUTF8();
    Put("xdg-open",
        "#!/bin/sh\nprintf %s \"$1\" > '" + output + ".part'\nmv '" + output + ".part' '" + output + "'\n");
    fs::permissions(folder / "xdg-open", fs::perms::owner_all);
    setenv("PATH", (folder.string() + ":" + oldPath).c_str(), 1);
    MFile::Execute("https://example.org/?a=1&b=$HOME");
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!fs::exists(output) && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    EXPECT_EQ(Content("opened"), "https://example.org/?a=1&b=$HOME");
    // Where everything may be executed, a document is still a document, and a script a program.
    Put("page.html", "exit 3\n");
    Put("script", "#!/bin/sh\nexit $1\n");
    for (const char* name : { "page.html", "script" })
        fs::permissions(folder / name, fs::perms::owner_all);
    EXPECT_EQ(MFile::Execute(Path("page.html"), "", "", true), 0);
    EXPECT_EQ(Content("opened"), Path("page.html").ToUTF8());
    EXPECT_EQ(MFile::Execute(Path("script"), "7", "", true), 7);
    setenv("PATH", oldPath.c_str(), 1);
}
}   // namespace
