// SPDX-License-Identifier: GPL-3.0-or-later
// The adapters around a plug-in whose inside is within reach: what it tells its host, and what it hears of
// the song.
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <pluginterfaces/vst/ivstevents.h>
#include <pluginterfaces/vst/ivstmessage.h>
#include <pluginterfaces/vst/ivstprocesscontext.h>

#include "hosts/module/CreateInstance.h"
#include "hosts/vst2/MAudioPluginVSTAdapter.h"
#include "hosts/vst3/MAudioPluginVST3Adapter.h"
#include "tools/vst3host/Vst3Host.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
std::vector<std::string> told;
double toldEcho = 0.9;   // what the hosts answer a reported value with

template <typename... Parts>
void Tell(const Parts&... parts)
{
    std::ostringstream text;
    ((text << parts << " "), ...);
    told.push_back(text.str().substr(0, text.str().size() - 1));
}

std::vector<std::string> Take()
{
    return std::exchange(told, {});
}

// Has the plug-in heard where the song stands?
void ExpectTransport(const MQuorvaneAudioEffectPlugin& plugin, bool playing)
{
    EXPECT_EQ(plugin.transport.IsPlaying(), playing);
    EXPECT_EQ(plugin.transport.CycleStart(), 4);
    EXPECT_EQ(plugin.transport.CycleEnd(), 8);
    const MProcessContext context = plugin.transport.Context(512);
    EXPECT_EQ(context.tempo, 133);
    if (playing)
    {
        EXPECT_EQ(context.timeSignatureNumerator, 3);
        EXPECT_EQ(context.timeSignatureDenominator, 8);
        EXPECT_EQ(context.barStart, 12);
    }
    EXPECT_NEAR(plugin.transport.Position(), 12.5, 0.1);
}

struct Vst2Recorder
{
    static inline Vst2::TimeInfo time{};
    static std::intptr_t Answer(Vst2::AEffect* effect, std::int32_t opcode, std::int32_t index,
                                std::intptr_t value, void* pointer, float option)
    {
        using namespace Vst2;
        switch (opcode)
        {
        case HostOpcode::Version:
            return 2400;
        case HostOpcode::GetTime:
            return reinterpret_cast<std::intptr_t>(&time);
        case HostOpcode::Automate:
            Tell("value", index, option);
            effect->setParameter(effect, index, static_cast<float>(toldEcho));
            return 0;
        case HostOpcode::ProcessEvents:
        {
            const auto* events = static_cast<const Events*>(pointer);
            EXPECT_EQ(events->reserved, 0);
            for (std::int32_t number = 0; number < events->numEvents; ++number)
            {
                const auto& event = *reinterpret_cast<const MidiEvent*>(events->events[number]);
                Tell("midi", event.type, event.byteSize, event.deltaFrames, event.midiData[0] & 0xFF,
                     int{ event.midiData[1] }, int{ event.midiData[2] });
            }
            return 1;
        }
        default:
            Tell("host", opcode, index, value);
            return 0;
        }
    }
};
}   // namespace

TEST(Vst2Adapter, TellsGesturesAndMidiAndHearsWhereTheSongStands)
{
    using namespace Vst2;
    auto owned = CreateInstance();
    MQuorvaneAudioEffectPlugin& plugin = *owned;
    auto* adapter = new MAudioPluginVSTAdapter(&Vst2Recorder::Answer, std::move(owned));
    AEffect* effect = adapter->Effect();
    const auto send = [effect](std::int32_t opcode, std::intptr_t value = 0, const char* text = nullptr)
    {
        return effect->dispatcher(effect, opcode, 0, value, const_cast<char*>(text), 0);
    };
    Take();
    plugin.Edit(1, 0.25);
    EXPECT_THAT(Take(), ElementsAre("host 43 1 0", "value 1 0.25", "host 44 1 0"));
    EXPECT_NEAR(plugin.GetParameter(1), 0.25, 1e-6) << "an echo counts for nothing";
    adapter->SendAutomation(-1, 0.5);
    adapter->SendAutomation(effect->numParams, 0.5);
    EXPECT_THAT(Take(), IsEmpty());
    adapter->ReportAllValues();
    adapter->ReportLatency();
    EXPECT_THAT(Take(), ElementsAre("host 42 0 0", "host 13 0 0"));

    EXPECT_EQ(send(EffectOpcode::CanDo, 0, "receiveVstEvents"), -1);
    plugin.takesMIDI = plugin.producesMIDI = plugin.wantsTimeInfo = true;
    EXPECT_EQ(send(EffectOpcode::CanDo, 0, "receiveVstEvents"), 1);
    EXPECT_EQ(send(EffectOpcode::CanDo, 0, "sendVstMidiEvent"), 1);
    send(EffectOpcode::MainsChanged, 1);
    EXPECT_THAT(Take(), ElementsAre("host 6 0 1"));
    plugin.wantsTimeInfo = true;   // a preparation asks the effect
    TimeInfo& time = Vst2Recorder::time;
    time.ppqPos = 12.5;
    time.tempo = 133;
    time.cycleStartPos = 4;
    time.cycleEndPos = 8;
    time.barStartPos = 12;
    time.timeSigNumerator = 3;
    time.timeSigDenominator = 8;
    time.flags = TransportPlaying;
    std::vector<float> left(64), right(64);
    float* channels[] = { left.data(), right.data() };
    for (int note = 0; note < 600; ++note)   // more than a block can bring
        adapter->GenerateMIDIEvent(0x90, 60, static_cast<std::uint8_t>(note % 100), note);
    effect->processReplacing(effect, channels, channels, 64);
    const std::vector<std::string> midi = Take();
    ASSERT_EQ(midi.size(), 512u);
    EXPECT_EQ(midi[0], "midi 1 32 0 144 60 0");
    EXPECT_EQ(midi[511], "midi 1 32 511 144 60 11");
    effect->processReplacing(effect, channels, channels, 64);   // it plays where the position stays near
    ExpectTransport(plugin, true);
    time.flags = 0;
    effect->processReplacing(effect, channels, channels, 64);
    EXPECT_THAT(Take(), IsEmpty());
    ExpectTransport(plugin, false);
    EXPECT_EQ(send(EffectOpcode::Close), 1);
}

