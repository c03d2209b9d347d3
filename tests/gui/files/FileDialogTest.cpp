// SPDX-License-Identifier: GPL-3.0-or-later
// The dialog of files as a user works it, over folders that the tests make.
#include <random>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gui/files/FilePaths.h"
#include "gui/files/MFileDialog.h"
#include "state/tree/MAttribute.h"
#include "tests/gui/files/FilesFixture.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

namespace
{
using Mode = FileDialogOptions::Mode;

class FileDialogs : public FilesOnScreen
{
protected:
    FileDialogs()
    {
        for (const char* name : { "take 1.wav", "take 2.wav", "mix.flac", "notes.txt", "sub/inner.wav",
                                  "sub/deep/last.wav", ".secret.wav" })
            Put(name);
        options.folder = Path();
        options.types = { { "Audio files", "*.wav;*.flac" }, { "All files", "*" } };
    }

    MFileDialog& Ask(Mode mode)
    {
        options.mode = mode;
        accepted.clear();
        closed = false;
        MFileDialog::Open(*window, options,
                          [this](const std::vector<MString>& paths)
                          {
                              for (const MString& each : paths)
                                  accepted.push_back(PathBytes(each));
                              closed = true;
                          });
        return static_cast<MFileDialog&>(Top());
    }
    std::string Bytes(const std::string& name) const { return (folder / name).string(); }
    MFileListBox& List() { return TheOne<MFileListBox>(Top()); }
    MEdit& Name()
    {
        return *FindControl<MFileNameEdit>(Top(),
                                           [](const MFileNameEdit& each) {
                                               return dynamic_cast<const MPathBar*>(each.Parent()) == nullptr;
                                           });
    }
    void TypeName(const std::string& text)
    {
        Name().SetFocus();
        Name().SelectAll();
        screen->Type(Top(), PathText(text));
        TopKey(MKey::Delete);   // what was put behind it
    }
    std::string Complaint()
    {
        const MStatic* shown =
            FindControl<MStatic>(Top(), [](const MStatic& each)
                                 { return each.color == MStdColor::Danger && !each.caption.IsEmpty(); });
        return shown != nullptr ? shown->caption.ToUTF8() : "";
    }
    std::vector<std::string> Listed()
    {
        std::vector<std::string> names;
        for (const MListItem& each : List().Items())
            names.push_back(PathBytes(each.text));
        return names;
    }

    FileDialogOptions options;
    std::vector<std::string> accepted;
    bool closed = false;
};
}   // namespace

TEST_F(FileDialogs, OpenFilesByListNameAndPath)
{
    MFileDialog& dialog = Ask(Mode::Open);
    EXPECT_THAT(Listed(), ElementsAre("sub", "mix.flac", "take 1.wav", "take 2.wav"));
    EXPECT_EQ(dialog.BlockedBy(), nullptr);
    // Down into a folder and up again, all by keys.
    TopKey(MKey::Down);
    TopKey(MKey::Enter);
    EXPECT_EQ(dialog.Folder(), Path("sub"));
    TopKey(MKey::Down);
    TopKey(MKey::Down);
    EXPECT_EQ(Name().Text(), "inner.wav");
    TopKey(MKey::Up, ModifierAlt);
    EXPECT_EQ(dialog.Folder(), Path());
    EXPECT_EQ(Name().Text(), MString()) << "it isn't here";
    TopKey(MKey::End);
    EXPECT_EQ(Name().Text(), "take 2.wav");
    TopKey(MKey::Enter);
    EXPECT_THAT(accepted, ElementsAre(Bytes("take 2.wav")));
    EXPECT_EQ(OpenCount(), 1u);

    const std::pair<std::string, std::string> typed[] = {
        { "take 1.wav", "take 1.wav" },
        { "sub/inner.wav", "sub/inner.wav" },
        { "notes.txt", "notes.txt" },   // though it isn't listed
        { Bytes("sub/deep/../inner.wav"), "sub/inner.wav" },
        { "./.secret.wav", ".secret.wav" },
    };
    for (const auto& [text, name] : typed)
    {
        Ask(Mode::Open);
        TypeName(text);
        TopKey(MKey::Enter);
        EXPECT_THAT(accepted, ElementsAre(Bytes(name))) << text;
    }
    Ask(Mode::Open);
    TypeName("none.wav");
    Press("Open");
    EXPECT_EQ(Complaint(), "There is no file \"none.wav\".");
    EXPECT_TRUE(Name().HasFocus());
    TypeName("sub");
    EXPECT_EQ(Complaint(), "");
    Press("Open");
    EXPECT_EQ(static_cast<MFileDialog&>(Top()).Folder(), Path("sub"));
    EXPECT_EQ(Name().Text(), MString());
    Press("Open");
    EXPECT_FALSE(closed) << "nothing is chosen";
    TopKey(MKey::Escape);
    EXPECT_FALSE(closed);
    EXPECT_EQ(OpenCount(), 1u);
}

