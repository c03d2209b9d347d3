// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "gui/fields/MEdit.h"
#include "gui/widgets/MStatic.h"
#include "gui/windows/MDialog.h"

/// Asks for a line of text.
class MTextInputWindow : public MDialog
{
public:
    MTextInputWindow(const MString& title, const MString& question, const MString& suggestion);

    MString Text() const { return edit->Text(); }
    /// Answers what is wrong with a text, nothing if it is fine: the window stays open and says so.
    std::function<MString(const MString& text)> check;

    /// Opens one that deletes itself. `then` gets the text, only when it was accepted.
    static void Ask(MWindow& owner, const MString& title, const MString& question, const MString& suggestion,
                    std::function<void(const MString&)> then,
                    std::function<MString(const MString&)> check = {});

protected:
    void Realize() override;
    void OnOpened() override;
    bool Accept(MModalValue result) override;

private:
    MStatic* label = nullptr;
    MStatic* complaint = nullptr;
    MEdit* edit = nullptr;
};
