// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

/// What a run of the program left.
struct Outcome
{
    int status = -1;
    std::string out;
    std::string err;
};

inline std::string ReadFile(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

class Program : public ::testing::Test
{
protected:
    void SetUp() override
    {
        folder = fs::path(std::getenv("TONALIGN_TEST_FOLDER")) /
                 ::testing::UnitTest::GetInstance()->current_test_info()->name();
        fs::create_directories(folder);
        program = fs::path(std::getenv("TONALIGN_BINARY_DIR")) / "tonalign";
        ASSERT_TRUE(fs::exists(program));
    }

    std::string Path(const std::string& name) const { return (folder / name).string(); }

    pid_t Start(const std::vector<std::string>& words, rlim_t fileLimit = RLIM_INFINITY) const
    {
        std::vector<std::string> all{ program.string() };
        all.insert(all.end(), words.begin(), words.end());
        std::vector<char*> arguments;
        for (std::string& word : all)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        const std::string out = Path("stdout"), err = Path("stderr");
        const pid_t child = fork();
        if (child == 0)
        {
            const rlimit limit{ fileLimit, fileLimit };
            setrlimit(RLIMIT_FSIZE, &limit);
            signal(SIGINT, SIG_DFL);   // a shell's background job ignores it
            dup2(open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 1);
            dup2(open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 2);
            execv(arguments[0], arguments.data());
            _exit(127);
        }
        return child;
    }

    Outcome Finish(pid_t child) const
    {
        int status = 0;
        waitpid(child, &status, 0);
        Outcome outcome;
        outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        outcome.out = ReadFile(Path("stdout"));
        outcome.err = ReadFile(Path("stderr"));
        fs::remove(Path("stdout"));
        fs::remove(Path("stderr"));
        return outcome;
    }

    Outcome Run(const std::vector<std::string>& words) const { return Finish(Start(words)); }

    // A WAV file of noise through a one-pole low-pass; `darkness` 0 leaves it white.
    std::string Noise(const std::string& name, double darkness, double seconds = 2, int rate = 48000,
                      int channels = 2, int format = SF_FORMAT_WAV | SF_FORMAT_PCM_16,
                      float level = 0.1f) const
    {
        std::mt19937 generator(static_cast<unsigned>(name.size()));
        std::normal_distribution<float> samples(0, level);
        std::vector<float> frames(static_cast<std::size_t>(seconds * rate) *
                                  static_cast<std::size_t>(channels));
        double memory = 0;
        for (std::size_t index = 0; index < frames.size(); ++index)
        {
            if (index % static_cast<std::size_t>(channels) == 0)
                memory = darkness * memory + (1 - darkness) * static_cast<double>(samples(generator));
            frames[index] = static_cast<float>(memory);
        }
        return Write(name, frames, rate, channels, format);
    }

    std::string Write(const std::string& name, const std::vector<float>& frames, int rate, int channels,
                      int format) const
    {
        SF_INFO info = {};
        info.samplerate = rate;
        info.channels = channels;
        info.format = format;
        SNDFILE* file = sf_open(Path(name).c_str(), SFM_WRITE, &info);
        EXPECT_NE(file, nullptr) << sf_strerror(nullptr);
        sf_writef_float(file, frames.data(), static_cast<sf_count_t>(frames.size()) / channels);
        sf_close(file);
        return Path(name);
    }

    static std::vector<float> Read(const std::string& path, SF_INFO* info = nullptr)
    {
        SF_INFO own = {};
        SF_INFO& used = info != nullptr ? *info : own;
        used = {};
        SNDFILE* file = sf_open(path.c_str(), SFM_READ, &used);
        EXPECT_NE(file, nullptr) << path;
        if (file == nullptr)
            return {};
        std::vector<float> frames(static_cast<std::size_t>(used.frames * used.channels));
        sf_readf_float(file, frames.data(), used.frames);
        sf_close(file);
        return frames;
    }

    // What is in the folder besides the names given: nothing may be left behind.
    std::vector<std::string> Leftovers(std::vector<std::string> known) const
    {
        std::vector<std::string> others;
        for (const auto& entry : fs::directory_iterator(folder))
            if (std::find(known.begin(), known.end(), entry.path().filename().string()) == known.end())
                others.push_back(entry.path().filename().string());
        return others;
    }

    fs::path folder;
    fs::path program;
};
