// SPDX-License-Identifier: GPL-3.0-or-later
// Documents become trees: what their attributes do, in which order, and what happens to documents that are
// wrong.
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "control/values/MValueEnum.h"
#include "control/values/MValueNumber.h"
#include "foundation/streams/MMemoryStream.h"
#include "gui/controls/MPanel.h"
#include "gui/controls/MWindow.h"
#include "gui/loader/MXmlLoader.h"
#include "state/tree/XML.h"
#include "tests/ErrorOf.h"
#include "tests/gui/PlainStyle.h"

namespace
{
// Attributes may stand in single quotes, so that they are easy to write here.
void ParseXML(MAttribute& node, std::string text)
{
    std::replace(text.begin(), text.end(), '\'', '"');
    MMemoryStream stream = MMemoryStream::Borrow(text.data(), static_cast<std::int32_t>(text.size()));
    ReadXML(node, stream);
}

class ScaledStyle : public PlainStyle
{
public:
    double GetScale() const override { return scale; }
    double scale = 1;
};

class Loader : public ::testing::Test
{
protected:
    Loader() { window.SetStyle(&style); }

    MWindow& Load(const char* text)
    {
        MAttribute node;
        ParseXML(node, text);
        loader.Load(window, node);
        return window;
    }

    ScaledStyle style;
    MXmlLoader loader;
    MWindow window;
};
}   // namespace

TEST_F(Loader, BuildsTheTreeThatADocumentDescribes)
{
    Load(R"(<window sizex="100" sizey="60" caption="Title" closeonescape="1" savewindowpos="1">
        <TOP layoutspace="2" deflayoutbordery="3">
            <panel id="strip" sizey="10" layoutratiox="1"><control id="inner" posx="4" posy="5" sizex="6" sizey="7"/></panel>
            <nonsense><panel id="lost"/></nonsense>
        </TOP>
        <horizontal>
            <container id="left" layoutratiox="1" layoutratioy="1"/>
            <control id="right" layoutratiox="3" layoutratioy="1" space="0" tabstop="1" help="&lt;b&gt;x"/>
        </horizontal>
        <panel id="free" posx="70" posy="40" sizex="-5" visible="0"/>
    </window>)");
    EXPECT_EQ(window.Children().size(), 4u);
    EXPECT_EQ(window.Layouts().size(), 2u);
    EXPECT_EQ(window.Find("lost"), nullptr);
    EXPECT_TRUE(window.closesOnEscape && window.savesPosition && !window.savesSize);
    window.GoLive();
    EXPECT_EQ(window.Find("strip")->AbsoluteRectangle(), MRectangle::OfSize(0, 3, 100, 10));
    EXPECT_EQ(window.Find("inner")->AbsoluteRectangle(), MRectangle::OfSize(4, 8, 6, 7));
    EXPECT_EQ(window.Find("left")->AbsoluteRectangle(), MRectangle::OfSize(0, 18, 25, 42));
    EXPECT_EQ(window.Find("right")->AbsoluteRectangle(), MRectangle::OfSize(25, 18, 75, 42));
    EXPECT_TRUE(window.Find("right")->tabStop);
    EXPECT_EQ(window.Find("right")->help, "<b>x");
    const MControl& unplaced = *window.Find("free");
    EXPECT_EQ(unplaced.X(), 70);
    EXPECT_EQ(unplaced.layout.layout, nullptr);
    EXPECT_FALSE(unplaced.IsVisible());
    EXPECT_EQ(unplaced.controlType, MControlType::Panel);
}

