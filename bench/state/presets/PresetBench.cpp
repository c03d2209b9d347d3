// SPDX-License-Identifier: GPL-3.0-or-later
// A preset file of 1000 presets, each a state of 260 attributes as the plug-in has it: what a user waits for
// when it is opened, stepped through and saved. Saving includes the disk (fsync).
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include "state/presets/MPresetManagerT.h"

namespace
{
constexpr int PresetCount = 1000;
constexpr int AttributeCount = 260;

struct State
{
    double sum = 0;

    void Store(const MStoreParams& params)
    {
        for (int index = 0; index < AttributeCount; ++index)
        {
            const MString key = "parameter" + MString::FromInt(index);
            if (params.saving)
                params.item->SetAttribute(key, MString::FromDouble(sum + index, 12));
            else
                sum += params.item->GetAttribute(key).ToDouble();
        }
    }
};

void Fill(MAttribute& root)
{
    std::mt19937 random(1);
    for (int preset = 0; preset < PresetCount; ++preset)
    {
        if (preset % 50 == 0)
            root.AddSubItem("Directory").SetAttribute("Name", "Folder " + MString::FromInt(preset));
        MAttribute& item = root.SubItemAt(root.SubItemCount() - 1).AddSubItem("preset");
        item.SetAttribute("name", "Preset " + MString::FromInt(preset));
        // Half of a plug-in's parameters stand at their defaults.
        for (int index = 0; index < AttributeCount; ++index)
            item.SetAttribute("parameter" + MString::FromInt(index),
                              index % 2 == 0
                                  ? MString("0.707107")
                                  : MString::FromDouble(static_cast<double>(random()) / 65536.0, 8));
    }
}

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
        MAttribute root("presets");
        Fill(root);
        manager.SetPrefix("Bench");
        manager.SavePresets(root);
    }
    ~Folder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    std::filesystem::path folder;
    State state;
    MPresetManagerT<State> manager{ state };
};

Folder& Prepared()
{
    static Folder folder;
    return folder;
}

void LoadFile(benchmark::State& state)
{
    Folder& folder = Prepared();
    for (auto _ : state)
    {
        MAttribute root;
        folder.manager.LoadPresets(root);
        benchmark::DoNotOptimize(root.SubItemCount());
    }
    state.counters["fileKB"] =
        static_cast<double>(std::filesystem::file_size(folder.folder / "Quorvane/Benchpresets.xml")) / 1024;
}
BENCHMARK(LoadFile)->Unit(benchmark::kMillisecond);

void Step(benchmark::State& state)
{
    Folder& folder = Prepared();
    for (auto _ : state)
        folder.manager.StepPreset(1);
}
BENCHMARK(Step)->Unit(benchmark::kMillisecond);

void SaveFile(benchmark::State& state)
{
    Folder& folder = Prepared();
    MAttribute root;
    folder.manager.LoadPresets(root);
    for (auto _ : state)
        folder.manager.SavePresets(root);
}
BENCHMARK(SaveFile)->Unit(benchmark::kMillisecond);

// Load, change, save: what adding one preset costs.
void ReplaceOne(benchmark::State& state)
{
    Folder& folder = Prepared();
    MAttribute root;
    folder.manager.LoadPresets(root);
    for (auto _ : state)
        folder.manager.ReplacePreset(root.SubItemAt(0).SubItemAt(0));
}
BENCHMARK(ReplaceOne)->Unit(benchmark::kMillisecond);

// The first save of 1000 plain presets compresses each of them.
void CompressAll(benchmark::State& state)
{
    for (auto _ : state)
    {
        state.PauseTiming();
        MAttribute root("presets");
        Fill(root);
        state.ResumeTiming();
        CompressPresets(root);
    }
}
BENCHMARK(CompressAll)->Unit(benchmark::kMillisecond);
}   // namespace
