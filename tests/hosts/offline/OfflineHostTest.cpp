// SPDX-License-Identifier: GPL-3.0-or-later
// The whole plug-in around the real effect: in time, bounded, the same whatever the blocks are.
#include <atomic>
#include <functional>
#include <thread>

#include <gtest/gtest.h>

#include "control/values/MValueNumber.h"
#include "foundation/text/MException.h"
#include "hosts/offline/OfflineHost.h"
#include "plugin/contract/ChangeListener.h"
#include "plugin/driver/PluginState.h"
#include "tests/AllocationCounter.h"
#include "tests/Signals.h"

namespace
{
using Wave = std::function<double(std::int32_t channel, double frame)>;

AudioSampleBuffer BufferOf(std::int32_t channels, std::int32_t frames, double rate, const Wave& wave)
{
    AudioSampleBuffer buffer;
    buffer.Allocate(channels, frames);
    buffer.sampleRate = rate;
    for (std::int32_t channel = 0; channel < channels; ++channel)
        for (std::int32_t frame = 0; frame < frames; ++frame)
            buffer.channelData[channel][frame] = static_cast<float>(wave(channel, frame));
    return buffer;
}

AudioSampleBuffer NoiseBuffer(std::int32_t channels, std::int32_t frames = 40000)
{
    const Signals::Channels noise = Signals::NoiseChannels(8, static_cast<std::size_t>(frames), 5, 0.5f);
    return BufferOf(channels, frames, 48000,
                    [&noise](std::int32_t channel, double frame)
                    { return noise[static_cast<std::size_t>(channel)][static_cast<std::size_t>(frame)]; });
}

Signals::Channels Rendered(OfflineHost& host, const AudioSampleBuffer& input, std::int32_t block)
{
    Signals::Channels output(static_cast<std::size_t>(input.channels));
    host.Render(input, block,
                [&output](const float* const* channels, std::int32_t frames)
                {
                    for (std::size_t channel = 0; channel < output.size(); ++channel)
                        output[channel].insert(output[channel].end(), channels[channel],
                                               channels[channel] + frames);
                });
    return output;
}

double WorstDifference(const std::vector<float>& output, const AudioSampleBuffer& input, std::size_t channel)
{
    const float* samples = input.channelData[channel];
    return Signals::LargestDifference(output, { samples, samples + input.frames }, 0, output.size());
}

struct Sound
{
    double bandDb = 0;   // 0: no band
    std::int32_t mode = 1;
    std::int32_t factor = 1;
    bool highQuality = true;

    void Apply(OfflineHost& host) const
    {
        ASSERT_TRUE(host.SetParameterById("mode", mode));
        for (std::int32_t index = 0; index < MEqualizerBase::BandCount; ++index)
            host.Effect().equalizer.Band(index).enabled = bandDb != 0 && index == 2;
        BandPoint& band = host.Effect().equalizer.Band(2);
        band.y = bandDb;
        band.x = std::log10(3000.0);
        band.RoundToStored();   // a store keeps six digits of Q
        host.Plugin().upsampling = factor;
        host.Plugin().highQualityUpsampling = highQuality;
        host.Plugin().UpdateUpsamplingFactor();
    }
};

// Two sines that every rate's pass band holds.
double Tones(std::int32_t channel, double seconds)
{
    return 0.3 * std::sin(2 * std::numbers::pi * (440 + 100 * channel) * seconds) +
           0.1 * std::sin(2 * std::numbers::pi * 15000 * seconds);
}
}   // namespace