TEST_F(Loader, ScalesUnitsAndNothingElse)
{
    const char* const document = R"(<window sizex="101" sizey="51">
        <occupyborder x1="3" y1="5" x2="7"/>
        <grid columns="2" verticalfill="1" layoutspace="1">
            <control id="a" sizex="11" sizey="9"/><control id="b" layoutratiox="2" sizey="5" layoutborderx="3"/>
            <control id="c" hspan="2" layoutratiox="1" layoutratioy="4" minclientsizex="13"/>
        </grid></window>)";
    for (const double scale : { 1.0, 1.25, 1.5, 2.0, 3.0 })
    {
        style.scale = scale;
        MWindow fresh;
        fresh.SetStyle(&style);
        MAttribute node;
        ParseXML(node, document);
        loader.Load(fresh, node);
        fresh.GoLive();
        const auto pixels = [&](double units)
        {
            return static_cast<std::int32_t>(units * scale + 0.5);
        };
        const MRectangle a = fresh.Find("a")->AbsoluteRectangle();
        const MRectangle b = fresh.Find("b")->AbsoluteRectangle();
        const MRectangle c = fresh.Find("c")->AbsoluteRectangle();
        EXPECT_EQ(a.left, pixels(3));
        EXPECT_EQ(a.Width(), pixels(11));
        EXPECT_EQ(b.left, a.right + 1 + pixels(1) + pixels(3));
        EXPECT_EQ(b.right, fresh.Width() - 1 - pixels(7) - pixels(3));
        EXPECT_EQ(c.left, a.left);
        EXPECT_EQ(c.right, fresh.Width() - 1 - pixels(7));
        // The margin below is that above where a document names only one.
        EXPECT_EQ(c.bottom, fresh.Height() - 1 - pixels(5));
        EXPECT_EQ(c.top, pixels(5) + pixels(9) + pixels(1));
    }
}

TEST_F(Loader, ReadsEachAttributeByItsRule)
{
    struct Case
    {
        const char* attributes;
        bool (*holds)(const MControl& control);
    };
    const Case cases[] = {
        { "layoutplacement='left,top'",
          [](const MControl& c)
          {
              return c.layout.placement == 5;
          } },
        { "layoutplacement='Right,Bottom'",
          [](const MControl& c)
          {
              return c.layout.placement == 10;
          } },
        { "layoutplacement='center,center'",
          [](const MControl& c)
          {
              return c.layout.placement == 0;
          } },
        { "posx='-12abc' posy='34.9'",
          [](const MControl& c)
          {
              return c.X() == -12 && c.Y() == 34;
          } },
        { "posx='99999999999'",
          [](const MControl& c)
          {
              return c.X() == 32767;
          } },
        { "posx='+5'",
          [](const MControl& c)
          {
              return c.X() == 0;
          } },
        { "enabled='0'",
          [](const MControl& c)
          {
              return !c.IsEnabled() && c.showsHelp;
          } },
        { "enabled='-3' showhelp='0'",
          [](const MControl& c)
          {
              return c.IsEnabled() && !c.showsHelp;
          } },
        { "font='large3'",
          [](const MControl& c)
          {
              return c.font == MStdFont::Large3;
          } },
        { "controltype='KNOB'",
          [](const MControl& c)
          {
              return c.controlType == MControlType::Knob;
          } },
        { "captiontype='none'",
          [](const MControl& c)
          {
              return c.captionType == MCaptionType::None;
          } },
        { "overlaycontrol='1' adaptsize='1' collapsable='1' collapsed='1'",
          [](const MControl& c)
          {
              return c.overlay && c.adaptsSize && c.collapsable && c.IsCollapsed();
          } },
        { "plastic='1' plasticadaptsize='1' autodetectminimalsize='0'",
          [](const MControl& c)
          {
              return c.layout.plastic && c.plasticAdaptsSize && !c.detectsMinimalSize;
          } },
        { "layoutsaveratio='1' enablesavestate='1' useparenthelp='1'",
          [](const MControl& c)
          {
              return c.savesRatio && c.savesState && c.usesParentHelp;
          } },
    };
    for (const Case& each : cases)
    {
        MAttribute node;
        ParseXML(node, std::string("<control ") + each.attributes + "/>");
        MControl control;
        loader.Load(control, node);
        EXPECT_TRUE(each.holds(control)) << each.attributes;
    }
}

