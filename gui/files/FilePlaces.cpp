// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/files/FilePlaces.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>

#include "foundation/streams/MFile.h"
#include "foundation/text/MException.h"
#include "foundation/text/PathText.h"
#include "gui/files/FilePaths.h"

namespace
{
class PlaceList
{
public:
    void Add(const MString& path, MStdIcon icon, const MString& name = {})
    {
        const bool known = std::any_of(places.begin(), places.end(),
                                       [&path](const FilePlace& each) { return each.path == path; });
        if (!known && MFile::IsFolder(path))
            places.push_back({ name.IsEmpty() ? FilePaths::NameOf(path) : name, path, icon });
    }

    void AddUserFolders()
    {
        Add(MFile::GetSpecialFolder(MFile::User), MStdIcon::Home, "Home");
        Add(MFile::GetSpecialFolder(MFile::UserDesktop), MStdIcon::Folder);
        Add(MFile::GetSpecialFolder(MFile::UserDocuments), MStdIcon::Folder);
        Add(MFile::GetUserFolder("MUSIC", "Music"), MStdIcon::Folder);
    }

    void AddMedia()
    {
        const char* user = std::getenv("USER");
        for (const char* mounts : { "/media/", "/run/media/" })
        {
            const MString folder = PathText(std::string(mounts) + (user != nullptr ? user : ""));
            if (user == nullptr || *user == 0 || !MFile::IsFolder(folder))
                continue;
            try
            {
                for (MFileIterator each(folder, {}, MFileIterator::Directories); !each.IsEnd(); each.Next())
                    if (each.IsDirectory())
                        Add(FilePaths::Join(folder, each.Name()), MStdIcon::Computer);
            }
            catch (const MException&)
            {
                continue;   // media of somebody else
            }
        }
    }

    void AddBookmarks()
    {
        const char* own = std::getenv("XDG_CONFIG_HOME");
        const std::string configuration = own != nullptr && *own == '/'
                                              ? own
                                              : PathBytes(MFile::GetSpecialFolder(MFile::User)) + "/.config";
        std::ifstream file(configuration + "/gtk-3.0/bookmarks");
        const std::string scheme = "file://";
        for (std::string line; std::getline(file, line);)
        {
            if (line.compare(0, scheme.size() + 1, scheme + "/") != 0)
                continue;
            const std::size_t end = std::min(line.find(' '), line.size());
            const MString path =
                FilePaths::Unescaped(PathText(line.substr(scheme.size(), end - scheme.size())));
            const MString name = end < line.size() ? PathText(line.substr(end + 1)) : MString();
            Add(FilePaths::Resolved(path, "/"), MStdIcon::Star, name);
        }
    }

    std::vector<FilePlace> places;
};
}   // namespace

std::vector<FilePlace> ListFilePlaces()
{
    PlaceList list;
    try
    {
        list.AddUserFolders();
    }
    catch (const MException&)
    {
        // A user without a folder has the others.
    }
    list.Add("/", MStdIcon::Computer, "File system");
    list.AddMedia();
    list.AddBookmarks();
    return std::move(list.places);
}
