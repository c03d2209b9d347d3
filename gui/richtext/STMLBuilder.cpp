// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/STMLBuilder.h"

#include <algorithm>
#include <utility>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "gui/richtext/MSTMLImage.h"
#include "gui/richtext/MSTMLIndicator.h"
#include "gui/richtext/MSTMLLine.h"
#include "gui/richtext/MSTMLParagraph.h"
#include "gui/richtext/MSTMLRectangle.h"
#include "gui/richtext/MSTMLTableRow.h"

namespace
{
struct NamedIndex
{
    const char* name;
    std::int32_t index;
};

constexpr NamedIndex fontTags[] = { { "b", 1 },  { "i", 2 },  { "s", 3 },  { "l1", 4 },
                                    { "l2", 5 }, { "l3", 6 }, { "l4", 7 }, { "normal", 0 } };
constexpr NamedIndex colorTags[] = { { "cd", 0 },    { "cred", 5 },   { "cgreen", 6 },
                                     { "cblue", 7 }, { "clight", 3 }, { "cdark", 4 } };
constexpr NamedIndex alignmentTags[] = { { "left", 0 }, { "center", 1 }, { "right", 2 }, { "justify", 3 } };

template <std::size_t Count>
const NamedIndex* FindIn(const NamedIndex (&names)[Count], const MString& name)
{
    const auto* found =
        std::find_if(std::begin(names), std::end(names),
                     [&name](const NamedIndex& known) { return name == MString::Literal(known.name); });
    return found != std::end(names) ? found : nullptr;
}

bool IsBlank(const MString& text)
{
    for (int index = 0; index < text.Length(); ++index)
        if (text[index] != u' ')
            return false;
    return true;
}
}   // namespace

const STMLBuilder::Tag STMLBuilder::tags[] = {
    { "ci", &STMLBuilder::OnNewPiece },
    { "alpha", &STMLBuilder::OnAlpha },
    { "p", &STMLBuilder::OnParagraph },
    { "tr", &STMLBuilder::OnRow },
    { "td", &STMLBuilder::OnCell },
    { "img", &STMLBuilder::OnImage },
    { "hline", &STMLBuilder::OnLine },
    { "rectangle", &STMLBuilder::OnRectangle },
    { "indicator", &STMLBuilder::OnIndicator },
    { "li", &STMLBuilder::OnListItem },
    { "tagset", &STMLBuilder::OnNamedSet },
};

STMLBuilder::STMLBuilder(MSTMLContainer& document, const STMLOwner& textOwner) : owner(textOwner)
{
    scopes.emplace_back().container = &document;
}

void STMLBuilder::OnTag(const MString& name, const MArray<MAttributePair>& attributes, bool isEnd)
{
    const STMLAttributes read(attributes, owner.Resources());
    if (OnFont(name, isEnd) || OnColor(name, isEnd) || OnAlignment(name, read, isEnd))
        return;
    for (const Tag& tag : tags)
        if (name == MString::Literal(tag.name))
            return (this->*tag.handler)(read, isEnd);
    const STMLTagSet* set = owner.Resources().FindTagSet(name);
    if (set != nullptr && isEnd)
        CloseTagSet(set);
    else if (set != nullptr)
        OpenTagSet(set, *set);
}

void STMLBuilder::OnText(const MString& text)
{
    if (scopes.back().paragraph == nullptr && IsBlank(text))
        return;
    MSTMLParagraph& paragraph = Paragraph();
    if (!IsBlank(text))
        BeginDecoration();
    paragraph.AddText(text, Style());
}

bool STMLBuilder::OnFont(const MString& name, bool isEnd)
{
    const NamedIndex* tag = FindIn(fontTags, name);
    if (tag == nullptr)
        return false;
    if (isEnd)
        fonts.Pop(tag);
    else
        fonts.Push(tag, tag->index);
    return true;
}

