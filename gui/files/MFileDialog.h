// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>

#include "control/values/MValueList.h"
#include "gui/files/FileDialogOptions.h"
#include "gui/files/MDirectoryTreeControl.h"
#include "gui/files/MFileListBox.h"
#include "gui/files/MPathBar.h"
#include "gui/widgets/MCheckBox.h"
#include "gui/widgets/MStatic.h"
#include "gui/widgets/MSwitcher.h"
#include "gui/windows/MDialog.h"

/// Asks for files to open, for a file to save in, or for a folder. Places stand at the left, the files of a
/// folder at the right, its path above and a name to type below; a name with "*" or "?" chooses what is
/// listed. Backspace and Alt+Up go up, Ctrl+L types a path, Ctrl+H shows hidden files, Ctrl+Shift+N makes a
/// folder, F5 reads anew. Thread: GUI.
class MFileDialog : public MDialog
{
public:
    using Options = FileDialogOptions;
    using Mode = FileDialogOptions::Mode;

    explicit MFileDialog(Options asked);
    ~MFileDialog() override;

    using MDialog::Open;
    /// Opens one that deletes itself. `then` gets the paths, only when they were accepted: one of a file that
    /// may exist to save in, or those of what exists.
    static void Open(MWindow& owner, Options options, std::function<void(const std::vector<MString>&)> then);

    /// What was accepted.
    const std::vector<MString>& Paths() const { return paths; }
    const MString& Folder() const { return list->Folder(); }
    bool PreviewEvent(MControl* child, const MControlEvent& event) override;
    bool OnEvent(const MControlEvent& event) override;

protected:
    void Realize() override;
    void OnOpened() override;
    void OnClosing() override;
    bool Accept(MModalValue result) override;

private:
    bool IsSaving() const { return options.mode == Mode::Save; }
    bool WantsFolder() const { return options.mode == Mode::Folder; }
    void MakeTopRow();
    void MakeMiddle();
    void MakeNameRow();
    void MakeLastRow();
    void Remember();
    void Recall();
    void SetUpList();

    void GoTo(const MString& path);
    void ShowFolder();
    void SetShowsHidden(bool shows);
    void AskForFolder();
    void Complain(const MString& text);
    bool AcceptNames();
    bool AcceptPaths(std::vector<MString> wanted);
    bool AcceptToSave(const MString& path);
    MString WithEnding(const MString& path) const;
    MString Patterns() const;
    /// The names in a text: itself, or those in quotation marks.
    static std::vector<MString> NamesIn(const MString& text);

    void OnUp(const MOnControlClickParams& params);
    void OnNewFolder(const MOnControlClickParams& params);
    void OnBarPath(const MOnStringParams& params);
    void OnTreePath(const MOnStringParams& params);
    void OnTreeActivate(const MOnItemParams<MTreeItem*>& params);
    void OnListFolder(const MOnNotifyParams& params);
    void OnListFile(const MOnNotifyParams& params);
    void OnListSelect(const MOnItemParams<std::int32_t>& params);
    void OnNameTyped(const MOnNotifyParams& params);
    void OnType(const MOnValueChangeParams& params);
    void OnHidden(const MOnCheckParams& params);

    Options options;
    std::vector<MString> paths;
    MStringList typeNames;
    MValueStringList type;
    std::shared_ptr<int> alive = std::make_shared<int>(0);   // for windows that answer later
    MPathBar* bar = nullptr;
    MButton* up = nullptr;
    MDirectoryTreeControl* tree = nullptr;
    MFileListBox* list = nullptr;
    MFileNameEdit* name = nullptr;
    MCheckBox* hidden = nullptr;
    MStatic* complaint = nullptr;
    MButton* accepts = nullptr;
    bool nameIsTyped = false;   // since something was chosen in the list
};
