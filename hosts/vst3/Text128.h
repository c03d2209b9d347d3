// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>

#include "foundation/text/MString.h"
#include <pluginterfaces/vst/vsttypes.h>

namespace Vst3
{
/// Copies at most 127 UTF-16 units and a terminator.
inline void CopyText(Steinberg::Vst::String128 target, const MString& text)
{
    const int length = std::min(text.Length(), 127);
    for (int index = 0; index < length; ++index)
        target[index] = text[index];
    target[length] = 0;
}

/// The text of a host, which ends at a zero.
inline MString TextOf(const Steinberg::Vst::TChar* text)
{
    return text != nullptr ? MString(std::u16string_view(text)) : MString();
}
}   // namespace Vst3
