// SPDX-License-Identifier: GPL-3.0-or-later
// What a window remembers from one opening to the next.
#include "foundation/text/MStringFormat.h"
#include "gui/controls/MWindow.h"
#include "gui/controls/MWindows.h"
#include "state/tree/StoredNode.h"

namespace
{
constexpr std::int32_t LargestPlace = 32767;   // of windows on any desktop

template <typename Visit>
void EachBelow(MControl& control, const Visit& visit)
{
    for (const auto& child : control.Children())
    {
        visit(*child);
        EachBelow(*child, visit);
    }
}

/// A control's own part, under its id.
void StoreControl(MControl& control, MAttribute& parent, bool saving)
{
    if (control.id.IsEmpty() || (!control.savesState && !control.savesRatio))
        return;
    MAttribute* item = parent.FindSubItem("control", "id", control.id);
    if (item == nullptr && !saving)
        return;
    if (item == nullptr)
    {
        item = &parent.AddSubItem("control");
        item->SetAttribute("id", control.id);
    }
    MStoreParams params;
    params.item = item;
    params.saving = saving ? 1 : 0;
    StoredNode node(params);
    if (control.savesState)
    {
        bool collapsed = control.IsCollapsed();
        node.Always("collapsed", collapsed);
        control.SetCollapsed(collapsed);
    }
    if (control.savesRatio)
    {
        node.Always("layoutratiox", control.layout.x.ratio, { 0, LargestPlace });
        node.Always("layoutratioy", control.layout.y.ratio, { 0, LargestPlace });
    }
}
}   // namespace

void MWindow::SaveState(MAttribute& node)
{
    MStoreParams params;
    params.item = &node;
    params.saving = 1;
    StoredNode stored(params);
    MWindowSystem* platform = open ? &MWindows::Get()->Platform() : nullptr;
    bool maximized = platform != nullptr && platform->IsMaximized(*this);
    if (savesSize)
        stored.Always("maximized", maximized);
    const MRectangle bounds = platform != nullptr ? platform->GetScreenRect(*this)
                                                  : MRectangle::OfSize(X(), Y(), Width(), Height());
    MPoint corner{ bounds.left, bounds.top };
    MSize size{ Width(), Height() };
    if (savesPosition && !maximized)
    {
        stored.Always("windowposx", corner.x);
        stored.Always("windowposy", corner.y);
    }
    if (savesSize && !maximized)
    {
        stored.Always("windowsizex", size.width);
        stored.Always("windowsizey", size.height);
    }
    EachBelow(*this, [&node](MControl& each) { StoreControl(each, node, true); });
}

void MWindow::LoadState(MAttribute& node)
{
    MStoreParams params;
    params.item = &node;
    params.saving = 0;
    StoredNode stored(params);
    EachBelow(*this, [&node](MControl& each) { StoreControl(each, node, false); });
    MPoint corner{ X(), Y() };
    MSize size{ Width(), Height() };
    const StoredRange<std::int32_t> places{ -LargestPlace, LargestPlace };
    if (savesPosition)
    {
        stored.Always("windowposx", corner.x, places);
        stored.Always("windowposy", corner.y, places);
        SetPosition(corner.x, corner.y);
    }
    if (savesSize)
    {
        stored.Always("windowsizex", size.width, places);
        stored.Always("windowsizey", size.height, places);
        SetSize(size.width, size.height);
    }
}
