// SPDX-License-Identifier: GPL-3.0-or-later
// The windows that any program needs, as a user answers them.
#include <cmath>
#include <limits>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/text/MException.h"
#include "gui/widgets/MProgressBar.h"
#include "gui/widgets/MStatic.h"
#include "gui/windows/MHelpWindow.h"
#include "gui/windows/MMessageWindow.h"
#include "gui/windows/MProgressWindow.h"
#include "gui/windows/MTextInputWindow.h"
#include "gui/windows/OwnedWindow.h"
#include "tests/ErrorOf.h"
#include "tests/gui/windows/WindowsFixture.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(Windows, QuestionsAreAnsweredByMouseAndKeysAndBlockTheirOwner)
{
    const auto keys = [this](std::vector<std::int32_t> each)
    {
        return [this, each]
        {
            for (const std::int32_t key : each)
                TopKey(key);
        };
    };
    const auto press = [this](const char* caption)
    {
        return [this, caption]
        {
            Press(caption);
        };
    };
    using Kind = MMessageWindow::Kind;
    const struct
    {
        Kind kind;
        std::function<void()> act;
        MModalValue answer;
    } cases[] = {
        { Kind::Question, press("Yes"), MModalValue::Yes },
        { Kind::Question, press("No"), MModalValue::No },
        { Kind::Question, keys({ MKey::Enter }), MModalValue::Yes },
        { Kind::Question, keys({ MKey::Tab, MKey::Tab, MKey::Space }), MModalValue::No },
        { Kind::Question, keys({ MKey::Tab, MKey::Right, MKey::Enter }), MModalValue::No },
        { Kind::Question, keys({ MKey::Escape }), MModalValue::None },
        { Kind::Question, press(""), MModalValue::Close },
        { Kind::Question, [this] { Top().CloseMessage(); }, MModalValue::None },
        { Kind::Information, keys({ MKey::Enter }), MModalValue::Ok },
        { Kind::Information, press("OK"), MModalValue::Ok },
        { Kind::Error, keys({ MKey::Enter }), MModalValue::Close },
        { Kind::Error, press("Close"), MModalValue::Close },
    };
    auto& behind = Add<MButton>(MRectangle::OfSize(0, 0, 60, 22));
    behind.Clicks().OnLeftClick().AddHandler<&Windows::OnClick>(*this);
    for (const auto& [kind, act, answer] : cases)
    {
        SCOPED_TRACE(static_cast<int>(&answer - &cases[0].answer));
        std::vector<MModalValue> answers;
        MMessageWindow::Show(*window, kind, "Title", "Some <b>text</b> that says a lot about what happened.",
                             [&](MModalValue given) { answers.push_back(given); });
        ASSERT_EQ(OpenCount(), 2u);
        EXPECT_EQ(window->BlockedBy(), &Top());
        screen->Look(Top());
        screen->Click(*window, 10, 10);
        EXPECT_FALSE(screen->Key(*window, MKey::Space));
        EXPECT_THAT(Taken(), IsEmpty());
        act();
        Settle();
        EXPECT_THAT(answers, ElementsAre(answer));
        EXPECT_EQ(OpenCount(), 1u);
        EXPECT_EQ(screen->WindowCount(), 1);
        screen->Click(*window, 10, 10);
        EXPECT_THAT(Taken(), ElementsAre("click"));
    }
}

TEST_F(Windows, LongTextsMakeMessagesHigherAndNeverWider)
{
    std::int32_t last = 0;
    constexpr std::int32_t width = 288;
    for (int words = 1; words < 200; words += 33)
    {
        MString text;
        for (int i = 0; i < words; ++i)
            text += "sounding ";
        MMessageWindow::Show(*window, MMessageWindow::Kind::Error, "Error", text);
        EXPECT_EQ(Top().Width(), width);
        EXPECT_GE(Top().Height(), last);
        // Above the buttons, inside of the window.
        const MRectangle shown = TheOne<MStaticMultiLine>(Top()).AbsoluteRectangle();
        EXPECT_LE(shown.bottom, Button(Top(), "Close")->AbsoluteY());
        EXPECT_LE(shown.right, width);
        last = Top().Height();
        Press("Close");
    }
    EXPECT_GT(last, 300);
}

namespace
{
struct Counted : MDialog
{
    Counted(int& alive, bool fails) : MDialog("Counted"), count(alive), throws(fails)
    {
        ++count;
        AddButton("OK", MModalValue::Ok);
    }
    ~Counted() override { --count; }
    void Realize() override
    {
        if (throws)
            throw MException("No window today.");
        MDialog::Realize();
    }

    int& count;
    bool throws;
};
}   // namespace

