// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "plugin/contract/ChangeListener.h"

class MAudioPlugin;

/// Tells the host of what changed inside, each change once and inside a gesture.
///
/// A control that the user holds goes through Begin, Send and End. Whatever else changes a parameter inside,
/// on any thread, marks it in the feed, and Report tells of it. Thread: GUI, without any lock of the plug-in.
class HostReporter
{
public:
    HostReporter(MAudioPlugin& reported, const ChangeFeed& feed) : plugin(reported), listener(feed) {}

    /// Gestures of one parameter may nest, as when the wheel turns over a knob that is held; the host sees
    /// one.
    void Begin(std::int32_t index);
    /// In a gesture of its own where none is open.
    void Send(std::int32_t index, double value01);
    void End(std::int32_t index);
    /// Ends what is open, as when a window closes in the middle of a drag.
    void EndAll();
    /// Several parameters at once are one group.
    void Report();

private:
    struct Gesture
    {
        std::int32_t index;
        std::int32_t depth;
    };

    Gesture* Find(std::int32_t index);

    MAudioPlugin& plugin;
    ChangeListener listener;
    std::vector<Gesture> open;
};
