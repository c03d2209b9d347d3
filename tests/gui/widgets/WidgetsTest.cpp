// SPDX-License-Identifier: GPL-3.0-or-later
// Controls as a user works them, by mouse, wheel and keyboard, in a window without a display.
#include <random>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "control/values/MValueEnum.h"
#include "control/values/MValueNumber.h"
#include "control/values/MValueQuantities.h"
#include "foundation/text/MCharFilter.h"
#include "gui/controls/MLayoutClient.h"
#include "gui/fields/MEdit.h"
#include "gui/widgets/MButton.h"
#include "gui/widgets/MCheckBox.h"
#include "gui/widgets/MKnob.h"
#include "gui/widgets/MLevelMeter.h"
#include "gui/widgets/MListBox.h"
#include "gui/widgets/MRepeaterButton.h"
#include "gui/widgets/MSplitter.h"
#include "gui/widgets/MSwitcher.h"
#include "gui/widgets/MTabSet.h"
#include "gui/widgets/MTracker.h"
#include "tests/gui/widgets/WidgetsFixture.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(Widgets, ButtonsClickByMouseAndKeysAndRepeatWhileHeld)
{
    auto& button = Add<MButton>(MRectangle::OfSize(10, 10, 80, 22));
    button.isToggle = true;
    button.Clicks().OnLeftClick().AddHandler<&Widgets::OnClick>(*this);
    screen->Click(*window, 20, 20);
    EXPECT_TRUE(button.IsOn());
    screen->PressMouse(*window, 20, 20);
    screen->ReleaseMouse(*window, 200, 20);
    EXPECT_TRUE(button.IsOn()) << "let go outside";
    Key(MKey::Space);
    Key(MKey::Enter);
    Key(MKey::Space, ModifierCtrl);
    EXPECT_TRUE(button.IsOn());
    EXPECT_THAT(Taken(), ElementsAre("click", "click", "click"));
    button.SetEnabled(false);
    screen->Click(*window, 20, 20);
    button.Press();
    EXPECT_THAT(Taken(), IsEmpty());

    auto& repeater = Add<MRepeaterButton>(MRectangle::OfSize(10, 50, 80, 22));
    repeater.Clicks().OnLeftClick().AddHandler<&Widgets::OnClick>(*this);
    screen->PressMouse(*window, 20, 60);
    screen->PassTime(MRepeaterButton::FirstMilliseconds + 3 * MRepeaterButton::NextMilliseconds);
    EXPECT_EQ(Taken().size(), 4u);
    screen->MoveMouse(*window, 300, 60);
    screen->PassTime(1000);
    EXPECT_THAT(Taken(), IsEmpty()) << "dragged out it pauses";
    screen->MoveMouse(*window, 20, 60);
    screen->ReleaseMouse(*window, 20, 60);
    EXPECT_EQ(Taken().size(), 1u);
    screen->PassTime(2000);
    EXPECT_THAT(Taken(), IsEmpty());
}

TEST_F(Widgets, CheckBoxesToggleAndRoundOnesChooseOne)
{
    auto& box = Add<MCheckBox>(MRectangle::OfSize(0, 0, 80, 20));
    box.OnCheck().AddHandler<&Widgets::OnCheck>(*this);
    screen->Click(*window, 70, 10);
    Key(MKey::Space);
    box.SetState(MCheckBoxState::Grayed);
    Key(MKey::Space);
    EXPECT_THAT(Taken(), ElementsAre("check 1", "check 0", "check 1"));
    std::vector<MCheckBox*> group;
    for (std::int32_t i = 0; i < 3; ++i)
    {
        group.push_back(&Add<MCheckBox>(MRectangle::OfSize(0, 30 + i * 20, 80, 20)));
        group.back()->group = 1;
    }
    const auto chosen = [&group]
    {
        std::string states;
        for (const MCheckBox* each : group)
            states += each->State() == MCheckBoxState::On ? '1' : '0';
        return states;
    };
    screen->Click(*window, 5, 55);
    EXPECT_EQ(chosen(), "010");
    screen->Click(*window, 5, 55);
    EXPECT_EQ(chosen(), "010") << "stays on";
    Key(MKey::Down);
    EXPECT_EQ(chosen(), "001");
    Key(MKey::Right);
    EXPECT_EQ(chosen(), "100");
    EXPECT_EQ(box.State(), MCheckBoxState::On) << "another group";
}

