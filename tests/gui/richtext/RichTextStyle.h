// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <memory>
#include <string>

#include "foundation/streams/MStdFileStream.h"
#include "gui/painting/FontLibrary.h"
#include "gui/painting/MDrawerToMBitmap.h"
#include "gui/richtext/MSTML.h"

/// A style as the editor has it: the fonts of texts, the colours of dark or light paper, the tag sets, and
/// two icons that are drawn for the scale.
class RichTextStyle : public MDrawerOwner, public STMLResources
{
public:
    enum Role : std::int32_t
    {
        Text1,
        GraphDefault,
        Text2,
        Light,
        Dark,
        Danger,
        Success,
        Info,
        Accent,
        Field,
        FieldEdge,
        Paper
    };

    explicit RichTextStyle(double pixelsPerUnit = 1, bool isDark = true) : scale(pixelsPerUnit), dark(isDark)
    {
        constexpr struct
        {
            const char* face;
            double height;
            double line;
        } looks[] = { { "Regular", 11, 15 },  { "SemiBold", 11, 15 }, { "Italic", 11, 15 },
                      { "Regular", 10, 13 },  { "SemiBold", 12, 16 }, { "SemiBold", 13, 18 },
                      { "SemiBold", 15, 20 }, { "SemiBold", 18, 24 } };
        for (const auto& look : looks)
        {
            MFontDescriptor descriptor;
            descriptor.height = look.height * scale;
            descriptor.lineHeight = look.line * scale;
            fonts.push_back(std::make_unique<MFont>(Face(look.face), descriptor));
        }
        MakeTagSets();
        icon = Disc(14);
        largeIcon = Disc(40);
    }

    MColor GetColor(std::int32_t index) const override
    {
        constexpr std::uint32_t colors[][2] = { { 0xFFE9EBEE, 0xFF1A1D21 }, { 0xFF4FA866, 0xFF006000 },
                                                { 0xFFAEB5BD, 0xFF464C53 }, { 0xFFE9EBEE, 0xFF1A1D21 },
                                                { 0xFF8D959E, 0xFF545B62 }, { 0xFFFF6B70, 0xFFC4262E },
                                                { 0xFF2CE312, 0xFF128A00 }, { 0xFF7DB4FF, 0xFF1F5FBF },
                                                { 0xFFE7DE81, 0xFF2A2E33 }, { 0xFF101317, 0xFFFBFBF8 },
                                                { 0xFF2A3037, 0xFFC4C5BE }, { 0xFF1B1F24, 0xFFF1F1ED } };
        return MColor(colors[index][dark ? 0 : 1]);
    }
    MFont& GetFont(std::int32_t index) const override { return *fonts.at(static_cast<std::size_t>(index)); }
    std::int32_t GetSpacing(std::int32_t) const override { return 4; }
    double GetScale() const override { return scale; }

    const STMLTagSet* FindTagSet(const MString& name) const override
    {
        const auto found = tagSets.find(name.ToUTF8());
        return found != tagSets.end() ? &found->second : nullptr;
    }
    const MBitmap* FindIcon(const MString& name) const override
    {
        if (name.EqualsNoCase("None"))
            return &empty;
        return name.EqualsNoCase("Plus") ? &icon : nullptr;
    }
    const MBitmap* FindBitmap(const MString& name) const override
    {
        return name.EqualsNoCase("Logo") ? &largeIcon : nullptr;
    }
    std::optional<std::int32_t> FindColor(const MString& name) const override
    {
        if (name.EqualsNoCase("Red"))
            return Danger;
        return name.EqualsNoCase("Accent") ? std::optional<std::int32_t>(Accent) : std::nullopt;
    }
    std::optional<double> FindMetric(const MString& name) const override
    {
        return name.EqualsNoCase("MaxStdIconSizeX") ? std::optional<double>(20 * scale) : std::nullopt;
    }

    void SetDark(bool isDark) { dark = isDark; }

private:
    static std::shared_ptr<FontFace> Face(const std::string& name)
    {
        FontLibrary::Get();   // has to outlive the faces
        static std::map<std::string, std::shared_ptr<FontFace>> faces;
        std::shared_ptr<FontFace>& face = faces[name];
        if (face == nullptr)
        {
            const std::string path = "/usr/share/fonts/opentype/inter/Inter-" + name + ".otf";
            MStdFileStream file(MString::FromUTF8(path), MStdFileStream::ReadAccess);
            face = FontFace::Read(file);
        }
        return face;
    }

    void MakeTagSets()
    {
        STMLTagSet name;
        name.font = 1;
        name.color = Text1;
        STMLTagSet value = name;
        value.color = Accent;
        STMLTagSet key;
        key.field = STMLField{ .color = Field, .edgeColor = FieldEdge };
        STMLTagSet reference;
        reference.color = Text1;
        reference.underlined = true;
        STMLTagSet quiet;
        quiet.color = Text2;
        STMLTagSet faint = quiet;
        faint.alpha = 180;
        tagSets = { { "name", name },    { "value", value },         { "control", key },
                    { "shortcut", key }, { "reference", reference }, { "range", quiet },
                    { "symbol", quiet }, { "shortcutnop", quiet },   { "example", faint } };
    }

    MBitmap Disc(double units) const
    {
        const auto pixels = static_cast<std::int32_t>(units * scale + 0.5);
        MBitmap bitmap(pixels, pixels);
        MDrawerToMBitmap painter(bitmap);
        MDrawer& drawer = painter;
        const double middle = pixels / 2.0;
        drawer.FillCircle({ middle, middle }, middle, MColor(125, 180, 255), MColorOp::Overlay);
        return bitmap;
    }

    double scale;
    bool dark;
    std::vector<std::unique_ptr<MFont>> fonts;
    std::map<std::string, STMLTagSet> tagSets;
    MBitmap empty;
    MBitmap icon;
    MBitmap largeIcon;
};
