// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst3/MAudioPluginVST3Adapter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "foundation/text/Boundary.h"
#include "foundation/text/MStringFormat.h"
#include "foundation/vector/VectorOperations.h"
#include "hosts/module/CreateInstance.h"
#include "hosts/vst3/ParameterIds.h"
#include "hosts/vst3/Text128.h"
#include "plugin/driver/PluginState.h"
#include "plugin/driver/ProcessingChange.h"
#include <pluginterfaces/base/ibstream.h>
#include <pluginterfaces/vst/ivsthostapplication.h>
#include <pluginterfaces/vst/ivstparameterchanges.h>
#include <pluginterfaces/vst/ivstprocesscontext.h>

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace Vst3
{
namespace
{
constexpr std::int32_t groupStride = BusLayout::SurroundWidth;
constexpr std::size_t outgoingCapacity = 512;   // MIDI events that one block may bring

// Tells the host which channels are silent, which then hold zeros and nothing of what keeps denormals out.
void FlagSilence(AudioBusBuffers& bus, int32 frames)
{
    constexpr float inaudible = 1e-12f;   // -240 dBFS
    bus.silenceFlags = 0;
    for (int32 channel = 0; bus.channelBuffers32 != nullptr && channel < bus.numChannels; ++channel)
    {
        float* samples = bus.channelBuffers32[channel];
        if (samples == nullptr)
            continue;
        float highest = 0;
        // Most channels that sound do so from the first sample on.
        if (std::fabs(samples[0]) <= inaudible)
            MVector::AbsMax(samples, frames, &highest);
        else
            highest = samples[0];
        if (!(std::fabs(highest) <= inaudible))
            continue;
        std::fill_n(samples, frames, 0.0f);
        bus.silenceFlags |= uint64{ 1 } << channel;
    }
}

// Puts a bus's channels at its place in the plug-in's array. What the host left out stays null.
void Spread(std::array<float*, MAudioPlugin::MaxChannels>& target, const AudioBusBuffers* list, int32 count)
{
    if (list == nullptr)
        return;
    for (int32 bus = 0; bus < std::min(count, MAudioPlugin::MaxChannels / groupStride); ++bus)
        if (list[bus].channelBuffers32 != nullptr)
            for (int32 channel = 0; channel < std::min(list[bus].numChannels, groupStride); ++channel)
                target[static_cast<std::size_t>(bus * groupStride + channel)] =
                    list[bus].channelBuffers32[channel];
}
}   // namespace

MAudioPluginVST3Adapter::MAudioPluginVST3Adapter(std::unique_ptr<MQuorvaneAudioEffectPlugin> ownedPlugin)
    : plugin(std::move(ownedPlugin)), controller(*this), inputArrangement(SpeakerArr::kStereo),
      outputArrangement(SpeakerArr::kStereo)
{
    outgoingEvents.reserve(outgoingCapacity);
}

MAudioPluginVST3Adapter::~MAudioPluginVST3Adapter()
{
    // Some hosts release without having terminated.
    plugin->adapter = nullptr;
    if (peer != nullptr)
        peer->release();
}

tresult MAudioPluginVST3Adapter::queryInterface(const TUID iid, void** object)
{
    if (object == nullptr)
        return kInvalidArgument;
    void* found = nullptr;
    if (iid == nullptr)
        found = nullptr;
    else if (FUnknownPrivate::iidEqual(iid, FUnknown::iid) ||
             FUnknownPrivate::iidEqual(iid, IPluginBase::iid) ||
             FUnknownPrivate::iidEqual(iid, IComponent::iid))
        found = static_cast<IComponent*>(this);
    else if (FUnknownPrivate::iidEqual(iid, IAudioProcessor::iid))
        found = static_cast<IAudioProcessor*>(this);
    else if (FUnknownPrivate::iidEqual(iid, IProcessContextRequirements::iid))
        found = static_cast<IProcessContextRequirements*>(this);
    else if (FUnknownPrivate::iidEqual(iid, IConnectionPoint::iid))
        found = static_cast<IConnectionPoint*>(this);
    else
        found = controller.Find(iid);
    *object = found;
    if (found == nullptr)
        return kNoInterface;
    addRef();
    return kResultOk;
}

uint32 MAudioPluginVST3Adapter::addRef()
{
    return references.fetch_add(1, std::memory_order_relaxed) + 1;
}

uint32 MAudioPluginVST3Adapter::release()
{
    const uint32 left = references.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0)
        AtBoundary("MAudioPluginVST3Adapter::release", [this] { delete this; });
    return left;
}

