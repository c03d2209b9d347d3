// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/presets/DefaultSettings.h"

#include "foundation/module/Configuration.h"
#include "foundation/streams/MMemoryStream.h"
#include "foundation/text/Boundary.h"
#include "state/presets/MPresetTree.h"
#include "state/tree/XML.h"

void SaveDefaultSettings(const StoreOperation& store)
{
    MAttribute settings("Settings");
    store({ .saving = 1, .item = &settings });
    MMemoryStream stream;
    WriteCompressedXML(settings, stream, "utf-8");

    MAttribute configuration;
    LoadConfiguration(configuration);
    MAttribute& kept = configuration.GetSubItem("DefaultSettings");
    kept.Clear();
    kept.SetAttribute("compressed", "1");
    kept.SetBinary(stream, false);
    SaveConfiguration(configuration);
}

bool LoadDefaultSettings(const StoreOperation& store) noexcept
{
    return AtBoundary("MAudioPlugin::LoadDefaultSettings", false,
                      [&store]
                      {
                          MAttribute configuration;
                          LoadConfiguration(configuration);
                          if (!configuration.HasSubItem("DefaultSettings"))
                              return false;
                          MAttribute settings;
                          ReadPreset(configuration.GetCachedSubItem(), settings);
                          store({ .saving = 0, .item = &settings });
                          return true;
                      });
}
