// SPDX-License-Identifier: GPL-3.0-or-later
// Controls that hold more than one thing: trees, many lines, menus, colours, pads.
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "control/values/MValueEnum.h"
#include "gui/fields/MMultiLineEdit.h"
#include "gui/widgets/MColorEditor.h"
#include "gui/widgets/MComboEdit.h"
#include "gui/widgets/MMenuBar.h"
#include "gui/widgets/MTreeControl.h"
#include "gui/widgets/MValueButton.h"
#include "gui/widgets/MVector2DEditor.h"
#include "tests/gui/widgets/WidgetsFixture.h"

using ::testing::ElementsAre;

namespace
{
/// Writes down what it is told.
struct Listener : MEventTarget
{
    void OnTreeItem(const MOnItemParams<MTreeItem*>& params, std::uintptr_t kind)
    {
        const char* const kinds[] = { "select ", "activate ", "expand " };
        log.push_back(kinds[kind] + params.item->text.ToUTF8());
    }
    void OnItem(const MOnItemParams<std::int32_t>& params) { log.push_back(std::to_string(params.item)); }
    void OnNotify(const MOnNotifyParams&) { log.push_back("change"); }
    void OnPoint(const MVector2DEditor::Params& params)
    {
        const char* const phases[] = { "begin", "change", "end" };
        log.push_back(phases[static_cast<int>(params.phase)]);
    }
    std::vector<std::string> Taken() { return std::exchange(log, {}); }
    std::vector<std::string> log;
};
}   // namespace

TEST_F(Widgets, TreesOpenCloseAndAreWalkedByKeys)
{
    Listener listener;
    auto& tree = Add<MTreeControl>(MRectangle::OfSize(10, 10, 200, 100));
    tree.OnSelect().AddHandler<&Listener::OnTreeItem>(listener, {}, 0);
    tree.OnActivate().AddHandler<&Listener::OnTreeItem>(listener, {}, 1);
    tree.OnExpand().AddHandler<&Listener::OnTreeItem>(listener, {}, 2);
    MTreeItem& first = tree.Items().Add("a");
    MTreeItem& inner = first.Add("a1");
    MTreeItem& deepest = inner.Add("a11");
    tree.Items().Add("b");
    tree.ItemsChanged();
    tree.SetFocus();
    for (const std::int32_t key :
         { MKey::Down, MKey::Right, MKey::Right, MKey::Right, MKey::Right, MKey::Enter })
        Key(key);
    EXPECT_THAT(listener.Taken(),
                ElementsAre("select a", "expand a", "select a1", "expand a1", "select a11", "activate a11"));
    Key(MKey::End);
    Key(MKey::Home);
    Key(MKey::Left);
    EXPECT_FALSE(first.expanded);
    Key(MKey::Down);
    EXPECT_THAT(listener.Taken(), ElementsAre("select b", "select a", "select b"));
    tree.SetCurrent(&deepest);
    EXPECT_TRUE(first.expanded && inner.expanded);
    listener.Taken();
    tree.SetExpanded(first, false);
    screen->MoveMouse(*window, 1, 1);
    EXPECT_EQ(tree.Current(), &first) << "what was chosen inside is out of sight";
    screen->Look(*window);
    tree.Items().children.clear();
    tree.ItemsChanged();
    EXPECT_EQ(tree.Current(), nullptr);
    Key(MKey::Down);
    Key(MKey::Left);
    screen->Look(*window);
}

