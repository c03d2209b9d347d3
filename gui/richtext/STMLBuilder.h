// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

#include "gui/richtext/MSTMLContainer.h"
#include "gui/richtext/STMLAttributes.h"
#include "gui/richtext/STMLPiece.h"
#include "gui/richtext/STMLStack.h"

class MSTMLObject;
class MSTMLParagraph;
class MSTMLTableRow;

/// Builds a document out of its tags and texts, in the order in which they come. Throws MException for wrong
/// values, and "Invalid file contents. Elements are nested too deeply.".
class STMLBuilder
{
public:
    STMLBuilder(MSTMLContainer& document, const STMLOwner& textOwner);

    void OnTag(const MString& name, const MArray<MAttributePair>& attributes, bool isEnd);
    void OnText(const MString& text);

private:
    static constexpr std::size_t MostDepth = 64;   // of cells in cells

    using Handler = void (STMLBuilder::*)(const STMLAttributes& attributes, bool isEnd);
    struct Tag
    {
        const char* name;
        Handler handler;
    };
    struct Scope   // the document, or a cell
    {
        MSTMLContainer* container = nullptr;
        MSTMLTableRow* row = nullptr;   // that is open in it
        MSTMLParagraph* paragraph = nullptr;   // that runs
        STMLParagraphFormat defaults;   // of its paragraphs
        STMLParagraphFormat next;   // of one that begins by itself
    };
    struct OpenDecoration
    {
        std::shared_ptr<const STMLDecoration> decoration;
        bool hasBegun = false;
    };

    static const Tag tags[];

    bool OnFont(const MString& name, bool isEnd);
    bool OnColor(const MString& name, bool isEnd);
    bool OnAlignment(const MString& name, const STMLAttributes& attributes, bool isEnd);
    void OpenTagSet(const void* tag, const STMLTagSet& set);
    void CloseTagSet(const void* tag);

    void OnNamedSet(const STMLAttributes& attributes, bool isEnd);
    void OnNewPiece(const STMLAttributes& attributes, bool isEnd);
    void OnAlpha(const STMLAttributes& attributes, bool isEnd);
    void OnParagraph(const STMLAttributes& attributes, bool isEnd);
    void OnListItem(const STMLAttributes& attributes, bool isEnd);
    void OnRow(const STMLAttributes& attributes, bool isEnd);
    void OnCell(const STMLAttributes& attributes, bool isEnd);
    void OnImage(const STMLAttributes& attributes, bool isEnd);
    void OnLine(const STMLAttributes& attributes, bool isEnd);
    void OnRectangle(const STMLAttributes& attributes, bool isEnd);
    void OnIndicator(const STMLAttributes& attributes, bool isEnd);

    static void ReadParagraph(const STMLAttributes& attributes, STMLParagraphFormat& format);
    STMLObjectFormat ObjectFormat();
    STMLObjectFormat ReadObject(const STMLAttributes& attributes);
    STMLTextStyle Style() const;
    void StartParagraph(const STMLParagraphFormat& format);
    void EndParagraph();
    MSTMLParagraph& Paragraph();
    void BeginDecoration();
    void Add(std::unique_ptr<MSTMLObject> object);
    void OpenCell(const STMLAttributes& attributes);
    void CloseCell();

    const STMLOwner& owner;
    std::vector<Scope> scopes;
    STMLStack<std::int32_t> fonts{ 0 };
    STMLStack<std::int32_t> colors{ 0 };
    STMLStack<std::uint8_t> alphas{ 255 };
    STMLStack<STMLAlignment> alignments{ STMLAlignment::Left };
    STMLStack<std::shared_ptr<OpenDecoration>> decorations{ nullptr };
};
