// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/audiofile/SampleConversion.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

#include "foundation/audiofile/AudioFileErrors.h"
#include "foundation/streams/MStream.h"

namespace
{
// The greatest integer sample is 1. What is 24 bits wide has to come back the same when it is multiplied and
// rounded: the nearest float is just near enough, and only a product in double is always that.
constexpr float Scale8 = 1.0f / 127.0f;
constexpr float Scale16 = 1.0f / 32767.0f;
constexpr double Scale24 = 1.0 / 8388607.0;
constexpr float Scale32 = 4.6566134e-10f;   // 1 / 2147483647
constexpr std::int32_t BlockBytes = 1 << 18;

// Loads of single samples; memcpy, as files don't align them.
struct Load8
{
    static constexpr std::int32_t Size = 1;
    // Unsigned: 128 is silence.
    static float At(const std::uint8_t* p) { return static_cast<float>(*p - 128) * Scale8; }
};

struct Load16
{
    static constexpr std::int32_t Size = 2;
    static float At(const std::uint8_t* p)
    {
        std::int16_t value;
        std::memcpy(&value, p, sizeof value);
        return static_cast<float>(value) * Scale16;
    }
};

struct Load24
{
    static constexpr std::int32_t Size = 3;
    static float At(const std::uint8_t* p)
    {
        const auto bits =
            static_cast<std::uint32_t>(p[0] << 8 | p[1] << 16) | static_cast<std::uint32_t>(p[2]) << 24;
        return static_cast<float>((static_cast<std::int32_t>(bits) >> 8) * Scale24);
    }
};

struct Load32
{
    static constexpr std::int32_t Size = 4;
    static float At(const std::uint8_t* p)
    {
        std::int32_t value;
        std::memcpy(&value, p, sizeof value);
        return static_cast<float>(value) * Scale32;
    }
};

struct LoadFloat
{
    static constexpr std::int32_t Size = 4;
    static float At(const std::uint8_t* p)
    {
        float value;
        std::memcpy(&value, p, sizeof value);
        return value;
    }
};

template <typename Load>
void Deinterleave(const std::uint8_t* bytes, std::int32_t frameCount, std::int32_t channels,
                  float* const* dst)
{
    const std::int32_t stride = Load::Size * channels;
    for (std::int32_t channel = 0; channel < channels; ++channel)
    {
        const std::uint8_t* source = bytes + Load::Size * channel;
        float* out = dst[channel];
        if (channels == 1)
            for (std::int32_t i = 0; i < frameCount; ++i)
                out[i] = Load::At(source + Load::Size * i);
        else
            for (std::int32_t i = 0; i < frameCount; ++i)
                out[i] = Load::At(source + stride * i);
    }
}

// The case of nearly all files. Both samples of a frame come in one 32-bit word, so that the loop runs in
// vectors.
void DeinterleaveStereo16(const std::uint8_t* bytes, std::int32_t frameCount, float* left, float* right)
{
    for (std::int32_t i = 0; i < frameCount; ++i)
    {
        std::uint32_t pair;
        std::memcpy(&pair, bytes + 4 * i, sizeof pair);
        left[i] = static_cast<float>(static_cast<std::int32_t>(pair << 16) >> 16) * Scale16;
        right[i] = static_cast<float>(static_cast<std::int32_t>(pair) >> 16) * Scale16;
    }
}

void SwapBytes(std::uint8_t* bytes, std::int32_t byteCount, std::int32_t wordSize)
{
    if (wordSize == 2)
        for (std::int32_t i = 0; i + 2 <= byteCount; i += 2)
            std::swap(bytes[i], bytes[i + 1]);
    else
        for (std::int32_t i = 0; i + wordSize <= byteCount; i += wordSize)
            std::reverse(bytes + i, bytes + i + wordSize);
}
}   // namespace

void SampleLayout::Require() const
{
    const bool known = isFloat ? bits == 32 : bits == 8 || bits == 16 || bits == 24 || bits == 32;
    if (!known)
        ThrowInvalidContents("Invalid source bitrate.");
}

void DeinterleaveSamples(const std::uint8_t* bytes, std::int32_t frameCount, const SampleLayout& layout,
                         float* const* outChannels)
{
    if (layout.isFloat)
        Deinterleave<LoadFloat>(bytes, frameCount, layout.channels, outChannels);
    else if (layout.bits == 8)
        Deinterleave<Load8>(bytes, frameCount, layout.channels, outChannels);
    else if (layout.bits == 16 && layout.channels == 2)
        DeinterleaveStereo16(bytes, frameCount, outChannels[0], outChannels[1]);
    else if (layout.bits == 16)
        Deinterleave<Load16>(bytes, frameCount, layout.channels, outChannels);
    else if (layout.bits == 24)
        Deinterleave<Load24>(bytes, frameCount, layout.channels, outChannels);
    else
        Deinterleave<Load32>(bytes, frameCount, layout.channels, outChannels);
}

void ReadSamples(AudioSampleBuffer& buffer, MStream& stream, std::int64_t byteCount,
                 const SampleLayout& layout, const MString& shortDetail, const LoadProgress& progress)
{
    layout.Require();
    if (RemainingBytes(stream) < byteCount)
        ThrowInvalidContents(shortDetail);
    const std::int32_t frameBytes = layout.BytesPerFrame();
    buffer.Allocate(layout.channels, static_cast<std::int32_t>(std::min<std::int64_t>(
                                         byteCount / frameBytes, std::numeric_limits<std::int32_t>::max())));
    buffer.bitsPerSample = layout.bits;
    buffer.isFloatSource = layout.isFloat;

    const std::int32_t blockFrames = BlockBytes / frameBytes;
    std::vector<std::uint8_t> block(
        static_cast<std::size_t>(std::min(blockFrames, buffer.frames) * frameBytes));
    std::array<float*, AudioSampleBuffer::MaxChannels> out{};
    for (std::int32_t offset = 0; offset < buffer.frames; offset += blockFrames)
    {
        progress.Report(static_cast<double>(offset) / buffer.frames);
        const std::int32_t count = std::min(blockFrames, buffer.frames - offset);
        ReadRequired(stream, block.data(), count * frameBytes, shortDetail);
        if (layout.bigEndian)
            SwapBytes(block.data(), count * frameBytes, layout.bits / 8);
        if (layout.signedBytes && layout.bits == 8)
            for (std::uint8_t& byte : block)
                byte ^= 0x80;
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(layout.channels); ++channel)
            out[channel] = buffer.channelData[channel] + offset;
        DeinterleaveSamples(block.data(), count, layout, out.data());
    }
}

void ConvertSamples(AudioSampleBuffer& buffer, const void* bytes, std::int32_t byteCount, std::int32_t bits,
                    std::int32_t channels, bool isFloat)
{
    RequireChannels(channels);
    const SampleLayout layout{ bits, channels, isFloat && bits == 32, false, false };
    layout.Require();
    buffer.Allocate(channels, byteCount / layout.BytesPerFrame());
    buffer.bitsPerSample = bits;
    buffer.isFloatSource = layout.isFloat;
    DeinterleaveSamples(static_cast<const std::uint8_t*>(bytes), buffer.frames, layout,
                        buffer.channelData.data());
}
