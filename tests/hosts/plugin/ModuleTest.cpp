// SPDX-License-Identifier: GPL-3.0-or-later
// The module as a file: what it shows to the world, what it leaves behind.
#include <cstdio>
#include <fstream>
#include <set>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Vst2Host.h"
#include "tests/AllocationCounter.h"
#include "tools/vst3host/Vst3Host.h"

namespace
{
std::vector<std::string> LinesOf(const std::string& command)
{
    std::vector<std::string> lines;
    FILE* pipe = popen(command.c_str(), "r");
    char line[1024];
    while (pipe != nullptr && std::fgets(line, sizeof line, pipe) != nullptr)
        lines.emplace_back(line, std::strcspn(line, "\n"));
    if (pipe != nullptr)
        pclose(pipe);
    return lines;
}

TEST(Module, ExportsItsNineEntriesAndNothingElse)
{
    const std::set<std::string> wanted = { "VSTPluginMain",
                                           "main",
                                           "GetPluginFactory",
                                           "TonalignAudioEffectPluginInterface",
                                           "MLibraryDLLInitialize",
                                           "InitDll",
                                           "ExitDll",
                                           "ModuleEntry",
                                           "ModuleExit" };
    for (const auto format : { LoadedModule::Format::Vst2, LoadedModule::Format::Vst3 })
    {
        std::set<std::string> exported;
        for (const std::string& line :
             LinesOf("nm -D --defined-only --format=posix '" + LoadedModule::PathOf(format) + "'"))
            exported.insert(line.substr(0, line.find(' ')));
        EXPECT_EQ(exported, wanted);
    }
}

std::string SourceFolder()
{
    const char* folder = std::getenv("TONALIGN_SOURCE_DIR");
    return folder != nullptr ? folder : ".";
}

/// The number behind the last "GLIBC_2." or "glibc 2." of each line; 0 without one.
int NewestMinorVersion(const std::vector<std::string>& lines, const std::string& mark)
{
    int newest = 0;
    for (const std::string& line : lines)
        if (const std::size_t place = line.rfind(mark); place != std::string::npos)
            newest = std::max(newest, std::atoi(line.c_str() + place + mark.size()));
    return newest;
}

TEST(Module, NeedsTheCLibraryAloneOfTheAgeThatTheReadmeStates)
{
    if (!AllocationCounter::IsCounting())
        GTEST_SKIP() << "a sanitizer brings its own libraries";
    for (const auto format : { LoadedModule::Format::Vst2, LoadedModule::Format::Vst3 })
    {
        const std::string path = "'" + LoadedModule::PathOf(format) + "'";
        std::set<std::string> needed;
        for (const std::string& line : LinesOf("readelf -d " + path))
        {
            // The flag would keep the code, and every static object, until the process ends.
            EXPECT_EQ(line.find("NODELETE"), std::string::npos) << line;
            if (line.find("(NEEDED)") != std::string::npos)
                needed.insert(line.substr(line.find('[')));
        }
        needed.erase("[ld-linux-x86-64.so.2]");
        needed.erase("[ld-linux-aarch64.so.1]");
        EXPECT_EQ(needed, (std::set<std::string>{ "[libc.so.6]", "[libm.so.6]" }));

        std::ifstream readme(SourceFolder() + "/README.md");
        std::vector<std::string> claims;
        for (std::string line; std::getline(readme, line);)
            claims.push_back(line);
        EXPECT_EQ(NewestMinorVersion(LinesOf("objdump -T " + path), "GLIBC_2."),
                  NewestMinorVersion(claims, "glibc 2."));
    }
}

TEST(Module, DescribesInItsBundleWhatTheFactoryAnswers)
{
    std::ifstream file(LoadedModule::BuildFolder() +
                       "/TonalignLinearPhase.vst3/Contents/Resources/moduleinfo.json");
    const nlohmann::json info = nlohmann::json::parse(file);
    const LoadedModule module(LoadedModule::Format::Vst3);
    auto* first = module.Find<Steinberg::IPluginFactory* (*)()>("GetPluginFactory")();
    Steinberg::IPluginFactory2* factory = nullptr;
    ASSERT_EQ(first->queryInterface(Steinberg::IPluginFactory2::iid, reinterpret_cast<void**>(&factory)), 0);
    Steinberg::PFactoryInfo maker;
    Steinberg::PClassInfo2 plugin;
    ASSERT_EQ(factory->getFactoryInfo(&maker), 0);
    ASSERT_EQ(factory->countClasses(), 1);
    ASSERT_EQ(factory->getClassInfo2(0, &plugin), 0);

    const nlohmann::json& described = info["Classes"][0];
    EXPECT_EQ(described["CID"], HexadecimalOf(plugin.cid));
    EXPECT_EQ(std::string(plugin.cid, 16), "qvrnPlugQT~2QT~2");
    EXPECT_EQ(described["Name"], plugin.name);
    EXPECT_EQ(described["Category"], plugin.category);
    EXPECT_EQ(described["Vendor"], plugin.vendor);
    EXPECT_EQ(described["Version"], plugin.version);
    EXPECT_EQ(described["SDKVersion"], plugin.sdkVersion);
    EXPECT_EQ(described["Cardinality"], plugin.cardinality);
    EXPECT_EQ(std::string(plugin.subCategories), "Fx|EQ");
    EXPECT_EQ(info["Factory Info"]["Vendor"], maker.vendor);
    EXPECT_EQ(info["Factory Info"]["URL"], maker.url);
    EXPECT_EQ(maker.flags, 16);

    void* object = this;
    EXPECT_NE(factory->createInstance("sixteen letters.", Steinberg::Vst::IComponent::iid, &object), 0);
    EXPECT_EQ(object, nullptr);
    EXPECT_NE(factory->createInstance(plugin.cid, Steinberg::Vst::IMessage::iid, &object), 0);
    EXPECT_EQ(object, nullptr);
    EXPECT_NE(factory->createInstance(nullptr, Steinberg::Vst::IComponent::iid, &object), 0);
    EXPECT_NE(factory->createInstance(plugin.cid, nullptr, &object), 0);
    EXPECT_NE(factory->createInstance(plugin.cid, Steinberg::Vst::IComponent::iid, nullptr), 0);
    EXPECT_NE(factory->getClassInfo2(1, &plugin), 0);
    factory->release();
    first->release();
}

TEST(Module, LeavesNothingBehindWhenLoadedUsedAndUnloadedAHundredTimes)
{
    const auto useOnce = [](int round)
    {
        const auto format = round % 2 == 0 ? LoadedModule::Format::Vst2 : LoadedModule::Format::Vst3;
        std::vector<float> buffer(256);
        float* channels[] = { buffer.data(), buffer.data() };
        {
            const LoadedModule module(format);
            if (format == LoadedModule::Format::Vst2)
            {
                const Vst2Instance instance(module);
                instance.Start(48000, 256);
                instance.Process(channels, channels, 256);
                instance.SetState(instance.State());
            }
            else
            {
                const Vst3Instance instance(module);
                instance.Start(48000, 256);
                instance.Process(channels, channels, 256);
                instance.SetState(instance.State());
            }
        }
        void* still = dlopen(LoadedModule::PathOf(format).c_str(), RTLD_NOW | RTLD_NOLOAD);
        EXPECT_EQ(still, nullptr) << "round " << round;
        if (still != nullptr)
            dlclose(still);
    };
    // The C and C++ libraries keep a few blocks of their own from the first rounds.
    for (int round = 0; round < 4; ++round)
        useOnce(round);
    const std::int64_t before = AllocationCounter::Living();
    for (int round = 0; round < 100; ++round)
        useOnce(round);
    EXPECT_EQ(AllocationCounter::Living(), before);
}

TEST(Module, AnswersNullToADeadHost)
{
    const LoadedModule module(LoadedModule::Format::Vst2);
    for (const char* entry : { "VSTPluginMain", "main" })
    {
        EXPECT_EQ(module.Find<Vst2Instance::Entry>(entry)(nullptr), nullptr);
        Vst2Instance::version = 0;
        EXPECT_THROW(Vst2Instance(module, entry), std::runtime_error);
        Vst2Instance::version = 2400;
        EXPECT_NO_THROW(Vst2Instance(module, entry));
    }
}
}   // namespace
