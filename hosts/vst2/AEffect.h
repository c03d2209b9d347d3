// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

/// The binary interface between a VST 2.4 effect and its host on 64-bit Linux: a record of function pointers
/// and numbers, and numbered requests in both directions. Sizes and offsets are those that every host was
/// compiled with; the assertions below hold them in place.
namespace Vst2
{
struct AEffect;

using HostCallback = std::intptr_t (*)(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                       std::intptr_t value, void* pointer, float option);
using Dispatcher = std::intptr_t (*)(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                     std::intptr_t value, void* pointer, float option);
using ProcessFunction = void (*)(AEffect* effect, float** inputs, float** outputs, std::int32_t frames);
using ProcessDoubleFunction = void (*)(AEffect* effect, double** inputs, double** outputs,
                                       std::int32_t frames);
using SetParameterFunction = void (*)(AEffect* effect, std::int32_t index, float value);
using GetParameterFunction = float (*)(AEffect* effect, std::int32_t index);

/// Four characters as hosts compare them, the first in the highest byte.
constexpr std::int32_t FourCharacters(const char (&text)[5])
{
    return static_cast<std::int32_t>((static_cast<std::uint32_t>(static_cast<unsigned char>(text[0])) << 24) |
                                     (static_cast<std::uint32_t>(static_cast<unsigned char>(text[1])) << 16) |
                                     (static_cast<std::uint32_t>(static_cast<unsigned char>(text[2])) << 8) |
                                     static_cast<std::uint32_t>(static_cast<unsigned char>(text[3])));
}

inline constexpr std::int32_t EffectMagic = FourCharacters("VstP");

namespace EffectFlags
{
enum : std::int32_t
{
    HasEditor = 1 << 0,
    CanReplacing = 1 << 4,
    ProgramChunks = 1 << 5,
    IsSynth = 1 << 8,
    NoSoundInStop = 1 << 9,
    CanDoubleReplacing = 1 << 12
};
}   // namespace EffectFlags

struct AEffect
{
    std::int32_t magic;
    Dispatcher dispatcher;
    ProcessFunction process;   ///< adds to the outputs; deprecated, and still called
    SetParameterFunction setParameter;
    GetParameterFunction getParameter;
    std::int32_t numPrograms;
    std::int32_t numParams;
    std::int32_t numInputs;
    std::int32_t numOutputs;
    std::int32_t flags;
    std::intptr_t reserved1;
    std::intptr_t reserved2;
    std::int32_t initialDelay;   ///< samples
    std::int32_t realQualities;
    std::int32_t offQualities;
    float ioRatio;
    void* object;
    void* user;
    std::int32_t uniqueID;
    std::int32_t version;
    ProcessFunction processReplacing;
    ProcessDoubleFunction processDoubleReplacing;
    char future[56];
};

#if defined(__x86_64__) || defined(__aarch64__)
static_assert(offsetof(AEffect, dispatcher) == 8);
static_assert(offsetof(AEffect, process) == 16);
static_assert(offsetof(AEffect, setParameter) == 24);
static_assert(offsetof(AEffect, getParameter) == 32);
static_assert(offsetof(AEffect, numPrograms) == 40);
static_assert(offsetof(AEffect, numParams) == 44);
static_assert(offsetof(AEffect, numInputs) == 48);
static_assert(offsetof(AEffect, numOutputs) == 52);
static_assert(offsetof(AEffect, flags) == 56);
static_assert(offsetof(AEffect, reserved1) == 64);
static_assert(offsetof(AEffect, initialDelay) == 80);
static_assert(offsetof(AEffect, ioRatio) == 92);
static_assert(offsetof(AEffect, object) == 96);
static_assert(offsetof(AEffect, user) == 104);
static_assert(offsetof(AEffect, uniqueID) == 112);
static_assert(offsetof(AEffect, version) == 116);
static_assert(offsetof(AEffect, processReplacing) == 120);
static_assert(offsetof(AEffect, processDoubleReplacing) == 128);
static_assert(sizeof(AEffect) == 192);
#endif

/// Requests of a host to an effect.
namespace EffectOpcode
{
enum : std::int32_t
{
    Open = 0,
    Close = 1,
    SetProgram = 2,
    GetProgram = 3,
    SetProgramName = 4,
    GetProgramName = 5,
    GetParamLabel = 6,
    GetParamDisplay = 7,
    GetParamName = 8,
    SetSampleRate = 10,   ///< option
    SetBlockSize = 11,   ///< value
    MainsChanged = 12,   ///< value 1 resumes, 0 suspends
    EditGetRect = 13,
    EditOpen = 14,
    EditClose = 15,
    EditIdle = 19,
    Identify = 22,
    GetChunk = 23,   ///< pointer to a pointer; index 1 for a program
    SetChunk = 24,   ///< value is the size
    ProcessEvents = 25,
    CanBeAutomated = 26,
    StringToParameter = 27,
    GetProgramNameIndexed = 29,
    GetInputProperties = 33,
    GetOutputProperties = 34,
    GetPlugCategory = 35,
    SetSpeakerArrangement = 42,   ///< value and pointer are the arrangements
    SetBypass = 44,
    GetEffectName = 45,
    GetVendorString = 47,
    GetProductString = 48,
    GetVendorVersion = 49,
    VendorSpecific = 50,
    CanDo = 51,
    GetTailSize = 52,
    GetParameterProperties = 56,
    GetVstVersion = 58,
    EditKeyDown = 59,
    EditKeyUp = 60,
    GetSpeakerArrangement = 69,
    StartProcess = 71,
    StopProcess = 72,
    SetTotalSampleToProcess = 73,
    SetProcessPrecision = 77,
    GetNumMidiInputChannels = 78,
    GetNumMidiOutputChannels = 79
};
}   // namespace EffectOpcode

/// Requests of an effect to its host.
namespace HostOpcode
{
enum : std::int32_t
{
    Automate = 0,
    Version = 1,
    CurrentId = 2,
    Idle = 3,
    WantMidi = 6,
    GetTime = 7,
    ProcessEvents = 8,
    IOChanged = 13,
    SizeWindow = 15,
    GetSampleRate = 16,
    GetBlockSize = 17,
    GetCurrentProcessLevel = 23,
    GetVendorString = 32,
    GetProductString = 33,
    CanDo = 37,
    UpdateDisplay = 42,
    BeginEdit = 43,
    EndEdit = 44
};
}   // namespace HostOpcode

inline constexpr std::int32_t CategoryEffect = 1;
inline constexpr std::int32_t VstVersion = 2400;

struct TimeInfo
{
    double samplePos;
    double sampleRate;
    double nanoSeconds;
    double ppqPos;   ///< quarter notes
    double tempo;   ///< beats per minute
    double barStartPos;   ///< quarter notes
    double cycleStartPos;
    double cycleEndPos;
    std::int32_t timeSigNumerator;
    std::int32_t timeSigDenominator;
    std::int32_t smpteOffset;
    std::int32_t smpteFrameRate;
    std::int32_t samplesToNextClock;
    std::int32_t flags;
};
static_assert(sizeof(TimeInfo) == 88);
inline constexpr std::int32_t TransportPlaying = 1 << 1;

inline constexpr std::int32_t MidiEventType = 1;

struct Event
{
    std::int32_t type;
    std::int32_t byteSize;
    std::int32_t deltaFrames;
    std::int32_t flags;
    char data[16];
};
static_assert(sizeof(Event) == 32);

struct MidiEvent
{
    std::int32_t type;
    std::int32_t byteSize;
    std::int32_t deltaFrames;
    std::int32_t flags;
    std::int32_t noteLength;
    std::int32_t noteOffset;
    char midiData[4];
    char detune;
    char noteOffVelocity;
    char reserved1;
    char reserved2;
};
static_assert(sizeof(MidiEvent) == 32 && offsetof(MidiEvent, midiData) == 24);

/// As many pointers as `numEvents` says stand from `events` on.
struct Events
{
    std::int32_t numEvents;
    std::intptr_t reserved;
    Event* events[2];
};
static_assert(offsetof(Events, events) == 16);

struct PinProperties
{
    char label[64];
    std::int32_t flags;
    std::int32_t arrangementType;
    char shortLabel[8];
    char future[48];
};
static_assert(sizeof(PinProperties) == 128);

namespace PinFlags
{
enum : std::int32_t
{
    IsActive = 1 << 0,
    IsStereo = 1 << 1,
    UseSpeaker = 1 << 2
};
}   // namespace PinFlags

namespace SpeakerArrangementType
{
enum : std::int32_t
{
    Mono = 0,
    Stereo = 1,
    Music80 = 25
};
}   // namespace SpeakerArrangementType

struct SpeakerProperties
{
    float azimuth;
    float elevation;
    float radius;
    float reserved;
    char name[64];
    std::int32_t type;
    char future[28];
};
static_assert(sizeof(SpeakerProperties) == 112);

struct SpeakerArrangement
{
    std::int32_t type;
    std::int32_t numChannels;
    SpeakerProperties speakers[8];
};
static_assert(sizeof(SpeakerArrangement) == 904);
}   // namespace Vst2
