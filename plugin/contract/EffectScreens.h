// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class MControl;
class MPlugin;

/// Makes what effects show. Given to a driver by whoever brings a screen, so that neither effects nor drivers
/// know of one, and programs without a screen need none. Thread: GUI.
class EffectScreens
{
public:
    virtual ~EffectScreens() = default;
    /// Fills `parent`, an empty control, with the content of the effect's window.
    virtual void CreateEditor(MPlugin& effect, MControl* parent) = 0;
    /// Lets go of all that it keeps of `editor`, which is deleted next.
    virtual void DestroyEditor(MPlugin& effect, MControl* editor) = 0;
};