TEST_F(Widgets, ValuesChangeInGesturesOfOneTouchEach)
{
    MRelaxed<double> bound{ 0.5 };
    MValueDouble value(&bound, -1, 1, 0.25);
    auto& knob = Add<MKnob>(MRectangle::OfSize(10, 10, 60, 90));
    knob.SetValue(&value);
    knob.OnValueChange().AddHandler<&Widgets::OnValue>(*this);
    EXPECT_DOUBLE_EQ(knob.Look().origin, 0.5) << "two signs";

    screen->PressMouse(*window, 40, 50);
    screen->MoveMouse(*window, 60, 30);   // 40 of 200 units: a fifth of the range
    screen->MoveMouse(*window, 60, 30);
    EXPECT_NEAR(bound.Get(), 0.9, 1e-12);
    screen->SetHeldKeys(ModifierCtrl);
    screen->MoveMouse(*window, 60, 130);   // 100 down, a tenth: a twentieth
    EXPECT_NEAR(bound.Get(), 0.8, 1e-12);
    screen->SetHeldKeys(0);
    screen->MoveMouse(*window, 1000, 130);
    screen->MoveMouse(*window, 1001, 130);
    EXPECT_DOUBLE_EQ(bound.Get(), 1.0);
    screen->ReleaseMouse(*window, 1001, 130);
    EXPECT_THAT(Taken(), ElementsAre("begin", "change", "change", "change", "end"));

    const auto oneTouch = ElementsAre("begin", "change", "end");
    screen->Wheel(*window, 40, 50, -120);
    EXPECT_NEAR(bound.Get(), 0.98, 1e-12);
    EXPECT_THAT(Taken(), oneTouch);
    screen->Wheel(*window, 40, 50, -30);
    EXPECT_NEAR(bound.Get(), 0.96, 1e-12) << "a part of a notch is a step";
    EXPECT_THAT(Taken(), oneTouch);
    const std::pair<std::int32_t, double> keys[] = { { MKey::Home, -1 },      { MKey::Up, -0.98 },
                                                     { MKey::PageUp, -0.78 }, { MKey::Down, -0.8 },
                                                     { MKey::End, 1 },        { MKey::PageDown, 0.8 },
                                                     { MKey::Delete, 0.25 } };
    for (const auto& [key, result] : keys)
    {
        Key(key);
        EXPECT_NEAR(bound.Get(), result, 1e-12);
        EXPECT_THAT(Taken(), oneTouch);
    }
    Key(MKey::Up, ModifierCtrl);
    EXPECT_NEAR(bound.Get(), 0.252, 1e-12);
    screen->SetHeldKeys(ModifierCtrl);
    Taken();
    screen->Click(*window, 40, 50);
    screen->SetHeldKeys(0);
    EXPECT_DOUBLE_EQ(bound.Get(), 0.25);

    // By somebody else: shown, and told to nobody.
    Taken();
    screen->Look(*window);
    bound.Set(0.75);
    knob.RefreshValue();
    EXPECT_GT(screen->TakePaintedPixels(), 0);
    knob.RefreshValue();
    EXPECT_EQ(screen->TakePaintedPixels(), 0);
    EXPECT_THAT(Taken(), IsEmpty());
}

