// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gui/files/FolderEntry.h"
#include "gui/widgets/MListBox.h"

/// The files of a folder, folders first, with size and date. A click on a column's head sorts by it, another
/// one the other way round; so do Ctrl+1 to Ctrl+3. A folder is entered by a double click or Enter, left by
/// Backspace. The folder is read once, when it is shown. What can't be read is told in the list. Thread: GUI.
class MFileListBox : public MListBox
{
public:
    enum class Column : std::int32_t
    {
        Name,
        Size,
        Date
    };
    static constexpr std::int32_t ColumnCount = 3;

    MFileListBox();

    /// From outside: no event. Never throws for what can't be read.
    void SetFolder(const MString& path);
    const MString& Folder() const { return folder; }
    bool IsReadable() const { return readable; }
    /// Reads the folder anew; what was chosen stays.
    void Refresh();
    /// As the user does it.
    void Enter(const MString& path);
    /// To the folder above; the one that is left is chosen there.
    void GoUp();

    /// Of the files that are listed, such as "*.wav;*.flac"; empty: all.
    void SetPatterns(const MString& newPatterns);
    const MString& Patterns() const { return patterns; }
    void SetShowsHidden(bool shows);
    bool ShowsHidden() const { return showsHidden; }
    void SetFoldersOnly(bool only);
    void SortBy(Column newColumn, bool nowDescending);
    Column SortColumn() const { return column; }
    bool IsDescending() const { return descending; }

    /// Null beyond the lines.
    const FolderEntry* EntryAt(std::int32_t row) const;
    /// From the top.
    std::vector<const FolderEntry*> Chosen() const;
    /// False: it isn't listed.
    bool ChooseName(const MString& name);

    /// The user has come to another folder.
    MEvent<MOnNotifyParams>& OnFolder() { return folderChanged; }
    /// A double click on a file, or Enter: the current one.
    MEvent<MOnNotifyParams>& OnFile() { return fileActivated; }

    /// "path", "filter", "showhidden", "foldersonly".
    void LoadXml(const MAttribute& node) override;
    bool OnEvent(const MControlEvent& event) override;
    void OnMouseLeave() override;

protected:
    void PaintItem(MDrawer& drawer, const MRectangle& area, std::int32_t index, std::uint16_t state) override;
    std::int32_t HeadHeight() const override;
    void PaintHead(MDrawer& drawer, const MRectangle& area) override;

private:
    /// Keeps in the entries what is chosen, before they are listed anew.
    void TakeChosen();
    void List();
    void SortRows();
    bool IsListed(const FolderEntry& entry) const;
    void ShowEmptyText();
    /// Of a row or of the head; empty where there is no room for it.
    MRectangle ColumnArea(Column wanted, const MRectangle& row) const;
    std::int32_t ColumnAt(std::int32_t x, std::int32_t y) const;
    void SortByUser(Column wanted);
    void Tell(MEvent<MOnNotifyParams>& event);
    void OnActivated(const MOnItemParams<std::int32_t>& params);

    MEvent<MOnNotifyParams> folderChanged;
    MEvent<MOnNotifyParams> fileActivated;
    MString folder;
    MString patterns;
    std::vector<FolderEntry> entries;   // by name
    std::vector<std::int32_t> rows;   // the entries of the lines
    std::int32_t currentEntry = -1;
    std::int32_t hoveredColumn = -1;
    Column column = Column::Name;
    bool descending = false;
    bool showsHidden = false;
    bool foldersOnly = false;
    bool readable = true;
};
