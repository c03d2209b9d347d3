// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "audio/equalizer/BandPoint.h"
#include "audio/equalizer/FilterList.h"
#include "foundation/containers/MEvent.h"
#include "foundation/threads/MRelaxed.h"
#include "foundation/threads/MSynchronizer.h"

class MAttribute;

/// The summed response of a list of sections, as it stood when it was copied.
class ResponseCurve
{
public:
    ResponseCurve() = default;
    ResponseCurve(const FilterList& list, double wetRatio);
    /// Response in dB at log10 of a frequency in Hz: the product of all sections' magnitudes, mixed with
    /// the dry part.
    double DecibelsAt(double logFrequency) const;

private:
    std::vector<MAudioFilters::Filter<double>> sections;
    double wet = 1;
};

/// What the user or the automatic equalization has set: ten bands, each a point of the equalizer's graph
/// with a filter type, a width, an order and a set of harmonics.
class MEqualizerBase : public MEventTarget
{
public:
    static constexpr std::int32_t BandCount = 10;

    MEqualizerBase() { SetDefaults(true); }

    /// Ten bands spread over the axis, only the sixth enabled, at 0 dB; the outer two are shelves. Without
    /// `force` a list that is complete stays.
    void SetDefaults(bool force);
    /// What SetDefaults gives the band of that number.
    static void SetBandDefaults(BandPoint& band, std::int32_t index);
    virtual void BandChanged(std::int32_t band);
    virtual void Update() {}
    virtual void ReleaseChannelFilters(std::int32_t) {}
    /// What a screen shows of a band, or of all, is to be shown anew. Thread: any.
    virtual void UpdateBandControls(std::int32_t) {}
    virtual void UpdateAllBandControls() {}

    BandPoint& Band(std::int32_t index) { return bands[static_cast<std::size_t>(index)]; }
    const BandPoint& Band(std::int32_t index) const { return bands[static_cast<std::size_t>(index)]; }

    /// Children "point" of a node: written one after the other; read into the bands in order, further ones
    /// ignored, then clamped.
    void SavePoints(MAttribute& node) const;
    void LoadPoints(MAttribute& node);
    /// The bands alone as a tree "MEqualizerSettings", for the clipboard.
    void Copy(MAttribute& tree) const;
    void Paste(MAttribute& tree);

    /// A copy of what runs now, taken under the lock; with the dry signal's share or without.
    ResponseCurve CurrentResponse(bool withDrySignal = true) const;

    // Written by an editor while whoever runs Update reads: after a change, an Update has to follow.
    MRelaxed<bool> autoListen = false;   ///< solo of the band that is dragged
    MRelaxed<std::int32_t> selectedBand = -1;   ///< the band that is dragged; -1 for none
    MRelaxed<bool> listening = false;   ///< a band-pass stands in for all bands
    MRelaxed<double> listenFrequency = 1000.0;   ///< Hz
    MRelaxed<double> listenWidth = 0.5;   ///< 0 to 1
    FilterList filters;   ///< the list of "Normal" and of the graphs
    float wet = 1;
    std::int32_t mode = -1;
    bool modeChanged = false;
    double sampleRate = 0;
    MSynchronizer* lock = nullptr;
    /// Off during a measurement: the signal passes unfiltered.
    bool bandsEnabled = true;

private:
    std::array<BandPoint, BandCount> bands;
    bool complete = false;
};
