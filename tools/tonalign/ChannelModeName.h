// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

#include "audio/stages/ChannelRouting.h"

/// The mode of any of its names, long, short or as a signal. Case and spaces don't count. Nothing for an
/// unknown one.
std::optional<ChannelMode> ChannelModeOf(const std::string& name);
/// What ChannelModeOf takes, for a message.
std::string ChannelModeChoices();