namespace
{
using namespace Steinberg;
using namespace Steinberg::Vst;

struct GroupHandler : HostObject<IComponentHandler2>
{
    tresult PLUGIN_API setDirty(TBool) override { return kResultOk; }
    tresult PLUGIN_API requestOpenEditor(FIDString) override { return kResultOk; }
    tresult PLUGIN_API startGroupEdit() override { return Tell("group"), kResultOk; }
    tresult PLUGIN_API finishGroupEdit() override { return Tell("end of group"), kResultOk; }
};

struct Handler : HostObject<IComponentHandler>
{
    explicit Handler(IEditController& answered) : controller(answered) {}
    tresult PLUGIN_API queryInterface(const TUID wanted, void** object) override
    {
        return FUnknownPrivate::iidEqual(wanted, IComponentHandler2::iid)
                   ? groups.queryInterface(wanted, object)
                   : HostObject::queryInterface(wanted, object);
    }
    tresult PLUGIN_API beginEdit(ParamID id) override { return Tell("begin", id), kResultOk; }
    tresult PLUGIN_API performEdit(ParamID id, ParamValue value) override
    {
        Tell("value", id, value);
        return controller.setParamNormalized(id, toldEcho);
    }
    tresult PLUGIN_API endEdit(ParamID id) override { return Tell("end", id), kResultOk; }
    tresult PLUGIN_API restartComponent(int32 flags) override { return Tell("restart", flags), kResultOk; }

    IEditController& controller;
    GroupHandler groups;
};

struct EventList : HostObject<IEventList>
{
    int32 PLUGIN_API getEventCount() override { return 0; }
    tresult PLUGIN_API getEvent(int32, Event&) override { return kResultFalse; }
    tresult PLUGIN_API addEvent(Event& event) override
    {
        if (event.type == Event::kNoteOnEvent)
            Tell("on", event.sampleOffset, event.noteOn.channel, event.noteOn.pitch, event.noteOn.velocity,
                 event.noteOn.noteId);
        else
            Tell("off", event.sampleOffset, event.noteOff.channel, event.noteOff.pitch,
                 event.noteOff.velocity, event.noteOff.noteId);
        return kResultOk;
    }
};
}   // namespace