TEST(OfflineHost, ReturnsTheInputInTimeInEveryModeAtEveryRateAndFactor)
{
    for (const double rate : { 44100.0, 96000.0, 192000.0 })
        for (const int mode : { 0, 1, 2 })
            for (const std::int32_t factor : { 1, 2, 3, 4 })
            {
                if (factor > 1 && rate > 100000)
                    continue;
                SCOPED_TRACE(::testing::Message() << rate << " Hz, mode " << mode << ", x" << factor);
                OfflineHost host;
                Sound{ .mode = mode, .factor = factor }.Apply(host);
                const std::int32_t channels = rate > 50000 ? 2 : 1;
                host.Prepare(rate, channels);
                const auto tones = [rate](std::int32_t channel, double frame)
                {
                    return Tones(channel, frame / rate);
                };
                const auto output = Rendered(host, BufferOf(channels, 20001, rate, tones), 441);
                ASSERT_EQ(output[0].size(), 20001u) << "as long as the input";
                // The effect's 32768 samples are no whole number of the host's at a factor of 3: the third of
                // a sample that is reported too little comes on top.
                const double late = 32768.0 / factor - 32768 / factor;
                const std::size_t edge = factor > 1 ? 4000 : 0;
                double worst = 0;
                for (std::int32_t channel = 0; channel < channels; ++channel)
                    for (std::size_t frame = edge; frame < 20001 - edge; ++frame)
                        worst = std::max(
                            worst,
                            std::fabs(static_cast<double>(output[static_cast<std::size_t>(channel)][frame]) -
                                      tones(channel, static_cast<double>(frame) - late)));
                // -120 dB of the tones. Each way through an upsampler is 0.0003 dB low, as the window's sum
                // of the taps is.
                EXPECT_LE(worst, factor == 1 ? 4e-7 : 4e-5);
            }
}

TEST(OfflineHost, AStateGivesTheSameSoundInAnotherObjectWhateverTheBlocks)
{
    const AudioSampleBuffer input = NoiseBuffer(2, 30000);
    for (const int mode : { 0, 1, 2 })
        for (const bool highQuality : { false, true })
        {
            SCOPED_TRACE(::testing::Message() << "mode " << mode << ", high quality " << highQuality);
            OfflineHost first;
            Sound{ .bandDb = 7, .mode = mode, .factor = 1 + mode, .highQuality = highQuality }.Apply(first);
            EXPECT_TRUE(first.SetParameterById("gain", -2));
            EXPECT_TRUE(first.SetParameterById("SoftSaturation", 0.3));
            for (const double wrong : { 25.0, -25.0, std::nan("") })
                EXPECT_FALSE(first.SetParameterById("gain", wrong));
            EXPECT_FALSE(first.SetParameterById("mode", 3) || first.SetParameterById("mode", -1));
            EXPECT_FALSE(first.SetParameterById("psychoacousticsimulation", 0));
            EXPECT_FALSE(first.SetParameterById("nothing", 0));
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
            EXPECT_TRUE(std::equal(state.Block().Data(), state.Block().Data() + state.GetSize(),
                                   again.Block().Data()));
            const auto sound = Rendered(first, input, 512);
            EXPECT_EQ(Rendered(second, input, 77), sound);
            first.Prepare(48000, 2);
            EXPECT_EQ(Rendered(first, input, 30000 + 32768), sound) << "the past is forgotten";
        }
}

TEST(OfflineHost, TellsHowFarItIsAndStopsWhenAsked)
{
    OfflineHost host;
    host.Prepare(48000, 1);
    const AudioSampleBuffer input = NoiseBuffer(1, 300000);
    double reached = 0;
    int reports = 0;
    const OfflineHost::Sink nowhere = [](const float* const*, std::int32_t) {
    };
    host.Render(input, 512, nowhere,
                [&](double fraction)
                {
                    EXPECT_TRUE(fraction > reached && fraction < 1) << fraction;
                    reached = fraction;
                    return ++reports > 0;
                });
    EXPECT_EQ(reports, 5) << "of 65536 frames each";
    EXPECT_GT(reached, 0.9);
    EXPECT_THROW(host.Render(input, 512, nowhere, [](double) { return false; }), MException);
    EXPECT_THROW(host.Render(input, 0, nowhere), MException);
    EXPECT_THROW(host.Prepare(48000, 9), MException);
    EXPECT_THROW(host.Prepare(48000, 0), MException);
}

