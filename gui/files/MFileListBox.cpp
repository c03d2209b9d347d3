// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/files/MFileListBox.h"

#include <algorithm>
#include <utility>

#include "foundation/streams/MFile.h"
#include "foundation/text/MException.h"
#include "gui/controls/XmlAttributes.h"
#include "gui/fields/WidgetText.h"
#include "gui/files/FilePaths.h"

namespace
{
constexpr double HeadUnits = 22;
constexpr double PaddingUnits = 8;
constexpr double IconGapUnits = 6;
constexpr double SizeUnits = 62;
constexpr double DateUnits = 124;
constexpr double LeastNameUnits = 130;   // before the other columns leave

constexpr const char* titles[MFileListBox::ColumnCount] = { "Name", "Size", "Changed" };
}   // namespace

MFileListBox::MFileListBox()
{
    OnActivate().AddHandler<&MFileListBox::OnActivated>(*this);
}

void MFileListBox::LoadXml(const MAttribute& node)
{
    MListBox::LoadXml(node);
    const XmlAttributes attributes(node);
    attributes.Read("filter", patterns);
    attributes.Read("showhidden", showsHidden);
    attributes.Read("foldersonly", foldersOnly);
    if (MString path; attributes.Read("path", path))
        SetFolder(FilePaths::Resolved(path, "/"));
}

void MFileListBox::SetFolder(const MString& path)
{
    folder = path;
    currentEntry = -1;
    entries.clear();
    rows.clear();
    readable = false;
    try
    {
        entries = ReadFolder(folder);
        readable = true;
    }
    catch (const MException&)
    {
        // ShowEmptyText tells.
    }
    List();
}

void MFileListBox::Refresh()
{
    TakeChosen();
    std::vector<MString> chosen;
    for (const FolderEntry& each : entries)
        if (each.chosen)
            chosen.push_back(each.name);
    const MString currentName =
        currentEntry >= 0 ? entries[static_cast<std::size_t>(currentEntry)].name : MString();
    SetFolder(folder);
    // Both are in the order of reading.
    auto next = chosen.begin();
    for (std::size_t i = 0; i < entries.size(); ++i)
    {
        if (next != chosen.end() && entries[i].name == *next)
        {
            entries[i].chosen = true;
            ++next;
        }
        if (entries[i].name == currentName)
            currentEntry = static_cast<std::int32_t>(i);
    }
    List();
}

void MFileListBox::Enter(const MString& path)
{
    SetFolder(path);
    Tell(folderChanged);
}

void MFileListBox::GoUp()
{
    if (folder == "/" || folder.IsEmpty())
        return;
    const MString left = FilePaths::NameOf(folder);
    SetFolder(FilePaths::Parent(folder));
    ChooseName(left);
    Tell(folderChanged);
}

void MFileListBox::SetPatterns(const MString& newPatterns)
{
    TakeChosen();
    patterns = newPatterns;
    List();
}

void MFileListBox::SetShowsHidden(bool shows)
{
    TakeChosen();
    showsHidden = shows;
    List();
}

void MFileListBox::SetFoldersOnly(bool only)
{
    TakeChosen();
    foldersOnly = only;
    List();
}

void MFileListBox::SortBy(Column newColumn, bool nowDescending)
{
    TakeChosen();
    column = newColumn;
    descending = nowDescending;
    List();
}

void MFileListBox::TakeChosen()
{
    for (std::size_t i = 0; i < std::min(rows.size(), Items().size()); ++i)
        entries[static_cast<std::size_t>(rows[i])].chosen = Items()[i].selected;
    currentEntry = EntryAt(Current()) != nullptr ? rows[static_cast<std::size_t>(Current())] : -1;
}

bool MFileListBox::IsListed(const FolderEntry& entry) const
{
    if (entry.IsHidden() && !showsHidden)
        return false;
    return entry.isFolder || (!foldersOnly && MFile::MatchesPatterns(entry.name, patterns));
}

void MFileListBox::SortRows()
{
    const auto order = [this](std::int32_t inA, std::int32_t inB)
    {
        const FolderEntry& a = entries[static_cast<std::size_t>(inA)];
        const FolderEntry& b = entries[static_cast<std::size_t>(inB)];
        if (a.isFolder != b.isFolder)
            return a.isFolder;
        // Folders have no size.
        const std::int64_t byColumn = column == Column::Size   ? a.size - b.size
                                      : column == Column::Date ? a.writeTime - b.writeTime
                                                               : CompareFileNames(a.name, b.name);
        if (byColumn != 0)
            return descending ? byColumn > 0 : byColumn < 0;
        const int byName = CompareFileNames(a.name, b.name);
        return byName != 0 ? byName < 0 : inA < inB;
    };
    std::sort(rows.begin(), rows.end(), order);
}

