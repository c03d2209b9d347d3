// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <charconv>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "hosts/module/HostPresetFile.h"
#include "tools/tonalign/ChannelModeName.h"
#include "tools/tonalign/HelpTexts.h"
#include "tools/tonalign/Options.h"

namespace
{
constexpr const char* version = "7.10";

// Everything is checked here rather than by the library: for messages that say what would be right, for
// "nan", which is out of every range, and for integers that are decimal whatever zeros they begin with.
class RangeCheck : public CLI::Validator
{
public:
    RangeCheck(double minimum, double maximum)
    {
        func_ = [minimum, maximum](std::string& text) -> std::string
        {
            double value = 0;
            if (!CLI::detail::lexical_cast(text, value) || !(value >= minimum && value <= maximum))
                return "\"" + text + "\" is not a number from " + CLI::detail::to_string(minimum) + " to " +
                       CLI::detail::to_string(maximum);
            return {};
        };
    }
};

class WholeNumber : public CLI::Validator
{
public:
    WholeNumber(std::int32_t minimum, std::int32_t maximum)
    {
        func_ = [minimum, maximum](std::string& text) -> std::string
        {
            std::int32_t value = 0;
            const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
            if (error != std::errc{} || end != text.data() + text.size() || value < minimum ||
                value > maximum)
                return "\"" + text + "\" is not a whole number from " + std::to_string(minimum) + " to " +
                       std::to_string(maximum);
            text = std::to_string(value);   // the library would read a leading zero as octal
            return {};
        };
    }
};

/// One of some words, in any case; what the option gets is the number behind the word.
class OneOf : public CLI::Validator
{
public:
    template <typename Value>
    explicit OneOf(const std::vector<std::pair<const char*, Value>>& words)
    {
        func_ = [words](std::string& text) -> std::string
        {
            std::string choices;
            for (const auto& [word, value] : words)
            {
                if (CLI::detail::to_lower(text) == word)
                {
                    text = std::to_string(static_cast<std::int32_t>(value));
                    return {};
                }
                choices += (choices.empty() ? "" : ", ") + std::string(word);
            }
            return "\"" + text + "\" is none of " + choices;
        };
    }
};

template <typename Value>
using Words = std::vector<std::pair<const char*, Value>>;

const Words<std::int32_t> algorithmNames{ { "default", 0 }, { "optimized", 1 } };
const Words<std::int32_t> modeNames{ { "normal", 0 }, { "linear", 1 }, { "fft", 2 } };
const Words<bool> qualityNames{ { "plain", false }, { "high", true } };
const Words<FileFormat> formatNames{ { "wav", FileFormat::Wav },
                                     { "flac", FileFormat::Flac },
                                     { "aiff", FileFormat::Aiff } };
const Words<SampleFormat> sampleNames{ { "16", SampleFormat::Int16 },
                                       { "24", SampleFormat::Int24 },
                                       { "32f", SampleFormat::Float32 } };

const CLI::Validator notEmpty([](const std::string& text)
                              { return text.empty() ? std::string("the file has no name") : std::string(); },
                              "");

class Parser
{
public:
    explicit Parser(Options& parsed) : options(parsed), app("tonalign", "tonalign")
    {
        SetHelp(app, HelpTexts::Program);
        app.set_version_flag("--version", version);
        app.require_subcommand(1);
        AddFit("equalize", Command::Equalize, HelpTexts::Equalize);
        AddFit("separate", Command::Separate, HelpTexts::Separate);
        AddRender();
        AddAnalyse();
        AddShow();
    }

    void Parse(int argumentCount, const char* const* arguments)
    {
        // The library would only say that a subcommand is missing.
        constexpr const char* names = "equalize, separate, render, analyse, show";
        if (argumentCount < 2)
            throw UsageError{ "a command is missing, one of " + std::string(names) };
        const std::string first = arguments[1];
        const auto commands = app.get_subcommands([](CLI::App*) { return true; });
        if (!first.starts_with('-') &&
            std::none_of(commands.begin(), commands.end(),
                         [&](const CLI::App* command) { return command->get_name() == first; }))
            throw UsageError{ "\"" + first + "\" is no command, which are " + names };
        try
        {
            app.parse(argumentCount, const_cast<char**>(arguments));
        }
        catch (const CLI::CallForVersion&)
        {
            throw PrintAndExit{ std::string(version) + "\n" };
        }
        catch (const CLI::CallForHelp&)
        {
            throw PrintAndExit{ HelpOf(app) };
        }
        catch (const CLI::ParseError& error)
        {
            throw UsageError{ error.what() };
        }
    }

private:
    static void SetHelp(CLI::App& command, const char* text)
    {
        command.set_help_flag("-h,--help", "");
        command.description(text);
    }

    // The help of the innermost command on the line.
    static std::string HelpOf(const CLI::App& command)
    {
        for (const CLI::App* chosen : command.get_subcommands())
            return HelpOf(*chosen);
        return command.get_description();
    }

    CLI::App& AddCommand(const char* name, Command command, const char* help, const char* inputName)
    {
        CLI::App& added = *app.add_subcommand(name);
        SetHelp(added, help);
        added.callback([this, command] { options.command = command; });
        added.add_option(inputName, options.input)->required()->check(notEmpty);
        added.add_flag("--json", options.json);
        added.add_flag("--quiet", options.quiet);
        return added;
    }

