// SPDX-License-Identifier: GPL-3.0-or-later
// Presets on the whole plug-in: making an instance (with its factory presets), and stepping through a file of
// 1000 whole states, which includes preparing the processing anew.
#include <cstdlib>
#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "hosts/offline/OfflineHost.h"

namespace
{
// The folder goes with the process.
struct Folder
{
    Folder()
    {
        std::string path = (std::filesystem::temp_directory_path() / "tonalign-bench-XXXXXX").string();
        if (mkdtemp(path.data()) == nullptr)
            std::abort();
        folder = path;
        setenv("XDG_DATA_HOME", path.c_str(), 1);
    }
    ~Folder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    std::filesystem::path folder;
};

void UseFolder()
{
    static Folder folder;
}

void MakeInstance(benchmark::State& state)
{
    UseFolder();
    for (auto _ : state)
        benchmark::DoNotOptimize(CreateInstance());
}
BENCHMARK(MakeInstance)->Unit(benchmark::kMicrosecond);

void MakeFurtherInstance(benchmark::State& state)
{
    UseFolder();
    const auto first = CreateInstance();
    for (auto _ : state)
        benchmark::DoNotOptimize(CreateInstance());
}
BENCHMARK(MakeFurtherInstance)->Unit(benchmark::kMicrosecond);

void StepThroughThousandStates(benchmark::State& state)
{
    UseFolder();
    OfflineHost host;
    host.Prepare(48000, 2);
    constexpr int presetCount = 1000;
    MAttribute root("presets");
    for (int index = 0; index < presetCount; ++index)
    {
        MAttribute& preset = root.AddSubItem("preset");
        host.Plugin().Store({ .saving = 1, .item = &preset });
        preset.SetAttribute("name", "Preset " + MString::FromInt(index));
    }
    host.Plugin().presets.SavePresets(root);
    for (auto _ : state)
        host.Plugin().presets.StepPreset(1);
}
BENCHMARK(StepThroughThousandStates)->Unit(benchmark::kMillisecond);
}   // namespace
