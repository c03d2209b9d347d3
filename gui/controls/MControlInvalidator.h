// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MEvent.h"
#include "foundation/threads/MLock.h"
#include "gui/painting/MRectangle.h"

class MControl;

/// Lets another thread ask for a repaint of a control: any number of requests become one rectangle every
/// 50 ms. It must not outlive the control, and lives within the window system's life.
class MControlInvalidator : public MEventTarget
{
public:
    explicit MControlInvalidator(MControl& invalidated);
    ~MControlInvalidator() override;

    /// In the control's places. Thread: any.
    void Invalidate(const MRectangle& part);
    /// Hands what has gathered to the GUI thread; true when there was something. Thread: the invalidators'.
    bool Process();

private:
    void OnInvalidateHandler(const MOnNotifyParams& params);

    MControl& control;
    MLock lock;
    MRectangle rect;
    MEvent<MOnNotifyParams> onInvalidate;
};