void MAudioPluginVST3Adapter::ReadHostName(FUnknown* context)
{
    hostName = MString();
    IHostApplication* application = nullptr;
    if (context == nullptr ||
        context->queryInterface(IHostApplication::iid, reinterpret_cast<void**>(&application)) != kResultOk ||
        application == nullptr)
        return;
    String128 name{};
    if (application->getName(name) == kResultOk)
    {
        name[127] = 0;
        hostName = TextOf(name);
    }
    application->release();
}

tresult MAudioPluginVST3Adapter::initialize(FUnknown* context)
{
    if (initialized)
        return kResultOk;   // some hosts initialize the component and its controller, which are one
    return AtBoundary(
        "MAudioPluginVST3Adapter::initialize", tresult{ kResultFalse },
        [&]() -> tresult
        {
            ReadHostName(context);
            ModuleUse::SetHostType("VST3");
            startedWide = plugin->buses.IsSurround();
            plugin->adapter = this;
            inputArrangement = outputArrangement = SpeakerArr::kStereo;
            plugin->SetConnectedChannels(2, 2);
            BuildBuses();
            constexpr int32 midiChannels = 16;
            if (plugin->takesMIDI)
                buses[kEvent][kInput].push_back({ .name = "Midi In", .channelCount = midiChannels });
            if (plugin->producesMIDI)
                buses[kEvent][kOutput].push_back({ .name = "Midi Out", .channelCount = midiChannels });
            controller.BuildUnits();
            constexpr double rateUntilTold = 44100;
            plugin->InitProcessing(rateUntilTold);
            initialized = true;
            return kResultOk;
        });
}

tresult MAudioPluginVST3Adapter::terminate()
{
    return AtBoundary("MAudioPluginVST3Adapter::terminate", tresult{ kResultOk },
                      [&]() -> tresult
                      {
                          initialized = false;
                          active = false;
                          for (auto& directions : buses)
                              for (std::vector<Bus>& list : directions)
                                  list.clear();
                          controller.ReleaseHandler();
                          if (IConnectionPoint* connected = std::exchange(peer, nullptr))
                          {
                              connected->disconnect(this);
                              connected->release();
                          }
                          return kResultOk;
                      });
}

void MAudioPluginVST3Adapter::BuildBuses()
{
    std::vector<Bus>& inputs = buses[kAudio][kInput];
    std::vector<Bus>& outputs = buses[kAudio][kOutput];
    inputs.clear();
    outputs.clear();
    const int32 inputGroups = plugin->buses.InputGroups();
    const int32 inputChannels = SpeakerArr::getChannelCount(inputArrangement);
    if (inputGroups >= 1)
        inputs.push_back({ .name = "Stereo In",
                           .arrangement = inputArrangement,
                           .channelCount = inputChannels,
                           .type = kMain });
    if (inputGroups >= 2)
        inputs.push_back({ .name = "Sidechain",
                           .arrangement = inputArrangement,
                           .channelCount = inputChannels,
                           .type = kAux,
                           .defaultActive = false });
    const int32 outputGroups = plugin->buses.OutputGroups();
    for (int32 group = 0; group < outputGroups; ++group)
        outputs.push_back(
            { .name = outputGroups == 1 ? MString("Stereo Out") : Format("Stereo Out {0}", group + 1),
              .arrangement = outputArrangement,
              .channelCount = SpeakerArr::getChannelCount(outputArrangement),
              .type = kMain });
}

std::vector<MAudioPluginVST3Adapter::Bus>* MAudioPluginVST3Adapter::BusList(MediaType type,
                                                                            BusDirection direction)
{
    if ((type != kAudio && type != kEvent) || (direction != kInput && direction != kOutput))
        return nullptr;
    return &buses[type][direction];
}

MAudioPluginVST3Adapter::Bus* MAudioPluginVST3Adapter::FindBus(MediaType type, BusDirection direction,
                                                               int32 index)
{
    std::vector<Bus>* list = BusList(type, direction);
    if (list == nullptr || index < 0 || index >= static_cast<int32>(list->size()))
        return nullptr;
    return &(*list)[static_cast<std::size_t>(index)];
}

