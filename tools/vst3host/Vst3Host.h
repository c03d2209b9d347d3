// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <cstring>
#include <string>
#include <vector>

#include <pluginterfaces/base/ibstream.h>
#include <pluginterfaces/base/ipluginbase.h>
#include <pluginterfaces/vst/ivstaudioprocessor.h>
#include <pluginterfaces/vst/ivstcomponent.h>
#include <pluginterfaces/vst/ivsteditcontroller.h>
#include <pluginterfaces/vst/ivstmessage.h>
#include <pluginterfaces/vst/ivstparameterchanges.h>
#include <pluginterfaces/vst/ivstunits.h>

#include "tools/vst3host/LoadedModule.h"

/// The objects that a VST 3 host hands to a plug-in; they live on the host's stack and only count references.
template <typename Interface>
class HostObject : public Interface
{
public:
    virtual ~HostObject() = default;
    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID wanted, void** object) override
    {
        const bool known = Steinberg::FUnknownPrivate::iidEqual(wanted, Interface::iid) ||
                           Steinberg::FUnknownPrivate::iidEqual(wanted, Steinberg::FUnknown::iid);
        *object = known ? this : nullptr;
        references += known ? 1 : 0;
        return known ? Steinberg::kResultOk : Steinberg::kNoInterface;
    }
    Steinberg::uint32 PLUGIN_API addRef() override { return static_cast<Steinberg::uint32>(++references); }
    Steinberg::uint32 PLUGIN_API release() override { return static_cast<Steinberg::uint32>(--references); }

    std::atomic<int> references = 0;
};

class StateStream : public HostObject<Steinberg::IBStream>
{
public:
    Steinberg::tresult PLUGIN_API read(void* buffer, Steinberg::int32 count, Steinberg::int32* got) override
    {
        const auto left = static_cast<Steinberg::int32>(bytes.size() - position);
        const Steinberg::int32 run = std::min(count, left);
        if (run > 0)
            std::memcpy(buffer, bytes.data() + position, static_cast<std::size_t>(run));
        position += static_cast<std::size_t>(run);
        if (got != nullptr)
            *got = run;
        return Steinberg::kResultOk;
    }
    Steinberg::tresult PLUGIN_API write(void* buffer, Steinberg::int32 count, Steinberg::int32* done) override
    {
        const auto* from = static_cast<const std::uint8_t*>(buffer);
        bytes.insert(bytes.end(), from, from + count);
        if (done != nullptr)
            *done = count;
        return Steinberg::kResultOk;
    }
    Steinberg::tresult PLUGIN_API seek(Steinberg::int64, Steinberg::int32, Steinberg::int64*) override
    {
        return Steinberg::kNotImplemented;
    }
    Steinberg::tresult PLUGIN_API tell(Steinberg::int64*) override { return Steinberg::kNotImplemented; }

    std::vector<std::uint8_t> bytes;
    std::size_t position = 0;
};

/// The points of one parameter in one block.
class PointQueue : public HostObject<Steinberg::Vst::IParamValueQueue>
{
public:
    Steinberg::Vst::ParamID PLUGIN_API getParameterId() override { return id; }
    Steinberg::int32 PLUGIN_API getPointCount() override
    {
        return static_cast<Steinberg::int32>(values.size());
    }
    Steinberg::tresult PLUGIN_API getPoint(Steinberg::int32 index, Steinberg::int32& offset,
                                           double& value) override
    {
        offset = index;
        value = values.at(static_cast<std::size_t>(index));
        return Steinberg::kResultOk;
    }
    Steinberg::tresult PLUGIN_API addPoint(Steinberg::int32, double, Steinberg::int32&) override
    {
        return Steinberg::kNotImplemented;
    }

    Steinberg::Vst::ParamID id = 0;
    std::vector<double> values;
};

/// One queue, and a null one before it, as hosts have been seen to give.
class OneChange : public HostObject<Steinberg::Vst::IParameterChanges>
{
public:
    OneChange(Steinberg::Vst::ParamID id, std::vector<double> values)
    {
        queue.id = id;
        queue.values = std::move(values);
    }
    Steinberg::int32 PLUGIN_API getParameterCount() override { return 2; }
    Steinberg::Vst::IParamValueQueue* PLUGIN_API getParameterData(Steinberg::int32 index) override
    {
        return index == 1 ? &queue : nullptr;
    }
    Steinberg::Vst::IParamValueQueue* PLUGIN_API addParameterData(const Steinberg::Vst::ParamID&,
                                                                  Steinberg::int32&) override
    {
        return nullptr;
    }

