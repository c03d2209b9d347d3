// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/presets/FactoryPresets.h"

#include <algorithm>
#include <sstream>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "hosts/module/CreateInstance.h"
#include "tools/tonalign/Options.h"

namespace
{
constexpr const char* keptAttributes[] = { "parametergain", "parameterdepth", "parameterSoftSaturation" };

std::string Trimmed(const std::string& text)
{
    const std::size_t start = text.find_first_not_of(" \t\r");
    return start == std::string::npos ? std::string()
                                      : text.substr(start, text.find_last_not_of(" \t\r") - start + 1);
}

std::vector<BandSpec> ParseBands(const std::string& text)
{
    std::vector<BandSpec> bands;
    std::istringstream words(text);
    for (std::string word; words >> word;)
        bands.push_back(ParseBandSpec(word));
    if (bands.empty() || bands.size() > static_cast<std::size_t>(MEqualizerBase::BandCount))
        throw UsageError{ "expected 1 to 10 bands" };
    return bands;
}

void ApplyBands(MEqualizerBase& equalizer, const std::vector<BandSpec>& bands)
{
    equalizer.SetDefaults(true);
    for (std::int32_t index = 0; index < MEqualizerBase::BandCount; ++index)
        equalizer.Band(index).enabled = false;
    for (std::size_t index = 0; index < bands.size(); ++index)
        ApplyBandSpec(bands[index], equalizer.Band(static_cast<std::int32_t>(index)));
}

void StorePreset(MQuorvaneAudioEffectPlugin& plugin, const FactoryPreset& preset, MAttribute& item)
{
    ApplyBands(EffectOf(plugin).equalizer, preset.bands);
    MAttribute state("settings");
    plugin.Store({ .saving = 1, .item = &state });
    for (const char* key : keptAttributes)
        item.SetAttribute(key, state.RequireAttribute(key));
    item.AddSubItem("graph").CopyFrom(state.RequireSubItem("graph"));
    item.SetAttribute("name", MString::FromUTF8(preset.name));
    item.SetAttribute("Overlay", "1");
}

MAttribute& FolderOf(MAttribute& root, const std::string& name)
{
    if (name.empty())
        return root;
    const MString text = MString::FromUTF8(name);
    if (MAttribute* folder = root.FindSubItem("Directory", "Name", text))
        return *folder;
    MAttribute& folder = root.AddSubItem("Directory");
    folder.SetAttribute("Name", text);
    return folder;
}
}   // namespace

std::vector<FactoryPreset> ParseFactoryPresets(std::string_view text, const std::string& name)
{
    std::vector<FactoryPreset> presets;
    std::string folder;
    std::istringstream lines{ std::string(text) };
    int number = 0;
    for (std::string line; std::getline(lines, line);)
    {
        ++number;
        try
        {
            const std::string content = Trimmed(line);
            if (content.empty() || content.front() == '#')
                continue;
            if (content.front() == '[' && content.back() == ']')
            {
                folder = Trimmed(content.substr(1, content.size() - 2));
                continue;
            }
            const std::size_t equals = content.find('=');
            const std::string presetName = Trimmed(content.substr(0, equals));
            if (equals == std::string::npos || presetName.empty())
                throw UsageError{ "expected [Folder] or Name = BAND ..." };
            if (std::any_of(presets.begin(), presets.end(),
                            [&](const FactoryPreset& other)
                            { return other.folder == folder && other.name == presetName; }))
                throw UsageError{ "\"" + presetName + "\" comes twice" };
            presets.push_back({ folder, presetName, ParseBands(content.substr(equals + 1)) });
        }
        catch (const UsageError& error)
        {
            throw MException(
                Format("{0}:{1}: {2}", MString::FromUTF8(name), number, MString::FromUTF8(error.message)));
        }
    }
    return presets;
}

void MakeFactoryPresets(const std::vector<FactoryPreset>& presets, MAttribute& root)
{
    const std::unique_ptr<MQuorvaneAudioEffectPlugin> plugin = CreateInstance();
    root.Clear();
    root.SetName("presets");
    for (const FactoryPreset& preset : presets)
        StorePreset(*plugin, preset, FolderOf(root, preset.folder).AddSubItem("preset"));
}
