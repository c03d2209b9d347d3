// SPDX-License-Identifier: GPL-3.0-or-later
// What both formats have in common: parameters, latency, state and sound are the same in VST 2, in VST 3 and
// in the offline host.
#include <algorithm>
#include <cmath>
#include <fstream>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "Vst2Host.h"
#include "foundation/module/Configuration.h"
#include "hosts/offline/OfflineHost.h"
#include "plugin/driver/PluginState.h"
#include "tests/Signals.h"
#include "tools/vst3host/Vst3Host.h"

namespace
{
using Bytes = std::vector<std::uint8_t>;
constexpr std::int32_t Latency = 32768;

std::string KeptFile(const char* name)
{
    const char* root = std::getenv("TONALIGN_SOURCE_DIR");
    return std::string(root != nullptr ? root : ".") + "/tests/hosts/" + name;
}

class Formats : public testing::Test
{
protected:
    const LoadedModule vst2Module{ LoadedModule::Format::Vst2 };
    const LoadedModule vst3Module{ LoadedModule::Format::Vst3 };
};

Bytes OfflineState(OfflineHost& host)
{
    MMemoryStream stream;
    WritePluginState(host.Plugin(), stream);
    stream.Seek(0, MStream::Begin);
    return { stream.GetCurrentPointer(), stream.GetCurrentPointer() + stream.GetSize() };
}

void SetOfflineState(OfflineHost& host, const Bytes& state)
{
    MMemoryStream stream = MMemoryStream::Borrow(state.data(), static_cast<std::int32_t>(state.size()));
    ReadPluginState(host.Plugin(), stream);
}

// Values that survive being stored, for every parameter that the first state kept.
void Disturb(const Vst2Instance& instance)
{
    constexpr std::int32_t firstParameters = 80;
    for (std::int32_t index = 0; index < firstParameters; ++index)
        instance.effect->setParameter(instance.effect, index,
                                      0.2f + 0.6f * static_cast<float>(index % 7) / 6);
}

TEST_F(Formats, ListTheirParametersAsTheKeptFileDoes)
{
    // Projects keep their automation by these numbers: lines may be appended, none may change or move.
    std::ifstream file(KeptFile("parameters.txt"));
    std::vector<std::string> kept;
    for (std::string line; std::getline(file, line);)
        if (!line.empty() && line[0] != '#')
            kept.push_back(line);

    const Vst2Instance vst2(vst2Module);
    std::vector<std::string> fromVst2;
    for (std::int32_t index = 0; index < vst2.effect->numParams; ++index)
        fromVst2.push_back(std::to_string(index) + "\t" + vst2.Text(Vst2::EffectOpcode::GetParamName, index));

    const Vst3Instance vst3(vst3Module);
    Steinberg::Vst::IUnitInfo* units = nullptr;
    ASSERT_EQ(
        vst3.component->queryInterface(Steinberg::Vst::IUnitInfo::iid, reinterpret_cast<void**>(&units)), 0);
    std::vector<std::string> fromVst3;
    std::ostringstream actual;
    for (std::int32_t index = 0; index < vst3.controller->getParameterCount(); ++index)
    {
        Steinberg::Vst::ParameterInfo info;
        ASSERT_EQ(vst3.controller->getParameterInfo(index, info), 0);
        Steinberg::Vst::UnitInfo unit;
        ASSERT_EQ(units->getUnitInfo(info.unitId, unit), 0);
        ASSERT_EQ(unit.id, info.unitId);
        fromVst3.push_back(std::to_string(info.id) + "\t" + ToUtf8(info.title) + "\t" + ToUtf8(unit.name));
        actual << fromVst3.back() << "\n";
    }
    units->release();
    const auto firstTwo = [](const std::string& line)
    {
        return line.substr(0, line.rfind('\t'));
    };
    ASSERT_EQ(fromVst3.size(), fromVst2.size() + 132);
    for (std::size_t index = 0; index < fromVst2.size(); ++index)
    {
        const std::string title = firstTwo(fromVst3[index]);
        // VST 2 cuts names at 24 characters.
        EXPECT_EQ(title.size() > fromVst2[index].size() ? title.substr(0, fromVst2[index].size() - 3) + "..."
                                                        : title,
                  fromVst2[index]);
    }
    EXPECT_EQ(kept, fromVst3) << "What the module reports:\n" << actual.str();
}

TEST_F(Formats, ReportTheLatencyFromConstructionOnAndNeverAnother)
{
    const Vst2Instance vst2(vst2Module);
    EXPECT_EQ(vst2.effect->initialDelay, Latency);
    const Vst3Instance unready(vst3Module, false);
    EXPECT_EQ(unready.processor->getLatencySamples(), static_cast<unsigned>(Latency));
    const Vst3Instance vst3(vst3Module);
    CountingHandler handler;
    vst3.controller->setComponentHandler(&handler);
    Vst2Instance::ioChanges = 0;
    for (const double rate : { 8000.0, 44100.0, 384000.0, 12345.678 })
    {
        vst2.Start(static_cast<float>(rate), 512);
        vst3.Start(rate, 512);
        EXPECT_EQ(vst2.effect->initialDelay, Latency) << rate;
        EXPECT_EQ(vst3.processor->getLatencySamples(), static_cast<unsigned>(Latency)) << rate;
    }
    EXPECT_EQ(Vst2Instance::ioChanges, 0);
    EXPECT_EQ(handler.restarts, 0);
    vst3.controller->setComponentHandler(nullptr);
    EXPECT_EQ(handler.references, 0);
}

TEST_F(Formats, ExchangeOneStateByteForByteAndReadTheOneThatVersion710Kept)
{
    const Vst2Instance source(vst2Module);
    Disturb(source);
    const Bytes state = source.State();
    ASSERT_GT(state.size(), 100u);

    const Vst2Instance vst2(vst2Module);
    const Vst3Instance vst3(vst3Module);
    OfflineHost offline;
    EXPECT_NE(vst2.State(), state);
    EXPECT_EQ(vst2.SetState(state), 1);
    EXPECT_EQ(vst3.SetState(state), Steinberg::kResultOk);
    SetOfflineState(offline, state);
    EXPECT_EQ(vst2.State(), state);
    EXPECT_EQ(vst3.State(), state);
    EXPECT_EQ(OfflineState(offline), state);
    // A project of a user: whatever is added to the state, this one keeps its sound. States hold decimals of
    // a dozen digits in the unit of the parameter.
    std::ifstream file(KeptFile("states/every-parameter-moved.state"), std::ios::binary);
    const Vst2Instance oldVst2(vst2Module);
    const Vst3Instance oldVst3(vst3Module);
    const Bytes kept{ std::istreambuf_iterator<char>(file), {} };
    oldVst2.SetState(kept);
    oldVst3.SetState(kept);
    for (std::int32_t index = 0; index < source.effect->numParams; ++index)
    {
        const auto id = static_cast<unsigned>(index);
        const float wanted = source.effect->getParameter(source.effect, index);
        EXPECT_EQ(vst2.effect->getParameter(vst2.effect, index), wanted) << index;
        EXPECT_EQ(static_cast<float>(vst3.controller->getParamNormalized(id)), wanted);
        EXPECT_NEAR(oldVst2.effect->getParameter(oldVst2.effect, index), wanted, 1e-5f) << index;
        EXPECT_NEAR(oldVst3.controller->getParamNormalized(id), wanted, 1e-5) << index;
    }
}

TEST_F(Formats, SurviveEveryTruncationAndRandomBytesAsState)
{
    const Vst2Instance vst2(vst2Module);
    const Vst3Instance vst3(vst3Module);
    Disturb(vst2);
    const Bytes state = vst2.State();
    vst3.SetState(state);
    const auto feed = [&](const Bytes& bytes)
    {
        EXPECT_EQ(vst2.SetState(bytes), 1);
        EXPECT_EQ(vst3.SetState(bytes), Steinberg::kResultOk);
    };
    // What ends early can't be read, and changes nothing.
    for (std::size_t size = 0; size < state.size(); size += 1 + size / 16)
        feed({ state.begin(), state.begin() + static_cast<std::ptrdiff_t>(size) });
    EXPECT_EQ(vst2.State(), state);
    EXPECT_EQ(vst3.State(), state);
    std::mt19937 generator(20);
    for (int round = 0; round < 100; ++round)
    {
        Bytes bytes = round % 2 == 0 ? state : Bytes(generator() % 2000);
        for (std::uint8_t& byte : bytes)
            if (round % 2 == 1 || generator() % 100 == 0)
                byte = static_cast<std::uint8_t>(generator());
        feed(bytes);
    }
    // Plain text is read too: numbers out of their ranges, unknown names, another root.
    for (const std::string text :
         { "<settings/>", "<settings Version=\"99999999999999999999\" ChannelMode=\"-7\"/>",
           "<other><settings/></other>", "<settings MaxLFOBlockSize=\"-1\" Bypass=\"2\"/>",
           "<settings ChannelMode=\"Surround\" SurroundChannelsEnable=\"000000000000\"/>" })
        feed({ text.begin(), text.end() });
    feed(state);
    EXPECT_EQ(vst2.State(), state);
    EXPECT_EQ(vst3.State(), state);
}

// A preset file is read as the dialog of a host does, by the records that the formats publish.
TEST_F(Formats, OpenTheMatchThatTheProgramSavesAsAPreset)
{
    const std::string folder = std::getenv("TONALIGN_TEST_FOLDER");
    const std::string examples = KeptFile("../../examples/");
    const auto fileOf = [&](const std::string& name)
    {
        std::ifstream file(folder + "/" + name, std::ios::binary);
        return std::string{ std::istreambuf_iterator<char>(file), {} };
    };
    for (const char* ending : { "vstpreset", "fxp" })
    {
        const std::string command = "'" + LoadedModule::BuildFolder() + "/tonalign' equalize '" + examples +
                                    "speech-dull.flac' --source '" + examples +
                                    "speech-clear.wav' --quiet --force --save-state '" + folder +
                                    "/match.state' --save-preset '" + folder + "/A match." + ending + "'";
        ASSERT_EQ(std::system(command.c_str()), 0);
    }
    const std::string state = fileOf("match.state");
    ASSERT_FALSE(state.empty());

    // VST 3: "VST3", version, class, place of the list; the list names the parts, which stand side by side.
    const std::string forVst3 = fileOf("A match.vstpreset");
    const auto little = [&](std::size_t place)
    {
        std::uint32_t value = 0;
        std::memcpy(&value, forVst3.data() + place, sizeof value);
        return std::size_t{ value };
    };
    EXPECT_EQ(forVst3.substr(0, 4), "VST3");
    EXPECT_EQ(little(4), 1u);
    auto* factory = vst3Module.Find<Steinberg::IPluginFactory* (*)()>("GetPluginFactory")();
    Steinberg::PClassInfo info;
    factory->getClassInfo(0, &info);
    factory->release();
    EXPECT_EQ(forVst3.substr(8, 32), HexadecimalOf(info.cid));
    const std::size_t list = little(40);
    EXPECT_EQ(forVst3.substr(list, 4), "List");
    std::string parts;
    std::size_t end = 48;
    for (std::size_t part = 0; part < little(list + 4); ++part)
    {
        const std::size_t entry = list + 8 + 20 * part;
        EXPECT_EQ(little(entry + 4), end);
        const std::string content = forVst3.substr(end, little(entry + 12));
        end += content.size();
        parts += forVst3.substr(entry, 4);
        if (parts == "Comp")
        {
            const Vst3Instance vst3(vst3Module);
            EXPECT_EQ(vst3.SetState({ content.begin(), content.end() }), Steinberg::kResultOk);
            EXPECT_EQ(vst3.State(), Bytes(state.begin(), state.end()));
        }
        else
        {
            EXPECT_NE(content.find("value=\"A match\""), std::string::npos);
        }
    }
    EXPECT_EQ(parts, "CompInfo");
    EXPECT_EQ(end, list);

    // VST 2: big-endian words, a name of 28 characters, the chunk.
    const std::string forVst2 = fileOf("A match.fxp");
    const auto big = [&](std::size_t place)
    {
        std::uint32_t value = 0;
        for (std::size_t index = 0; index < 4; ++index)
            value = value << 8 | static_cast<unsigned char>(forVst2.at(place + index));
        return std::size_t{ value };
    };
    const Vst2Instance vst2(vst2Module);
    EXPECT_EQ(forVst2.substr(0, 4) + forVst2.substr(8, 4), "CcnKFPCh");
    const std::size_t wanted[] = { forVst2.size() - 8,
                                   1,
                                   static_cast<std::size_t>(vst2.effect->uniqueID),
                                   static_cast<std::size_t>(vst2.effect->version),
                                   static_cast<std::size_t>(vst2.effect->numParams),
                                   forVst2.size() - 60 };
    const std::size_t places[] = { 4, 12, 16, 20, 24, 56 };
    for (std::size_t index = 0; index < std::size(places); ++index)
        EXPECT_EQ(big(places[index]), wanted[index]) << places[index];
    EXPECT_STREQ(forVst2.substr(28, 28).c_str(), "A match");
    EXPECT_EQ(forVst2.substr(60), state);
    vst2.SetState({ state.begin(), state.end() });
    // The first band of the match, as the host shows it.
    EXPECT_EQ(vst2.Text(Vst2::EffectOpcode::GetParamDisplay, 10), "On");
    EXPECT_EQ(vst2.Text(Vst2::EffectOpcode::GetParamDisplay, 12), "+24.00 dB");
}

class Rendering : public Formats, public testing::WithParamInterface<int>
{
protected:
    static constexpr int MaxChannels = 8;

