// SPDX-License-Identifier: GPL-3.0-or-later
// What programs copy to each other and drag over each other's windows.
#include <random>

#include "foundation/text/PathText.h"
#include "gui/platform/SelectionText.h"
#include "gui/platform/UriList.h"
#include "tests/gui/platform/OnScreen.h"

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

namespace
{
// Another program that offers a selection, by the book: small data at once, large ones in pieces.
class Owner
{
public:
    Owner(XClient& client, xcb_window_t ownWindow, const std::string& selection)
        : x(client), window(ownWindow)
    {
        xcb_set_selection_owner(x.Connection(), window, x.Atom(selection), XCB_CURRENT_TIME);
        x.Sync();
    }
    void Offer(const std::string& type, std::string bytes) { offered[x.Atom(type)] = std::move(bytes); }
    /// Answers what has come.
    void Work()
    {
        while (const auto request = x.Take<xcb_selection_request_event_t>(XCB_SELECTION_REQUEST))
            Answer(*request);
        while (const auto taken = x.Take<xcb_property_notify_event_t>(
                   XCB_PROPERTY_NOTIFY, [this](const xcb_property_notify_event_t& event)
                   { return event.window == receiver && event.state == XCB_PROPERTY_DELETE; }))
            if (!left.empty() || !ended)
                Continue(taken->atom);
        x.Sync();
    }

    bool isSilent = false;
    bool neverEnds = false;
    std::size_t pieceBytes = 100000;

private:
    void Answer(const xcb_selection_request_event_t& request)
    {
        if (isSilent)
            return;
        xcb_selection_notify_event_t answer{};
        answer.response_type = XCB_SELECTION_NOTIFY;
        answer.requestor = request.requestor;
        answer.selection = request.selection;
        answer.target = request.target;
        answer.time = request.time;
        const auto found = offered.find(request.target);
        if (found != offered.end())
        {
            answer.property = request.property;
            if (found->second.size() > pieceBytes)
            {
                receiver = request.requestor;
                target = request.target;
                left = found->second;
                ended = false;
                const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
                xcb_change_window_attributes(x.Connection(), receiver, XCB_CW_EVENT_MASK, &events);
                const std::uint32_t size = 0xFFFFFFFF;   // nobody should believe it
                xcb_change_property(x.Connection(), XCB_PROP_MODE_REPLACE, receiver, request.property,
                                    x.Atom("INCR"), 32, 1, &size);
            }
            else
                Put(request.requestor, request.property, request.target, found->second);
        }
        xcb_send_event(x.Connection(), 0, request.requestor, 0, reinterpret_cast<const char*>(&answer));
    }
    void Continue(xcb_atom_t property)
    {
        const std::string piece = left.substr(0, pieceBytes);
        if (!neverEnds)
            left.erase(0, piece.size());
        ended = piece.empty();
        Put(receiver, property, target, piece);
    }
    void Put(xcb_window_t to, xcb_atom_t property, xcb_atom_t type, const std::string& bytes)
    {
        xcb_change_property(x.Connection(), XCB_PROP_MODE_REPLACE, to, property, type, 8,
                            static_cast<std::uint32_t>(bytes.size()), bytes.data());
    }

    XClient& x;
    xcb_window_t window;
    std::map<xcb_atom_t, std::string> offered;
    xcb_window_t receiver = XCB_NONE;
    xcb_atom_t target = XCB_NONE;
    std::string left;
    bool ended = true;
};

// Reads a selection of ours as another program does.
class Reader
{
public:
    Reader(XClient& client, xcb_window_t ownWindow) : x(client), window(ownWindow) {}

    void Ask(const std::string& selection, const std::string& target)
    {
        isDone = false;
        bytes.clear();
        x.Events().clear();
        xcb_convert_selection(x.Connection(), window, x.Atom(selection), x.Atom(target), x.Atom("MINE"),
                              XCB_CURRENT_TIME);
        x.Sync();
    }
    void Work()
    {
        if (const auto answer = x.Take<xcb_selection_notify_event_t>(XCB_SELECTION_NOTIFY))
        {
            wasRefused = answer->property == XCB_NONE;
            xcb_atom_t type = XCB_NONE;
            bytes = wasRefused ? "" : x.Property(window, answer->property, true, &type);
            inPieces = type == x.Atom("INCR");
            isDone = !inPieces;
            if (inPieces)
                bytes.clear();
        }
        while (const auto told =
                   x.Take<xcb_property_notify_event_t>(XCB_PROPERTY_NOTIFY,
                                                       [this](const xcb_property_notify_event_t& event) {
                                                           return inPieces && event.atom == x.Atom("MINE") &&
                                                                  event.state == XCB_PROPERTY_NEW_VALUE;
                                                       }))
        {
            xcb_atom_t type = XCB_NONE;
            const std::string piece = x.Property(window, x.Atom("MINE"), true, &type);
            if (type == XCB_NONE)
                continue;
            ++pieceCount;
            bytes += piece;
            isDone = piece.empty();
            inPieces = !isDone;
        }
    }

