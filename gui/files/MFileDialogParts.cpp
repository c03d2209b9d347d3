// SPDX-License-Identifier: GPL-3.0-or-later
// What a file dialog is made of, and what its parts tell.
#include "foundation/streams/MFile.h"
#include "gui/controls/MLayoutClient.h"
#include "gui/controls/MLayoutSide.h"
#include "gui/controls/MPanel.h"
#include "gui/files/FilePaths.h"
#include "gui/files/MFileDialog.h"
#include "gui/widgets/MSplitter.h"
#include "state/tree/MAttribute.h"

namespace
{
constexpr double WidthUnits = 640;
constexpr double HeightUnits = 430;
constexpr double LabelUnits = 46;
constexpr double TypeUnits = 170;
constexpr double GapUnits = 6;
constexpr std::int32_t TreeShare = 27;
constexpr std::int32_t ListShare = 73;

/// A line of text that is cut where it doesn't fit.
class ShortenedText : public MStatic
{
public:
    ShortenedText() { keepsWidth = true; }
};

MControl& MakeRow(MControl& content)
{
    MControl& row = content.Make<MContainer>();
    row.layout.x.ratio = 1;
    return row;
}
}   // namespace

void MFileDialog::MakeTopRow()
{
    MControl& row = MakeRow(Content());
    Content().MakeLayout<MLayoutTop>().AddControl(row);
    auto& across = row.MakeLayout<MLayoutHorizontal>();
    up = &row.Make<MButton>();
    up->SetIcon(MStdIcon::Up);
    up->caption = {};
    up->help = "The folder above (Alt+Up, Backspace).";
    up->Clicks().OnLeftClick().AddHandler<&MFileDialog::OnUp>(*this);
    across.AddControl(*up);
    bar = &row.Make<MPathBar>();
    bar->layout.x.ratio = 1;
    bar->OnPath().AddHandler<&MFileDialog::OnBarPath>(*this);
    across.AddControl(*bar);
    MButton& newFolder = row.Make<MButton>();
    newFolder.SetIcon(MStdIcon::NewFolder);
    newFolder.help = "Makes a folder here (Ctrl+Shift+N).";
    newFolder.Clicks().OnLeftClick().AddHandler<&MFileDialog::OnNewFolder>(*this);
    across.AddControl(newFolder);
}

void MFileDialog::MakeMiddle()
{
    tree = &Content().Make<MDirectoryTreeControl>();
    tree->id = "places";
    tree->layout.x.ratio = TreeShare;
    tree->OnPath().AddHandler<&MFileDialog::OnTreePath>(*this);
    tree->OnActivate().AddHandler<&MFileDialog::OnTreeActivate>(*this);
    MSplitter& splitter = Content().Make<MSplitter>();
    splitter.id = "splitter";
    list = &Content().Make<MFileListBox>();
    list->id = "files";
    list->layout.x.ratio = ListShare;
    list->OnFolder().AddHandler<&MFileDialog::OnListFolder>(*this);
    list->OnFile().AddHandler<&MFileDialog::OnListFile>(*this);
    list->OnSelect().AddHandler<&MFileDialog::OnListSelect>(*this);
    for (MControl* each : { static_cast<MControl*>(tree), static_cast<MControl*>(list) })
    {
        each->layout.y.ratio = 1;
        each->savesRatio = true;
    }
    splitter.layout.y.ratio = 1;
}

void MFileDialog::MakeNameRow()
{
    MControl& row = MakeRow(Content());
    row.id = "names";
    auto& across = row.MakeLayout<MLayoutHorizontal>();
    MStatic& label = row.Make<MStatic>();
    label.id = "label";
    label.SetText(WantsFolder() ? "Folder" : "Name");
    across.AddControl(label);
    name = &row.Make<MFileNameEdit>();
    name->font = MStdFont::Control;
    name->layout.x.ratio = 1;
    name->completes = IsSaving()      ? MFileNameEdit::Completes::PathsOnly
                      : WantsFolder() ? MFileNameEdit::Completes::Folders
                                      : MFileNameEdit::Completes::All;
    name->OnTextChange().AddHandler<&MFileDialog::OnNameTyped>(*this);
    across.AddControl(*name);
    if (typeNames.Count() == 0 || WantsFolder())
        return;
    MSwitcher& types = row.Make<MSwitcher>();
    types.id = "types";
    types.SetValue(&type);
    types.OnValueChange().AddHandler<&MFileDialog::OnType>(*this);
    across.AddControl(types);
}

void MFileDialog::MakeLastRow()
{
    MControl& row = MakeRow(Content());
    row.id = "last";
    auto& across = row.MakeLayout<MLayoutHorizontal>();
    hidden = &row.Make<MCheckBox>();
    hidden->caption = "Hidden files";
    hidden->help = "Shows files whose names begin with a point (Ctrl+H).";
    hidden->OnCheck().AddHandler<&MFileDialog::OnHidden>(*this);
    across.AddControl(*hidden);
    complaint = &row.Make<ShortenedText>();
    complaint->color = MStdColor::Danger;
    complaint->alignment = MPlacement::End;
    complaint->layout.x.ratio = 1;
    across.AddControl(*complaint);
}

