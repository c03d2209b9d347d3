// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/styles/StyleFonts.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>

#include "foundation/module/MModule.h"
#include "foundation/streams/MStdFileStream.h"
#include "foundation/text/MStringFormat.h"
#include "gui/painting/SystemFonts.h"
#include "gui/styles/ResourceBytes.h"

namespace
{
using SharedFace = std::shared_ptr<FontFace>;

// Every style and scale uses the same faces: they stay as long as one does.
std::map<std::string, std::weak_ptr<FontFace>>& FacesInUse()
{
    static std::map<std::string, std::weak_ptr<FontFace>> faces;
    return faces;
}

SharedFace FromModule(const std::string& name)
{
    MModule* module = MModule::Main();
    MResource* resource = module != nullptr ? module->resources.Find(MString::FromUTF8(name)) : nullptr;
    return resource != nullptr ? std::make_shared<FontFace>(ResourceBytes(*resource)) : nullptr;
}

SharedFace FromSystem(const std::string& name)
{
    const MString start = "/" + MString::FromUTF8(name) + ".";
    for (const MString& path : SystemFonts::Get().Paths())
        if (path.Find(start) >= 0)
        {
            MStdFileStream file(path, MStdFileStream::ReadAccess);
            return FontFace::Read(file);
        }
    return nullptr;
}

SharedFace Shared(const std::string& name)
{
    std::weak_ptr<FontFace>& known = FacesInUse()[name];
    if (SharedFace face = known.lock())
        return face;
    SharedFace face = FromModule(name);
    if (!face)
        face = FromSystem(name);
    known = face;
    return face;
}

SharedFace Replacement(const std::string& name, bool bold)
{
    const std::size_t dash = name.find('-');
    const std::string style = dash == std::string::npos ? "" : name.substr(dash);
    const bool isHeavy = bold || style == "-SemiBold" || style == "-Bold";
    for (const char* family : { "Inter", "Roboto", "NotoSans", "DejaVuSans" })
        for (const std::string& wanted :
             { style, std::string(isHeavy ? "-Bold" : "-Regular"), std::string() })
            if (SharedFace face = Shared(family + wanted))
                return face;
    return nullptr;
}

SharedFace FaceOf(const MAttribute& item, StyleDefinition& definition)
{
    const MString text = item.RequireAttribute("face");
    const bool bold = item.GetAttribute("bold").ToInt() != 0;
    const bool italic = item.GetAttribute("italic").ToInt() != 0;
    if (MResource* resource = definition.FindResource(text))
        return std::make_shared<FontFace>(ResourceBytes(*resource));
    std::string name = text.ToUTF8();
    if (name.find('-') == std::string::npos && (bold || italic))
        name += std::string("-") + (bold ? "Bold" : "") + (italic ? "Italic" : "");
    SharedFace face = Shared(name);
    if (!face)
        face = Replacement(name, bold);
    if (!face)
        throw MException(Format("Cannot find requested resource ({0}).", text));
    return face;
}

std::size_t IndexOf(const MString& id)
{
    constexpr auto& labels = MEnumLabels<MStdFont>::Labels;
    for (std::size_t index = 0; index < std::size(labels); ++index)
        if (id.EqualsNoCase(MString::Literal(labels[index])))
            return index;
    throw MException(Format("Invalid MStdFont identifier to parse ({0}).", id));
}

double NumberOf(const MAttribute& item, const MString& key, double otherwise, double least, double most)
{
    const MString* text = item.FindAttribute(key);
    const double number = text != nullptr ? text->ToDouble() : otherwise;
    return std::isfinite(number) ? std::clamp(number, least, most) : otherwise;
}
}   // namespace

void StyleFonts::Load(const MAttribute& section, StyleDefinition& definition, double scale)
{
    for (int number = 0; number < section.SubItemCount(); ++number)
    {
        const MAttribute& item = section.SubItemAt(number);
        const std::size_t index = IndexOf(item.RequireAttribute("id"));
        MFontDescriptor descriptor;
        descriptor.name = item.GetAttribute("name");
        // In half pixels, as fonts have it.
        descriptor.height = std::round(2 * scale * NumberOf(item, "height", 11, 4, 200)) / 2;
        descriptor.spaceBetweenChars = scale * NumberOf(item, "spacebetweenchars", 0, -8, 64);
        descriptor.tabularDigits = item.GetAttribute("tabulardigits").ToInt() != 0;
        fonts[index] = std::make_unique<MFont>(FaceOf(item, definition), descriptor);
    }
}

MFont& StyleFonts::Get(std::int32_t index) const
{
    const auto at = static_cast<std::size_t>(index);
    const std::unique_ptr<MFont>& font = at < FontCount && fonts[at] ? fonts[at] : fonts[0];
    if (!font)
        throw MException("Not initialized GDI object specified to select.", MErrorCode::Drawing);
    return *font;
}
