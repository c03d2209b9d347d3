// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/AnalyzerSettings.h"

#include <cmath>
#include <span>

#include "audio/fft/MSignalWindowType.h"
#include "state/tree/StoredNode.h"

namespace
{
constexpr double LogLowestHz = 1.3010299956639813;   // log10 of 20
constexpr double LogHighestHz = 4.301029995663981;   // log10 of 20000
constexpr double PrefilterLowDb = -90;
constexpr double PrefilterHighDb = 20;
constexpr std::int32_t ComparisonBytes = 1024 * sizeof(float);

void StoreCurve(StoredNode& node, AnalyzerCurveSettings& curve)
{
    node.Always("Fill", curve.fill);
    node.Always("Peaks", curve.peaks);
    node.Always("ShowColorValues", curve.showColorValues);
    node.Always("ShowColorValuesFill", curve.showColorValuesFill);
    node.Always("OverrideColor", curve.overrideColor);
    node.Color("Color", curve.color);
}

// An older version kept the sizes themselves instead of their logarithms.
void ReadOlderSize(MAttribute& item, const MString& key, std::int32_t& power)
{
    if (!item.HasAttribute(key))
        return;
    power = 0;
    for (std::int64_t size = item.GetCachedAttribute().ToInt(); size > 1; size /= 2)
        ++power;
}
}   // namespace

AnalyzerSettings::AnalyzerSettings()
{
    constexpr std::array<AnalyzerColor, AnalyzerProcessorCount> processorColors = { 0xFF0000AC, 0xFF00AC00,
                                                                                    0xFFAC0000, 0xFFAC00AC };
    for (std::size_t p = 0; p < AnalyzerProcessorCount; ++p)
    {
        processors[p].color = processorColors[p];
        processors[p].overrideColor = p > 0;
    }
    processors[0].enabled = true;
    processors[0].fill = true;
    processors[0].peaks = true;
    processors[0].showColorValues = true;
    comparisonCurve.color = 0xFFAC0000;
    // Starts empty: no prefilter.
    prefilter.SetLimits(LogLowestHz, LogHighestHz, PrefilterLowDb, PrefilterHighDb);
    prefilter.Edit([](MArray<MEnvelopePoint>& points) { points.Clear(); });
}

void AnalyzerSettings::StoreComparison(StoredNode& node)
{
    if (node.IsSaving())
    {
        node.Item().SetBinary(comparison.data(), ComparisonBytes, false);
    }
    else
    {
        comparison.fill(0.0f);
        if (node.Item().Text().Length() == 2 * ComparisonBytes)
            node.Item().GetBinary(comparison.data(), ComparisonBytes, false);
    }
    StoreCurve(node, comparisonCurve);
}

void AnalyzerSettings::Store(const MStoreParams& params)
{
    StoredNode node(params);
    node.Always("Enabled", enabled);
    node.Always("UseSideChain", useSideChain);
    node.Always("Pre", pre);
    node.Optional("Slope", slope, 3.0);
    node.Optional("Gain", gain, 0.0);
    node.Optional("Deharmonize", deharmonize, 0.0);
    node.Optional("Decay", decay, 0.0);
    node.Label("AnalyzerChannelMode", channelMode, MEnumLabels<MSpectralAnalyzerChannelMode>::Labels,
               ChannelModeMix, ChannelModeMix);
    node.Optional("Normalize", normalize, true);
    node.Optional("Freeze", freeze, false);
    node.Optional("SuperResolution", superResolution, false);
    node.Optional("ViewType", viewType, 0);
    node.Optional("Alpha", alpha, 1.0);
    node.Optional("AverageLength", averageLength, 0.1);
    node.Optional("Smoothness", smoothness, 0.01);
    node.Optional("TimeResolution", timeResolution, 0.0);
    node.Optional("PeakDetection", peakDetection, 0.0);
    node.Optional("PeakDetectionThreshold", peakDetectionThreshold, -40.0);
    node.Optional("MaximizedSmoothing", maximizedSmoothing, false);
    node.Always("EnableWhenHidden", enableWhenHidden);
    node.Optional("ResolutiondB", resolutionDb, -60);
    node.Optional("FFTSizePow", fftSizePow, 12);
    node.Optional("OverlapPow", overlapPow, 2);
    node.Label("WindowType", windowType, MSignalWindowType::Names, MSignalWindowType::Hann,
               MSignalWindowType::Rectangular);
    if (!node.IsSaving())
    {
        ReadOlderSize(node.Item(), "FFTSize", fftSizePow);
        ReadOlderSize(node.Item(), "Overlap", overlapPow);
    }
    node.Child("Prefiltering",
               [&](StoredNode& child)
               {
                   prefilter.Store(child.Params());
                   child.Optional("Depth", prefilterDepth, 1.0);
               });
    for (std::size_t p = 0; p < AnalyzerProcessorCount; ++p)
        node.Child(MString("Processor") + MString::FromUnsigned(p),
                   [&](StoredNode& child)
                   {
                       child.Always("Enabled", processors[p].enabled);
                       StoreCurve(child, processors[p]);
                   });
    node.Optional("ComparisonEnable", comparisonEnable, false);
    if (!node.IsSaving())
        node.Always("ShowComparison", comparisonEnable);   // its name in older versions
    if (comparisonEnable && !(node.IsOverlay() && !node.HasChild("Comparison")))
        node.Child("Comparison", [this](StoredNode& child) { StoreComparison(child); });
    node.Child("Sonogram",
               [&](StoredNode& child)
               {
                   child.Always("Enabled", sonogramEnabled);
                   // New objects start at 1, but what was never stored is 0.5.
                   child.Optional("Alpha", sonogramAlpha, 0.5);
               });
    node.Child("Colors",
               [&](StoredNode& child)
               {
                   for (std::size_t i = 0; i < colors.size(); ++i)
                       child.Color(MString("Color") + MString::FromUnsigned(i), colors[i]);
               });
}