TEST_F(Loader, RefusesWhatCannotBeMeant)
{
    const auto error = [this](const char* text)
    {
        return ErrorOf([&] { Load(text); });
    };
    EXPECT_EQ(error("<window layoutplacement='top,left'/>"),
              "Invalid MAlignment identifier to parse (top,left).");
    EXPECT_EQ(error("<window><top><control font='huge'/></top></window>"),
              "Invalid MStdFont identifier to parse (huge).");
    EXPECT_EQ(error("<window><corner><control target='corner4'/></corner></window>"),
              "Invalid target for corner layout.");
    MAttribute deep("window");
    MAttribute* inner = &deep;
    for (int i = 0; i < 5000; ++i)
        inner = &inner->AddSubItem("panel");
    EXPECT_EQ(ErrorOf([&] { loader.Load(window, deep); }), "The layout is nested too deeply.");
    MAttribute sound("window");
    sound.AddSubItem("panel");
    MWindow fresh;
    loader.Load(fresh, sound);
    EXPECT_EQ(fresh.Children().size(), 1u) << "after the failures";
}

TEST_F(Loader, MakesValuesByTheirType)
{
    const auto value = [this](const char* attributes)
    {
        MAttribute node;
        ParseXML(node, std::string("<knob ") + attributes + "/>");
        return loader.CreateValue(node);
    };
    EXPECT_EQ(value("type='nonsense'"), nullptr);
    EXPECT_EQ(value("value='3'"), nullptr);
    for (const char* type : { "int32",
                              "int64",
                              "int16",
                              "float",
                              "double",
                              "stepdouble",
                              "percents",
                              "frequency",
                              "frequencylog",
                              "frequencylinear",
                              "volume",
                              "panorama",
                              "pitch",
                              "timems",
                              "stdicon",
                              "stdbitmap",
                              "stdcursor",
                              "stdfont",
                              "stdcolor",
                              "horizontalobjectlayout",
                              "verticalobjectlayout",
                              "language",
                              "country",
                              "threadpriority",
                              "controltype",
                              "captiontype",
                              "modalvalue",
                              "checkboxstate" })
    {
        const auto made = value((std::string("type='") + type + "'").c_str());
        ASSERT_NE(made, nullptr) << type;
        for (const double position : { 0.2, 0.3, 1.0 })
        {
            made->SetNormalized(position);
            const MString shown = made->GetDisplayText();
            made->SetNormalized(0.5);
            made->SetDisplayText(shown);
            EXPECT_EQ(made->GetDisplayText(), shown) << type;
        }
    }
    const auto number = value("type='INT32' min='-3' max='9' default='4'");
    number->SetDefault();
    EXPECT_EQ(number->GetText(), "4");
    EXPECT_EQ(number->GetStepCount(), 13);
    const auto state = value("type='checkboxstate'");
    EXPECT_TRUE(state->FromText("grayed"));
}

TEST_F(Loader, SurvivesRandomDocuments)
{
    std::mt19937 random(3);
    const char* const tags[] = { "grid",         "top",   "left",    "corner",    "vertical", "overlay",
                                 "occupyborder", "panel", "control", "container", "foo" };
    const char* const keys[] = {
        "sizex",           "posy",         "columns",        "hspan",       "vspan",
        "layoutratiox",    "layoutratioy", "layoutborderx",  "layoutspace", "deflayoutborderx",
        "columnspancount", "x1",           "minclientsizey", "space",       "verticalfill",
        "visible",         "collapsed",    "plastic"
    };
    const char* const numbers[] = { "0", "1", "-1", "7", "100", "2147483647", "-2147483648", "x" };
    int refused = 0;
    for (int round = 0; round < 500; ++round)
    {
        MAttribute root("window");
        std::vector<MAttribute*> all{ &root };
        for (int i = 0; i < 25; ++i)
        {
            MAttribute& made =
                all[random() % all.size()]->AddSubItem(MString::Literal(tags[random() % std::size(tags)]));
            for (int k = 0; k < 3; ++k)
                made.SetAttribute(MString::Literal(keys[random() % std::size(keys)]),
                                  MString::Literal(numbers[random() % std::size(numbers)]));
            all.push_back(&made);
        }
        MWindow fresh;
        fresh.SetStyle(&style);
        try
        {
            loader.Load(fresh, root);
            fresh.GoLive();
            fresh.SetSize(300, 200);
        }
        catch (const MException&)
        {
            ++refused;   // a plastic control that can't be plastic
        }
    }
    EXPECT_LT(refused, 400);
}