int32 MAudioPluginVST3Adapter::getBusCount(MediaType type, BusDirection direction)
{
    const std::vector<Bus>* list = BusList(type, direction);
    return list != nullptr ? static_cast<int32>(list->size()) : 0;
}

tresult MAudioPluginVST3Adapter::getBusInfo(MediaType type, BusDirection direction, int32 index,
                                            BusInfo& info)
{
    const Bus* bus = FindBus(type, direction, index);
    if (bus == nullptr)
        return kInvalidArgument;
    info = {};
    info.mediaType = type;
    info.direction = direction;
    info.channelCount = bus->channelCount;
    info.busType = bus->type;
    info.flags = bus->defaultActive ? uint32{ BusInfo::kDefaultActive } : 0;
    CopyText(info.name, bus->name);
    return kResultOk;
}

tresult MAudioPluginVST3Adapter::activateBus(MediaType type, BusDirection direction, int32 index, TBool state)
{
    Bus* bus = FindBus(type, direction, index);
    if (bus == nullptr)
        return kInvalidArgument;
    bus->active = state != 0;
    return kResultOk;
}

tresult MAudioPluginVST3Adapter::setActive(TBool state)
{
    inActivation = true;
    const tresult result = AtBoundary("MAudioPluginVST3Adapter::setActive", tresult{ kResultFalse },
                                      [&]() -> tresult
                                      {
                                          if (state != 0)
                                              plugin->InitProcessing();
                                          active = state != 0;
                                          return kResultOk;
                                      });
    inActivation = false;
    return result;
}

tresult MAudioPluginVST3Adapter::setState(IBStream* stream)
{
    if (stream == nullptr)
        return kInvalidArgument;
    // What can't be read leaves the plug-in as it was, and the host is told that all is well: it has nothing
    // better to offer.
    AtBoundary("MAudioPluginVSTAdapter::setState",
               [&]
               {
                   MMemoryStream state;
                   std::array<char, 1024> block;
                   int32 got = 0;
                   while (stream->read(block.data(), static_cast<int32>(block.size()), &got) == kResultOk &&
                          got > 0)
                   {
                       state.Write(block.data(), std::min(got, static_cast<int32>(block.size())));
                       got = 0;
                   }
                   state.Seek(0, MStream::Begin);
                   ReadPluginState(*plugin, state);
               });
    return kResultOk;
}

tresult MAudioPluginVST3Adapter::getState(IBStream* stream)
{
    if (stream == nullptr)
        return kInvalidArgument;
    return AtBoundary("MAudioPluginVSTAdapter::getState", tresult{ kResultFalse },
                      [&]() -> tresult
                      {
                          MMemoryStream state;
                          WritePluginState(*plugin, state);
                          state.Seek(0, MStream::Begin);
                          const auto size = static_cast<int32>(state.GetSize());
                          int32 written = size;   // some hosts leave it alone
                          void* bytes = const_cast<std::uint8_t*>(state.GetCurrentPointer());
                          if (stream->write(bytes, size, &written) != kResultOk || written != size)
                              return kResultFalse;
                          return kResultOk;
                      });
}

tresult MAudioPluginVST3Adapter::setBusArrangements(SpeakerArrangement* inputs, int32 inputCount,
                                                    SpeakerArrangement* outputs, int32 outputCount)
{
    if (inputCount < 0 || outputCount < 0 || (inputCount > 0 && inputs == nullptr) ||
        (outputCount > 0 && outputs == nullptr) || !initialized)
        return kInvalidArgument;
    return AtBoundary(
        "MAudioPluginVSTAdapter::setBusArrangements", tresult{ kResultFalse },
        [&]() -> tresult
        {
            // Each side gets what it asks for, or the widest that there is. A mono input plays on both of two
            // outputs; otherwise both sides have one width, that of the output.
            constexpr int32 widest = 8;
            const auto possible = [](SpeakerArrangement wanted)
            {
                const int32 speakers = SpeakerArr::getChannelCount(wanted);
                if (speakers < 1)
                    return SpeakerArr::kStereo;
                return speakers <= widest ? wanted : SpeakerArr::k71Cine;
            };
            const SpeakerArrangement wantedInput = inputCount > 0 ? inputs[0] : inputArrangement;
            const SpeakerArrangement wantedOutput = outputCount > 0 ? outputs[0] : outputArrangement;
            outputArrangement = possible(wantedOutput);
            inputArrangement = possible(wantedInput);
            const int32 outputSpeakers = SpeakerArr::getChannelCount(outputArrangement);
            const int32 inputSpeakers = SpeakerArr::getChannelCount(inputArrangement);
            if (inputSpeakers != outputSpeakers && !(inputSpeakers == 1 && outputSpeakers == 2))
                inputArrangement = outputArrangement;
            ApplyArrangements();
            BuildBuses();
            const bool all = inputArrangement == wantedInput && outputArrangement == wantedOutput &&
                             inputCount <= 1 && outputCount <= 1;
            return all ? kResultOk : kResultFalse;
        });
}

