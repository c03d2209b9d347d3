// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/tree/MStorable.h"

#include "state/tree/MAttribute.h"

MString MStorable::GetText() const
{
    return {};
}

void MStorable::SetText(const MString&) {}

void MStorable::SetDefault() {}

void MStorable::Hold(MObject* object)
{
    held = object;
    kept.reset();
}

void MStorable::Keep(std::unique_ptr<MObject> object)
{
    held = object.get();
    kept = std::move(object);
}

void MStorable::Store(MAttribute& item)
{
    item.SetAttribute(Name, GetText());
}

void MStorable::Load(MAttribute& item)
{
    if (item.HasAttribute(Name))
        SetText(item.GetCachedAttribute());
    else
        SetDefault();
}