    std::string bytes;
    int pieceCount = 0;
    bool isDone = false;
    bool wasRefused = false;

private:
    XClient& x;
    xcb_window_t window;
    bool inPieces = false;
};

class Exchange : public OnScreen
{
protected:
    void SetUp() override
    {
        OnScreen::SetUp();
        window = OpenWindow(MRectangle::OfSize(100, 100, 300, 200));
        otherWindow = user->MakeWindow(MRectangle::OfSize(600, 100, 300, 200));
        log.clear();
    }
    void TearDown() override
    {
        window.reset();
        OnScreen::TearDown();
    }
    /// Pastes while the other program works, on a thread of its own as programs do.
    std::string Paste(const std::function<void()>& otherProgram)
    {
        std::atomic<bool> ends{ false };
        std::thread thread(
            [&]
            {
                while (!ends)
                {
                    otherProgram();
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                }
            });
        const std::string text = system->GetClipboardText().ToUTF8();
        ends = true;
        thread.join();
        return text;
    }
    // The source's side of dragging.
    void Enter(const std::vector<std::string>& types, std::uint32_t version = 5)
    {
        std::vector<std::uint32_t> atoms;
        for (const std::string& type : types)
            atoms.push_back(user->Atom(type));
        user->SetProperty(otherWindow, "XdndTypeList", XCB_ATOM_ATOM, 32, XClient::Bytes(atoms));
        const std::uint32_t many = types.size() > 3 ? 1 : 0;
        atoms.resize(3);
        user->Send(IdOf(*window), "XdndEnter",
                   { otherWindow, version << 24 | many, atoms[0], atoms[1], atoms[2] });
    }
    /// Whether it would be taken there.
    bool Over(std::uint32_t x, std::uint32_t y)
    {
        user->Events().clear();
        user->Send(IdOf(*window), "XdndPosition",
                   { otherWindow, 0, x << 16 | y, 0, user->Atom("XdndActionCopy") });
        Settle();
        const auto status = user->Take<xcb_client_message_event_t>(
            XCB_CLIENT_MESSAGE,
            [&](const xcb_client_message_event_t& event) { return event.type == user->Atom("XdndStatus"); });
        EXPECT_NE(status, nullptr);
        return status && status->data.data32[0] == IdOf(*window) && (status->data.data32[1] & 1) != 0;
    }
    /// Whether the target says that it took it.
    bool Drop(Owner& owner)
    {
        user->Send(IdOf(*window), "XdndDrop", { otherWindow, 0, 0 });
        bool took = false;
        const bool told = Until(
            [&]
            {
                owner.Work();
                const auto finished = user->Take<xcb_client_message_event_t>(
                    XCB_CLIENT_MESSAGE, [&](const xcb_client_message_event_t& event)
                    { return event.type == user->Atom("XdndFinished"); });
                took = finished && (finished->data.data32[1] & 1) != 0;
                return finished != nullptr;
            });
        return told && took;
    }

    std::unique_ptr<PadWindow> window;
    xcb_window_t otherWindow = XCB_NONE;
};

std::string LongText(std::size_t bytes)
{
    std::mt19937 numbers(8);
    std::string text;
    while (text.size() < bytes)
        text += numbers() % 9 == 0 ? "ä€\n" : "word ";
    return text;
}
}   // namespace

