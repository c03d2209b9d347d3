// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "foundation/containers/MEventBase.h"
#include "foundation/module/Configuration.h"
#include "foundation/module/MLocale.h"
#include "foundation/module/MModule.h"
#include "foundation/streams/MFile.h"
#include "state/tree/XML.h"
#include "tests/ErrorOf.h"

namespace
{
namespace fs = std::filesystem;

const std::string& TestFolder()
{
    static const std::string folder = std::getenv("TONALIGN_TEST_FOLDER");
    return folder;
}

TEST(MModuleTest, FindsItselfAndMakesItsDataFolder)
{
    MModule& module = StartModule();
    EXPECT_EQ(&module, &StartModule());
    EXPECT_EQ(module.modulePath.ToUTF8(), fs::read_symlink("/proc/self/exe").string());
    EXPECT_EQ(module.productName.ToUTF8(), "test_foundation_module");
    const std::string base = std::string(std::getenv("XDG_DATA_HOME")) + "/Quorvane";
    for (const auto& [got, wanted] : { std::pair{ module.GetDataPath(), base + "/test_foundation_module" },
                                       std::pair{ MModule::GetGlobalDataPath(), base + "/Data" },
                                       std::pair{ MModule::GetDataPath("//a/../b//c/"), base + "/b/c" } })
    {
        EXPECT_EQ(got.ToUTF8(), wanted);
        EXPECT_TRUE(fs::is_directory(wanted));
    }
    Module second;   // never takes the place of the first
    EXPECT_EQ(MModule::Main(), &module);
}

TEST(MModuleTest, RefusesLibrariesThatAreNoneOfTheFamily)
{
    MModule& module = StartModule();
    EXPECT_EQ(ErrorOf([&] { module.DLLLoaded({}); }), "Dynamic link library has not been loaded.");
    MDynamicLibrary foreign = { "libz.so.1", dlopen("libz.so.1", RTLD_NOW) };
    ASSERT_NE(foreign.handle, nullptr);
    EXPECT_EQ(ErrorOf([&] { module.DLLLoaded(foreign); }),
              "The library does not support Quorvane service access.");
    dlclose(foreign.handle);
}

// The shared lock stays for good, so that a process of its own takes it over.
TEST(MModuleTest, ALoadersHooksAndLockReplaceOnesOwn)
{
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0)
    {
        static MLock lock;
        int marks[MLibraryPointers::FunctionCount] = {};
        void* functions[MLibraryPointers::FunctionCount];
        for (int index = 0; index < MLibraryPointers::FunctionCount; ++index)
            functions[index] = &marks[index];
        const MLibraryPointers pointers = { functions, &lock };
        bool isRight = InitializeAsLibrary(&pointers) == 1 && &EventLock() == &lock;
        for (int index = 0; index < MLibraryPointers::FunctionCount; ++index)
            isRight = isRight && SharedFunction(index) == &marks[index];
        _exit(isRight && SharedFunction(-1) == nullptr && SharedFunction(5) == nullptr ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST(MModuleTest, FindsTheStyleBesideItselfOrInTheCurrentFolder)
{
    Module module;
    const fs::path folder = fs::path(TestFolder()) / "style";
    fs::create_directories(folder / "elsewhere");
    module.modulePath = MString::FromUTF8((folder / "module.so").string());
    const fs::path old = fs::current_path();
    fs::current_path(folder / "elsewhere");
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(module.FindStyleFile()); }),
              "No style definition has been found.");
    std::ofstream(folder / "elsewhere/qstyle.qrf") << "x";
    EXPECT_EQ(module.FindStyleFile().ToUTF8(), (folder / "elsewhere/qstyle.qrf").string());
    std::ofstream(folder / "qstyle.qrf") << "x";
    EXPECT_EQ(module.FindStyleFile().ToUTF8(), (folder / "qstyle.qrf").string());
    fs::current_path(old);
    module.productName = "nothing of this name";
    EXPECT_EQ(
        ErrorOf([&] { module.LoadDocumentation(); }),
        "Could not execute file \"/usr/share/doc/nothing of this name/nothing of this name.html\". No such "
        "file or directory");
}

