// SPDX-License-Identifier: GPL-3.0-or-later
// Lists, trees and fields of files, over folders that the tests make.
#include <algorithm>
#include <array>
#include <random>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gui/files/FilePaths.h"
#include "gui/files/MDirectoryTreeControl.h"
#include "gui/files/MFileListBox.h"
#include "gui/files/MFileSelector.h"
#include "gui/files/MPathBar.h"
#include "gui/files/RegisterFileControls.h"
#include "gui/loader/MXmlLoader.h"
#include "tests/gui/files/FilesFixture.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace
{
/// Of bytes as file systems have them, well-formed or not.
std::string RandomName(std::mt19937& random)
{
    std::string name;
    const std::size_t length = 1 + random() % 12;
    while (name.size() < length)
        if (const char byte = static_cast<char>(random() % 4 == 0 ? random() : 'a' + random() % 26);
            byte != 0 && byte != '/')
            name.push_back(byte);
    return name == "." || name == ".." ? "dots" : name;
}

class FileControls : public FilesOnScreen
{
public:
    void OnPath(const MOnStringParams& params) { log.push_back(params.text.ToUTF8()); }
    void OnFolder(const MOnNotifyParams&) { log.push_back("folder"); }
    void OnFile(const MOnNotifyParams&) { log.push_back("file"); }

protected:
    static std::vector<std::string> Names(const MFileListBox& list)
    {
        std::vector<std::string> names;
        for (std::int32_t i = 0; i < list.Count(); ++i)
            names.push_back(PathBytes(list.EntryAt(i)->name));
        return names;
    }
    static std::set<std::string> ChosenNames(const MFileListBox& list)
    {
        std::set<std::string> names;
        for (const FolderEntry* each : list.Chosen())
            names.insert(PathBytes(each->name));
        return names;
    }
};
}   // namespace

TEST_F(FileControls, PathsKeepEveryByteThroughAllThatIsDoneWithThem)
{
    std::mt19937 random(3);
    for (int round = 0; round < 2000; ++round)
    {
        const std::string bytes = RandomName(random);
        const MString name = PathText(bytes);
        for (const char* above : { "/", "/home", "/a b/%41" })
        {
            const MString path = FilePaths::Join(MString(above), name);
            EXPECT_EQ(PathBytes(FilePaths::NameOf(path)), bytes);
            EXPECT_EQ(FilePaths::Parent(path), MString(above));
            EXPECT_EQ(FilePaths::Resolved(name, MString(above)),
                      bytes.find_first_not_of('~') == std::string::npos
                          ? FilePaths::Resolved(name, MString(above))
                          : path);
            EXPECT_TRUE(FilePaths::IsWithin(path, MString(above)));
            EXPECT_FALSE(FilePaths::IsWithin(MString(above), path));
            const MString escaped = FilePaths::Escaped(path);
            EXPECT_EQ(PathBytes(FilePaths::Unescaped(escaped)), PathBytes(path));
            EXPECT_EQ(MString::FromUTF8(escaped.ToUTF8()), escaped) << "fit for a text";
        }
    }
    const std::array<const char*, 3> typed[] = {
        { "..", "/a/b", "/a" },      { "../../../..", "/a/b", "/" }, { "c//d/", "/a", "/a/c/d" },
        { "/x/./y/..", "/a", "/x" }, { "", "/a/b", "/a/b" },         { "/", "/a", "/" },
        { "~x", "/a", "/a/~x" },
    };
    for (const auto& [text, from, resolved] : typed)
        EXPECT_EQ(FilePaths::Resolved(MString(text), MString(from)), MString(resolved)) << text;
    EXPECT_EQ(PathBytes(FilePaths::Resolved("~/x", "/a")), std::string(std::getenv("HOME")) + "/x");
    EXPECT_FALSE(FilePaths::IsWithin("/home/anna2", "/home/anna"));
    EXPECT_EQ(FilePaths::ExistingFolder(Path("not/there/yet")), Path());
}

