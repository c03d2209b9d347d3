// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/files/MFileSelector.h"

#include <algorithm>

#include "gui/controls/XmlAttributes.h"
#include "gui/files/FilePaths.h"
#include "gui/files/MFileDialog.h"

namespace
{
constexpr double GapUnits = 4;
}

MFileSelector::MFileSelector()
{
    controlType = MControlType::NoBackground;
    acceptsFiles = true;
    field = &Make<MFileNameEdit>();
    field->font = MStdFont::Control;
    field->OnDone().AddHandler<&MFileSelector::OnTyped>(*this);
    button = &Make<MButton>();
    button->SetIcon(MStdIcon::Folder);
    button->help = "Chooses in a dialog.";
    button->Clicks().OnLeftClick().AddHandler<&MFileSelector::OnButton>(*this);
}

void MFileSelector::LoadXml(const MAttribute& node)
{
    MControl::LoadXml(node);
    const XmlAttributes attributes(node);
    attributes.ReadName("mode", options.mode, "MFileDialog::Mode");
    attributes.Read("title", options.title);
    attributes.Read("purpose", options.purpose);
    if (FileDialogOptions::FileType type; attributes.Read("filter", type.patterns))
    {
        type.name = type.patterns;
        attributes.Read("filtername", type.name);
        options.types = { type };
    }
    if (MString path; attributes.Read("path", path))
        SetPath(path);
}

void MFileSelector::SetPath(const MString& path)
{
    taken = path;
    field->SetText(path);
}

MSize MFileSelector::ContentMinimum() const
{
    if (Style() == nullptr)
        return {};
    const std::int32_t height = Style()->GetDefaultSize(MControlType::Edit).height;
    return { 2 * height + Style()->Pixels(GapUnits), height };
}

void MFileSelector::Realize()
{
    if (Style() != nullptr && Height() == 0)
        SetSize(Width(), Style()->GetDefaultSize(MControlType::Edit).height);
}

void MFileSelector::OnPlaced()
{
    const std::int32_t gap = Style() != nullptr ? Style()->Pixels(GapUnits) : 0;
    const std::int32_t room = std::max(0, Width() - Height() - gap);
    field->SetPosition(0, 0);
    field->SetSize(room, Height());
    button->SetPosition(room + gap, 0);
    button->SetSize(Height(), Height());
}

void MFileSelector::Take(const MString& path)
{
    field->SetText(path);
    if (path == taken)
        return;
    taken = path;
    MOnStringParams params;
    params.source = this;
    params.text = path;
    pathChosen.Post(GlobalEventProcessor(), params);
}

void MFileSelector::OnTyped(const MOnClickParams& params)
{
    if (params.data == MEdit::Taken)
        Take(field->Text().IsEmpty() ? MString() : FilePaths::Resolved(field->Text(), "/"));
}

void MFileSelector::OnButton(const MOnControlClickParams&)
{
    OpenDialog();
}

void MFileSelector::OpenDialog()
{
    MWindow* window = Window();
    if (window == nullptr)
        return;
    FileDialogOptions asked = options;
    if (asked.mode == FileDialogOptions::Mode::OpenMany)
        asked.mode = FileDialogOptions::Mode::Open;
    if (!taken.IsEmpty())
    {
        const bool isFolder = asked.mode == FileDialogOptions::Mode::Folder;
        asked.folder = isFolder ? taken : FilePaths::Parent(taken);
        asked.name = isFolder ? MString() : FilePaths::NameOf(taken);
    }
    const std::weak_ptr<int> here = alive;
    MFileDialog::Open(*window, asked,
                      [this, here](const std::vector<MString>& paths)
                      {
                          if (!here.expired())
                              Take(paths.front());
                      });
}

bool MFileSelector::OnDrop(const std::vector<MString>& files, std::int32_t, std::int32_t)
{
    if (files.empty())
        return false;
    Take(files.front());
    return true;
}