void MFileListBox::List()
{
    rows.clear();
    for (std::size_t i = 0; i < entries.size(); ++i)
    {
        if (IsListed(entries[i]))
            rows.push_back(static_cast<std::int32_t>(i));
        else
            entries[i].chosen = false;
    }
    SortRows();
    std::vector<MListItem> lines(rows.size());
    std::int32_t currentRow = -1;
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        const FolderEntry& entry = entries[static_cast<std::size_t>(rows[i])];
        lines[i].text = entry.name;
        lines[i].icon = entry.isFolder ? MStdIcon::Folder : MStdIcon::File;
        lines[i].selected = entry.chosen;
        if (rows[i] == currentEntry)
            currentRow = static_cast<std::int32_t>(i);
    }
    ShowEmptyText();
    SetItems(std::move(lines), currentRow);
}

void MFileListBox::ShowEmptyText()
{
    if (!readable)
        emptyText = MFile::Exists(folder) ? "This folder cannot be read." : "This folder does not exist.";
    else if (foldersOnly)
        emptyText = "No folders in this folder.";
    else
        emptyText = entries.empty() ? "No files in this folder." : "No such files in this folder.";
}

const FolderEntry* MFileListBox::EntryAt(std::int32_t row) const
{
    return row >= 0 && row < static_cast<std::int32_t>(rows.size())
               ? &entries[static_cast<std::size_t>(rows[static_cast<std::size_t>(row)])]
               : nullptr;
}

std::vector<const FolderEntry*> MFileListBox::Chosen() const
{
    std::vector<const FolderEntry*> chosen;
    for (std::int32_t i = 0; i < Count(); ++i)
        if (Items()[static_cast<std::size_t>(i)].selected)
            chosen.push_back(EntryAt(i));
    return chosen;
}

bool MFileListBox::ChooseName(const MString& name)
{
    for (std::int32_t i = 0; i < Count(); ++i)
        if (EntryAt(i)->name == name)
        {
            SetCurrent(i);
            return true;
        }
    return false;
}

void MFileListBox::Tell(MEvent<MOnNotifyParams>& event)
{
    MOnNotifyParams params;
    params.source = this;
    event.Post(GlobalEventProcessor(), params);
}

void MFileListBox::OnActivated(const MOnItemParams<std::int32_t>& params)
{
    const FolderEntry* entry = EntryAt(params.item);
    if (entry == nullptr)
        return;
    if (entry->isFolder)
        Enter(FilePaths::Join(folder, entry->name));
    else
        Tell(fileActivated);
}

void MFileListBox::SortByUser(Column wanted)
{
    // The newest and the largest are asked for first.
    SortBy(wanted, wanted == column ? !descending : wanted != Column::Name);
}

std::int32_t MFileListBox::HeadHeight() const
{
    return Style() != nullptr ? Style()->Pixels(HeadUnits) : 0;
}

MRectangle MFileListBox::ColumnArea(Column wanted, const MRectangle& row) const
{
    const MStyle& style = *Style();
    const std::int32_t padding = style.Pixels(PaddingUnits);
    const std::int32_t least = style.Pixels(LeastNameUnits);
    const std::int32_t room = row.Width() - 2 * padding - least;
    const std::int32_t size = style.Pixels(SizeUnits) <= room ? style.Pixels(SizeUnits) : 0;
    const std::int32_t date = size + style.Pixels(DateUnits) <= room ? style.Pixels(DateUnits) : 0;
    const std::int32_t end = row.right - padding;
    if (wanted == Column::Date)
        return { end - date + 1, row.top, end, row.bottom };
    if (wanted == Column::Size)
        return { end - date - size + 1, row.top, end - date, row.bottom };
    return { row.left + padding, row.top, end - date - size, row.bottom };
}

