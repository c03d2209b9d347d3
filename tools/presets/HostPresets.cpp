// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/presets/HostPresets.h"

#include <filesystem>
#include <fstream>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "foundation/text/PathText.h"
#include "hosts/module/CreateInstance.h"
#include "hosts/module/HostPresetFile.h"

void WriteVst3Presets(const std::string& folder)
{
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    const auto instance = []
    {
        return CreateInstance(StartingSettings::OfTheSystem);
    };
    const int count = instance()->presets.FactoryPresetCount();
    for (int index = 0; index < count; ++index)
    {
        // A new one each time: a preset changes only what it names.
        const auto plugin = instance();
        plugin->presets.LoadFactoryPreset(index);
        const std::string name = plugin->presets.FactoryPresetName(index).ToUTF8();
        std::string path = folder;
        path.append("/").append(name).append(".vstpreset");
        std::ofstream file(path, std::ios::binary);
        file << HostPresetFile::Make(HostPresetFile::Format::Vst3, *plugin, name);
        if (!file.flush())
            throw MException(Format("File \"{0}\" could not be created.", PathText(path)));
    }
}
