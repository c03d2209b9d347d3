// SPDX-License-Identifier: GPL-3.0-or-later
// rooms: hosts/module
#include <cstddef>
#include <cstdint>

#include "foundation/text/MException.h"
#include "hosts/module/CreateInstance.h"
#include "plugin/driver/PluginState.h"

// Whatever a host hands back as a state, the plug-in loads it or refuses it, and plays on.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::unique_ptr<MQuorvaneAudioEffectPlugin> plugin = []
    {
        auto made = CreateInstance();
        made->sampleRate = 48000;
        made->InitProcessing();
        return made;
    }();
    try
    {
        MMemoryStream stream = MMemoryStream::Borrow(data, static_cast<std::int32_t>(size));
        ReadPluginState(*plugin, stream);
    }
    catch (const MException&)
    {
    }
    static float in[2][64];
    static float out[2][64];
    float* inputs[8] = { in[0], in[1] };
    float* outputs[8] = { out[0], out[1] };
    plugin->ProcessBlock(inputs, outputs, 64, true);
    return 0;
}
