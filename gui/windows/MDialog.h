// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "gui/widgets/MButton.h"
#include "gui/windows/MStandardWindow.h"

/// A window with a title, content, and a row of buttons below. It draws its own frame, by which it is moved.
class MDialog : public MStandardWindow
{
public:
    explicit MDialog(const MString& title);

    /// Where the content goes.
    MControl& Content() { return *content; }
    /// A button that closes the window with a value; the first one added stands at the right, and Enter
    /// presses it.
    MButton& AddButton(const MString& text, MModalValue result);
    MModalValue Result() const { return static_cast<MModalValue>(ModalResult()); }

    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;

protected:
    void Realize() override;
    void OnPlaced() override;
    /// Before a button closes the window; false keeps it open.
    virtual bool Accept(MModalValue) { return true; }

private:
    struct Answer
    {
        MButton* button = nullptr;
        MModalValue result = MModalValue::None;
    };

    void OnButton(const MOnControlClickParams& params);
    void OnClose(const MOnControlClickParams& params);

    MControl* content = nullptr;
    MControl* footer = nullptr;
    MButton* closer = nullptr;
    std::vector<Answer> answers;
};
