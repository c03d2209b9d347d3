// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/equalizer/EngineSwitch.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>

#include "foundation/vector/Saturation.h"
#include "foundation/vector/VectorOperations.h"

void EngineSwitch::Prepare(std::int32_t channels, double sampleRate)
{
    assert(channels >= 1 && channels <= EqualizerGeometry::MaxChannels);
    history.assign(static_cast<std::size_t>(channels), std::vector<float>(HistorySize));
    second.assign(static_cast<std::size_t>(channels), std::vector<float>(PieceSize));
    fadeLength = std::max(static_cast<std::int32_t>(std::lround(FadeSeconds * sampleRate)), 1);
    Reset();
}

void EngineSwitch::Reset()
{
    for (std::vector<float>& ring : history)
        std::fill(ring.begin(), ring.end(), 0.0f);
    position = 0;
    started = false;
    entering = nullptr;
    playing = selected;
}

void EngineSwitch::Select(EqualizerEngine& engine)
{
    selected = &engine;
    if (!started)
        playing = selected;
}

void EngineSwitch::Process(const float* const* inputs, float* const* outputs, std::int32_t frames,
                           bool enabled)
{
    started = started || frames > 0;
    for (std::int32_t done = 0; done < frames;)
    {
        const bool fading = entering != nullptr && lag == 0;
        if (selected != (entering != nullptr ? entering : playing) && !fading)
        {
            // Back to what still plays, or on to something else.
            entering = selected != playing ? selected : nullptr;
            if (entering != nullptr)
                entering->Reset();
            lag = WarmSamples;
            faded = 0;
        }
        const std::int32_t n = PieceLength(frames - done);
        Outputs out{};
        for (std::size_t channel = 0; channel < history.size(); ++channel)
        {
            MVector::Copy(inputs[channel] + done, history[channel].data() + position, n);
            out[channel] = outputs[channel] + done;
        }
        playing->SetEnabled(enabled);
        playing->Process(HistoryAt(position).data(), out.data(), n);
        if (entering != nullptr)
            ChangeOver(out, n, enabled);
        position = (position + n) % HistorySize;
        done += n;
    }
}

void EngineSwitch::ReadDelayed(std::int32_t channel, const float* input, float* delayed,
                               std::int32_t frames) const
{
    constexpr std::int32_t latency = EqualizerGeometry::LatencySamples;
    const float* ring = history[static_cast<std::size_t>(channel)].data();
    const std::int32_t past = std::min(frames, latency);
    const std::int32_t begin = (position - latency + HistorySize) % HistorySize;
    const std::int32_t first = std::min(past, HistorySize - begin);
    MVector::Copy(ring + begin, delayed, first);
    MVector::Copy(ring, delayed + first, past - first);
    MVector::Copy(input, delayed + past, frames - past);
}

/// Ends where the ring does, where the entering engine has caught up, and where the fade ends.
std::int32_t EngineSwitch::PieceLength(std::int32_t wanted) const
{
    std::int32_t n = std::min({ wanted, PieceSize, HistorySize - position });
    if (entering != nullptr)
        n = std::min(n, lag > 0 ? (lag + CatchUpSpeed - 2) / (CatchUpSpeed - 1) : fadeLength - faded);
    return n;
}

EngineSwitch::Inputs EngineSwitch::HistoryAt(std::int32_t place) const
{
    Inputs pointers{};
    for (std::size_t channel = 0; channel < history.size(); ++channel)
        pointers[channel] = history[channel].data() + place;
    return pointers;
}

void EngineSwitch::ChangeOver(const Outputs& outputs, std::int32_t n, bool enabled)
{
    entering->SetEnabled(enabled);
    if (lag > 0)
    {
        const std::int32_t fed = std::min(CatchUpSpeed * n, lag + n);
        Feed(fed);
        lag += n - fed;
        return;
    }
    Fade(outputs, n);
    faded += n;
    if (faded < fadeLength)
        return;
    playing = entering;
    entering = nullptr;
}

/// The oldest n samples that the entering engine has not heard; what it puts out is not heard.
void EngineSwitch::Feed(std::int32_t n)
{
    Outputs unheard{};
    for (std::size_t channel = 0; channel < second.size(); ++channel)
        unheard[channel] = second[channel].data();
    std::int32_t place = (position - lag + HistorySize) % HistorySize;
    while (n > 0)
    {
        const std::int32_t run = std::min({ n, PieceSize, HistorySize - place });
        entering->Process(HistoryAt(place).data(), unheard.data(), run);
        place = (place + run) % HistorySize;
        n -= run;
    }
}

void EngineSwitch::Fade(const Outputs& outputs, std::int32_t n)
{
    Outputs other{};
    for (std::size_t channel = 0; channel < second.size(); ++channel)
        other[channel] = second[channel].data();
    entering->Process(HistoryAt(position).data(), other.data(), n);
    const double step = 1.0 / fadeLength;
    for (std::size_t channel = 0; channel < second.size(); ++channel)
    {
        MVector::MultiplyRampInPlace(outputs[channel], n, 1.0 - faded * step, -step);
        MVector::MultiplyRampInPlace(other[channel], n, faded * step, step);
        MVector::AddInPlace(other[channel], outputs[channel], n);
    }
}
