// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "foundation/text/MString.h"

class MStream;

/// Throws MException "Invalid file contents. " followed by the detail, both translated.
[[noreturn]] void ThrowInvalidContents(const MString& detail);
/// Throws for a number of channels that a buffer can't hold.
void RequireChannels(std::int64_t channels);
/// Throws for a rate (Hz) that no audio has. Resampling from a few Hz would multiply the memory.
void RequireSampleRate(double sampleRate);
/// Reads exactly `size` bytes or throws with the detail.
void ReadRequired(MStream& stream, void* buffer, std::int32_t size, const MString& detail);
/// Bytes from the position to the end.
std::int64_t RemainingBytes(MStream& stream);
/// Moves on; not beyond the end.
void SkipBytes(MStream& stream, std::int64_t count);
