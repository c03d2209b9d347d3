// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "control/values/MValueEnum.h"
#include "control/values/MValueFrequency.h"
#include "control/values/MValueList.h"
#include "control/values/MValueQuantities.h"
#include "control/values/MValueScale.h"
#include "state/tree/MAttribute.h"

namespace
{
enum class Shape
{
    First,
    Second,
    Third,
    Fourth,
    Fifth
};
}   // namespace

template <>
struct MEnumLabels<Shape>
{
    static constexpr const char* Labels[] = { "Up and down", "Full range", "Up only", "Down only",
                                              "Interval" };
};

namespace
{
void LoadFrom(MStorable& value, const char* text)
{
    MAttribute item;
    if (text != nullptr)
        item.SetAttribute(value.Name, MString::Copy(text));
    value.Load(item);
}

TEST(MValueNumber, StartsWithStandardStepsAndAClampedVariable)
{
    MRelaxed<double> variable = 99.0;
    MValueDouble value(&variable, 0.0, 10.0, 5.0);
    EXPECT_EQ(variable, 10.0);
    EXPECT_EQ(value.Name.ToUTF8(), "value");
    EXPECT_DOUBLE_EQ(value.Inc(), 0.01);
    EXPECT_DOUBLE_EQ(value.MaxInc(), 0.1);
    EXPECT_FALSE(value.HasChanged());
    MRelaxed<int> small = 0;
    MValueInt integer(&small, 0, 4, 0);
    EXPECT_EQ(integer.Inc(), 1);
    EXPECT_EQ(integer.MaxInc(), 10);
    MValueInt large(nullptr, 0, 100000, 0);
    EXPECT_EQ(large.Inc(), 100);
    EXPECT_EQ(large.MaxInc(), 1000);
}

TEST(MValueNumber, NarrowsGivenStepsToTheRange)
{
    EXPECT_DOUBLE_EQ(MValueTimeMS().Inc(), 0.001);
    EXPECT_DOUBLE_EQ(MValueTimeMS(nullptr, 0.0, 0.05).Inc(), 0.0005);
    EXPECT_DOUBLE_EQ(MValueTimeMS(nullptr, 0.0, 0.05).MaxInc(), 0.005);
    EXPECT_DOUBLE_EQ(MValuePan().Inc(), 0.01);
    EXPECT_DOUBLE_EQ(MValuePitch().Inc(), 0.0375);   // 0.1 is more than a hundredth of 0.25 to 4
    EXPECT_DOUBLE_EQ(MValuePitch().MaxInc(), 0.375);
}

TEST(MValueNumber, StepsByPowersOfTwoUpToTheLargest)
{
    MValueDouble value(nullptr, -10.0, 10.0, 0.0);
    value.SetSteps(0.1, 0.5);
    EXPECT_TRUE(value.Step(1, 3));
    EXPECT_DOUBLE_EQ(value.Get(), 0.5);
    EXPECT_TRUE(value.Step(-1, 2));
    EXPECT_DOUBLE_EQ(value.Get(), 0.1);
    EXPECT_TRUE(value.Step(-1, 0));
    EXPECT_NEAR(value.Get(), 0.0, 1e-15);   // 0.1 has no exact sum
    EXPECT_TRUE(value.Increment(1000));
    EXPECT_EQ(value.Get(), 10.0);
    EXPECT_FALSE(value.Increment(1));
    EXPECT_FALSE(value.Step(1, 5));

    MValueInt integer(nullptr, std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), 0);
    integer.Set(std::numeric_limits<int>::max() - 1);
    integer.Step(1, 30);
    EXPECT_EQ(integer.Get(), std::numeric_limits<int>::max());
}

