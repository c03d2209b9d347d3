// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/threads/MRelaxed.h"
#include "gui/widgets/MSwitcher.h"
#include "gui/windows/MStandardWindow.h"
#include "tools/gallery/Gallery.h"

/// The gallery on the screen: a page, and above it what chooses page, style and scale. A page whose document
/// is written anew is loaded anew.
class GalleryWindow : public MStandardWindow
{
public:
    explicit GalleryWindow(const Gallery& shownGallery);

    void Show(std::int32_t page, const std::string& look, int percent);

protected:
    void OnOpened() override;

private:
    /// Looks from time to time whether the page's document is another one.
    struct Watcher : MControl
    {
        explicit Watcher(GalleryWindow& window) : owner(window) {}
        void OnTimer() override;
        GalleryWindow& owner;
    };

    void OnChoice(const MOnValueChangeParams& params);
    void OnReload(const MOnNotifyParams& params);
    void Rebuild();
    void LoadPage();
    void MakeDialogButtons(MControl& row);
    void OnDialog(const MOnControlClickParams& params);

    const Gallery& gallery;
    Watcher watcher;
    std::vector<const char*> pageNames;
    MRelaxed<int> page{ 0 };
    MRelaxed<int> look{ 0 };
    MRelaxed<int> scale{ 0 };
    std::unique_ptr<MValue> pageValue;
    std::unique_ptr<MValue> lookValue;
    std::unique_ptr<MValue> scaleValue;
    MEvent<MOnNotifyParams> reload;   // what is pressed can't be replaced while it handles the press
    std::filesystem::file_time_type written;
    std::vector<std::pair<std::string, std::unique_ptr<MWindow>>> dialogs;
};
