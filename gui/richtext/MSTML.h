// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

#include "gui/richtext/MSTMLContainer.h"
#include "state/tree/MMLParser.h"

class STMLBuilder;

/// A marked-up text: parsed once, laid out for a width, painted. The documents of the program use it for
/// help, messages, captions and the lines of lists. Lengths in it are units at 100 %, colours are names or
/// eight hexadecimal digits, red first.
///
/// Tags: b i s l1 l2 l3 l4 normal (fonts), cd cred cgreen cblue clight cdark (colours), alpha, left center
/// right justify, p, li, tr, td, img, hline, rectangle, indicator, ci, tagset, and the style's tag sets.
/// Names are exact. Unknown tags show their text; an end tag without a start does nothing. Thread: GUI.
class MSTML : public MSTMLContainer, public MTreeParser
{
public:
    /// Both have to outlive it.
    MSTML(const MDrawerOwner& style, const STMLResources& resources);
    ~MSTML() override;

    /// Throws MException "Invalid file contents. ..." with the detail, "Could not find required attribute
    /// ({0}).", and "Invalid {0} identifier to parse ({1})." for a name that the style doesn't have; the
    /// document is then as it was.
    void Parse(const MString& text);
    const MString& Text() const { return source; }
    /// A text in which nothing is mark-up, its line feeds included.
    static MString Escaped(const MString& text);

    /// What "img number=0" and so on show, in pixels of the present scale.
    void SetImages(std::vector<std::shared_ptr<const MBitmap>> images);
    /// How it is painted from now on: with an alpha on everything, and with what colour 0 becomes in
    /// paragraphs that say invert=1, as the caption of a button that is on.
    void SetState(std::uint8_t alpha, std::optional<MColor> ink = std::nullopt);
    /// Fonts, tag sets, pictures or scale are others now. Throws as Parse does.
    void StyleChanged();

    std::unique_ptr<MSTMLItem> Clone() const override;
    /// Nothing is painted outside of the area. Rows that want a share of the height get it of the area's.
    void Paint(MDrawer& drawer, const MRectangle& area) override;

    void OnTag(const MString& name, const MArray<MAttributePair>& attributes, bool isEnd);

private:
    MSTML(const MSTML& other);

    void OnElement(const MString& name, const MArray<MAttributePair>& attributes, bool closing) override;
    void OnText(const MString& text) override;

    STMLOwner owner;
    MString source;
    STMLBuilder* builder = nullptr;   // while it parses
};
