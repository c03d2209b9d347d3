// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/loader/MXmlLoader.h"

#include <algorithm>

#include "foundation/text/MException.h"
#include "gui/controls/MLayoutClient.h"
#include "gui/controls/MLayoutCorner.h"
#include "gui/controls/MLayoutGrid.h"
#include "gui/controls/MLayoutOccupyBorder.h"
#include "gui/controls/MLayoutSide.h"
#include "gui/controls/MLayoutSwitch.h"
#include "gui/controls/MPanel.h"

namespace
{
// Deeper than any document that somebody drew; what is hostile ends in a message instead of the stack's end.
constexpr std::int32_t DeepestNesting = 200;

template <typename Table>
auto PlaceOf(Table& table, const MString& name)
{
    return std::lower_bound(table.begin(), table.end(), name,
                            [](const auto& entry, const MString& wanted)
                            { return MString::CompareNoCase(entry->name, wanted) < 0; });
}

template <typename Table>
void InsertByName(Table& table, typename Table::value_type entry)
{
    const auto place = PlaceOf(table, entry->name);
    if (place != table.end() && (*place)->name.EqualsNoCase(entry->name))
        *place = std::move(entry);
    else
        table.insert(place, std::move(entry));
}

/// Null where there is none of that name.
template <typename Table>
auto Find(const Table& table, const MString& name)
{
    const auto place = PlaceOf(table, name);
    return place != table.end() && (*place)->name.EqualsNoCase(name) ? place->get() : nullptr;
}
}   // namespace

MXmlLoader& MXmlLoader::Get()
{
    static MXmlLoader loader;
    return loader;
}

MXmlLoader::MXmlLoader()
{
    AddLayout<MLayoutGrid>("grid");
    AddLayout<MLayoutTop>("top");
    AddLayout<MLayoutLeft>("left");
    AddLayout<MLayoutRight>("right");
    AddLayout<MLayoutBottom>("bottom");
    AddLayout<MLayoutCorner>("corner");
    AddLayout<MLayoutVertical>("vertical");
    AddLayout<MLayoutHorizontal>("horizontal");
    AddLayout<MLayoutSwitch>("overlay");
    AddLayout<MLayoutOccupyBorder>("occupyborder");
    AddControl<MControl>("control");
    AddControl<MPanel>("panel");
    AddControl<MContainer>("container");
    AddValues();
}

void MXmlLoader::Insert(std::unique_ptr<Creator> creator)
{
    InsertByName(creators, std::move(creator));
}

void MXmlLoader::Insert(std::unique_ptr<ValueCreator> creator)
{
    InsertByName(valueCreators, std::move(creator));
}

void MXmlLoader::Load(MControl& control, const MAttribute& node)
{
    if (depth >= DeepestNesting)
        throw MException("The layout is nested too deeply.");
    ++depth;
    try
    {
        control.LoadXml(node);
        CreateChildren(control, node, false);
        control.OnLoaded();
    }
    catch (...)
    {
        --depth;
        throw;
    }
    --depth;
}

void MXmlLoader::CreateChildren(MControl& parent, const MAttribute& node, bool addToLayout)
{
    for (int i = 0; i < node.SubItemCount(); ++i)
    {
        const MAttribute& element = node.SubItemAt(i);
        if (const Creator* creator = Find(creators, element.Name()))
            creator->Create(*this, parent, element, addToLayout);
    }
}

void MXmlLoader::Fill(MControl& parent, MLayout& layout, const MAttribute& node)
{
    layout.LoadXml(node);
    // What stands in a layout's element belongs to the same control: layouts own none.
    CreateChildren(parent, node, true);
}

void MXmlLoader::Place(MControl& parent, MControl& control, const MAttribute& node, bool addToLayout)
{
    Load(control, node);
    if (!addToLayout || parent.Layouts().empty())
        return;
    MLayout& layout = *parent.Layouts().back();
    layout.AddControl(control);
    layout.AddChildXml(control, node);
}

std::unique_ptr<MValue> MXmlLoader::CreateValue(const MAttribute& node) const
{
    const MString* type = node.FindAttribute("type");
    const ValueCreator* creator = type != nullptr ? Find(valueCreators, *type) : nullptr;
    if (creator == nullptr)
        return nullptr;
    std::unique_ptr<MValue> value = creator->Create();
    MAttribute definition;   // looking up leaves a trace in it
    definition.CopyFrom(node);
    value->LoadDefinition(definition);
    return value;
}