void MFileDialog::Realize()
{
    if (Style() == nullptr || !Layouts().empty())
        return;
    MDialog::Realize();
    const MStyle& style = *Style();
    const std::int32_t height = style.GetDefaultSize(MControlType::Edit).height;
    const std::int32_t gap = style.Pixels(GapUnits) - style.GetSize(MStyleSize::LayoutSpace);
    for (MControl* each : { up->Parent(), name->Parent() })
        for (const auto& child : each->Children())
            child->SetSize(height, height);
    Content().Find("label")->SetSize(style.Pixels(LabelUnits), height);
    if (MControl* types = Content().Find("types"))
        types->SetSize(style.Pixels(TypeUnits), height);
    complaint->SetSize(0, style.Pixels(16));
    Content().Layouts().front()->layoutSpaceExtra = gap;
    // From the lower edge up.
    for (const char* each : { "last", "names" })
    {
        auto& below = Content().MakeLayout<MLayoutBottom>();
        below.layoutSpaceExtra = gap;
        below.AddControl(*Content().Find(MString::Literal(each)));
    }
    auto& middle = Content().MakeLayout<MLayoutHorizontal>();
    MControl& splitter = *Content().Find("splitter");
    splitter.SetSize(style.GetSize(MStyleSize::VSplitter), 0);
    for (MControl* each : { static_cast<MControl*>(tree), &splitter, static_cast<MControl*>(list) })
        middle.AddControl(*each);
    SetSize(style.Pixels(WidthUnits), style.Pixels(HeightUnits));
    MAttribute* memory = options.memory != nullptr
                             ? options.memory->FindSubItem("filedialog", "purpose", options.purpose)
                             : nullptr;
    if (memory != nullptr)
        LoadState(*memory);
}

void MFileDialog::OnUp(const MOnControlClickParams&)
{
    list->GoUp();
}

void MFileDialog::OnNewFolder(const MOnControlClickParams&)
{
    AskForFolder();
}

void MFileDialog::OnBarPath(const MOnStringParams& params)
{
    if (MFile::IsFolder(params.text))
        GoTo(params.text);
    else if (MFile::Exists(params.text))
    {
        GoTo(FilePaths::Parent(params.text));
        list->ChooseName(FilePaths::NameOf(params.text));
        name->SetText(FilePaths::NameOf(params.text));
        nameIsTyped = true;
    }
    else
        return Complain("There is no such folder.");
    list->SetFocus();
}

void MFileDialog::OnTreePath(const MOnStringParams& params)
{
    if (params.text != list->Folder())
        GoTo(params.text);
}

void MFileDialog::OnTreeActivate(const MOnItemParams<MTreeItem*>&)
{
    list->SetFocus();
}

void MFileDialog::OnListFolder(const MOnNotifyParams&)
{
    if (!IsSaving() && !nameIsTyped)
        name->SetText({});
    nameIsTyped = !name->Text().IsEmpty();
    ShowFolder();
}

void MFileDialog::OnListFile(const MOnNotifyParams&)
{
    nameIsTyped = false;
    accepts->Press();
}

void MFileDialog::OnListSelect(const MOnItemParams<std::int32_t>&)
{
    MString text;
    const std::vector<const FolderEntry*> chosen = list->Chosen();
    for (const FolderEntry* each : chosen)
        if (!each->isFolder || WantsFolder())
            text += chosen.size() == 1 ? each->name : (text.IsEmpty() ? "\"" : " \"") + each->name + "\"";
    nameIsTyped = false;
    if (!text.IsEmpty() || !IsSaving())
        name->SetText(text);
    Complain({});
}

void MFileDialog::OnNameTyped(const MOnNotifyParams&)
{
    nameIsTyped = true;
    Complain({});
}

void MFileDialog::OnType(const MOnValueChangeParams& params)
{
    if (params.phase == MOnValueChangeParams::Phase::Change)
        list->SetPatterns(Patterns());
}

void MFileDialog::OnHidden(const MOnCheckParams& params)
{
    SetShowsHidden(params.state == MCheckBoxState::On);
}

bool MFileDialog::PreviewEvent(MControl* child, const MControlEvent& event)
{
    if (event.code != MEventCode::KeyDown)
        return MDialog::PreviewEvent(child, event);
    const bool control = event.Has(ModifierCtrl) && !event.Has(ModifierAlt);
    if (event.Has(ModifierAlt) && event.key == MKey::Up)
        list->GoUp();
    else if (control && event.key == 'H')
        SetShowsHidden(!list->ShowsHidden());
    else if (control && event.key == 'L')
        bar->BeginTyping(bar->Path());
    else if (control && event.Has(ModifierShift) && event.key == 'N')
        AskForFolder();
    else if (event.key == MKey::F1 + 4)
    {
        list->Refresh();
        tree->Refresh();
    }
    else
        return MDialog::PreviewEvent(child, event);
    return true;
}

bool MFileDialog::OnEvent(const MControlEvent& event)
{
    if (event.code == MEventCode::KeyDown && event.key == MKey::Backspace)
    {
        list->GoUp();
        return true;
    }
    return MDialog::OnEvent(event);
}
