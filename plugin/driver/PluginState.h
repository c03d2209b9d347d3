// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/streams/MMemoryStream.h"

class MQuorvaneAudioEffectPlugin;

/// The state that a host keeps with its project: the settings tree as compact UTF-8 XML in a zlib stream
/// (RFC 1950), nothing before and nothing behind it.

/// Writes the state to the stream. Throws MException.
void WritePluginState(MQuorvaneAudioEffectPlugin& plugin, MStream& stream);
/// Reads a state, compressed or plain XML, from the stream's position. The bytes are parsed as a whole
/// before anything in the plug-in changes. Throws MException.
void ReadPluginState(MQuorvaneAudioEffectPlugin& plugin, MStream& stream);