TEST_F(Widgets, ManyLinesAreEditedAsOneText)
{
    Listener listener;
    auto& edit = Add<MMultiLineEdit>(MRectangle::OfSize(10, 10, 150, 60));
    edit.OnTextChange().AddHandler<&Listener::OnNotify>(listener);
    edit.SetText("one\r\ntwo\n\nfour");
    EXPECT_EQ(edit.Text(), "one\ntwo\n\nfour");
    edit.SetFocus();
    Key(MKey::End);
    Key(MKey::Down);
    screen->Type(*window, "!");
    Key(MKey::Down);
    Key(MKey::Down);
    screen->Type(*window, "?");
    EXPECT_EQ(edit.Text(), "one\ntwo!\n\nfour?") << "over an empty line the column is kept";
    Key(MKey::Enter);
    Key(MKey::Up, ModifierShift);
    Key(MKey::Delete);
    EXPECT_EQ(edit.Text(), "one\ntwo!\n\n");
    Key(MKey::Home, ModifierCtrl);
    Key(MKey::End, ModifierCtrl | ModifierShift);
    Key('X', ModifierCtrl);
    EXPECT_EQ(edit.Text(), "");
    Key('V', ModifierCtrl);
    Key('Z', ModifierCtrl);
    Key('Z', ModifierCtrl);
    EXPECT_EQ(edit.Text(), "one\ntwo!\n\n");
    EXPECT_EQ(listener.Taken().size(), 8u);

    // Whatever is pressed, the caret stays inside and the picture can be painted.
    std::mt19937 random(5);
    const std::int32_t keys[] = { MKey::Left,  MKey::Right,     MKey::Up,     MKey::Down,
                                  MKey::Home,  MKey::End,       MKey::PageUp, MKey::PageDown,
                                  MKey::Enter, MKey::Backspace, MKey::Delete };
    for (int i = 0; i < 3000; ++i)
    {
        const std::uint8_t held = static_cast<std::uint8_t>((random() % 3 == 0 ? ModifierShift : 0) |
                                                            (random() % 5 == 0 ? ModifierCtrl : 0));
        if (random() % 3 == 0)
            screen->Type(*window, "wide \U0001F600 text");
        else
            Key(keys[random() % std::size(keys)], held);
        if (random() % 7 == 0)
            screen->Click(*window, static_cast<std::int32_t>(random() % 170),
                          static_cast<std::int32_t>(random() % 80));
        edit.SetFocus();
        if (i % 50 == 0)
            screen->Look(*window);
    }
    const std::string text = edit.Text().ToUTF8();
    EXPECT_EQ(text.find("\xED"), std::string::npos) << "no half of a pair is left";
}

TEST_F(Widgets, MenuBarsFollowThePointerAndTheArrows)
{
    Listener listener;
    auto& bar = Add<MMenuBar>(MRectangle::OfSize(0, 0, 300, 24));
    MMenuItem& file = bar.Items().Add("File", 0);
    file.Add("Open", 1);
    file.Add("Save", 2);
    bar.Items().Add("Edit", 0).Add("Undo", 3);
    bar.OnChosen().AddHandler<&Listener::OnItem>(listener);
    screen->Click(*window, 12, 10);
    ASSERT_EQ(windows->OpenWindows().size(), 2u);
    screen->MoveMouse(*window, 55, 10);
    ASSERT_EQ(windows->OpenWindows().size(), 2u);
    MWindow& menu = *windows->OpenWindows().back();
    screen->Look(menu);
    screen->Click(menu, 40, 12);
    EXPECT_THAT(listener.Taken(), ElementsAre("3"));
    EXPECT_EQ(windows->OpenWindows().size(), 1u);
    bar.SetFocus();
    Key(MKey::Right);
    Key(MKey::Left);
    Key(MKey::Down);
    Key(MKey::Down);
    Key(MKey::Enter);
    EXPECT_THAT(listener.Taken(), ElementsAre("2"));
}

