// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/text/MStringFormat.h"

#include <cerrno>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "foundation/text/Boundary.h"
#include "foundation/text/MStringScan.h"
#include "foundation/text/Translate.h"
#include "tests/ErrorOf.h"

namespace
{
template <typename... Arguments>
std::string Formatted(const char* format, const Arguments&... arguments)
{
    return Format(format, arguments...).ToUTF8();
}

TEST(MStringFormat, PutsArgumentsInTheirPlaces)
{
    EXPECT_EQ(Formatted("{0}{1}", "a", "b"), "ab");
    EXPECT_EQ(Formatted("{1}{0}", "a", "b"), "ba");
    EXPECT_EQ(Formatted("{2}{0}{1}", "a", "b", "c"), "cab");
    EXPECT_EQ(Formatted("{1}-{0}{2}.", "a", "b", "c"), "b-ac.");
    EXPECT_EQ(Formatted("File \"{0}\" not found", MString("x.wav")), "File \"x.wav\" not found");
    EXPECT_EQ(Formatted("{0} and {1}", "a"), "a and ");
    EXPECT_EQ(Formatted("{1}", "dropped", "kept"), "kept");
    EXPECT_EQ(Formatted("{0}", "a", "extra"), "a");
    EXPECT_EQ(Formatted("{0} {0}", "a"), " a");   // named twice: the last place
    EXPECT_EQ(Formatted("{31}"), "");
}

TEST(MStringFormat, EscapesBraces)
{
    EXPECT_EQ(Formatted("{{0}}", "a"), "{0}");
    EXPECT_EQ(Formatted("{{{0}}}", "a"), "{a}");
    EXPECT_EQ(Formatted("a}b}"), "ab");
    EXPECT_EQ(Formatted("}}"), "}");
}

TEST(MStringFormat, WritesNumbersByTheirOptions)
{
    const struct
    {
        const char* format;
        double value;
        const char* text;
    } doubles[] = {
        { "{0}", 1.5, "1.5000" },     { "{0;+.02}", 1.5, "+1.50" },      { "{0;+.02}", -1.5, "-1.50" },
        { "{0;+.02}", 0.0, "0.00" },  { "{+0.2} dB", 3.25, "+3.25 dB" }, { "{0.2}%", 12.345, "12.35%" },
        { "{0.0}", 2.5, "2" },        { "{0.12}", 0.1, "0.1" },          { "{0.12}", 1e20, "1e+20" },
        { "{0;+.02}", 1e-21, "0.00" }
    };
    for (const auto& [format, value, text] : doubles)
        EXPECT_EQ(Formatted(format, value), text) << format;
    const struct
    {
        const char* format;
        std::int64_t value;
        const char* text;
    } integers[] = { { "{0:04}", -5, "-0005" }, { "{0:04}", 5, "0005" },      { "{0x;02}", 10, "0A" },
                     { "{0 5}", 42, "   42" },  { "{0+}", 7, "+7" },          { "{0+}", 0, "0" },
                     { "{0+}", -7, "-7" },      { "{0:02}", 12345, "12345" }, { "{0x}", 48879, "BEEF" } };
    for (const auto& [format, value, text] : integers)
        EXPECT_EQ(Formatted(format, value), text) << format;
    EXPECT_EQ(Formatted("{0x}", ~std::uint64_t{ 0 }), "FFFFFFFFFFFFFFFF");
    EXPECT_EQ(Formatted("{0} {1} {2+}", "t", 5u, 7), "t 5 +7");
    EXPECT_EQ(Formatted("{0:05.1}", "text"), "text");   // options are for numbers
}

TEST(MStringFormat, KeepsLongLiteralsWhole)
{
    const std::string half(1000, 'x');
    const std::string format = half + "{0}" + half;
    EXPECT_EQ(Format(MString::Copy(format), 5).ToUTF8(), half + "5" + half);
}

TEST(MStringFormat, RefusesWhatIsNoFormat)
{
    const std::string unfinished = "Formatting string ends in an argument specification.";
    const std::string unknown = "Formatting string names an argument out of range.";
    for (const auto& [format, error] : { std::pair{ "{0", unfinished },
                                         { "text {", unfinished },
                                         { "{32}", unknown },
                                         { "{-1}", unknown } })
        EXPECT_EQ(ErrorOf([&text = format] { Format(text); }), error);
}

TEST(MStringFormat, SharesItsArgumentsAmongItsCopies)
{
    MStringFormat first("{0}-{1}-{2}");
    MStringFormat second(first);
    {
        MStringFormat third("other");
        third = second;
        third.Add("a");
    }
    first.Add(1);
    second.Add(-1.5);
    for (const MStringFormat& format : { first, second })
        EXPECT_EQ(format.Text().ToUTF8(), "a-1--1.5000");
}

TEST(MStringScan, CapturesWhatThePatternNames)
{
    const struct
    {
        const char* pattern;
        const char* input;
        int captured;
        const char* first;
        const char* second;
    } cases[] = {
        { "{0} dB", "-3.5 dB", 1, "-3.5", "?" },
        { "x{0}", "y5", 0, "?", "?" },
        { "{0}:{1}", "12:34", 2, "12", "34" },
        { "{0}:{1}", "12", 1, "12", "?" },
        { "{1} {0}", "a b", 2, "b", "a" },
        { "a  {0}", "a\t\n b c", 1, "b", "?" },
        { "a {0}", "ab", 0, "?", "?" },
        { "{{{0}}}", "{val}", 1, "val", "?" },
        { "{0}", "", 0, "?", "?" },
        { "{0", "5", 0, "?", "?" },
        { "({0}, {1})", "(1,   2) tail", 2, "1", "2" },
    };
    for (const auto& [pattern, input, captured, first, second] : cases)
    {
        SCOPED_TRACE(pattern);
        MStringScan scan(pattern, input);
        MString a = "?";
        MString b = "?";
        EXPECT_EQ(scan.CapturedCount(), captured);
        scan.Get(a).Get(b);
        EXPECT_EQ(a.ToUTF8(), first);
        EXPECT_EQ(b.ToUTF8(), second);
    }
}

TEST(MStringScan, ReadsBackATimeThatTheFormatterWrote)
{
    const char* const pattern = "{0:02}:{1:02}:{2:02}.{3}";
    int hours = 0;
    std::uint8_t minutes = 0;
    short seconds = 0;
    std::int64_t rest = 0;
    MStringScan scan(pattern, Format(pattern, 7, 5, 59, 120));
    scan.Get(hours).Get(minutes).Get(seconds).Get(rest);
    EXPECT_EQ(scan.CapturedCount(), 4);
    EXPECT_EQ(hours, 7);
    EXPECT_EQ(minutes, 5);
    EXPECT_EQ(seconds, 59);
    EXPECT_EQ(rest, 120);
}

TEST(MStringScan, TellsOfAnIntegerWithoutDigits)
{
    int a = -1;
    int b = -1;
    int c = -1;
    MStringScan scan("{0},{1},{2}", "1,x,3");
    scan.Get(a).Get(b).Get(c);
    EXPECT_EQ(scan.CapturedCount(), 1);
    EXPECT_EQ(a, 1);
    EXPECT_EQ(b, -1);
    EXPECT_EQ(c, -1);
}

TEST(MStringScan, ClampsDecimalsAndCutsHexadecimals)
{
    std::int8_t small = 0;
    std::uint32_t color = 0;
    std::int32_t bits = 0;
    double number = 0.0;
    MStringScan scan("{0} {1x} {2x} {3}", "-300 ff80C0aa FFFFFFFF 2.5e1");
    scan.Get(small).Get(color).Get(bits).Get(number);
    EXPECT_EQ(small, -128);
    EXPECT_EQ(color, 0xFF80C0AAu);
    EXPECT_EQ(bits, -1);
    EXPECT_EQ(number, 25.0);
    unsigned unsignedValue = 1;
    MStringScan("{0}", "-5").Get(unsignedValue);
    EXPECT_EQ(unsignedValue, 0u);
}

std::string loggedLine;

TEST(Boundary, DropsItsOwnErrorsAndLogsTheOthers)
{
    SetLogSink([](const MString& line) { loggedLine = line.ToUTF8(); });
    loggedLine = "nothing";
    EXPECT_EQ(AtBoundary("Own", -1, []() -> int { throw MException("text"); }), -1);
    EXPECT_EQ(loggedLine, "nothing");
    EXPECT_EQ(AtBoundary("ClearAutomationAdapters", -1, []() -> int { throw 5; }), -1);
    EXPECT_EQ(loggedLine, "SYSTEM EXCEPTION! ClearAutomationAdapters");
    EXPECT_EQ(AtBoundary("Fine", -1, [] { return 7; }), 7);
    AtBoundary("Void", [] { throw 5; });
    EXPECT_EQ(loggedLine, "SYSTEM EXCEPTION! Void");
    SetLogSink([](const MString&) { throw 5; });   // dropped
    AtBoundary("Void", [] { throw 5; });
    SetLogSink(nullptr);
    EXPECT_EQ(SystemErrorText(0).ToUTF8(), "No error description available.");
    EXPECT_EQ(SystemErrorText(ENOENT).ToUTF8(), "No such file or directory");
    EXPECT_EQ(AtBoundary("Unheard", -1, []() -> int { throw 5; }), -1);
}

TEST(Translate, FindsTextsByContextAndLeavesTheOthers)
{
    EXPECT_EQ(Translate("Close").ToUTF8(), "Close");
    AddTranslation("Close", "", "Schliessen");
    AddTranslation("Close", "distance", "Nah");
    AddTranslation("close", "", "schliessen");
    EXPECT_EQ(Translate("Close").ToUTF8(), "Schliessen");
    EXPECT_EQ(Translate("close").ToUTF8(), "schliessen");
    EXPECT_EQ(Translate("Close", "distance").ToUTF8(), "Nah");
    EXPECT_EQ(Translate("Close", "window").ToUTF8(), "Close");
    AddTranslation("Close", "", "Zu");
    EXPECT_EQ(Translate("Close").ToUTF8(), "Zu");
    ClearTranslations();
    EXPECT_EQ(Translate("Close").ToUTF8(), "Close");
}
}   // namespace
