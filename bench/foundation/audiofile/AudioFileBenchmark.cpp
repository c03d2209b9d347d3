// SPDX-License-Identifier: GPL-3.0-or-later
// How many times faster than it plays audio is decoded and resampled: one minute of stereo from memory, so
// that no disk takes part. The counter "realtime" is seconds of audio for each second of work.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <FLAC/stream_encoder.h>
#include <benchmark/benchmark.h>

#include "foundation/audiofile/AudioFile.h"
#include "foundation/streams/MMemoryStream.h"

namespace
{
constexpr int Seconds = 60;

// Noise with a falling spectrum and a few lines, so that FLAC finds about as much to compress as in music.
std::vector<std::int16_t> Music(int sampleRate)
{
    std::mt19937 random(3);
    std::normal_distribution<float> normal(0.0f, 1.0f);
    std::vector<std::int16_t> samples(static_cast<std::size_t>(2 * Seconds * sampleRate));
    float state[2] = {};
    for (std::size_t i = 0; i < samples.size(); ++i)
    {
        float& low = state[i % 2];
        low += 0.1f * (normal(random) - low);
        const auto time = static_cast<float>(i / 2) / static_cast<float>(sampleRate);
        samples[i] =
            static_cast<std::int16_t>(8000.0f * low + 4000.0f * std::sin(2764.0f * std::fmod(time, 10.0f)));
    }
    return samples;
}

std::vector<std::uint8_t> Wave(int sampleRate, int bits)
{
    const std::vector<std::int16_t> samples = Music(sampleRate);
    const std::size_t sampleBytes = static_cast<std::size_t>(bits / 8);
    std::vector<std::uint8_t> file(44 + samples.size() * sampleBytes);
    const auto put = [&](std::size_t position, std::uint32_t value, std::size_t count)
    {
        std::memcpy(file.data() + position, &value, count);
    };
    std::memcpy(file.data(), "RIFF....WAVEfmt ", 16);
    put(16, 16, 4);
    put(20, bits == 32 ? 3 : 1, 2);
    put(22, 2, 2);
    put(24, static_cast<std::uint32_t>(sampleRate), 4);
    put(34, static_cast<std::uint32_t>(bits), 2);
    std::memcpy(file.data() + 36, "data", 4);
    put(40, static_cast<std::uint32_t>(file.size() - 44), 4);
    for (std::size_t i = 0; i < samples.size(); ++i)
    {
        const float real = static_cast<float>(samples[i]) / 32768.0f;
        const std::int32_t wide = samples[i] * 65536;
        if (bits == 32)
            std::memcpy(file.data() + 44 + 4 * i, &real, 4);
        else
            std::memcpy(file.data() + 44 + sampleBytes * i,
                        reinterpret_cast<const std::uint8_t*>(&wide) + 4 - sampleBytes, sampleBytes);
    }
    return file;
}

FLAC__StreamEncoderWriteStatus Append(const FLAC__StreamEncoder*, const FLAC__byte* buffer, std::size_t size,
                                      std::uint32_t, std::uint32_t, void* client)
{
    auto& file = *static_cast<std::vector<std::uint8_t>*>(client);
    file.insert(file.end(), buffer, buffer + size);
    return FLAC__STREAM_ENCODER_WRITE_STATUS_OK;
}

std::vector<std::uint8_t> Flac(int sampleRate)
{
    const std::vector<std::int16_t> samples = Music(sampleRate);
    const std::vector<FLAC__int32> wide(samples.begin(), samples.end());
    const auto frames = static_cast<std::uint32_t>(samples.size() / 2);
    std::vector<std::uint8_t> file;
    FLAC__StreamEncoder* encoder = FLAC__stream_encoder_new();
    FLAC__stream_encoder_set_sample_rate(encoder, static_cast<std::uint32_t>(sampleRate));
    FLAC__stream_encoder_set_total_samples_estimate(encoder, frames);
    FLAC__stream_encoder_init_stream(encoder, Append, nullptr, nullptr, nullptr, &file);
    FLAC__stream_encoder_process_interleaved(encoder, wide.data(), frames);
    FLAC__stream_encoder_finish(encoder);
    FLAC__stream_encoder_delete(encoder);
    return file;
}

void Decode(benchmark::State& state, const std::vector<std::uint8_t>& file,
            void (*reader)(AudioSampleBuffer&, MStream&, const LoadProgress&), double resampledRate)
{
    for (auto _ : state)
    {
        MMemoryStream stream = MMemoryStream::Borrow(file.data(), static_cast<std::int32_t>(file.size()));
        AudioSampleBuffer buffer;
        reader(buffer, stream, {});
        if (resampledRate > 0)
            Resample(buffer, resampledRate);
        benchmark::DoNotOptimize(buffer.channelData[0]);
        benchmark::ClobberMemory();
    }
    state.counters["realtime"] = benchmark::Counter(Seconds, benchmark::Counter::kIsIterationInvariantRate,
                                                    benchmark::Counter::kIs1000);
}

void DecodeWave(benchmark::State& state)
{
    Decode(state, Wave(48000, static_cast<int>(state.range(0))), LoadWave, 0);
}

void DecodeFlac(benchmark::State& state)
{
    Decode(state, Flac(44100), LoadFlac, 0);
}

void DecodeFlacAndResample(benchmark::State& state)
{
    Decode(state, Flac(44100), LoadFlac, 48000);
}

void ResampleStereo(benchmark::State& state)
{
    const std::vector<std::uint8_t> file = Wave(44100, 16);
    for (auto _ : state)
    {
        state.PauseTiming();
        MMemoryStream stream = MMemoryStream::Borrow(file.data(), static_cast<std::int32_t>(file.size()));
        AudioSampleBuffer buffer;
        LoadWave(buffer, stream);
        state.ResumeTiming();
        Resample(buffer, 48000);
        benchmark::DoNotOptimize(buffer.channelData[0]);
    }
    state.counters["realtime"] = benchmark::Counter(Seconds, benchmark::Counter::kIsIterationInvariantRate,
                                                    benchmark::Counter::kIs1000);
}

// What decoding can't get below: filling as much new memory once.
void FillTheSameMemory(benchmark::State& state)
{
    for (auto _ : state)
    {
        AudioSampleBuffer buffer;
        buffer.Allocate(2, Seconds * 48000);
        for (std::size_t channel = 0; channel < 2; ++channel)
            std::memset(buffer.channelData[channel], 1, sizeof(float) * Seconds * 48000);
        benchmark::DoNotOptimize(buffer.channelData[0]);
        benchmark::ClobberMemory();
    }
    state.counters["realtime"] = benchmark::Counter(Seconds, benchmark::Counter::kIsIterationInvariantRate,
                                                    benchmark::Counter::kIs1000);
}

BENCHMARK(DecodeWave)->ArgName("bits")->Arg(16)->Arg(24)->Arg(32)->Unit(benchmark::kMillisecond);
BENCHMARK(DecodeFlac)->Unit(benchmark::kMillisecond);
BENCHMARK(DecodeFlacAndResample)->Unit(benchmark::kMillisecond);
BENCHMARK(ResampleStereo)->Unit(benchmark::kMillisecond);
BENCHMARK(FillTheSameMemory)->Unit(benchmark::kMillisecond);
}   // namespace
