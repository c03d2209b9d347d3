// SPDX-License-Identifier: GPL-3.0-or-later
// The program as a user runs it.
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numbers>
#include <regex>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sndfile.h>
#include <unistd.h>

#include "tests/tools/tonalign/ProgramFixture.h"
#include "tools/tonalign/ProgressBar.h"

TEST_F(Program, EqualizesOneRecordingToAnother)
{
    const std::string dark = Noise("dark.wav", 0.9), bright = Noise("bright.wav", 0.0);
    const Outcome outcome = Run({ "equalize", dark, "--source", bright, "-o", Path("out.wav"), "--json" });
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    const nlohmann::json json = nlohmann::json::parse(outcome.out);
    EXPECT_EQ(json["bands"].size(), 4u);
    EXPECT_LT(json["rms_after_db"], 0.5 * json["rms_before_db"].get<double>());
    EXPECT_EQ(json["latency"], 32768);
    EXPECT_EQ(json["sample_rate"], 48000);
    EXPECT_EQ(json["channels"], 2);
    EXPECT_EQ(json["frames"], 96000);
    for (const char* stage : { "loading", "resampling", "analysing", "fitting", "rendering" })
        EXPECT_TRUE(json["seconds"].contains(stage)) << stage;
    SF_INFO info = {};
    const std::vector<float> out = Read(Path("out.wav"), &info);
    EXPECT_EQ(info.frames, 96000);
    EXPECT_EQ(info.format & SF_FORMAT_SUBMASK, SF_FORMAT_PCM_16);
    double peak = 0;
    for (const float sample : out)
        peak = std::max(peak, static_cast<double>(std::fabs(sample)));
    EXPECT_NEAR(json["peak_dbfs"], 20 * std::log10(peak), 0.05);

    // The equalized file needs next to nothing more.
    const Outcome again = Run({ "equalize", Path("out.wav"), "--source", bright, "--json" });
    EXPECT_NEAR(nlohmann::json::parse(again.out)["rms_before_db"].get<double>(),
                json["rms_after_db"].get<double>(), 0.5);
    EXPECT_EQ(Leftovers({ "dark.wav", "bright.wav", "out.wav" }), std::vector<std::string>{});
}

