// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/richtext/MSTML.h"

#include <string>
#include <utility>

#include "gui/richtext/STMLBuilder.h"
#include "state/tree/XMLEntities.h"
#include "state/tree/XMLScanner.h"

MSTML::MSTML(const MDrawerOwner& style, const STMLResources& resources)
    : MSTMLContainer(owner), owner(style, resources)
{
}

MSTML::MSTML(const MSTML& other) : MSTMLContainer(other), owner(other.owner), source(other.source)
{
    MSTMLContainer::SetOwner(owner);
}

MSTML::~MSTML() = default;

std::unique_ptr<MSTMLItem> MSTML::Clone() const
{
    return std::unique_ptr<MSTML>(new MSTML(*this));
}

void MSTML::Parse(const MString& text)
{
    MSTMLContainer draft(owner);
    STMLBuilder made(draft, owner);
    const std::string bytes = text.ToUTF8();
    struct Parsing
    {
        ~Parsing() { builder = nullptr; }
        STMLBuilder*& builder;
    } parsing{ builder };
    builder = &made;
    XMLScanner(bytes, *this, MarkUp::RunningText).Scan();
    source = text;
    TakeItems(draft);
}

MString MSTML::Escaped(const MString& text)
{
    std::string escaped;
    for (const char character : text.ToUTF8())
    {
        const XMLEntity* entity = nullptr;
        for (const XMLEntity& known : XMLEntities)
            if (known.character == character)
                entity = &known;
        if (entity != nullptr)
            escaped += entity->text;
        else
            escaped += character;
    }
    return MString::FromUTF8(escaped);
}

void MSTML::OnTag(const MString& name, const MArray<MAttributePair>& attributes, bool isEnd)
{
    if (builder != nullptr)
        builder->OnTag(name, attributes, isEnd);
}

void MSTML::OnElement(const MString& name, const MArray<MAttributePair>& attributes, bool closing)
{
    OnTag(name, attributes, closing);
}

void MSTML::OnText(const MString& text)
{
    if (builder != nullptr)
        builder->OnText(text);
}

void MSTML::SetImages(std::vector<std::shared_ptr<const MBitmap>> images)
{
    owner.images = std::move(images);
    SetOwner(owner);
}

void MSTML::SetState(std::uint8_t alpha, std::optional<MColor> ink)
{
    owner.alpha = alpha;
    owner.ink = ink;
}

void MSTML::StyleChanged()
{
    owner.ForgetFonts();
    SetOwner(owner);
    Parse(MString(source));
}

void MSTML::Paint(MDrawer& drawer, const MRectangle& area)
{
    const MRectangle clip = drawer.GetClip();
    // Letters may reach a pixel over their place.
    const MRectangle seen = clip.Intersection(area.Inset(-1, 0));
    if (seen.IsEmpty())
        return;
    drawer.SetClip(seen);
    MSTMLContainer::Paint(drawer, area);
    drawer.SetClip(clip);
}
