// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Files put together byte by byte.
struct FileBytes : std::vector<std::uint8_t>
{
    FileBytes& Text(std::string_view text)
    {
        insert(end(), text.begin(), text.end());
        return *this;
    }
    FileBytes& Little(std::uint64_t value, int byteCount)
    {
        for (int i = 0; i < byteCount; ++i)
            push_back(static_cast<std::uint8_t>(value >> (8 * i)));
        return *this;
    }
    FileBytes& Big(std::uint64_t value, int byteCount)
    {
        for (int i = byteCount - 1; i >= 0; --i)
            push_back(static_cast<std::uint8_t>(value >> (8 * i)));
        return *this;
    }
    FileBytes& Append(const std::vector<std::uint8_t>& bytes)
    {
        insert(end(), bytes.begin(), bytes.end());
        return *this;
    }
};

/// A signal in steps of full scale that tells all channels and frames apart: -1 to 1.
inline double TestSample(int frame, int channel)
{
    return std::sin(0.37 * frame + 1.1 * channel) * (0.5 + 0.06 * channel);
}

/// The stored integer of TestSample in `bits` bits.
inline std::int64_t TestInteger(int frame, int channel, int bits)
{
    return std::llround(TestSample(frame, channel) *
                        static_cast<double>((std::int64_t{ 1 } << (bits - 1)) - 1));
}

struct WaveOptions
{
    int tag = 1;
    int channels = 2;
    int sampleRate = 48000;
    int bits = 16;
    int frames = 37;
    int formatExtra = 0;   // bytes behind the plain format
    int extensibleTag = -1;   // with it the tag is 0xFFFE
    std::string before;   // chunks in front of the data
};

inline FileBytes WaveData(const WaveOptions& options)
{
    FileBytes data;
    for (int frame = 0; frame < options.frames; ++frame)
        for (int channel = 0; channel < options.channels; ++channel)
        {
            if (options.tag == 3 || options.extensibleTag == 3)
                data.Little(std::bit_cast<std::uint32_t>(static_cast<float>(TestSample(frame, channel))), 4);
            else if (options.bits == 8)
                data.Little(static_cast<std::uint64_t>(TestInteger(frame, channel, 8) + 128), 1);
            else
                data.Little(static_cast<std::uint64_t>(TestInteger(frame, channel, options.bits)),
                            options.bits / 8);
        }
    return data;
}

inline FileBytes WaveFile(const WaveOptions& options)
{
    const FileBytes data = WaveData(options);
    FileBytes file;
    file.Text("RIFF").Little(0, 4).Text("WAVE");
    const int extra = options.extensibleTag >= 0 ? 24 : options.formatExtra;
    file.Text("fmt ").Little(static_cast<std::uint64_t>(16 + extra), 4);
    file.Little(static_cast<std::uint64_t>(options.extensibleTag >= 0 ? 0xFFFE : options.tag), 2);
    file.Little(static_cast<std::uint64_t>(options.channels), 2)
        .Little(static_cast<std::uint64_t>(options.sampleRate), 4);
    const int frameBytes = options.channels * options.bits / 8;
    file.Little(static_cast<std::uint64_t>(options.sampleRate * frameBytes), 4);
    file.Little(static_cast<std::uint64_t>(frameBytes), 2)
        .Little(static_cast<std::uint64_t>(options.bits), 2);
    if (options.extensibleTag >= 0)
    {
        file.Little(22, 2).Little(static_cast<std::uint64_t>(options.bits), 2).Little(0, 4);
        file.Little(static_cast<std::uint64_t>(options.extensibleTag), 2)
            .Little(0, 4)
            .Little(0x10, 4)
            .Little(0, 6);
    }
    else
        file.Append(std::vector<std::uint8_t>(static_cast<std::size_t>(extra)));
    file.Text(options.before);
    return file.Text("data").Little(data.size(), 4).Append(data), file;
}

struct AiffOptions
{
    std::string type = "AIFF";
    std::string compression;   // AIFC: four letters
    int channels = 2;
    int bits = 16;
    int frames = 37;
    double sampleRate = 44100;
    int offset = 0;   // bytes in front of the samples
    std::string before;   // chunks in front of COMM
};

/// IEEE 754 80-bit extended, big-endian.
inline FileBytes Extended(double value)
{
    int exponent = 0;
    const double mantissa = std::frexp(value, &exponent);
    FileBytes bytes;
    bytes.Big(static_cast<std::uint64_t>(exponent - 1 + 16383), 2);
    return bytes.Big(static_cast<std::uint64_t>(std::ldexp(mantissa, 64)), 8), bytes;
}

inline FileBytes AiffFile(const AiffOptions& options)
{
    FileBytes data;
    const bool isFloat = options.compression == "fl32" || options.compression == "FL32";
    for (int frame = 0; frame < options.frames; ++frame)
        for (int channel = 0; channel < options.channels; ++channel)
        {
            const auto value =
                isFloat ? std::bit_cast<std::uint32_t>(static_cast<float>(TestSample(frame, channel)))
                        : static_cast<std::uint64_t>(TestInteger(frame, channel, options.bits));
            if (options.compression == "sowt")
                data.Little(value, options.bits / 8);
            else
                data.Big(value, options.bits / 8);
        }
    FileBytes file;
    file.Text("FORM").Big(0, 4).Text(options.type).Text(options.before);
    file.Text("COMM")
        .Big(18 + options.compression.size(), 4)
        .Big(static_cast<std::uint64_t>(options.channels), 2);
    file.Big(static_cast<std::uint64_t>(options.frames), 4).Big(static_cast<std::uint64_t>(options.bits), 2);
    file.Append(Extended(options.sampleRate)).Text(options.compression);
    file.Text("SSND").Big(data.size() + 8 + static_cast<std::size_t>(options.offset), 4);
    file.Big(static_cast<std::uint64_t>(options.offset), 4).Big(0, 4);
    file.Append(std::vector<std::uint8_t>(static_cast<std::size_t>(options.offset), 0x5A));
    return file.Append(data), file;
}

inline FileBytes QafFile(int channels, int frames, float scale, int sampleRate = 48000)
{
    FileBytes file;
    file.Text("QAF1").Append(std::vector<std::uint8_t>(32, 0xEE));
    file.Little(static_cast<std::uint64_t>(sampleRate), 4).Little(static_cast<std::uint64_t>(channels), 4);
    file.Little(static_cast<std::uint64_t>(frames), 4)
        .Little(std::bit_cast<std::uint32_t>(scale), 4)
        .Little(0, 8);
    for (int channel = 0; channel < channels; ++channel)
        for (int frame = 0; frame < frames; ++frame)
            file.Little(static_cast<std::uint64_t>(TestInteger(frame, channel, 32)), 4);
    return file;
}
