// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

#include "effect/MEqualizerProcessorPlugin.h"
#include "plugin/contract/MAudioEffectPlugin.h"

/// The least effect that an equalizer needs around it.
class EqualizerHarness : public MAudioEffectPlugin
{
public:
    explicit EqualizerHarness(EqualizerMode mode, double rate = 48000, std::int32_t channels = 1)
        : equalizer(Describe())
    {
        parameters[MEqualizerProcessorPlugin::Mode].enumeration.index = static_cast<std::int32_t>(mode);
        for (std::int32_t index = 0; index < MEqualizerBase::BandCount; ++index)
            equalizer.Band(index).enabled = false;
        InitProcessing(channels, rate);
        Update();
        AcceptValues();
    }

    std::int64_t InitProcessing(std::int32_t channels, double rate) override
    {
        channelGroups = channels;
        sampleRate = rate;
        equalizer.InitProcessing(channels);
        return 0;
    }
    void Update() override { equalizer.ApplyParameters(); }
    void Process(const MProcessContext&, float** inputs, float** outputs, std::int32_t count) override
    {
        equalizer.Process(inputs, outputs, count, channelGroups);
    }

    BandPoint& SetBand(std::int32_t index, std::int32_t type, double hertz, double gainDb, double q)
    {
        BandPoint& band = equalizer.Band(index);
        band.enabled = true;
        band.type = type;
        band.x = std::log10(hertz);
        band.y = gainDb;
        band.width = WidthFromQ(q);
        return band;
    }

    /// Runs one channel through in blocks of the sizes given, again and again.
    std::vector<float> Run(const std::vector<float>& input, const std::vector<std::int32_t>& blocks)
    {
        std::vector<float> output(input.size());
        std::vector<float> in(input);
        std::size_t position = 0;
        for (std::size_t turn = 0; position < input.size(); ++turn)
        {
            const auto count = static_cast<std::int32_t>(std::min<std::size_t>(
                static_cast<std::size_t>(blocks[turn % blocks.size()]), input.size() - position));
            std::vector<float*> inputs(static_cast<std::size_t>(channelGroups), in.data() + position);
            std::vector<std::vector<float>> others(static_cast<std::size_t>(channelGroups),
                                                   std::vector<float>(static_cast<std::size_t>(count)));
            std::vector<float*> outputs{ output.data() + position };
            for (std::size_t channel = 1; channel < others.size(); ++channel)
                outputs.push_back(others[channel].data());
            Process({}, inputs.data(), outputs.data(), count);
            position += static_cast<std::size_t>(count);
        }
        return output;
    }

    /// The response to an impulse of 1 at sample 0, three latencies long.
    std::vector<float> Impulse(std::int32_t block = 512)
    {
        std::vector<float> input(std::size_t{ 3 } * MEqualizerProcessor::FFTSize);
        input[0] = 1;
        return Run(input, { block });
    }

    std::array<MPluginParameterInfo, 4> parameters;
    MEqualizerProcessorPlugin equalizer;

private:
    MAudioEffectPlugin& Describe()
    {
        MEqualizerProcessorPlugin::DescribeParameters(parameters.data());
        description.parameters = parameters.data();
        description.parameterCount = 4;
        return *this;
    }
};

/// Magnitude in dB of a response at a frequency, by the definition of the Fourier transform.
inline double MeasuredDb(const std::vector<float>& response, double hertz, double rate)
{
    const std::complex<double> step = std::polar(1.0, -2 * std::numbers::pi * hertz / rate);
    std::complex<double> rotation = 1;
    std::complex<double> sum = 0;
    for (std::size_t index = 0; index < response.size(); ++index)
    {
        if (index % 1024 == 0)
            rotation = std::polar(1.0, -2 * std::numbers::pi * hertz / rate * static_cast<double>(index));
        sum += static_cast<double>(response[index]) * rotation;
        rotation *= step;
    }
    return 20 * std::log10(std::abs(sum));
}