TEST_F(Widgets, ValuesAreTypedAndRefusedTextChangesNothing)
{
    MRelaxed<double> bound{ 0.5 };
    MValuePercents value(&bound, 0, 1, 0.25);
    auto& knob = Add<MKnob>(MRectangle::OfSize(10, 10, 60, 90));
    knob.SetValue(&value);
    knob.OnValueChange().AddHandler<&Widgets::OnValue>(*this);
    const auto type = [&](const char* text, std::int32_t key)
    {
        screen->DoubleClick(*window, 40, 50);
        EXPECT_TRUE(knob.IsTyping());
        screen->Type(*window, MString(text));
        Taken();
        Key(key);
        EXPECT_FALSE(knob.IsTyping());
        EXPECT_TRUE(knob.HasFocus());
        return bound.Get();
    };
    EXPECT_NEAR(type("33.5", MKey::Enter), 0.335, 1e-12);
    EXPECT_THAT(Taken(), ElementsAre("begin", "change", "end"));
    EXPECT_NEAR(type("800", MKey::Enter), 1, 1e-12);
    EXPECT_NEAR(type("20", MKey::Escape), 1, 1e-12);
    EXPECT_THAT(Taken(), IsEmpty());
    EXPECT_NEAR(type("nothing", MKey::Enter), 1, 1e-12);
    // By keyboard alone; leaving the field takes it.
    Key(MKey::Enter);
    screen->Type(*window, "40");
    screen->Click(*window, 300, 200);
    auto& other = Add<MButton>(MRectangle::OfSize(200, 200, 50, 20));
    other.SetFocus();
    screen->MoveMouse(*window, 1, 1);
    EXPECT_NEAR(bound.Get(), 0.4, 1e-12);
    EXPECT_TRUE(other.HasFocus());
}

TEST_F(Widgets, InAHostsWindowGiveTheKeyboardBackAfterTyping)
{
    window->Close();
    window->AttachToParent(4711);
    MRelaxed<double> bound{ 0.5 };
    MValuePercents value(&bound, 0, 1, 0.25);
    auto& knob = Add<MKnob>(MRectangle::OfSize(10, 10, 60, 90));
    knob.SetValue(&value);
    window->Relayout();
    screen->DoubleClick(*window, 40, 50);
    EXPECT_TRUE(screen->HasKeyboard(*window));
    screen->Type(*window, "12");
    Key(MKey::Enter);
    EXPECT_NEAR(bound.Get(), 0.12, 1e-12);
    EXPECT_FALSE(screen->HasKeyboard(*window)) << "begun by the mouse";
    screen->Click(*window, 40, 50);
    Key(MKey::Up);
    Key(MKey::Enter);
    screen->Type(*window, "34");
    Key(MKey::Enter);
    EXPECT_NEAR(bound.Get(), 0.34, 1e-12);
    EXPECT_TRUE(screen->HasKeyboard(*window)) << "begun by a key";
    window->Detach();
    EXPECT_EQ(screen->WindowCount(), 0);
}

TEST_F(Widgets, SlidersFollowThePointerAndJumpToIt)
{
    MRelaxed<double> bound{ 0 };
    MValueDouble value(&bound, 0, 1, 0);
    for (const bool upright : { false, true })
    {
        auto& slider = Add<MTracker>(upright ? MRectangle::OfSize(300, 50, 16, 200)
                                             : MRectangle::OfSize(20, 20, 200, 16));
        slider.form = MTracker::Form::Bare;
        bound.Set(0.2);
        slider.SetValue(&value);
        for (const double wanted : { 0.9, 0.1, 0.5 })
        {
            const auto at = static_cast<std::int32_t>(wanted * 200);
            const MPoint place = upright ? MPoint{ 305, 249 - at } : MPoint{ 20 + at, 25 };
            screen->PressMouse(*window, place.x, place.y);
            EXPECT_NEAR(bound.Get(), wanted, 0.01);
            screen->MoveMouse(*window, place.x + (upright ? 0 : 20), place.y - (upright ? 20 : 0));
            EXPECT_NEAR(bound.Get(), std::min(1.0, wanted + 0.1), 0.011);
            screen->ReleaseMouse(*window, place.x, place.y);
        }
        slider.SetValue(nullptr);
    }
}

