// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <vector>

#include "audio/equalizer/MEqualizerProcessor.h"
#include "tests/Signals.h"

/// An equalizer without any effect around it, all its bands off.
class TestEqualizer : public MEqualizerProcessor
{
public:
    explicit TestEqualizer(EqualizerMode firstMode, double rate = 48000, std::int32_t channels = 1)
        : channelCount(channels)
    {
        for (std::int32_t index = 0; index < BandCount; ++index)
            Band(index).enabled = false;
        InitProcessing(channels, rate);
        SetMode(firstMode);
    }

    void SetMode(EqualizerMode newMode)
    {
        SetModeAndRatio(static_cast<std::int32_t>(newMode), ratio, sampleRate);
    }
    void SetRatio(double newRatio)
    {
        ratio = newRatio;
        SetModeAndRatio(mode, ratio, sampleRate);
    }
    /// Takes effect with the next Update.
    BandPoint& SetBand(std::int32_t index, std::int32_t type, double hertz, double gainDb, double q)
    {
        BandPoint& band = Band(index);
        band.enabled = true;
        band.type = type;
        band.x = std::log10(hertz);
        band.y = gainDb;
        band.width = WidthFromQ(q);
        return band;
    }

    /// Runs all channels through in blocks of the sizes given, again and again; `before` is told where each
    /// begins.
    template <typename Before>
    Signals::Channels Run(const Signals::Channels& input, const std::vector<std::int32_t>& blocks,
                          Before before)
    {
        Signals::Channels output(input.size(), std::vector<float>(input[0].size(), 77.0f));
        std::size_t position = 0;
        for (std::size_t turn = 0; position < input[0].size(); ++turn)
        {
            before(position);
            const auto count = static_cast<std::int32_t>(std::min<std::size_t>(
                static_cast<std::size_t>(blocks[turn % blocks.size()]), input[0].size() - position));
            std::vector<const float*> inputs;
            std::vector<float*> outputs;
            for (std::size_t channel = 0; channel < input.size(); ++channel)
            {
                inputs.push_back(input[channel].data() + position);
                outputs.push_back(output[channel].data() + position);
            }
            ProcessChannels(inputs.data(), outputs.data(), count);
            position += static_cast<std::size_t>(count);
        }
        return output;
    }
    /// The same signal in all channels; answers the first.
    std::vector<float> Run(const std::vector<float>& input, const std::vector<std::int32_t>& blocks)
    {
        const Signals::Channels channels(static_cast<std::size_t>(channelCount), input);
        return Run(channels, blocks, [](std::size_t) {})[0];
    }
    /// The response to an impulse of 1 at sample 0, three latencies long.
    std::vector<float> Impulse(std::int32_t block = 512)
    {
        std::vector<float> input(std::size_t{ 3 } * FFTSize);
        input[0] = 1;
        return Run(input, { block });
    }

private:
    double ratio = 1;
    std::int32_t channelCount;
};
