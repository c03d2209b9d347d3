// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include <FLAC/stream_encoder.h>
#include <gtest/gtest.h>

#include "foundation/audiofile/AudioFile.h"
#include "foundation/streams/MMemoryStream.h"
#include "foundation/text/MException.h"

/// Files put together byte by byte.
struct FileBytes : std::vector<std::uint8_t>
{
    FileBytes& Text(std::string_view text)
    {
        insert(end(), text.begin(), text.end());
        return *this;
    }
    FileBytes& Little(auto value, int byteCount)
    {
        for (int i = 0; i < byteCount; ++i)
            push_back(static_cast<std::uint8_t>(i < 8 ? static_cast<std::uint64_t>(value) >> (8 * i) : 0));
        return *this;
    }
    FileBytes& Big(auto value, int byteCount)
    {
        for (int i = byteCount - 1; i >= 0; --i)
            push_back(static_cast<std::uint8_t>(i < 8 ? static_cast<std::uint64_t>(value) >> (8 * i) : 0));
        return *this;
    }
    FileBytes& Append(const std::vector<std::uint8_t>& bytes)
    {
        insert(end(), bytes.begin(), bytes.end());
        return *this;
    }
    FileBytes Cut(std::size_t length) const
    {
        FileBytes bytes = *this;
        bytes.resize(length);
        return bytes;
    }
    FileBytes Patched(std::size_t position, const FileBytes& patch) const
    {
        FileBytes bytes = *this;
        std::copy(patch.begin(), patch.end(), bytes.begin() + static_cast<std::ptrdiff_t>(position));
        return bytes;
    }
    /// The path of a file of this content in the test's own folder.
    MString Save(const std::string& name) const
    {
        const std::string path = std::string(std::getenv("TONALIGN_TEST_FOLDER")) + "/" + name;
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(data()), static_cast<std::streamsize>(size()));
        return MString::FromUTF8(path);
    }
    static FileBytes Of(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        FileBytes bytes;
        bytes.assign(std::istreambuf_iterator<char>(file), {});
        return bytes;
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

struct AudioOptions
{
    int channels = 2;
    int bits = 16;
    bool isFloat = false;
    int frames = 37;
    double sampleRate = 48000;
    std::string before;   // chunks in front of the format
    int formatExtra = 0;   // WAVE: bytes behind the plain format
    bool isExtensible = false;   // WAVE
    std::string compression;   // AIFF-C: four letters
    int offset = 0;   // AIFF: bytes in front of the samples
};

inline FileBytes Samples(const AudioOptions& options, bool isBig)
{
    FileBytes data;
    for (int frame = 0; frame < options.frames; ++frame)
        for (int channel = 0; channel < options.channels; ++channel)
        {
            std::int64_t value = TestInteger(frame, channel, options.bits);
            if (options.isFloat)
                value = std::bit_cast<std::int32_t>(static_cast<float>(TestSample(frame, channel)));
            if (isBig)
                data.Big(value, options.bits / 8);
            else
                data.Little(options.bits == 8 ? value + 128 : value, options.bits / 8);
        }
    return data;
}

inline FileBytes WaveFile(const AudioOptions& options)
{
    const int frameBytes = options.channels * options.bits / 8;
    const int tag = options.isFloat ? 3 : 1;
    FileBytes file;
    file.Text("RIFF").Little(0, 4).Text("WAVE").Text(options.before).Text("fmt ");
    file.Little(16 + (options.isExtensible ? 24 : 0) + options.formatExtra, 4);
    file.Little(options.isExtensible ? 0xFFFE : tag, 2).Little(options.channels, 2);
    file.Little(options.sampleRate, 4).Little(options.sampleRate * frameBytes, 4);
    file.Little(frameBytes, 2).Little(options.bits, 2);
    if (options.isExtensible)
        file.Little(22, 2).Little(options.bits, 2).Little(0, 4).Little(tag, 2).Little(0x1000000000, 14);
    file.Append(std::vector<std::uint8_t>(static_cast<std::size_t>(options.formatExtra)));
    const FileBytes data = Samples(options, false);
    return file.Text("data").Little(data.size(), 4).Append(data);
}

/// IEEE 754 80-bit extended, big-endian.
inline FileBytes Extended(double value)
{
    int exponent = 0;
    const double mantissa = std::frexp(value, &exponent);
    return FileBytes().Big(exponent - 1 + 16383, 2).Big(std::ldexp(mantissa, 64), 8);
}

inline FileBytes AiffFile(const AudioOptions& options)
{
    FileBytes file;
    file.Text("FORM").Big(0, 4).Text(options.compression.empty() ? "AIFF" : "AIFC").Text(options.before);
    file.Text("COMM").Big(18 + options.compression.size(), 4).Big(options.channels, 2);
    file.Big(options.frames, 4).Big(options.bits, 2).Append(Extended(options.sampleRate));
    const FileBytes data = Samples(options, options.compression != "sowt");
    file.Text(options.compression)
        .Text("SSND")
        .Big(data.size() + 8 + static_cast<std::size_t>(options.offset), 4);
    file.Big(options.offset, 4).Big(0, 4);
    return file.Append(std::vector<std::uint8_t>(static_cast<std::size_t>(options.offset), 0x5A))
        .Append(data);
}

/// The samples are multiplied by the scale when they are read.
inline FileBytes QafFile(const AudioOptions& options, float scale = 1.0f)
{
    FileBytes file;
    file.Text("QAF1").Append(std::vector<std::uint8_t>(32, 0xEE)).Little(options.sampleRate, 4);
    file.Little(options.channels, 4).Little(options.frames, 4);
    file.Little(std::bit_cast<std::uint32_t>(scale), 4).Little(0, 8);
    for (int channel = 0; channel < options.channels; ++channel)
        for (int frame = 0; frame < options.frames; ++frame)
            file.Little(TestInteger(frame, channel, 32), 4);
    return file;
}

inline FileBytes FlacFile(const AudioOptions& options, std::uint32_t blockSize = 1024, bool isSilent = false)
{
    const std::string path = FileBytes().Save("encoded.flac").ToUTF8();
    FLAC__StreamEncoder* encoder = FLAC__stream_encoder_new();
    FLAC__stream_encoder_set_channels(encoder, static_cast<std::uint32_t>(options.channels));
    FLAC__stream_encoder_set_bits_per_sample(encoder, static_cast<std::uint32_t>(options.bits));
    FLAC__stream_encoder_set_sample_rate(encoder, static_cast<std::uint32_t>(options.sampleRate));
    FLAC__stream_encoder_set_streamable_subset(encoder, 0);
    FLAC__stream_encoder_set_blocksize(encoder, blockSize);
    FLAC__stream_encoder_init_file(encoder, path.c_str(), nullptr, nullptr);
    std::vector<FLAC__int32> interleaved;
    for (int frame = 0; frame < options.frames; ++frame)
        for (int channel = 0; channel < options.channels; ++channel)
            interleaved.push_back(
                isSilent ? 0 : static_cast<FLAC__int32>(TestInteger(frame, channel, options.bits)));
    EXPECT_TRUE(FLAC__stream_encoder_process_interleaved(encoder, interleaved.data(),
                                                         static_cast<std::uint32_t>(options.frames)));
    EXPECT_TRUE(FLAC__stream_encoder_finish(encoder));
    FLAC__stream_encoder_delete(encoder);
    return FileBytes::Of(path);
}

using Reader = void (*)(AudioSampleBuffer&, MStream&, const LoadProgress&);

/// Reads a file that stands behind other bytes of the stream.
inline AudioSampleBuffer Load(Reader reader, const FileBytes& file, const LoadProgress& progress = {})
{
    const FileBytes bytes = FileBytes().Text("other").Append(file);
    MMemoryStream stream = MMemoryStream::Borrow(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    stream.Seek(5, MStream::Begin);
    AudioSampleBuffer buffer;
    reader(buffer, stream, progress);
    return buffer;
}

/// The text behind "Invalid file contents. "; empty if nothing was thrown.
std::string Refusal(auto&& action)
{
    try
    {
        action();
    }
    catch (const MException& exception)
    {
        const std::string text = exception.Message.ToUTF8();
        const std::string prefix = "Invalid file contents. ";
        EXPECT_EQ(text.substr(0, prefix.size()), prefix);
        EXPECT_EQ(exception.Code, static_cast<int>(MErrorCode::Content));
        return text.substr(std::min(prefix.size(), text.size()));
    }
    return {};
}

struct RefusedFile
{
    Reader reader;
    FileBytes file;
    std::string detail;
};

inline void ExpectRefusals(const std::vector<RefusedFile>& rows)
{
    for (const auto& [reader, file, detail] : rows)
        EXPECT_EQ(Refusal([&r = reader, &f = file] { Load(r, f); }), detail) << &detail - &rows[0].detail;
}

inline void ExpectSignal(const AudioSampleBuffer& buffer, const AudioOptions& options)
{
    ASSERT_EQ(buffer.channels, options.channels);
    ASSERT_EQ(buffer.frames, options.frames);
    EXPECT_EQ(buffer.validFrames, options.frames);
    EXPECT_EQ(buffer.sampleRate, options.sampleRate);
    EXPECT_EQ(buffer.bitsPerSample, options.bits);
    EXPECT_EQ(buffer.isFloatSource, options.isFloat);
    // Half a step of the stored integers, and float rounding.
    const double step = 1.0 / (std::ldexp(1.0, options.bits - 1) - 1);
    const double tolerance = options.isFloat ? 1e-7 : 0.51 * step + 2e-7;
    for (int channel = 0; channel < options.channels; ++channel)
    {
        const float* samples = buffer.channelData[static_cast<std::size_t>(channel)];
        EXPECT_EQ(samples[-1], 0.0f);
        EXPECT_EQ(samples[options.frames], 0.0f);
        for (int frame = 0; frame < options.frames; ++frame)
            ASSERT_NEAR(samples[frame], buffer.scale * TestSample(frame, channel), tolerance)
                << "channel " << channel << ", frame " << frame;
    }
}
