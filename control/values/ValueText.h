// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/text/MString.h"

/// The texts that quantities are shown as, and what is read back from them. The readers answer false and
/// leave `value` when the text doesn't begin with a finite number.

/// 0.5 is "50.0%"; two decimals below 1 %.
MString PercentText(double factor);
bool ReadPercent(const MString& text, double& factor);

/// "0.5000 Hz", "440 Hz", "12.3 kHz".
MString FrequencyText(double hz);
/// In Hertz, or in kilohertz where a "k" follows the number.
bool ReadFrequency(const MString& text, double& hz);

/// A linear gain as "-6.02 dB", "-40.0 dB" or "silence".
MString GainText(double gain);
/// The same for displays with a unit of their own.
MString GainTextWithoutUnit(double gain);
/// Decibels.
bool ReadGain(const MString& text, double& gain);

/// 0.01 s is "10 ms"; up to three decimals below.
MString MillisecondsText(double seconds);
bool ReadMilliseconds(const MString& text, double& seconds);

/// -1 to 1: "30% left", "center", "30% right".
MString PanText(double balance);
/// A percentage, counted to the left where the text says so.
bool ReadPan(const MString& text, double& balance);

/// A fraction of a turn as "90\u00B0 (25.0%)".
MString DegreesText(double turn);
bool ReadDegrees(const MString& text, double& turn);

/// A MIDI key; 60 is "C5".
MString NoteText(int key);

/// The number that the text begins with.
bool ReadNumber(const MString& text, double& number);
bool ReadInteger(const MString& text, std::int64_t& number);
