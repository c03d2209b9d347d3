// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "audio/stages/ChannelRouting.h"
#include "tools/tonalign/BandSpec.h"

enum class Command
{
    Equalize,
    Separate,
    Render,
    Analyse,
    Show
};

enum class FileFormat
{
    FromEnding,
    Wav,
    Flac,
    Aiff
};

enum class SampleFormat
{
    AsInput,
    Int8,   // only as the input has it
    Int16,
    Int24,
    Float32
};

/// What the command line asks for. Percentages and dB as typed.
struct Options
{
    Command command = Command::Equalize;
    std::string input;   ///< TARGET, TRACK, INPUT or FILE
    std::string source;   ///< SOURCE or MIX
    std::string output;
    std::string stateFile;
    std::string saveStateFile;
    std::string savePresetFile;   ///< ".vstpreset" or ".fxp"
    std::vector<BandSpec> bands;

    std::int32_t bandCount = 4;
    std::int32_t algorithm = 0;   ///< MFAAlgorithm
    std::optional<double> lowHz;
    std::optional<double> highHz;
    bool neverAmplify = false;
    bool noPassNotch = false;
    double smoothPercent = 5;
    double limitDb = -40;

    std::optional<std::int32_t> mode;   ///< EqualizerMode
    std::optional<double> dryWetPercent;
    std::optional<double> gainDb;
    std::optional<double> saturationPercent;

    std::optional<std::int32_t> upsampling;   ///< factor, 1 to 4
    std::optional<bool> highQualityUpsampling;
    bool agc = false;
    std::optional<ChannelMode> channelMode;

    std::optional<double> rateHz;
    FileFormat fileFormat = FileFormat::FromEnding;   ///< told from the ending while the line is read
    SampleFormat sampleFormat = SampleFormat::AsInput;
    std::int32_t blockFrames = 512;

    bool json = false;
    bool csv = false;
    bool quiet = false;
    bool force = false;

    bool Fits() const { return command == Command::Equalize || command == Command::Separate; }
};

/// Thrown for a command line that can't be meant: status 2.
struct UsageError
{
    std::string message;
};

/// What to do instead of a command: print this and leave with success.
struct PrintAndExit
{
    std::string text;
};

/// Reads the command line. Throws UsageError or PrintAndExit (--help, --version).
Options ParseCommandLine(int argumentCount, const char* const* arguments);