TEST_F(Widgets, SwitchersChooseByMenuKeysAndWheel)
{
    MRelaxed<int> bound{ 0 };
    MValueEnum<MCaptionType> value(&bound);
    auto& box = Add<MSwitcher>(MRectangle::OfSize(10, 10, 120, 22));
    box.SetValue(&value);
    box.OnValueChange().AddHandler<&Widgets::OnValue>(*this);
    screen->Click(*window, 20, 20);
    ASSERT_EQ(windows->OpenWindows().size(), 2u);
    MWindow& menu = *windows->OpenWindows().back();
    EXPECT_GE(menu.Width(), 120);
    EXPECT_EQ(screen->GetScreenRect(menu).top, 32);
    screen->Look(menu);
    screen->MoveMouse(menu, 40, menu.Height() - 10);
    screen->Click(menu, 40, menu.Height() - 10);
    EXPECT_EQ(bound.Get(), 3);
    EXPECT_EQ(windows->OpenWindows().size(), 1u);
    EXPECT_THAT(Taken(), ElementsAre("begin", "change", "end"));

    screen->PassTime(1000);
    Key(MKey::Enter);
    ASSERT_EQ(windows->OpenWindows().size(), 2u);
    Key(MKey::Up);
    Key(MKey::Up);
    Key(MKey::Enter);
    EXPECT_EQ(bound.Get(), 1) << "keys of the window go to its open menu";
    Key(MKey::Space);
    Key('L');
    Key(MKey::Escape);
    EXPECT_EQ(bound.Get(), 1);
    EXPECT_EQ(windows->OpenWindows().size(), 1u);
    Key(MKey::Down);
    EXPECT_EQ(bound.Get(), 2);
    EXPECT_TRUE(screen->Wheel(*window, 20, 20, 120));
    EXPECT_EQ(bound.Get(), 2) << "what follows a choice at once isn't meant";
    screen->PassTime(1000);
    screen->Wheel(*window, 20, 20, 120);
    EXPECT_EQ(bound.Get(), 1);
    // A press elsewhere closes the menu and does nothing else.
    screen->Click(*window, 20, 20);
    screen->Click(*window, 20, 20);
    EXPECT_EQ(windows->OpenWindows().size(), 1u);
    box.segments = true;
    screen->Click(*window, 10 + 105, 20);
    EXPECT_EQ(bound.Get(), 3);
}

TEST_F(Widgets, MenusOpenMenusAndFindTheirWayByKeys)
{
    MMenuItem root;
    root.Add("Copy", 1, "Ctrl+C");
    root.AddSeparator();
    root.Add("Never", 2).enabled = false;
    MMenuItem& more = root.Add("More", 0);
    more.Add("Inner one", 11);
    more.Add("Inner two", 12).Add("Deepest", 121);
    std::vector<std::int32_t> chosen;
    MPopupMenu menu;
    struct Listener : MEventTarget
    {
        explicit Listener(std::vector<std::int32_t>& to) : target(to) {}
        void On(const MOnItemParams<std::int32_t>& params) { target.push_back(params.item); }
        std::vector<std::int32_t>& target;
    } listener(chosen);
    menu.OnChosen().AddHandler<&Listener::On>(listener);
    const auto open = [&]
    {
        menu.Popup(root, *window, MRectangle::OfSize(10, 10, 20, 20));
    };
    open();
    for (const std::int32_t key :
         { MKey::Down, MKey::Down, MKey::Right, MKey::Down, MKey::Right, MKey::Enter })
        Key(key);
    EXPECT_THAT(chosen, ElementsAre(121));
    EXPECT_FALSE(menu.IsOpen());
    open();
    Key('M');
    EXPECT_EQ(menu.Current(), 3);
    Key(MKey::Enter);
    Key(MKey::Left);
    EXPECT_TRUE(menu.IsOpen());
    Key(MKey::Escape);
    EXPECT_FALSE(menu.IsOpen());
    open();
    screen->Look(menu);
    screen->MoveMouse(menu, 30, menu.Height() - 12);
    ASSERT_EQ(windows->OpenWindows().size(), 3u) << "resting on it opens";
    MWindow& inner = *windows->OpenWindows().back();
    EXPECT_GT(screen->GetScreenRect(inner).left, screen->GetScreenRect(menu).left + 50);
    screen->Click(inner, 30, 12);
    EXPECT_THAT(chosen, ElementsAre(121, 11));
    EXPECT_EQ(root.FindItem(121)->text, "Deepest");
    // Near the lower edge of the screen it opens upwards.
    screen->SetPositionOnly(*window, 0, 1000);
    open();
    EXPECT_EQ(screen->GetScreenRect(menu).bottom, 1009);
}

