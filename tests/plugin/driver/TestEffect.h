// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <vector>

#include "foundation/text/MException.h"
#include "plugin/contract/MAudioEffectPlugin.h"
#include "plugin/contract/MPluginArgument.h"
#include "state/tree/MAttribute.h"
#include "state/tree/MStoreParams.h"

/// An effect that passes its input through and writes down what is asked of it.
class TestEffect : public MAudioEffectPlugin
{
public:
    enum Parameter
    {
        Ramp = 0,
        Plain = 1,
        Choice = 2,
        Silent = 3,
        Toggle = 4,
        Count = 5
    };

    TestEffect()
    {
        static constexpr const char* names[] = { "One", "Two", "Three" };
        parameters[Ramp] = MPluginParameterInfo::Float("Ramp", "ramp", 0, 10, 5)
                               .WithFlags(ParameterFlag::Interpolated)
                               .WithFormat("{+0.2} dB");
        parameters[Plain] = MPluginParameterInfo::Float("Plain", "plain", -1, 1, 0);
        parameters[Plain].curve = 1;
        parameters[Choice] = MPluginParameterInfo::Enumeration("Choice", "choice", names, 3, 1);
        parameters[Silent] =
            MPluginParameterInfo::Float("Silent", "silent", 0, 1, 0).WithFlags(0, ParameterFlag::NeedsUpdate);
        parameters[Toggle] = MPluginParameterInfo::Boolean("Toggle", "toggle", false);
        description.parameters = parameters;
        description.parameterCount = Count;
        last = this;
    }
    ~TestEffect() override { last = last == this ? nullptr : last; }

    static std::int64_t Entry(MPlugin* instance, std::int64_t command, MPluginArgument* arguments)
    {
        if (instance == nullptr)
            instance = new TestEffect;
        if (command == PluginCommand::GetInstance)
            return static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(instance));
        return instance->Dispatch(command, arguments);
    }

    std::int64_t InitProcessing(std::int32_t channelCount, double newSampleRate) override
    {
        if (failsToPrepare)
            throw MException("Not prepared.");
        channelGroups = channelCount;
        sampleRate = newSampleRate;
        ++initCount;
        return 0;
    }
    void Process(const MProcessContext& context, float** inputs, float** outputs, std::int32_t count) override
    {
        runs.push_back(count);
        rampValues.push_back(parameters[Ramp].RunningValue());
        tempo = context.tempo;
        for (std::int32_t channel = 0; channel < channelGroups; ++channel)
            for (std::int32_t index = 0; index < count; ++index)
                outputs[channel][index] = gain * inputs[channel][index];
    }
    void Update() override { ++updateCount; }
    void OnParameterChange(std::int32_t index) override { changes.push_back(index); }
    std::int32_t GetLatency() override { return latency; }
    std::int32_t GetTailSize() override { return 77; }
    void SetUpsamplingRatio(std::int32_t ratio) override { upsamplingRatio = ratio; }
    bool NeedsDownsamplingFilter() const override { return needsDownFilter; }
    void Store(const MStoreParams& params) override { ++(params.saving ? saveCount : loadCount); }

    static inline TestEffect* last = nullptr;
    MPluginParameterInfo parameters[Count];
    std::vector<std::int32_t> runs;
    std::vector<double> rampValues;
    std::vector<std::int32_t> changes;
    int updateCount = 0;
    int initCount = 0;
    int saveCount = 0;
    int loadCount = 0;
    std::int32_t latency = 0;
    float gain = 1;
    std::int32_t upsamplingRatio = 0;
    bool needsDownFilter = true;
    bool failsToPrepare = false;
    double tempo = 0;
};
