// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/threads/MLock.h"
#include "hosts/module/EchoGuard.h"
#include "hosts/module/ModuleUse.h"
#include "hosts/vst2/AEffect.h"
#include "plugin/driver/MAudioPluginAdapter.h"
#include "plugin/driver/MQuorvaneAudioEffectPlugin.h"

namespace Vst2
{
/// Makes the plug-in object appear as a VST 2 effect. Translates; keeps no audio state of its own.
///
/// The host owns it by the AEffect record and ends it with the request to close. Process calls come from the
/// audio thread, parameters from any thread, the rest from the host's main thread. No exception reaches the
/// host, and no argument of its is trusted. The record outlives the adapter: it stays, empty, until the
/// module is unloaded, because some hosts call once more after they closed.
class MAudioPluginVSTAdapter : public MAudioPluginAdapter
{
public:
    MAudioPluginVSTAdapter(HostCallback host, std::unique_ptr<MQuorvaneAudioEffectPlugin> plugin);
    ~MAudioPluginVSTAdapter() override;
    MAudioPluginVSTAdapter(const MAudioPluginVSTAdapter&) = delete;
    MAudioPluginVSTAdapter& operator=(const MAudioPluginVSTAdapter&) = delete;

    AEffect* Effect() { return &effect; }

    void SendAutomation(std::int32_t index, double value01) override;
    void SendBypassAutomation() override {}
    void GenerateMIDIEvent(std::uint8_t status, std::uint8_t data1, std::uint8_t data2,
                           std::int32_t offset) override;
    void ReportLatency() override;
    void BeginGesture(std::int32_t index) override { CallHost(HostOpcode::BeginEdit, index); }
    void EndGesture(std::int32_t index) override { CallHost(HostOpcode::EndEdit, index); }
    void ReportAllValues() override { CallHost(HostOpcode::UpdateDisplay); }
    /// There is no editor yet, so there is nothing to resize.
    void ChangeEditorSize(std::int32_t, std::int32_t) override {}

private:
    static std::intptr_t Dispatch(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                  std::intptr_t value, void* pointer, float option);
    static void Process(AEffect* effect, float** inputs, float** outputs, std::int32_t frames);
    static void ProcessReplacing(AEffect* effect, float** inputs, float** outputs, std::int32_t frames);
    static void SetParameter(AEffect* effect, std::int32_t index, float value);
    static float GetParameter(AEffect* effect, std::int32_t index);

    std::intptr_t Answer(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* pointer,
                         float option);
    std::intptr_t AnswerParameter(std::int32_t opcode, std::int32_t index, void* pointer);
    void FillRecord();
    void KeepFirstGroupFor(std::intptr_t hostVersion);
    void Resume();
    void SetSampleRate(float rate);
    std::intptr_t GetChunk(void** data);
    std::intptr_t SetChunk(const void* data, std::intptr_t size);
    bool DescribePin(std::int32_t index, bool input, PinProperties* properties) const;
    bool SetSpeakerArrangement(const SpeakerArrangement* input, const SpeakerArrangement* output);
    std::intptr_t CanDo(const char* text) const;
    void PerformProcessing(float** inputs, float** outputs, std::int32_t frames, bool replacing);
    void ReadTimeInfo();
    void SendOutgoingEvents();
    std::intptr_t CallHost(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                           void* pointer = nullptr, float option = 0) const;

    ModuleUse moduleUse;
    AEffect& effect;
    HostCallback host;
    std::unique_ptr<MQuorvaneAudioEffectPlugin> plugin;
    MMemoryStream chunk;   // the host reads it after the request, until the next one
    EchoGuard echoes;
    MLock outgoingLock;
    // Room for a block's events is made once: both are used on the audio thread.
    std::vector<MidiEvent> outgoingEvents;
    std::vector<MidiEvent> sendingEvents;
    std::vector<std::intptr_t> sendingRecord;
    bool constructed = false;
};

/// The module's VST 2 entry: null when the host isn't alive or the plug-in can't be made.
AEffect* CreateEffect(HostCallback host) noexcept;
}   // namespace Vst2
