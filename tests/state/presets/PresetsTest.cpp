// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "foundation/module/MModule.h"
#include "foundation/streams/MFile.h"
#include "foundation/streams/MMemoryStream.h"
#include "foundation/text/MException.h"
#include "state/presets/DefaultSettings.h"
#include "state/presets/MPresetManagerT.h"
#include "state/tree/XML.h"

namespace
{
namespace fs = std::filesystem;

// Documents are written with single quotes here and have double ones.
std::string Quoted(std::string document)
{
    std::replace(document.begin(), document.end(), '\'', '"');
    return document;
}

// Something with settings: a number in an attribute and a text in a child.
struct Knob
{
    int number = 0;
    std::string text;
    int loadCount = 0;
    MLoadMode mode = MLoadMode::Plain;

    void Store(const MStoreParams& params)
    {
        EXPECT_EQ(params.scope, MStoreScope::Preset);
        if (params.saving)
        {
            params.item->SetAttribute("number", MString::FromInt(number));
            params.item->GetSubItem("child").SetText(MString::FromUTF8(text));
            return;
        }
        ++loadCount;
        mode = params.mode;
        number = static_cast<int>(params.item->GetAttribute("number", "-1").ToInt());
        if (number == 13)
            throw MException("13");   // halfway through
        text = params.item->GetSubItem("child").Text().ToUTF8();
    }
};

class Presets : public testing::Test, protected MPresetDialogs
{
protected:
    Presets() : folder(fs::path(std::getenv("XDG_DATA_HOME")) / "Quorvane"), manager(knob)
    {
        fs::remove_all(folder.parent_path());
        fs::create_directories(folder);
        manager.SetPrefix("Knob");
    }

    bool Confirm(const MString& question) override
    {
        asked = question.ToUTF8();
        return agrees;
    }
    bool AskText(const MString& prompt, MString& text) override
    {
        asked = prompt.ToUTF8() + "|" + text.ToUTF8();
        text = MString::FromUTF8(answer);
        return agrees;
    }
    bool AskFile(const FileRequest& request, MString& path) override
    {
        asked = request.title.ToUTF8() + "|" + request.fileType.ToUTF8() + "|" + request.extension.ToUTF8() +
                "|" + request.dialogId.ToUTF8();
        path = MString::FromUTF8(answer);
        return agrees;
    }
    void ShowMessage(const MString& text) override { asked = text.ToUTF8(); }

    fs::path FilePath() const { return folder / "Knobpresets.xml"; }
    MString Path(const std::string& name) const { return MString::FromUTF8((folder / name).string()); }
    std::string FileContent() const
    {
        std::ifstream file(FilePath(), std::ios::binary);
        return { std::istreambuf_iterator<char>(file), {} };
    }
    void PutFile(const std::string& content) const
    {
        std::ofstream(FilePath(), std::ios::binary) << Quoted(content);
    }
    // The flat order as "A,B,folder preset".
    std::string List()
    {
        MAttribute root;
        manager.LoadPresets(root);
        return Names(root);
    }
    static std::string Names(const MAttribute& root)
    {
        std::vector<MAttribute*> presets;
        CollectPresets(root, presets);
        std::string names;
        for (MAttribute* preset : presets)
            names += (names.empty() ? "" : ",") + preset->GetAttribute("name").ToUTF8();
        return names;
    }
    void Add(MAttribute& root, const char* presetName, int number)
    {
        knob.number = number;
        knob.text = "text of " + std::to_string(number);
        manager.AddPreset(root, presetName);
    }

