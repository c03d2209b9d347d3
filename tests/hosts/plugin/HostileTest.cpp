// SPDX-License-Identifier: GPL-3.0-or-later
// A host that does everything wrong that hosts do.
#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "Vst2Host.h"
#include "tests/AllocationCounter.h"
#include "tools/vst3host/Vst3Host.h"

namespace
{
using Steinberg::kResultFalse;
using Steinberg::kResultOk;

class Hostile : public testing::Test
{
protected:
    const LoadedModule vst2Module{ LoadedModule::Format::Vst2 };
    const LoadedModule vst3Module{ LoadedModule::Format::Vst3 };
};

TEST_F(Hostile, Vst2AnswersItsTables)
{
    const Vst2Instance vst2(vst2Module);
    const struct
    {
        const char* text;
        std::intptr_t answer;
    } abilities[] = { { "receiveVstMidiEvent", -1 },
                      { "receiveVstEvents", -1 },
                      { "sendVstEvents", -1 },
                      { "sendVstMidiEvent", -1 },
                      { "canMono", 1 },
                      { "plugAsSend", 1 },
                      { "receiveVstTimeInfo", 1 },
                      { "bypass", 1 },
                      { "Bypass", 0 },
                      { "somethingElse", 0 } };
    for (const auto& each : abilities)
        EXPECT_EQ(vst2.Send(Vst2::EffectOpcode::CanDo, 0, 0, const_cast<char*>(each.text)), each.answer)
            << each.text;
    namespace Opcode = Vst2::EffectOpcode;
    const Vst2::AEffect& record = *vst2.effect;
    EXPECT_EQ(record.magic, 0x56737450);
    EXPECT_EQ(record.uniqueID, 0x51547E32);
    EXPECT_EQ(record.flags, 0x30) << "replaces, and stores itself as a whole";
    EXPECT_EQ(std::tuple(record.numPrograms, record.numInputs, record.numOutputs, record.ioRatio),
              std::tuple(1, 2, 2, 1.0f));
    for (const std::int32_t named : { Opcode::GetEffectName, Opcode::GetProductString, Opcode::GetProgramName,
                                      Opcode::GetProgramNameIndexed })
        EXPECT_EQ(vst2.Text(named), "TonalignLinearPhase") << named;
    EXPECT_EQ(vst2.Text(Opcode::GetVendorString), "Quorvane");
    const struct
    {
        std::int32_t opcode, index;
        std::intptr_t value, answer;
    } answers[] = {
        { Opcode::GetVstVersion, 0, 0, 2400 },      { Opcode::GetVendorVersion, 0, 0, record.version },
        { Opcode::GetProgramNameIndexed, 0, 0, 1 }, { Opcode::GetProgramNameIndexed, 1, 0, 0 },
        { Opcode::GetPlugCategory, 0, 0, 1 },       { Opcode::SetProcessPrecision, 0, 0, 1 },
        { Opcode::SetProcessPrecision, 0, 1, 0 },   { Opcode::StringToParameter, 80, 0, 1 },
        { Opcode::StringToParameter, 81, 0, 0 },    { Opcode::SetBypass, 0, 1, 1 },
        { Opcode::ProcessEvents, 0, 0, 1 },         { 1000, 0, 0, 0 }
    };
    for (const auto& [opcode, index, value, answer] : answers)
        EXPECT_EQ(vst2.Send(opcode, index, value), answer) << opcode << " " << value;
    EXPECT_EQ(vst2.Send(Opcode::GetTailSize), Vst3Instance(vst3Module).processor->getTailSamples());
    Vst2::PinProperties pin{};
    std::string labels;
    for (const std::int32_t side : { Opcode::GetInputProperties, Opcode::GetOutputProperties })
        for (const std::int32_t index : { 0, 1 })
        {
            EXPECT_EQ(vst2.Send(side, index, 0, &pin), 1);
            labels += std::string(pin.label) + "," + pin.shortLabel + " ";
            EXPECT_EQ(pin.flags, Vst2::PinFlags::IsActive | Vst2::PinFlags::IsStereo);
            EXPECT_EQ(pin.arrangementType, Vst2::SpeakerArrangementType::Stereo);
        }
    EXPECT_EQ(labels, "In L,In L In R,In R Out L,Out L Out R,Out R ");
    EXPECT_EQ(vst2.Send(Vst2::EffectOpcode::GetOutputProperties, 2, 0, &pin), 0);
    Vst2::SpeakerArrangement wide{};
    wide.numChannels = 6;
    EXPECT_EQ(vst2.Send(Vst2::EffectOpcode::SetSpeakerArrangement, 0, 0, &wide), 0);
    wide.numChannels = -3;
    EXPECT_EQ(vst2.Send(Vst2::EffectOpcode::SetSpeakerArrangement, 0, reinterpret_cast<std::intptr_t>(&wide)),
              0);
}

TEST_F(Hostile, Vst2SurvivesEveryOpcodeWithNothingBehindIt)
{
    Vst2Instance vst2(vst2Module);
    const auto sendAll = [&]
    {
        for (std::int32_t opcode = -2; opcode < 120; ++opcode)
            if (opcode != Vst2::EffectOpcode::Close)
                for (const std::int32_t index : { 0, -1, 80, 81, std::numeric_limits<std::int32_t>::max() })
                    vst2.Send(opcode, index, 0, nullptr, std::numeric_limits<float>::quiet_NaN());
    };
    sendAll();
    EXPECT_EQ(vst2.Send(Vst2::EffectOpcode::SetChunk, 0, -1, vst2.effect), 1);
    for (const float value : { -1.0f, 2.0f, std::numeric_limits<float>::infinity(), std::nanf("") })
        for (std::int32_t index = -1; index <= vst2.effect->numParams; ++index)
        {
            vst2.effect->setParameter(vst2.effect, index, value);
            const float now = vst2.effect->getParameter(vst2.effect, index);
            EXPECT_TRUE(now >= 0 && now <= 1) << index << " " << value << " " << now;
        }
    // A rate of 50 is no rate. The plug-in keeps working.
    vst2.Send(Vst2::EffectOpcode::SetSampleRate, 0, 0, nullptr, 50);
    std::vector<float> left(64, 0.5f);
    std::vector<float> right(64, 0.5f);
    float* both[] = { left.data(), right.data() };
    float* none[] = { nullptr, nullptr };
    float* one[] = { left.data(), nullptr };
    for (const std::int32_t frames : { 64, 0, -1 })
        for (float** inputs : { static_cast<float**>(nullptr), both, none, one })
            for (float** outputs : { static_cast<float**>(nullptr), both, none, one })
            {
                vst2.effect->processReplacing(vst2.effect, inputs, outputs, frames);
                vst2.effect->process(vst2.effect, inputs, outputs, frames);
            }
    // After the end the record is empty, and stays.
    vst2.Close();
    vst2.Send(Vst2::EffectOpcode::Close);
    sendAll();
    vst2.effect->setParameter(vst2.effect, 0, 1);
    EXPECT_EQ(vst2.effect->getParameter(vst2.effect, 0), 0);
    left.assign(64, 0.5f);
    vst2.effect->processReplacing(vst2.effect, both, both, 64);
    EXPECT_EQ(left[63], 0.5f);
    vst2.effect->dispatcher(nullptr, Vst2::EffectOpcode::Open, 0, 0, nullptr, 0);
}

TEST_F(Hostile, Vst3IsOneObjectWithOneCount)
{
    using namespace Steinberg;
    {
        const Vst3Instance vst3(vst3Module);
        FUnknown* identity = nullptr;
        ASSERT_EQ(vst3.component->queryInterface(FUnknown::iid, reinterpret_cast<void**>(&identity)),
                  kResultOk);
        const FUID known[] = { FUID::fromTUID(Vst::IComponent::iid),
                               FUID::fromTUID(Vst::IAudioProcessor::iid),
                               FUID::fromTUID(Vst::IEditController::iid),
                               FUID::fromTUID(Vst::IEditController2::iid),
                               FUID::fromTUID(Vst::IMidiMapping::iid),
                               FUID::fromTUID(Vst::IUnitInfo::iid),
                               FUID::fromTUID(Vst::IConnectionPoint::iid),
                               FUID::fromTUID(Vst::IProcessContextRequirements::iid),
                               FUID::fromTUID(IPluginBase::iid) };
        for (const FUID& each : known)
        {
            FUnknown* facet = nullptr;
            ASSERT_EQ(vst3.component->queryInterface(each, reinterpret_cast<void**>(&facet)), kResultOk);
            FUnknown* same = nullptr;
            facet->queryInterface(FUnknown::iid, reinterpret_cast<void**>(&same));
            EXPECT_EQ(same, identity);
            same->release();
            facet->release();
        }
        void* object = identity;
        EXPECT_EQ(vst3.component->queryInterface(IBStream::iid, &object), kNoInterface);
        EXPECT_EQ(object, nullptr);
        identity->release();
    }
    EXPECT_EQ(Vst3Instance::lastCount, 0u);
}

TEST_F(Hostile, Vst3NegotiatesEachSideOfItsBuses)
{
    using namespace Steinberg::Vst;
    using namespace SpeakerArr;
    constexpr SpeakerArrangement ambisonic = 0xFFFFF;   // 20 speakers
    const struct
    {
        SpeakerArrangement inputs, outputs, inputsNow, outputsNow;
    } cases[] = { { kStereo, kStereo, kStereo, kStereo },
                  { kMono, kStereo, kMono, kStereo },
                  { kStereo, kStereo, kStereo, kStereo },
                  { kMono, kMono, kMono, kMono },
                  { k51, k51, k51, k51 },
                  { kStereo, kMono, kMono, kMono },
                  { k71Cine, k71Cine, k71Cine, k71Cine },
                  { kMono, k51, k51, k51 },
                  { ambisonic, ambisonic, k71Cine, k71Cine },
                  { kEmpty, kStereo, kStereo, kStereo },
                  { kMono, kStereo, kMono, kStereo } };
    const Vst3Instance vst3(vst3Module);
    for (const auto& each : cases)
    {
        SCOPED_TRACE(::testing::Message() << std::hex << each.inputs << " to " << each.outputs);
        SpeakerArrangement inputs = each.inputs, outputs = each.outputs;
        const bool fits = each.inputs == each.inputsNow && each.outputs == each.outputsNow;
        EXPECT_EQ(vst3.processor->setBusArrangements(&inputs, 1, &outputs, 1),
                  fits ? kResultOk : kResultFalse);
        vst3.processor->getBusArrangement(kInput, 0, inputs);
        vst3.processor->getBusArrangement(kOutput, 0, outputs);
        EXPECT_EQ(inputs, each.inputsNow);
        EXPECT_EQ(outputs, each.outputsNow);
        BusInfo in, out;
        ASSERT_EQ(vst3.component->getBusInfo(kAudio, kInput, 0, in), kResultOk);
        ASSERT_EQ(vst3.component->getBusInfo(kAudio, kOutput, 0, out), kResultOk);
        EXPECT_EQ(in.channelCount, getChannelCount(inputs));
        EXPECT_EQ(out.channelCount, getChannelCount(outputs));

        // Each output plays its own input, and a mono input plays on all; the gain says that the effect did
        // it.
        OneChange gain(1, { 0.625 });   // +6 dB
        vst3.Start(48000, 512);
        std::vector<float> samples[16];
        float* channels[16] = {};
        for (int channel = 0; channel < 16; ++channel)
        {
            samples[channel].assign(40000, 0.01f * static_cast<float>(channel % 8 + 1));
            channels[channel] = samples[channel].data();
        }
        vst3.Process(channels, channels + 8, 40000, &gain, in.channelCount, out.channelCount);
        for (int channel = 0; channel < out.channelCount; ++channel)
        {
            const float input = 0.01f * static_cast<float>(in.channelCount == 1 ? 1 : channel + 1);
            EXPECT_NEAR(samples[8 + channel].back(), input * 1.9953f, 1e-4f) << channel;
        }
        vst3.component->setActive(false);
    }
    EXPECT_NE(vst3.processor->setBusArrangements(nullptr, 1, nullptr, -1), kResultOk);
    // Hosts take a plug-in with an event input for an instrument and connect only its first audio input.
    EXPECT_EQ(vst3.component->getBusCount(kEvent, kInput), 0);
    EXPECT_EQ(vst3.component->getBusCount(kEvent, kOutput), 0);
    EXPECT_EQ(vst3.component->getBusCount(7, 9), 0);
    BusInfo info;
    EXPECT_NE(vst3.component->getBusInfo(kAudio, kInput, 1, info), kResultOk);
    EXPECT_NE(vst3.component->activateBus(kAudio, kInput, -1, true), kResultOk);
    IMidiMapping* mapping = nullptr;
    ASSERT_EQ(vst3.component->queryInterface(IMidiMapping::iid, reinterpret_cast<void**>(&mapping)),
              kResultOk);
    for (const int controller : { -1, 0, 7, 129, 130, 32767 })
    {
        ParamID id = 1;
        EXPECT_NE(mapping->getMidiControllerAssignment(0, 0, static_cast<CtrlNumber>(controller), id),
                  kResultOk);
    }
    mapping->release();
}

TEST_F(Hostile, Vst2PlaysAMonoInputOnBothOutputs)
{
    const Vst2Instance vst2(vst2Module);
    Vst2::SpeakerArrangement mono{};
    Vst2::SpeakerArrangement stereo{};
    mono.numChannels = 1;
    stereo.numChannels = 2;
    // What hosts do: announce it and pass one pointer, or say nothing and pass the one pointer twice.
    for (const bool announced : { true, false })
    {
        EXPECT_EQ(vst2.Send(Vst2::EffectOpcode::SetSpeakerArrangement, 0,
                            reinterpret_cast<std::intptr_t>(announced ? &mono : &stereo), &stereo),
                  1);
        vst2.Start(48000, 512);
        std::vector<float> in(40000, 0.25f), left(40000), right(40000);
        float* inputs[] = { in.data(), announced ? nullptr : in.data() };
        float* outputs[] = { left.data(), right.data() };
        vst2.Process(inputs, outputs, 40000);
        EXPECT_NEAR(left.back(), 0.25f, 1e-4f) << announced;
        EXPECT_EQ(right.back(), left.back()) << announced;
        std::fill_n(left.begin(), 64, 1.0f);
        vst2.effect->process(vst2.effect, inputs, outputs, 64);
        EXPECT_NEAR(left[63], 1.25f, 1e-4f) << "the older call adds";
    }
}

TEST_F(Hostile, Vst3FlagsSilenceAndOnlySilence)
{
    const Vst3Instance vst3(vst3Module);
    vst3.Start(48000, 512);
    std::vector<float> left(512), right(512);
    float* channels[] = { left.data(), right.data() };
    for (int block = 0; block < 200; ++block)
    {
        std::fill(left.begin(), left.end(), 0.0f);
        std::fill(right.begin(), right.end(), block == 100 ? 0.5f : 0.0f);
        ASSERT_EQ(vst3.Process(channels, channels, 512), kResultOk);
        for (int channel = 0; channel < 2; ++channel)
        {
            const bool silent = std::all_of(channels[channel], channels[channel] + 512,
                                            [](float sample) { return sample == 0; });
            EXPECT_EQ((vst3.lastOutput.silenceFlags >> channel & 1) != 0, silent) << block;
        }
        EXPECT_EQ(vst3.lastOutput.silenceFlags & 1, 1u) << "nothing was ever played on the left";
        if (block == 164)   // 64 blocks later: the latency
        {
            EXPECT_EQ(vst3.lastOutput.silenceFlags, 1u);
        }
    }
}

TEST_F(Hostile, HiddenParametersAreNeitherSeenNorAutomated)
{
    const Vst2Instance vst2(vst2Module);
    const Vst3Instance vst3(vst3Module);
    for (std::int32_t index = 0; index < vst3.controller->getParameterCount(); ++index)
    {
        using Info = Steinberg::Vst::ParameterInfo;
        Info info;
        ASSERT_EQ(vst3.controller->getParameterInfo(index, info), kResultOk);
        const std::string title = ToUtf8(info.title);
        const bool hidden = title.starts_with("RESERVED") || title.starts_with("Controller");
        EXPECT_EQ((info.flags & Info::kIsHidden) != 0, hidden) << title;
        EXPECT_NEAR(info.defaultNormalizedValue, vst3.controller->getParamNormalized(info.id), 1e-6) << title;
        // The channel mode prepares processing, which is no work for a playing song.
        const bool automatable = !hidden && title != "Channel mode" && title != "Program";
        EXPECT_EQ((info.flags & Info::kCanAutomate) != 0, automatable) << title;
        if (info.id < 10000)
        {
            EXPECT_EQ(vst2.Send(Vst2::EffectOpcode::CanBeAutomated, index), automatable ? 1 : 0) << title;
        }
    }
}

TEST_F(Hostile, TheChannelModeIsAParameterInBothFormats)
{
    constexpr std::int32_t mode = 80;
    // +6 dB on what the mode equalizes; a left of 0.2 and a right of 0.1.
    const struct
    {
        const char* label;
        float left, right;
    } cases[] = { { "Left + Right", 0.4f, 0.2f }, { "Left", 0.4f, 0.1f },     { "Right", 0.2f, 0.2f },
                  { "Mono", 0.35f, 0.25f },       { "Stereo", 0.25f, 0.05f }, { "Mono + Stereo", 0.4f, 0.2f },
                  { "Surround", 0.4f, 0.2f } };   // of two channels: as the first
    for (const auto& each : cases)
    {
        SCOPED_TRACE(each.label);
        const Vst2Instance vst2(vst2Module);
        const Vst3Instance vst3(vst3Module);
        vst2.Start(48000, 512);
        vst3.Start(48000, 512);
        vst2.effect->setParameter(vst2.effect, 1, 0.625f);
        vst3.controller->setParamNormalized(1, 0.625);
        EXPECT_EQ(vst2.Send(Vst2::EffectOpcode::StringToParameter, mode, 0, const_cast<char*>(each.label)),
                  1);
        Steinberg::Vst::String128 text{};
        std::copy_n(each.label, std::strlen(each.label), text);
        double value = -1;
        ASSERT_EQ(vst3.controller->getParamValueByString(mode, text, value), kResultOk);
        EXPECT_EQ(vst3.controller->setParamNormalized(mode, value), kResultOk);
        EXPECT_EQ(vst2.Text(Vst2::EffectOpcode::GetParamDisplay, mode),
                  std::string(each.label) == "Surround" ? "Left + Right" : each.label);
        EXPECT_EQ(vst2.State(), vst3.State());
        for (int format = 0; format < 2; ++format)
        {
            std::vector<float> left(40000, 0.2f), right(40000, 0.1f);
            float* channels[] = { left.data(), right.data() };
            if (format == 0)
                vst2.Process(channels, channels, 40000);
            else
                vst3.Process(channels, channels, 40000);
            EXPECT_NEAR(left.back(), each.left, 2e-3f) << format;
            EXPECT_NEAR(right.back(), each.right, 2e-3f) << format;
        }
    }
}

TEST_F(Hostile, TheFactoryPresetsAreProgramsOfTheRoot)
{
    using namespace Steinberg::Vst;
    const Vst3Instance vst3(vst3Module);
    IUnitInfo* units = nullptr;
    ASSERT_EQ(vst3.component->queryInterface(IUnitInfo::iid, reinterpret_cast<void**>(&units)), kResultOk);
    UnitInfo root;
    ProgramListInfo list;
    ASSERT_EQ(units->getUnitInfo(0, root), kResultOk);
    ASSERT_EQ(units->getProgramListCount(), 1);
    ASSERT_EQ(units->getProgramListInfo(0, list), kResultOk);
    EXPECT_EQ(root.programListId, list.id);
    EXPECT_EQ(ToUtf8(list.name), "Factory presets");
    EXPECT_EQ(root.parentUnitId, kNoParentUnitId);
    UnitInfo below;
    ASSERT_EQ(units->getUnitInfo(1, below), kResultOk);
    EXPECT_EQ(below.parentUnitId, kRootUnitId);
    EXPECT_EQ(list.programCount, 36);
    constexpr ParamID program = 32766;
    const auto states = [&](int count)
    {
        std::vector<Vst3Instance::Bytes> all;
        for (int index = 1; index <= count; ++index)
        {
            String128 name{}, text{};
            EXPECT_EQ(units->getProgramName(list.id, index, name), kResultOk);
            EXPECT_NE(name[0], 0);
            const double value = vst3.controller->plainParamToNormalized(program, index);
            EXPECT_EQ(vst3.controller->getParamStringByValue(program, value, text), kResultOk);
            EXPECT_EQ(ToUtf8(text), ToUtf8(name));
            double back = -1;
            EXPECT_EQ(vst3.controller->getParamValueByString(program, name, back), kResultOk);
            EXPECT_NEAR(back, value, 1e-9);
            EXPECT_EQ(vst3.controller->setParamNormalized(program, value), kResultOk);
            EXPECT_NEAR(vst3.controller->getParamNormalized(program), value, 1e-9);
            all.push_back(vst3.State());
        }
        return all;
    };
    const std::vector<Vst3Instance::Bytes> all = states(list.programCount - 1);
    for (std::size_t index = 1; index < all.size(); ++index)
        EXPECT_NE(all[index], all[index - 1]) << index;
    String128 name{};
    EXPECT_NE(units->getProgramName(list.id, list.programCount, name), kResultOk);
    EXPECT_NE(units->getProgramName(list.id, -1, name), kResultOk);
    // A host that repeats what it read, as after loading a project, leaves edited bands alone.
    vst3.controller->setParamNormalized(12, 0.3);
    const Vst3Instance::Bytes edited = vst3.State();
    const Vst3Instance later(vst3Module);
    later.SetState(edited);
    later.controller->setParamNormalized(program, later.controller->getParamNormalized(program));
    later.controller->setParamNormalized(program, 0);
    EXPECT_EQ(later.State(), edited);
    units->release();
}

TEST_F(Hostile, Vst3TakesTheLastPointOfAQueueAndOnlyThat)
{
    const Vst3Instance vst3(vst3Module);
    vst3.Start(48000, 64);
    std::vector<float> samples(64);
    float* channels[] = { samples.data(), samples.data() };
    OneChange change(1, { 0.1, 0.9, 0.2, 0.8, 0.625 });
    vst3.Process(channels, channels, 64, &change);
    // The gain is not ramped in a block this short.
    EXPECT_NEAR(vst3.controller->getParamNormalized(1), 0.625, 1e-6);
    OneChange empty(1, {});
    vst3.Process(channels, channels, 64, &empty);
    EXPECT_NEAR(vst3.controller->getParamNormalized(1), 0.625, 1e-6);
    OneChange half(32767, { 0.5 });
    vst3.Process(channels, channels, 64, &half);
    EXPECT_EQ(vst3.controller->getParamNormalized(32767), 0.0);
    OneChange bypass(32767, { 0.51 });
    vst3.Process(channels, channels, 64, &bypass);
    EXPECT_EQ(vst3.controller->getParamNormalized(32767), 1.0);
    for (const unsigned id : { 81u, 9999u, 10000u, 10129u, 10130u, 32766u, 32768u, 0xFFFFFFFFu })
    {
        OneChange unknown(id, { std::nan("") });
        EXPECT_EQ(vst3.Process(channels, channels, 64, &unknown), kResultOk);
    }
    // A block without buses, or without samples, delivers parameters only.
    Steinberg::Vst::ProcessData data;
    data.symbolicSampleSize = Steinberg::Vst::kSample32;
    OneChange later(1, { 0.375 });
    data.inputParameterChanges = &later;
    EXPECT_EQ(vst3.processor->process(data), kResultOk);
    EXPECT_NEAR(vst3.controller->getParamNormalized(1), 0.375, 1e-6);
    OneChange off(32767, { 0.0 });
    data.inputParameterChanges = &off;
    EXPECT_EQ(vst3.processor->process(data), kResultOk);
    EXPECT_EQ(vst3.controller->getParamNormalized(32767), 0.0);
    data.inputParameterChanges = &bypass;
    data.numSamples = 64;
    EXPECT_EQ(vst3.processor->process(data), kResultOk);
    EXPECT_EQ(vst3.controller->getParamNormalized(32767), 1.0);
    // The controller's side reaches an active plug-in as well.
    for (const bool active : { true, false })
    {
        vst3.component->setActive(active);
        vst3.controller->setParamNormalized(1, active ? 0.5 : 0.25);
        EXPECT_NEAR(vst3.controller->getParamNormalized(1), active ? 0.5 : 0.25, 1e-6);
    }
}

TEST_F(Hostile, EveryValueIsReadableAndReadsBack)
{
    const Vst3Instance vst3(vst3Module);
    const Vst2Instance vst2(vst2Module);
    for (std::int32_t index = 0; index < vst2.effect->numParams; ++index)
        for (const double value : { 0.0, 0.25, 0.5, 1.0 })
        {
            const auto id = static_cast<unsigned>(index);
            Steinberg::Vst::String128 text{};
            ASSERT_EQ(vst3.controller->getParamStringByValue(id, value, text), kResultOk);
            ASSERT_NE(text[0], 0) << index;
            double back = -1;
            ASSERT_EQ(vst3.controller->getParamValueByString(id, text, back), kResultOk);
            Steinberg::Vst::String128 again{};
            vst3.controller->getParamStringByValue(id, back, again);
            // The type of a band is chosen by its position: its names aren't read.
            const bool isBandType = index >= 10 && (index - 10) % 7 == 4;
            EXPECT_EQ(isBandType ? back : 0, 0);
            EXPECT_EQ(ToUtf8(isBandType ? text : again), ToUtf8(text)) << index << " at " << value;
            // A stereo host has no surround: what it chooses there is the mode of both channels.
            if (ToUtf8(text) == "Surround")
                continue;
            // VST 2 shows the same text where its parameter stands at the value.
            vst2.effect->setParameter(vst2.effect, index, static_cast<float>(value));
            EXPECT_EQ(vst2.Text(Vst2::EffectOpcode::GetParamDisplay, index).substr(0, 3),
                      ToUtf8(text).substr(0, 3))
                << index << " at " << value;
        }
}

TEST_F(Hostile, Vst3ReadsItsOwnSwitchAndControllers)
{
    const Vst3Instance vst3(vst3Module);
    const struct
    {
        unsigned id;
        double value;
        const char* text;
        double back;
    } cases[] = { { 32767, 0.25, "Off", 0 },
                  { 32767, 0.75, "On", 1 },
                  { 10000, 0.25, "0.2500", 0.25 },
                  { 10129, 2, "1.0000", 1 } };
    for (const auto& [id, value, wanted, back] : cases)
    {
        Steinberg::Vst::String128 text{};
        EXPECT_EQ(vst3.controller->getParamStringByValue(id, value, text), kResultOk);
        EXPECT_EQ(ToUtf8(text), wanted);
        double read = -1;
        EXPECT_EQ(vst3.controller->getParamValueByString(id, text, read), kResultOk);
        EXPECT_EQ(read, back) << id;
    }
    Steinberg::Vst::String128 text{};
    double read = 0;
    for (const unsigned id : { 81u, 9999u, 10130u, 32768u })
    {
        EXPECT_NE(vst3.controller->getParamStringByValue(id, 0.5, text), kResultOk) << id;
        EXPECT_NE(vst3.controller->getParamValueByString(id, text, read), kResultOk) << id;
        EXPECT_NE(vst3.controller->setParamNormalized(id, 0.5), kResultOk) << id;
    }
}

TEST_F(Hostile, Vst3SurvivesCallsOutOfOrderAndWithNothingBehindThem)
{
    using namespace Steinberg;
    const Vst3Instance vst3(vst3Module, false);
    std::vector<float> samples(64, 0.5f);
    float* channels[] = { samples.data(), samples.data() };
    EXPECT_NE(vst3.Process(channels, channels, 64), kResultOk);
    vst3.component->setActive(true);
    EXPECT_EQ(vst3.controller->getParameterCount(), 0);
    vst3.component->terminate();
    for (int round = 0; round < 2; ++round)
    {
        EXPECT_EQ(vst3.component->initialize(nullptr), kResultOk);
        EXPECT_EQ(vst3.component->initialize(vst3.component), kResultOk);
        EXPECT_EQ(vst3.component->getBusCount(Vst::kAudio, Vst::kInput), 1);
        Vst::ProcessSetup doubles{ Vst::kOffline, Vst::kSample64, 64, 48000 };
        EXPECT_EQ(vst3.processor->canProcessSampleSize(Vst::kSample64), kResultFalse);
        EXPECT_EQ(vst3.processor->setupProcessing(doubles), kResultFalse);
        vst3.Start(48000, 16);
        vst3.Start(std::nan(""), -5);
        vst3.Start(std::numeric_limits<double>::infinity(), 16);
        Vst::ProcessData data;
        data.symbolicSampleSize = Vst::kSample32;
        data.numSamples = 64;
        data.numInputs = data.numOutputs = 1;
        EXPECT_EQ(vst3.processor->process(data), kResultOk);
        float* none[] = { nullptr, nullptr };
        for (float** inputs : { static_cast<float**>(nullptr), none, channels })
            for (float** outputs : { static_cast<float**>(nullptr), none, channels })
                for (const int32 width : { 0, 1, 2 })
                    EXPECT_EQ(vst3.Process(inputs, outputs, 64, nullptr, width), kResultOk);
        EXPECT_NE(vst3.component->setState(nullptr), kResultOk);
        EXPECT_NE(vst3.component->getState(nullptr), kResultOk);
        EXPECT_EQ(vst3.controller->createView("editor"), nullptr);
        EXPECT_EQ(vst3.controller->createView(nullptr), nullptr);
        Vst::ParameterInfo info;
        EXPECT_NE(vst3.controller->getParameterInfo(-1, info), kResultOk);
        EXPECT_NE(vst3.controller->getParameterInfo(100000, info), kResultOk);
        double value = 0;
        Vst::String128 text{};
        EXPECT_NE(vst3.controller->getParamStringByValue(9999, 0.5, text), kResultOk);
        EXPECT_NE(vst3.controller->getParamStringByValue(0, 0.5, nullptr), kResultOk);
        EXPECT_NE(vst3.controller->getParamValueByString(0, nullptr, value), kResultOk);
        vst3.component->setActive(true);
        vst3.component->setActive(true);
        EXPECT_EQ(vst3.component->terminate(), kResultOk);
        EXPECT_EQ(vst3.component->terminate(), kResultOk);
    }
}

// Two seconds of what upsets filters: noise, then silence, then subnormal numbers.
std::vector<float> Programme(std::size_t frames)
{
    std::mt19937 generator(77);
    std::uniform_real_distribution<float> noise(-1.0f, 1.0f);
    std::vector<float> samples(frames, 0.0f);
    for (std::size_t frame = 0; frame < frames / 4; ++frame)
        samples[frame] = noise(generator);
    for (std::size_t frame = frames * 3 / 4; frame < frames; ++frame)
        samples[frame] = noise(generator) * std::numeric_limits<float>::denorm_min() * 1000;
    return samples;
}

// With a parameter that moves in each block.
TEST_F(Hostile, SoundIsCleanAndCostsNoMemoryAtEveryRate)
{
    constexpr std::int32_t block = 256;
    std::int32_t index = 0;
    for (const double rate :
         { 8000.0, 22050.0, 44100.0, 48000.0, 88200.0, 96000.0, 176400.0, 192000.0, 384000.0, 12345.678 })
    {
        SCOPED_TRACE(rate);
        const Vst2Instance vst2(vst2Module);
        const Vst3Instance vst3(vst3Module);
        for (std::int32_t band = 10; band < vst2.effect->numParams; ++band)
            vst2.effect->setParameter(vst2.effect, band, band % 7 == 3 ? 1.0f : 0.75f);
        vst3.SetState(vst2.State());
        vst2.Start(static_cast<float>(rate), block);
        vst3.Start(rate, block);
        std::vector<float> left = Programme(std::size_t{ 547 } * block), right = left;
        for (std::size_t done = 0; done + block <= left.size(); done += block)
        {
            float* first[] = { left.data() + done, left.data() + done };
            float* second[] = { right.data() + done, right.data() + done };
            // More than two frames of the linear-phase engine: all that grows has grown.
            const bool moves = done >= 70000;
            index = (index + 1) % vst2.effect->numParams;
            const double value = 0.1 + 0.8 * static_cast<double>(done % 997) / 997;
            OneChange change(static_cast<Steinberg::Vst::ParamID>(index), { value });
            const std::int64_t before = AllocationCounter::TakenByThisThread();
            if (moves)
                vst2.effect->setParameter(vst2.effect, index, static_cast<float>(value));
            vst2.Process(first, first, block);
            const std::int64_t between = AllocationCounter::TakenByThisThread();
            vst3.Process(second, second, block, moves ? &change : nullptr);
            if (moves)
            {
                EXPECT_EQ(between, before) << "VST 2, parameter " << index;
                EXPECT_EQ(AllocationCounter::TakenByThisThread(), between) << "VST 3, parameter " << index;
            }
        }
        for (const std::vector<float>* out : { &left, &right })
        {
            const auto unclean = std::find_if(out->begin(), out->end(),
                                              [](float sample)
                                              {
                                                  const int kind = std::fpclassify(sample);
                                                  return kind != FP_NORMAL && kind != FP_ZERO;
                                              });
            EXPECT_EQ(unclean, out->end()) << "frame " << unclean - out->begin() << ": " << *unclean;
        }
    }
}

TEST_F(Hostile, ThreadsOfAHostMayAllCallAtOnce)
{
    // One plays, one moves parameters, one stores and loads.
    const auto useVst2 = [&](unsigned seed)
    {
        const Vst2Instance vst2(vst2Module);
        vst2.Start(48000, 256);
        std::atomic<bool> stop = false;
        std::thread parameters(
            [&]
            {
                std::mt19937 generator(seed);
                for (std::int32_t index = 0; !stop; index = static_cast<std::int32_t>(generator() % 80))
                    vst2.effect->setParameter(vst2.effect, index,
                                              1 - vst2.effect->getParameter(vst2.effect, index));
            });
        std::thread states(
            [&]
            {
                while (!stop)
                    vst2.SetState(vst2.State());
            });
        for (int block = 0; block < 400; ++block)
        {
            std::vector<float> samples(512, 0.1f);
            float* channels[] = { samples.data(), samples.data() + 256 };
            vst2.Process(channels, channels, 256);
            EXPECT_TRUE(
                std::all_of(samples.begin(), samples.end(), [](float each) { return std::isfinite(each); }));
        }
        stop = true;
        parameters.join();
        states.join();
    };
    // Made and destroyed while others play.
    const auto useVst3 = [&](unsigned seed)
    {
        for (unsigned life = 0; life < 5; ++life)
        {
            const Vst3Instance vst3(vst3Module);
            vst3.Start(44100 + life, 256);
            std::vector<float> samples(512, 0.1f);
            float* channels[] = { samples.data(), samples.data() + 256 };
            for (unsigned block = 0; block < 40; ++block)
            {
                OneChange change((seed + 7 * block) % 80, { 0.025 * block });
                vst3.Process(channels, channels, 256, &change);
                if (block % 10 == 0)
                    vst3.SetState(vst3.State());
            }
        }
    };
    std::vector<std::thread> threads;
    for (unsigned number = 0; number < 4; ++number)
    {
        threads.emplace_back(useVst2, number);
        threads.emplace_back(useVst3, number);
    }
    for (std::thread& each : threads)
        each.join();
}
}   // namespace
