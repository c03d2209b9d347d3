// SPDX-License-Identifier: GPL-3.0-or-later
#include <map>

#include <CLI/CLI.hpp>

#include "tools/tonalign/ChannelModeName.h"
#include "tools/tonalign/HelpTexts.h"
#include "tools/tonalign/Options.h"

namespace
{
constexpr const char* version = "7.10";

// Numbers are checked here rather than by the library, so that "nan" is out of every range.
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

const std::map<std::string, std::int32_t> algorithmNames{ { "default", 0 }, { "optimized", 1 } };
const std::map<std::string, std::int32_t> modeNames{ { "normal", 0 }, { "linear", 1 }, { "fft", 2 } };
const std::map<std::string, bool> qualityNames{ { "plain", false }, { "high", true } };
const std::map<std::string, FileFormat> formatNames{ { "wav", FileFormat::Wav },
                                                     { "flac", FileFormat::Flac },
                                                     { "aiff", FileFormat::Aiff } };
const std::map<std::string, SampleFormat> sampleNames{ { "16", SampleFormat::Int16 },
                                                       { "24", SampleFormat::Int24 },
                                                       { "32f", SampleFormat::Float32 } };

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
        added.add_option(inputName, options.input)->required();
        added.add_flag("--json", options.json);
        added.add_flag("--quiet", options.quiet);
        return added;
    }

    void AddFit(const char* name, Command command, const char* help)
    {
        CLI::App& added = AddCommand(name, command, help, "TARGET");
        added.add_option("--source", options.source)->required();
        added.add_option("--bands", options.bandCount)->check(CLI::Range(1, 10));
        added.add_option("--algorithm", options.algorithm)
            ->transform(CLI::CheckedTransformer(algorithmNames));
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
        added.add_option("--state", options.stateFile);
        added.add_option("--band", bandTexts)->expected(1)->take_all()->allow_extra_args(false);
        AddSound(added);
        AddOutput(added, true);
    }

    void AddAnalyse()
    {
        CLI::App& added = AddCommand("analyse", Command::Analyse, HelpTexts::Analyse, "FILE");
        added.add_option("-o", options.output)->required();
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
        command.add_option("--mode", options.mode)->transform(CLI::CheckedTransformer(modeNames));
        command.add_option("--dry-wet", options.dryWetPercent)->check(RangeCheck(0, 100));
        command.add_option("--gain", options.gainDb)->check(RangeCheck(-24, 24));
        command.add_option("--saturation", options.saturationPercent)->check(RangeCheck(0, 100));
        command.add_option("--upsampling", options.upsampling)->check(CLI::Range(1, 4));
        command.add_option("--upsampling-quality", options.highQualityUpsampling)
            ->transform(CLI::CheckedTransformer(qualityNames));
        command.add_flag("--agc", options.agc);
        command.add_option("--channel-mode", channelModeText);
    }

    void AddOutput(CLI::App& command, bool required)
    {
        command.add_option("-o", options.output)->required(required);
        command.add_option("--save-state", options.saveStateFile);
        command.add_option("--format", options.fileFormat)->transform(CLI::CheckedTransformer(formatNames));
        command.add_option("--bits", options.sampleFormat)->transform(CLI::CheckedTransformer(sampleNames));
        command.add_option("--block", options.blockFrames)->check(CLI::Range(1, 1048576));
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

void CheckCombinations(const Options& options)
{
    if (options.lowHz.value_or(20) > options.highHz.value_or(20000))
        throw UsageError{ "--low lies above --high" };
    if (options.bands.size() > 10)
        throw UsageError{ "--band was given more than 10 times" };
    for (const std::string* path : { &options.input, &options.source, &options.output })
        if (path->find('\0') != std::string::npos)
            throw UsageError{ "a file name holds a zero character" };
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
    return options;
}
