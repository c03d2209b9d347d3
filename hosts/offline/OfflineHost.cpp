// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/offline/OfflineHost.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"

OfflineHost::OfflineHost() : plugin(CreateInstance(StartingSettings::OfTheSystem))
{
    plugin->adapter = this;
    plugin->InitProcessing();
    ReportLatency();
}

OfflineHost::~OfflineHost()
{
    plugin->adapter = nullptr;
}

void OfflineHost::ReportLatency()
{
    latencySamples = plugin->TotalLatency();
}

void OfflineHost::SetGroupWidth(std::int32_t channels)
{
    const bool wide = channels > BusLayout::StereoWidth;
    if (wide)
        plugin->channelMode = ChannelMode::Surround;
    else if (plugin->channelMode == ChannelMode::Surround)
        plugin->channelMode = ChannelMode::LeftAndRight;
    if (wide != plugin->buses.IsSurround())
        plugin->SetSurround(wide);
}

void OfflineHost::Prepare(double sampleRate, std::int32_t channels)
{
    if (channels < 1 || channels > 8)
        throw MException(Format("{0} channels can't be processed; 1 to 8 can.", channels),
                         MErrorCode::InvalidArgument);
    SetGroupWidth(channels);
    plugin->SetConnectedChannels(channels, channels);
    plugin->InitProcessing(sampleRate);
    plugin->ResetUpsamplers();
}

bool OfflineHost::SetParameterById(const MString& id, double value)
{
    MPluginDescription& description = Effect().description;
    for (std::int32_t index = 0; index < description.parameterCount; ++index)
    {
        MPluginParameterInfo& info = description.parameters[index];
        if (!(info.id == id) || !std::isfinite(value))
            continue;
        if (info.type == ParameterType::Float)
        {
            if (value < info.number.minimum || value > info.number.maximum)
                return false;
            info.number.value = value;
        }
        else if (info.type == ParameterType::Enumeration)
        {
            if (value < 0 || value >= info.enumeration.count)
                return false;
            info.enumeration.index = static_cast<std::int32_t>(value);
        }
        else
        {
            return false;
        }
        Effect().OnParameterChange(index);
        description.RequestUpdate();
        return true;
    }
    return false;
}

void OfflineHost::Render(const AudioSampleBuffer& input, std::int32_t blockFrames, const Sink& sink,
                         const Progress& progress)
{
    if (blockFrames < 1)
        throw MException("The block size must be at least 1.", MErrorCode::InvalidArgument);
    constexpr std::size_t stride = BusLayout::SurroundWidth;
    const auto channels = static_cast<std::size_t>(input.channels);
    std::vector<std::vector<float>> inBuffers(channels,
                                              std::vector<float>(static_cast<std::size_t>(blockFrames)));
    std::vector<std::vector<float>> outBuffers = inBuffers;
    std::array<float*, stride> inputs{};
    std::array<float*, stride> outputs{};

    const std::int64_t latency = latencySamples;
    const std::int64_t total = latency + input.frames;
    for (std::int64_t position = 0; position < total; position += blockFrames)
    {
        const auto frames = static_cast<std::int32_t>(std::min<std::int64_t>(blockFrames, total - position));
        const std::int64_t available = std::clamp<std::int64_t>(input.frames - position, 0, frames);
        for (std::size_t channel = 0; channel < channels; ++channel)
        {
            // Whole blocks; behind the end comes silence.
            inputs[channel] = inBuffers[channel].data();
            outputs[channel] = outBuffers[channel].data();
            std::copy_n(input.channelData[channel] + position, available, inputs[channel]);
            std::fill_n(inputs[channel] + available, frames - available, 0.0f);
        }
        plugin->ProcessBlock(inputs.data(), outputs.data(), frames, true);

        // The first `latency` samples come before the input's start.
        const auto early = static_cast<std::int32_t>(std::clamp<std::int64_t>(latency - position, 0, frames));
        if (early < frames)
        {
            std::array<const float*, stride> rest{};
            for (std::size_t channel = 0; channel < channels; ++channel)
                rest[channel] = outputs[channel] + early;
            sink(rest.data(), frames - early);
        }
        // Often enough to stop within a second, seldom enough not to be felt.
        constexpr std::int64_t reportInterval = 1 << 16;
        if (progress && position / reportInterval != (position + frames) / reportInterval &&
            !progress(static_cast<double>(position) / static_cast<double>(total)))
            throw MException("Cancelled.");
    }
}