bool STMLBuilder::OnColor(const MString& name, bool isEnd)
{
    const NamedIndex* tag = FindIn(colorTags, name);
    if (tag == nullptr)
        return false;
    if (isEnd)
        colors.Pop(tag);
    else
        colors.Push(tag, tag->index);
    return true;
}

/// A paragraph has one alignment: a tag behind its text begins the next one.
bool STMLBuilder::OnAlignment(const MString& name, const STMLAttributes& attributes, bool isEnd)
{
    const NamedIndex* tag = FindIn(alignmentTags, name);
    if (tag == nullptr)
        return false;
    if (isEnd && !alignments.Pop(tag))
        return true;
    if (!isEnd)
        alignments.Push(tag, static_cast<STMLAlignment>(tag->index));
    Scope& scope = scopes.back();
    if (scope.paragraph != nullptr && !scope.paragraph->IsEmpty())
        EndParagraph();
    STMLParagraphFormat format = scope.paragraph != nullptr ? scope.paragraph->Format() : scope.next;
    format.alignment = alignments.Top();
    ReadParagraph(attributes, format);
    if (scope.paragraph != nullptr)
        scope.paragraph->SetFormat(format);
    else
        scope.next = format;
    return true;
}

void STMLBuilder::OpenTagSet(const void* tag, const STMLTagSet& set)
{
    fonts.Push(tag, set.font.value_or(fonts.Top()));
    colors.Push(tag, set.color.value_or(colors.Top()));
    alphas.Push(tag, set.alpha.value_or(alphas.Top()));
    std::shared_ptr<OpenDecoration> decoration = decorations.Top();
    if (set.field || set.underlined)
    {
        decoration = std::make_shared<OpenDecoration>();
        decoration->decoration = std::make_shared<const STMLDecoration>(
            STMLDecoration{ .field = set.field, .underlined = set.underlined });
    }
    decorations.Push(tag, std::move(decoration));
}

void STMLBuilder::CloseTagSet(const void* tag)
{
    const std::shared_ptr<OpenDecoration> closed = decorations.Top();
    const STMLTextStyle style = Style();
    if (!decorations.Pop(tag))
        return;
    fonts.Pop(tag);
    colors.Pop(tag);
    alphas.Pop(tag);
    if (closed != decorations.Top() && closed->hasBegun && closed->decoration->field &&
        scopes.back().paragraph != nullptr)
        scopes.back().paragraph->AddPadding(style);
}

void STMLBuilder::OnNamedSet(const STMLAttributes& attributes, bool isEnd)
{
    static constexpr char tag = 0;
    if (isEnd)
        return CloseTagSet(&tag);
    if (!attributes.Has("name"))
        throw MException(Format("Could not find required attribute ({0}).", "name"));
    MString name;
    attributes.Read("name", name);
    const STMLTagSet* set = owner.Resources().FindTagSet(name);
    OpenTagSet(&tag, set != nullptr ? *set : STMLTagSet{});
}

void STMLBuilder::OnNewPiece(const STMLAttributes&, bool isEnd)
{
    if (!isEnd && scopes.back().paragraph != nullptr)
        scopes.back().paragraph->EndPiece();
}

void STMLBuilder::OnAlpha(const STMLAttributes& attributes, bool isEnd)
{
    static constexpr char tag = 0;
    std::uint8_t alpha = alphas.Top();
    attributes.Read("value", alpha);
    if (isEnd)
        alphas.Pop(&tag);
    else
        alphas.Push(&tag, alpha);
}

void STMLBuilder::OnParagraph(const STMLAttributes& attributes, bool isEnd)
{
    if (isEnd)
        return;   // the next one ends it
    EndParagraph();
    STMLParagraphFormat format = scopes.back().next;
    ReadParagraph(attributes, format);
    StartParagraph(format);
}

