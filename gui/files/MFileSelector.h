// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MEvent.h"
#include "gui/files/FileDialogOptions.h"
#include "gui/files/MFileNameEdit.h"
#include "gui/widgets/MButton.h"

/// A field with the path of a file or folder, and a button that opens the dialog to choose one. Files can be
/// dropped on it. Thread: GUI.
class MFileSelector : public MControl
{
public:
    MFileSelector();

    MString Path() const { return field->Text(); }
    /// From outside: no event.
    void SetPath(const MString& path);
    /// The user has chosen, typed or dropped another path.
    MEvent<MOnStringParams>& OnPath() { return pathChosen; }
    void OpenDialog();

    /// "path", "mode" (FileDialogOptions::Mode, such as "save"), "title", "purpose", "filter" and
    /// "filtername".
    void LoadXml(const MAttribute& node) override;
    bool OnDrop(const std::vector<MString>& files, std::int32_t x, std::int32_t y) override;

    FileDialogOptions options;   ///< one path is taken: OpenMany is Open

protected:
    MSize ContentMinimum() const override;
    void Realize() override;
    void OnPlaced() override;

private:
    void Take(const MString& path);
    void OnButton(const MOnControlClickParams& params);
    void OnTyped(const MOnClickParams& params);

    MEvent<MOnStringParams> pathChosen;
    std::shared_ptr<int> alive = std::make_shared<int>(0);   // for a dialog that answers later
    MFileNameEdit* field = nullptr;
    MButton* button = nullptr;
    MString taken;   // the path that was told last
};
