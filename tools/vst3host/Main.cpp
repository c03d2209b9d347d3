// SPDX-License-Identifier: GPL-3.0-or-later
// render_vst3 BUNDLE STATE IN OUT: runs a recording of one or two channels through the VST 3 plug-in with a
// state that tonalign has saved, and takes the latency out. A host like any other: it knows the module's file
// only.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "foundation/text/MException.h"
#include "tools/tonalign/AudioOutput.h"
#include "tools/tonalign/Inputs.h"
#include "tools/vst3host/Vst3Host.h"

namespace
{
constexpr std::int32_t blockFrames = 512;

Vst3Instance::Bytes ReadBytes(const char* path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error(std::string(path) + " can't be read");
    return { std::istreambuf_iterator<char>(file), {} };
}

void Render(const char* bundle, const char* statePath, const char* inputPath, const char* outputPath)
{
    AudioInput input;
    LoadAudioInput(input, inputPath, [](double) { return true; });
    const AudioSampleBuffer& audio = input.buffer;
    if (audio.channels > 2)
        throw std::runtime_error("the file has more than two channels");

    setenv("TONALIGN_BINARY_DIR", (std::string(bundle) + "/..").c_str(), 1);
    const LoadedModule module(LoadedModule::Format::Vst3);
    const Vst3Instance plugin(module);
    plugin.SetState(ReadBytes(statePath));
    if (audio.channels == 1)
    {
        Steinberg::Vst::SpeakerArrangement mono = Steinberg::Vst::SpeakerArr::kMono;
        plugin.processor->setBusArrangements(&mono, 1, &mono, 1);
    }
    plugin.Start(audio.sampleRate, blockFrames);
    const std::int64_t latency = plugin.processor->getLatencySamples();

    AudioOutput output(outputPath,
                       { .file = FileFormat::Wav,
                         .samples = SampleFormat::Float32,
                         .sampleRate = static_cast<std::int32_t>(audio.sampleRate),
                         .channels = audio.channels },
                       true);
    std::array<std::array<float, blockFrames>, 2> in{};
    std::array<std::array<float, blockFrames>, 2> out{};
    const std::int64_t total = latency + audio.frames;
    for (std::int64_t position = 0; position < total; position += blockFrames)
    {
        const auto frames = static_cast<std::int32_t>(std::min<std::int64_t>(blockFrames, total - position));
        const std::int64_t available = std::clamp<std::int64_t>(audio.frames - position, 0, frames);
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(audio.channels); ++channel)
        {
            std::copy_n(audio.channelData[channel] + position, available, in[channel].data());
            std::fill(in[channel].begin() + available, in[channel].end(), 0.0f);
        }
        float* inputs[] = { in[0].data(), in[1].data() };
        float* outputs[] = { out[0].data(), out[1].data() };
        plugin.Process(inputs, outputs, frames, nullptr, audio.channels);
        const auto early = static_cast<std::int32_t>(std::clamp<std::int64_t>(latency - position, 0, frames));
        const float* late[] = { out[0].data() + early, out[1].data() + early };
        output.Write(late, frames - early);
    }
    output.Close();
    output.Commit();
}
}   // namespace

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 5)
    {
        std::fprintf(stderr, "usage: render_vst3 BUNDLE STATE IN OUT.wav\n");
        return 2;
    }
    try
    {
        Render(arguments[1], arguments[2], arguments[3], arguments[4]);
        return 0;
    }
    catch (const MException& exception)
    {
        std::fprintf(stderr, "render_vst3: %s\n", exception.Message.ToUTF8().c_str());
    }
    catch (const std::exception& exception)
    {
        std::fprintf(stderr, "render_vst3: %s\n", exception.what());
    }
    return 1;
}
