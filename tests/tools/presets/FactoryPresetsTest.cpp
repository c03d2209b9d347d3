// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/text/MException.h"
#include "hosts/offline/OfflineHost.h"
#include "state/tree/XML.h"
#include "tests/Signals.h"
#include "tools/presets/FactoryPresets.h"

namespace
{
std::string SourceFile(const char* name)
{
    std::ifstream file(std::string(std::getenv("TONALIGN_SOURCE_DIR")) + "/resources/" + name,
                       std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

std::string Written(const MAttribute& tree)
{
    MMemoryStream stream;
    WriteXML(tree, stream, true, "utf-8");
    return { reinterpret_cast<const char*>(stream.Block().Data()),
             static_cast<std::size_t>(stream.Block().Size()) };
}

// The program: its status, and what it says.
std::pair<int, std::string> Make(const std::string& arguments)
{
    const std::string told = std::string(std::getenv("TONALIGN_TEST_FOLDER")) + "/told";
    const int status = std::system(("'" + std::string(std::getenv("TONALIGN_BINARY_DIR")) +
                                    "/tools/presets/make_presets' " + arguments + " 2>'" + told + "'")
                                       .c_str());
    std::ifstream file(told);
    return { WEXITSTATUS(status), { std::istreambuf_iterator<char>(file), {} } };
}

TEST(MakePresets, EachPresetIsAFileOfItsOwnStateUnderItsName)
{
    const std::string folder = std::string(std::getenv("TONALIGN_TEST_FOLDER")) + "/of/hosts";
    ASSERT_EQ(Make("--vst3 '" + folder + "'").first, 0);
    std::set<std::string> names, contents;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
    {
        names.insert(entry.path().stem().string());
        EXPECT_EQ(entry.path().extension(), ".vstpreset");
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes{ std::istreambuf_iterator<char>(file), {} };
        EXPECT_TRUE(bytes.starts_with("VST3"));
        contents.insert(bytes.substr(48, bytes.find("<?xml") - 48));
    }
    // Names as scripts/uninstall finds them.
    std::set<std::string> wanted;
    for (const FactoryPreset& preset : ParseFactoryPresets(SourceFile("presets.txt"), "presets.txt"))
        wanted.insert(preset.name);
    EXPECT_EQ(names, wanted);
    EXPECT_EQ(contents.size(), wanted.size());
    EXPECT_EQ(Make("--vst3 /dev/null/folder").first, 1);
}

TEST(MakePresets, TheKeptFileIsWhatTheDescriptionMakes)
{
    const std::string folder = std::getenv("TONALIGN_SOURCE_DIR");
    const std::string made = std::string(std::getenv("TONALIGN_TEST_FOLDER")) + "/made.xml";
    ASSERT_EQ(Make("'" + folder + "/resources/presets.txt' '" + made + "'").first, 0);
    std::ifstream file(made, std::ios::binary);
    const std::string bytes{ std::istreambuf_iterator<char>(file), {} };
    EXPECT_EQ(bytes, SourceFile("presets.xml"))
        << "run make_presets resources/presets.txt resources/presets.xml";
    EXPECT_EQ(Make("'" + made + "'").first, 2) << "usage";
    const auto [status, told] = Make("/nowhere '" + made + "'");
    EXPECT_EQ(status, 1);
    EXPECT_EQ(told, "make_presets: Cannot read the description.\n");
}

TEST(FactoryPresets, AreTheProgramsAndPutTheirBandsIntoThePlugIn)
{
    const std::vector<FactoryPreset> described =
        ParseFactoryPresets(SourceFile("presets.txt"), "presets.txt");
    const auto plugin = CreateInstance();
    ASSERT_GE(described.size(), 24u);
    ASSERT_EQ(plugin->presets.FactoryPresetCount(), static_cast<int>(described.size()));
    std::set<std::string> names;
    for (int index = 0; index < plugin->presets.FactoryPresetCount(); ++index)
    {
        const FactoryPreset& preset = described[static_cast<std::size_t>(index)];
        SCOPED_TRACE(preset.name);
        EXPECT_EQ(plugin->presets.FactoryPresetName(index).ToUTF8(), preset.name);
        EXPECT_TRUE(names.insert(preset.name).second);
        ASSERT_TRUE(plugin->presets.LoadFactoryPreset(index));
        EXPECT_EQ(plugin->presets.CurrentPresetIndex(), index);
        for (std::int32_t number = 0; number < MEqualizerBase::BandCount; ++number)
        {
            const BandPoint& band = EffectOf(*plugin).equalizer.Band(number);
            const bool isUsed = static_cast<std::size_t>(number) < preset.bands.size();
            ASSERT_EQ(band.enabled, isUsed);
            if (!isUsed)
                continue;
            const BandSpec& wanted = preset.bands[static_cast<std::size_t>(number)];
            const BandSpec got = BandSpecOf(band);
            EXPECT_EQ(got.type, wanted.type);
            EXPECT_EQ(got.order, wanted.order);
            EXPECT_NEAR(got.frequencyHz / wanted.frequencyHz, 1,
                        1e-9);   // 12 digits of the logarithm are kept
            EXPECT_NEAR(got.gainDb, wanted.gainDb, 1e-9);
            EXPECT_NEAR(got.q, wanted.q, 1e-5);   // 6 decimals are kept
        }
    }
    EXPECT_FALSE(plugin->presets.LoadFactoryPreset(-1));
    EXPECT_FALSE(plugin->presets.LoadFactoryPreset(plugin->presets.FactoryPresetCount()));
}

// The state without what a factory preset names.
std::string Rest(MQuorvaneAudioEffectPlugin& plugin)
{
    MAttribute state("settings");
    plugin.Store({ .saving = 1, .item = &state });
    state.RemoveSubItems("graph");
    for (const char* key :
         { "parametergain", "parameterdepth", "parameterSoftSaturation", "CurrentPresetIndex" })
    {
        EXPECT_TRUE(state.HasAttribute(key)) << key;
        state.RemoveAttribute(key);
    }
    return Written(state);
}

TEST(FactoryPresets, ChangeTheirBandsAndNothingElse)
{
    // Every setting differs from its default, so that one that is set back shows.
    const auto plugin = CreateInstance();
    TonalignAudioEffectPlugin& effect = EffectOf(*plugin);
    for (std::int32_t index = 0; index < plugin->GetParameterCount(); ++index)
        plugin->SetParameter(index, plugin->GetParameter(index) < 0.4f ? 0.7f : 0.2f);
    effect.settings.maxAdaptionBars = 10;
    effect.settings.neverAmplify = true;
    effect.settings.adaptionFrequencyMin = 300;
    effect.settings.adaptionFrequencyMax = 3000;
    effect.settings.spaceInMixLimit = -70;
    effect.settings.autoEqEnvelope.Reset(0.2, 0.4);
    effect.TargetAnalysisDefined = true;
    effect.analyzer.settings.slope = 1.5;
    effect.analyzer.settings.channelMode = ChannelModeLeft;
    effect.analyzer.settings.prefilterDepth = 0.5;
    plugin->upsampling = 2;
    plugin->highQualityUpsampling = false;
    plugin->agc = 1;
    plugin->presetIndex = 3;
    plugin->bypass = true;
    plugin->maxLFOBlockSize = 512;
    plugin->channelMode = ChannelMode::Left;
    // Once through a state, so that what follows from the parameters follows already.
    MAttribute state("settings");
    plugin->Store({ .saving = 1, .item = &state });
    plugin->Store({ .item = &state });
    const std::string before = Rest(*plugin);

    ASSERT_TRUE(plugin->presets.LoadFactoryPreset(2));
    EXPECT_TRUE(Rest(*plugin) == before);
    plugin->presets.StepPreset(1);   // the list is that of the factory as long as there is no file
    EXPECT_TRUE(Rest(*plugin) == before);

    // A preset of the user's own holds everything but the instance's place in its session.
    MAttribute root;
    plugin->presets.LoadPresets(root);
    plugin->presets.AddPreset(root, "everything");
    plugin->presetIndex = 5;
    plugin->maxLFOBlockSize = 64;
    plugin->bypass = false;
    plugin->presets.LoadPreset(*root.FindSubItem("preset", "name", "everything"));
    EXPECT_EQ(plugin->presetIndex, 5);
    plugin->presetIndex = 3;
    EXPECT_TRUE(Rest(*plugin) == before);
}

// The response of the whole plug-in to an impulse.
TEST(FactoryPresets, SoundAsTheirNamesSay)
{
    constexpr std::int32_t frameCount = 1 << 16;
    OfflineHost host;
    const auto gainsDb = [&](const std::string& name, const std::vector<double>& frequencies)
    {
        MPresetManagerBase& presets = host.Plugin().presets;
        for (int index = 0; index < presets.FactoryPresetCount(); ++index)
            if (presets.FactoryPresetName(index).ToUTF8() == name)
                presets.LoadFactoryPreset(index);
        host.Prepare(48000, 1);
        AudioSampleBuffer input;
        input.Allocate(1, frameCount);
        std::fill_n(input.channelData[0], frameCount, 0.0f);
        input.channelData[0][frameCount / 2] = 1.0f;
        std::vector<float> output;
        host.Render(input, 512,
                    [&](const float* const* channels, std::int32_t frames)
                    { output.insert(output.end(), channels[0], channels[0] + frames); });
        std::vector<double> gains;
        for (const double frequency : frequencies)
            gains.push_back(Signals::MeasuredDb(output, frequency, 48000));
        return gains;
    };
    const std::vector<double> telephone = gainsDb("Telephone", { 60, 1500, 10000 });
    EXPECT_LT(std::max(telephone[0], telephone[2]), -40);
    EXPECT_NEAR(telephone[1], 3, 3);
    const std::vector<double> hum = gainsDb("Mains hum 50 Hz", { 50, 100, 150, 75, 1000 });
    EXPECT_LT(*std::max_element(hum.begin(), hum.begin() + 3), -20);
    EXPECT_NEAR(hum[3], 0, 1.5);
    EXPECT_NEAR(hum[4], 0, 0.1);
    const std::vector<double> up = gainsDb("Tilt up", { 40, 15000 });
    EXPECT_TRUE(up[0] < -1 && up[1] > 1);
    const std::vector<double> down = gainsDb("Tilt down", { 40, 15000 });
    EXPECT_NEAR(down[0], -up[0], 0.05);   // mirror images
    EXPECT_NEAR(down[1], -up[1], 0.05);
}

TEST(FactoryPresets, ADescriptionIsRefusedWithItsLine)
{
    std::string eleven = "a =", ten = "a =";
    for (int band = 0; band < 11; ++band)
        (band < 10 ? ten : eleven) += " peak:100:1:1";
    eleven += ten.substr(3);
    const std::pair<std::string, const char*> refused[] = {
        { "[F]\nname", "list:2: expected [Folder] or Name = BAND ..." },
        { "\n[F\n", "list:2: expected [Folder] or Name = BAND ..." },
        { "= peak:100:1:1", "list:1: expected [Folder] or Name = BAND ..." },
        { "a = ", "list:1: expected 1 to 10 bands" },
        { eleven, "list:1: expected 1 to 10 bands" },
        { "a = peak:100:1:1\n[F]\na = peak:100:1:1\na = peak:100:1:1", "list:4: \"a\" comes twice" },
        { "a = peak:10:1:1", "list:1: --band peak:10:1:1: frequency \"10\" is not 20 to 20000 Hz" }
    };
    for (const auto& [text, message] : refused)
    {
        try
        {
            ParseFactoryPresets(text, "list");
            ADD_FAILURE() << text;
        }
        catch (const MException& error)
        {
            EXPECT_EQ(error.Message.ToUTF8(), message);
        }
    }
    const auto read =
        ParseFactoryPresets("# c = peak:1:1:1\n \t\r\n[ Two words ] \r\n\ta b =" + ten.substr(3), "list");
    ASSERT_EQ(read.size(), 1u);
    EXPECT_EQ(read[0].folder, "Two words");
    EXPECT_EQ(read[0].name, "a b");
    EXPECT_EQ(read[0].bands.size(), 10u);
}
}   // namespace