    PointQueue queue;
};

class CountingHandler : public HostObject<Steinberg::Vst::IComponentHandler>
{
public:
    Steinberg::tresult PLUGIN_API beginEdit(Steinberg::Vst::ParamID) override { return Steinberg::kResultOk; }
    Steinberg::tresult PLUGIN_API performEdit(Steinberg::Vst::ParamID, double) override
    {
        return Steinberg::kResultOk;
    }
    Steinberg::tresult PLUGIN_API endEdit(Steinberg::Vst::ParamID) override { return Steinberg::kResultOk; }
    Steinberg::tresult PLUGIN_API restartComponent(Steinberg::int32) override
    {
        ++restarts;
        return Steinberg::kResultOk;
    }

    std::atomic<int> restarts = 0;
};

/// A component of the module with the interfaces that a host asks for.
class Vst3Instance
{
public:
    using Bytes = std::vector<std::uint8_t>;

    explicit Vst3Instance(const LoadedModule& module, bool initialize = true)
    {
        using namespace Steinberg;
        module.Find<bool (*)(void*)>("ModuleEntry")(module.handle);
        exit = module.Find<bool (*)()>("ModuleExit");
        IPluginFactory* factory = module.Find<IPluginFactory* (*)()>("GetPluginFactory")();
        PClassInfo info;
        factory->getClassInfo(0, &info);
        factory->createInstance(info.cid, Vst::IComponent::iid, reinterpret_cast<void**>(&component));
        factory->release();
        if (component == nullptr)
            throw std::runtime_error("no component");
        component->queryInterface(Vst::IAudioProcessor::iid, reinterpret_cast<void**>(&processor));
        component->queryInterface(Vst::IEditController::iid, reinterpret_cast<void**>(&controller));
        if (initialize)
            component->initialize(nullptr);
    }
    ~Vst3Instance()
    {
        component->terminate();
        controller->release();
        processor->release();
        lastCount = component->release();
        exit();
    }
    Vst3Instance(const Vst3Instance&) = delete;
    Vst3Instance& operator=(const Vst3Instance&) = delete;

    Steinberg::tresult Start(double rate, Steinberg::int32 blockFrames) const
    {
        Steinberg::Vst::ProcessSetup setup{ Steinberg::Vst::kRealtime, Steinberg::Vst::kSample32, blockFrames,
                                            rate };
        const Steinberg::tresult result = processor->setupProcessing(setup);
        component->activateBus(Steinberg::Vst::kAudio, Steinberg::Vst::kInput, 0, true);
        component->activateBus(Steinberg::Vst::kAudio, Steinberg::Vst::kOutput, 0, true);
        component->setActive(true);
        processor->setProcessing(true);
        return result;
    }
    Steinberg::tresult Process(float** inputs, float** outputs, Steinberg::int32 frames,
                               Steinberg::Vst::IParameterChanges* changes = nullptr,
                               Steinberg::int32 channels = 2, Steinberg::int32 outputChannels = -1) const
    {
        Steinberg::Vst::AudioBusBuffers in;
        Steinberg::Vst::AudioBusBuffers& out = lastOutput;
        out = {};
        in.numChannels = channels;
        out.numChannels = outputChannels < 0 ? channels : outputChannels;
        in.channelBuffers32 = inputs;
        out.channelBuffers32 = outputs;
        Steinberg::Vst::ProcessData data;
        data.symbolicSampleSize = Steinberg::Vst::kSample32;
        data.numSamples = frames;
        data.numInputs = data.numOutputs = 1;
        data.inputs = &in;
        data.outputs = &out;
        data.inputParameterChanges = changes;
        return processor->process(data);
    }
    Bytes State() const
    {
        StateStream stream;
        component->getState(&stream);
        return stream.bytes;
    }
    Steinberg::tresult SetState(const Bytes& state) const
    {
        StateStream stream;
        stream.bytes = state;
        return component->setState(&stream);
    }

    Steinberg::Vst::IComponent* component = nullptr;
    Steinberg::Vst::IAudioProcessor* processor = nullptr;
    Steinberg::Vst::IEditController* controller = nullptr;
    mutable Steinberg::Vst::AudioBusBuffers lastOutput;   // what the plug-in left in it: its flags
    // References that the last instance left behind.
    static inline std::atomic<Steinberg::uint32> lastCount = 0;

private:
    bool (*exit)() = nullptr;
};

inline std::string ToUtf8(const Steinberg::Vst::TChar* text)
{
    std::string out;
    for (; *text != 0; ++text)
        out += static_cast<char>(*text < 128 ? *text : '?');
    return out;
}