    // More than two channels take what the user chooses once for all plug-ins.
    void SetUp() override { WritePluginConfiguration({ .surround = GetParam() > 2 ? 1 : 0 }); }
    void TearDown() override { WritePluginConfiguration({}); }
};

// Frames of the blocks in turn; 0 is a block of no samples, and none of them was announced larger than 512.
constexpr std::int32_t BlockSizes[] = { 512, 0, 1, 16, 511, 3000, 64, 37 };

TEST_P(Rendering, GivesTheOfflineHostsSamplesInBothFormats)
{
    const int channels = GetParam();
    const Vst2Instance source(vst2Module);
    Disturb(source);
    OfflineHost offline;
    SetOfflineState(offline, source.State());
    offline.Prepare(48000, channels);
    const Bytes state = OfflineState(offline);
    const Vst2Instance vst2(vst2Module);
    const Vst3Instance vst3(vst3Module);
    EXPECT_EQ(vst2.effect->numInputs, std::max(channels, 2));
    EXPECT_EQ(vst2.effect->numOutputs, std::max(channels, 2));
    for (const std::intptr_t version : { 2299, 2300 })   // older hosts take more channels for side chains
    {
        Vst2Instance::version = version;
        const Vst2Instance earlier(vst2Module);
        const int width = version < 2300 ? 2 : std::max(channels, 2);
        EXPECT_EQ(earlier.effect->numInputs, width) << version;
        EXPECT_EQ(earlier.effect->numOutputs, width) << version;
        Vst2::PinProperties pin{};
        EXPECT_EQ(earlier.Send(Vst2::EffectOpcode::GetOutputProperties, width - 1, 0, &pin), 1);
        EXPECT_EQ(pin.flags, width > 2 ? 5 : 3) << "active, and of speakers or stereo";
        std::vector<float> left(64, 0.5f), right(64, 0.5f);
        float* two[8] = { left.data(), right.data() };
        earlier.Start(48000, 64);
        earlier.Process(two, two, 64);
        EXPECT_NEAR(left[63], 0.0f, 1e-12f) << "late, and no more than a guard";
    }
    Vst2Instance::version = 2400;
    vst2.SetState(state);
    vst3.SetState(state);
    EXPECT_EQ(vst3.State(), state);

    constexpr std::int32_t frames = 50000;
    AudioSampleBuffer input;
    input.Allocate(channels, frames);
    input.sampleRate = 48000;
    const Signals::Channels noise = Signals::NoiseChannels(MaxChannels, frames, 5, 0.5f);
    for (std::size_t channel = 0; channel < static_cast<std::size_t>(channels); ++channel)
        std::copy(noise[channel].begin(), noise[channel].end(), input.channelData[channel]);

    std::vector<float> expected[MaxChannels];
    offline.Render(input, 512,
                   [&](const float* const* data, std::int32_t count)
                   {
                       for (int channel = 0; channel < channels; ++channel)
                           expected[channel].insert(expected[channel].end(), data[channel],
                                                    data[channel] + count);
                   });
    ASSERT_EQ(expected[0].size(), static_cast<std::size_t>(frames));

    Vst2::SpeakerArrangement arrangement{};
    arrangement.numChannels = channels;
    vst2.Send(Vst2::EffectOpcode::SetSpeakerArrangement, 0, reinterpret_cast<std::intptr_t>(&arrangement),
              &arrangement);
    vst2.Start(48000, 512);
    if (channels != 2)
    {
        namespace Speakers = Steinberg::Vst::SpeakerArr;
        Steinberg::Vst::SpeakerArrangement wanted =
            channels == 1 ? Speakers::kMono : Speakers::k71CineFullFront;
        ASSERT_EQ(vst3.processor->setBusArrangements(&wanted, 1, &wanted, 1), Steinberg::kResultOk);
    }
    vst3.Start(48000, 512);

    std::vector<float> work[2][MaxChannels];
    for (auto& format : work)
        for (std::size_t channel = 0; channel < MaxChannels; ++channel)
        {
            format[channel] = noise[channel];
            format[channel].resize(frames + Latency);
        }
    std::size_t turn = 0;
    for (std::int32_t done = 0; done < frames + Latency;)
    {
        const std::int32_t run =
            std::min(BlockSizes[turn++ % std::size(BlockSizes)], frames + Latency - done);
        // In place; a mono host has nothing at the second channel.
        float* first[MaxChannels] = {};
        float* second[MaxChannels] = {};
        for (int channel = 0; channel < channels; ++channel)
        {
            first[channel] = work[0][channel].data() + done;
            second[channel] = work[1][channel].data() + done;
        }
        vst2.Process(first, first, run);
        ASSERT_EQ(vst3.Process(second, second, run, nullptr, channels), Steinberg::kResultOk);
        done += run;
    }
    for (std::size_t channel = 0; channel < static_cast<std::size_t>(channels); ++channel)
    {
        EXPECT_GT(Signals::PeakOf(expected[channel]), 0.01f);
        for (const auto& format : work)   // bit for bit: it is the same code, whatever the block lengths are
            EXPECT_EQ(Signals::LargestDifference(format[channel], expected[channel], Latency,
                                                 frames + Latency, Latency),
                      0)
                << "format " << (&format - work) << ", channel " << channel;
    }
}

INSTANTIATE_TEST_SUITE_P(Channels, Rendering, testing::Values(1, 2, 8));
}   // namespace
