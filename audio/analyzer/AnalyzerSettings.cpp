// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/analyzer/AnalyzerSettings.h"

#include <cmath>
#include <span>

#include "audio/fft/MSignalWindowType.h"
#include "state/tree/MAttribute.h"

namespace
{
constexpr double LogLowestHz = 1.3010299956639813;   // log10 of 20
constexpr double LogHighestHz = 4.301029995663981;   // log10 of 20000
constexpr double PrefilterLowDb = -90;
constexpr double PrefilterHighDb = 20;
constexpr int StoredDigits = 12;
constexpr std::int32_t ComparisonBytes = 1024 * sizeof(float);

double Parse(const MString& text, double fallback)
{
    int used = 0;
    const double value = text.ToDouble(&used);
    return used > 0 ? value : fallback;
}

std::int32_t Parse(const MString& text, std::int32_t fallback)
{
    int used = 0;
    const std::int64_t value = text.ToInt(10, &used);
    return used > 0 ? static_cast<std::int32_t>(value) : fallback;
}

bool Parse(const MString& text, bool fallback)
{
    return Parse(text, fallback ? 1 : 0) != 0;
}

MString Print(double value)
{
    return MString::FromDouble(value, StoredDigits);
}

MString Print(std::int32_t value)
{
    return MString::FromInt(value);
}

MString Print(bool value)
{
    return MString(value ? "1" : "0");
}

bool Equal(double a, double b)
{
    return std::abs(a - b) < 1e-50;
}

bool Equal(std::int32_t a, std::int32_t b)
{
    return a == b;
}

// One element of the tree, in either direction.
class Node
{
public:
    Node(MAttribute& storedItem, bool isSaving) : item(storedItem), saving(isSaving) {}

    /// Always written; an absent key leaves the value alone.
    template <typename Value>
    void Always(const char* key, Value& value)
    {
        if (saving)
            item.SetAttribute(key, Print(value));
        else if (item.HasAttribute(key))
            value = Parse(item.GetCachedAttribute(), value);
    }

    /// Not written at its default, which is what an absent key means.
    template <typename Value>
    void Optional(const char* key, Value& value, Value defaultValue)
    {
        if (!saving)
            value = item.HasAttribute(key) ? Parse(item.GetCachedAttribute(), defaultValue) : defaultValue;
        else if (Equal(value, defaultValue))
            item.RemoveAttribute(key);
        else
            item.SetAttribute(key, Print(value));
    }

    template <typename Value>
    void Always(const char* key, MRelaxed<Value>& value)
    {
        Value plain = value;
        Always(key, plain);
        value = plain;
    }

    template <typename Value>
    void Optional(const char* key, MRelaxed<Value>& value, Value defaultValue)
    {
        Value plain = value;
        Optional(key, plain, defaultValue);
        value = plain;
    }

    /// By its name, always written.
    void Name(const char* key, std::int32_t& value, std::span<const char* const> names, std::int32_t absent,
              std::int32_t unknown)
    {
        if (saving)
        {
            const bool known = value >= 0 && value < static_cast<std::int32_t>(names.size());
            item.SetAttribute(key, names[static_cast<std::size_t>(known ? value : unknown)]);
            return;
        }
        value = absent;
        if (!item.HasAttribute(key))
            return;
        value = unknown;
        for (std::size_t i = 0; i < names.size(); ++i)
            if (item.GetCachedAttribute().EqualsNoCase(names[i]))
                value = static_cast<std::int32_t>(i);
    }

    void Color(const MString& key, AnalyzerColor& color)
    {
        if (saving)
            item.SetAttribute(key, AnalyzerColorToText(color));
        else if (item.HasAttribute(key))
            color = AnalyzerColorFromText(item.GetCachedAttribute());
    }

    void Curve(AnalyzerCurveSettings& curve)
    {
        Always("Fill", curve.fill);
        Always("Peaks", curve.peaks);
        Always("ShowColorValues", curve.showColorValues);
        Always("ShowColorValuesFill", curve.showColorValuesFill);
        Always("OverrideColor", curve.overrideColor);
        Color("Color", curve.color);
    }

