// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/files/MFileDialog.h"

#include <algorithm>

#include "foundation/streams/MFile.h"
#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "gui/files/FilePaths.h"
#include "gui/richtext/MSTML.h"
#include "gui/windows/MMessageWindow.h"
#include "gui/windows/MTextInputWindow.h"
#include "gui/windows/OwnedWindow.h"
#include "state/tree/MAttribute.h"

namespace
{
bool HasWildcard(const MString& text)
{
    return text.Find(u'*') >= 0 || text.Find(u'?') >= 0;
}

const char* const titles[] = { "Open", "Open", "Save", "Choose a folder" };
const char* const verbs[] = { "Open", "Open", "Save", "Choose" };
}   // namespace

MFileDialog::MFileDialog(Options asked) : MDialog({}), options(std::move(asked)), type(nullptr, typeNames)
{
    const auto mode = static_cast<std::size_t>(options.mode);
    caption = options.title.IsEmpty() ? MString::Literal(titles[mode]) : options.title;
    help = "Choose in the list, or type a name or a path. A name with * or ? chooses what is listed.<p>"
           "Backspace or Alt+Up: the folder above. Ctrl+L: type a path. Ctrl+H: hidden files. "
           "Ctrl+Shift+N: new folder. Ctrl+1 to Ctrl+3: sort. F5: read anew.";
    for (const FileDialogOptions::FileType& each : options.types)
        typeNames.Add(each.name);
    resizableX = resizableY = true;
    resizeBorder = 4;
    savesSize = true;
    MakeTopRow();
    MakeMiddle();
    MakeNameRow();
    MakeLastRow();
    accepts = &AddButton(MString::Literal(verbs[mode]), MModalValue::Ok);
    AddButton("Cancel", MModalValue::Cancel);
    SetUpList();
}

MFileDialog::~MFileDialog()
{
    Close();
}

void MFileDialog::SetUpList()
{
    list->multiple = options.mode == Mode::OpenMany;
    list->SetFoldersOnly(WantsFolder());
    MString folder = options.folder;
    if (folder.IsEmpty())
    {
        try
        {
            folder = MFile::GetSpecialFolder(MFile::UserDocuments);
        }
        catch (const MException&)
        {
            folder = "/";
        }
    }
    list->SetFolder(FilePaths::ExistingFolder(FilePaths::Resolved(folder, "/")));
    Recall();
    list->SetPatterns(Patterns());
    name->SetText(options.name);
    nameIsTyped = !options.name.IsEmpty();
    ShowFolder();
}

MString MFileDialog::Patterns() const
{
    const auto index = static_cast<std::size_t>(type.Get());
    return index < options.types.size() ? options.types[index].patterns : MString();
}

void MFileDialog::Recall()
{
    const MAttribute* node = options.memory != nullptr
                                 ? options.memory->FindSubItem("filedialog", "purpose", options.purpose)
                                 : nullptr;
    if (node == nullptr)
        return;
    if (const MString folder = FilePaths::Unescaped(node->GetAttribute("folder")); MFile::IsFolder(folder))
        list->SetFolder(folder);
    SetShowsHidden(node->GetAttribute("hidden", "0").ToInt() != 0);
    const std::int64_t column = node->GetAttribute("sort", "0").ToInt();
    if (column >= 0 && column < MFileListBox::ColumnCount)
        list->SortBy(static_cast<MFileListBox::Column>(column),
                     node->GetAttribute("descending", "0").ToInt() != 0);
    type.FromText(node->GetAttribute("type"));
}

void MFileDialog::Remember()
{
    if (options.memory == nullptr)
        return;
    MAttribute* node = options.memory->FindSubItem("filedialog", "purpose", options.purpose);
    if (node == nullptr)
    {
        node = &options.memory->AddSubItem("filedialog");
        node->SetAttribute("purpose", options.purpose);
    }
    SaveState(*node);
    node->SetAttribute("folder", FilePaths::Escaped(list->Folder()));
    node->SetAttribute("hidden", list->ShowsHidden() ? "1" : "0");
    node->SetAttribute("sort", MString::FromInt(static_cast<std::int64_t>(list->SortColumn())));
    node->SetAttribute("descending", list->IsDescending() ? "1" : "0");
    if (typeNames.Count() > 0)
        node->SetAttribute("type", type.GetText());
}

void MFileDialog::OnClosing()
{
    Remember();
    MDialog::OnClosing();
}

void MFileDialog::OnOpened()
{
    MControl& first = IsSaving() ? static_cast<MControl&>(*name) : *list;
    first.SetFocus();
    if (!IsSaving())
        return;
    // The ending stays as it is.
    const MString text = name->Text();
    int end = text.Length();
    while (end > 0 && text[end - 1] != u'.')
        --end;
    name->Select(0, static_cast<std::size_t>(end > 1 ? end - 1 : text.Length()));
}

void MFileDialog::GoTo(const MString& path)
{
    list->Enter(path);
}

void MFileDialog::ShowFolder()
{
    bar->SetPath(list->Folder());
    tree->Follow(list->Folder());
    name->folder = list->Folder();
    up->SetEnabled(list->Folder() != "/");
    Complain({});
}

void MFileDialog::SetShowsHidden(bool shows)
{
    list->SetShowsHidden(shows);
    tree->SetShowsHidden(shows);
    hidden->SetState(shows ? MCheckBoxState::On : MCheckBoxState::Off);
}

void MFileDialog::Complain(const MString& text)
{
    complaint->SetText(text);
}