TEST_F(FileDialogs, OpenManyTakesAllThatAreChosenOrNamed)
{
    Ask(Mode::OpenMany);
    TopKey('A', ModifierCtrl);
    Press("Open");
    EXPECT_EQ(Complaint(), "There is no file \"sub\".") << "a folder among them";
    TopKey(MKey::Escape);
    Ask(Mode::OpenMany);
    List().SetFocus();
    TopKey(MKey::End);
    TopKey(MKey::Up, ModifierShift);
    EXPECT_EQ(Name().Text(), "\"take 1.wav\" \"take 2.wav\"");
    Press("Open");
    EXPECT_THAT(accepted, UnorderedElementsAre(Bytes("take 1.wav"), Bytes("take 2.wav")));
    Ask(Mode::OpenMany);
    TypeName("\"mix.flac\"  \"sub/inner.wav\" \"\"");
    TopKey(MKey::Enter);
    EXPECT_THAT(accepted, ElementsAre(Bytes("mix.flac"), Bytes("sub/inner.wav")));
    Ask(Mode::OpenMany);
    TypeName("\"mix.flac\" \"nothing");
    TopKey(MKey::Enter);
    EXPECT_EQ(Complaint(), "There is no file \"nothing\".");
    EXPECT_FALSE(closed);
}

TEST_F(FileDialogs, NamesOfAnyBytesAreListedAndOpened)
{
    std::mt19937 random(23);
    for (int round = 0; round < 20; ++round)
    {
        std::string name = "z";
        for (int i = 0; i < 8; ++i)
            if (const char byte = static_cast<char>(random()); byte != 0 && byte != '/')
                name.push_back(byte);
        name += ".wav";
        Put(name);
        Ask(Mode::Open);
        ASSERT_TRUE(List().ChooseName(PathText(name)));
        TopKey(MKey::Up);
        TopKey(MKey::Down);
        screen->Look(Top());
        Press("Open");
        EXPECT_THAT(accepted, ElementsAre(Bytes(name)));
        Ask(Mode::Open);
        Name().SetFocus();
        screen->SetClipboardText(PathText(name));
        TopKey('V', ModifierCtrl);
        const bool hasControls = std::any_of(
            name.begin(), name.end(), [](char each) { return (each > 0 && each < ' ') || each == 0x7F; });
        TopKey(MKey::Enter);
        if (!hasControls && name.find_first_of("*?") == std::string::npos)
        {
            EXPECT_THAT(accepted, ElementsAre(Bytes(name)));
        }
        if (!closed)
            Top().Close();
        Settle();
        std::filesystem::remove(folder / name);
    }
}

TEST_F(FileDialogs, FiltersChooseWhatIsListed)
{
    Ask(Mode::Open);
    TheOne<MSwitcher>(Top()).SetFocus();
    TopKey(MKey::Down);
    EXPECT_THAT(Listed(), ElementsAre("sub", "mix.flac", "notes.txt", "take 1.wav", "take 2.wav"));
    TypeName("*2*");
    TopKey(MKey::Enter);
    EXPECT_THAT(Listed(), ElementsAre("sub", "take 2.wav"));
    TypeName("*.nothing");
    TopKey(MKey::Enter);
    EXPECT_THAT(Listed(), ElementsAre("sub"));
    TypeName("m?x*;n*");
    TopKey(MKey::Enter);
    EXPECT_THAT(Listed(), ElementsAre("sub", "mix.flac", "notes.txt"));
    TopKey('H', ModifierCtrl);
    TypeName("*");
    TopKey(MKey::Enter);
    EXPECT_THAT(Listed(),
                ElementsAre("sub", ".secret.wav", "mix.flac", "notes.txt", "take 1.wav", "take 2.wav"));
    EXPECT_EQ(TheOne<MCheckBox>(Top()).State(), MCheckBoxState::On);
    ClickOn(TheOne<MCheckBox>(Top()));
    EXPECT_EQ(Listed().size(), 5u);
    EXPECT_FALSE(closed);
}