TEST(ConfigurationFiles, MissingAndBrokenOnesAreEmptyTrees)
{
    StartModule();
    const fs::path shared = fs::path(std::getenv("XDG_DATA_HOME")) / "Quorvane/MPluginConfiguration.xml";
    fs::remove(shared);
    MAttribute tree("old");
    tree.SetAttribute("stale", "1");
    LoadPluginConfiguration(tree);
    EXPECT_EQ(tree.Name().ToUTF8(), "Configuration");
    EXPECT_EQ(tree.AttributeCount(), 0);
    const auto read = []
    {
        const PluginConfiguration all = ReadPluginConfiguration();
        return std::tuple(all.surround, all.confirmationEnabled, all.tabletMode,
                          all.onlinePresetExchange.ToUTF8());
    };
    EXPECT_EQ(read(), std::tuple(0, true, false, ""));

    // What others keep in the file survives a change.
    tree.SetAttribute("Foreign", "kept");
    SavePluginConfiguration(tree);
    for (const bool flag : { true, false })
        for (const bool other : { true, false })
        {
            WritePluginConfiguration({ flag ? 1 : 0, other, flag != other, flag ? "a" : "" });
            EXPECT_EQ(read(), std::tuple(flag ? 1 : 0, other, flag != other, "a"));
        }
    WritePluginConfiguration({});
    EXPECT_EQ(read(), std::tuple(0, true, false, "a"));
    LoadPluginConfiguration(tree);
    EXPECT_EQ(tree.GetAttribute("Foreign").ToUTF8(), "kept");

    for (const std::string broken : { "", "<Configuration", "<a></b>", "\x78\x9c garbage" })
    {
        std::ofstream(shared, std::ios::binary) << broken;
        LoadPluginConfiguration(tree);
        EXPECT_EQ(tree.Name().ToUTF8(), "Configuration") << broken;
        EXPECT_EQ(tree.AttributeCount() + tree.SubItemCount(), 0) << broken;
    }

    MAttribute own;
    own.GetSubItem("DefaultSettings").SetText("ABC");
    SaveConfiguration(own);
    EXPECT_TRUE(fs::exists(fs::path(std::getenv("XDG_DATA_HOME")) /
                           "Quorvane/test_foundation_module/GlobalConfiguration.xml"));
    LoadConfiguration(tree);
    EXPECT_EQ(tree.GetSubItem("DefaultSettings").Text().ToUTF8(), "ABC");
}

// Every file that a reader meets while two processes write is a whole one of one of them.
TEST(ConfigurationFiles, AreNeverBrokenWhileTwoProcessesWrite)
{
    StartModule();
    constexpr int ItemCount = 300;
    const auto write = [](int first, int last)
    {
        for (int round = first; round < last; ++round)
        {
            MAttribute tree;
            for (int item = 0; item < ItemCount; ++item)
                tree.AddSubItem("item").SetAttribute("round", MString::FromInt(round));
            SavePluginConfiguration(tree);
        }
    };
    write(0, 1);
    for (const int first : { 100, 200 })
        if (fork() == 0)
            _exit(ErrorOf([&] { write(first, first + 40); }).empty() ? 0 : 1);
    const MString path = MFile::GetSpecialFolder(MFile::UserData) + "/MPluginConfiguration.xml";
    std::string last;
    for (int running = 2; running >= 0;)
    {
        int status = 0;
        if (running == 0 || waitpid(-1, &status, WNOHANG) > 0)
            --running;   // and once more when both have ended
        EXPECT_EQ(status, 0);
        MAttribute tree;
        LoadXML(tree, path);   // throws for anything that is broken
        ASSERT_EQ(tree.SubItemCount(), ItemCount);
        last = tree.SubItemAt(0).GetAttribute("round").ToUTF8();
        for (int item = 0; item < ItemCount; ++item)
            ASSERT_EQ(tree.SubItemAt(item).GetAttribute("round").ToUTF8(), last);
    }
    EXPECT_TRUE(last == "139" || last == "239") << last;
    for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(path.ToUTF8()).parent_path()))
        EXPECT_NE(entry.path().extension(), ".tmp") << entry.path();
}

TEST(Locale, CodesAreUniqueTwoLetterCodesWithTheirNames)
{
    using Table = std::span<const char* const>;
    for (const auto& [codes, labels] :
         { std::pair<Table, Table>(MLocale::LanguageCodes, MLocale::LanguageLabels),
           { MLocale::CountryCodes, MLocale::CountryLabels } })
    {
        ASSERT_EQ(codes.size(), labels.size());
        EXPECT_STREQ(codes[0], "");
        EXPECT_STREQ(labels[0], "");
        std::set<std::string> unique;
        for (std::size_t index = 1; index < codes.size(); ++index)
        {
            EXPECT_EQ(std::string(codes[index]).size(), 2u);
            EXPECT_TRUE(index == 1 || std::string(labels[index - 1]) < labels[index]) << labels[index];
            unique.insert(codes[index]);
        }
        EXPECT_EQ(unique.size(), codes.size() - 1);
    }
}
}   // namespace
