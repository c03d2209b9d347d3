// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/stylebuilder/Theme.h"

#include <fstream>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"

namespace
{
MColor Parse(const nlohmann::json& value)
{
    const std::string text = value.get<std::string>();
    if (text.size() != 7 || text[0] != '#')
        throw MException(Format("\"{0}\" is no colour.", MString::FromUTF8(text)));
    const auto rgb = static_cast<std::uint32_t>(MString::Copy(text.substr(1)).ToUnsigned(16));
    return MColor(rgb | 0xFF000000u);
}
}   // namespace

Theme::Theme(const std::string& metricsPath, const std::string& look) : name(look), dark(look == "dark")
{
    std::ifstream file(metricsPath);
    metrics = nlohmann::json::parse(file, nullptr, false);
    if (metrics.is_discarded())
        throw MException(Format("Cannot read \"{0}\".", MString::FromUTF8(metricsPath)));
}

const nlohmann::json& Theme::At(const std::string& path) const
{
    const nlohmann::json::json_pointer pointer(path);
    if (!metrics.contains(pointer))
        throw MException(Format("The metrics lack \"{0}\".", MString::FromUTF8(path)));
    return metrics.at(pointer);
}

double Theme::Size(const std::string& path) const
{
    return At("/sizes/" + path).get<double>();
}

MColor Theme::Color(const std::string& color) const
{
    return Parse(At("/colors/" + name + "/" + color));
}

MColor Theme::Band(int number) const
{
    return Parse(At("/bands/" + name + "/" + std::to_string(number - 1)));
}

MColor Theme::Curve(const std::string& curve, const std::string& part) const
{
    const nlohmann::json& found = At("/curves/" + name + "/" + curve);
    const auto has = [&found](const std::string& key)
    {
        return found.contains(key) && found[key].is_string();
    };
    return Parse(found[has(part) ? part : part == "core" ? "body" : "core"]);
}

MColor Theme::BandInk() const
{
    return dark ? Color("canvas") : MColor(255, 255, 255);
}

MColor Theme::Lamp() const
{
    // On light the accent is ink, and the lamp lies on ink faces: it keeps the colour that it has on dark.
    return Parse(At("/colors/dark/accent"));
}
