// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

class MStream;

/// What is left of a stream, for libraries that want a file in memory. Throws MException "Invalid file
/// contents. The file is too large." above 256 MiB, and what the stream throws.
std::vector<std::uint8_t> RestOfStream(MStream& stream);