    /// Calls visit(child). What isn't there reads like an empty one, and the tree stays as it is.
    template <typename Visit>
    void Child(const MString& name, Visit&& visit)
    {
        MAttribute empty;
        const bool exists = saving || item.HasSubItem(name);
        Node child(exists ? item.GetSubItem(name) : empty, saving);
        visit(child);
    }

    MAttribute& Item() { return item; }

private:
    MAttribute& item;
    bool saving;
};

// An older version kept the sizes themselves instead of their logarithms.
void ReadOlderSize(MAttribute& item, const char* key, std::int32_t& power)
{
    if (!item.HasAttribute(key))
        return;
    power = 0;
    for (std::int64_t size = item.GetCachedAttribute().ToInt(); size > 1; size /= 2)
        ++power;
}
}   // namespace

MString AnalyzerColorToText(AnalyzerColor color)
{
    return MString::FromUnsigned((color << 8) | (color >> 24), 16, 8, '0');
}

AnalyzerColor AnalyzerColorFromText(const MString& text)
{
    if (text.Length() == 8)
    {
        const auto value = static_cast<std::uint32_t>(text.ToInt(16));
        return (value >> 8) | (value << 24);
    }
    const MString rgb = text.SubString(0, text.Length() < 6 ? text.Length() : 6);
    return (static_cast<std::uint32_t>(rgb.ToInt(16)) & 0x00FFFFFFu) | 0xFF000000u;
}

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

void AnalyzerSettings::Store(const MStoreParams& params)
{
    const bool saving = params.saving != 0;
    MAttribute& item = *params.item;
    Node node(item, saving);
    node.Always("Enabled", enabled);
    node.Always("UseSideChain", useSideChain);
    node.Always("Pre", pre);
    node.Optional("Slope", slope, 3.0);
    node.Optional("Gain", gain, 0.0);
    node.Optional("Deharmonize", deharmonize, 0.0);
    node.Optional("Decay", decay, 0.0);
    node.Name("AnalyzerChannelMode", channelMode, SpectralAnalyzerChannelModeNames, ChannelModeMix,
              ChannelModeMix);
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
    node.Name("WindowType", windowType, MSignalWindowType::Names, MSignalWindowType::Hann,
              MSignalWindowType::Rectangular);
    if (!saving)
    {
        ReadOlderSize(item, "FFTSize", fftSizePow);
        ReadOlderSize(item, "Overlap", overlapPow);
    }
    node.Child("Prefiltering",
               [&](Node& child)
               {
                   MStoreParams childParams{ params.saving, &child.Item() };
                   prefilter.Store(childParams);
                   child.Optional("Depth", prefilterDepth, 1.0);
               });
    for (std::size_t p = 0; p < AnalyzerProcessorCount; ++p)
        node.Child(MString("Processor") + MString::FromUnsigned(p),
                   [&](Node& child)
                   {
                       child.Always("Enabled", processors[p].enabled);
                       child.Curve(processors[p]);
                   });
    node.Optional("ComparisonEnable", comparisonEnable, false);
    if (!saving)
        node.Always("ShowComparison", comparisonEnable);   // its name in older versions
    if (comparisonEnable)
        node.Child("Comparison",
                   [&](Node& child)
                   {
                       if (saving)
                           child.Item().SetBinary(comparison.data(), ComparisonBytes, false);
                       else
                       {
                           comparison.fill(0.0f);
                           if (child.Item().Text().Length() == 2 * ComparisonBytes)
                               child.Item().GetBinary(comparison.data(), ComparisonBytes, false);
                       }
                       child.Curve(comparisonCurve);
                   });
    node.Child("Sonogram",
               [&](Node& child)
               {
                   child.Always("Enabled", sonogramEnabled);
                   // New objects start at 1, but what was never stored is 0.5.
                   child.Optional("Alpha", sonogramAlpha, 0.5);
               });
    node.Child("Colors",
               [&](Node& child)
               {
                   for (std::size_t i = 0; i < colors.size(); ++i)
                       child.Color(MString("Color") + MString::FromUnsigned(i), colors[i]);
               });
}