void MAudioPluginVST3Adapter::ApplyArrangements()
{
    const int32 inputs = SpeakerArr::getChannelCount(inputArrangement);
    const int32 outputs = SpeakerArr::getChannelCount(outputArrangement);
    ProcessingChange change(*plugin);
    const bool wide = startedWide || outputs > 2;
    if (wide != plugin->buses.IsSurround())
        plugin->SetSurround(wide);
    // Who puts the plug-in on a surround track wants all of it equalized.
    if (outputs > 2 && plugin->channelMode == ChannelMode::LeftAndRight)
        plugin->channelMode = ChannelMode::Surround;
    else if (outputs <= 2 && plugin->channelMode == ChannelMode::Surround)
        plugin->channelMode = ChannelMode::LeftAndRight;
    plugin->SetConnectedChannels(inputs, outputs);
    change.Prepare(ProcessingChange::Preparation::WhereNeeded);
    change.Finish();
}

tresult MAudioPluginVST3Adapter::getBusArrangement(BusDirection direction, int32 index,
                                                   SpeakerArrangement& arrangement)
{
    const Bus* bus = FindBus(kAudio, direction, index);
    if (bus == nullptr)
        return kInvalidArgument;
    arrangement = bus->arrangement;
    return kResultOk;
}

tresult MAudioPluginVST3Adapter::canProcessSampleSize(int32 symbolicSampleSize)
{
    return symbolicSampleSize == kSample32 ? kResultTrue : kResultFalse;
}

uint32 MAudioPluginVST3Adapter::getLatencySamples()
{
    return AtBoundary("MAudioPluginVST3Adapter::getLatencySamples", uint32{ 0 },
                      [&]
                      {
                          reportedLatency = plugin->TotalLatency();
                          return static_cast<uint32>(reportedLatency.load());
                      });
}

uint32 MAudioPluginVST3Adapter::getTailSamples()
{
    return AtBoundary("MAudioPluginVST3Adapter::getTailSamples", uint32{ 0 },
                      [&]
                      {
                          reportedTail = plugin->TotalTailSize();
                          return static_cast<uint32>(reportedTail.load());
                      });
}

tresult MAudioPluginVST3Adapter::setupProcessing(ProcessSetup& setup)
{
    return AtBoundary("MAudioPluginVSTAdapter::setupProcessing", tresult{ kResultFalse },
                      [&]() -> tresult
                      {
                          processSetup.processMode = setup.processMode;
                          constexpr double lowestRate = 100;
                          if (setup.sampleRate > lowestRate && std::isfinite(setup.sampleRate))
                              plugin->InitProcessing(std::floor(setup.sampleRate + 0.5));
                          if (canProcessSampleSize(setup.symbolicSampleSize) != kResultTrue)
                              return kResultFalse;
                          processSetup = setup;
                          return kResultOk;
                      });
}

uint32 MAudioPluginVST3Adapter::getProcessContextRequirements()
{
    if (!plugin->wantsTimeInfo)
        return 0;
    return kNeedProjectTimeMusic | kNeedBarPositionMusic | kNeedCycleMusic | kNeedTempo | kNeedTimeSignature |
           kNeedTransportState;
}

tresult MAudioPluginVST3Adapter::connect(IConnectionPoint* other)
{
    if (other == nullptr)
        return kInvalidArgument;
    if (peer != nullptr)
        return kResultFalse;
    other->addRef();
    peer = other;
    return kResultOk;
}

tresult MAudioPluginVST3Adapter::disconnect(IConnectionPoint* other)
{
    if (other == nullptr || other != peer)
        return kResultFalse;
    peer = nullptr;
    other->release();
    return kResultOk;
}

tresult MAudioPluginVST3Adapter::notify(IMessage* message)
{
    return message == nullptr ? kInvalidArgument : kResultFalse;
}

