// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// The block of the module's images and factory presets, made out of resources.txt when the program is
/// built, in the format that MResourceTable reads.
extern const unsigned char EmbeddedResourceBlock[];
extern const std::int32_t EmbeddedResourceBlockSize;
