// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "hosts/vst2/AEffect.h"
#include "tools/vst3host/LoadedModule.h"

/// A class id of 16 bytes as texts hold it.
inline std::string HexadecimalOf(const char* classId)
{
    char digits[33] = {};
    for (int index = 0; index < 16; ++index)
        std::snprintf(digits + 2 * index, 3, "%02X", static_cast<unsigned char>(classId[index]));
    return digits;
}

/// A host of the raw VST 2 record: answers its version and counts what it is told.
class Vst2Instance
{
public:
    using Entry = Vst2::AEffect* (*)(Vst2::HostCallback);
    using Bytes = std::vector<std::uint8_t>;

    explicit Vst2Instance(const LoadedModule& module, const char* entry = "VSTPluginMain")
        : effect(module.Find<Entry>(entry)(&Answer))
    {
        if (effect == nullptr)
            throw std::runtime_error("no effect");
        Send(Vst2::EffectOpcode::Open);
    }
    ~Vst2Instance() { Close(); }
    Vst2Instance(const Vst2Instance&) = delete;
    Vst2Instance& operator=(const Vst2Instance&) = delete;

    void Close()
    {
        if (!closed)
            Send(Vst2::EffectOpcode::Close);
        closed = true;
    }
    std::intptr_t Send(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                       void* pointer = nullptr, float option = 0) const
    {
        return effect->dispatcher(effect, opcode, index, value, pointer, option);
    }
    std::string Text(std::int32_t opcode, std::int32_t index = 0) const
    {
        char text[256] = {};
        Send(opcode, index, 0, text);
        return text;
    }
    void Start(float rate, std::int32_t blockFrames) const
    {
        Send(Vst2::EffectOpcode::SetSampleRate, 0, 0, nullptr, rate);
        Send(Vst2::EffectOpcode::SetBlockSize, 0, blockFrames);
        Send(Vst2::EffectOpcode::MainsChanged, 0, 1);
    }
    void Process(float** inputs, float** outputs, std::int32_t frames) const
    {
        effect->processReplacing(effect, inputs, outputs, frames);
    }
    Bytes State() const
    {
        void* data = nullptr;
        const std::intptr_t size = Send(Vst2::EffectOpcode::GetChunk, 0, 0, &data);
        const auto* bytes = static_cast<const std::uint8_t*>(data);
        return bytes != nullptr ? Bytes(bytes, bytes + size) : Bytes();
    }
    std::intptr_t SetState(Bytes state) const
    {
        return Send(Vst2::EffectOpcode::SetChunk, 0, static_cast<std::intptr_t>(state.size()), state.data());
    }

    Vst2::AEffect* const effect;
    static inline std::atomic<int> ioChanges = 0;
    static inline std::atomic<std::intptr_t> version = 2400;

private:
    static std::intptr_t Answer(Vst2::AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*,
                                float)
    {
        if (opcode == Vst2::HostOpcode::Version)
            return version;
        if (opcode == Vst2::HostOpcode::IOChanged)
            ++ioChanges;
        return 0;
    }

    bool closed = false;
};
