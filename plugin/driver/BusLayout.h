// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "foundation/text/MStringList.h"

/// The channels between a host and an effect: a main bus and side chains in, one bus out, all of one width,
/// and what of them the host really connected. A bus is called a group where its channels are counted.
///
/// In a host's array of channel pointers the groups stand `Stride` apart, in ours side by side.
/// Changed under the processing locks; everything else from any thread that holds one of them.
class BusLayout
{
public:
    static constexpr std::int32_t StereoWidth = 2;
    static constexpr std::int32_t SurroundWidth = 8;

    /// Stereo or surround buses, with names for their channels.
    void SetUp(std::int32_t channelsPerGroup, std::int32_t inputBuses);
    /// How far apart the groups stand in the arrays of this host.
    void SetStride(std::int32_t channels) { stride = channels; }
    /// How many channels of a group the host plays into and listens to; 0 for all, negative for none at all.
    /// Answers whether the wider of them is another than before.
    bool Connect(std::int32_t inputs, std::int32_t outputs);

    std::int32_t Width() const { return width; }
    bool IsSurround() const { return width > StereoWidth; }
    /// What of a group's width the host uses.
    std::int32_t UsedWidth() const { return usedWidth >= 0 ? usedWidth : width; }
    std::int32_t InputGroups() const { return inputGroups; }
    std::int32_t OutputGroups() const { return outputGroups; }
    std::int32_t MostGroups() const { return std::max(inputGroups, outputGroups); }
    const MStringList& InputNames() const { return inputNames; }
    const MStringList& OutputNames() const { return outputNames; }

    /// Whether the host promised to fill every input.
    bool AllInputsConnected() const { return connectedInputs == 0; }
    bool IsMonoInput() const { return connectedInputs == 1; }
    std::int32_t ConnectedInputs() const { return Present(connectedInputs); }
    std::int32_t ConnectedOutputs() const { return Present(connectedOutputs); }

    /// Where a channel stands in our arrays.
    std::size_t SlotOf(std::int32_t group, std::int32_t channel) const
    {
        return static_cast<std::size_t>(group * width + channel);
    }
    /// Where it stands in the host's.
    std::int32_t HostSlotOf(std::int32_t group, std::int32_t channel) const
    {
        return group * stride + channel;
    }

private:
    std::int32_t Present(std::int32_t connected) const
    {
        return connected <= 0 ? width : std::min(connected, width);
    }

    std::int32_t width = StereoWidth;
    std::int32_t stride = SurroundWidth;
    std::int32_t inputGroups = 0;
    std::int32_t outputGroups = 0;
    MStringList inputNames;
    MStringList outputNames;
    std::int32_t connectedInputs = 0;
    std::int32_t connectedOutputs = 0;
    std::int32_t usedWidth = -1;   // negative: not told
};