TEST(Vst3Adapter, TellsGesturesAndMidiAndHearsWhereTheSongStands)
{
    auto* adapter = new Vst3::MAudioPluginVST3Adapter(CreateInstance());
    MQuorvaneAudioEffectPlugin& plugin = adapter->Plugin();
    plugin.takesMIDI = plugin.producesMIDI = true;
    ASSERT_EQ(adapter->initialize(nullptr), kResultOk);
    EXPECT_EQ(adapter->getBusCount(kEvent, kInput) + adapter->getBusCount(kEvent, kOutput), 2);
    BusInfo bus;
    EXPECT_EQ(adapter->getBusInfo(kEvent, kOutput, 0, bus), kResultOk);
    EXPECT_EQ(ToUtf8(bus.name), "Midi Out");
    EXPECT_EQ(bus.channelCount, 16);
    EXPECT_EQ(bus.flags, static_cast<uint32>(BusInfo::kDefaultActive));
    IEditController* controller = nullptr;
    ASSERT_EQ(adapter->queryInterface(IEditController::iid, reinterpret_cast<void**>(&controller)),
              kResultOk);
    Handler handler(*controller);
    EXPECT_EQ(controller->setComponentHandler(&handler), kResultOk);
    EXPECT_EQ(handler.references, 1);

    Take();
    plugin.Edit(1, 0.25);
    EXPECT_THAT(Take(), ElementsAre("begin 1", "value 1 0.25", "end 1"));
    EXPECT_NEAR(plugin.GetParameter(1), 0.25, 1e-6) << "an echo counts for nothing";
    plugin.SetBypass(true);
    Take();
    adapter->SendBypassAutomation();
    EXPECT_THAT(Take(), ElementsAre("begin 32767", "value 32767 1", "end 32767"));
    plugin.MarkParameterChangedInside(1);
    plugin.MarkParameterChangedInside(2);
    plugin.ReportChanges();
    EXPECT_THAT(Take(), testing::Contains("group"));
    EXPECT_EQ(handler.groups.references, 0);
    adapter->SendAutomation(-1, 0.5);
    adapter->SendAutomation(plugin.GetParameterCount(), 0.5);
    EXPECT_THAT(Take(), IsEmpty());
    adapter->ReportAllValues();
    adapter->ReportLatency();
    EXPECT_THAT(Take(), ElementsAre("restart " + std::to_string(kParamValuesChanged),
                                    "restart " + std::to_string(kLatencyChanged)));

    plugin.wantsTimeInfo = false;
    EXPECT_EQ(adapter->getProcessContextRequirements(), 0u);
    plugin.wantsTimeInfo = true;
    EXPECT_NE(adapter->getProcessContextRequirements(), 0u);
    ProcessContext song{};
    song.state = ProcessContext::kProjectTimeMusicValid | ProcessContext::kTempoValid |
                 ProcessContext::kTimeSigValid | ProcessContext::kBarPositionValid |
                 ProcessContext::kCycleActive | ProcessContext::kPlaying;
    song.projectTimeMusic = 12.5;
    song.tempo = 133;
    song.barPositionMusic = 12;
    song.timeSigNumerator = 3;
    song.timeSigDenominator = 8;
    song.cycleStartMusic = 4;
    song.cycleEndMusic = 8;
    EventList events;
    std::vector<float> left(64), right(64);
    float* channels[] = { left.data(), right.data() };
    AudioBusBuffers buffers;
    buffers.numChannels = 2;
    buffers.channelBuffers32 = channels;
    ProcessData data;
    data.symbolicSampleSize = kSample32;
    data.numSamples = 64;
    data.numInputs = data.numOutputs = 1;
    data.inputs = data.outputs = &buffers;
    data.processContext = &song;
    data.outputEvents = &events;
    adapter->GenerateMIDIEvent(0x93, 60, 127, 7);
    adapter->GenerateMIDIEvent(0x85, 61, 0, 9);
    adapter->GenerateMIDIEvent(0x12, 61, 0, 9);
    EXPECT_EQ(adapter->process(data), kResultOk);
    EXPECT_THAT(Take(), ElementsAre("on 7 3 60 1 -1", "off 9 5 61 0 -1"));
    EXPECT_EQ(adapter->process(data), kResultOk);   // it plays where the position stays near
    ExpectTransport(plugin, true);
    song = {};   // what isn't valid changes nothing, but nobody plays
    song.tempo = song.projectTimeMusic = 1;
    song.state = ProcessContext::kCycleActive;
    song.cycleStartMusic = 4;
    song.cycleEndMusic = 8;
    EXPECT_EQ(adapter->process(data), kResultOk);
    EXPECT_THAT(Take(), IsEmpty());
    ExpectTransport(plugin, false);

    auto* other = new Vst3::MAudioPluginVST3Adapter(CreateInstance());
    EXPECT_EQ(adapter->connect(nullptr), kInvalidArgument);
    EXPECT_EQ(adapter->connect(other), kResultOk);
    EXPECT_EQ(adapter->connect(other), kResultFalse);
    EXPECT_EQ(adapter->disconnect(adapter), kResultFalse);
    EXPECT_EQ(adapter->disconnect(other), kResultOk);
    EXPECT_EQ(adapter->connect(other), kResultOk);
    EXPECT_EQ(controller->setComponentHandler(nullptr), kResultOk);
    EXPECT_EQ(handler.references, 0);
    controller->release();
    adapter->terminate();
    EXPECT_EQ(other->release(), 0u) << "let go of";
    EXPECT_EQ(adapter->release(), 0u);
}
