// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MCallback.h"
#include "gui/controls/MControl.h"

struct MOnCheckParams : MEventParams
{
    MCheckBoxState state = MCheckBoxState::Off;
};

/// A box with a tick and a text. With a group, one of several: a round button, of which one is on among those
/// with the same parent and group.
class MCheckBox : public MControl
{
public:
    MCheckBox();

    MCheckBoxState State() const { return checked; }
    /// From outside: no event.
    void SetState(MCheckBoxState state);
    /// With each change that the user makes.
    MCallback<MOnCheckParams>& OnCheck() { return check; }

    void LoadXml(const MAttribute& node) override;
    void Paint(MDrawer& drawer) override;
    bool OnEvent(const MControlEvent& event) override;

    std::int32_t group = 0;   ///< 0: by itself

protected:
    MSize ContentMinimum() const override;

private:
    void Toggle();
    /// The other round buttons, in the order of their parent.
    void MoveInGroup(bool forward);
    void ChooseInGroup();

    MCheckBoxState checked = MCheckBoxState::Off;
    MCallback<MOnCheckParams> check;
};