TEST_F(Windows, OwnedWindowsAreDeletedWhenTheyCloseOrCannotOpen)
{
    int alive = 0;
    std::vector<std::int32_t> results;
    const auto open = [&](bool fails)
    {
        OwnedWindow::Open(std::make_unique<Counted>(alive, fails), *window,
                          [&](MWindow& closed, std::int32_t result)
                          {
                              EXPECT_FALSE(closed.IsOpen());
                              EXPECT_EQ(alive, 1) << "it can be asked";
                              results.push_back(result);
                          });
    };
    open(false);
    Press("OK");
    EXPECT_EQ(alive, 0);
    open(false);
    TopKey(MKey::Escape);
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(ErrorOf([&] { open(true); }), "No window today.");
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(OpenCount(), 1u);
    // Closing what is below closes it, too.
    open(false);
    window->Close();
    Settle();
    EXPECT_EQ(alive, 0);
    EXPECT_THAT(results, ElementsAre(static_cast<std::int32_t>(MModalValue::Ok), 0, 0));
}

TEST_F(Windows, ProgressIsLimitedAndCancelOnlyAsks)
{
    const std::pair<double, const char*> shares[] = {
        { 0, "0%" },   { 0.629, "62%" }, { 1, "100%" },
        { 7, "100%" }, { -3, "0%" },     { std::numeric_limits<double>::quiet_NaN(), "0%" }
    };
    const std::function<void()> ways[] = { [this] { Press("Cancel"); }, [this] { TopKey(MKey::Escape); },
                                           [this] { TopKey(MKey::Enter); }, [this] { Press(""); },
                                           [this]
                                           {
                                               Top().CloseMessage();
                                           } };
    for (const auto& way : ways)
    {
        MProgressWindow progress("Analysing...");
        progress.OpenModal(window.get());
        for (const auto& [share, text] : shares)
        {
            progress.SetProgress("Reading", share);
            EXPECT_NE(FindControl<MStatic>(progress, [shown = text](const MStatic& each)
                                           { return each.caption == shown; }),
                      nullptr)
                << share;
        }
        progress.SetTitle("Saving...");
        EXPECT_EQ(screen->TitleOf(progress), "Saving...");
        EXPECT_FALSE(progress.IsCancelled());
        way();
        EXPECT_TRUE(progress.IsCancelled());
        EXPECT_TRUE(progress.IsOpen()) << "until whoever works is done";
        MButton* button = Button(progress, "Finishing...");
        ASSERT_NE(button, nullptr);
        EXPECT_FALSE(button->IsEnabled());
        TopKey(MKey::Escape);
        EXPECT_TRUE(progress.IsOpen());
        progress.EndModal(1);
        EXPECT_EQ(window->BlockedBy(), nullptr);
    }
}

TEST_F(Windows, TextsAreAskedForAndCheckedBeforeTheyAreTaken)
{
    std::vector<std::string> answers;
    const auto ask = [&]
    {
        MTextInputWindow::Ask(
            *window, "New folder", "Name of the folder:", "Vocals",
            [&](const MString& text) { answers.push_back(text.ToUTF8()); },
            [](const MString& text) { return text.Find(u'/') >= 0 ? MString("No slashes.") : MString(); });
    };
    const auto complaint = [&](const char* text)
    {
        return FindControl<MStatic>(Top(), [text](const MStatic& each) { return each.caption == text; });
    };
    ask();
    TopKey(MKey::Enter);
    EXPECT_THAT(answers, ElementsAre("Vocals")) << "as suggested";
    answers.clear();
    ask();
    screen->Type(Top(), "a/b");
    TopKey(MKey::Enter);
    ASSERT_EQ(OpenCount(), 2u);
    EXPECT_NE(complaint("No slashes."), nullptr);
    Press("OK");
    ASSERT_EQ(OpenCount(), 2u);
    TopKey(MKey::Home);
    TopKey(MKey::Right);
    TopKey(MKey::Delete);
    Press("OK");
    EXPECT_THAT(answers, ElementsAre("ab"));
    EXPECT_EQ(OpenCount(), 1u);
    for (const bool byKey : { false, true })
    {
        ask();
        screen->Type(Top(), "a/b");
        if (byKey)
        {
            TopKey(MKey::Tab);
            TopKey(MKey::Escape);
        }
        else
            Press("Cancel");
        EXPECT_EQ(OpenCount(), 1u);
    }
    EXPECT_EQ(answers.size(), 1u);
}

namespace
{
class Told : public Windows
{
protected:
    Told()
    {
        told = std::make_unique<MStandardWindow>();
        told->SetSize(300, 200);
        usual = &Place("usual", 10);
        disabled = &Place("disabled", 60);
        disabled->SetEnabled(false);
        silent = &Place("silent", 110);
        silent->help = {};
        told->Open(MWindowSystem::Kind::Normal);
    }
    ~Told() override { told.reset(); }

    MButton& Place(const char* name, std::int32_t y)
    {
        auto& made = told->Make<MButton>();
        made.caption = MString::Literal(name);
        made.help = "What it does, in a <b>sentence</b> or two.";
        made.SetPosition(10, y);
        made.SetSize(100, 22);
        return made;
    }
    void Point(const MButton& at) { screen->MoveMouse(*told, at.X() + 20, at.Y() + 5); }

