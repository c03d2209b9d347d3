// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "gui/widgets/MStaticMultiLine.h"
#include "gui/windows/MDialog.h"

/// Says something, or asks.
class MMessageWindow : public MDialog
{
public:
    enum class Kind
    {
        Information,
        Error,
        Question
    };

    /// @param markup  the text; MSTML::Escaped for one that isn't marked up
    MMessageWindow(Kind kind, const MString& title, const MString& markup);

    /// "OK", or "Close" for an error.
    void AddUsualButton();
    void AddYesNo();

    /// Opens one that deletes itself, above `owner`. `then` gets the answer, on the GUI thread.
    static void Show(MWindow& owner, Kind kind, const MString& title, const MString& markup,
                     std::function<void(MModalValue)> then = {});

    void Paint(MDrawer& drawer) override;

protected:
    void Realize() override;

private:
    Kind kindOfSign;
    MStaticMultiLine* text = nullptr;
};