TEST(OfflineHost, SteadyBlocksOfHardSignalsTakeNothingFromTheHeapAndStayFinite)
{
    for (const int mode : { 0, 1, 2 })
        for (const std::int32_t block : { 1, 441, 4096 })
        {
            SCOPED_TRACE(::testing::Message() << "mode " << mode << ", blocks of " << block);
            OfflineHost host;
            host.SetParameterById("mode", mode);
            host.SetParameterById("depth", 0.7);
            host.SetParameterById("SoftSaturation", 0.2);
            for (std::int32_t band = 0; band < 10; ++band)
            {
                host.Effect().equalizer.Band(band).enabled = true;
                host.Effect().equalizer.Band(band).y = band % 2 == 0 ? 24.0 : -24.0;
            }
            host.Prepare(48000, 2);
            std::vector<float> left(static_cast<std::size_t>(block)), right(left), outLeft(left),
                outRight(left);
            float* inputs[8] = { left.data(), right.data() };
            float* outputs[8] = { outLeft.data(), outRight.data() };
            std::int32_t position = 0;
            const auto run = [&](std::int32_t frames)
            {
                for (std::int32_t done = 0; done < frames; done += block)
                {
                    for (std::size_t i = 0; i < left.size(); ++i, ++position)
                    {
                        const float forms[] = { 1e-40f, 0, position / 50 % 2 == 0 ? 1.0f : -1.0f, 1.0f,
                                                1e30f };
                        left[i] = right[i] = forms[position / 8000 % 5];
                    }
                    host.Plugin().ProcessBlock(inputs, outputs, block, true);
                    ASSERT_TRUE(std::isfinite(Signals::PeakOf(outLeft)) &&
                                std::isfinite(Signals::PeakOf(outRight)));
                }
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

TEST(OfflineHost, ThreadsMayDoEverythingAtOnce)
{
    OfflineHost host;
    host.Prepare(48000, 2);
    MQuorvaneAudioEffectPlugin& plugin = host.Plugin();
    MMemoryStream state;
    WritePluginState(plugin, state);
    std::atomic<bool> stop = false;
    std::atomic<int> processed = 0;
    const auto orRefused = [](auto&& work)
    {
        try
        {
            work();
        }
        catch (const MException&)
        {
            // A lock that wasn't to be had, an analysis that saw no audio.
        }
    };
    std::vector<std::thread> threads;
    const auto repeat = [&](auto&& turn)
    {
        threads.emplace_back(
            [&stop, turn]() mutable
            {
                for (std::int32_t number = 0; !stop; ++number)
                    turn(number);
            });
    };
    repeat(
        [&, left = Signals::Noise(64, 1, 0.5f), right = Signals::Noise(64, 2, 0.5f)](std::int32_t) mutable
        {
            std::vector<float> outLeft(64), outRight(64);
            float* inputs[8] = { left.data(), right.data() };
            float* outputs[8] = { outLeft.data(), outRight.data() };
            orRefused([&] { plugin.ProcessBlock(inputs, outputs, 64, true); });
            ++processed;
            EXPECT_TRUE(std::isfinite(Signals::PeakOf(outLeft)));
        });
    repeat([&](std::int32_t turn) { plugin.SetParameter(turn * 37 % 80, 0.01 * (turn * 61 % 100)); });
    repeat(
        [&](std::int32_t)
        {
            MMemoryStream saved;
            WritePluginState(plugin, saved);
            MMemoryStream loaded =
                MMemoryStream::Borrow(state.Block().Data(), static_cast<std::int32_t>(state.GetSize()));
            ReadPluginState(plugin, loaded);
            std::this_thread::yield();
        });
    ChangeListener screen(plugin.Changes());
    MPluginParameterInfo& gain = host.Effect().description.parameters[MEqualizerProcessorPlugin::Gain];
    MValueDouble knob(&gain.number.value, -24, 24, 0);
    repeat(
        [&](std::int32_t turn)
        {
            TonalignAudioEffectPlugin& effect = host.Effect();
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
                if (screen.Has(Change::AnalyzerSettings))
                    effect.BringAnalyzerUpToDate();
                effect.equalizer.CurrentResponse();
                plugin.ReportChanges();
            }
            std::array<float, 1024> spectrum;
            effect.analyzer.GetSpectrum(effect.analyzer.OwnClient(0), spectrum.data(), 0, 0);
            if (turn % 16 == 0 && effect.CurrentEditorState().equalizeEnabled)
                orRefused([&] { effect.Equalize(turn % 32 == 0); });
        });
    // The main thread's share: preparing anew, reading values, switching modes.
    for (int turn = 0; turn < 30; ++turn)
    {
        plugin.InitProcessing();
        MString text;
        for (std::int32_t index = 0; index < plugin.GetParameterCount(); ++index)
            plugin.GetParameterValueName(text, index);
        host.SetParameterById("mode", turn % 3);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
    plugin.SetEditorPresence(EditorPresence::Closed);
    EXPECT_GT(processed, 0);
}

TEST(Upsampling, ABandKeepsItsPlaceAndGain)
{
    const auto tone = [](std::int32_t, double frame)
    {
        return 0.1 * std::sin(2 * std::numbers::pi * 3000 * frame / 48000);
    };
    for (const int mode : { 0, 1, 2 })
        for (const bool highQuality : { true, false })
        {
            OfflineHost host;
            Sound{ .bandDb = 12, .mode = mode, .factor = 2, .highQuality = highQuality }.Apply(host);
            host.Prepare(48000, 1);
            const auto output = Rendered(host, BufferOf(1, 80000, 48000, tone), 512);
            double sum = 0;   // of squares, over whole periods of 16 samples
            for (std::size_t frame = 40000; frame < 56000; ++frame)
                sum += static_cast<double>(output[0][frame]) * static_cast<double>(output[0][frame]);
            // 0.02 dB: the low-pass of the linear-phase mode in plain quality has a Q of 0.73, above flat.
            EXPECT_NEAR(10 * std::log10(2 * sum / 16000 / 0.01), 12, 0.02) << mode << highQuality;
        }
}

TEST(GainControl, KeepsTheLoudnessOfTheInput)
{
    const AudioSampleBuffer input = BufferOf(
        2, 200000, 48000, [](std::int32_t channel, double frame) { return Tones(channel, frame / 48000); });
    for (const double gainDb : { -9.0, 9.0 })
    {
        OfflineHost host;
        Sound{ .factor = 2 }.Apply(host);
        host.SetParameterById("gain", gainDb);
        host.Plugin().agc = 1;
        host.Prepare(48000, 2);
        const auto output = Rendered(host, input, 512);
        // Past the two seconds in which the gain may only fall.
        for (std::size_t frame = 150000; frame < 190000; ++frame)
            ASSERT_NEAR(output[0][frame], input.channelData[0][frame], 1e-3) << frame << " " << gainDb;
    }
}

TEST(Surround, ThreeToEightChannelsAreEqualizedLikeStereoOnesOrPassInTime)
{
    for (const std::int32_t channels : { 3, 6, 8 })
        for (const std::int32_t factor : { 1, 2 })
        {
            SCOPED_TRACE(::testing::Message() << channels << " channels, x" << factor);
            const AudioSampleBuffer input = NoiseBuffer(channels, 20000);
            OfflineHost wide;
            const Sound setup{ .bandDb = 6, .factor = factor };
            setup.Apply(wide);
            wide.Prepare(48000, channels);
            const auto output = Rendered(wide, input, 512);
            for (std::int32_t channel = 0; channel < channels; ++channel)
            {
                OfflineHost single;
                setup.Apply(single);
                single.Prepare(48000, 1);
                const AudioSampleBuffer alone = BufferOf(
                    1, 20000, 48000,
                    [&](std::int32_t, double frame)
                    { return static_cast<double>(input.channelData[channel][static_cast<int>(frame)]); });
                EXPECT_EQ(Rendered(single, alone, 512)[0], output[static_cast<std::size_t>(channel)])
                    << channel;
            }
            // The same object serves stereo again.
            wide.Prepare(48000, 2);
            EXPECT_EQ(wide.Plugin().channelMode, ChannelMode::LeftAndRight);
        }
    const AudioSampleBuffer input = NoiseBuffer(6);
    OfflineHost host, idle;
    Sound{ .bandDb = 6 }.Apply(host);
    host.Plugin().enabledChannels[3] = false;
    host.Prepare(48000, 6);
    const auto output = Rendered(host, input, 512);
    idle.Plugin().enabledChannels = {};
    idle.Prepare(48000, 6);
    const auto untouched = Rendered(idle, input, 512);
    EXPECT_EQ(untouched[3], output[3]) << "nor is anything to be done with all of them off";
    for (const std::size_t channel : { 0u, 3u, 5u })
        EXPECT_LE(WorstDifference(untouched[channel], input, channel), 2e-15) << "delayed and nothing else";
    EXPECT_GT(WorstDifference(output[4], input, 4), 0.01) << "equalized";
}
