// SPDX-License-Identifier: GPL-3.0-or-later
#include "effect/TonalignInterface.h"

#include <new>

#include "effect/TonalignAudioEffectPlugin.h"
#include "foundation/text/Boundary.h"

std::int64_t TonalignAudioEffectPluginInterface(MPlugin* instance, std::int64_t command,
                                                MPluginArgument* arguments)
{
    return AtBoundary("TonalignAudioEffectPluginInterface", std::int64_t{ 0 },
                      [&]() -> std::int64_t
                      {
                          if (instance == nullptr)
                              instance = new (std::nothrow) TonalignAudioEffectPlugin;
                          if (instance == nullptr)
                              return 0;
                          if (command == PluginCommand::GetInstance)
                              return static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(instance));
                          return instance->Dispatch(command, arguments);
                      });
}