TEST_F(Widgets, EditsBehaveAsAModelOfThemDoes)
{
    // Random keys against the plainest text with a caret and an anchor.
    auto& edit = Add<MEdit>(MRectangle::OfSize(10, 10, 100, 22));
    edit.SetFocus();
    std::mt19937 random(11);
    std::string text;
    std::size_t caret = 0;
    std::size_t anchor = 0;
    const auto erase = [&]
    {
        const std::size_t first = std::min(caret, anchor);
        text.erase(first, std::max(caret, anchor) - first);
        caret = anchor = first;
    };
    std::string clipboard;
    for (int round = 0; round < 5000; ++round)
    {
        const bool shift = random() % 3 == 0;
        const std::uint8_t keys = shift ? ModifierShift : 0;
        switch (random() % 10)
        {
        case 0:
        case 1:
        case 2:
        case 3:
        {
            const char letter = static_cast<char>('a' + random() % 26);
            erase();
            text.insert(caret++, 1, letter);
            anchor = caret;
            screen->Type(*window, MString(std::string(1, letter).c_str()));
            break;
        }
        case 4:
            Key(MKey::Left, keys);
            caret = !shift && caret != anchor ? std::min(caret, anchor) : caret > 0 ? caret - 1 : 0;
            anchor = shift ? anchor : caret;
            break;
        case 5:
            Key(MKey::Right, keys);
            caret = !shift && caret != anchor ? std::max(caret, anchor) : std::min(caret + 1, text.size());
            anchor = shift ? anchor : caret;
            break;
        case 6:
            Key(random() % 2 == 0 ? MKey::Home : MKey::Up, keys);
            caret = 0;
            anchor = shift ? anchor : caret;
            break;
        case 7:
            Key(MKey::Backspace);
            anchor = caret == anchor && caret > 0 ? caret - 1 : anchor;
            erase();
            break;
        case 8:
            Key('C', ModifierCtrl);
            if (caret != anchor)
                clipboard =
                    text.substr(std::min(caret, anchor), std::max(caret, anchor) - std::min(caret, anchor));
            break;
        default:
            Key('V', ModifierCtrl);
            if (clipboard.empty() || text.size() > 200)
                clipboard = clipboard.substr(0, 2);
            if (!screen->GetClipboardText().IsEmpty())
            {
                const std::string pasted = screen->GetClipboardText().ToUTF8();
                erase();
                text.insert(caret, pasted);
                anchor = caret += pasted.size();
            }
            screen->SetClipboardText(MString(clipboard.c_str()));
            break;
        }
        ASSERT_EQ(edit.Text().ToUTF8(), text) << "round " << round;
    }
    screen->Look(*window);
}

