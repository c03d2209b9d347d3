// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/tree/StoredNode.h"

#include <cmath>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "state/tree/MStorable.h"

namespace
{
enum class Mode : std::int32_t
{
    First,
    Second,
    Third
};
constexpr const char* Labels[] = { "One", "Two", "Three" };

// Stores itself as one attribute.
struct Word : MStorable
{
    explicit Word(MString& bound) : MStorable("word"), text(bound) {}
    MString GetText() const override { return text; }
    void SetText(const MString& newText) override { text = newText; }
    void SetDefault() override { text = "default"; }
    MString& text;
};

// One field for each way of storing.
struct Settings
{
    std::int32_t always = 1;
    std::int32_t alwaysOr = 2;
    double number = 0.1;
    MRelaxed<bool> flag = true;
    MRelaxed<Mode> mode = Mode::First;
    MString text = "text";
    std::int32_t label = 0;
    std::uint32_t color = 0x11223344;
    std::uint32_t optionalColor = 0;
    MString word = "default";
    double inChild = 5.0;
    std::int32_t childVisits = 0;

    void Store(const MStoreParams& params)
    {
        StoredNode node(params);
        node.Always("always", always, { -10, 10 });
        node.AlwaysOr("alwaysOr", alwaysOr, 2);
        node.Optional("number", number, 0.1, { -1.0, 1.0 });
        node.Optional("flag", flag, true);
        node.Always("mode", mode, { Mode::First, Mode::Third });
        node.Optional("text", text, "text");
        node.Label("label", label, Labels, 1, 2);
        node.Color("color", color);
        node.OptionalColor("optionalColor", optionalColor);
        node.Child("WordChild", Word(word));
        node.Child("Child", [this](StoredNode& child) { child.Optional("inside", inChild, 5.0); });
        node.ChildIfPresent("Other", [this](StoredNode&) { ++childVisits; });
    }

    std::string Print()
    {
        MAttribute item;
        Store({ .saving = 1, .item = &item });
        std::string print;
        for (int index = 0; index < item.AttributeCount(); ++index)
            print +=
                item.AttributeAt(index).key.ToUTF8() + "=" + item.AttributeAt(index).value.ToUTF8() + " ";
        for (int index = 0; index < item.SubItemCount(); ++index)
            if (item.SubItemAt(index).AttributeCount() > 0)
                print += item.SubItemAt(index).Name().ToUTF8() + ":" +
                         item.SubItemAt(index).AttributeAt(0).value.ToUTF8() + " ";
        return print;
    }
};

Settings Changed()
{
    return { .always = 3,
             .alwaysOr = 4,
             .number = 1.0 / 3.0,
             .flag = false,
             .mode = Mode::Third,
             .text = "other",
             .label = 1,
             .color = 0xFF0000AC,
             .optionalColor = 0x80123456,
             .word = "spoken",
             .inChild = -7.5 };
}

TEST(StoredNode, SavesWhatDiffersAndLoadsItBack)
{
    EXPECT_EQ(Settings().Print(), "always=1 alwaysOr=2 color=22334411 label=One mode=0 WordChild:default ");
    Settings changed = Changed();
    MAttribute item;
    changed.Store({ .saving = 1, .item = &item });
    Settings loaded;
    loaded.Store({ .item = &item });
    EXPECT_EQ(loaded.childVisits, 1);
    EXPECT_EQ(loaded.Print(), changed.Print());
    EXPECT_EQ(loaded.Print(),
              "always=3 alwaysOr=4 color=0000ACFF flag=0 label=Two mode=2 number=0.333333333333 "
              "optionalColor=12345680 text=other WordChild:spoken Child:-7.5 ");
    // Over what is there: what has its default again goes.
    Settings().Store({ .saving = 1, .item = &item });
    Settings fresh = Changed();
    fresh.Store({ .item = &item });
    EXPECT_EQ(fresh.Print(), Settings().Print());
}

TEST(StoredNode, TellsAPlainLoadFromAnOverlay)
{
    MAttribute empty;
    Settings settings = Changed();
    settings.Store({ .item = &empty, .mode = MLoadMode::Overlay });
    EXPECT_EQ(settings.Print(), Changed().Print());
    EXPECT_EQ(empty.SubItemCount(), 0);
    settings.childVisits = 0;
    settings.Store({ .item = &empty });
    EXPECT_EQ(settings.childVisits, 0);
    EXPECT_EQ(settings.Print(), "always=3 alwaysOr=2 color=0000ACFF label=Two mode=2 WordChild:default ");

    // What is named counts, in both.
    MAttribute named;
    named.SetAttribute("number", "-0.5");
    named.SetAttribute("label", "three");
    named.AddSubItem("Child").SetAttribute("inside", "8");
    settings = Changed();
    settings.Store({ .item = &named, .mode = MLoadMode::Overlay });
    EXPECT_EQ(settings.number, -0.5);
    EXPECT_EQ(settings.label, 2);
    EXPECT_EQ(settings.inChild, 8.0);
    EXPECT_EQ(settings.always, 3);
    EXPECT_EQ(settings.word.ToUTF8(), "spoken");
}

TEST(StoredNode, TakesAnythingThatAFileMaySay)
{
    const struct
    {
        const char* text;
        std::int32_t always;   // 3 before, -10 to 10
        double number;   // 0.1 by default, -1 to 1
        bool flag;   // true by default
        std::int32_t label;
    } cases[] = { { "", 3, 0.1, true, 2 },
                  { "nonsense", 3, 0.1, true, 2 },
                  { "nan", 3, 0.1, true, 2 },
                  { "inf", 3, 0.1, true, 2 },
                  { "1e999", 1, 0.1, true, 2 },
                  { "0", 0, 0.0, false, 2 },
                  { "99999999999999999999", 10, 1.0, true, 2 },
                  { "-77.5", -10, -1.0, true, 2 },
                  { "TWO", 3, 0.1, true, 1 } };
    for (const auto& [text, always, number, flag, label] : cases)
    {
        SCOPED_TRACE(text);
        Settings settings = Changed();
        MAttribute item;
        for (const char* key : { "always", "number", "flag", "label", "mode" })
            item.SetAttribute(key, text);
        settings.Store({ .item = &item });
        EXPECT_EQ(settings.always, always);
        EXPECT_EQ(settings.number, number);
        EXPECT_EQ(settings.flag, flag);
        EXPECT_EQ(settings.label, label);
        EXPECT_LE(settings.mode, Mode::Third);
    }
    for (const auto& [text, color] : { std::pair<const char*, std::uint32_t>{ "ac00acff", 0xFFAC00AC },
                                       { "123456", 0xFF123456 },
                                       { "1234567890", 0xFF123456 },
                                       { "", 0xFF000000 } })
        EXPECT_EQ(StoredColorOf(text), color) << text;
}

// Counts its kind.
struct Counted : MObject
{
    Counted() { ++living; }
    ~Counted() override { --living; }
    static inline int living = 0;
};

TEST(MStorable, DeletesWhatItKeepsAndNotWhatItHolds)
{
    Counted other;
    {
        MString text;
        Word word(text);
        EXPECT_EQ(word.Held(), nullptr);
        word.Keep(std::make_unique<Counted>());
        EXPECT_NE(word.Held(), nullptr);
        word.Hold(&other);
        EXPECT_EQ(word.Held(), &other);
        EXPECT_EQ(Counted::living, 1);
        word.Keep(std::make_unique<Counted>());
        EXPECT_EQ(Counted::living, 2);
    }
    EXPECT_EQ(Counted::living, 1);
}
}   // namespace