TEST_F(FileControls, NamesAreOrderedByLettersAndNumbers)
{
    const char* const inOrder[] = { "10", "a", "B", "take", "Take 2", "take 002b", "TAKE 10", "take 10 b" };
    for (std::size_t i = 0; i < std::size(inOrder); ++i)
        for (std::size_t j = 0; j < std::size(inOrder); ++j)
        {
            const int order = CompareFileNames(MString(inOrder[i]), MString(inOrder[j]));
            EXPECT_EQ((order > 0) - (order < 0), (i > j) - (i < j)) << inOrder[i] << " " << inOrder[j];
        }
    std::mt19937 random(9);
    const auto name = [&random]
    {
        MString text;
        for (auto i = random() % 6; i > 0; --i)
            text.Append(u"0019aB"[random() % 6]);
        return text;
    };
    const auto sign = [](const MString& a, const MString& b)
    {
        const int order = CompareFileNames(a, b);
        return (order > 0) - (order < 0);
    };
    for (int round = 0; round < 20000; ++round)
    {
        const MString a = name();
        const MString b = name();
        const MString c = name();
        ASSERT_EQ(sign(a, b), -sign(b, a));
        if (sign(a, b) <= 0 && sign(b, c) <= 0)
        {
            ASSERT_LE(sign(a, c), 0) << a.ToUTF8() << " " << b.ToUTF8() << " " << c.ToUTF8();
        }
    }
    const std::pair<std::int64_t, const char*> sizes[] = {
        { 0, "0 B" },
        { 999, "999 B" },
        { 1000, "1.0 kB" },
        { 9949, "9.9 kB" },
        { 9951, "10 kB" },
        { 999499, "999 kB" },
        { 999500, "1.0 MB" },
        { 48230000, "48 MB" },
        { 1250000000, "1.2 GB" },
        { INT64_MAX, "9.2 EB" },
    };
    for (const auto& [bytes, text] : sizes)
        EXPECT_EQ(FileSizeText(bytes).ToUTF8(), text);
    EXPECT_TRUE(FileTimeText(0).IsEmpty());
    EXPECT_GT(FileTimeText(1).Length(), 10);
    EXPECT_GE(FileTimeText(INT64_MAX).Length(), 0);
}

TEST_F(FileControls, ListsAreSortedByEveryColumnAndKeepWhatIsChosen)
{
    std::mt19937 random(17);
    std::set<std::string> shownNames;
    for (int i = 0; i < 60; ++i)
    {
        const std::string name = RandomName(random) + (random() % 2 == 0 ? ".wav" : ".FLAC");
        if (random() % 6 == 0)
            PutFolder(name);
        else
            Put(name, random() % 5 * 1000, static_cast<int>(random() % 5));
        if (name[0] != '.')
            shownNames.insert(name);
    }
    Put(".hidden.wav");
    auto& list = Add<MFileListBox>(MRectangle::OfSize(0, 0, 400, 200));
    list.multiple = true;
    list.SetFolder(Path());
    list.SetFocus();
    for (const std::int32_t row : { 3, 17, 40 })
    {
        list.ShowItem(row);
        screen->SetHeldKeys(ModifierCtrl);
        for (std::int32_t y = 26; y < 199 && list.Current() != row; y += RowHeight)
            screen->Click(*window, 50, y);
        screen->SetHeldKeys(0);
    }
    const std::set<std::string> chosen = ChosenNames(list);
    ASSERT_GE(chosen.size(), 3u);
    const std::string current = PathBytes(list.EntryAt(list.Current())->name);
    const auto check = [&]
    {
        const std::vector<std::string> names = Names(list);
        EXPECT_EQ(std::set<std::string>(names.begin(), names.end()), shownNames);
        EXPECT_EQ(ChosenNames(list), chosen);
        EXPECT_EQ(PathBytes(list.EntryAt(list.Current())->name), current);
        for (std::int32_t i = 1; i < list.Count(); ++i)
        {
            const FolderEntry& a = *list.EntryAt(i - 1);
            const FolderEntry& b = *list.EntryAt(i);
            EXPECT_GE(a.isFolder, b.isFolder) << "folders stand first";
            const std::int64_t order = list.SortColumn() == MFileListBox::Column::Size ? a.size - b.size
                                       : list.SortColumn() == MFileListBox::Column::Date
                                           ? a.writeTime - b.writeTime
                                           : CompareFileNames(a.name, b.name);
            if (a.isFolder == b.isFolder)
            {
                EXPECT_GE(list.IsDescending() ? order : -order, 0) << i;
            }
        }
    };
    check();
    // By the keyboard and by the heads of the columns.
    const std::int32_t heads[] = { 40, 250, 350 };
    for (std::int32_t i = 0; i < MFileListBox::ColumnCount; ++i)
        for (const bool byKey : { true, false, true })
        {
            const auto before = std::pair(list.SortColumn(), list.IsDescending());
            if (byKey)
                Key('1' + i, ModifierCtrl);
            else
                screen->Click(*window, heads[i], 12);
            EXPECT_EQ(list.SortColumn(), static_cast<MFileListBox::Column>(i));
            EXPECT_TRUE(before.first != list.SortColumn() || before.second != list.IsDescending());
            check();
        }
    // What the list no longer has isn't chosen any more; what appears is there after reading anew.
    list.SetShowsHidden(true);
    EXPECT_EQ(list.Count(), std::distance(std::filesystem::directory_iterator(folder), {}));
    list.SetPatterns("*.mp3;*.wav");
    for (const FolderEntry* each : list.Chosen())
        EXPECT_TRUE(each->isFolder || each->name.Find(".wav") > 0);
    list.SetPatterns({});
    Put("zz new.wav");
    EXPECT_FALSE(list.ChooseName("zz new.wav"));
    list.Refresh();
    EXPECT_TRUE(list.ChooseName("zz new.wav"));
    std::filesystem::remove(folder / "zz new.wav");
    list.Refresh();
    EXPECT_THAT(ChosenNames(list), IsEmpty());
    EXPECT_EQ(list.Current(), -1);
}

