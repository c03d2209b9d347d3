// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>

#include "gui/controls/DrawState.h"
#include "gui/styles/NineSlice.h"
#include "gui/styles/StyleDefinition.h"
#include "gui/styles/StyleTint.h"

/// The images that a section may name. Those up to Target are a face's states.
enum class StyleImage : std::uint8_t
{
    Image,   ///< at rest
    Hover,
    Pressed,
    Focused,
    Grayed,   ///< disabled
    On,
    OnHover,
    OnPressed,
    OnGrayed,
    Primary,
    PrimaryHover,
    PrimaryPressed,
    Learning,
    LearningLamp,   ///< above Learning
    Source,
    Target,
    Framed,   ///< of a window that draws its own frame
    Partly,   ///< of a box that is neither on nor off
    PartlyHover,
    PartlyGrayed,
    Fill,
    Thumb,
    ThumbHover,
    LyingThumb,   ///< of an upright slider
    LyingThumbHover,
    SelectedItem,
    HoverItem,
    Mark,   ///< at the start of a chosen item
    VImage,
    HImage,
    IconOn,
    IconOff,
    IconGrayed,
    Count
};

/// Reads the images of all sections, each once. Thread: GUI.
class StyleImageLoader
{
public:
    StyleImageLoader(StyleDefinition& source, double usedScale, std::span<const StyleTint> mainTints)
        : definition(source), scale(usedScale), tints(mainTints)
    {
    }

    /// @param mainColor  that it follows; -1: none
    /// @param cap        see NineSlice, in units
    std::shared_ptr<const NineSlice> Load(const MString& id, int mainColor, double cap);

private:
    StyleDefinition& definition;
    double scale;
    std::span<const StyleTint> tints;
    std::unordered_map<std::string, std::shared_ptr<const NineSlice>> loaded;
};

/// One kind of control in a style: its images in all states. A section's attributes are the images by their
/// keys, "KEYtint" for the main colour that an image follows, `cap` and `itemcap` for the ends that don't
/// stretch.
class StyleSection
{
public:
    /// Throws MException for images that aren't there or can't be read.
    void Load(const MAttribute& item, StyleImageLoader& loader);

    /// Null where there is none.
    const NineSlice* Find(StyleImage image) const { return images[static_cast<std::size_t>(image)].get(); }
    /// The first of them that there is; null if none is.
    const NineSlice* FirstOf(std::initializer_list<StyleImage> wanted) const;
    /// The face for bits of DrawState; null where there is none.
    const NineSlice* Face(std::uint16_t state) const;

private:
    std::array<std::shared_ptr<const NineSlice>, static_cast<std::size_t>(StyleImage::Count)> images;
};
