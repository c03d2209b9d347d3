// SPDX-License-Identifier: GPL-3.0-or-later
// Where a Linux desktop keeps what the kinds of special folders stand for: XDG Base Directory
// Specification 0.8 and xdg-user-dirs (user-dirs.dirs).
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <pwd.h>
#include <unistd.h>

#include "foundation/streams/MFile.h"
#include "foundation/text/MException.h"
#include "foundation/text/PathText.h"

namespace
{
namespace fs = std::filesystem;

constexpr const char* makerFolder = "Quorvane";

std::string Variable(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

// The base directory specification has relative paths ignored.
std::string AbsoluteVariable(const char* name, const std::string& otherwise)
{
    const std::string value = Variable(name);
    return !value.empty() && value.front() == '/' ? value : otherwise;
}

std::string HomeFolder()
{
    std::string home = AbsoluteVariable("HOME", "");
    if (!home.empty())
        return home;
    // A service without an environment: the user data base knows.
    struct passwd record = {};
    struct passwd* found = nullptr;
    char buffer[4096];
    const int error = getpwuid_r(getuid(), &record, buffer, sizeof buffer, &found);
    if (found == nullptr || found->pw_dir == nullptr || found->pw_dir[0] != '/')
        throw MException("Could not retrieve system path. " + SystemErrorText(error != 0 ? error : ENOENT));
    return found->pw_dir;
}

std::string UserData()
{
    const std::string data = AbsoluteVariable("XDG_DATA_HOME", "");
    return data.empty() ? HomeFolder() + "/.local/share" : data;
}

std::string MachineData()
{
    const std::string folders = Variable("XDG_DATA_DIRS");
    const std::string first = folders.substr(0, folders.find(':'));
    return !first.empty() && first.front() == '/' ? first : "/usr/local/share";
}

// A line of user-dirs.dirs reads XDG_DOCUMENTS_DIR="$HOME/Documents"; only "$HOME/..." and absolute paths
// are allowed there.
std::string UserFolder(const std::string& key, const char* otherwise)
{
    const std::string home = HomeFolder();
    std::ifstream file(AbsoluteVariable("XDG_CONFIG_HOME", home + "/.config") + "/user-dirs.dirs");
    std::string folder = home + "/" + otherwise;
    for (std::string line; std::getline(file, line);)
    {
        const std::string start = key + "=\"";
        const std::size_t end = line.rfind('"');
        if (line.compare(0, start.size(), start) != 0 || end < start.size())
            continue;
        const std::string value = line.substr(start.size(), end - start.size());
        if (value.compare(0, 5, "$HOME") == 0 && (value.size() == 5 || value[5] == '/'))
            folder = home + value.substr(5);
        else if (!value.empty() && value.front() == '/')
            folder = value;
    }
    return folder;
}

bool IsFolder(const std::string& path)
{
    std::error_code error;
    return fs::is_directory(path, error);
}

std::string TemporaryFolder()
{
    const std::string chosen = AbsoluteVariable("TMPDIR", "/tmp");
    if (IsFolder(chosen))
        return chosen;
    return IsFolder("/tmp") ? "/tmp" : "/temp";
}

std::string FolderOf(int kind)
{
    switch (kind)
    {
    case MFile::Data:
        return MachineData() + "/" + makerFolder;
    case MFile::UserData:
        return UserData() + "/" + makerFolder;
    case MFile::User:
        return HomeFolder();
    case MFile::Documents:   // Linux has none for the machine
    case MFile::UserDocuments:
        return UserFolder("XDG_DOCUMENTS_DIR", "Documents");
    case MFile::ProgramFiles:
        return "/usr/lib";
    case MFile::Components:
        return "/usr/share";
    case MFile::StartMenu:
    case MFile::StartMenuPrograms:
        return MachineData() + "/applications";
    case MFile::UserStartMenu:
    case MFile::UserStartMenuPrograms:
        return UserData() + "/applications";
    case MFile::Desktop:
    case MFile::UserDesktop:
        return UserFolder("XDG_DESKTOP_DIR", "Desktop");
    case MFile::System:
        return "/";
    case MFile::Fonts:
        return "/usr/share/fonts";
    case MFile::Temp:
        return TemporaryFolder();
    default:
        throw MException("Could not retrieve system path. " + SystemErrorText(EINVAL));
    }
}
}   // namespace

const char* const MFile::SpecialFolderLabels[SpecialFolderCount] = { "data",
                                                                     "userdata",
                                                                     "user",
                                                                     "documents",
                                                                     "userdocuments",
                                                                     "programfiles",
                                                                     "components",
                                                                     "startmenu",
                                                                     "userstartmenu",
                                                                     "startmenuprograms",
                                                                     "userstartmenuprograms",
                                                                     "desktop",
                                                                     "userdesktop",
                                                                     "system",
                                                                     "fonts",
                                                                     "temp" };

namespace
{
MString Normalised(const std::string& folder)
{
    std::string path = fs::path(folder).lexically_normal().string();
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return PathText(path);
}
}   // namespace

MString MFile::GetSpecialFolder(int kind)
{
    return Normalised(FolderOf(kind));
}

MString MFile::GetUserFolder(const char* name, const char* otherwise)
{
    return Normalised(UserFolder(std::string("XDG_") + name + "_DIR", otherwise));
}
