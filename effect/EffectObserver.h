// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effect/EditorState.h"
#include "foundation/text/MString.h"

/// Whoever stands in front of the effect: an editor, or a host that works without one. The analyzer's
/// clients are fed only while somebody is attached. All calls come on the thread that called the effect.
class EffectObserver
{
public:
    virtual ~EffectObserver() = default;
    /// The effect's state changed: show this.
    virtual void OnEditorState(const EditorState&) {}
    /// A text for the user that is no failure.
    virtual void OnInformation(const MString&) {}
    /// Long work goes on: its name and the share that is done, 0 to 1. False asks it to stop, which throws
    /// MException "Cancelled." out of the work.
    virtual bool OnProgress(const MString&, double) { return true; }
    /// The bands were replaced as a whole.
    virtual void OnBandsReplaced() {}
};
