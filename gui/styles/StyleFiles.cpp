// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/styles/StyleFiles.h"

#include <algorithm>
#include <string>
#include <vector>

#include "foundation/module/MModule.h"
#include "foundation/streams/MFile.h"
#include "foundation/text/MException.h"

namespace
{
constexpr const char* folderName = "QStyles";
constexpr const char* extension = ".qrf";

struct OwnStyle
{
    const char* name;
    const char* resource;
};
// The first one is what stands in when nothing else is there.
constexpr OwnStyle ownStyles[] = { { "Default (light)", "StyleLight" }, { "Default (dark)", "StyleDark" } };

MResource* FindOwn(const OwnStyle& style)
{
    MModule* module = MModule::Main();
    return module != nullptr ? module->resources.Find(MString::Literal(style.resource)) : nullptr;
}

std::unique_ptr<StyleDefinition> ReadOwn(const MString& name)
{
    for (const OwnStyle& style : ownStyles)
        if (name == MString::Literal(style.name))
            if (MResource* resource = FindOwn(style))
                return StyleDefinition::Read(resource->Content());
    return nullptr;
}

/// Names without a separator only: a configuration isn't a way into other folders.
bool IsName(const MString& name)
{
    return !name.IsEmpty() && name.Find(u'/') < 0 && name.Find(u'\\') < 0;
}

MString PathOf(const MString& folder, const MString& name)
{
    return folder + "/" + name + MString::Literal(extension);
}

std::vector<MString> FilesIn(const MString& folder)
{
    std::vector<MString> names;
    if (!MFile::Exists(folder))
        return names;
    for (MFileIterator file(folder, "*.qrf"); !file.IsEnd(); file.Next())
        names.push_back(file.Name().SubString(0, file.Name().Length() - 4));
    return names;
}

std::unique_ptr<StyleDefinition> Find(const MString& name, const MString& folder)
{
    for (const MString& wanted : { name, MString("Default") })
    {
        if (!IsName(wanted))
            continue;
        if (const MString path = PathOf(folder, wanted); MFile::Exists(path))
            return StyleDefinition::Load(path);
        if (auto own = ReadOwn(wanted))
            return own;
    }
    if (const std::vector<MString> files = FilesIn(folder); !files.empty())
        return StyleDefinition::Load(PathOf(folder, files.front()));
    if (auto own = ReadOwn(MString::Literal(ownStyles[0].name)))
        return own;
    throw MException("No styles are available. Please reinstall the software.");
}
}   // namespace

MString GetStylePath(const MAttribute& configuration)
{
    if (const MString* own = configuration.FindAttribute("StylePath"); own != nullptr && !own->IsEmpty())
        return *own;
    MString users = MFile::GetSpecialFolder(MFile::UserData) + "/" + MString::Literal(folderName);
    if (MFile::Exists(users))
        return users;
    return MFile::GetSpecialFolder(MFile::Data) + "/" + MString::Literal(folderName);
}

MArray<MString> ListStyles(const MString& folder)
{
    std::vector<MString> names = FilesIn(folder);
    for (const OwnStyle& style : ownStyles)
        if (FindOwn(style) != nullptr)
            names.push_back(MString::Literal(style.name));
    std::sort(names.begin(), names.end(),
              [](const MString& a, const MString& b) { return MString::CompareNoCase(a, b) < 0; });
    names.erase(std::unique(names.begin(), names.end()), names.end());
    MArray<MString> list;
    for (const MString& name : names)
        list.Add(name);
    return list;
}

std::unique_ptr<StyleDefinition> LoadCommonDefinition()
{
    MModule* module = MModule::Main();
    if (module == nullptr)
        throw MException("No style definition has been found.");
    if (MResource* resource = module->resources.Find("qstyle"))
        return StyleDefinition::Read(resource->Content());
    return StyleDefinition::Load(module->FindStyleFile());
}

std::unique_ptr<StyleDefinition> FindStyleDefinition(const MString& name, const MString& folder)
{
    std::unique_ptr<StyleDefinition> definition = Find(name, folder);
    // A file may hold only what makes it different.
    if (definition->Section("colors") == nullptr || definition->Section("fonts") == nullptr)
        definition->CompleteFrom(LoadCommonDefinition());
    return definition;
}