    std::unique_ptr<MStandardWindow> told;
    MButton* usual = nullptr;
    MButton* disabled = nullptr;
    MButton* silent = nullptr;
};
}   // namespace

TEST_F(Told, TooltipsComeAfterARestAndGoWithThePointerAndAnyPress)
{
    const std::function<void()> ends[] = {
        [this] { screen->PressMouse(*told, 20, 15), screen->ReleaseMouse(*told, 20, 15); },
        [this] { screen->Wheel(*told, 20, 15, 120); },
        [this] { screen->Key(*told, MKey::Tab); },
        [this] { Point(*silent); },
        [this] { told->LeaveMessage(); },
    };
    for (const MButton* at : { usual, disabled })
        for (const auto& end : ends)
        {
            SCOPED_TRACE(&end - ends);
            told->LeaveMessage();
            Point(*at);
            screen->PassTime(MStandardWindow::TooltipMilliseconds - 1);
            EXPECT_FALSE(told->IsTooltipShown());
            screen->PassTime(1);
            ASSERT_TRUE(told->IsTooltipShown());
            screen->PassTime(60000);
            EXPECT_TRUE(told->IsTooltipShown()) << "while it rests";
            end();
            EXPECT_FALSE(told->IsTooltipShown());
        }
    Point(*silent);
    screen->PassTime(5000);
    EXPECT_FALSE(told->IsTooltipShown());
    // Each move begins the rest anew.
    told->LeaveMessage();
    for (int i = 0; i < 10; ++i)
    {
        screen->MoveMouse(*told, 20 + i, 15);
        screen->PassTime(MStandardWindow::TooltipMilliseconds - 100);
        EXPECT_FALSE(told->IsTooltipShown());
    }
}

TEST_F(Told, TooltipsStayOnTheScreenAndBesideWhatTheyTellOf)
{
    const MRectangle area = screen->GetWorkArea(0, 0);
    for (const std::int32_t x : { -5, 800, 1900 })
        for (const std::int32_t y : { 0, 500, 1040 })
        {
            SCOPED_TRACE(testing::Message() << x << ", " << y);
            screen->MoveTo(*told, x, y);
            told->LeaveMessage();
            Point(*usual);
            screen->PassTime(MStandardWindow::TooltipMilliseconds);
            ASSERT_TRUE(told->IsTooltipShown());
            const MRectangle tip = screen->GetScreenRect(Top());
            const MRectangle button = usual->AbsoluteRectangle().Moved(x, y);
            EXPECT_TRUE(tip.Intersection(button).IsEmpty());
            EXPECT_EQ(tip.Intersection(area), tip);
            EXPECT_LE(tip.Width(), 280);
        }
}

TEST_F(Told, HelpOpensForWhatHasTheKeyboardAndScrollsToBothEnds)
{
    MString lines;
    for (int i = 0; i < 200; ++i)
        lines += "A line of help.<p>";
    usual->help = lines;
    usual->SetFocus();
    screen->Key(*told, MKey::F1);
    ASSERT_EQ(OpenCount(), 3u);
    auto& help = dynamic_cast<MHelpWindow&>(Top());
    EXPECT_EQ(help.caption, "usual");
    MControl& view = *help.Content().Children().front();
    const MControl& text = *view.Children().front();
    const auto first = [&view]
    {
        return -view.ScrollY();
    };
    const std::function<void()> ways[] = { [this] { TopKey(MKey::End); },
                                           [this] { TopKey(MKey::Up); },
                                           [this] { TopKey(MKey::PageUp); },
                                           [this] { TopKey(MKey::Home); },
                                           [this] { TopKey(MKey::Down); },
                                           [this] { TopKey(MKey::PageDown); },
                                           [&] { screen->Wheel(help, 50, 100, -120); },
                                           [&]
                                           {
                                               screen->Wheel(help, 50, 100, 120000);
                                           } };
    const int directions[] = { 1, -1, -1, -1, 1, 1, 1, -1 };
    for (std::size_t i = 0; i < std::size(ways); ++i)
    {
        const std::int32_t before = first();
        ways[i]();
        EXPECT_GT((first() - before) * directions[i], 0) << i;
        EXPECT_GE(first(), 0);
        EXPECT_LE(first(), text.Height() - view.Height());
    }
    EXPECT_EQ(first(), 0);
    TopKey(MKey::End);
    EXPECT_EQ(first(), text.Height() - view.Height());
    // Larger, it never shows emptiness below the end.
    screen->Resize(help, 500, 600);
    EXPECT_EQ(first(), text.Height() - view.Height());
    TopKey(MKey::Escape);
    EXPECT_EQ(OpenCount(), 2u);
    silent->SetFocus();
    screen->Key(*told, MKey::F1);
    EXPECT_EQ(OpenCount(), 2u) << "nothing to tell";
}
