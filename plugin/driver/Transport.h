// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>

#include "plugin/contract/MProcessContext.h"

/// Where a host's song stands, in quarter notes, for effects that want to know.
/// Thread: audio.
class Transport
{
public:
    /// What a host tells with a block. What it leaves out stays as it was.
    struct Report
    {
        std::optional<double> tempo{};   ///< beats per minute
        std::optional<double> position{};
        std::optional<double> barStart{};
        struct Signature
        {
            std::int32_t numerator = 0;
            std::int32_t denominator = 0;
        };
        std::optional<Signature> signature{};
        double cycleStart = 0;   ///< a cycle that doesn't end behind its start is none
        double cycleEnd = 0;
        bool playing = false;
    };

    void Take(const Report& report);
    /// Moves the position by part of a block, at the present tempo.
    void Advance(std::int32_t sampleCount, double sampleRate);
    /// Forgets the position, for effects that don't want to know.
    void Rewind() { position = 0; }
    /// The tempo, and while the song plays all the rest.
    MProcessContext Context(std::int32_t maxBlockSize) const;

    double Position() const { return position; }
    double CycleStart() const { return cycleStart; }   ///< -1 without a cycle
    double CycleEnd() const { return cycleEnd; }
    bool IsPlaying() const { return playing; }

private:
    double tempo = -1;
    double position = 0;
    double barStart = 0;
    std::int32_t timeSignatureNumerator = -1;
    std::int32_t timeSignatureDenominator = -1;
    double cycleStart = -1;
    double cycleEnd = -1;
    bool playing = false;
    double lastPosition = 0;
};
