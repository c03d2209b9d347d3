// SPDX-License-Identifier: GPL-3.0-or-later
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "control/values/MValueNumber.h"
#include "foundation/text/MException.h"
#include "hosts/offline/OfflineHost.h"
#include "plugin/contract/ChangeListener.h"
#include "plugin/driver/PluginState.h"
#include "tests/AllocationCounter.h"

namespace
{
std::vector<float> Noise(std::int32_t frames, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> samples(-0.5f, 0.5f);
    std::vector<float> noise(static_cast<std::size_t>(frames));
    for (float& sample : noise)
        sample = samples(generator);
    return noise;
}

AudioSampleBuffer NoiseBuffer(std::int32_t channels, std::int32_t frames, double rate)
{
    AudioSampleBuffer buffer;
    buffer.Allocate(channels, frames);
    buffer.sampleRate = rate;
    for (std::int32_t channel = 0; channel < channels; ++channel)
    {
        const std::vector<float> noise = Noise(frames, static_cast<unsigned>(channel) + 1);
        std::copy(noise.begin(), noise.end(), buffer.channelData[channel]);
    }
    return buffer;
}

std::vector<std::vector<float>> Rendered(OfflineHost& host, const AudioSampleBuffer& input,
                                         std::int32_t block)
{
    std::vector<std::vector<float>> output(static_cast<std::size_t>(input.channels));
    host.Render(input, block,
                [&output](const float* const* channels, std::int32_t frames)
                {
                    for (std::size_t channel = 0; channel < output.size(); ++channel)
                        output[channel].insert(output[channel].end(), channels[channel],
                                               channels[channel] + frames);
                });
    return output;
}

void DisableBands(OfflineHost& host)
{
    for (std::int32_t band = 0; band < MEqualizerBase::BandCount; ++band)
        host.Effect().equalizer.Band(band).enabled = false;
    host.Effect().description.RequestUpdate();
}
}   // namespace

TEST(OfflineHost, ReturnsTheInputInTimeAtEveryRate)
{
    for (const double rate : { 44100.0, 48000.0, 96000.0, 192000.0 })
        for (const std::int32_t channels : { 1, 2 })
            for (const int mode : { 0, 1, 2 })
            {
                SCOPED_TRACE(::testing::Message()
                             << rate << " Hz, " << channels << " channels, mode " << mode);
                OfflineHost host;
                ASSERT_TRUE(host.SetParameterById("mode", mode));
                DisableBands(host);
                host.Prepare(rate, channels);
                const AudioSampleBuffer input = NoiseBuffer(channels, 50001, rate);
                const auto output = Rendered(host, input, 441);
                ASSERT_EQ(output[0].size(), 50001u) << "as long as the input";
                double worst = 0;
                for (std::int32_t channel = 0; channel < channels; ++channel)
                    for (std::size_t frame = 0; frame < output[0].size(); ++frame)
                        worst = std::max(worst, std::fabs(static_cast<double>(
                                                    output[static_cast<std::size_t>(channel)][frame] -
                                                    input.channelData[channel][frame])));
                EXPECT_LE(worst, mode == 0 ? 2e-15 : 5e-7) << "-120 dB of a signal of 0.5";
            }
}

TEST(OfflineHost, AStateGivesTheSameSoundInAnotherObject)
{
    const AudioSampleBuffer input = NoiseBuffer(2, 40000, 48000);
    for (const int mode : { 0, 1, 2 })
    {
        OfflineHost first;
        first.SetParameterById("mode", mode);
        first.SetParameterById("gain", -2);
        first.SetParameterById("SoftSaturation", 0.3);
        BandPoint& band = first.Effect().equalizer.Band(2);
        band.enabled = true;
        band.y = 7.0;
        band.RoundToStored();   // a store keeps six digits of Q
        MMemoryStream state;
        WritePluginState(first.Plugin(), state);
        first.Prepare(48000, 2);

        OfflineHost second;
        state.Seek(0, MStream::Begin);
        ReadPluginState(second.Plugin(), state);
        second.Prepare(48000, 2);
        MMemoryStream again;
        WritePluginState(second.Plugin(), again);
        ASSERT_EQ(again.GetSize(), state.GetSize());
        EXPECT_TRUE(
            std::equal(state.Block().Data(), state.Block().Data() + state.GetSize(), again.Block().Data()));
        EXPECT_EQ(Rendered(first, input, 512), Rendered(second, input, 77)) << "mode " << mode;
    }
}

