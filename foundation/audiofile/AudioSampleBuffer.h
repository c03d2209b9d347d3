// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <memory>

/// One block of audio in memory, a float array for each channel.
///
/// Each channel that the buffer owns has a zero sample in front of the first frame and one behind the last,
/// so index -1 and index `frames` can be read.
class AudioSampleBuffer
{
public:
    static constexpr std::int32_t MaxChannels = 8;
    /// Value of one step of a compact sample.
    static constexpr float CompactScale = 1.0f / 32767.0f;

    AudioSampleBuffer() = default;
    AudioSampleBuffer(AudioSampleBuffer&&) = default;
    AudioSampleBuffer& operator=(AudioSampleBuffer&&) = default;

    /// Drops what was there and makes room for 1 to MaxChannels channels. The samples hold anything but the
    /// guards until they are written. Throws MException for other counts and when memory is short.
    void Allocate(std::int32_t channelCount, std::int32_t frameCount);
    /// Back to what construction leaves.
    void Free();
    /// The samples of a channel held as 16-bit integers; see compact.
    const std::int16_t* CompactData(std::int32_t channel) const;

    std::array<float*, MaxChannels> channelData{};   ///< the first frame of each channel
    std::array<std::unique_ptr<float[]>, MaxChannels> channelAlloc;   ///< empty where the data isn't owned
    std::int32_t frames = 0;
    double sampleRate = 44100.0;   ///< Hz
    std::int32_t channels = 1;
    float scale = 1.0f;   ///< in a qaf file the peak that full scale stands for
    std::int32_t validFrames = 0;
    std::int32_t bitsPerSample = 16;   ///< of the source
    bool isFloatSource = false;
    /// Not 0: channelData points at signed 16-bit integers in units of CompactScale. No reader produces that.
    std::int32_t compact = 0;
    bool externalData = false;   ///< the channels belong to somebody else
};