void STMLBuilder::OnListItem(const STMLAttributes& attributes, bool isEnd)
{
    const MSTMLParagraph* running = scopes.back().paragraph;
    if (isEnd && (running == nullptr || running->Format().bulletSize <= 0))
        return;
    EndParagraph();
    if (isEnd)
        return;
    STMLParagraphFormat format = scopes.back().next;
    format.bulletSize = 4;
    attributes.ReadUnits("size", format.bulletSize);
    ReadParagraph(attributes, format);
    StartParagraph(format);
}

void STMLBuilder::OnRow(const STMLAttributes& attributes, bool isEnd)
{
    if (isEnd && scopes.back().row == nullptr)
    {
        if (scopes.size() < 2)
            return;
        CloseCell();
    }
    EndParagraph();
    scopes.back().row = nullptr;
    if (isEnd)
        return;
    STMLRowFormat format;
    attributes.Read("height", format.height);
    attributes.ReadUnits("padding", format.padding);
    attributes.ReadUnits("cellspaces", format.cellSpaces);
    attributes.ReadUnits("border", format.border);
    attributes.Read("borderalpha", format.borderAlpha);
    scopes.back().row = &scopes.back().container->Add(std::make_unique<MSTMLTableRow>(owner, format));
}

void STMLBuilder::OnCell(const STMLAttributes& attributes, bool isEnd)
{
    // A cell that wasn't closed ends where the next one of its row begins.
    if (isEnd || scopes.back().row == nullptr)
    {
        if (scopes.size() < 2)
            return;
        CloseCell();
    }
    if (!isEnd)
        OpenCell(attributes);
}

void STMLBuilder::OpenCell(const STMLAttributes& attributes)
{
    if (scopes.size() > MostDepth)
        throw MException("Invalid file contents. Elements are nested too deeply.", MErrorCode::Content);
    EndParagraph();
    MSTMLTableRow& row = *scopes.back().row;
    STMLCellFormat format;
    format.padding = row.Format().padding;
    attributes.Read("width", format.width);
    std::optional<STMLFit> down;
    attributes.ReadDown("valign", down);
    if (down && *down != STMLFit::Stretch)
        format.down = static_cast<MPlacement>(*down);
    attributes.ReadUnits("padding", format.padding);
    attributes.Read("autosize", format.autoSize);
    attributes.ReadUnits("border", format.border);
    attributes.Read("borderalpha", format.borderAlpha);

    Scope scope;
    scope.defaults = scopes.back().defaults;
    ReadParagraph(attributes, scope.defaults);
    // The cell itself is filled, with what lies around its paragraphs.
    format.fill = std::exchange(scope.defaults.fill, std::nullopt);
    format.fillAlpha = std::exchange(scope.defaults.fillAlpha, std::nullopt);
    scope.defaults.alignment = alignments.Top();
    scope.next = scope.defaults;
    scope.container = &row.AddCell(std::make_unique<MSTMLTableCell>(owner, std::move(format)));
    scopes.push_back(scope);
    fonts.OpenScope();
    colors.OpenScope();
    alphas.OpenScope();
    alignments.OpenScope();
    decorations.OpenScope();
}

void STMLBuilder::CloseCell()
{
    scopes.pop_back();
    fonts.CloseScope();
    colors.CloseScope();
    alphas.CloseScope();
    alignments.CloseScope();
    decorations.CloseScope();
}

void STMLBuilder::OnImage(const STMLAttributes& attributes, bool isEnd)
{
    if (isEnd)
        return;
    STMLPictureName name;
    if (attributes.Has("number"))
        attributes.Read("number", name.number);
    else if (attributes.Has("icon"))
    {
        name.source = STMLPictureName::Source::Icon;
        attributes.Read("icon", name.name);
        if (owner.Resources().FindIcon(name.name) == nullptr)
            ThrowInvalidName("MStdIcon", name.name);
    }
    else if (attributes.Has("bitmap"))
    {
        name.source = STMLPictureName::Source::Bitmap;
        attributes.Read("bitmap", name.name);
        if (owner.Resources().FindBitmap(name.name) == nullptr)
            ThrowInvalidName("MStdBitmap", name.name);
    }
    else
        throw MException(Format("Could not find required attribute ({0}).", "number"));
    Add(std::make_unique<MSTMLImage>(owner, ReadObject(attributes), std::move(name)));
}

