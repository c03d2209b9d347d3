// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/module/Configuration.h"

#include "foundation/module/MModule.h"
#include "foundation/streams/MFile.h"
#include "state/tree/XML.h"

namespace
{
constexpr const char* rootName = "Configuration";

MString ProductName()
{
    const MModule* module = MModule::Main();
    return module != nullptr ? module->productName : MString("");
}

MString ModuleFile()
{
    MString path = MFile::GetSpecialFolder(MFile::UserData) + "/";
    if (!ProductName().IsEmpty())
        path += ProductName() + "/";
    return path + "GlobalConfiguration.xml";
}

MString SharedFile()
{
    return MFile::GetSpecialFolder(MFile::UserData) + "/MPluginConfiguration.xml";
}

void Load(MAttribute& configuration, auto&& pathOf)
{
    configuration.Clear();
    try
    {
        // Reading makes no folders: a program that only looks leaves nothing behind.
        const MString path = pathOf();
        if (MFile::Exists(path))
            LoadXML(configuration, path);
    }
    catch (const MException&)
    {
        configuration.Clear();   // broken counts as missing: the next write replaces it
    }
    configuration.SetName(rootName);
}

void Save(MAttribute& configuration, const MString& subPath, const MString& path)
{
    static_cast<void>(MModule::GetDataPath(subPath));
    configuration.SetName(rootName);
    SaveXML(configuration, path, false, "utf-8");
}

MString FlagText(bool flag)
{
    return flag ? "1" : "0";
}
}   // namespace

void LoadConfiguration(MAttribute& configuration)
{
    Load(configuration, ModuleFile);
}

void SaveConfiguration(MAttribute& configuration)
{
    Save(configuration, ProductName(), ModuleFile());
}

void LoadPluginConfiguration(MAttribute& configuration)
{
    Load(configuration, SharedFile);
}

void SavePluginConfiguration(MAttribute& configuration)
{
    Save(configuration, {}, SharedFile());
}

PluginConfiguration ReadPluginConfiguration()
{
    MAttribute tree;
    LoadPluginConfiguration(tree);
    PluginConfiguration result;
    result.surround = tree.GetAttribute("Surround", "0").ToInt() != 0 ? 1 : 0;
    result.confirmationEnabled = tree.GetAttribute("ConfirmationEnabled", "1").ToInt() != 0;
    result.tabletMode = tree.GetAttribute("TabletMode", "0").ToInt() != 0;
    result.onlinePresetExchange = tree.GetAttribute("OnlinePresetExchange");
    return result;
}

void WritePluginConfiguration(const PluginConfiguration& configuration)
{
    MAttribute tree;
    LoadPluginConfiguration(tree);
    tree.SetAttribute("Surround", MString::FromInt(configuration.surround));
    tree.SetAttribute("ConfirmationEnabled", FlagText(configuration.confirmationEnabled));
    tree.SetAttribute("TabletMode", FlagText(configuration.tabletMode));
    if (!configuration.onlinePresetExchange.IsEmpty())
        tree.SetAttribute("OnlinePresetExchange", configuration.onlinePresetExchange);
    SavePluginConfiguration(tree);
}