TEST(OfflineHost, HostParametersReachTheBands)
{
    OfflineHost host;
    host.Prepare(48000, 2);
    MQuorvaneAudioEffectPlugin& plugin = host.Plugin();
    ASSERT_EQ(plugin.GetParameterCount(), 81);
    const char* names[] = { "Dry/wet",        "Gain",      "Soft saturation", "Smoothness",
                            "Average length", "RESERVED1", "RESERVED2",       "RESERVED3",
                            "RESERVED4",      "RESERVED5", "Enable 1",        "Frequency 1" };
    MString text;
    for (std::int32_t index = 0; index < 12; ++index)
    {
        plugin.GetParameterName(text, index);
        EXPECT_EQ(text.ToUTF8(), names[index]);
    }
    plugin.SetParameter(10 + 7 * 3 + 2, 1.0);
    EXPECT_DOUBLE_EQ(host.Effect().equalizer.Band(3).y, 24);
    EXPECT_TRUE(host.Effect().description.Has(EffectFlag::UpdatePending));
    EXPECT_FALSE(host.SetParameterById("gain", 25));
    EXPECT_FALSE(host.SetParameterById("nothing", 0));
}

TEST(OfflineHost, SteadyBlocksTakeNothingFromTheHeap)
{
    for (const int mode : { 0, 1, 2 })
        for (const std::int32_t block : { 1, 64, 441, 4096 })
        {
            SCOPED_TRACE(::testing::Message() << "mode " << mode << ", blocks of " << block);
            OfflineHost host;
            host.SetParameterById("mode", mode);
            host.SetParameterById("depth", 0.7);
            host.SetParameterById("SoftSaturation", 0.2);
            host.Prepare(48000, 2);
            std::vector<float> left = Noise(block, 1), right = Noise(block, 2), outLeft(left),
                               outRight(right);
            float* inputs[8] = { left.data(), right.data() };
            float* outputs[8] = { outLeft.data(), outRight.data() };
            const auto run = [&](int frames)
            {
                for (int done = 0; done < frames; done += block)
                    host.Plugin().ProcessBlock(inputs, outputs, block, true);
            };
            run(2 * block);   // buffers take their size
            const std::int64_t before = AllocationCounter::TakenByThisThread();
            run(40000);
            for (std::int32_t index = 0; index < host.Plugin().GetParameterCount(); ++index)
            {
                host.Plugin().SetParameter(index, 0.1 + 0.01 * index);
                run(block);
            }
            run(40000);
            EXPECT_EQ(AllocationCounter::TakenByThisThread(), before);
        }
}

TEST(OfflineHost, HardSignalsStayFinite)
{
    for (const int mode : { 0, 1, 2 })
    {
        OfflineHost host;
        host.SetParameterById("mode", mode);
        for (std::int32_t band = 0; band < 10; ++band)
        {
            BandPoint& each = host.Effect().equalizer.Band(band);
            each.enabled = true;
            each.y = band % 2 == 0 ? 24.0 : -24.0;
        }
        host.Prepare(48000, 1);
        AudioSampleBuffer input = NoiseBuffer(1, 60000, 48000);
        for (std::int32_t frame = 0; frame < input.frames; ++frame)
        {
            const std::int32_t part = frame / 10000;
            const float forms[] = { 1e-40f, 0, frame / 50 % 2 == 0 ? 1.0f : -1.0f, 1.0f, 1e30f, 0 };
            input.channelData[0][frame] = forms[part];
        }
        const auto output = Rendered(host, input, 64);
        for (const float sample : output[0])
            ASSERT_TRUE(std::isfinite(sample)) << "mode " << mode;
    }
}

