// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

#include "foundation/threads/MRelaxed.h"

class MAttribute;
struct MStoreParams;

/// Band width w, 0 (narrow) to 1 (wide), and engineering Q: q = 10 - 9.95 w^0.25.
double QFromWidth(double width);
/// The inverse, not limited to 0 to 1.
double WidthFromQ(double q);

/// log10 of the lowest and highest frequency of the equalizer's graph, 20 Hz and 20 kHz.
inline constexpr double BandMinimumX = 1.3010299956639813;
inline constexpr double BandMaximumX = 4.301029995663981;
inline constexpr double BandMaximumGainDb = 24;

/// One equalizer band. Fields may be written by whatever thread a host automates from; only the building of
/// the filter lists reads them, never the audio path.
struct BandPoint
{
    static constexpr std::int32_t MaxHarmonics = 16;
    /// The width of Q 0.7071067811865.
    static constexpr double DefaultWidth = 0.7608717583261314;

    MRelaxed<double> x = 3.0;   ///< log10 of the frequency in Hz
    MRelaxed<double> y = 0.0;   ///< gain in dB
    MRelaxed<bool> enabled = false;
    MRelaxed<double> width = DefaultWidth;
    MRelaxed<std::int32_t> type = 0;   ///< FilterType, 0 to 8
    MRelaxed<std::int32_t> order = 0;   ///< order index, 0 to 9
    MRelaxed<bool> left = true;   ///< kept in the store; processing doesn't depend on it
    MRelaxed<bool> right = true;
    MRelaxed<double> harmonicsDepth = 0.0;   ///< -1 to 1, gain ratio from one harmonic to the next
    MRelaxed<std::int32_t> harmonicsMaxCount = MaxHarmonics;
    MRelaxed<double> harmonicsSemitones = 12.0;   ///< 1 to 48
    std::array<MRelaxed<bool>, MaxHarmonics> harmonicsEnabled{};
    MRelaxed<bool> harmonicsLinear = false;

    BandPoint() { ResetFields(); }
    /// Everything but position, type and `enabled` to its default.
    void ResetFields();
    double FrequencyHz() const;
    double Q() const { return QFromWidth(width); }
    /// Turns the gain round; a zero stays a positive zero.
    void InvertGain();
    /// Limits position, width and type; what isn't a number becomes the nearest sound value.
    void Clamp();

    /// Rounds to the digits that a store keeps, so that a state gives back this very band. For whoever
    /// makes bands anew.
    void RoundToStored();
    void Save(MAttribute& node) const;
    /// What absent keys mean doesn't depend on the mode of a load: a band is stored whole.
    void Load(MAttribute& node);

private:
    void Store(const MStoreParams& params);
};