void MAudioPluginVST3Adapter::Edit(ParamID id, double value01)
{
    IComponentHandler* handler = controller.Handler();
    if (handler == nullptr)
        return;
    const EchoGuard::Report report(echoes);
    handler->performEdit(id, value01);
}

void MAudioPluginVST3Adapter::BeginGesture(std::int32_t index)
{
    if (IComponentHandler* handler = controller.Handler())
        AtBoundary("MAudioPluginVST3Adapter::BeginGesture",
                   [&] { handler->beginEdit(static_cast<ParamID>(index)); });
}

void MAudioPluginVST3Adapter::EndGesture(std::int32_t index)
{
    if (IComponentHandler* handler = controller.Handler())
        AtBoundary("MAudioPluginVST3Adapter::EndGesture",
                   [&] { handler->endEdit(static_cast<ParamID>(index)); });
}

template <typename Operation>
void MAudioPluginVST3Adapter::WithGroupHandler(Operation&& operation)
{
    // Asked for each time: groups are rare, and a host may change its handler.
    FUnknownPtr<IComponentHandler2> handler(controller.Handler());
    if (handler)
        operation(*handler);
}

void MAudioPluginVST3Adapter::BeginGroup()
{
    AtBoundary("MAudioPluginVST3Adapter::BeginGroup",
               [this] { WithGroupHandler([](IComponentHandler2& handler) { handler.startGroupEdit(); }); });
}

void MAudioPluginVST3Adapter::EndGroup()
{
    AtBoundary("MAudioPluginVST3Adapter::EndGroup",
               [this] { WithGroupHandler([](IComponentHandler2& handler) { handler.finishGroupEdit(); }); });
}

void MAudioPluginVST3Adapter::ReportAllValues()
{
    if (IComponentHandler* handler = controller.Handler())
        AtBoundary("MAudioPluginVST3Adapter::ReportAllValues",
                   [&] { handler->restartComponent(kParamValuesChanged); });
}

void MAudioPluginVST3Adapter::SendAutomation(std::int32_t index, double value01)
{
    if (index < 0 || index >= plugin->GetParameterCount())
        return;
    AtBoundary("MAudioPluginVSTAdapter::SendAutomation", [&] { Edit(static_cast<ParamID>(index), value01); });
}

void MAudioPluginVST3Adapter::SendBypassAutomation()
{
    AtBoundary("MAudioPluginVSTAdapter::SendBypassAutomation",
               [&]
               {
                   IComponentHandler* handler = controller.Handler();
                   if (handler == nullptr)
                       return;
                   handler->beginEdit(BypassId);
                   Edit(BypassId, plugin->bypass ? 1.0 : 0.0);
                   handler->endEdit(BypassId);
               });
}

void MAudioPluginVST3Adapter::ReportLatency()
{
    IComponentHandler* handler = controller.Handler();
    if (!inActivation && handler != nullptr)
        AtBoundary("MAudioPluginVST3Adapter::ReportLatency",
                   [&] { handler->restartComponent(kLatencyChanged); });
}

void MAudioPluginVST3Adapter::GenerateMIDIEvent(std::uint8_t status, std::uint8_t data1, std::uint8_t data2,
                                                std::int32_t offset)
{
    if ((status & 0x80) == 0)
        return;
    constexpr float velocityStep = 0.007874016f;   // 1 / 127
    Event event{};
    event.sampleOffset = offset;
    const auto channel = static_cast<int16>(status & 15);
    const float velocity = static_cast<float>(data2) * velocityStep;
    if ((status & 0x10) != 0)
    {
        event.type = Event::kNoteOnEvent;
        event.noteOn.channel = channel;
        event.noteOn.pitch = data1;
        event.noteOn.velocity = velocity;
        event.noteOn.noteId = -1;
    }
    else
    {
        event.type = Event::kNoteOffEvent;
        event.noteOff.channel = channel;
        event.noteOff.pitch = data1;
        event.noteOff.velocity = velocity;
        event.noteOff.noteId = -1;
    }
    AtBoundary("MAudioPluginVSTAdapter::GenerateMIDIEvent",
               [&]
               {
                   const MSynchronizerGuard guard(outgoingLock);
                   if (outgoingEvents.size() < outgoingCapacity)
                       outgoingEvents.push_back(event);
               });
}