void MFileDialog::AskForFolder()
{
    const std::weak_ptr<int> here = alive;
    const MString folder = list->Folder();
    const auto make = [folder](const MString& wanted) -> MString
    {
        if (wanted.IsEmpty() || wanted == "." || wanted == ".." || wanted.Find(u'/') >= 0)
            return "This is no name for a folder.";
        const MString path = FilePaths::Join(folder, wanted);
        if (MFile::Exists(path))
            return "There is one of that name.";
        try
        {
            MFile::CreatePath(path);
        }
        catch (const MException&)
        {
            return "It cannot be made here.";
        }
        return {};
    };
    MTextInputWindow::Ask(
        *this, "New folder", "Name of the folder:", "New folder",
        [this, here, folder](const MString& made)
        {
            if (here.expired())
                return;
            tree->Refresh();
            GoTo(FilePaths::Join(folder, made));
        },
        make);
}

std::vector<MString> MFileDialog::NamesIn(const MString& text)
{
    if (text.IsEmpty() || text[0] != u'"')
        return { text };
    std::vector<MString> names;
    for (int begin = text.Find(u'"'); begin >= 0;)
    {
        int end = text.Find(u'"', begin + 1);
        end = end < 0 ? text.Length() : end;
        if (end > begin + 1)
            names.push_back(text.SubString(begin + 1, end - begin - 1));
        begin = end < text.Length() ? text.Find(u'"', end + 1) : -1;
    }
    return names;
}

bool MFileDialog::Accept(MModalValue result)
{
    if (result != MModalValue::Ok)
        return true;
    Complain({});
    const std::vector<const FolderEntry*> chosen = list->Chosen();
    if (!name->Text().IsEmpty() && (nameIsTyped || chosen.empty()))
    {
        const bool accepted = AcceptNames();
        if (!complaint->caption.IsEmpty())
            name->SetFocus();
        return accepted;
    }
    std::vector<MString> wanted;
    wanted.reserve(chosen.size());
    for (const FolderEntry* each : chosen)
        wanted.push_back(FilePaths::Join(list->Folder(), each->name));
    if (wanted.empty() && WantsFolder())
        wanted.push_back(list->Folder());
    return AcceptPaths(std::move(wanted));
}

bool MFileDialog::AcceptNames()
{
    const MString text = name->Text();
    std::vector<MString> wanted;
    for (const MString& each : NamesIn(text))
        wanted.push_back(FilePaths::Resolved(each, list->Folder()));
    if (wanted.size() == 1 && HasWildcard(text) && !MFile::Exists(wanted.front()))
    {
        list->SetPatterns(text);
        name->SelectAll();
        return false;
    }
    return AcceptPaths(std::move(wanted));
}

bool MFileDialog::AcceptPaths(std::vector<MString> wanted)
{
    if (wanted.empty())
        return false;
    if (wanted.size() == 1 && !WantsFolder() && MFile::IsFolder(wanted.front()))
    {
        // The name of a new file stays while its folder is looked for.
        if (nameIsTyped || !IsSaving())
            name->SetText({});
        nameIsTyped = false;
        GoTo(wanted.front());
        return false;
    }
    if (IsSaving())
        return AcceptToSave(WithEnding(wanted.front()));
    for (const MString& each : wanted)
        if (!MFile::Exists(each) || MFile::IsFolder(each) != WantsFolder())
        {
            Complain(Format(WantsFolder() ? "There is no folder \"{0}\"." : "There is no file \"{0}\".",
                            FilePaths::NameOf(each)));
            return false;
        }
    if (options.mode != Mode::OpenMany)
        wanted.resize(1);
    paths = std::move(wanted);
    return true;
}

MString MFileDialog::WithEnding(const MString& path) const
{
    const MString patterns = Patterns();
    const int length = patterns.Find(u';') >= 0 ? patterns.Find(u';') : patterns.Length();
    const MString first = patterns.SubString(0, length);
    if (first.Find("*.") != 0 || HasWildcard(first.SubString(1, first.Length() - 1)) ||
        MFile::MatchesPatterns(FilePaths::NameOf(path), patterns))
        return path;
    return path + first.SubString(1, first.Length() - 1);
}

bool MFileDialog::AcceptToSave(const MString& path)
{
    const MString folder = FilePaths::Parent(path);
    if (!MFile::IsFolder(folder))
    {
        Complain(Format("There is no folder \"{0}\".", folder));
        return false;
    }
    if (MFile::IsFolder(path))
    {
        Complain(Format("\"{0}\" is a folder.", FilePaths::NameOf(path)));
        return false;
    }
    paths = { path };
    if (!MFile::Exists(path))
        return true;
    const std::weak_ptr<int> here = alive;
    MMessageWindow::Show(*this, MMessageWindow::Kind::Question, "Replace",
                         Format("The file \"{0}\" already exists. Do you want to replace it?",
                                MSTML::Escaped(FilePaths::NameOf(path))),
                         [this, here](MModalValue answer)
                         {
                             if (answer == MModalValue::Yes && !here.expired())
                                 RequestClose(static_cast<std::int32_t>(MModalValue::Ok));
                         });
    return false;
}

void MFileDialog::Open(MWindow& owner, Options options, std::function<void(const std::vector<MString>&)> then)
{
    OwnedWindow::Open(std::make_unique<MFileDialog>(std::move(options)), owner,
                      [then = std::move(then)](MWindow& asked, std::int32_t result)
                      {
                          if (static_cast<MModalValue>(result) == MModalValue::Ok)
                              then(static_cast<MFileDialog&>(asked).Paths());
                      });
}
