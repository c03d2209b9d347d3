// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>

#include "gui/windows/MDialog.h"
#include "gui/windows/MStyleConfiguration.h"
#include "state/tree/MAttribute.h"

/// Asks for the settings of the style, and writes them into its configuration. Thread: GUI.
class MStyleWindow : public MDialog
{
public:
    /// @param editor  whose size limits the scales; null: none does
    /// Throws MException for a configuration that is no XML.
    explicit MStyleWindow(MWindow* editor);

    MStyleConfiguration& Settings() { return *settings; }
    /// Opens one that deletes itself above an editor. `changed` is called when the configuration is another
    /// one. Throws as above.
    static void Ask(MWindow& editor, std::function<void()> changed);

protected:
    void Realize() override;
    bool Accept(MModalValue result) override;

private:
    void AskForReset();
    void Reset();

    MAttribute configuration;
    MStyleConfiguration* settings = nullptr;
    std::shared_ptr<int> alive = std::make_shared<int>(0);   // for windows that answer later
};