namespace
{
struct CountingList : MFileListBox
{
    void PaintItem(MDrawer& drawer, const MRectangle& area, std::int32_t index, std::uint16_t state) override
    {
        ++painted;
        MFileListBox::PaintItem(drawer, area, index, state);
    }
    int painted = 0;
};
}   // namespace

TEST_F(FileControls, ALargeFolderIsReadOnceAndOnlyWhatIsSeenIsPainted)
{
    Put("take 0.wav");
    for (int i = 1; i < 10000; ++i)
        std::filesystem::create_hard_link(folder / "take 0.wav",
                                          folder / ("take " + std::to_string(i) + ".wav"));
    auto& list = Add<CountingList>(MRectangle::OfSize(0, 0, 300, 262));
    list.SetFolder(Path());
    std::filesystem::remove_all(folder);   // from now on only what was read can be shown
    list.SetFocus();
    const auto look = [&]
    {
        list.painted = 0;
        list.Invalidate();
        screen->Look(*window);
        return list.painted;
    };
    EXPECT_GT(look(), 5);
    for (const std::int32_t key : { MKey::End, MKey::PageUp, MKey::Home, MKey::PageDown })
    {
        Key(key);
        EXPECT_LE(look(), 262 / RowHeight + 2);
    }
    Key(MKey::End);
    EXPECT_EQ(PathBytes(list.EntryAt(list.Current())->name), "take 9999.wav");
    Key('2', ModifierCtrl);
    list.SetPatterns("take 77?.wav");
    EXPECT_EQ(list.Count(), 10);
    list.Refresh();
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.emptyText, "This folder does not exist.");
    EXPECT_EQ(look(), 0);
}

TEST_F(FileControls, FoldersAreEnteredAndLeftByMouseAndKeys)
{
    Put("b/c/deep.wav");
    Put("b/d.wav");
    auto& list = Add<MFileListBox>(MRectangle::OfSize(0, 0, 300, 200));
    list.OnFolder().AddHandler<&FileControls::OnFolder>(*this);
    list.OnFile().AddHandler<&FileControls::OnFile>(*this);
    list.SetFolder(Path());
    screen->DoubleClick(*window, 50, 36);
    EXPECT_EQ(list.Folder(), Path("b"));
    EXPECT_THAT(Taken(), ElementsAre("folder"));
    EXPECT_EQ(list.Current(), -1);
    Key(MKey::Down);
    Key(MKey::Enter);
    EXPECT_EQ(list.Folder(), Path("b/c"));
    Key(MKey::Down);
    Key(MKey::Enter);
    EXPECT_THAT(Taken(), ElementsAre("folder", "file"));
    Key(MKey::Backspace);
    EXPECT_EQ(list.Folder(), Path("b"));
    EXPECT_THAT(ChosenNames(list), ElementsAre("c")) << "where one comes from";
    Key(MKey::Backspace);
    EXPECT_THAT(ChosenNames(list), ElementsAre("b"));
    Taken();
    list.SetFolder("/");
    Key(MKey::Backspace);
    EXPECT_THAT(Taken(), IsEmpty());
    list.SetFoldersOnly(true);
    list.SetFolder(Path("b"));
    EXPECT_THAT(Names(list), ElementsAre("c"));
}