TEST_F(Widgets, EditsUndoFilterAndTell)
{
    auto& edit = Add<MEdit>(MRectangle::OfSize(10, 10, 100, 22));
    edit.OnDone().AddHandler<&Widgets::OnDone>(*this);
    edit.OnTextChange().AddHandler<&Widgets::OnText>(*this);
    edit.SetText("one two");
    edit.SetFocus();
    Key(MKey::Backspace, ModifierCtrl);
    EXPECT_EQ(edit.Text(), "one ");
    screen->Type(*window, "abc");
    Key('Z', ModifierCtrl);
    EXPECT_EQ(edit.Text(), "one ") << "letters in a row are one step";
    Key('Z', ModifierCtrl);
    Key('Z', ModifierCtrl);
    EXPECT_EQ(edit.Text(), "one two");
    Key('Z', ModifierCtrl | ModifierShift);
    Key('Y', ModifierCtrl);
    EXPECT_EQ(edit.Text(), "one abc");
    screen->SetClipboardText("a\nb\x01"
                             "c");
    Key('A', ModifierCtrl);
    Key('V', ModifierCtrl);
    EXPECT_EQ(edit.Text(), "a bc");
    Taken();
    Key(MKey::Escape);
    EXPECT_EQ(edit.Text(), "one two");
    screen->DoubleClick(*window, 18, 20);
    screen->Type(*window, "x");
    EXPECT_EQ(edit.Text(), "x two");
    Key(MKey::Enter);
    screen->MoveMouse(*window, 1, 1);
    EXPECT_THAT(Taken(), ElementsAre("done 2", "text", "done 1"));
    screen->SetClipboardText(MString(std::u16string(3000000, u'y')));
    Key('A', ModifierCtrl);
    Key('V', ModifierCtrl);
    EXPECT_EQ(edit.Text().Length(), 1 << 20) << "as much as a field takes";
    screen->Look(*window);
    const IntegerFilter digits;
    edit.SetFilter(digits);
    edit.SetText("");
    screen->Type(*window, "1a2b3");
    EXPECT_EQ(edit.Text(), "123");
    edit.readOnly = true;
    screen->Type(*window, "4");
    Key(MKey::Backspace);
    EXPECT_EQ(edit.Text(), "123");
    screen->SetClipboardText("before");
    Key('A', ModifierCtrl);
    Key('X', ModifierCtrl);
    EXPECT_EQ(screen->GetClipboardText(), "123");
}

TEST_F(Widgets, ListsChooseScrollAndSearch)
{
    auto& list = Add<MListBox>(MRectangle::OfSize(10, 10, 200, 120));
    list.OnSelect().AddHandler<&Widgets::OnItem>(*this, {}, 0);
    list.OnActivate().AddHandler<&Widgets::OnItem>(*this, {}, 1);
    list.OnContext().AddHandler<&Widgets::OnItem>(*this, {}, 2);
    std::vector<MListItem> items(50);
    for (std::size_t i = 0; i < items.size(); ++i)
        items[i].text = MString(((i % 2 == 0 ? "even " : "odd ") + std::to_string(i)).c_str());
    items[3].enabled = false;
    list.SetItems(items);
    screen->Look(*window);
    list.SetFocus();
    Key(MKey::Home);
    Key(MKey::Down);
    Key(MKey::Down);
    Key(MKey::Down);
    EXPECT_EQ(list.Current(), 4) << "over what can't be chosen";
    Key(MKey::Enter);
    EXPECT_THAT(Taken(), ElementsAre("select 0", "select 1", "select 2", "select 4", "activate 4"));
    Key(MKey::End);
    EXPECT_EQ(list.Current(), 49);
    Key(MKey::PageUp);
    EXPECT_LT(list.Current(), 49);
    screen->Type(*window, "odd 2");
    EXPECT_EQ(list.Current(), 21);
    screen->PassTime(2000);
    screen->Type(*window, "even 12");
    EXPECT_EQ(list.Current(), 12);
    list.multiple = true;
    Key(MKey::Down, ModifierShift);
    Key(MKey::Down, ModifierShift);
    Key(MKey::Up, ModifierShift);
    const auto selected = [&list]
    {
        std::vector<int> rows;
        for (std::int32_t i = 0; i < list.Count(); ++i)
            if (list.Items()[static_cast<std::size_t>(i)].selected)
                rows.push_back(i);
        return rows;
    };
    EXPECT_THAT(selected(), ElementsAre(12, 13));
    Key('A', ModifierCtrl);
    EXPECT_EQ(selected().size(), 49u);
    items.resize(5);
    list.SetItems(items);
    EXPECT_EQ(list.Current(), 4);
    list.SetItems({});
    list.emptyText = "Nothing";
    screen->Look(*window);
    Key(MKey::Down);
    Key(MKey::End);
    EXPECT_EQ(list.Current(), -1);
}