    fs::path folder;
    Knob knob;
    MPresetManagerT<Knob> manager;
    std::string asked;
    std::string answer;
    bool agrees = true;
};

struct Listener : MEventTarget
{
    void OnSelected(const PresetSelectedParams& params)
    {
        heard += params.name.ToUTF8() + std::to_string(params.index) + " ";
    }
    void OnChanged(const MOnNotifyParams&) { heard += "changed "; }
    std::string heard;
};

MAttribute& Parse(MAttribute& tree, const std::string& singleQuoted)
{
    const std::string document = Quoted(singleQuoted);
    MMemoryStream stream = MMemoryStream::Borrow(document.data(), static_cast<std::int32_t>(document.size()));
    ReadXML(tree, stream);
    return tree;
}

std::string Written(const MAttribute& tree)
{
    MMemoryStream stream;
    WriteXML(tree, stream, true, "utf-8");
    return { reinterpret_cast<const char*>(stream.Block().Data()),
             static_cast<std::size_t>(stream.Block().Size()) };
}

TEST_F(Presets, FlatOrderTakesAFoldersPresetsBeforeItsFolders)
{
    MAttribute tree;
    EXPECT_EQ(
        Names(Parse(tree, "<presets><Directory Name='F'><Directory Name='G'><preset name='E'/></Directory>"
                          "<preset name='C'/><preset name='D'/></Directory><preset name='A'/>"
                          "<other><preset name='no'/></other><preset name='B'/></presets>")),
        "A,B,C,D,E");
}

TEST_F(Presets, CompressingKeepsWhatAPresetSaysAndHappensOnce)
{
    const std::string plain =
        "<presets><preset name='A' number='7' ExchangeIndex='3'><child>some &lt; text</child>"
        "<preset name='inner'/></preset><Directory Name='F'><preset name='B'/></Directory>"
        "<preset/><preset name='C' number='8'/></presets>";
    MAttribute compressed;
    MAttribute untouched;
    CompressPresets(Parse(compressed, plain));
    Parse(untouched, plain);
    MAttribute& first = compressed.SubItemAt(0);
    EXPECT_EQ(first.GetAttribute("name").ToUTF8(), "A");
    EXPECT_EQ(first.GetAttribute("compressed").ToUTF8(), "1");
    EXPECT_EQ(first.GetAttribute("ExchangeIndex").ToUTF8(), "3");
    EXPECT_EQ(first.AttributeCount(), 3);
    EXPECT_EQ(first.SubItemCount(), 0);
    EXPECT_FALSE(compressed.SubItemAt(3).HasAttribute("compressed"));   // behind one without a name

    MAttribute fromCompressed;
    MAttribute fromPlain("preset");
    ReadPreset(first, fromCompressed);
    ReadPreset(untouched.SubItemAt(0), fromPlain);
    EXPECT_EQ(Written(fromCompressed), Written(fromPlain));

    const std::string once = Written(compressed);
    CompressPresets(compressed);
    EXPECT_EQ(Written(compressed), once);
}

TEST_F(Presets, MergingAddsOnlyNewNamesWithoutCase)
{
    MAttribute target;
    MAttribute source;
    Parse(target,
          "<presets><preset name='ABC'/><Directory Name='Voice'><preset name='x'/></Directory></presets>");
    Parse(source,
          "<presets><preset name='abc' v='1'/><preset name='new' v='2'><child>deep</child></preset>"
          "<Directory Name='VOICE'><preset name='X'/><preset name='y'/></Directory>"
          "<Directory Name='Other'><Directory Name='Deeper'><preset name='z'/></Directory></Directory>"
          "</presets>");
    EXPECT_EQ(MergePresets(target, source, 12), 3);
    EXPECT_EQ(Names(target), "ABC,new,x,y,z");
    MAttribute& added = *target.FindSubItem("preset", "name", "new");
    EXPECT_EQ(added.GetAttribute("ExchangeIndex").ToUTF8(), "12");
    EXPECT_EQ(added.RequireSubItem("child").Text().ToUTF8(), "deep");
    EXPECT_EQ(MergePresets(target, source, 13), 0);
}

TEST_F(Presets, AreAddedReplacedRenamedMovedAroundAndDeleted)
{
    manager.dialogs = this;
    MAttribute root;
    root.AddSubItem("preset");
    manager.LoadPresets(root);
    EXPECT_EQ(root.SubItemCount(), 0);
    EXPECT_EQ(root.Name().ToUTF8(), "presets");
    fs::remove_all(folder.parent_path());
    EXPECT_EQ(List(), "");
    EXPECT_FALSE(fs::exists(folder));   // looking makes neither file nor folder
    Add(root, "A", 1);
    Add(root, "B", 2);
    answer = "Folder";
    manager.CreateFolder(root);
    EXPECT_EQ(asked, "Enter name of the new folder|New folder ");
    Add(root.RequireSubItem("Directory"), "C", 3);
    EXPECT_EQ(List(), "A,B,C");
    EXPECT_EQ(Names(root), "A,B,C");   // the tree in hand keeps up
    EXPECT_NE(FileContent().find("compressed=\"1\""), std::string::npos);
    EXPECT_EQ(FileContent().find("text of"), std::string::npos);

    knob.number = 20;
    agrees = false;
    manager.ReplacePreset(*root.FindSubItem("preset", "name", "B"));
    EXPECT_EQ(asked, "Are you sure you want to replace selected preset?");
    manager.LoadPreset(*root.FindSubItem("preset", "name", "B"));
    EXPECT_EQ(knob.number, 2);
    agrees = true;
    knob.number = 20;
    manager.ReplacePreset(*root.FindSubItem("preset", "name", "B"));
    knob.number = 0;
    manager.LoadPreset(*root.FindSubItem("preset", "name", "B"));
    EXPECT_EQ(knob.number, 20);
    EXPECT_EQ(manager.CurrentPresetIndex(), 1);

    manager.RenameItem(*root.FindSubItem("preset", "name", "A"), "A <&> \"z\"");
    answer = "Other";
    manager.RenameFolder(root.RequireSubItem("Directory"));
    EXPECT_EQ(asked, "Enter new name of the folder|Folder");
    EXPECT_EQ(List(), "A <&> \"z\",B,C");
    EXPECT_NE(root.FindSubItem("Directory", "Name", "Other"), nullptr);
    manager.DeleteItem(*root.FindSubItem("preset", "name", "B"));
    EXPECT_EQ(List(), "A <&> \"z\",C");
    manager.DeleteItem(root.RequireSubItem("Directory"));
    EXPECT_EQ(List(), "A <&> \"z\"");
}

TEST_F(Presets, AChangeKeepsWhatAnotherInstanceWroteMeanwhile)
{
    Knob otherKnob;
    MPresetManagerT<Knob> other(otherKnob);
    other.SetPrefix("Knob");
    MAttribute mine;
    MAttribute theirs;
    manager.LoadPresets(mine);
    other.LoadPresets(theirs);
    Add(mine, "mine", 1);
    other.AddPreset(theirs, "theirs");
    EXPECT_EQ(List(), "mine,theirs");
    EXPECT_EQ(Names(theirs), "mine,theirs");
    // What is gone meanwhile can't be changed anymore.
    other.DeleteItem(*theirs.FindSubItem("preset", "name", "mine"));
    try
    {
        manager.ReplacePreset(*mine.FindSubItem("preset", "name", "mine"));
        FAIL();
    }
    catch (const MException& error)
    {
        EXPECT_EQ(error.Message.ToUTF8(), "\"mine\" does not exist anymore.");
    }
    EXPECT_EQ(List(), "theirs");
}

TEST_F(Presets, SteppingGoesAroundBothEnds)
{
    manager.StepPreset(1);
    EXPECT_EQ(knob.loadCount, 0);   // nothing to step to
    MAttribute root;
    manager.LoadPresets(root);
    for (int number = 0; number < 3; ++number)
        Add(root, "P", number);   // names may repeat
    struct Row
    {
        int from;
        int direction;
        int to;
    };
    for (const Row& row :
         { Row{ 0, -1, 2 }, Row{ 2, 1, 0 }, Row{ 1, 1, 2 }, Row{ 0, -4, 2 }, Row{ 1, 300, 1 },
           Row{ 2000000000, 2000000000, 1 }, Row{ 0, -2147483647 - 1, 1 } })
    {
        manager.SetCurrentPresetIndex(row.from);
        manager.StepPreset(row.direction);
        EXPECT_EQ(manager.CurrentPresetIndex(), row.to) << row.from << " " << row.direction;
        EXPECT_EQ(knob.number, row.to);
        EXPECT_EQ(knob.text, "text of " + std::to_string(row.to));
    }
    // Of equal names the one that is meant.
    for (const int number : { 2, 0, 1 })
    {
        manager.LoadPreset(root.SubItemAt(number));
        EXPECT_EQ(knob.number, number);
        EXPECT_EQ(manager.CurrentPresetIndex(), number);
    }
    MAttribute state, preset;
    manager.StoreCurrentIndex({ .saving = 1, .item = &state });
    manager.StoreCurrentIndex({ .saving = 1, .item = &preset, .scope = MStoreScope::Preset });
    EXPECT_EQ(preset.AttributeCount(), 0);
    manager.SetCurrentPresetIndex(-5);
    EXPECT_EQ(manager.CurrentPresetIndex(), 0);
    manager.StoreCurrentIndex({ .item = &state });
    EXPECT_EQ(manager.CurrentPresetIndex(), 1);
}

TEST_F(Presets, TheFactorysAreTheListUntilThereIsAFile)
{
    const std::string presets =
        Quoted("<presets><preset name='one' Overlay='1' number='4'/>"
               "<Directory Name='F'><preset name='two' number='6'/></Directory></presets>");
    const std::string description = Quoted("<solution><resources><resource id='qpresets' offset='0' size='" +
                                           std::to_string(presets.size()) + "'/></resources></solution>");
    static std::string block;   // the table refers to it
    for (const std::size_t word : { std::size_t{ 0 }, description.size(), presets.size() })
        for (unsigned shift = 0; shift < 32; shift += 8)
            block += static_cast<char>(word >> shift & 0xFF);
    block += description + presets;
    EXPECT_EQ(manager.FactoryPresetCount(), 0);
    StartModule().resources.Read(block.data(), static_cast<std::int32_t>(block.size()));
    manager.ReadFactoryPresets();
    ASSERT_EQ(manager.FactoryPresetCount(), 2);
    std::string names;
    for (int index = -1; index <= 2; ++index)
        names += manager.FactoryPresetName(index).ToUTF8() + ",";
    EXPECT_EQ(names, ",one,two,,");
    Listener listener;
    manager.onSelected.AddHandler<&Listener::OnSelected>(listener);
    EXPECT_FALSE(manager.LoadFactoryPreset(-1) || manager.LoadFactoryPreset(2));
    EXPECT_EQ(knob.loadCount, 0);
    EXPECT_TRUE(manager.LoadFactoryPreset(0));
    EXPECT_EQ(knob.number, 4);
    GlobalEventProcessor().Process();
    listener.heard.clear();
    EXPECT_TRUE(manager.LoadFactoryPreset(1));
    EXPECT_EQ(knob.number, 6);
    EXPECT_EQ(knob.mode, MLoadMode::Overlay);
    GlobalEventProcessor().Process();
    EXPECT_EQ(listener.heard, "two1 ");
    manager.StepPreset(1);
    EXPECT_EQ(knob.number, 4);
    EXPECT_EQ(List(), "one,two");
    MAttribute root;
    manager.LoadPresets(root);
    manager.DeleteItem(*root.FindSubItem("preset", "name", "one"));
    EXPECT_EQ(List(), "two") << "the file is the user's";
    EXPECT_EQ(manager.FactoryPresetCount(), 2);
}

TEST_F(Presets, TellWhoListens)
{
    Listener listener, other;
    Knob otherKnob;
    MPresetManagerT<Knob> sameFile(otherKnob);
    sameFile.SetPrefix("Knob");
    MPresetManagerT<Knob> otherFile(otherKnob);
    otherFile.SetPrefix("Other");
    manager.onSelected.AddHandler<&Listener::OnSelected>(listener);
    for (auto* changing : { &manager, &otherFile })
        changing->onChanged.AddHandler<&Listener::OnChanged>(listener);
    sameFile.onChanged.AddHandler<&Listener::OnChanged>(other);
    MAttribute root;
    manager.LoadPresets(root);
    Add(root, "A", 1);
    Add(root, "B", 2);
    manager.StepPreset(1);
    manager.LoadPreset(*root.FindSubItem("preset", "name", "A"));
    manager.SaveToFile(Path("f.xml"));
    manager.LoadFromFile(Path("f.xml"));
    EXPECT_EQ(manager.CurrentPresetIndex(), 0);
    GlobalEventProcessor().Process();
    EXPECT_EQ(listener.heard, "changed changed B1 A0 " + Path("f.xml").ToUTF8() + "-1 ");
    EXPECT_EQ(other.heard, "changed changed ");
}

// What a window shows may be older than the file.
TEST_F(Presets, AreLoadedAndExportedAsTheyStandInTheFile)
{
    MAttribute shown;
    manager.LoadPresets(shown);
    Add(shown, "A", 1);
    PutFile(
        "<presets><preset name='0' number='5'/><preset name='A' number='8' ExchangeIndex='4'/></presets>");
    manager.LoadPreset(*shown.FindSubItem("preset", "name", "A"));
    EXPECT_EQ(knob.number, 8);
    EXPECT_EQ(knob.mode, MLoadMode::Plain);
    EXPECT_EQ(manager.CurrentPresetIndex(), 1);
    manager.ExportFolder(shown, Path("e.qpresets"));
    MAttribute exported;
    LoadPresetTree(exported, Path("e.qpresets"));
    EXPECT_EQ(Names(exported), "0,A");
    // Replaced, it stays the same one for whoever it was exchanged with.
    knob.number = 9;
    manager.ReplacePreset(*shown.FindSubItem("preset", "name", "A"));
    EXPECT_EQ(shown.FindSubItem("preset", "name", "A")->GetAttribute("ExchangeIndex").ToUTF8(), "4");
    PutFile("<presets><preset name='part' Overlay='1' number='3'/></presets>");
    manager.StepPreset(0);
    EXPECT_EQ(knob.mode, MLoadMode::Overlay);
    PutFile("<presets/>");
    EXPECT_THROW(manager.LoadPreset(*shown.FindSubItem("preset", "name", "A")), MException);
    EXPECT_THROW(manager.ExportFolder(*shown.FindSubItem("preset", "name", "A"), Path("e.qpresets")),
                 MException);
}

TEST_F(Presets, FoldersTravelInFilesOfTheirOwn)
{
    manager.dialogs = this;
    MAttribute root;
    manager.LoadPresets(root);
    Add(root, "top", 1);
    answer = "F";
    manager.CreateFolder(root);
    Add(root.RequireSubItem("Directory"), "inside", 2);
    answer = (folder / "out.qpresets").string();
    manager.ExportFolder(root.RequireSubItem("Directory"));
    EXPECT_EQ(asked, "Export preset directory|Preset directories|qpresets|ExportPresets");
    MAttribute exported;
    LoadPresetTree(exported, Path("out.qpresets"));
    EXPECT_EQ(Names(exported), "inside");
    EXPECT_EQ(exported.Name().ToUTF8(), "presets");
    EXPECT_EQ(exported.AttributeCount(), 0);
    std::ifstream file(folder / "out.qpresets", std::ios::binary);
    EXPECT_EQ(file.get(), 0x78);   // a zlib stream (RFC 1950)

    root.SetAttribute("LastOnlineExchange", "5");
    manager.SavePresets(root);
    manager.ImportFolder(root);
    EXPECT_EQ(List(), "inside");
    EXPECT_EQ(root.GetAttribute("LastOnlineExchange").ToUTF8(), "5");
    std::ofstream(folder / "more.qpresets") << Quoted("<presets><preset name='INSIDE'/></presets>");
    const auto fileNumber = [&]
    {
        struct stat information = {};
        stat(FilePath().c_str(), &information);
        return information.st_ino;   // a written file would be a new one
    };
    const auto numberBefore = fileNumber();
    EXPECT_EQ(manager.MergeFile(Path("more.qpresets"), 9), 0);
    EXPECT_EQ(fileNumber(), numberBefore);
    std::ofstream(folder / "more.qpresets") << Quoted("<presets><preset name='new'/></presets>");
    EXPECT_EQ(manager.MergeFile(Path("more.qpresets"), 9), 1);
    EXPECT_EQ(List(), "inside,new");

    // A refused or broken import leaves everything in place.
    const std::string before = FileContent();
    agrees = false;
    manager.ImportFolder(root);
    EXPECT_EQ(asked, "Import preset directory|Preset directories|qpresets|ExportPresets");
    manager.ImportFolder(root, Path("out.qpresets"));
    EXPECT_EQ(asked.substr(0, 41), "This function will replace remove all pre");
    agrees = true;
    for (const std::string broken : { "", "no XML", "<html/>", "<presets><preset name='x'>", "\x78\x9c\x01" })
    {
        std::ofstream(folder / "broken.qpresets", std::ios::binary) << Quoted(broken);
        EXPECT_THROW(manager.ImportFolder(root, Path("broken.qpresets")), MException) << broken;
        EXPECT_THROW(manager.MergeFile(Path("broken.qpresets"), 1), MException) << broken;
        EXPECT_EQ(FileContent(), before);
    }
}

TEST_F(Presets, AFileOfTheEarlierPlaceIsTakenOverOnce)
{
    const fs::path earlier = folder.parent_path() / "Knobpresets.xml";
    std::ofstream(earlier) << Quoted(
        "<presets><preset name='old' number='5'><child>t</child></preset></presets>");
    EXPECT_EQ(List(), "old");
    EXPECT_FALSE(fs::exists(earlier));
    manager.StepPreset(0);
    EXPECT_EQ(knob.number, 5);
    // One that is broken stays for its owner to look at, and is in nobody's way.
    std::ofstream(earlier) << "<presets>";
    EXPECT_EQ(List(), "old");
    EXPECT_TRUE(fs::exists(earlier));
    // With a broken file of our own nothing is merged and nothing deleted.
    std::ofstream(earlier) << Quoted("<presets><preset name='older'/></presets>");
    PutFile("<presets><preset");
    EXPECT_THROW(List(), MException);
    EXPECT_TRUE(fs::exists(earlier));
    EXPECT_EQ(FileContent(), "<presets><preset");
}

TEST_F(Presets, DamagedFilesAreRefusedAndStayAsTheyAre)
{
    MAttribute good;
    manager.LoadPresets(good);
    Add(good, "A", 1);
    const std::string whole = FileContent();
    std::string deep = "<presets>";
    for (int level = 0; level < 5000; ++level)
        deep += "<Directory Name='x'>";
    std::vector<std::string> documents = {
        "", "<presets", "<settings/>", deep, "<presets></Directory>", std::string(1 << 20, '<')
    };
    for (std::size_t size = 1; size < whole.size() - 12; size += 7)   // 12: into the root's end tag
        documents.push_back(whole.substr(0, size));
    for (const std::string& document : documents)
    {
        SCOPED_TRACE(document.substr(0, 60));
        PutFile(document);
        MAttribute root;
        EXPECT_THROW(manager.LoadPresets(root), MException);
        EXPECT_THROW(manager.AddPreset(good, "B"), MException);
        EXPECT_EQ(FileContent(), Quoted(document));
    }
}

TEST_F(Presets, ADamagedPresetLeavesTheObjectAsItWas)
{
    knob.number = 77;
    for (const std::string text : { "", "123", "XY", "78DA00", "3C613E" })
    {
        PutFile("<presets><preset name='A' compressed='1'>" + text + "</preset></presets>");
        EXPECT_THROW(manager.StepPreset(0), MException) << text;
        EXPECT_EQ(knob.number, 77);
        EXPECT_EQ(knob.loadCount, 0);
    }
    knob.text = "before";
    PutFile("<presets><preset name='A' number='13'><child>half</child></preset></presets>");
    EXPECT_THROW(manager.StepPreset(0), MException);
    EXPECT_EQ(knob.number, 77);
    EXPECT_EQ(knob.text, "before");
}

TEST_F(Presets, NothingIsSavedThatCouldNotBeReadAgain)
{
    MAttribute root("presets");
    Add(root, "A", 1);
    const std::string before = FileContent();
    MAttribute deep("presets");
    MAttribute* item = &deep;
    for (int level = 0; level < 300; ++level)
        item = &item->AddSubItem("Directory");
    EXPECT_THROW(manager.SavePresets(deep), MException);
    EXPECT_EQ(FileContent(), before);
    MAttribute edge("presets");
    item = &edge;
    for (int level = 0; level < 254; ++level)
        item = &item->AddSubItem("Directory");
    manager.SavePresets(edge);
    EXPECT_EQ(List(), "");
}

TEST_F(Presets, StatesTravelInFilesAndFailWithTheirNames)
{
    knob.number = 5;
    knob.text = "five";
    manager.SaveToFile(Path("state.xml"));
    knob = {};
    manager.LoadFromFile(Path("state.xml"));
    EXPECT_EQ(knob.number, 5);
    EXPECT_EQ(knob.text, "five");
    std::ofstream(folder / "page.xml") << "<html/>";
    EXPECT_THROW(manager.LoadFromFile(Path("page.xml")), MException);
    EXPECT_EQ(knob.number, 5);
    manager.dialogs = this;
    answer = (folder / "other.xml").string();
    manager.SaveToFile();
    EXPECT_EQ(asked, "Save||xml|");
    knob.number = 6;
    agrees = false;
    manager.LoadFromFile();
    EXPECT_EQ(knob.number, 6);
    agrees = true;
    manager.LoadFromFile();
    EXPECT_EQ(asked, "Load||xml|");
    EXPECT_EQ(knob.number, 5);
    manager.LoadFromFile(Path("none.xml"));
    EXPECT_EQ(asked, "Error loading file \"" + Path("none.xml").ToUTF8() + "\".");
    manager.SaveToFile(Path("none/none.xml"));
    EXPECT_EQ(asked, "Error saving file \"" + Path("none/none.xml").ToUTF8() + "\".");
}

TEST_F(Presets, DefaultSettingsSurviveAndBrokenOnesDoNotMatter)
{
    StartModule();
    const StoreOperation store = [&](MStoreParams params)
    {
        EXPECT_EQ(params.scope, MStoreScope::State);
        params.scope = MStoreScope::Preset;
        knob.Store(params);
    };
    EXPECT_FALSE(LoadDefaultSettings(store));
    EXPECT_FALSE(fs::exists(folder / "test_state_presets"));   // looking makes no folder
    knob.number = 9;
    knob.text = "nine";
    SaveDefaultSettings(store);
    knob = {};
    EXPECT_TRUE(LoadDefaultSettings(store));
    EXPECT_EQ(knob.number, 9);
    EXPECT_EQ(knob.text, "nine");
    std::ofstream(folder / "test_state_presets/GlobalConfiguration.xml")
        << Quoted("<Configuration><DefaultSettings compressed='1'>78DA</DefaultSettings></Configuration>");
    knob = {};
    EXPECT_FALSE(LoadDefaultSettings(store));
    EXPECT_EQ(knob.loadCount, 0);
    EXPECT_FALSE(LoadDefaultSettings([](const MStoreParams&) { throw 1; }));
}
}   // namespace
