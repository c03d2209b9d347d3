// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>

#include "gui/controls/MWindows.h"

/// Opens a modal window that belongs to nobody: it tells its answer and is deleted when it closes.
class OwnedWindow : public MEventTarget
{
public:
    using Then = std::function<void(MWindow& window, std::int32_t result)>;

    static void Open(std::unique_ptr<MWindow> window, MWindow& owner, Then then)
    {
        auto* self = new OwnedWindow(std::move(window), std::move(then));
        try
        {
            self->window->OpenModal(&owner);
        }
        catch (...)
        {
            delete self;
            throw;
        }
    }

    void OnClosed(const MOnWindowCloseParams& params)
    {
        const std::unique_ptr<OwnedWindow> self(this);
        if (then)
            then(*window, params.result);
        if (MWindows* windows = MWindows::Get())
            windows->DeleteLater(std::move(window));
    }

private:
    OwnedWindow(std::unique_ptr<MWindow> opened, Then afterwards)
        : window(std::move(opened)), then(std::move(afterwards))
    {
        window->OnClosed().AddHandler<&OwnedWindow::OnClosed>(*this);
    }

    std::unique_ptr<MWindow> window;
    Then then;
};
