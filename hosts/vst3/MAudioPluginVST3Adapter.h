// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "foundation/threads/MLock.h"
#include "hosts/module/EchoGuard.h"
#include "hosts/module/ModuleUse.h"
#include "hosts/vst3/EditControllerFacet.h"
#include "plugin/driver/MAudioPluginAdapter.h"
#include "plugin/driver/MQuorvaneAudioEffectPlugin.h"
#include <pluginterfaces/vst/ivstaudioprocessor.h>
#include <pluginterfaces/vst/ivstcomponent.h>
#include <pluginterfaces/vst/ivstevents.h>
#include <pluginterfaces/vst/ivstmessage.h>

namespace Vst3
{
/// Makes the plug-in object appear as one VST 3 component that is processor and controller at once.
///
/// The host counts its references. `process` runs on the audio thread, everything else on the host's main
/// thread; state may come from others. No exception reaches the host, and no argument of its is trusted.
class MAudioPluginVST3Adapter : public Steinberg::Vst::IComponent,
                                public Steinberg::Vst::IAudioProcessor,
                                public Steinberg::Vst::IProcessContextRequirements,
                                public Steinberg::Vst::IConnectionPoint,
                                public MAudioPluginAdapter
{
public:
    using tresult = Steinberg::tresult;
    using int32 = Steinberg::int32;
    using uint32 = Steinberg::uint32;

    /// Starts with one reference, the caller's.
    explicit MAudioPluginVST3Adapter(std::unique_ptr<MQuorvaneAudioEffectPlugin> plugin);
    ~MAudioPluginVST3Adapter() override;
    MAudioPluginVST3Adapter(const MAudioPluginVST3Adapter&) = delete;
    MAudioPluginVST3Adapter& operator=(const MAudioPluginVST3Adapter&) = delete;

    MQuorvaneAudioEffectPlugin& Plugin() const { return *plugin; }
    bool IsInitialized() const { return initialized; }
    bool IsActive() const { return active.load(std::memory_order_relaxed); }
    /// A value of the effect's own parameters or of bypass. Thread: any; waits for nothing.
    void ApplyParameterChange(Steinberg::Vst::ParamID id, Steinberg::Vst::ParamValue value) noexcept;

    // FUnknown
    tresult PLUGIN_API queryInterface(const Steinberg::TUID iid, void** object) override;
    uint32 PLUGIN_API addRef() override;
    uint32 PLUGIN_API release() override;

    // IPluginBase
    tresult PLUGIN_API initialize(Steinberg::FUnknown* context) override;
    tresult PLUGIN_API terminate() override;

    // IComponent
    tresult PLUGIN_API getControllerClassId(Steinberg::TUID) override { return Steinberg::kNotImplemented; }
    tresult PLUGIN_API setIoMode(Steinberg::Vst::IoMode) override { return Steinberg::kNotImplemented; }
    int32 PLUGIN_API getBusCount(Steinberg::Vst::MediaType type,
                                 Steinberg::Vst::BusDirection direction) override;
    tresult PLUGIN_API getBusInfo(Steinberg::Vst::MediaType type, Steinberg::Vst::BusDirection direction,
                                  int32 index, Steinberg::Vst::BusInfo& info) override;
    tresult PLUGIN_API getRoutingInfo(Steinberg::Vst::RoutingInfo&, Steinberg::Vst::RoutingInfo&) override
    {
        return Steinberg::kNotImplemented;
    }
    tresult PLUGIN_API activateBus(Steinberg::Vst::MediaType type, Steinberg::Vst::BusDirection direction,
                                   int32 index, Steinberg::TBool state) override;
    tresult PLUGIN_API setActive(Steinberg::TBool state) override;
    tresult PLUGIN_API setState(Steinberg::IBStream* stream) override;
    tresult PLUGIN_API getState(Steinberg::IBStream* stream) override;

    // IAudioProcessor
    tresult PLUGIN_API setBusArrangements(Steinberg::Vst::SpeakerArrangement* inputs, int32 inputCount,
                                          Steinberg::Vst::SpeakerArrangement* outputs,
                                          int32 outputCount) override;
    tresult PLUGIN_API getBusArrangement(Steinberg::Vst::BusDirection direction, int32 index,
                                         Steinberg::Vst::SpeakerArrangement& arrangement) override;
    tresult PLUGIN_API canProcessSampleSize(int32 symbolicSampleSize) override;
    uint32 PLUGIN_API getLatencySamples() override;
    tresult PLUGIN_API setupProcessing(Steinberg::Vst::ProcessSetup& setup) override;
    tresult PLUGIN_API setProcessing(Steinberg::TBool) override { return Steinberg::kNotImplemented; }
    tresult PLUGIN_API process(Steinberg::Vst::ProcessData& data) override;
    uint32 PLUGIN_API getTailSamples() override;

    // IProcessContextRequirements
    uint32 PLUGIN_API getProcessContextRequirements() override;

    // IConnectionPoint: there is nobody else to talk to, the other side is this object.
    tresult PLUGIN_API connect(Steinberg::Vst::IConnectionPoint* other) override;
    tresult PLUGIN_API disconnect(Steinberg::Vst::IConnectionPoint* other) override;
    tresult PLUGIN_API notify(Steinberg::Vst::IMessage* message) override;

    // MAudioPluginAdapter
    void SendAutomation(std::int32_t index, double value01) override;
    void SendBypassAutomation() override;
    void GenerateMIDIEvent(std::uint8_t status, std::uint8_t data1, std::uint8_t data2,
                           std::int32_t offset) override;
    void ReportLatency() override;
    void BeginGesture(std::int32_t index) override;
    void EndGesture(std::int32_t index) override;
    void BeginGroup() override;
    void EndGroup() override;
    void ReportAllValues() override;
    /// There is no editor yet, so there is nothing to resize.
    void ChangeEditorSize(std::int32_t, std::int32_t) override {}

private:
    struct Bus
    {
        MString name;
        Steinberg::Vst::SpeakerArrangement arrangement = 0;   // of audio buses
        int32 channelCount = 0;
        Steinberg::Vst::BusType type = Steinberg::Vst::kMain;
        bool defaultActive = true;
        bool active = false;
    };

    std::vector<Bus>* BusList(Steinberg::Vst::MediaType type, Steinberg::Vst::BusDirection direction);
    Bus* FindBus(Steinberg::Vst::MediaType type, Steinberg::Vst::BusDirection direction, int32 index);
    void BuildBuses();
    /// Gives the plug-in as many channels as the arrangements have speakers.
    void ApplyArrangements();
    void ReadHostName(Steinberg::FUnknown* context);
    void Edit(Steinberg::Vst::ParamID id, double value01);
    template <typename Operation>
    void WithGroupHandler(Operation&& operation);
    void ApplyParameterChanges(Steinberg::Vst::IParameterChanges& changes);
    void ReadTimeInfo(const Steinberg::Vst::ProcessContext& context);
    void ProcessAudio(Steinberg::Vst::ProcessData& data);
    void SendOutgoingEvents(Steinberg::Vst::IEventList* list);

    ModuleUse moduleUse;
    std::atomic<uint32> references = 1;
    std::unique_ptr<MQuorvaneAudioEffectPlugin> plugin;
    EditControllerFacet controller;
    MString hostName;
    bool initialized = false;
    bool startedWide = false;   // the user has chosen surround for all plug-ins
    std::atomic<bool> active = false;
    std::atomic<bool> inActivation = false;   // latency is not reported then: the host asks for it afterwards
    EchoGuard echoes;
    std::atomic<int32> reportedLatency = 0;
    std::atomic<int32> reportedTail = 0;
    Steinberg::Vst::SpeakerArrangement inputArrangement;
    Steinberg::Vst::SpeakerArrangement outputArrangement;
    std::vector<Bus> buses[2][2];   // by media type and direction
    Steinberg::Vst::ProcessSetup processSetup{};
    Steinberg::Vst::IConnectionPoint* peer = nullptr;
    MLock outgoingLock;
    std::vector<Steinberg::Vst::Event> outgoingEvents;   // room is made once
};

/// "VST3 Plugin main": a new component with one reference as the interface asked for, null if it can't be
/// made.
Steinberg::tresult CreateComponent(const Steinberg::TUID iid, void** object) noexcept;
}   // namespace Vst3