TEST(MValueNumber, MapsItsRangeToPositions)
{
    MValueDouble value(nullptr, -10.0, 30.0, 0.0);
    EXPECT_DOUBLE_EQ(value.GetNormalized(), 0.25);
    EXPECT_TRUE(value.SetNormalized(0.75));
    EXPECT_DOUBLE_EQ(value.Get(), 20.0);
    EXPECT_FALSE(value.SetNormalized(0.75));
    value.SetNormalized(7.0);
    EXPECT_EQ(value.Get(), 30.0);
    value.SetNormalized(std::nan(""));
    EXPECT_EQ(value.Get(), -10.0);
    EXPECT_EQ(value.GetStepCount(), 0);
    value.Set(100.0);   // outside the range until Clamp
    EXPECT_EQ(value.GetNormalized(), 1.0);
    EXPECT_EQ(MValueDouble(nullptr, 3.0, 3.0, 3.0).GetNormalized(), 0.0);

    MValueInt integer(nullptr, 2, 5, 2);
    EXPECT_EQ(integer.GetStepCount(), 4);
    const struct
    {
        double position;
        int expected;
    } cases[] = { { 0.0, 2 }, { 0.16, 2 }, { 0.17, 3 }, { 0.5, 4 }, { 0.99, 5 }, { 1.0, 5 } };
    for (const auto& [position, expected] : cases)
    {
        integer.SetNormalized(position);
        EXPECT_EQ(integer.Get(), expected) << position;
    }
    integer.SetIndex(1);
    EXPECT_EQ(integer.Get(), 3);
    EXPECT_EQ(integer.CreateContentAtIndex(2)->text.ToUTF8(), "4");
    EXPECT_EQ(integer.Get(), 3);

    MValueInt64 wide(nullptr, std::numeric_limits<std::int64_t>::min(),
                     std::numeric_limits<std::int64_t>::max(), 0);
    EXPECT_DOUBLE_EQ(wide.GetNormalized(), 0.5);
    wide.SetNormalized(1.0);
    EXPECT_EQ(wide.Get(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(wide.GetStepCount(), std::numeric_limits<int>::max());
}

TEST(MValueNumber, LoadsWhatItStoredAndKeepsWhatItCannotRead)
{
    MValueDouble value(nullptr, -10.0, 10.0, 1.0);
    value.Name = "Depth";
    value.Set(-2.5);
    MAttribute item;
    value.Store(item);
    EXPECT_EQ(item.GetAttribute("Depth").ToUTF8(), "-2.500000");
    value.Set(0.0);
    value.Load(item);
    EXPECT_EQ(value.Get(), -2.5);

    const struct
    {
        const char* text;
        double expected;
    } cases[] = { { nullptr, 1.0 },  { "abc", 5.0 }, { "", 5.0 },    { "3", 3.0 },      { "99", 10.0 },
                  { "-1e9", -10.0 }, { "nan", 5.0 }, { "inf", 5.0 }, { "2.5 dB", 2.5 }, { "1e999", 5.0 } };
    for (const auto& [text, expected] : cases)
    {
        value.Set(5.0);
        LoadFrom(value, text);
        EXPECT_EQ(value.Get(), expected) << (text != nullptr ? text : "absent");
    }
    MValueShort narrow(nullptr, -100, 100, 7);
    for (const auto& [text, expected] : { std::pair<const char*, int>{ "40000", 100 },
                                          { "-99999999999", -100 },
                                          { "x", 7 },
                                          { "12.9", 12 } })
    {
        narrow.Set(7);
        LoadFrom(narrow, text);
        EXPECT_EQ(narrow.Get(), expected) << text;
    }
    value.SetText("50");
    EXPECT_EQ(value.Get(), 50.0);   // stored text is not clamped by itself
    value.Clamp();
    EXPECT_EQ(value.Get(), 10.0);
    value.Set(std::nan(""));
    value.Clamp();
    EXPECT_EQ(value.Get(), -10.0);
}

TEST(MValueNumber, ReadsTextByItsFormat)
{
    MValueGain value(nullptr, -24.0, 24.0, 0.0);
    EXPECT_EQ(value.ToText().ToUTF8(), "0.00 dB");
    EXPECT_TRUE(value.FromText("1.5 dB"));
    EXPECT_EQ(value.Get(), 1.5);
    EXPECT_EQ(value.GetDisplayText().ToUTF8(), "+1.50 dB");
    EXPECT_FALSE(value.FromText("1.5"));   // taken, but no change
    EXPECT_TRUE(value.SetDisplayText("1.5"));
    EXPECT_FALSE(value.SetDisplayText("loud"));
    EXPECT_EQ(value.Get(), 1.5);
    EXPECT_TRUE(value.FromText("99"));
    EXPECT_EQ(value.Get(), 99.0);
    EXPECT_TRUE(value.SetDisplayText("98 dB"));
    EXPECT_EQ(value.Get(), 24.0);   // display text is clamped

    MValueInt upsampling(nullptr, 1, 4, 1);
    upsampling.SetFormat("{0}x");
    EXPECT_EQ(upsampling.ToText().ToUTF8(), "1x");
    EXPECT_TRUE(upsampling.FromText("3x"));
    EXPECT_EQ(upsampling.Get(), 3);
    EXPECT_FALSE(upsampling.FromText("x"));
    EXPECT_EQ(upsampling.GetCharFilter().GetMask(), IntegerFilter().GetMask());
    EXPECT_EQ(value.GetCharFilter().GetMask(), FloatFilter().GetMask());
}

MString LevelName(double value, void* context)
{
    return MString(static_cast<const char*>(context)) + MString::FromDouble(value, 1);
}

bool ReadLevelName(const MString& text, double& value, void*)
{
    return ReadNumber(text.SubString(1, text.Length()), value);
}

TEST(MValueNumber, LetsConvertersReplaceItsText)
{
    char prefix[] = "#";
    MValueDouble value(nullptr, 0.0, 10.0, 2.0);
    value.SetConverters(&LevelName, prefix, &ReadLevelName, nullptr);
    EXPECT_EQ(value.GetDisplayText().ToUTF8(), "#2.0");
    EXPECT_EQ(value.ToText().ToUTF8(), "2.0000");
    EXPECT_EQ(value.CreateContent()->text.ToUTF8(), "#2.0");
    EXPECT_EQ(value.CreateContentAt(0.5)->text.ToUTF8(), "#5.0");
    EXPECT_TRUE(value.SetDisplayText("#77"));
    EXPECT_EQ(value.Get(), 10.0);
    EXPECT_FALSE(value.SetDisplayText("#"));
}

TEST(MValueNumber, TakesItsDefinitionFromATree)
{
    MAttribute item;
    for (const auto& [key, text] : { std::pair<const char*, const char*>{ "id", "Gain" },
                                     { "min", "-12" },
                                     { "max", "12" },
                                     { "default", "3" },
                                     { "value", "40" },
                                     { "inc", "0.5" },
                                     { "format", "{0.1}" } })
        item.SetAttribute(key, text);
    MValueDouble value(nullptr, 0.0, 1.0, 0.0);
    value.LoadDefinition(item);
    EXPECT_EQ(value.Name.ToUTF8(), "Gain");
    EXPECT_EQ(value.Get(), 12.0);
    EXPECT_EQ(value.Inc(), 0.5);
    EXPECT_EQ(value.MaxInc(), 5.0);
    EXPECT_EQ(value.ToText().ToUTF8(), "12.0");
    value.SetDefault();
    EXPECT_EQ(value.Get(), 3.0);

    MValueFrequency frequency;
    MAttribute range;
    range.SetAttribute("min", "100");
    range.SetAttribute("max", "10000");
    frequency.LoadDefinition(range);
    frequency.Set(1000.0);
    EXPECT_NEAR(frequency.GetNormalized(), 0.5, 1e-12);   // rounding of the logarithms
}

TEST(MValueFrequency, HasLogarithmicPositions)
{
    MValueFrequency value;
    const double positions[] = { 0.0, 1.0 / 3.0, 2.0 / 3.0, 1.0 };
    const double frequencies[] = { 20.0, 200.0, 2000.0, 20000.0 };
    for (int index = 0; index < 4; ++index)
    {
        value.SetNormalized(positions[index]);
        EXPECT_NEAR(value.Get(), frequencies[index], 1e-9 * frequencies[index]);   // rounding of pow
        EXPECT_NEAR(value.GetNormalized(), positions[index], 1e-12);
    }
    value.Set(2000.0);
    value.Increment(-1);
    EXPECT_NEAR(value.GetNormalized(), 2.0 / 3.0 - 0.001, 1e-12);
    EXPECT_EQ(MValueFrequency(nullptr, 50.0, 50.0, 50.0).GetNormalized(), 1.0);

    MValueFrequencyLog logarithm;
    EXPECT_TRUE(logarithm.FromText("1000"));
    EXPECT_DOUBLE_EQ(logarithm.Get(), 3.0);
    EXPECT_EQ(logarithm.ToText().ToUTF8(), "1000 Hz");
    EXPECT_FALSE(logarithm.SetDisplayText("0"));
    EXPECT_FALSE(logarithm.SetDisplayText("-5"));
    EXPECT_DOUBLE_EQ(logarithm.GetNormalized(), (3.0 - 1.3010299956639813) / 3.0);
}

TEST(ValueText, ShowsQuantities)
{
    const struct
    {
        MString (*write)(double);
        double value;
        const char* text;
    } cases[] = { { PercentText, 0.5, "50.0%" },
                  { PercentText, -0.01, "-1.0%" },
                  { PercentText, 0.0099, "0.99%" },
                  { PercentText, 0.0, "0.00%" },
                  { FrequencyText, 0.0, "0 Hz" },
                  { FrequencyText, 0.5, "0.5000 Hz" },
                  { FrequencyText, 5.0, "5.00 Hz" },
                  { FrequencyText, 50.0, "50.0 Hz" },
                  { FrequencyText, 440.0, "440 Hz" },
                  { FrequencyText, 440.5, "441 Hz" },
                  { FrequencyText, 9999.4, "9999 Hz" },
                  { FrequencyText, 12345.0, "12.3 kHz" },
                  { GainText, 0.0, "silence" },
                  { GainText, 0.5, "-6.02 dB" },
                  { GainText, 0.01, "-40.0 dB" },
                  { GainText, 4.0, "12.0 dB" },
                  { GainTextWithoutUnit, 0.5, "-6.02" },
                  { GainTextWithoutUnit, 0.01, "-40.0" },
                  { MillisecondsText, 0.0, "0 ms" },
                  { MillisecondsText, 0.00005, "0.050 ms" },
                  { MillisecondsText, 0.0005, "0.50 ms" },
                  { MillisecondsText, 0.005, "5.0 ms" },
                  { MillisecondsText, 0.0125, "13 ms" },
                  { PanText, 0.0, "center" },
                  { PanText, 0.305, "30% right" },
                  { PanText, -1.0, "100% left" },
                  { DegreesText, 0.0, "0\xC2\xB0 (0%)" },
                  { DegreesText, 0.25, "90\xC2\xB0 (25.0%)" },
                  { FrequencyText, 1e30, "1000000000000000013287555072.0 kHz" },
                  { MillisecondsText, 1e30, "1000000000000000089690419062898688 ms" },
                  { GainText, std::numeric_limits<double>::quiet_NaN(), "silence" } };
    for (const auto& [write, value, text] : cases)
        EXPECT_EQ(write(value).ToUTF8(), text) << value;
    EXPECT_EQ(NoteText(60).ToUTF8(), "C5");
    EXPECT_EQ(NoteText(127).ToUTF8(), "G10");
    EXPECT_EQ(NoteText(-1).ToUTF8(), "B-1");
}

TEST(ValueText, ReadsBackWhatItShows)
{
    const struct
    {
        bool (*read)(const MString&, double&);
        const char* text;
        double value;
    } cases[] = { { ReadPercent, "50%", 0.5 },
                  { ReadFrequency, "440 Hz", 440.0 },
                  { ReadFrequency, "12.3 kHz", 12300.0 },
                  { ReadFrequency, "2k", 2000.0 },
                  { ReadGain, "-20 dB", 0.1 },
                  { ReadMilliseconds, "5.0 ms", 0.005 },
                  { ReadPan, "30% right", 0.3 },
                  { ReadPan, "30% left", -0.3 },
                  { ReadPan, "-30", -0.3 },
                  { ReadDegrees, "90", 0.25 } };
    for (const auto& [read, text, value] : cases)
    {
        double got = -1.0;
        EXPECT_TRUE(read(text, got)) << text;
        EXPECT_DOUBLE_EQ(got, value) << text;
        EXPECT_FALSE(read("silence", got)) << text;
        EXPECT_DOUBLE_EQ(got, value) << text;
    }
}

TEST(MValueMIDINote, ShowsNotesAndReadsNumbers)
{
    MValueMIDINote value;
    EXPECT_EQ(value.ToText().ToUTF8(), "C5");
    EXPECT_EQ(value.CreateContentAtIndex(61)->text.ToUTF8(), "C#5");
    EXPECT_TRUE(value.FromText("72"));
    EXPECT_EQ(value.Get(), 72);
    EXPECT_FALSE(value.SetDisplayText("C5"));
}

TEST(MValue2Pow, ShowsPowersAndCountsHalvings)
{
    MValue2Pow plain(nullptr, 10, 18, 12);
    EXPECT_EQ(plain.ToText().ToUTF8(), "4096");
    EXPECT_TRUE(plain.FromText("1024"));
    EXPECT_EQ(plain.Get(), 10);
    MValue2Pow overlap(nullptr, 0, 12, 2, "{0}x");
    EXPECT_EQ(overlap.ToText().ToUTF8(), "4x");
    EXPECT_TRUE(overlap.SetDisplayText("999999x"));
    EXPECT_EQ(overlap.Get(), 12);
}

TEST(MValueStepDouble, SnapsToItsStep)
{
    MRelaxed<double> variable = 0.3;
    MValueStepDouble value(&variable, 0.0, 1.0, 0.0, 0.25);
    EXPECT_EQ(variable, 0.25);
    for (const auto& [given, snapped] :
         { std::pair{ 0.6, 0.5 }, { 0.65, 0.75 }, { 0.625, 0.75 }, { 1.4, 1.0 } })
    {
        value.Set(given);
        value.Clamp();
        EXPECT_EQ(value.Get(), snapped) << given;
    }
    MAttribute item;
    item.SetAttribute("step", "0.1");
    value.LoadDefinition(item);
    value.Set(0.34);
    value.Clamp();
    EXPECT_NEAR(value.Get(), 0.3, 1e-15);   // a tenth has no exact multiple
    EXPECT_EQ(MValueStepPercents(nullptr, 0.0, 1.0, 0.5, 0.5).ToText().ToUTF8(), "50.0%");
}

TEST(MValueEnum, IsStoredByItsLabel)
{
    MRelaxed<Shape> variable = Shape::Third;
    MValueEnum<Shape> value(&variable, Shape::Second);
    EXPECT_DOUBLE_EQ(value.GetNormalized(), 0.5);
    EXPECT_EQ(value.GetStepCount(), 5);
    value.SetNormalized(0.6);
    EXPECT_EQ(value.GetEnum(), Shape::Third);
    MAttribute item;
    value.Store(item);
    EXPECT_EQ(item.GetAttribute("value").ToUTF8(), "Up only");
    for (const auto& [text, expected] : { std::pair<const char*, Shape>{ "interval", Shape::Fifth },
                                          { "FULL RANGE", Shape::Second },
                                          { "unknown", Shape::First },
                                          { nullptr, Shape::Second } })
    {
        LoadFrom(value, text);
        EXPECT_EQ(value.GetEnum(), expected);
    }
    EXPECT_TRUE(value.Step(1, 7));
    EXPECT_EQ(variable, Shape::Third);
    EXPECT_TRUE(value.Increment(10));
    EXPECT_EQ(variable, Shape::Fifth);
    EXPECT_FALSE(value.Increment(1));
    EXPECT_EQ(value.CreateContentAt(0.25)->text.ToUTF8(), "Full range");
    MRelaxed<int> outside = 77;
    EXPECT_EQ(MValueEnum<Shape>(&outside).GetEnum(), Shape::Fifth);
}

TEST(MValueList, ChoosesALabelWhileTheListChanges)
{
    MStringList labels;
    MValueStringList value(nullptr, labels, 3);
    EXPECT_EQ(value.ToText().ToUTF8(), "");
    EXPECT_EQ(value.CreateContentAt(1.0)->text.ToUTF8(), "");
    EXPECT_EQ(value.GetNormalized(), 0.0);
    EXPECT_FALSE(value.SetNormalized(1.0));
    for (const char* label : { "one", "two", "three" })
        labels.Add(label);
    EXPECT_TRUE(value.FromText("THREE"));
    EXPECT_EQ(value.Get(), 2);
    EXPECT_FALSE(value.SetDisplayText("four"));
    EXPECT_EQ(value.Get(), 2);
    labels.Delete(2);
    EXPECT_EQ(value.ToText().ToUTF8(), "");
    value.Clamp();
    EXPECT_EQ(value.ToText().ToUTF8(), "two");
    static constexpr const char* Table[] = { "left", "right" };
    MValueTableList table(nullptr, Table, 2);
    EXPECT_TRUE(table.Step(1, 0));
    EXPECT_EQ(table.GetText().ToUTF8(), "right");
    MRelaxed<bool> isRight = true;
    MValueTableList side(&isRight, Table, 2);
    EXPECT_TRUE(side.FromText("LEFT"));
    EXPECT_FALSE(isRight);
    MValueFlag flag(&isRight);
    EXPECT_TRUE(flag.SetNormalized(0.5));
    EXPECT_TRUE(isRight);
    EXPECT_EQ(flag.GetText().ToUTF8(), "1");
}

TEST(MValueScale, BendsPositionsOnly)
{
    auto inner = std::make_unique<MValueDouble>(nullptr, 0.0, 1.0, 0.0);
    inner->Name = "Inner";
    MValueDouble& number = *inner;
    MValueScaleSqr value(std::move(inner));
    EXPECT_TRUE(value.SetNormalized(0.25));
    EXPECT_DOUBLE_EQ(number.Get(), 0.0625);
    EXPECT_DOUBLE_EQ(value.GetNormalized(), 0.25);
    EXPECT_EQ(value.CreateContentAt(0.5)->text.ToUTF8(), "0.2500");
    EXPECT_TRUE(value.HasChanged());
    MAttribute item;
    value.Store(item);
    EXPECT_EQ(item.GetAttribute("Inner").ToUTF8(), "0.062500");

    MValueScalePower<4> fourth(std::make_unique<MValueDouble>(nullptr, 0.0, 100.0, 0.0));
    fourth.SetNormalized(0.5);
    EXPECT_EQ(fourth.GetText().ToUTF8(), "6.250000");
    EXPECT_DOUBLE_EQ(fourth.GetNormalized(), 0.5);
}
}   // namespace
