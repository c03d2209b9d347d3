// SPDX-License-Identifier: GPL-3.0-or-later
#include "control/values/ValueText.h"

#include <cmath>

#include "foundation/text/MStringFormat.h"

namespace
{
constexpr double Nothing = 1e-50;   // below it a quantity counts as none

std::int64_t Rounded(double value)
{
    return static_cast<std::int64_t>(std::floor(value + 0.5));
}

// What is no number, or too large for an integer, would be undefined to convert.
bool IsConvertible(double value)
{
    constexpr double Largest = 9e18;
    return std::fabs(value) < Largest;
}

MString IntegerText(const char* format, double value)
{
    return IsConvertible(value) ? Format(format, Rounded(value))
                                : Format(format, MString::FromDouble(value, 0));
}

MString DecibelText(double gain, const char* coarse, const char* fine)
{
    if (!(gain >= Nothing))
        return "silence";
    const double db = 20.0 * std::log10(gain);
    return Format(std::fabs(db) >= 10.0 ? coarse : fine, db);
}
}   // namespace

bool ReadNumber(const MString& text, double& number)
{
    int consumed = 0;
    const double value = text.ToDouble(&consumed);
    if (consumed == 0 || !std::isfinite(value))
        return false;
    number = value;
    return true;
}

bool ReadInteger(const MString& text, std::int64_t& number)
{
    int consumed = 0;
    const std::int64_t value = text.ToInt(10, &consumed);
    if (consumed == 0)
        return false;
    number = value;
    return true;
}

MString PercentText(double factor)
{
    return Format(std::fabs(factor) >= 0.01 ? "{0.1}%" : "{0.2}%", factor * 100.0);
}

bool ReadPercent(const MString& text, double& factor)
{
    if (!ReadNumber(text, factor))
        return false;
    factor *= 0.01;
    return true;
}

MString FrequencyText(double hz)
{
    if (hz < 1e-5)
        return "0 Hz";
    if (hz < 1.0)
        return Format("{0;.4} Hz", hz);
    if (hz < 10.0)
        return Format("{0;.2} Hz", hz);
    if (hz < 100.0)
        return Format("{0;.1} Hz", hz);
    if (hz < 10000.0)
        return IntegerText("{0} Hz", hz);
    return Format("{0;.1} kHz", hz * 0.001);
}

bool ReadFrequency(const MString& text, double& hz)
{
    if (!ReadNumber(text, hz))
        return false;
    int place = 0;
    text.ToDouble(&place);
    while (place < text.Length() && text[place] == u' ')
        ++place;
    if (text[place] == u'k' || text[place] == u'K')
        hz *= 1000.0;
    return true;
}

MString GainText(double gain)
{
    return DecibelText(gain, "{0;.1} dB", "{0;.2} dB");
}

MString GainTextWithoutUnit(double gain)
{
    return DecibelText(gain, "{0;.1}", "{0;.2}");
}

bool ReadGain(const MString& text, double& gain)
{
    double db = 0.0;
    if (!ReadNumber(text, db))
        return false;
    gain = std::pow(10.0, db * 0.05);
    return true;
}

MString MillisecondsText(double seconds)
{
    if (std::fabs(seconds) < Nothing)
        return "0 ms";
    const double milliseconds = seconds * 1000.0;
    const double size = std::fabs(milliseconds);
    if (size < 0.1)
        return Format("{0;.3} ms", milliseconds);
    if (size < 1.0)
        return Format("{0;.2} ms", milliseconds);
    if (size < 10.0)
        return Format("{0;.1} ms", milliseconds);
    return IntegerText("{0} ms", milliseconds);
}

bool ReadMilliseconds(const MString& text, double& seconds)
{
    if (!ReadNumber(text, seconds))
        return false;
    seconds *= 0.001;
    return true;
}

MString PanText(double balance)
{
    if (std::fabs(balance) < Nothing)
        return "center";
    const auto percent = static_cast<int>(std::fmin(std::fabs(balance), 1e6) * 100.0);
    return Format(balance > 0.0 ? "{0}% right" : "{0}% left", percent);
}

bool ReadPan(const MString& text, double& balance)
{
    if (!ReadPercent(text, balance))
        return false;
    if (text.Find("left") >= 0)
        balance = -std::fabs(balance);
    return true;
}

MString DegreesText(double turn)
{
    const MString degreeSign(u'\u00B0');
    if (turn == 0.0)
        return Format("0{0} (0%)", degreeSign);
    const MString degrees = IntegerText("{0}", turn * 360.0);
    return Format("{0}{1} ({2.1}%)", degrees, degreeSign, turn * 100.0);
}

bool ReadDegrees(const MString& text, double& turn)
{
    if (!ReadNumber(text, turn))
        return false;
    turn /= 360.0;
    return true;
}

MString NoteText(int key)
{
    static constexpr const char* Notes[] = {
        "C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"
    };
    const int note = ((key % 12) + 12) % 12;
    return MString::Literal(Notes[note]) + MString::FromInt((key - note) / 12);
}
