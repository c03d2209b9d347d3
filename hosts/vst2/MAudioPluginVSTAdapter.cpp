// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst2/MAudioPluginVSTAdapter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <mutex>

#include "foundation/text/Boundary.h"
#include "foundation/text/MStringFormat.h"
#include "hosts/module/CreateInstance.h"
#include "hosts/module/PluginIdentity.h"
#include "plugin/driver/PluginState.h"

namespace Vst2
{
namespace
{
// Bytes with the terminator. Hosts reserve 64 and more for every text, whatever the interface's first edition
// said of 8; no text of a parameter comes near.
constexpr std::size_t textSize = 64;
constexpr std::int32_t longestParameterName = 24;   // characters
constexpr std::size_t outgoingCapacity = 512;   // MIDI events that one block may bring
constexpr std::size_t recordHead = offsetof(Events, events) / sizeof(std::intptr_t);

// UTF-8 that ends at a whole character within `size` bytes.
void CopyText(void* target, const MString& text, std::size_t size)
{
    if (target == nullptr)
        return;
    const std::string bytes = text.ToUTF8();
    std::size_t length = std::min(bytes.size(), size - 1);
    if (length < bytes.size())
        while (length > 0 && (static_cast<unsigned char>(bytes[length]) & 0xC0) == 0x80)
            --length;
    std::memcpy(target, bytes.data(), length);
    static_cast<char*>(target)[length] = '\0';
}

MAudioPluginVSTAdapter* AdapterOf(AEffect* effect)
{
    if (effect == nullptr)
        return nullptr;
    return static_cast<MAudioPluginVSTAdapter*>(
        std::atomic_ref(effect->object).load(std::memory_order_acquire));
}

// Every record that a host ever got, closed ones too: a host that calls once more after it closed finds a
// record without an object. They go when the module is unloaded; none is used twice, so that no late call
// meets a stranger.
AEffect& NewRecord()
{
    static std::mutex mutex;
    static std::vector<std::unique_ptr<AEffect>> records;
    const std::lock_guard guard(mutex);
    return *records.emplace_back(std::make_unique<AEffect>());
}
}   // namespace

MAudioPluginVSTAdapter::MAudioPluginVSTAdapter(HostCallback hostCallback,
                                               std::unique_ptr<MQuorvaneAudioEffectPlugin> ownedPlugin)
    : effect(NewRecord()), host(hostCallback), plugin(std::move(ownedPlugin))
{
    outgoingEvents.reserve(outgoingCapacity);
    sendingEvents.reserve(outgoingCapacity);
    sendingRecord.resize(recordHead + outgoingCapacity);
    ModuleUse::SetHostType("VST");
    plugin->adapter = this;
    FillRecord();
    // This format counts channels through, whatever bus they belong to.
    plugin->buses.SetStride(plugin->buses.Width());
    ReportLatency();
    Resume();
    constructed = true;
    std::atomic_ref(effect.object).store(this, std::memory_order_release);
}

MAudioPluginVSTAdapter::~MAudioPluginVSTAdapter()
{
    plugin->adapter = nullptr;
}

void MAudioPluginVSTAdapter::FillRecord()
{
    effect.magic = EffectMagic;
    effect.dispatcher = &MAudioPluginVSTAdapter::Dispatch;
    effect.process = &MAudioPluginVSTAdapter::Process;
    effect.setParameter = &MAudioPluginVSTAdapter::SetParameter;
    effect.getParameter = &MAudioPluginVSTAdapter::GetParameter;
    effect.processReplacing = &MAudioPluginVSTAdapter::ProcessReplacing;
    effect.numPrograms = 1;
    effect.flags = EffectFlags::CanReplacing | EffectFlags::ProgramChunks;
    const std::intptr_t answered = CallHost(HostOpcode::Version);
    const std::intptr_t version = answered == 0 ? 1 : answered;
    KeepFirstGroupFor(version);
    effect.numInputs = plugin->buses.InputNames().Count();
    if (version < 100)
        effect.numInputs = std::max(effect.numInputs, 2);
    effect.numOutputs = plugin->buses.OutputNames().Count();
    effect.numParams = plugin->GetParameterCount();
    effect.ioRatio = 1;
    effect.uniqueID = FourCharacters(PluginIdentity::Vst2Effect);
    effect.version = PluginIdentity::Vst2Version;
}

void MAudioPluginVSTAdapter::KeepFirstGroupFor(std::intptr_t hostVersion)
{
    // Hosts before 2.3 can't tell side-chain inputs from more of the main one.
    constexpr std::intptr_t firstWithSidechains = 2300;
    if (hostVersion < firstWithSidechains && plugin->buses.InputGroups() > 0)
        plugin->buses.SetUp(BusLayout::StereoWidth, 1);
}

std::intptr_t MAudioPluginVSTAdapter::CallHost(std::int32_t opcode, std::int32_t index, std::intptr_t value,
                                               void* pointer, float option) const
{
    return host != nullptr ? host(&effect, opcode, index, value, pointer, option) : 0;
}

void MAudioPluginVSTAdapter::Resume()
{
    if (constructed && plugin->takesMIDI)
        CallHost(HostOpcode::WantMidi, 0, 1);
    plugin->InitProcessing();
}

void MAudioPluginVSTAdapter::SetSampleRate(float rate)
{
    constexpr float lowestRate = 100;
    if (!(rate > lowestRate) || !std::isfinite(rate))
        return;
    plugin->InitProcessing(rate);
}

std::intptr_t MAudioPluginVSTAdapter::Dispatch(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                               std::intptr_t value, void* pointer, float option)
{
    MAudioPluginVSTAdapter* adapter = AdapterOf(effect);
    if (adapter == nullptr)
        return 0;
    if (opcode == EffectOpcode::Close)
    {
        void* expected = adapter;
        if (std::atomic_ref(effect->object).compare_exchange_strong(expected, nullptr))
            AtBoundary("MAudioPluginVSTAdapter::close", [adapter] { delete adapter; });
        return 1;
    }
    return AtBoundary("MAudioPluginVSTAdapter::dispatcher", std::intptr_t{ 0 },
                      [&] { return adapter->Answer(opcode, index, value, pointer, option); });
}

std::intptr_t MAudioPluginVSTAdapter::Answer(std::int32_t opcode, std::int32_t index, std::intptr_t value,
                                             void* pointer, float option)
{
    // Parameters may be set on any thread; what asks for a text or a state comes on the host's own.
    if (opcode != EffectOpcode::ProcessEvents)
        plugin->ApplyChoices();
    switch (opcode)
    {
    case EffectOpcode::GetParamLabel:
    case EffectOpcode::GetParamDisplay:
    case EffectOpcode::GetParamName:
    case EffectOpcode::StringToParameter:
    case EffectOpcode::CanBeAutomated:
        return AnswerParameter(opcode, index, pointer);
    case EffectOpcode::GetProgramName:
        CopyText(pointer, plugin->EffectName(), textSize);
        return 0;
    case EffectOpcode::GetProgramNameIndexed:
        if (index != 0)
            return 0;
        CopyText(pointer, plugin->EffectName(), textSize);
        return 1;
    case EffectOpcode::SetSampleRate:
        SetSampleRate(option);
        return 0;
    case EffectOpcode::MainsChanged:
        if (value != 0)
            Resume();
        return 0;
    case EffectOpcode::Identify:
        return FourCharacters("NvEf");
    case EffectOpcode::GetChunk:
        return pointer != nullptr ? GetChunk(static_cast<void**>(pointer)) : 0;
    case EffectOpcode::SetChunk:
        return SetChunk(pointer, value);
    case EffectOpcode::ProcessEvents:
        return 1;
    case EffectOpcode::GetInputProperties:
    case EffectOpcode::GetOutputProperties:
        return DescribePin(index, opcode == EffectOpcode::GetInputProperties,
                           static_cast<PinProperties*>(pointer));
    case EffectOpcode::GetPlugCategory:
        return CategoryEffect;
    case EffectOpcode::SetSpeakerArrangement:
        return SetSpeakerArrangement(reinterpret_cast<const SpeakerArrangement*>(value),
                                     static_cast<const SpeakerArrangement*>(pointer));
    case EffectOpcode::GetSpeakerArrangement:
        if (value != 0)
            *reinterpret_cast<SpeakerArrangement**>(value) = nullptr;
        if (pointer != nullptr)
            *static_cast<SpeakerArrangement**>(pointer) = nullptr;
        return 0;
    case EffectOpcode::SetBypass:
        plugin->SetBypass(value != 0);
        return 1;
    case EffectOpcode::GetEffectName:
    case EffectOpcode::GetProductString:
        CopyText(pointer, plugin->EffectName(), textSize);
        return 1;
    case EffectOpcode::GetVendorString:
        CopyText(pointer, plugin->MakerName(), textSize);
        return 1;
    case EffectOpcode::GetVendorVersion:
        return effect.version;
    case EffectOpcode::CanDo:
        return pointer != nullptr ? CanDo(static_cast<const char*>(pointer)) : 0;
    case EffectOpcode::GetTailSize:
        return std::max(0, plugin->TotalTailSize());
    case EffectOpcode::GetVstVersion:
        return VstVersion;
    case EffectOpcode::SetProcessPrecision:
        return value == 0 ? 1 : 0;   // 32 bits only
    default:
        return 0;
    }
}

std::intptr_t MAudioPluginVSTAdapter::AnswerParameter(std::int32_t opcode, std::int32_t index, void* pointer)
{
    if (index < 0 || index >= plugin->GetParameterCount())
        return 0;
    MString text;
    switch (opcode)
    {
    case EffectOpcode::GetParamLabel:
        plugin->GetParameterUnitsName(text, index);
        break;
    case EffectOpcode::GetParamDisplay:
        plugin->GetParameterValueName(text, index);
        break;
    case EffectOpcode::GetParamName:
        plugin->GetParameterName(text, index);
        if (text.Length() > longestParameterName)
            text = text.SubString(0, longestParameterName - 3) + "...";
        break;
    case EffectOpcode::StringToParameter:
        // Null only asks whether texts are taken.
        if (pointer != nullptr)
            plugin->SetParameter(index, plugin->ParseParameterValueName(
                                            index, MString::FromUTF8(static_cast<const char*>(pointer))));
        return 1;
    default:
        return plugin->IsParameterAutomatable(index) ? 1 : 0;
    }
    CopyText(pointer, text, textSize);
    return 1;
}

void MAudioPluginVSTAdapter::SetParameter(AEffect* effect, std::int32_t index, float value)
{
    MAudioPluginVSTAdapter* adapter = AdapterOf(effect);
    if (adapter != nullptr && !adapter->echoes.IsEcho())
        adapter->plugin->SetParameter(index, static_cast<double>(value), false);
}

float MAudioPluginVSTAdapter::GetParameter(AEffect* effect, std::int32_t index)
{
    MAudioPluginVSTAdapter* adapter = AdapterOf(effect);
    return adapter != nullptr ? static_cast<float>(adapter->plugin->GetParameter(index)) : 0;
}

std::intptr_t MAudioPluginVSTAdapter::GetChunk(void** data)
{
    *data = nullptr;
    MMemoryStream written;
    WritePluginState(*plugin, written);
    chunk = written;
    chunk.Seek(0, MStream::Begin);
    *data = const_cast<std::uint8_t*>(chunk.GetCurrentPointer());
    return static_cast<std::intptr_t>(chunk.GetSize());
}

std::intptr_t MAudioPluginVSTAdapter::SetChunk(const void* data, std::intptr_t size)
{
    if (data == nullptr || size <= 0 || size > std::numeric_limits<std::int32_t>::max())
        return 1;
    AtBoundary("MAudioPluginVSTAdapter::setChunk",
               [&]
               {
                   MMemoryStream stream = MMemoryStream::Borrow(data, static_cast<std::int32_t>(size));
                   ReadPluginState(*plugin, stream);
               });
    return 1;
}

bool MAudioPluginVSTAdapter::DescribePin(std::int32_t index, bool input, PinProperties* properties) const
{
    const MStringList& names = input ? plugin->buses.InputNames() : plugin->buses.OutputNames();
    if (properties == nullptr || index < 0 || index >= names.Count())
        return false;
    *properties = {};
    CopyText(properties->label, names[index], sizeof properties->label);
    CopyText(properties->shortLabel, names[index], sizeof properties->shortLabel);
    switch (plugin->buses.Width())
    {
    case 1:
        properties->flags = PinFlags::IsActive;
        properties->arrangementType = SpeakerArrangementType::Mono;
        break;
    case 2:
        properties->flags = PinFlags::IsActive | PinFlags::IsStereo;
        properties->arrangementType = SpeakerArrangementType::Stereo;
        break;
    default:
        properties->flags = PinFlags::IsActive | PinFlags::UseSpeaker;
        properties->arrangementType = SpeakerArrangementType::Music80;
        break;
    }
    return true;
}

bool MAudioPluginVSTAdapter::SetSpeakerArrangement(const SpeakerArrangement* input,
                                                   const SpeakerArrangement* output)
{
    const auto fits = [](const SpeakerArrangement* given, std::int32_t channels)
    {
        return given == nullptr || (given->numChannels >= 0 && given->numChannels <= channels);
    };
    if (!fits(input, plugin->buses.InputNames().Count()) ||
        !fits(output, plugin->buses.OutputNames().Count()))
        return false;
    std::int32_t connectedInputs = 0;
    if (plugin->buses.InputGroups() > 0)
        connectedInputs = input == nullptr ? -1 : std::min(input->numChannels, plugin->buses.Width());
    std::int32_t connectedOutputs =
        output == nullptr ? 1 : std::min(output->numChannels, plugin->buses.Width());
    if (connectedOutputs <= 0)
        connectedOutputs = 1;
    plugin->SetConnectedChannels(connectedInputs, connectedOutputs);
    return true;
}

std::intptr_t MAudioPluginVSTAdapter::CanDo(const char* text) const
{
    constexpr std::array receiving = { "receiveVstEvents", "receiveVstEvent", "receiveVstMidiEvents",
                                       "receiveVstMidiEvent" };
    constexpr std::array sending = { "sendVstEvents", "sendVstEvent", "sendVstMidiEvents",
                                     "sendVstMidiEvent" };
    constexpr std::array always = { "plugAsChannelInsert", "canMono", "plugAsSend", "receiveVstTimeInfo",
                                    "bypass" };
    const auto is = [text](const char* known)
    {
        return std::strcmp(text, known) == 0;
    };
    if (std::any_of(receiving.begin(), receiving.end(), is))
        return plugin->takesMIDI ? 1 : -1;
    if (std::any_of(sending.begin(), sending.end(), is))
        return plugin->producesMIDI ? 1 : -1;
    return std::any_of(always.begin(), always.end(), is) ? 1 : 0;
}

void MAudioPluginVSTAdapter::Process(AEffect* effect, float** inputs, float** outputs, std::int32_t frames)
{
    if (MAudioPluginVSTAdapter* adapter = AdapterOf(effect))
        AtBoundary("MAudioPluginVSTAdapter::process",
                   [&] { adapter->PerformProcessing(inputs, outputs, frames, false); });
}

void MAudioPluginVSTAdapter::ProcessReplacing(AEffect* effect, float** inputs, float** outputs,
                                              std::int32_t frames)
{
    if (MAudioPluginVSTAdapter* adapter = AdapterOf(effect))
        AtBoundary("MAudioPluginVSTAdapter::processReplacing",
                   [&] { adapter->PerformProcessing(inputs, outputs, frames, true); });
}

void MAudioPluginVSTAdapter::PerformProcessing(float** inputs, float** outputs, std::int32_t frames,
                                               bool replacing)
{
    if (frames <= 0 || outputs == nullptr)
        return;
    ReadTimeInfo();
    // Some hosts pass no inputs to an effect that nothing is connected to: it hears silence.
    std::array<float*, MAudioPlugin::MaxChannels> unconnected{};
    if (inputs == nullptr)
        inputs = unconnected.data();
    plugin->ProcessBlockOrSilence(inputs, outputs, frames, replacing);
    SendOutgoingEvents();
}

void MAudioPluginVSTAdapter::ReadTimeInfo()
{
    if (!plugin->wantsTimeInfo)
        return;
    constexpr std::intptr_t wanted = 16071;
    const auto* info = reinterpret_cast<const TimeInfo*>(CallHost(HostOpcode::GetTime, 0, wanted));
    if (info == nullptr)
        return;
    plugin->transport.Take(
        { .tempo = info->tempo,
          .position = info->ppqPos,
          .barStart = info->barStartPos,
          .signature = Transport::Report::Signature{ info->timeSigNumerator, info->timeSigDenominator },
          .cycleStart = info->cycleStartPos,
          .cycleEnd = info->cycleEndPos,
          .playing = (info->flags & TransportPlaying) != 0 });
}

void MAudioPluginVSTAdapter::SendAutomation(std::int32_t index, double value01)
{
    if (index < 0 || index >= plugin->GetParameterCount())
        return;
    // The host sets the parameter again in answer; that echo changes nothing.
    const EchoGuard::Report report(echoes);
    CallHost(HostOpcode::Automate, index, 0, nullptr, static_cast<float>(value01));
}

void MAudioPluginVSTAdapter::GenerateMIDIEvent(std::uint8_t status, std::uint8_t data1, std::uint8_t data2,
                                               std::int32_t offset)
{
    MidiEvent event{};
    event.type = MidiEventType;
    event.byteSize = sizeof(MidiEvent);
    event.deltaFrames = offset;
    event.midiData[0] = static_cast<char>(status);
    event.midiData[1] = static_cast<char>(data1);
    event.midiData[2] = static_cast<char>(data2);
    const MSynchronizerGuard guard(outgoingLock);
    if (outgoingEvents.size() < outgoingCapacity)
        outgoingEvents.push_back(event);
}

void MAudioPluginVSTAdapter::SendOutgoingEvents()
{
    if (!plugin->producesMIDI)
        return;
    {
        const MSynchronizerGuard guard(outgoingLock);
        sendingEvents.clear();
        sendingEvents.swap(outgoingEvents);
    }
    if (sendingEvents.empty())
        return;
    // The record with as many pointers behind it as there are events.
    auto* list = reinterpret_cast<Events*>(sendingRecord.data());
    list->numEvents = static_cast<std::int32_t>(sendingEvents.size());
    list->reserved = 0;
    for (std::size_t index = 0; index < sendingEvents.size(); ++index)
        sendingRecord[recordHead + index] = reinterpret_cast<std::intptr_t>(&sendingEvents[index]);
    CallHost(HostOpcode::ProcessEvents, 0, 0, list);
}

void MAudioPluginVSTAdapter::ReportLatency()
{
    const std::int32_t latency = plugin->TotalLatency();
    LogLine(Format("Latency: {0}", latency));
    std::atomic_ref(effect.initialDelay).store(latency, std::memory_order_relaxed);
    // During the construction the host doesn't know the record yet.
    if (constructed)
        CallHost(HostOpcode::IOChanged);
}

AEffect* CreateEffect(HostCallback host) noexcept
{
    if (host == nullptr || host(nullptr, HostOpcode::Version, 0, 0, nullptr, 0) == 0)
        return nullptr;
    AEffect* made = AtBoundary("VSTPluginMain", static_cast<AEffect*>(nullptr),
                               [host]() -> AEffect*
                               {
                                   auto adapter =
                                       std::make_unique<MAudioPluginVSTAdapter>(host, CreateInstance());
                                   return adapter.release()->Effect();
                               });
    if (made == nullptr)
        LogLine("Error creating Vst plugin object.");
    return made;
}
}   // namespace Vst2
