// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

#include "audio/analyzer/AnalyzerClient.h"
#include "control/envelope/MEnvelope.h"
#include "foundation/text/MEnumLabels.h"
#include "foundation/text/MString.h"
#include "foundation/threads/MRelaxed.h"
#include "state/tree/MStoreParams.h"

class MAttribute;

/// Which of the channels the analyzer's own clients take.
enum MSpectralAnalyzerChannelMode : std::int32_t
{
    ChannelModeLeft = 0,
    ChannelModeRight = 1,
    ChannelModeMix = 2,
    ChannelModeLeftAndRight = 3
};

template <>
struct MEnumLabels<MSpectralAnalyzerChannelMode>
{
    static constexpr const char* Labels[] = { "Left", "Right", "Mix", "Left and right" };
};

class StoredNode;

/// A colour as 0xAARRGGBB.
using AnalyzerColor = std::uint32_t;

/// How one curve looks; data for whoever draws it.
struct AnalyzerCurveSettings
{
    bool fill = false;
    bool peaks = false;
    bool showColorValues = false;
    bool showColorValuesFill = false;
    bool overrideColor = true;
    AnalyzerColor color = 0;
};

struct AnalyzerProcessorSettings : AnalyzerCurveSettings
{
    bool enabled = false;
};

/// Everything that a user can set on the analyzer. Values are stored as they stand, also out of range;
/// whoever uses one limits it.
///
/// The MRelaxed ones act at once: the audio thread reads them while a screen writes. All others belong to the
/// GUI thread, and MSpectralAnalyzerAdvanced::Initialise latches what the audio thread needs of them.
struct AnalyzerSettings
{
    AnalyzerSettings();

    /// Both directions. Reading accepts the keys of older versions too.
    void Store(const MStoreParams& params);

    bool enabled = true;
    bool useSideChain = false;   ///< kept for others, used by nothing
    bool pre = false;   ///< the same
    double slope = 3;   ///< dB per octave
    double gain = 0;   ///< dB
    double deharmonize = 0;   ///< 0 to 1
    double decay = 0;   ///< 0 to 1
    std::int32_t channelMode = ChannelModeMix;
    bool normalize = true;
    MRelaxed<bool> freeze = false;
    bool superResolution = false;
    std::int32_t viewType = 0;
    double alpha = 1;   ///< opacity of all curves
    double averageLength = 0.1;   ///< seconds
    double smoothness = 0.01;   ///< 0 to 0.2 of the axis
    double timeResolution = 0;   ///< 0 to 1
    MRelaxed<double> peakDetection = 0.0;   ///< 0 to 1
    MRelaxed<double> peakDetectionThreshold = -40.0;   ///< dB
    bool maximizedSmoothing = false;
    MRelaxed<bool> enableWhenHidden = true;
    std::int32_t resolutionDb = -60;   ///< lower end of the display
    std::int32_t fftSizePow = 12;   ///< log2 of the FFT length
    std::int32_t overlapPow = 2;   ///< log2 of the overlap factor
    std::int32_t windowType = 2;

    MEnvelope prefilter;   ///< dB over log10 of Hz
    double prefilterDepth = 1;   ///< 0 to 1

    std::array<AnalyzerProcessorSettings, AnalyzerProcessorCount> processors;

    MRelaxed<bool> comparisonEnable = false;
    AnalyzerCurveSettings comparisonCurve;
    std::array<float, 1024> comparison{};   ///< linear amplitudes

    bool sonogramEnabled = false;
    double sonogramAlpha = 1;
    std::array<AnalyzerColor, 5> colors = { 0x00000000, 0x80000000, 0xFF0000FF, 0xFF00FF00, 0xFFFF0000 };

private:
    void StoreComparison(StoredNode& node);
};