TEST_F(Exchange, PastesWhatOtherProgramsCopiedHoweverLargeTheyHandIt)
{
    EXPECT_EQ(system->GetClipboardText().ToUTF8(), "") << "nobody has copied anything";
    const std::string large = LongText(1 << 20);
    for (const std::string& text : { std::string("kurz ä€😀"), large })
    {
        Owner owner(*user, otherWindow, "CLIPBOARD");
        owner.Offer("UTF8_STRING", text);
        EXPECT_EQ(Paste([&] { owner.Work(); }), text);
    }
    {
        Owner old(*user, otherWindow, "CLIPBOARD");
        old.Offer("STRING", "gr\xFC\xDF\r\ndich");
        EXPECT_EQ(Paste([&] { old.Work(); }), "grüß\ndich") << "older programs know Latin-1 only";
    }
    // Who doesn't answer, or never comes to an end, costs a moment and no more.
    Owner owner(*user, otherWindow, "CLIPBOARD");
    owner.isSilent = true;
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(Paste([&] { owner.Work(); }), "");
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(1500));
    owner.isSilent = false;
    owner.neverEnds = true;
    owner.pieceBytes = 3 << 20;
    owner.Offer("UTF8_STRING", LongText(4 << 20));
    EXPECT_EQ(Paste([&] { owner.Work(); }), "");
    // What came too late isn't taken for something else.
    xcb_set_selection_owner(user->Connection(), XCB_NONE, user->Atom("CLIPBOARD"), XCB_CURRENT_TIME);
    Owner selected(*user, otherWindow, "PRIMARY");
    selected.Offer("UTF8_STRING", "selected");
    EXPECT_EQ(Paste([&] { selected.Work(); }), "selected") << "nothing copied: what is selected";
}

TEST_F(Exchange, HandsOutWhatWasCopiedHereInEveryFormAndInPieces)
{
    Reader reader(*user, otherWindow);
    const auto read = [&](const std::string& selection, const std::string& target)
    {
        reader.Ask(selection, target);
        EXPECT_TRUE(Until(
            [&]
            {
                reader.Work();
                return reader.isDone;
            }));
        return reader.bytes;
    };
    for (const std::string& text : { std::string("kurz äß"), LongText(1 << 20) })
    {
        system->SetClipboardText(MString::FromUTF8(text));
        EXPECT_EQ(system->GetClipboardText().ToUTF8(), text) << "to itself";
        for (const char* selection : { "CLIPBOARD", "PRIMARY" })
            for (const char* target : { "UTF8_STRING", "text/plain;charset=utf-8" })
            {
                reader.pieceCount = 0;
                EXPECT_TRUE(read(selection, target) == text) << selection << " " << target;
                EXPECT_EQ(reader.pieceCount > 2, text.size() > 1000);
                Settle();
                xcb_atom_t type = XCB_NONE;
                user->Property(otherWindow, user->Atom("MINE"), false, &type);
                EXPECT_EQ(type, xcb_atom_t{ XCB_NONE }) << "the end is told once";
            }
    }
    system->SetClipboardText(MString::FromUTF8("ä€"));
    EXPECT_EQ(read("CLIPBOARD", "STRING"), "\xE4?");
    EXPECT_EQ(read("CLIPBOARD", "TARGETS").size() % 4, 0U);
    EXPECT_THAT(reader.bytes.size(), ::testing::Ge(7 * 4U));
    read("CLIPBOARD", "image/png");
    EXPECT_TRUE(reader.wasRefused);
    // Several at once, one of which can't be had.
    user->SetProperty(otherWindow, "MINE", user->Atom("ATOM_PAIR"), 32,
                      XClient::Bytes({ user->Atom("UTF8_STRING"), user->Atom("FIRST"),
                                       user->Atom("image/png"), user->Atom("SECOND") }));
    read("CLIPBOARD", "MULTIPLE");
    EXPECT_EQ(user->Property(otherWindow, user->Atom("FIRST")), "ä€");
    EXPECT_EQ(reader.bytes.substr(12), std::string(4, '\0'));

    // Another program copies; then one that reads from it gives up in the middle.
    Owner owner(*user, otherWindow, "CLIPBOARD");
    owner.Offer("UTF8_STRING", "theirs");
    Settle();
    EXPECT_EQ(Paste([&] { owner.Work(); }), "theirs");
    system->SetClipboardText(MString::FromUTF8(LongText(1 << 20)));
    const xcb_window_t leaving = user->MakeWindow(MRectangle::OfSize(0, 0, 10, 10));
    Reader impatient(*user, leaving);
    impatient.Ask("CLIPBOARD", "UTF8_STRING");
    xcb_destroy_window(user->Connection(), leaving);
    Settle();
    EXPECT_EQ(read("CLIPBOARD", "UTF8_STRING").size(), system->GetClipboardText().ToUTF8().size());
}