void MAudioPluginVST3Adapter::SendOutgoingEvents(IEventList* list)
{
    if (!plugin->producesMIDI || list == nullptr)
        return;
    const MSynchronizerGuard guard(outgoingLock);
    for (Event& event : outgoingEvents)
        list->addEvent(event);
    outgoingEvents.clear();
}

void MAudioPluginVST3Adapter::ApplyParameterChange(ParamID id, ParamValue value) noexcept
{
    // Single relaxed stores: nothing to wait for, and nothing is lost while a load holds the locks.
    if (echoes.IsEcho())
        return;
    if (id == BypassId)
        plugin->SetBypass(value > 0.5);
    else if (id < FirstControllerId)
        plugin->SetParameterIfChanged(static_cast<int32>(id), value);
}

void MAudioPluginVST3Adapter::ApplyParameterChanges(IParameterChanges& changes)
{
    const int32 count = changes.getParameterCount();
    for (int32 index = 0; index < count; ++index)
    {
        IParamValueQueue* queue = changes.getParameterData(index);
        if (queue == nullptr)
            continue;
        // Where a parameter ends up in this block; the driver ramps towards it.
        int32 offset = 0;
        ParamValue value = 0;
        const int32 points = queue->getPointCount();
        if (points > 0 && queue->getPoint(points - 1, offset, value) == kResultOk)
            ApplyParameterChange(queue->getParameterId(), value);
    }
}

void MAudioPluginVST3Adapter::ReadTimeInfo(const ProcessContext& context)
{
    if (!plugin->wantsTimeInfo)
        return;
    const auto has = [&context](uint32 flag)
    {
        return (context.state & flag) != 0;
    };
    Transport::Report report;
    if (has(ProcessContext::kProjectTimeMusicValid))
        report.position = context.projectTimeMusic;
    if (has(ProcessContext::kTempoValid))
        report.tempo = context.tempo;
    if (has(ProcessContext::kTimeSigValid))
        report.signature = { context.timeSigNumerator, context.timeSigDenominator };
    if (has(ProcessContext::kBarPositionValid))
        report.barStart = context.barPositionMusic;
    if (has(ProcessContext::kCycleActive))
    {
        report.cycleStart = context.cycleStartMusic;
        report.cycleEnd = context.cycleEndMusic;
    }
    report.playing = has(ProcessContext::kPlaying);
    plugin->transport.Take(report);
}

void MAudioPluginVST3Adapter::ProcessAudio(ProcessData& data)
{
    std::array<float*, MAudioPlugin::MaxChannels> inputs{};
    std::array<float*, MAudioPlugin::MaxChannels> outputs{};
    Spread(inputs, data.inputs, data.numInputs);
    Spread(outputs, data.outputs, data.numOutputs);
    plugin->ProcessBlockOrSilence(inputs.data(), outputs.data(), data.numSamples, true);
    for (int32 bus = 0; data.outputs != nullptr && bus < data.numOutputs; ++bus)
        FlagSilence(data.outputs[bus], data.numSamples);
    SendOutgoingEvents(data.outputEvents);
}

tresult MAudioPluginVST3Adapter::process(ProcessData& data)
{
    if (!initialized)
        return kNotInitialized;
    if (data.numSamples > 0 && data.symbolicSampleSize != kSample32)
        return kInvalidArgument;   // the buffers hold doubles
    return AtBoundary("MAudioPluginVST3Adapter::process", tresult{ kResultOk },
                      [&]() -> tresult
                      {
                          if (data.inputParameterChanges != nullptr)
                              ApplyParameterChanges(*data.inputParameterChanges);
                          // A host that only delivers parameters brings no samples, or no buses.
                          if (data.numSamples <= 0)
                              return kResultOk;
                          if (data.processContext != nullptr)
                              ReadTimeInfo(*data.processContext);
                          if (data.numInputs != 0 || data.numOutputs != 0)
                              ProcessAudio(data);
                          return kResultOk;
                      });
}

tresult CreateComponent(const TUID iid, void** object) noexcept
{
    if (object == nullptr)
        return kInvalidArgument;
    *object = nullptr;
    return AtBoundary("VST3 Plugin main", tresult{ kResultFalse },
                      [&]() -> tresult
                      {
                          auto* component =
                              std::make_unique<MAudioPluginVST3Adapter>(CreateInstance()).release();
                          const tresult result = component->queryInterface(iid, object);
                          component->release();
                          return result;
                      });
}
}   // namespace Vst3
