// SPDX-License-Identifier: GPL-3.0-or-later
// rooms: foundation/audiofile
#include "tests/fuzz/AudioReader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzAudioReader(LoadWave, data, size);
    return 0;
}