    void AddFit(const char* name, Command command, const char* help)
    {
        CLI::App& added = AddCommand(name, command, help, "TARGET");
        added.add_option("--source", options.source)->check(notEmpty)->required();
        added.add_option("--bands", options.bandCount)->transform(WholeNumber(1, 10));
        added.add_option("--algorithm", options.algorithm)->transform(OneOf(algorithmNames));
        added.add_option("--low", options.lowHz)->check(RangeCheck(20, 20000));
        added.add_option("--high", options.highHz)->check(RangeCheck(20, 20000));
        added.add_flag("--never-amplify", options.neverAmplify);
        added.add_flag("--no-pass-notch", options.noPassNotch);
        added.add_option("--smooth", options.smoothPercent)->check(RangeCheck(0, 20));
        if (command == Command::Separate)
            added.add_option("--limit", options.limitDb)->check(RangeCheck(-100, 0));
        added.add_option("--rate", options.rateHz)->check(RangeCheck(8000, 384000));
        AddSound(added);
        AddOutput(added, false);
    }

    void AddRender()
    {
        CLI::App& added = AddCommand("render", Command::Render, HelpTexts::Render, "INPUT");
        added.add_option("--state", options.stateFile)->check(notEmpty);
        added.add_option("--band", bandTexts)->expected(1)->take_all()->allow_extra_args(false);
        AddSound(added);
        AddOutput(added, true);
    }

    void AddAnalyse()
    {
        CLI::App& added = AddCommand("analyse", Command::Analyse, HelpTexts::Analyse, "FILE");
        added.add_option("-o", options.output)->check(notEmpty)->required();
        added.add_flag("--force", options.force);
    }

    void AddShow()
    {
        CLI::App& added = AddCommand("show", Command::Show, HelpTexts::Show, "FILE");
        CLI::Option* csv = added.add_flag("--csv", options.csv);
        added.get_option("--json")->excludes(csv);
        added.add_option("--rate", options.rateHz)->check(RangeCheck(8000, 384000));
    }

    void AddSound(CLI::App& command)
    {
        command.add_option("--mode", options.mode)->transform(OneOf(modeNames));
        command.add_option("--dry-wet", options.dryWetPercent)->check(RangeCheck(0, 100));
        command.add_option("--gain", options.gainDb)->check(RangeCheck(-24, 24));
        command.add_option("--saturation", options.saturationPercent)->check(RangeCheck(0, 100));
        command.add_option("--upsampling", options.upsampling)->transform(WholeNumber(1, 4));
        command.add_option("--upsampling-quality", options.highQualityUpsampling)
            ->transform(OneOf(qualityNames));
        command.add_flag("--agc", options.agc);
        command.add_option("--channel-mode", channelModeText);
    }

    void AddOutput(CLI::App& command, bool required)
    {
        command.add_option("-o", options.output)->check(notEmpty)->required(required);
        command.add_option("--save-state", options.saveStateFile)->check(notEmpty);
        command.add_option("--save-preset", options.savePresetFile)->check(notEmpty);
        command.add_option("--format", options.fileFormat)->transform(OneOf(formatNames));
        command.add_option("--bits", options.sampleFormat)->transform(OneOf(sampleNames));
        command.add_option("--block", options.blockFrames)->transform(WholeNumber(1, 1048576));
        command.add_flag("--force", options.force);
    }

    Options& options;
    CLI::App app;

public:
    std::vector<std::string> bandTexts;
    std::string channelModeText;
};

ChannelMode ParseChannelMode(const std::string& text)
{
    if (const std::optional<ChannelMode> mode = ChannelModeOf(text))
        return *mode;
    throw UsageError{ "--channel-mode: \"" + text + "\" is none of " + ChannelModeChoices() };
}

FileFormat FormatOfEnding(const std::string& path)
{
    const std::string lower = CLI::detail::to_lower(path);
    if (lower.ends_with(".flac"))
        return FileFormat::Flac;
    if (lower.ends_with(".aif") || lower.ends_with(".aiff") || lower.ends_with(".aifc"))
        return FileFormat::Aiff;
    if (lower.ends_with(".wav") || lower.ends_with(".wave"))
        return FileFormat::Wav;
    throw UsageError{ "-o: the format of " + path +
                      " can't be told from its ending: use .wav, .flac or .aiff, or give --format" };
}

void CheckOutputFormat(Options& options)
{
    if (options.output.empty() || options.command == Command::Analyse)
        return;
    if (options.fileFormat == FileFormat::FromEnding)
        options.fileFormat = FormatOfEnding(options.output);
    if (options.fileFormat == FileFormat::Flac && options.sampleFormat == SampleFormat::Float32)
        throw UsageError{ "--bits: FLAC doesn't hold 32-bit floats: use 16 or 24, or another format" };
}

void CheckCombinations(const Options& options)
{
    if (options.lowHz.value_or(20) >= options.highHz.value_or(20000))
        throw UsageError{ "--low doesn't lie below --high" };
    if (options.bands.size() > 10)
        throw UsageError{ "--band was given more than 10 times" };
    if (!options.savePresetFile.empty() && !HostPresetFile::FormatOf(options.savePresetFile))
        throw UsageError{ "--save-preset: " + options.savePresetFile +
                          " ends neither in .vstpreset, for VST 3 hosts, nor in .fxp, for VST 2 hosts" };
}
}   // namespace

Options ParseCommandLine(int argumentCount, const char* const* arguments)
{
    Options options;
    Parser parser(options);
    parser.Parse(argumentCount, arguments);
    for (const std::string& text : parser.bandTexts)
        options.bands.push_back(ParseBandSpec(text));
    if (!parser.channelModeText.empty())
        options.channelMode = ParseChannelMode(parser.channelModeText);
    CheckCombinations(options);
    CheckOutputFormat(options);
    return options;
}