TEST_F(Program, RendersFlatFilesSampleForSample)
{
    for (const auto& [name, format, bits] : { std::tuple{ "a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 16 },
                                              { "a8.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 8 },
                                              { "a24.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 24 },
                                              { "b.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 24 },
                                              { "b8.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_S8, 8 },
                                              { "c.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 24 },
                                              { "c8.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_S8, 8 },
                                              { "c16.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16, 16 },
                                              { "d.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 16 },
                                              { "e.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 32 } })
        for (const char* mode : { "normal", "linear", "fft" })
        {
            if (bits == 8 && std::string(mode) != "linear")
                continue;
            SCOPED_TRACE(::testing::Message() << name << ", " << mode);
            const std::string in = Noise(name, 0.2, 0.5, 44100, 2, format);
            const std::string out = Path(std::string("out-") + name);
            const Outcome outcome = Run({ "render", in, "-o", out, "--mode", mode, "--force" });
            ASSERT_EQ(outcome.status, 0) << outcome.err;
            SF_INFO info = {};
            const std::vector<float> before = Read(in), after = Read(out, &info);
            ASSERT_EQ(before.size(), after.size());
            EXPECT_EQ(info.format & SF_FORMAT_SUBMASK, format & SF_FORMAT_SUBMASK) << "bits as the input";
            double worst = 0;
            for (std::size_t index = 0; index < after.size(); ++index)
                worst = std::max(worst, std::fabs(static_cast<double>(before[index]) - after[index]));
            // The transform there and back costs float rounding, up to a step of 24 bits.
            EXPECT_LE(worst, bits > 16 && std::string(mode) == "fft" ? 1.3e-7 : 0.0);
        }
}

TEST_F(Program, TypedBandsDoWhatTheySay)
{
    std::vector<float> impulse(120000);
    impulse[60000] = 0.5f;
    const std::string in = Write("impulse.wav", impulse, 48000, 1, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    const Outcome rendered = Run({ "render", in, "--band", "peak:1000:+6:1", "--band", "highpass:50:0:0.707",
                                   "-o", Path("o.wav"), "--save-state", Path("s.state") });
    ASSERT_EQ(rendered.status, 0) << rendered.err;
    EXPECT_TRUE(rendered.out.starts_with("Band  Type          Frequency        Gain        Q  Order\n"
                                         "   1  Peak           1.00 kHz    +6.00 dB    1.000  0\n"
                                         "   2  High-pass       50.0 Hz           -    0.707  0 (24 dB/oct)\n"
                                         "Peak of the output: "))
        << rendered.out;
    EXPECT_TRUE(rendered.out.ends_with("dBFS\nWritten: " + Path("o.wav") + "\n"));
    const std::vector<float> out = Read(Path("o.wav"));
    double re = 0, im = 0;
    for (std::size_t index = 0; index < out.size(); ++index)
    {
        const double phase = 2 * std::numbers::pi * 1000 / 48000 * static_cast<double>(index);
        re += out[index] * std::cos(phase);
        im -= out[index] * std::sin(phase);
    }
    EXPECT_NEAR(20 * std::log10(std::hypot(re, im) / 0.5), 6, 0.01);

    ASSERT_EQ(Run({ "render", in, "--state", Path("s.state"), "-o", Path("again.wav") }).status, 0);
    EXPECT_EQ(Read(Path("again.wav")), out) << "a state gives the same sound";
    const nlohmann::json state = nlohmann::json::parse(Run({ "show", Path("s.state"), "--json" }).out);
    EXPECT_EQ(state["bands"].size(), 2u);
    EXPECT_EQ(state["bands"][0]["type"], "peak");
    EXPECT_NEAR(state["bands"][0]["frequency"], 1000, 1e-6);
    const std::string csv = Run({ "show", Path("s.state"), "--csv" }).out;
    EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 1025);
    EXPECT_TRUE(csv.starts_with("frequency_hz,response_db\n"));
}

TEST_F(Program, UpsamplesWithTheLatencyTakenOut)
{
    std::vector<float> sine(60000);
    for (std::size_t index = 0; index < sine.size(); ++index)
        sine[index] = static_cast<float>(
            0.5 * std::sin(2 * std::numbers::pi * 1000 / 48000 * static_cast<double>(index)));
    const std::string in = Write("sine.wav", sine, 48000, 1, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    struct Case
    {
        const char* factor;
        const char* quality;
        int latency;
    };
    for (const Case& each : { Case{ "1", "high", 32768 }, Case{ "2", "high", 16384 + 768 },
                              Case{ "2", "plain", 16384 }, Case{ "4", "high", 8192 + 384 } })
    {
        SCOPED_TRACE(::testing::Message() << each.factor << each.quality);
        const Outcome outcome = Run({ "render", in, "-o", Path("out.wav"), "--upsampling", each.factor,
                                      "--upsampling-quality", each.quality, "--json", "--force" });
        ASSERT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(nlohmann::json::parse(outcome.out)["latency"], each.latency);
        const std::vector<float> out = Read(Path("out.wav"));
        ASSERT_EQ(out.size(), sine.size());
        double worst = 0;
        for (std::size_t index = 5000; index < 55000; ++index)
            worst = std::max(worst, std::fabs(static_cast<double>(out[index]) - sine[index]));
        if (std::string(each.quality) == "high")
            EXPECT_LT(worst, 5e-5);
        else
            EXPECT_LT(worst, 1.0) << "late by what the plain filter delays";
    }
}

TEST_F(Program, ChannelModesAndGainControl)
{
    // The sum in channel 0 and 1, and a difference: a band on the sum leaves the difference alone.
    std::vector<float> frames;
    for (int index = 0; index < 200000; ++index)
    {
        const double mid = 0.1 * std::sin(2 * std::numbers::pi * 1000 / 48000 * index);
        const double side = 0.05 * std::sin(2 * std::numbers::pi * 1500 / 48000 * index);
        frames.push_back(static_cast<float>(mid + side));
        frames.push_back(static_cast<float>(mid - side));
    }
    const std::string in = Write("in.wav", frames, 48000, 2, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    const auto levels = [&](const std::vector<std::string>& extra)
    {
        std::vector<std::string> words{ "render", in, "-o", Path("out.wav"), "--force" };
        words.insert(words.end(), extra.begin(), extra.end());
        const Outcome outcome = Run(words);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        const std::vector<float> out = Read(Path("out.wav"));
        double mid = 0, side = 0;
        for (std::size_t frame = 150000; frame < 150960 && 2 * frame + 1 < out.size(); ++frame)
        {
            const double left = out[2 * frame], right = out[2 * frame + 1];
            mid += (left + right) * (left + right) / 4 / 960;
            side += (left - right) * (left - right) / 4 / 960;
        }
        return std::pair(10 * std::log10(2 * mid), 10 * std::log10(2 * side));
    };
    const double midDb = 20 * std::log10(0.1), sideDb = 20 * std::log10(0.05);
    // 10 dB at the whole pass band: the gain of a mode's own channels.
    for (const char* name : { "M", "MID" })
    {
        const auto [mid, side] = levels({ "--channel-mode", name, "--gain", "10" });
        EXPECT_NEAR(mid, midDb + 10, 0.01) << name;
        EXPECT_NEAR(side, sideDb, 0.01) << name;
    }
    for (const char* name : { "s", "Stereo" })
    {
        const auto [mid, side] = levels({ "--channel-mode", name, "--gain", "10" });
        EXPECT_NEAR(mid, midDb, 0.01) << name;
        EXPECT_NEAR(side, sideDb + 10, 0.01) << name;
    }
    for (const char* name : { "mono + stereo", "l+r" })
    {
        const auto [mid, side] = levels({ "--channel-mode", name, "--gain", "-10" });
        EXPECT_NEAR(mid, midDb - 10, 0.01) << name;
        EXPECT_NEAR(side, sideDb - 10, 0.01) << name;
    }
    const auto [mid, side] = levels({ "--gain", "10", "--agc" });
    EXPECT_NEAR(mid, midDb, 0.01) << "taken back";
    EXPECT_NEAR(side, sideDb, 0.01);
}

TEST_F(Program, SixChannelsAreMatchedAndRendered)
{
    const std::string dark = Noise("dark.wav", 0.9, 3, 48000, 6), bright = Noise("bright.wav", 0.2, 3);
    const Outcome outcome =
        Run({ "equalize", dark, "--source", bright, "-o", Path("out.flac"), "--json", "--upsampling", "2" });
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    const nlohmann::json json = nlohmann::json::parse(outcome.out);
    EXPECT_EQ(json["channels"], 6);
    EXPECT_EQ(json["latency"], 16384 + 768);
    EXPECT_LT(json["rms_after_db"], json["rms_before_db"].get<double>() / 3);
    SF_INFO info = {};
    Read(Path("out.flac"), &info);
    EXPECT_EQ(info.channels, 6);
    EXPECT_EQ(info.frames, 3 * 48000);
    EXPECT_EQ(Run({ "render", dark, "-o", Path("o.wav"), "--channel-mode", "M" }).status, 2);
    EXPECT_EQ(Run({ "render", dark, "-o", Path("o.wav"), "--channel-mode", "7.1" }).status, 0);
}

TEST_F(Program, AnalysesStandInForRecordings)
{
    const std::string dark = Noise("dark.wav", 0.8, 2, 44100),
                      bright = Noise("bright.flac", 0.1, 2, 48000, 1, SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    ASSERT_EQ(Run({ "analyse", bright, "-o", Path("b.TonalignComparison") }).status, 0);
    ASSERT_EQ(Run({ "analyse", dark, "-o", Path("d.TonalignComparison") }).status, 0);
    const auto fit = [this](const std::string& target, const std::string& source)
    {
        const Outcome outcome = Run({ "equalize", target, "--source", source, "--json", "--rate", "44100" });
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return nlohmann::json::parse(outcome.out);
    };
    const nlohmann::json direct = fit(dark, bright);
    fs::copy_file(Path("b.TonalignComparison"), Path("reference.old"));
    const nlohmann::json saved = fit(Path("d.TonalignComparison"), Path("reference.old"));
    EXPECT_NEAR(direct["rms_before_db"], saved["rms_before_db"], 0.5) << "one was resampled, the other not";
    EXPECT_EQ(direct["bands"][0]["type"], saved["bands"][0]["type"]);
    EXPECT_EQ(
        Run({ "equalize", Path("d.TonalignComparison"), "--source", bright, "-o", Path("x.wav") }).status, 2);
    const std::string csv = Run({ "show", Path("b.TonalignComparison"), "--csv" }).out;
    EXPECT_TRUE(csv.starts_with("frequency_hz,level_db\n"));
    EXPECT_EQ(csv, Run({ "show", bright, "--csv" }).out);

    // A tone stands at its frequency whatever the rate that its file was made at.
    for (const int rate : { 22050, 48000, 96000 })
    {
        std::vector<float> tone(static_cast<std::size_t>(rate));
        for (std::size_t i = 0; i < tone.size(); ++i)
            tone[i] = std::sin(2 * std::numbers::pi_v<float> * 1000 / static_cast<float>(rate) *
                               static_cast<float>(i));
        Write("tone.wav", tone, rate, 1, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
        const auto shown = nlohmann::json::parse(Run({ "show", Path("tone.wav"), "--json" }).out);
        const std::vector<double> levels = shown["level_db"];
        const auto peak = std::max_element(levels.begin(), levels.end()) - levels.begin();
        EXPECT_NEAR(shown["frequency_hz"][static_cast<std::size_t>(peak)].get<double>(), 1000, 20) << rate;
    }
}

TEST_F(Program, ShowTellsWhatAStateOrARecordingHolds)
{
    const std::string in = Noise("in.wav", 0.5);
    const Outcome rendered = Run({ "render",
                                   in,
                                   "-o",
                                   Path("o.wav"),
                                   "--mode",
                                   "fft",
                                   "--dry-wet",
                                   "60",
                                   "--gain",
                                   "-3",
                                   "--saturation",
                                   "20",
                                   "--upsampling",
                                   "3",
                                   "--upsampling-quality",
                                   "plain",
                                   "--agc",
                                   "--channel-mode",
                                   "Left",
                                   "--band",
                                   "notch:500:0:2",
                                   "--save-state",
                                   Path("s.state") });
    ASSERT_EQ(rendered.status, 0) << rendered.err;
    const std::string text = Run({ "show", Path("s.state") }).out;
    EXPECT_TRUE(
        text.starts_with("Mode: Linear-phase FFT based, dry/wet 60.0 %, gain -3.00 dB, saturation 20.0 %\n"
                         "Channels L, upsampling 3x (plain), automatic gain control on\n"
                         "Analyses: target none, source none\n"))
        << text;
    const auto state = nlohmann::json::parse(Run({ "show", Path("s.state"), "--json" }).out);
    EXPECT_EQ(state["mode"], "Linear-phase FFT based");
    EXPECT_NEAR(state["dry_wet_percent"], 60, 1e-6);
    EXPECT_NEAR(state["gain_db"], -3, 1e-6);
    EXPECT_NEAR(state["saturation_percent"], 20, 1e-6);
    EXPECT_EQ(state["upsampling"], 3);
    EXPECT_EQ(state["upsampling_quality"], "plain");
    EXPECT_EQ(state["agc"], true);
    EXPECT_EQ(state["channel_mode"], "L");
    EXPECT_EQ(state["target_analysis"], false);
    EXPECT_EQ(state["bands"][0]["type"], "notch");

    const std::string chart = Run({ "show", in }).out;
    EXPECT_TRUE(chart.starts_with("0:02.00, 48000 Hz, 2 channels, 16 bits, peak -")) << chart;
    EXPECT_EQ(std::count(chart.begin(), chart.end(), '\n'), 31) << "a bar for each third of an octave";
    const auto audio = nlohmann::json::parse(Run({ "show", in, "--json" }).out);
    EXPECT_EQ(audio["kind"], "audio");
    EXPECT_EQ(audio["sample_rate"], 48000);
    EXPECT_EQ(audio["channels"], 2);
    EXPECT_EQ(audio["frames"], 96000);
    EXPECT_EQ(audio["bits"], 16);
    EXPECT_EQ(audio["float"], false);
}

TEST_F(Program, EveryFittingOptionDoesWhatItSays)
{
    const std::string dark = Noise("dark.wav", 0.9), bright = Noise("bright.wav", 0.0);
    const auto fit = [&](std::vector<std::string> extra)
    {
        std::vector<std::string> words{ "equalize", dark,           "--source",      bright,
                                        "--json",   "--save-state", Path("s.state"), "--force" };
        words.insert(words.end(), extra.begin(), extra.end());
        const Outcome outcome = Run(words);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return nlohmann::json::parse(outcome.out);
    };
    const auto response = [this](const std::string& state, const std::string& rate)
    {
        std::istringstream csv(Run({ "show", state, "--csv", "--rate", rate }).out);
        std::vector<std::pair<double, double>> points;
        std::string line;
        std::getline(csv, line);
        for (double hertz = 0, decibels = 0; std::getline(csv, line);)
            if (std::sscanf(line.c_str(), "%lf,%lf", &hertz, &decibels) == 2)
                points.emplace_back(hertz, decibels);
        EXPECT_EQ(points.size(), 1024u);
        return points;
    };
    const auto swing = [](const auto& points, double lowHz, double highHz)
    {
        double lowest = 1000, highest = -1000;
        for (const auto& [hertz, decibels] : points)
            if (hertz >= lowHz && hertz <= highHz)
            {
                lowest = std::min(lowest, decibels);
                highest = std::max(highest, decibels);
            }
        return highest - lowest;
    };
    const nlohmann::json plain = fit({});
    const auto whole = response(Path("s.state"), "48000");
    EXPECT_GT(swing(whole, 2000, 8000), 6);
    EXPECT_GT(swing(whole, 8000, 20000), 2);

    fit({ "--high", "1000", "--bands", "2" });
    EXPECT_LT(swing(response(Path("s.state"), "48000"), 6000, 20000), 1.5);
    fit({ "--low", "8000", "--bands", "2" });
    EXPECT_LT(swing(response(Path("s.state"), "48000"), 20, 1000), 1.5);
    EXPECT_GT(fit({ "--smooth", "0" })["rms_before_db"], fit({ "--smooth", "20" })["rms_before_db"]);
    EXPECT_NE(fit({ "--algorithm", "optimized" })["bands"], plain["bands"]);
    EXPECT_EQ(fit({ "--algorithm", "DEFAULT" })["bands"], plain["bands"]);
    EXPECT_EQ(fit({ "--bands", "010" })["bands"].size(), 10u);
    // A steep low cut is what a high-pass does best.
    std::vector<float> thin = Read(Noise("mono.wav", 0, 2, 48000, 1));
    for (int stage = 0; stage < 4; ++stage)
    {
        float last = 0, out = 0;
        for (float& sample : thin)
            out = 0.9f * (out + sample - std::exchange(last, sample)), sample = out;
    }
    const std::string cut = Write("cut.wav", thin, 48000, 1, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    for (const bool gainOnly : { false, true })
    {
        std::vector<std::string> words{ "equalize", Path("mono.wav"), "--source", cut,
                                        "--json",   "--bands",        "6" };
        if (gainOnly)
            words.emplace_back("--no-pass-notch");
        int passes = 0;
        const nlohmann::json fitted = nlohmann::json::parse(Run(words).out);
        for (const auto& band : fitted["bands"])
            passes +=
                band["type"] != "peak" && band["type"] != "lowshelf" && band["type"] != "highshelf" ? 1 : 0;
        EXPECT_EQ(passes == 0, gainOnly);
    }

    for (const auto& [target, source] : { std::pair{ dark, bright }, std::pair{ bright, dark } })
        for (const char* bands : { "1", "10" })
        {
            ASSERT_EQ(Run({ "equalize", target, "--source", source, "--never-amplify", "--bands", bands,
                            "--save-state", Path("cut.state"), "--force" })
                          .status,
                      0);
            for (const char* rate : { "44100", "48000", "96000" })
                for (const auto& [hertz, decibels] : response(Path("cut.state"), rate))
                    EXPECT_LE(decibels, 0.05) << hertz << " Hz, " << bands << " bands at " << rate;
        }

    // The lower the limit, the more of the mix counts, and the more room is made for it.
    const auto room = [&](const char* limit)
    {
        const Outcome outcome = Run({ "separate", dark, "--source", bright, "--limit", limit, "--json" });
        return nlohmann::json::parse(outcome.out)["rms_before_db"].get<double>();
    };
    EXPECT_GT(room("-60"), room("-20"));
}

TEST_F(Program, APresetHoldsTheStateInTheWrappingOfItsFormat)
{
    const std::string in = Noise("in.wav", 0.5);
    for (const char* name : { "My match.vstpreset", "My match.FXP" })
    {
        ASSERT_EQ(Run({ "render", in, "-o", Path("o.wav"), "--band", "peak:1000:6:1", "--save-state",
                        Path("o.state"), "--save-preset", Path(name), "--force" })
                      .status,
                  0);
        const std::string state = ReadFile(Path("o.state")), preset = ReadFile(Path(name));
        EXPECT_NE(preset.find(state), std::string::npos) << name;
        EXPECT_NE(preset.find("My match"), std::string::npos) << name;
        EXPECT_EQ(Run({ "equalize", in, "--source", Path("o.state") }).status, 1) << "no reference";
    }
}

TEST_F(Program, ClippingIsCountedAndTold)
{
    const std::string in = Noise("in.wav", 0, 0.5, 48000, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_24, 0.2f);
    const Outcome text = Run({ "render", in, "-o", Path("a.wav"), "--gain", "18" });
    EXPECT_NE(text.out.find("samples clipped"), std::string::npos) << text.out;
    const nlohmann::json clipped =
        nlohmann::json::parse(Run({ "render", in, "-o", Path("b.wav"), "--gain", "18", "--json" }).out);
    EXPECT_GT(clipped["clipped"], 0);
    EXPECT_GT(clipped["peak_dbfs"], 0);
    const nlohmann::json floats = nlohmann::json::parse(
        Run({ "render", in, "-o", Path("c.wav"), "--gain", "18", "--bits", "32f", "--json" }).out);
    EXPECT_EQ(floats["clipped"], 0);
    EXPECT_EQ(Run({ "render", in, "-o", Path("d.wav"), "--quiet" }).out, "");
}

// What is shown goes to standard error, a terminal here.
TEST(ProgressBar, ShowsOnATerminalWhatTakesMoreThanAMoment)
{
    const int master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    ASSERT_TRUE(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0);
    const int terminal = open(ptsname(master), O_RDWR | O_NOCTTY);
    const int before = dup(STDERR_FILENO);
    dup2(terminal, STDERR_FILENO);
    std::vector<std::pair<Stage, double>> seconds;
    {
        ProgressBar quiet(true), bar(false);
        for (const double share : { 0.25, 0.5, 0.75 })
        {
            quiet.Report(Stage::Loading, share);
            bar.Report(Stage::Loading, share);
            if (share < 0.5)   // nothing is shown in the first quarter of a second
                std::this_thread::sleep_for(std::chrono::milliseconds(300));
        }
        bar.Report(Stage::Rendering, 0.5);
        bar.Report(Stage::Loading, 1);
        bar.Finish();
        seconds = bar.Seconds();
    }
    dup2(before, STDERR_FILENO);
    char shown[1000] = {};
    EXPECT_GT(read(master, shown, sizeof shown - 1), 0);
    for (const int file : { master, terminal, before })
        close(file);
    EXPECT_TRUE(
        std::regex_match(shown, std::regex("\r"
                                           R"(Loading the file\.\.\.  \[#{15} {15}\]  50 %  \d s left )"
                                           "\033\\[K\r\033\\[K")))
        << testing::PrintToString(shown);
    ASSERT_EQ(seconds.size(), 2u) << "in order of their start";
    EXPECT_EQ(StageName(seconds[0].first), std::string("loading"));
    EXPECT_GE(seconds[0].second, 0.3);
    EXPECT_EQ(StageName(seconds[1].first), std::string("rendering"));
}
