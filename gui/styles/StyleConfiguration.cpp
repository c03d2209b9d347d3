// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/styles/StyleConfiguration.h"

#include <vector>

#include "foundation/module/Configuration.h"
#include "foundation/module/MModule.h"
#include "foundation/streams/MFile.h"
#include "state/tree/XML.h"

namespace
{
constexpr const char* rootName = "StyleConfiguration";

MString ProductName()
{
    const MModule* module = MModule::Main();
    return module != nullptr ? module->productName : MString("");
}

MString FilePath()
{
    MString path = MFile::GetSpecialFolder(MFile::UserData) + "/";
    if (!ProductName().IsEmpty())
        path += ProductName() + "/";
    return path + "Style.cfg";
}

struct Default
{
    const char* key;
    const char* value;
};
constexpr Default defaults[] = {
    { "Style", "Default (light)" }, { "maincolor0", "F9A002B6" }, { "maincolor1", "F9A002FF" },
    { "maincolor2", "E7DE81DC" },   { "maincolor3", "2CE312FF" },
};
}   // namespace

void LoadStyleConfiguration(MAttribute& configuration)
{
    configuration.Clear();
    if (const MString path = FilePath(); MFile::Exists(path))
        LoadXML(configuration, path);
    configuration.SetName(rootName);
    if (configuration.GetAttribute("Style").IsEmpty())
        for (const Default& each : defaults)
            configuration.SetAttribute(MString::Literal(each.key), MString::Literal(each.value));
}

void SaveStyleConfiguration(MAttribute& configuration)
{
    static_cast<void>(MModule::GetDataPath(ProductName()));
    configuration.SetName(rootName);
    SaveXML(configuration, FilePath(), false, "utf-8");
}

void ResetStyleConfiguration()
{
    if (const MString path = FilePath(); MFile::Exists(path))
        MFile::Delete(path);
    MAttribute configuration;
    LoadConfiguration(configuration);
    constexpr const char* key = "DefaultSize";
    std::vector<MString> kept;
    for (int index = 0; index < configuration.AttributeCount(); ++index)
        if (const MString& name = configuration.AttributeAt(index).key; name.Find(key) == 0)
            kept.push_back(name);
    if (kept.empty())
        return;
    for (const MString& name : kept)
        configuration.RemoveAttribute(name);
    SaveConfiguration(configuration);
}
