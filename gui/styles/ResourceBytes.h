// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

struct MResource;

/// All of a resource, inflated where it is compressed: at most 64 MB. Throws MException for what doesn't
/// inflate.
std::vector<std::uint8_t> ResourceBytes(MResource& resource);