TEST_F(Widgets, ChoicesFillTheirField)
{
    auto& combo = Add<MComboEdit>(MRectangle::OfSize(10, 10, 150, 22));
    combo.SetChoices({ "first", "second" });
    combo.OnDone().AddHandler<&Widgets::OnDone>(*this);
    combo.SetFocus();
    screen->Type(*window, "own");
    screen->Click(*window, 155, 20);
    Key(MKey::Down);
    Key(MKey::Down);
    Key(MKey::Enter);
    EXPECT_EQ(combo.Text(), "second");
    EXPECT_THAT(Taken(), ElementsAre("done 1"));
    Key('Z', ModifierCtrl);
    EXPECT_EQ(combo.Text(), "own");
    Taken();
    EXPECT_EQ(combo.GetCursor(145, 5), MStdCursor::Arrow);
    EXPECT_EQ(combo.GetCursor(5, 5), MStdCursor::Text);

    combo.SetVisible(false);
    screen->MoveMouse(*window, 1, 1);
    Taken();
    MRelaxed<int> bound{ 1 };
    MValueEnum<MCaptionType> value(&bound);
    auto& button = Add<MValueButton>(MRectangle::OfSize(10, 50, 60, 22));
    button.SetValue(&value);
    button.OnValueChange().AddHandler<&Widgets::OnValue>(*this);
    for (const int wanted : { 2, 3, 0 })
    {
        screen->Click(*window, 20, 60);
        EXPECT_EQ(bound.Get(), wanted);
        EXPECT_EQ((button.GetDrawState() & DrawOn) != 0, wanted != 0);
        EXPECT_THAT(Taken(), ElementsAre("begin", "change", "end"));
    }
    Key(MKey::Space);
    EXPECT_EQ(bound.Get(), 1);
    screen->DoubleClick(*window, 20, 60);
    EXPECT_EQ(bound.Get(), 3) << "two presses";
}

TEST_F(Widgets, PadsAndColoursFollowThePointer)
{
    Listener listener;
    auto& pad = Add<MVector2DEditor>(MRectangle::OfSize(10, 10, 114, 114));   // 100 between the ends
    pad.OnPoint().AddHandler<&Listener::OnPoint>(listener);
    pad.SetPoint(0, 1);
    screen->PressMouse(*window, 10 + 7, 10 + 7);
    EXPECT_NEAR(pad.AlongX(), 0, 1e-9) << "held where it is";
    screen->MoveMouse(*window, 10 + 7 + 33, 10 + 7 + 66);
    EXPECT_NEAR(pad.AlongX(), 33 / 99.0, 1e-9);
    EXPECT_NEAR(pad.AlongY(), 1 - 66 / 99.0, 1e-9);
    screen->ReleaseMouse(*window, 60, 90);
    screen->Click(*window, 10 + 106, 10 + 106);
    EXPECT_NEAR(pad.AlongX(), 1, 1e-9);
    EXPECT_NEAR(pad.AlongY(), 0, 1e-9);
    Key(MKey::Up);
    EXPECT_NEAR(pad.AlongY(), 0.01, 1e-9);
    EXPECT_THAT(listener.Taken(),
                ElementsAre("begin", "change", "end", "begin", "change", "end", "begin", "change", "end"));
    pad.SetPoint(std::nan(""), 7);
    EXPECT_EQ(pad.AlongX(), 0);
    EXPECT_EQ(pad.AlongY(), 1);

    auto& editor = Add<MColorEditor>(MRectangle::OfSize(150, 10, 200, 150));
    editor.OnColor().AddHandler<&Listener::OnNotify>(listener);
    std::mt19937 random(2);
    for (int i = 0; i < 2000; ++i)
    {
        const MColor color(static_cast<std::uint32_t>(random()));
        editor.SetColor(color);
        const MColor back = editor.Color();
        EXPECT_NEAR(back.Red(), color.Red(), 1);
        EXPECT_NEAR(back.Green(), color.Green(), 1);
        EXPECT_NEAR(back.Blue(), color.Blue(), 1);
        EXPECT_EQ(back.Alpha(), color.Alpha());
        MColor read;
        ASSERT_TRUE(MColorEditor::ColorOf(MColorEditor::TextOf(color), read));
        EXPECT_EQ(read, color);
    }
    MColor kept(1, 2, 3);
    for (const char* wrong : { "12345", "1234567", "12345G", "", "123456789" })
        EXPECT_FALSE(MColorEditor::ColorOf(MString(wrong), kept)) << wrong;
    EXPECT_EQ(kept, MColor(1, 2, 3));
    editor.SetColor(MColor(255, 0, 0));
    screen->Click(*window, 151, 11);   // the upper left corner of the field: white
    EXPECT_GT(editor.Color().Green(), 250);
    screen->Look(*window);
    EXPECT_FALSE(listener.Taken().empty());
}