TEST_F(FileControls, TreesReadFoldersWhenTheyOpenAndTellPaths)
{
    Put("music/takes 2/x.wav");
    Put("music/takes 10/y.wav");
    PutFolder("music/.old");
    PutFolder("gone/inner");
    auto& tree = Add<MDirectoryTreeControl>(MRectangle::OfSize(0, 0, 200, 280));
    tree.OnPath().AddHandler<&FileControls::OnPath>(*this);
    tree.SetPlaces({ { "All", Path() }, { "Music", Path("music") }, { "Gone", Path("gone") } });
    PutFolder("music/takes 1");   // after the tree was made, before it opens
    std::filesystem::remove_all(folder / "gone");
    tree.SetFocus();
    const auto keys = [this](std::initializer_list<std::int32_t> all)
    {
        for (const std::int32_t each : all)
            Key(each);
        return Taken();
    };
    const auto text = [this](const char* name)
    {
        return PathBytes(Path(name));
    };
    EXPECT_THAT(keys({ MKey::Home, MKey::Down }), ElementsAre(folder.string(), text("music")));
    EXPECT_THAT(keys({ MKey::Right, MKey::Down, MKey::Down, MKey::Down }),
                ElementsAre(text("music/takes 1"), text("music/takes 2"), text("music/takes 10")));
    EXPECT_THAT(keys({ MKey::Down, MKey::Right, MKey::Right }), ElementsAre(text("gone")));
    EXPECT_EQ(tree.Current()->icon, MStdIcon::Lock);
    tree.Follow(Path("music/takes 2"));
    EXPECT_EQ(tree.Path(), Path("music/takes 2"));
    tree.SetShowsHidden(true);
    EXPECT_EQ(tree.Path(), Path("music/takes 2"));
    EXPECT_TRUE(tree.SetPath(Path("music/.old")));
    tree.SetShowsHidden(false);
    EXPECT_EQ(tree.Path(), MString()) << "it isn't there any more";
    tree.Follow(Path("music/takes 10"));
    std::filesystem::remove_all(folder / "music/takes 10");
    tree.Refresh();
    EXPECT_EQ(tree.Path(), MString());
    EXPECT_FALSE(tree.SetPath(Path("music/takes 10")));
    EXPECT_FALSE(tree.SetPath("/elsewhere"));
    tree.Follow("/elsewhere");
    EXPECT_EQ(tree.Current(), nullptr);
    EXPECT_THAT(Taken(), IsEmpty()) << "from outside";
    EXPECT_TRUE(tree.SetPath(Path("music/takes 2")));
    EXPECT_EQ(tree.Current()->parent->text, "Music") << "the nearest place";
}

TEST_F(FileControls, PlacesAreThoseOfTheUserEachOnce)
{
    const std::string home = std::getenv("HOME");
    std::filesystem::create_directories(home + "/Music");
    std::filesystem::create_directories(home + "/Documents");
    std::filesystem::create_directories(home + "/config/gtk-3.0");
    PutFolder("two words");
    PutFolder("caf\xE9");
    std::ofstream(home + "/config/gtk-3.0/bookmarks")
        << "file://" << folder.string() << "/two%20words My takes\nfile://" << folder.string()
        << "/caf%E9\nfile://" << home << "/Music\nfile:///not/there\nsftp://far/away\nfile://"
        << folder.string() << "/two%20words Again\nnonsense\n";
    std::vector<std::string> found;
    for (const FilePlace& each : ListFilePlaces())
        if (PathBytes(each.path).find("media") == std::string::npos)
            found.push_back(PathBytes(each.name) + " " + PathBytes(each.path));
    EXPECT_THAT(found,
                ElementsAre("Home " + home, "Documents " + home + "/Documents", "Music " + home + "/Music",
                            "File system /", "My takes " + folder.string() + "/two words",
                            "caf\xE9 " + folder.string() + "/caf\xE9"));
}