TEST(OfflineHost, ThreadsMayDoEverythingAtOnce)
{
    OfflineHost host;
    host.Prepare(48000, 2);
    MQuorvaneAudioEffectPlugin& plugin = host.Plugin();
    MMemoryStream state;
    WritePluginState(plugin, state);
    std::vector<std::uint8_t> bytes(state.Block().Data(), state.Block().Data() + state.GetSize());

    std::atomic<bool> stop = false;
    std::atomic<int> processed = 0;
    std::thread audio(
        [&]
        {
            std::vector<float> left = Noise(64, 1), right = Noise(64, 2), outLeft(64), outRight(64);
            float* inputs[8] = { left.data(), right.data() };
            float* outputs[8] = { outLeft.data(), outRight.data() };
            while (!stop)
            {
                try
                {
                    plugin.ProcessBlock(inputs, outputs, 64, true);
                    ++processed;
                }
                catch (const MException&)
                {
                }
                for (const float sample : outLeft)
                    if (!std::isfinite(sample))
                        std::abort();
            }
        });
    std::thread automation(
        [&]
        {
            std::mt19937 generator(5);
            std::uniform_real_distribution<double> values(0, 1);
            while (!stop)
                plugin.SetParameter(static_cast<std::int32_t>(generator() % 80), values(generator));
        });
    std::thread states(
        [&]
        {
            while (!stop)
            {
                MMemoryStream saved;
                WritePluginState(plugin, saved);
                MMemoryStream loaded =
                    MMemoryStream::Borrow(bytes.data(), static_cast<std::int32_t>(bytes.size()));
                ReadPluginState(plugin, loaded);
                std::this_thread::yield();
            }
        });
    std::thread editor(
        [&]
        {
            TonalignAudioEffectPlugin& effect = host.Effect();
            ChangeListener screen(plugin.Changes());
            MValueDouble knob(&effect.description.parameters[MEqualizerProcessorPlugin::Gain].number.value,
                              -24, 24, 0);
            std::array<float, 1024> spectrum;
            bool shown = false;
            for (std::int32_t turn = 0; !stop; ++turn)
            {
                knob.Set(turn % 12);
                plugin.Edit(turn % 80, 0.01 * (turn % 100));
                effect.equalizer.autoListen = turn % 7 == 0;
                effect.equalizer.selectedBand = turn % 10;
                effect.analyzer.settings.freeze = turn % 5 == 0;
                plugin.SetEditorPresence(turn % 3 == 0 ? EditorPresence::Hidden : EditorPresence::Visible);
                if (turn % 4 == 0)
                    turn % 8 == 0 ? effect.ToggleSourceAnalysis() : effect.ToggleTargetAnalysis();
                if (screen.Drain())
                {
                    shown = effect.CurrentEditorState().equalizeEnabled;
                    if (screen.Has(Change::AnalyzerSettings))
                        effect.BringAnalyzerUpToDate();
                    effect.equalizer.CurrentResponse();
                    plugin.ReportChanges();
                }
                effect.analyzer.GetSpectrum(effect.analyzer.OwnClient(0), spectrum.data(), 0, 0);
                try
                {
                    if (shown && turn % 16 == 0)
                        effect.Equalize(turn % 32 == 0);
                }
                catch (const MException&)
                {
                    // An analysis that a state brought, or one that saw no audio.
                }
            }
            plugin.SetEditorPresence(EditorPresence::Closed);
        });
    // About three seconds of the main thread's share: preparing anew, reading values, switching modes.
    for (int turn = 0; turn < 60; ++turn)
    {
        plugin.InitProcessing();
        MString text;
        for (std::int32_t index = 0; index < plugin.GetParameterCount(); ++index)
            plugin.GetParameterValueName(text, index);
        host.SetParameterById("mode", turn % 3);
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
    }
    stop = true;
    audio.join();
    automation.join();
    editor.join();
    states.join();
    EXPECT_GT(processed, 0);
}
