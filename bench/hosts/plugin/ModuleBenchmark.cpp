// SPDX-License-Identifier: GPL-3.0-or-later
// What hosts feel of the module: scanning, making many instances, the adapters' share of a block.
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include "hosts/module/CreateInstance.h"
#include "hosts/vst2/MAudioPluginVSTAdapter.h"
#include "hosts/vst3/MAudioPluginVST3Adapter.h"
#include "hosts/vst3/PluginFactory.h"

namespace
{
using namespace Steinberg;

std::intptr_t HostAnswer(Vst2::AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*, float)
{
    return opcode == Vst2::HostOpcode::Version ? 2400 : 0;
}

// The whole scan of a host that has never seen the module in this process: it is unloaded each time.
void ScanVst2(benchmark::State& state)
{
    for (auto _ : state)
    {
        void* library = dlopen(TONALIGN_MODULE, RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr)
            return state.SkipWithError("The module isn't built.");
        auto* effect = reinterpret_cast<Vst2::AEffect* (*)(Vst2::HostCallback)>(
            dlsym(library, "VSTPluginMain"))(&HostAnswer);
        char text[256];
        effect->dispatcher(effect, Vst2::EffectOpcode::Open, 0, 0, nullptr, 0);
        effect->dispatcher(effect, Vst2::EffectOpcode::GetEffectName, 0, 0, text, 0);
        for (std::int32_t index = 0; index < effect->numParams; ++index)
        {
            effect->dispatcher(effect, Vst2::EffectOpcode::GetParamName, index, 0, text, 0);
            effect->dispatcher(effect, Vst2::EffectOpcode::GetParamDisplay, index, 0, text, 0);
        }
        effect->dispatcher(effect, Vst2::EffectOpcode::Close, 0, 0, nullptr, 0);
        dlclose(library);
    }
}
BENCHMARK(ScanVst2)->Unit(benchmark::kMillisecond);

Vst::IComponent* MakeVst3(IPluginFactory* factory)
{
    PClassInfo info;
    factory->getClassInfo(0, &info);
    Vst::IComponent* component = nullptr;
    factory->createInstance(info.cid, Vst::IComponent::iid, reinterpret_cast<void**>(&component));
    component->initialize(nullptr);
    return component;
}

void ScanVst3(benchmark::State& state)
{
    for (auto _ : state)
    {
        void* library = dlopen(TONALIGN_MODULE, RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr)
            return state.SkipWithError("The module isn't built.");
        reinterpret_cast<bool (*)(void*)>(dlsym(library, "ModuleEntry"))(library);
        auto* factory = reinterpret_cast<IPluginFactory* (*)()>(dlsym(library, "GetPluginFactory"))();
        Vst::IComponent* component = MakeVst3(factory);
        Vst::IEditController* controller = nullptr;
        component->queryInterface(Vst::IEditController::iid, reinterpret_cast<void**>(&controller));
        for (int32 index = 0; index < controller->getParameterCount(); ++index)
        {
            Vst::ParameterInfo info;
            controller->getParameterInfo(index, info);
            Vst::String128 text;
            controller->getParamStringByValue(info.id, info.defaultNormalizedValue, text);
        }
        controller->release();
        component->terminate();
        component->release();
        factory->release();
        reinterpret_cast<bool (*)()>(dlsym(library, "ModuleExit"))();
        dlclose(library);
    }
}
BENCHMARK(ScanVst3)->Unit(benchmark::kMillisecond);

void FiftyInstancesMadeAndPrepared(benchmark::State& state)
{
    for (auto _ : state)
    {
        std::vector<Vst2::AEffect*> effects;
        for (int number = 0; number < 50; ++number)
        {
            Vst2::AEffect* effect = Vst2::CreateEffect(&HostAnswer);
            effect->dispatcher(effect, Vst2::EffectOpcode::SetSampleRate, 0, 0, nullptr, 48000);
            effect->dispatcher(effect, Vst2::EffectOpcode::MainsChanged, 0, 1, nullptr, 0);
            effects.push_back(effect);
        }
        state.PauseTiming();
        for (Vst2::AEffect* effect : effects)
            effect->dispatcher(effect, Vst2::EffectOpcode::Close, 0, 0, nullptr, 0);
        state.ResumeTiming();
    }
}
BENCHMARK(FiftyInstancesMadeAndPrepared)->Unit(benchmark::kMillisecond);

constexpr std::int32_t blockFrames = 64;

struct Buffers
{
    std::vector<float> in = std::vector<float>(2 * blockFrames, 0.1f);
    std::vector<float> out = std::vector<float>(2 * blockFrames);
    float* inputs[8] = { in.data(), in.data() + blockFrames };
    float* outputs[8] = { out.data(), out.data() + blockFrames };
};

// Bypassed, a block is little work and the same in all three, so that their differences are the adapters'.
void BlockDirect(benchmark::State& state)
{
    Buffers buffers;
    const auto plugin = CreateInstance();
    plugin->SetConnectedChannels(2, 2);
    plugin->InitProcessing();
    plugin->bypass = true;
    for (auto _ : state)
        plugin->ProcessBlock(buffers.inputs, buffers.outputs, blockFrames, true);
}
BENCHMARK(BlockDirect);

void BlockVst2(benchmark::State& state)
{
    Buffers buffers;
    auto owned = CreateInstance();
    MQuorvaneAudioEffectPlugin* plugin = owned.get();
    Vst2::MAudioPluginVSTAdapter adapter(&HostAnswer, std::move(owned));
    plugin->bypass = true;
    Vst2::AEffect* effect = adapter.Effect();
    for (auto _ : state)
        effect->processReplacing(effect, buffers.inputs, buffers.outputs, blockFrames);
}
BENCHMARK(BlockVst2);

void BlockVst3(benchmark::State& state)
{
    Buffers buffers;
    auto* adapter = new Vst3::MAudioPluginVST3Adapter(CreateInstance());
    adapter->initialize(nullptr);
    adapter->Plugin().bypass = true;
    Vst::AudioBusBuffers in;
    Vst::AudioBusBuffers out;
    in.numChannels = out.numChannels = 2;
    in.channelBuffers32 = buffers.inputs;
    out.channelBuffers32 = buffers.outputs;
    Vst::ProcessData data;
    data.symbolicSampleSize = Vst::kSample32;
    data.numSamples = blockFrames;
    data.numInputs = data.numOutputs = 1;
    data.inputs = &in;
    data.outputs = &out;
    for (auto _ : state)
        adapter->process(data);
    adapter->terminate();
    adapter->release();
}
BENCHMARK(BlockVst3);

void SetParameterVst2(benchmark::State& state)
{
    Vst2::AEffect* effect = Vst2::CreateEffect(&HostAnswer);
    float value = 0;
    for (auto _ : state)
    {
        value = value > 0.9f ? 0.0f : value + 0.001f;
        effect->setParameter(effect, static_cast<std::int32_t>(state.range(0)), value);
    }
    effect->dispatcher(effect, Vst2::EffectOpcode::Close, 0, 0, nullptr, 0);
}
BENCHMARK(SetParameterVst2)->Arg(1)->Arg(12);   // the output gain, the gain of a band

void GetParameterVst2(benchmark::State& state)
{
    Vst2::AEffect* effect = Vst2::CreateEffect(&HostAnswer);
    for (auto _ : state)
        benchmark::DoNotOptimize(effect->getParameter(effect, static_cast<std::int32_t>(state.range(0))));
    effect->dispatcher(effect, Vst2::EffectOpcode::Close, 0, 0, nullptr, 0);
}
BENCHMARK(GetParameterVst2)->Arg(1)->Arg(12);
}   // namespace
