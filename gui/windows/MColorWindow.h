// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "gui/widgets/MColorEditor.h"
#include "gui/windows/MDialog.h"

/// Asks for a colour; the one before and the new one stand side by side. Thread: GUI.
class MColorWindow : public MDialog
{
public:
    /// @param usual  what "Default" brings back
    MColorWindow(const MString& title, MColor before, MColor usual);

    MColor Color() const { return editor->Color(); }
    /// Opens one that deletes itself. `then` gets the colour, only when it was accepted.
    static void Ask(MWindow& owner, const MString& title, MColor before, MColor usual,
                    std::function<void(MColor)> then);

protected:
    void Realize() override;
    void OnOpened() override;
    bool Accept(MModalValue result) override;

private:
    class Comparison;

    void OnColor(const MOnNotifyParams& params);

    MColorEditor* editor = nullptr;
    Comparison* comparison = nullptr;
    MColor usualColor;
};