TEST_F(FileControls, PathBarsGoToPartsAndToTypedPaths)
{
    PutFolder("alpha/beta");
    PutFolder("alpha/betas");
    auto& bar = Add<MPathBar>(MRectangle::OfSize(0, 0, 400, 22));
    bar.OnPath().AddHandler<&FileControls::OnPath>(*this);
    bar.SetPath("/one/two/three");
    bar.SetFocus();
    Key(MKey::Left);
    Key(MKey::Enter);
    EXPECT_THAT(Taken(), ElementsAre("/one/two"));
    Key(MKey::Home);
    Key(MKey::Right);
    Key(MKey::Space);
    EXPECT_THAT(Taken(), ElementsAre("/one"));
    screen->Click(*window, 8, 11);
    EXPECT_THAT(Taken(), ElementsAre("/"));
    // However narrow, it ends with the folder and never reaches over its edge.
    MString path;
    for (int i = 0; i < 12; ++i)
        path += "/a long name " + MString::FromInt(i);
    for (const std::int32_t width : { 30, 90, 200, 391, 400 })
    {
        bar.SetSize(width, 22);
        bar.SetPath(path);
        bar.SetFocus();
        screen->Look(*window);
        for (int i = 0; i < 20; ++i)
            Key(MKey::Left);
        Key(MKey::Enter);
        const std::vector<std::string> first = Taken();
        ASSERT_EQ(first.size(), 1u);
        EXPECT_EQ(path.ToUTF8().find(first.front()), 0u);
        EXPECT_TRUE(width < 60 || first.front().size() < path.ToUTF8().size());
        Key(MKey::End);
        Key(MKey::Enter);
        EXPECT_THAT(Taken(), ElementsAre(path.ToUTF8()));
    }
    // Typing: a letter, F2 or a press beside the parts; it completes folders, and Escape gives up.
    bar.SetPath(Path());
    screen->Type(*window, "al");
    ASSERT_TRUE(bar.IsTyping());
    Key(MKey::Enter);
    EXPECT_THAT(Taken(), ElementsAre(PathBytes(Path("alpha")))) << "what was put behind counts";
    EXPECT_TRUE(bar.IsTyping()) << "whoever listens ends it";
    Key(MKey::Escape);
    EXPECT_FALSE(bar.IsTyping());
    EXPECT_TRUE(bar.HasFocus());
    Key(MKey::F2);
    Key(MKey::End);
    screen->Type(*window, "/alpha/b");
    Key(MKey::End);
    screen->Type(*window, "s");
    Key(MKey::Enter);
    EXPECT_THAT(Taken(), ElementsAre(PathBytes(Path("alpha/betas"))));
    auto& other = Add<MButton>(MRectangle::OfSize(0, 100, 50, 22));
    ClickOn(other);
    Settle();
    EXPECT_FALSE(bar.IsTyping()) << "leaving is no wish to go anywhere";
    EXPECT_TRUE(other.HasFocus());
    EXPECT_THAT(Taken(), IsEmpty());
}

TEST_F(FileControls, SelectorsTakeTypedDroppedAndChosenPaths)
{
    Put("take.wav");
    MXmlLoader loader;
    RegisterFileControls(loader);
    MAttribute document;
    for (const char* tag : { "fileselector", "directorytree", "filelistbox" })
    {
        MAttribute& node = document.AddSubItem(MString::Literal(tag));
        node.SetAttribute("path", tag == std::string("fileselector") ? Path("take.wav") : Path());
        node.SetAttribute("filter", "*.wav");
    }
    auto made = std::make_unique<MControl>();
    loader.Load(*made, document);
    auto& selector = TheOne<MFileSelector>(*made);
    EXPECT_EQ(TheOne<MFileListBox>(*made).Count(), 1);
    EXPECT_EQ(TheOne<MDirectoryTreeControl>(*made).Path(), Path());
    window->AddChild(std::move(made)).SetSize(300, 100);
    selector.SetSize(300, 22);
    selector.OnPath().AddHandler<&FileControls::OnPath>(*this);
    EXPECT_EQ(selector.Path(), Path("take.wav"));
    TheOne<MFileNameEdit>(selector).SetFocus();
    Key('A', ModifierCtrl);
    screen->Type(*window, "/tmp/../x.wav");
    Key(MKey::Enter);
    EXPECT_THAT(Taken(), ElementsAre("/x.wav"));
    screen->Drop(*window, 20, 10, { Path("take.wav"), "/other" });
    Settle();
    EXPECT_THAT(Taken(), ElementsAre(PathBytes(Path("take.wav"))));
    selector.SetPath({});
    selector.options.folder = Path();
    screen->Click(*window, 290, 10);
    ASSERT_EQ(OpenCount(), 2u);
    TopKey(MKey::Down);
    TopKey(MKey::Enter);
    EXPECT_EQ(OpenCount(), 1u);
    EXPECT_THAT(Taken(), ElementsAre(PathBytes(Path("take.wav"))));
    selector.OpenDialog();
    window->RemoveChild(*selector.Parent());
    TopKey(MKey::Enter);
    EXPECT_EQ(OpenCount(), 1u) << "nobody is there to be told";
}