TEST_F(Exchange, KeepsWhatWasCopiedWithADesktopThatSavesIt)
{
    xcb_set_selection_owner(user->Connection(), otherWindow, user->Atom("CLIPBOARD_MANAGER"),
                            XCB_CURRENT_TIME);
    user->Sync();
    system->SetClipboardText("worth keeping");
    std::string saved;
    std::atomic<bool> ends{ false };
    std::thread manager(
        [&]
        {
            Reader reader(*user, otherWindow);
            auto request = XClient::Own<xcb_selection_request_event_t>(nullptr);
            while (!ends && !reader.isDone)
            {
                if (!request)
                {
                    request = user->Take<xcb_selection_request_event_t>(XCB_SELECTION_REQUEST);
                    if (request)
                        reader.Ask("CLIPBOARD", "UTF8_STRING");
                }
                reader.Work();
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
            saved = reader.bytes;
            xcb_selection_notify_event_t done{};
            done.response_type = XCB_SELECTION_NOTIFY;
            done.requestor = request ? request->requestor : 0;
            done.selection = user->Atom("CLIPBOARD_MANAGER");
            done.target = user->Atom("SAVE_TARGETS");
            xcb_send_event(user->Connection(), 0, done.requestor, 0, reinterpret_cast<const char*>(&done));
            user->Sync();
        });
    const auto before = std::chrono::steady_clock::now();
    window->Close();
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(900));
    ends = true;
    manager.join();
    EXPECT_EQ(saved, "worth keeping");
    const auto second = std::chrono::steady_clock::now();
    windows.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - second, std::chrono::milliseconds(500)) << "once is enough";
}

TEST_F(Exchange, TakesAHundredDroppedFilesWithEveryByteOfTheirNames)
{
    std::mt19937 numbers(9);
    std::vector<MString> files;
    std::vector<std::string> names;
    for (int i = 0; i < 100; ++i)
    {
        std::string name = "/folder/" + std::to_string(i) + " ";
        for (int n = 0; n < 20; ++n)
            name += static_cast<char>(1 + numbers() % 255);
        names.push_back(name);
        files.push_back(PathText(name));
    }
    // Not what the room itself would write: lower case, with a machine's name, and lines that mean nothing.
    std::string list = "# a comment\r\nhttp://example.org/file\r\nfile://elsewhere/file\r\nfile:\n";
    for (const std::string& name : names)
    {
        list += numbers() % 2 == 0 ? "file://localhost" : "file://";
        for (const char byte : name)
        {
            char code[4];
            std::snprintf(code, sizeof(code), "%%%02x", static_cast<unsigned char>(byte));
            list += std::isalnum(static_cast<unsigned char>(byte)) != 0 || byte == '/' ? std::string(1, byte)
                                                                                       : std::string(code);
        }
        list += "\r\n";
    }
    list += "file:///zero%00byte\r\n";

    window->pad.acceptsFiles = true;
    Owner owner(*user, otherWindow, "XdndSelection");
    owner.Offer("text/uri-list", list);
    for (const std::size_t pieceBytes : { std::size_t{ 1 } << 20, std::size_t{ 999 } })
    {
        SCOPED_TRACE(pieceBytes);
        owner.pieceBytes = pieceBytes;
        Enter({ "image/png", "text/html", "STRING", "text/uri-list" });
        EXPECT_TRUE(Over(150, 170));
        EXPECT_TRUE(Drop(owner));
        Settle();
        EXPECT_THAT(Taken(), ElementsAre("over", "away", "drop 50,70"));
        EXPECT_EQ(window->pad.dropped.size(), names.size());
        std::vector<std::string> got;
        for (const MString& file : window->pad.dropped)
            got.push_back(PathBytes(file));
        EXPECT_EQ(got, names);
    }

    // Terminals hand paths out as text; what isn't a file is refused.
    owner.pieceBytes = 1 << 20;
    owner.Offer("UTF8_STRING", "/tmp/a b\nfile:///tmp/c%20d\n");
    Enter({ "UTF8_STRING" });
    EXPECT_TRUE(Over(150, 170));
    EXPECT_TRUE(Drop(owner));
    Settle();
    EXPECT_EQ(window->pad.dropped, (std::vector<MString>{ "/tmp/a b", "/tmp/c d" }));
    owner.Offer("UTF8_STRING", "just words");
    Enter({ "UTF8_STRING" });
    EXPECT_TRUE(Over(150, 170));
    EXPECT_FALSE(Drop(owner));

    // A field takes the words, and leaves files alone.
    window->pad.acceptsFiles = false;
    window->pad.acceptsText = true;
    log.clear();
    Enter({ "text/uri-list", "UTF8_STRING" });
    EXPECT_TRUE(Over(150, 170));
    EXPECT_TRUE(Drop(owner));
    Settle();
    EXPECT_THAT(Taken(), ElementsAre("over", "away", "text just words"));
    Enter({ "text/uri-list" });
    EXPECT_FALSE(Over(150, 170));
    window->pad.acceptsText = false;
    window->pad.acceptsFiles = true;

    // Nothing to read it with, nobody who wants it, too old, gone again.
    Enter({ "image/png" });
    EXPECT_FALSE(Over(150, 170));
    EXPECT_FALSE(Drop(owner));
    window->pad.acceptsFiles = false;
    Enter({ "text/uri-list" });
    EXPECT_FALSE(Over(150, 170));
    window->pad.acceptsFiles = true;
    log.clear();
    EXPECT_TRUE(Over(150, 170));
    user->Send(IdOf(*window), "XdndLeave", { otherWindow, 0 });
    Settle();
    EXPECT_THAT(Taken(), ElementsAre("over", "away"));
    Enter({ "text/uri-list" }, 2);
    user->Send(IdOf(*window), "XdndPosition", { otherWindow, 0, 150 << 16 | 170, 0, 0 });
    Settle();
    EXPECT_THAT(Taken(), IsEmpty());
}