void STMLBuilder::OnLine(const STMLAttributes& attributes, bool isEnd)
{
    if (isEnd)
        return;
    STMLLineFormat format;
    attributes.ReadUnits("size", format.size);
    attributes.Read("color", format.color);
    if (format.color)
        format.alpha = 255;
    attributes.Read("alpha", format.alpha);
    attributes.ReadUnits("hspace", format.acrossSpace);
    attributes.ReadUnits("vspace", format.downSpace);
    Add(std::make_unique<MSTMLLine>(owner, ObjectFormat(), format));
}

void STMLBuilder::OnRectangle(const STMLAttributes& attributes, bool isEnd)
{
    if (isEnd)
        return;
    std::optional<STMLColor> color;
    std::optional<STMLColor> borderColor;
    attributes.Read("color", color);
    attributes.Read("bordercolor", borderColor);
    Add(std::make_unique<MSTMLRectangle>(owner, ReadObject(attributes), color, borderColor));
}

void STMLBuilder::OnIndicator(const STMLAttributes& attributes, bool isEnd)
{
    if (isEnd)
        return;
    STMLIndicatorFormat format;
    attributes.Read("color", format.color);
    attributes.Read("bordercolor", format.borderColor);
    attributes.ReadShare("value", format.value);
    attributes.ReadShare("middle", format.middle);
    Add(std::make_unique<MSTMLIndicator>(owner, ReadObject(attributes), format));
}

void STMLBuilder::ReadParagraph(const STMLAttributes& attributes, STMLParagraphFormat& format)
{
    attributes.Read("singleline", format.singleLine);
    attributes.Read("invert", format.followsInk);
    attributes.Read("fill", format.fill);
    attributes.Read("fillalpha", format.fillAlpha);
}

STMLObjectFormat STMLBuilder::ObjectFormat()
{
    STMLObjectFormat format;
    format.style = Style();
    format.followsInk = Paragraph().Format().followsInk;
    return format;
}

STMLObjectFormat STMLBuilder::ReadObject(const STMLAttributes& attributes)
{
    STMLObjectFormat format = ObjectFormat();
    attributes.Read("width", format.width);
    attributes.Read("height", format.height);
    attributes.ReadAcross("align", format.across);
    attributes.ReadDown("valign", format.down);
    return format;
}

STMLTextStyle STMLBuilder::Style() const
{
    const std::shared_ptr<OpenDecoration>& open = decorations.Top();
    return { .font = fonts.Top(),
             .color = colors.Top(),
             .alpha = alphas.Top(),
             .decoration = open != nullptr ? open->decoration : nullptr };
}

void STMLBuilder::StartParagraph(const STMLParagraphFormat& format)
{
    scopes.back().paragraph =
        &scopes.back().container->Add(std::make_unique<MSTMLParagraph>(owner, format, Style()));
}

void STMLBuilder::EndParagraph()
{
    Scope& scope = scopes.back();
    scope.paragraph = nullptr;
    scope.next = scope.defaults;
    scope.next.alignment = alignments.Top();
}

/// The one that runs, or one that begins here by itself.
MSTMLParagraph& STMLBuilder::Paragraph()
{
    if (scopes.back().paragraph == nullptr)
        StartParagraph(scopes.back().next);
    return *scopes.back().paragraph;
}

/// A field begins with its first content: one without any leaves nothing.
void STMLBuilder::BeginDecoration()
{
    const std::shared_ptr<OpenDecoration>& open = decorations.Top();
    if (open == nullptr || open->hasBegun)
        return;
    open->hasBegun = true;
    if (open->decoration->field)
        Paragraph().AddPadding(Style());
}

void STMLBuilder::Add(std::unique_ptr<MSTMLObject> object)
{
    Paragraph();
    BeginDecoration();
    Paragraph().AddObject(std::move(object));
}
