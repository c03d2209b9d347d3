// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/driver/BusLayout.h"

#include "foundation/text/MStringFormat.h"

void BusLayout::SetUp(std::int32_t channelsPerGroup, std::int32_t inputBuses)
{
    static constexpr const char* sides[] = { "L", "R" };
    width = channelsPerGroup;
    inputGroups = inputBuses;
    outputGroups = 1;
    inputNames.Clear();
    outputNames.Clear();
    const auto nameOf = [this](std::int32_t channel)
    {
        return IsSurround() ? Format("{0}", channel) : MString(sides[channel % StereoWidth]);
    };
    for (std::int32_t channel = 0; channel < width; ++channel)
        outputNames.Add(Format("Out {0}", nameOf(channel)));
    for (std::int32_t channel = 0; inputBuses > 0 && channel < width; ++channel)
        inputNames.Add(Format("In {0}", nameOf(channel)));
    // One side chain needs no number.
    for (std::int32_t bus = 1; bus < inputBuses; ++bus)
        for (std::int32_t channel = 0; channel < width; ++channel)
            inputNames.Add(inputBuses == 2
                               ? Format("Sidechain {0}", nameOf(channel))
                               : Format("Sidechain {0} {1}", MString(sides[channel % StereoWidth]), bus));
}

bool BusLayout::Connect(std::int32_t inputs, std::int32_t outputs)
{
    connectedInputs = inputs;
    connectedOutputs = outputs;
    const std::int32_t before = usedWidth;
    usedWidth = std::max(inputs, outputs);
    return usedWidth != before;
}
