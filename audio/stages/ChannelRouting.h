// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

#include "audio/stages/MSampleQueue.h"
#include "foundation/text/MString.h"

/// Which channels an effect gets, and in what form. The numbers are stored by name and never change.
enum class ChannelMode : std::int32_t
{
    LeftAndRight = 0,
    Left = 1,
    Right = 2,
    Mid = 3,
    Side = 4,
    MidAndSide = 5,
    LeftAndInvertedRight = 6,
    Surround = 7
};

struct ChannelModeInfo
{
    const char* longName;
    const char* signalName;
    const char* shortName;
    const char* help;
    std::int32_t inputChannels;
    std::int32_t outputChannels;
    bool midSide;   ///< the effect's channels are mid and side
    bool countsByMode;   ///< the effect gets the mode's channels rather than the group's
};

inline constexpr std::int32_t ChannelModeCount = 8;
const ChannelModeInfo& InfoOf(ChannelMode mode);
/// The mode of a long name; false for an unknown one.
bool FindChannelMode(const MString& longName, ChannelMode& mode);

/// Brings a host's channels into the form that the effect works on, and back. What the effect doesn't process
/// runs past it, late by as much as what it does process.
///
/// Channels are pointers side by side, `width` of them a group. Prepare on the main thread under the
/// processing locks, the rest on the audio thread.
class ChannelRouting
{
public:
    static constexpr std::int32_t MaxChannels = 128;
    using Channels = std::array<float*, MaxChannels>;

    struct Setup
    {
        ChannelMode mode = ChannelMode::LeftAndRight;
        std::array<bool, 8> enabled{ true, true, true, true, true, true, true, true };
        std::int32_t width = 2;   ///< channels of a group that the host connected
        std::int32_t groupStride = 2;   ///< between the groups' first channels
        std::int32_t inputGroups = 1;
        std::int32_t outputGroups = 1;
        std::int32_t latency = 0;   ///< samples, of the effect
    };

    void Prepare(const Setup& newSetup);
    /// Channels that mode 7 hands on.
    std::int32_t EnabledCount() const { return enabledCount; }

    /// Turns the pointers, and where the mode asks for it the samples, into what the effect takes.
    void Before(Channels& inputs, Channels& outputs, std::int32_t sampleCount);
    /// Undoes it on the outputs. To be called with the arrays that Before left.
    void After(Channels& inputs, Channels& outputs, std::int32_t sampleCount);

private:
    bool Selects() const { return setup.mode == ChannelMode::Surround && enabledCount != setup.width; }
    void ConvertGroup(float** in, float** out, std::int32_t sampleCount) const;
    void RestoreGroup(float** in, float** out, std::int32_t sampleCount);
    void Select(Channels& inputs, Channels& outputs, std::int32_t sampleCount);
    void Delayed(const float* source, float* destination, std::int32_t sampleCount);

    Setup setup;
    std::int32_t enabledCount = 8;
    std::int32_t dryLatency = 0;
    bool converted = false;
    MSampleQueue dryDelay;   // of the second channel of a stereo pair
    std::array<MSampleQueue, MaxChannels> surroundDelays;
};
