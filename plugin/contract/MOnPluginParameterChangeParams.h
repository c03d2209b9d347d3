// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/containers/MEventHandler.h"

struct MPluginParameterInfo;

/// What an event of a changed parameter carries.
struct MOnPluginParameterChangeParams : MEventParams
{
    MPluginParameterInfo* parameter = nullptr;
};