TEST_F(FileDialogs, SavingAddsTheEndingAndAsksBeforeItReplaces)
{
    options.name = "take 3.wav";
    Ask(Mode::Save);
    EXPECT_TRUE(Name().HasFocus());
    screen->Type(Top(), "new");   // in place of the name, not of its ending
    EXPECT_EQ(Name().Text(), "new.wav");
    TopKey(MKey::Enter);
    EXPECT_THAT(accepted, ElementsAre(Bytes("new.wav")));

    const std::pair<std::string, std::string> names[] = {
        { "x", "x.wav" }, { "x.y", "x.y.wav" }, { "x.FLAC", "x.FLAC" }, { "sub/x", "sub/x.wav" }
    };
    for (const auto& [text, name] : names)
    {
        Ask(Mode::Save);
        TypeName(text);
        Press("Save");
        EXPECT_THAT(accepted, ElementsAre(Bytes(name)));
    }
    Ask(Mode::Save);
    TypeName("nowhere/x");
    Press("Save");
    EXPECT_EQ(Complaint(), "There is no folder \"" + Bytes("nowhere") + "\".");
    TypeName("take 1");
    for (const char* answer : { "No", "", "Yes" })
    {
        EXPECT_FALSE(closed);
        TopKey(MKey::Enter);
        ASSERT_EQ(OpenCount(), 3u);
        Press(answer);
    }
    EXPECT_THAT(accepted, ElementsAre(Bytes("take 1.wav")));
    EXPECT_EQ(OpenCount(), 1u);
    // The name stays while its folder is looked for.
    MFileDialog& dialog = Ask(Mode::Save);
    List().SetFocus();
    TopKey(MKey::Home);
    TopKey(MKey::Down);
    TopKey(MKey::Up);
    Press("Save");
    EXPECT_EQ(dialog.Folder(), Path("sub"));
    Press("Save");
    EXPECT_THAT(accepted, ElementsAre(Bytes("sub/mix.flac"))) << "as it was chosen on the way";
}

TEST_F(FileDialogs, ChoosingAFolderTakesTheChosenOneOrWhereOneIs)
{
    Ask(Mode::Folder);
    EXPECT_THAT(Listed(), ElementsAre("sub"));
    Press("Choose");
    EXPECT_THAT(accepted, ElementsAre(folder.string()));
    Ask(Mode::Folder);
    TopKey(MKey::Down);
    EXPECT_EQ(Name().Text(), "sub");
    Press("Choose");
    EXPECT_THAT(accepted, ElementsAre(Bytes("sub")));
    Ask(Mode::Folder);
    TypeName("sub/deep");
    Press("Choose");
    EXPECT_THAT(accepted, ElementsAre(Bytes("sub/deep")));
    Ask(Mode::Folder);
    TypeName("mix.flac");
    Press("Choose");
    EXPECT_EQ(Complaint(), "There is no folder \"mix.flac\".");
    // A new one, with what can go wrong.
    TopKey('N', ModifierCtrl | ModifierShift);
    for (const char* wrong : { "sub", "a/b", ".." })
    {
        TheOne<MEdit>(Top()).SelectAll();
        screen->Type(Top(), MString(wrong));
        TopKey(MKey::Enter);
        ASSERT_EQ(OpenCount(), 3u) << wrong;
        EXPECT_NE(Complaint(), "");
    }
    TheOne<MEdit>(Top()).SelectAll();
    screen->Type(Top(), "fresh");
    TopKey(MKey::Enter);
    ASSERT_EQ(OpenCount(), 2u);
    EXPECT_EQ(static_cast<MFileDialog&>(Top()).Folder(), Path("fresh"));
    std::filesystem::remove_all(folder / "fresh");
    TopKey(MKey::F1 + 4);
    EXPECT_EQ(List().emptyText, "This folder does not exist.");
    EXPECT_EQ(Listed().size(), 0u);
    TopKey(MKey::Up, ModifierAlt);
    EXPECT_EQ(static_cast<MFileDialog&>(Top()).Folder(), Path());
}

TEST_F(FileDialogs, PlacesAndPathsLeadToFolders)
{
    MFileDialog& dialog = Ask(Mode::Open);
    auto& bar = TheOne<MPathBar>(dialog);
    auto& tree = TheOne<MDirectoryTreeControl>(dialog);
    const auto together = [&](const MString& path)
    {
        EXPECT_EQ(dialog.Folder(), path);
        EXPECT_EQ(bar.Path(), path);
        EXPECT_TRUE(tree.Path().IsEmpty() || tree.Path() == path);
    };
    TopKey('L', ModifierCtrl);
    EXPECT_TRUE(bar.IsTyping());
    screen->Type(dialog, PathText(Bytes("sub/deep")));
    TopKey(MKey::Enter);
    together(Path("sub/deep"));
    EXPECT_FALSE(bar.IsTyping());
    TopKey('L', ModifierCtrl);
    screen->Type(dialog, "nowhere");
    TopKey(MKey::Enter);
    EXPECT_TRUE(bar.IsTyping()) << "to be mended";
    EXPECT_EQ(Complaint(), "There is no such folder.");
    TopKey(MKey::Escape);
    together(Path("sub/deep"));
    TopKey('L', ModifierCtrl);
    screen->Type(dialog, PathText(Bytes("mix.flac")));
    TopKey(MKey::Enter);
    together(Path());
    EXPECT_EQ(Name().Text(), "mix.flac");
    tree.SetFocus();
    TopKey(MKey::Home);
    together(MString(std::getenv("HOME")));
    EXPECT_EQ(tree.Path(), dialog.Folder());
    List().SetFocus();
    TopKey(MKey::Backspace);
    together(FilePaths::Parent(MString(std::getenv("HOME"))));
}

