// SPDX-License-Identifier: GPL-3.0-or-later
// What goes wrong, and what can be asked for: files, words, ranges, signals, and the help that tells of them.
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/tools/tonalign/ProgramFixture.h"

TEST_F(Program, NothingToEqualizeIsNoFailure)
{
    const std::string in = Noise("in.wav", 0.5);
    const Outcome outcome = Run({ "equalize", in, "--source", in, "-o", Path("out.wav") });
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_NE(
        outcome.out.find("There is nothing to equalize, because the analysis shows it is already perfect."),
        std::string::npos);
    EXPECT_EQ(Read(Path("out.wav")), Read(in)) << "rendered flat";
}

TEST_F(Program, BadInputGivesOneLineThatNamesTheFile)
{
    const std::string good = Noise("good.wav", 0.5);
    std::ofstream(Path("empty.wav")).flush();
    std::ofstream(Path("text.wav")) << "this is no audio at all";
    const std::string whole = ReadFile(good);
    std::ofstream(Path("cut.wav"), std::ios::binary) << whole.substr(0, whole.size() / 2);
    Write("silent.wav", std::vector<float>(96000), 48000, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    std::vector<float> broken(96000, 0.1f);
    broken[777] = std::nanf("");
    Write("nan.wav", broken, 48000, 1, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    broken[777] = INFINITY;
    Write("inf.wav", broken, 48000, 1, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    Noise("nine.wav", 0.5, 0.5, 48000, 9);
    std::string fast = whole;
    fast.replace(24, 4, "\xFF\xFF\xFF\xFF");   // the sample rate in the header
    std::ofstream(Path("fast.wav"), std::ios::binary) << fast;
    Noise("short.wav", 0.5, 0.05);
    std::ofstream(Path("damaged.TonalignComparison")) << "<A>0011</A>";
    std::ofstream(Path("garbage.TonalignComparison")) << "garbage";

    std::vector<std::string> known{ "good.wav" };
    for (const auto& entry : fs::directory_iterator(folder))
        known.push_back(entry.path().filename().string());
    const std::string out = Path("out.wav");
    for (const char* name :
         { "missing.wav", "empty.wav", "text.wav", "cut.wav", "silent.wav", "nan.wav", "inf.wav", "nine.wav",
           "fast.wav", "short.wav", "damaged.TonalignComparison", "garbage.TonalignComparison" })
    {
        SCOPED_TRACE(name);
        const std::string path = Path(name);
        const bool isAnalysis = path.ends_with("Comparison");
        if (!isAnalysis)
        {
            const Outcome target = Run({ "equalize", path, "--source", good, "-o", out });
            EXPECT_EQ(target.status, 1);
            EXPECT_EQ(std::count(target.err.begin(), target.err.end(), '\n'), 1) << target.err;
            EXPECT_TRUE(target.err.starts_with("tonalign: " + path + ": ")) << target.err;
        }
        const Outcome source = Run({ "equalize", good, "--source", path, "-o", out });
        EXPECT_EQ(source.status, 1);
        EXPECT_EQ(std::count(source.err.begin(), source.err.end(), '\n'), 1) << source.err;
        EXPECT_TRUE(source.err.starts_with("tonalign: " + path + ": ")) << source.err;
        EXPECT_EQ(Leftovers(known), std::vector<std::string>{});
    }
    std::ofstream(Path("bad.state")) << "<settings><Analyzer";
    known.push_back("bad.state");
    for (const auto& words :
         std::vector<std::vector<std::string>>{ { "render", good, "-o", Path("no/such/folder/out.wav") },
                                                { "render", good, "-o", good, "--force" },
                                                { "render", good, "--state", Path("bad.state"), "-o", out },
                                                { "render", good, "--state", good, "-o", out },
                                                { "analyse", good, "-o", good, "--force" } })
    {
        const Outcome outcome = Run(words);
        EXPECT_EQ(outcome.status, 1) << outcome.out;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_EQ(Leftovers(known), std::vector<std::string>{});
    }
    EXPECT_EQ(ReadFile(good), whole);
}

TEST_F(Program, ReplacesPlainFilesOnlyAndOnlyByForce)
{
    const std::string in = Noise("in.wav", 0.5);
    std::ofstream(Path("out.wav")) << "precious";
    fs::create_symlink("out.wav", Path("link.wav"));
    ASSERT_EQ(mkfifo(Path("pipe.wav").c_str(), 0600), 0);
    fs::create_directory(Path("folder.wav"));
    for (const char* name : { "out.wav", "link.wav", "pipe.wav", "folder.wav" })
    {
        SCOPED_TRACE(name);
        const Outcome outcome = Run({ "render", in, "-o", Path(name) });
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.err.find(Path(name)), std::string::npos) << outcome.err;
        EXPECT_EQ(ReadFile(Path("out.wav")), "precious");
    }
    for (const char* name : { "pipe.wav", "folder.wav" })
        EXPECT_EQ(Run({ "render", in, "-o", Path(name), "--force" }).status, 1);
    EXPECT_TRUE(fs::is_fifo(Path("pipe.wav")) && fs::is_directory(Path("folder.wav")));
    EXPECT_EQ(Run({ "render", in, "-o", Path("link.wav"), "--force" }).status, 0);
    EXPECT_TRUE(fs::is_symlink(Path("link.wav")));
    EXPECT_EQ(Read(Path("out.wav")), Read(in)) << "what the link leads to";

    // Two names of one file that doesn't exist yet; an input under another name.
    const std::string other = (folder / "." / "new.wav").string();
    fs::create_hard_link(in, Path("also-in.wav"));
    for (const auto& words : std::vector<std::vector<std::string>>{
             { "-o", other, "--save-state", Path("new.wav") },
             { "-o", Path("x.fxp"), "--format", "wav", "--save-preset", (folder / "." / "x.fxp").string() },
             { "-o", Path("x.wav"), "--save-state", Path("s.fxp"), "--save-preset", Path("s.fxp") },
             { "-o", Path("also-in.wav"), "--force" } })
    {
        std::vector<std::string> all{ "render", in };
        all.insert(all.end(), words.begin(), words.end());
        EXPECT_EQ(Run(all).status, 1) << ::testing::PrintToString(words);
    }
    EXPECT_EQ(Leftovers({ "in.wav", "also-in.wav", "out.wav", "link.wav", "pipe.wav", "folder.wav" }),
              std::vector<std::string>{});
}

TEST_F(Program, AFullDiskNamesTheFileAndLeavesNothingBehind)
{
    const std::string in = Noise("in.wav", 0.5, 4), bright = Noise("bright.wav", 0);
    struct Case
    {
        std::vector<std::string> words;
        rlim_t limit;
        std::string culprit;
    };
    for (const Case& each :
         { Case{ { "render", in, "-o", Path("out.wav") }, 100000, Path("out.wav") },
           Case{ { "render", in, "-o", Path("out.flac") }, 50000, Path("out.flac") },
           Case{ { "equalize", in, "--source", bright, "--save-state", Path("o.state") },
                 1000,
                 Path("o.state") },
           Case{
               { "equalize", in, "--source", bright, "--save-preset", Path("o.fxp") }, 1000, Path("o.fxp") },
           Case{
               { "analyse", in, "-o", Path("o.TonalignComparison") }, 1000, Path("o.TonalignComparison") } })
    {
        const Outcome outcome = Finish(Start(each.words, each.limit));
        EXPECT_EQ(outcome.status, 1);
        EXPECT_TRUE(outcome.err.starts_with("tonalign: " + each.culprit + ": ")) << outcome.err;
        EXPECT_NE(outcome.err.find("Probably disk full."), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.err.find("/."), std::string::npos) << "a temporary name: " << outcome.err;
        EXPECT_EQ(Leftovers({ "in.wav", "bright.wav" }), std::vector<std::string>{});
    }
}

TEST_F(Program, ASignalStopsItAndLeavesNothing)
{
    const std::string in = Noise("in.wav", 0.5, 120);
    for (const std::vector<int>& signals : std::vector<std::vector<int>>{
             { SIGINT }, { SIGTERM }, { SIGHUP }, { SIGINT, SIGTERM }, { SIGHUP, SIGINT } })
    {
        SCOPED_TRACE(::testing::PrintToString(signals));
        const pid_t child =
            Start({ "render", in, "-o", Path("out.wav"), "--save-state", Path("out.state"), "--block", "1" });
        // The temporary file of the sound, with something in it.
        const auto isWriting = [this]
        {
            std::error_code gone;   // while we look: its size is then the largest number
            for (const auto& entry : fs::directory_iterator(folder))
                if (entry.path().filename().string().starts_with(".out.wav") &&
                    fs::file_size(entry.path(), gone) + 1 > 1)
                    return true;
            return false;
        };
        while (!isWriting() && waitpid(child, nullptr, WNOHANG) == 0)
            std::this_thread::yield();
        for (const int signal : signals)
            kill(child, signal);
        EXPECT_NE(Finish(child).status, 0);
        EXPECT_EQ(Leftovers({ "in.wav" }), std::vector<std::string>{});
    }
}

TEST_F(Program, WrongUsageIsTold)
{
    const std::string in = Noise("in.wav", 0.5, 0.5);
    for (const auto& words : std::vector<std::vector<std::string>>{
             {},
             { "nonsense" },
             { "render", in, "-o", "" },
             { "render", Path("missing.wav"), "-o", Path("out.foo") },
             { "render", Path("missing.wav"), "-o", Path("o.wav"), "--save-preset", Path("preset.foo") },
             { "equalize", in, "--source", in, "--low", "20000" },
             { "equalize", in, "--source", in, "--bands", "4x" },
             { "render", in, "-o", Path("o.wav"), "--band", "peak:1000:+-3:1" },
             { "equalize", in },
             { "equalize", in, "--source", in, "--bands", "eleven" },
             { "equalize", in, "--source", in, "--smooth", "nan" },
             { "equalize", in, "--source", in, "--low", "2000", "--high", "1000" },
             { "equalize", in, "--source", in, "--limit", "-3" },
             { "render", in },
             { "render", in, "-o", Path("out") },
             { "render", in, "-o", Path("o.flac"), "--bits", "32f" },
             { "render", in, "-o", Path("o.wav"), "--bits", "8" },
             { "render", in, "-o", Path("o.wav"), "--band", "peak:1000:6" },
             { "render", in, "-o", Path("o.wav"), "--band", "bell:1000:6:1" },
             { "render", in, "-o", Path("o.wav"), "--band", "peak:10:6:1" },
             { "render", in, "-o", Path("o.wav"), "--band", "peak:1000:6:1:10" },
             { "render", in, "-o", Path("o.wav"), "--band", "peak:nan:6:1" },
             { "render", in, "-o", Path("o.wav"), "--upsampling-quality", "best" },
             { "render", in, "-o", Path("o.wav"), "--channel-mode", "center" },
             { "render", in, "-o", Path("o.wav"), "--channel-mode", "Surround" },
             { "show", in, "--json", "--csv" } })
    {
        const Outcome outcome = Run(words);
        EXPECT_EQ(outcome.status, 2) << ::testing::PrintToString(words) << outcome.err;
        EXPECT_FALSE(outcome.err.empty());
        EXPECT_TRUE(outcome.out.empty());
    }
    EXPECT_EQ(Leftovers({ "in.wav" }), std::vector<std::string>{});
}

TEST_F(Program, NumbersHaveTheirRanges)
{
    const struct
    {
        const char* command;
        const char* option;
        const char* values[4];   // below, the lowest, the highest, above
    } ranges[] = { { "render", "--dry-wet=", { "-0.1", "0", "100", "100.1" } },
                   { "render", "--gain=", { "-24.1", "-24", "24", "24.1" } },
                   { "render", "--saturation=", { "-0.1", "0", "100", "100.1" } },
                   { "render", "--upsampling=", { "0", "1", "4", "5" } },
                   { "render", "--block=", { "0", "1", "1048576", "1048577" } },
                   { "equalize", "--bands=", { "0", "1", "10", "11" } },
                   { "equalize", "--low=", { "19.9", "20", "19999", "20000.1" } },
                   { "equalize", "--high=", { "20", "20.1", "20000", "20000.1" } },
                   { "equalize", "--smooth=", { "-0.1", "0", "20", "20.1" } },
                   { "separate", "--limit=", { "-100.1", "-100", "0", "0.1" } },
                   { "show", "--rate=", { "7999", "8000", "384000", "384001" } } };
    for (const auto& [command, option, values] : ranges)
        for (int index = 0; index < 4; ++index)
        {
            const std::string word = std::string(option) + values[index];
            std::vector<std::string> words{ command, Path("missing.wav"), word };
            if (std::string(command) == "render")
                words.insert(words.end(), { "-o", Path("out.wav") });
            else if (std::string(command) != "show")
                words.insert(words.end(), { "--source", Path("missing.wav") });
            // What is allowed gets as far as the missing file.
            EXPECT_EQ(Run(words).status, index == 0 || index == 3 ? 2 : 1) << word;
        }
}

TEST_F(Program, HelpManualAndParserNameTheSameOptions)
{
    EXPECT_EQ(Run({ "--version" }).out, "7.10\n");
    const auto optionsIn = [](const std::string& text, const std::regex& lines)
    {
        static const std::regex option("(?:^|[^-a-z])(-o|--[a-z-]+)");
        std::set<std::string> found;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);)
            if (std::regex_search(line, lines))
                for (std::sregex_iterator match(line.begin(), line.end(), option), end; match != end; ++match)
                    found.insert((*match)[1]);
        return found;
    };
    // What a line of the help describes stands at its start; a line of the manual is a heading by its macro.
    const std::regex helpLine("^  -"), manualLine("^\\.B");
    const std::string programHelp = Run({ "--help" }).out;
    EXPECT_TRUE(programHelp.starts_with("NAME\n"));
    std::set<std::string> all = optionsIn(programHelp, helpLine);

    const std::vector<std::string> commands{ "equalize", "separate", "render", "analyse", "show" };
    std::map<std::string, std::set<std::string>> ofCommand;
    for (const std::string& command : commands)
    {
        EXPECT_NE(programHelp.find(command), std::string::npos);
        const Outcome help = Run({ command, "--help" });
        EXPECT_EQ(help.status, 0);
        EXPECT_EQ(help.out, Run({ command, "-h" }).out);
        ofCommand[command] = optionsIn(help.out, helpLine);
        all.insert(ofCommand[command].begin(), ofCommand[command].end());
    }
    std::string manual =
        ReadFile(fs::path(std::getenv("TONALIGN_SOURCE_DIR")) / "tools" / "tonalign" / "tonalign.1");
    manual = std::regex_replace(manual.substr(manual.find(".SH OPTIONS")), std::regex("\\\\-"), "-");
    EXPECT_EQ(optionsIn(manual, manualLine), all);

    // What the help doesn't have the parser doesn't take, and the other way round.
    all.erase("--help");
    all.erase("--version");
    for (const std::string& command : commands)
    {
        std::vector<std::string> words{ command, Path("missing.wav") };
        if (command == "equalize" || command == "separate")
            words.insert(words.end(), { "--source", Path("missing.wav") });
        else if (command != "show")
            words.insert(words.end(), { "-o", Path("out.wav") });
        std::vector<std::string> foreign = words;
        for (const std::string& option : all)
            if (ofCommand[command].contains(option))
            {
                words.push_back(option);
                const std::string told = Run(words).err;
                EXPECT_EQ(told.find("not expected"), std::string::npos) << command << " " << told;
                words.pop_back();
            }
            else
            {
                foreign.push_back(option);
            }
        const std::string told = Run(foreign).err;
        const std::size_t place = told.find("not expected: ");
        ASSERT_NE(place, std::string::npos) << command;
        const std::string listed = told.substr(place) + " ";
        for (const std::string& option : all)
            EXPECT_NE(ofCommand[command].contains(option),
                      std::regex_search(listed, std::regex(" " + option + "\\s")))
                << command << " " << option << ": " << told;
    }
}
