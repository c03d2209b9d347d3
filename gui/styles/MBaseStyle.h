// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <iterator>
#include <map>
#include <span>
#include <string>

#include "gui/controls/MStyle.h"
#include "gui/styles/StyleDefinition.h"
#include "gui/styles/StyleFonts.h"
#include "gui/styles/StyleIcons.h"
#include "gui/styles/StyleSettings.h"
#include "gui/styles/StyleTint.h"

/// What a style has besides the images of the controls: settings, colours, fonts, sizes, icons, pictures,
/// cursors. All of it comes out of a definition and is made for one scale. Thread: GUI.
class MBaseStyle : public MStyle
{
public:
    struct Cursor
    {
        MBitmap image;
        MPoint hotSpot;
    };

    /// Everything anew, out of a definition. Throws MException for what the definition lacks or has wrong;
    /// the style is of no use then, make another one.
    /// @param configuration  whose settings go above the definition's; null: none
    virtual void Load(StyleDefinition& definition, const MAttribute* configuration);
    const StyleSettings& Settings() const { return settings; }

    MColor GetColor(std::int32_t index) const override;
    using MStyle::GetColor;
    MFont& GetFont(std::int32_t index) const override { return fonts.Get(index); }
    using MStyle::GetFont;
    /// 0 beyond the table.
    std::int32_t GetSpacing(std::int32_t index) const override;
    double GetScale() const override { return scale; }
    MSize GetMinimalSize(const MControl& control) const override;
    MSize GetDefaultSize(MControlType type) const override;
    void PaintIcon(MDrawer& drawer, const MRectangle& area, MStdIcon icon, MColor color) const override;
    MSize IconSize(MStdIcon icon) const override { return icons.SizeOf(icon); }
    const MBitmap* GetBitmap(MStdBitmap bitmap) const override;
    /// Of the definition's `bitmap` section. Names are compared without case.
    const MBitmap* FindBitmap(const MString& name) const override;
    /// As drawn for a scale up to 150 %, or for larger ones; null where the style has none.
    const Cursor* FindCursor(MStdCursor cursor) const;

    /// What of a control's contents is seen in a state.
    std::uint8_t AlphaOf(std::uint16_t state) const;
    /// How the contents are combined with what is behind.
    MColorOp ContentRendering() const { return settings.contentRendering; }

protected:
    /// Of main colours 0 to 3.
    std::span<const StyleTint> Tints() const { return tints; }

private:
    static constexpr std::size_t SizeCount = 27;
    using ControlSizes = std::array<MSize, std::size(MEnumLabels<MControlType>::Labels)>;

    void LoadSettings(const MAttribute& tree, const MAttribute* configuration);
    void LoadSizes(const MAttribute& tree);
    void LoadControlSizes(const MAttribute* section, ControlSizes& sizes) const;
    void LoadColors(const MAttribute& section);
    void LoadBitmaps(const MAttribute& section, StyleDefinition& definition);
    void LoadModuleBitmaps();
    void LoadCursors(const MAttribute& section, StyleDefinition& definition);

    StyleSettings settings;
    double scale = 1;
    std::array<StyleTint, StyleSettings::MainColorCount> tints{ StyleTint({}, {}), StyleTint({}, {}),
                                                                StyleTint({}, {}), StyleTint({}, {}) };
    std::array<MColor, std::size(MEnumLabels<MStdColor>::Labels)> colors{};
    std::array<std::int32_t, SizeCount> sizeTable{};
    ControlSizes defaultSizes{};
    ControlSizes minimalSizes{};
    StyleFonts fonts;
    StyleIcons icons;
    std::map<std::string, MBitmap> bitmaps;   // by name in small letters
    std::map<MStdCursor, Cursor> cursors;
};