TEST_F(Exchange, DragsFilesOutIntoOtherProgramsAndItself)
{
    const std::vector<MString> files = { PathText("/tmp/one two"), PathText("/tmp/\xFF\xC3\xA4%") };
    window->pad.onEvent = [&](const MControlEvent& event)
    {
        if (event.code == MEventCode::LeftDown)
            system->StartDrag(*window, files, "as text");
    };
    // Into another window of its own.
    auto second = OpenWindow(MRectangle::OfSize(100, 500, 200, 150));
    second->pad.acceptsFiles = true;
    user->MoveTo(150, 150);
    user->Button(1, true);
    Settle();
    EXPECT_FALSE(window->pad.IsPressed()) << "the mouse is the drag's";
    user->MoveTo(160, 510);
    Settle();
    user->Button(1, false);
    Settle();
    EXPECT_EQ(second->pad.dropped, files);
    EXPECT_THAT(Taken(), AllOf(Contains("released"), Contains("over"), Contains("drop 60,10"),
                               Not(Contains("left up 60,10"))));

    // Into another program, inside of a window that knows nothing of it.
    const std::uint32_t version = 5;
    const xcb_window_t inner = xcb_generate_id(user->Connection());
    xcb_create_window(user->Connection(), XCB_COPY_FROM_PARENT, inner, otherWindow, 50, 50, 100, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(user->Connection(), inner);
    user->SetProperty(inner, "XdndAware", XCB_ATOM_ATOM, 32, XClient::Bytes({ version }));
    user->Events().clear();
    const auto told = [&](const std::string& name)
    {
        auto event = XClient::Own<xcb_client_message_event_t>(nullptr);
        EXPECT_TRUE(Until(
            [&]
            {
                event = user->Take<xcb_client_message_event_t>(XCB_CLIENT_MESSAGE,
                                                               [&](const xcb_client_message_event_t& each)
                                                               { return each.type == user->Atom(name); });
                return event != nullptr;
            }))
            << name;
        return event;
    };
    user->MoveTo(150, 150);
    user->Button(1, true);
    Settle();
    user->MoveTo(700, 200);
    const auto entered = told("XdndEnter");
    ASSERT_NE(entered, nullptr);
    EXPECT_EQ(entered->data.data32[1] >> 24, 5U);
    EXPECT_THAT(user->Values(IdOf(*window), "XdndTypeList"), Contains(user->Atom("text/uri-list")));
    const auto at = told("XdndPosition");
    ASSERT_NE(at, nullptr);
    EXPECT_EQ(at->data.data32[2], 700U << 16 | 200U);
    user->Send(IdOf(*window), "XdndStatus", { inner, 1, 0, 0, user->Atom("XdndActionCopy") });
    Settle();
    user->Button(1, false);
    ASSERT_NE(told("XdndDrop"), nullptr);
    Reader reader(*user, otherWindow);
    reader.Ask("XdndSelection", "text/uri-list");
    EXPECT_TRUE(Until(
        [&]
        {
            reader.Work();
            return reader.isDone;
        }));
    EXPECT_EQ(reader.bytes, "file:///tmp/one%20two\r\nfile:///tmp/%FF%C3%A4%25\r\n");
    user->Send(IdOf(*window), "XdndFinished", { inner, 1, user->Atom("XdndActionCopy") });
    Settle();
    reader.Ask("XdndSelection", "text/uri-list");
    EXPECT_TRUE(Until(
        [&]
        {
            reader.Work();
            return reader.isDone;
        }));
    EXPECT_TRUE(reader.wasRefused) << "it is over";

    // Let go over nothing, and taken back by the keyboard.
    user->MoveTo(150, 150);
    user->Button(1, true);
    Settle();
    user->MoveTo(700, 200);
    ASSERT_NE(told("XdndEnter"), nullptr);
    user->MoveTo(1200, 700);
    ASSERT_NE(told("XdndLeave"), nullptr);
    user->Button(1, false);
    Settle();
    second->pad.dropped.clear();
    user->MoveTo(150, 150);
    user->Button(1, true);
    Settle();
    user->MoveTo(160, 510);
    user->Focus(IdOf(*window));
    user->Type({ 9 });
    Settle();
    user->Button(1, false);
    Settle();
    EXPECT_THAT(second->pad.dropped, IsEmpty());
}

TEST_F(Exchange, BearsMessagesThatMakeNoSense)
{
    std::mt19937 numbers(10);
    window->pad.acceptsFiles = true;
    const std::vector<std::string> types = { "XdndEnter", "XdndPosition", "XdndStatus",
                                             "XdndLeave", "XdndDrop",     "XdndFinished",
                                             "_XEMBED",   "WM_PROTOCOLS", "INCR" };
    const std::vector<std::uint32_t> values = { 0,           1,
                                                0xFFFFFFFF,  IdOf(*window),
                                                otherWindow, user->Root(),
                                                0x05000001,  user->Atom("text/uri-list"),
                                                12345 };
    for (int i = 0; i < 3000; ++i)
    {
        std::vector<std::uint32_t> data;
        for (int n = 0; n < 5; ++n)
            data.push_back(values[numbers() % values.size()]);
        user->Send(IdOf(*window), types[numbers() % types.size()], data);
        xcb_selection_notify_event_t notify{};
        notify.response_type = XCB_SELECTION_NOTIFY;
        notify.requestor = IdOf(*window);
        notify.selection = user->Atom("XdndSelection");
        notify.target = user->Atom("text/uri-list");
        notify.property = values[numbers() % values.size()];
        xcb_send_event(user->Connection(), 0, IdOf(*window), 0, reinterpret_cast<const char*>(&notify));
        if (i % 20 == 0)
            system->ProcessPendingMessages();
    }
    Settle();
    EXPECT_TRUE(window->IsOpen());
    // And serves whoever keeps to the rules.
    Owner owner(*user, otherWindow, "XdndSelection");
    owner.Offer("text/uri-list", "file:///tmp/last\r\n");
    Enter({ "text/uri-list" });
    EXPECT_TRUE(Over(150, 170));
    EXPECT_TRUE(Drop(owner));
    Settle();
    EXPECT_EQ(window->pad.dropped, std::vector<MString>{ "/tmp/last" });
}

TEST(UriLists, GiveTheSameFilesAgainWhateverTheirBytes)
{
    std::mt19937 numbers(11);
    for (int round = 0; round < 200; ++round)
    {
        std::vector<MString> files;
        for (std::size_t i = 0; i < numbers() % 5; ++i)
        {
            std::string name = "/";
            for (std::size_t n = 0; n < numbers() % 300; ++n)
                name += static_cast<char>(1 + numbers() % 255);
            files.push_back(PathText(name));
        }
        const std::string list = UriListOf(files);
        for (const char byte : list)
            ASSERT_TRUE((byte > ' ' && byte < 0x7F) || byte == '\r' || byte == '\n');
        ASSERT_EQ(FilesOfUriList(list), files) << list;
    }
    EXPECT_EQ(FilesOfUriList("file:/a%2\nfile:///b%zz%\r/c%41"),
              (std::vector<MString>{ "/a%2", "/b%zz%", "/c%41" }))
        << "what is no code is itself; plain paths have none";
    EXPECT_EQ(FilesOfUriList(std::string(3000000, '\n') + "/late").size(), 0U);
}
