// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "gui/styles/MTexturedStyle.h"
#include "resources/RegisterResources.h"

/// One of the module's own styles, with settings above it.
inline std::unique_ptr<MTexturedStyle> StyleOf(const MString& look, double scale, const MString& key = {},
                                               const MString& value = {})
{
    StartModuleWithResources();
    MAttribute configuration;
    configuration.SetAttribute("Style", "Default (" + look + ")");
    configuration.SetAttribute("ResizeX", MString::FromDouble(scale));
    configuration.SetAttribute("ResizeY", MString::FromDouble(scale));
    if (!key.IsEmpty())
        configuration.SetAttribute(key, value);
    auto style = std::make_unique<MTexturedStyle>();
    style->Apply(configuration);
    return style;
}