TEST_F(FileDialogs, RememberForEachPurpose)
{
    MAttribute memory;
    options.memory = &memory;
    options.purpose = "analysis";
    MFileDialog* dialog = &Ask(Mode::Open);
    const MSize first{ dialog->Width(), dialog->Height() };
    TypeName("sub");
    TopKey(MKey::Enter);
    TopKey('H', ModifierCtrl);
    List().SetFocus();
    TopKey('3', ModifierCtrl);
    TheOne<MSwitcher>(*dialog).SetFocus();
    TopKey(MKey::Down);
    screen->Resize(*dialog, first.width + 100, first.height + 50);
    TopKey(MKey::Escape);
    options.purpose = "presets";
    dialog = &Ask(Mode::Open);
    EXPECT_EQ(dialog->Folder(), Path());
    EXPECT_EQ(dialog->Width(), first.width);
    TopKey(MKey::Escape);
    options.purpose = "analysis";
    dialog = &Ask(Mode::Save);
    EXPECT_EQ(dialog->Folder(), Path("sub"));
    EXPECT_EQ(dialog->Width(), first.width + 100);
    EXPECT_EQ(dialog->Height(), first.height + 50);
    EXPECT_TRUE(List().ShowsHidden());
    EXPECT_EQ(List().SortColumn(), MFileListBox::Column::Date);
    EXPECT_EQ(List().Patterns(), "*");
    TopKey(MKey::Escape);
    // A folder that is gone isn't gone to.
    std::filesystem::remove_all(folder / "sub");
    EXPECT_EQ(Ask(Mode::Open).Folder(), Path());
    TopKey(MKey::Escape);
}

TEST_F(FileDialogs, StayWholeWhateverIsPressed)
{
    std::mt19937 random(31);
    const std::int32_t keys[] = { MKey::Tab,  MKey::Enter, MKey::Up,    MKey::Down,
                                  MKey::Left, MKey::Right, MKey::Home,  MKey::Backspace,
                                  MKey::End,  MKey::F2,    MKey::Space, MKey::PageDown,
                                  'H',        'L',         'A',         '1',
                                  '2',        MKey::F1 + 4 };
    const std::uint8_t held[] = { 0, 0, 0, ModifierCtrl, ModifierShift, ModifierAlt };
    for (int round = 0; round < 3000; ++round)
    {
        if (OpenCount() == 1)
        {
            MFileDialog& dialog = Ask(static_cast<Mode>(random() % 4));
            // Nothing may be made in folders that aren't the test's.
            FindControl<MButton>(dialog, [](const MButton& each) { return each.help.Find("Makes") == 0; })
                ->SetEnabled(false);
            TheOne<MDirectoryTreeControl>(dialog).SetPlaces({ { "All", Path() }, { "Sub", Path("sub") } });
        }
        MWindow& top = Top();
        const auto x = static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(top.Width()));
        const auto y = static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(top.Height()));
        switch (random() % 6)
        {
        case 0:
            screen->Click(top, x, y);
            break;
        case 1:
            screen->DoubleClick(top, x, y);
            break;
        case 2:
            screen->Wheel(top, x, y, random() % 2 == 0 ? 120 : -120);
            break;
        case 3:
            screen->Type(top, u"a/t*~\""[random() % 6] == u'a' ? MString("a") : MString("/t"));
            break;
        default:
            TopKey(keys[random() % std::size(keys)], held[random() % std::size(held)]);
        }
        screen->PassTime(300);
        screen->Look(*window);
        if (auto* dialog = dynamic_cast<MFileDialog*>(windows->OpenWindows().back()))
        {
            ASSERT_EQ(TheOne<MPathBar>(*dialog).Path(), dialog->Folder()) << round;
            ASSERT_LE(List().Current(), List().Count() - 1);
            // What the machine has elsewhere isn't this test's.
            if (!FilePaths::IsWithin(dialog->Folder(), Path()))
                dialog->Close();
        }
        Settle();
    }
}