void MFileListBox::PaintItem(MDrawer& drawer, const MRectangle& area, std::int32_t index, std::uint16_t state)
{
    MStyle& style = *Style();
    const FolderEntry& entry = *EntryAt(index);
    const bool usable = (state & DrawEnabled) != 0;
    const MStdIcon icon = entry.isFolder ? MStdIcon::Folder : MStdIcon::File;
    MRectangle name = ColumnArea(Column::Name, area);
    const std::int32_t wide = style.IconSize(icon).width;
    style.PaintIcon(drawer, { name.left, name.top, name.left + wide - 1, name.bottom }, icon,
                    style.GetColor(usable ? MStdColor::Icon : MStdColor::TextDisabled));
    name.left += wide + style.Pixels(IconGapUnits);
    drawer.AlignedTextOut(name, entry.name, style.GetFont(font),
                          style.GetColor(usable ? MStdColor::Text : MStdColor::TextDisabled));
    const MStdColor quietRole = (state & DrawOn) != 0 ? MStdColor::Text2 : MStdColor::Text3;
    const MColor quiet = style.GetColor(usable ? quietRole : MStdColor::TextDisabled);
    MFont& digits = style.GetFont(MStdFont::Value);
    if (const MRectangle place = ColumnArea(Column::Size, area); place.Width() > 0 && !entry.isFolder)
        drawer.AlignedTextOut(place, FileSizeText(entry.size), digits, quiet, MPlacement::End);
    if (const MRectangle place = ColumnArea(Column::Date, area); place.Width() > 0)
        drawer.AlignedTextOut(place, FileTimeText(entry.writeTime), digits, quiet, MPlacement::End);
}

void MFileListBox::PaintHead(MDrawer& drawer, const MRectangle& area)
{
    MStyle& style = *Style();
    MFont& used = style.GetFont(MStdFont::Label);
    const MStdIcon caret = descending ? MStdIcon::CaretDown : MStdIcon::CaretUp;
    const std::int32_t wide = style.IconSize(caret).width;
    const bool usable = (GetDrawState() & DrawEnabled) != 0;
    for (std::int32_t i = 0; i < ColumnCount; ++i)
    {
        const auto which = static_cast<Column>(i);
        const MRectangle place = ColumnArea(which, area);
        if (place.Width() <= 0)
            continue;
        const MStdColor role = !usable              ? MStdColor::TextDisabled
                               : i == hoveredColumn ? MStdColor::Text
                                                    : MStdColor::Text2;
        const MString title = MString::Literal(titles[i]);
        const auto width = static_cast<std::int32_t>(used.Width(title));
        const bool atEnd = which != Column::Name;
        drawer.AlignedTextOut(place, title, used, style.GetColor(role),
                              atEnd ? MPlacement::End : MPlacement::Begin);
        if (which != column)
            continue;
        const std::int32_t gap = style.Pixels(3);
        const std::int32_t left = atEnd ? place.right - width - gap - wide : place.left + width + gap;
        style.PaintIcon(drawer, { left, place.top, left + wide - 1, place.bottom }, caret,
                        style.GetColor(role));
    }
    drawer.FillRectangle({ area.left, area.bottom + 1 - style.Hairline(), area.right, area.bottom },
                         style.GetColor(MStdColor::Line));
}

std::int32_t MFileListBox::ColumnAt(std::int32_t x, std::int32_t y) const
{
    if (Style() == nullptr)
        return -1;
    const MRectangle head = HeadArea();
    for (std::int32_t i = ColumnCount - 1; i >= 0 && head.Contains(x, y); --i)
        if (x >= ColumnArea(static_cast<Column>(i), head).left || i == 0)
            return ColumnArea(static_cast<Column>(i), head).Width() > 0 ? i : -1;
    return -1;
}

bool MFileListBox::OnEvent(const MControlEvent& event)
{
    const std::int32_t over = event.IsMouse() ? ColumnAt(event.x, event.y) : -1;
    if (event.code == MEventCode::Move && over != hoveredColumn)
    {
        hoveredColumn = over;
        Invalidate(HeadArea());
    }
    const bool presses = event.code == MEventCode::LeftDown || event.code == MEventCode::LeftDoubleClick;
    if (over >= 0 && presses)
    {
        SortByUser(static_cast<Column>(over));
        return true;
    }
    if (event.code == MEventCode::KeyDown)
    {
        if (event.Has(ModifierCtrl) && event.key >= '1' && event.key < '1' + ColumnCount)
        {
            SortByUser(static_cast<Column>(event.key - '1'));
            return true;
        }
        if (event.key == MKey::Backspace)
        {
            GoUp();
            return true;
        }
    }
    return MListBox::OnEvent(event);
}

void MFileListBox::OnMouseLeave()
{
    if (std::exchange(hoveredColumn, -1) >= 0)
        Invalidate();
    MListBox::OnMouseLeave();
}
