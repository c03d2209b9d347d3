// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pluginterfaces/base/ipluginbase.h>

namespace Vst3
{
/// The module's only factory, with a reference added for the caller. It exists as long as the module is
/// loaded. Any thread.
Steinberg::IPluginFactory* AcquireFactory() noexcept;
}   // namespace Vst3