TEST_F(Widgets, TabsShowOnePageAndSplittersMoveWhatIsFree)
{
    auto& tabs = Add<MTabSet>(MRectangle::OfSize(0, 0, 300, 120));
    for (const char* name : { "First", "Second", "Third" })
        tabs.Make<MButton>().caption = MString::Literal(name);
    tabs.OnPage().AddHandler<&Widgets::OnItem>(*this, {}, 3);
    tabs.SetPage(0);
    window->Relayout();
    screen->Click(*window, 60, 10);
    EXPECT_EQ(tabs.Page(), 1);
    EXPECT_TRUE(tabs.Children()[1]->IsVisible());
    EXPECT_FALSE(tabs.Children()[0]->IsVisible());
    EXPECT_EQ(tabs.Children()[1]->AbsoluteRectangle(), MRectangle::OfSize(0, 28, 300, 92));
    tabs.Children()[2]->SetEnabled(false);
    Key(MKey::Right);
    EXPECT_EQ(tabs.Page(), 1);
    Key(MKey::Left);
    EXPECT_EQ(tabs.Page(), 0);
    EXPECT_THAT(Taken(), ElementsAre("page 1", "page 0"));

    auto& row = Add<MControl>(MRectangle::OfSize(0, 150, 300, 40));
    MLayout& layout = row.MakeLayout<MLayoutHorizontal>();
    const auto share = [&](std::int32_t ratio) -> MControl&
    {
        MControl& made = row.Make<MControl>();
        made.layout.x.ratio = made.layout.y.ratio = ratio;
        made.SetMinimalClientSize({ 50, 10 });
        layout.AddControl(made);
        return made;
    };
    MControl& left = share(1);
    auto& splitter = row.Make<MSplitter>();
    splitter.layout.y.ratio = 1;
    splitter.SetSize(5, 40);
    layout.AddControl(splitter);
    MControl& right = share(1);
    window->Relayout();
    const std::int32_t both = left.Width() + right.Width();
    screen->PressMouse(*window, splitter.AbsoluteX() + 2, 160);
    for (const std::int32_t way : { 30, -60, 500 })
    {
        const std::int32_t before = left.Width();
        screen->MoveMouse(*window, splitter.AbsoluteX() + 2 + way, 160);
        EXPECT_EQ(left.Width() + right.Width(), both);
        EXPECT_EQ(left.Width(), std::clamp(before + way, 50, both - 50));
    }
    screen->ReleaseMouse(*window, splitter.AbsoluteX() + 2, 160);
}

TEST_F(Widgets, MetersFallHoldAndRememberClips)
{
    auto& meter = Add<MLevelMeter>(MRectangle::OfSize(0, 0, 96, 10));
    const auto lit = [&](std::int32_t x)
    {
        const MColor color = screen->Look(*window).Pixel(x, 1);
        const PlainStyle style;
        return color != style.GetColor(static_cast<std::int32_t>(MStdColor::MeterTrack));
    };
    meter.SetLevels({ 0.25f, 0 }, 1000);   // -12 dB: three quarters
    EXPECT_TRUE(lit(70));
    EXPECT_FALSE(lit(75));
    meter.SetLevels({ 0, 0 }, 1500);   // 12 dB lower: half
    EXPECT_TRUE(lit(45));
    EXPECT_FALSE(lit(50));
    EXPECT_TRUE(lit(71)) << "the mark stays";
    meter.SetLevels({ 0, 0 }, 2600);
    EXPECT_FALSE(lit(71));
    EXPECT_FALSE(meter.HasClipped());
    meter.SetLevels({ 1.01f, 0 }, 3000);
    meter.SetLevels({ 0, 0 }, 9000);
    EXPECT_TRUE(meter.HasClipped());
    EXPECT_TRUE(lit(95));
    screen->Click(*window, 5, 5);
    EXPECT_FALSE(meter.HasClipped());
    screen->TakePaintedPixels();
    meter.SetLevels({ 0, 0 }, 9100);
    EXPECT_EQ(screen->TakePaintedPixels(), 0) << "nothing moves";
}
