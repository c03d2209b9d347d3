// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/tonalign/ChannelModeName.h"

namespace
{
std::string Folded(const std::string& name)
{
    std::string folded;
    for (const char letter : name)
        if (letter != ' ')
            folded += letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    return folded;
}
}   // namespace

std::optional<ChannelMode> ChannelModeOf(const std::string& name)
{
    const std::string wanted = Folded(name);
    for (std::int32_t index = 0; index < ChannelModeCount; ++index)
    {
        const auto mode = static_cast<ChannelMode>(index);
        const ChannelModeInfo& info = InfoOf(mode);
        for (const char* known : { info.longName, info.signalName, info.shortName })
            if (wanted == Folded(known))
                return mode;
    }
    return {};
}

std::string ChannelModeChoices()
{
    std::string choices;
    for (std::int32_t index = 0; index < ChannelModeCount; ++index)
    {
        const ChannelModeInfo& info = InfoOf(static_cast<ChannelMode>(index));
        choices += (index > 0 ? ", \"" : "\"") + std::string(info.longName) + "\" (" + info.shortName + ")";
    }
    return choices;
}
