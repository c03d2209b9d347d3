// SPDX-License-Identifier: GPL-3.0-or-later
// "tonalign show": what a state, an analysis or a recording holds.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include <nlohmann/json.hpp>

#include "tools/tonalign/Session.h"

namespace
{
std::string CsvOf(const char* header, const std::array<float, 1024>& gridHz,
                  const std::array<double, 1024>& levels)
{
    std::string csv = header;
    char line[64];
    for (std::size_t index = 0; index < levels.size(); ++index)
    {
        std::snprintf(line, sizeof line, "%.4f,%.4f\n", static_cast<double>(gridHz[index]), levels[index]);
        csv += line;
    }
    return csv;
}

// A bar for each third of an octave, its level the mean over the points in it.
std::string BarChart(const std::array<double, 1024>& levels)
{
    constexpr std::size_t bandCount = 30;
    constexpr int width = 50;
    const double highest = *std::max_element(levels.begin(), levels.end());
    std::string chart;
    char line[128];
    for (std::size_t band = 0; band < bandCount; ++band)
    {
        const std::size_t from = 1024 * band / bandCount;
        const std::size_t to = 1024 * (band + 1) / bandCount;
        double sum = 0;
        for (std::size_t index = from; index < to; ++index)
            sum += levels[index];
        const double level = sum / static_cast<double>(to - from);
        const double hertz =
            std::pow(10.0, 1.3010299956639813 + 3.0 * (static_cast<double>(band) + 0.5) / bandCount);
        const int length =
            std::clamp(static_cast<int>(std::lround((level - highest + 75) / 75 * width)), 0, width);
        std::snprintf(line, sizeof line, "%7.0f Hz %7.1f dB  %.*s\n", hertz, level, length,
                      "##################################################");
        chart += line;
    }
    return chart;
}

std::string Duration(std::int64_t frames, double sampleRate)
{
    const double seconds = static_cast<double>(frames) / sampleRate;
    char text[32];
    std::snprintf(text, sizeof text, "%d:%05.2f", static_cast<int>(seconds / 60), std::fmod(seconds, 60));
    return text;
}
}   // namespace

std::string Session::ShowState()
{
    host.Prepare(options.rateHz.value_or(48000), 2);
    LoadStateFrom(options.input);
    FillBands();
    TonalignAudioEffectPlugin& effect = host.Effect();
    report.sampleRate = host.Plugin().sampleRate;
    report.latency = host.LatencySamples();
    const std::array<float, 1024> response =
        effect.BandResponse(TonalignAudioEffectPlugin::DrySignal::MixedIn);
    if (options.csv)
    {
        std::array<double, 1024> levels;
        std::copy(response.begin(), response.end(), levels.begin());
        return CsvOf("frequency_hz,response_db\n", effect.FitterGrid(), levels);
    }
    const MPluginParameterInfo* parameters = effect.description.parameters;
    const auto number = [parameters](int index)
    {
        return parameters[index].number.value.Get();
    };
    const char* mode = parameters[0].enumeration.names[parameters[0].enumeration.index];
    const MQuorvaneAudioEffectPlugin& plugin = host.Plugin();
    const char* channelMode = InfoOf(plugin.channelMode).shortName;
    if (options.json)
    {
        nlohmann::ordered_json json = nlohmann::ordered_json::parse(AsJson(report));
        json["mode"] = mode;
        json["dry_wet_percent"] = number(1) * 100;
        json["gain_db"] = number(2);
        json["saturation_percent"] = number(3) * 100;
        json["upsampling"] = plugin.upsampling.Get();
        json["upsampling_quality"] = plugin.highQualityUpsampling ? "high" : "plain";
        json["agc"] = plugin.agc != 0;
        json["channel_mode"] = channelMode;
        json["target_analysis"] = effect.TargetAnalysisDefined.Get();
        json["source_analysis"] = effect.SourceAnalysisDefined.Get();
        return json.dump(2) + "\n";
    }
    char line[256];
    std::snprintf(line, sizeof line,
                  "Mode: %s, dry/wet %.1f %%, gain %+.2f dB, saturation %.1f %%\n"
                  "Channels %s, upsampling %dx (%s), automatic gain control %s\n"
                  "Analyses: target %s, source %s\n",
                  mode, number(1) * 100, number(2), number(3) * 100, channelMode, plugin.upsampling.Get(),
                  plugin.highQualityUpsampling ? "high quality" : "plain", plugin.agc != 0 ? "on" : "off",
                  effect.TargetAnalysisDefined ? "measured" : "none",
                  effect.SourceAnalysisDefined ? "measured" : "none");
    return line + BandTable(report.bands);
}

std::string Session::ShowSpectrum(const AnalysisArray& analysis, const AudioInput* audio)
{
    std::array<double, 1024> levels;
    std::transform(analysis.begin(), analysis.end(), levels.begin(),
                   [](float value) { return DecibelsOf(static_cast<double>(value)); });
    const std::array<float, 1024>& grid = host.Effect().FitterGrid();
    progress.Finish();
    if (options.csv)
        return CsvOf("frequency_hz,level_db\n", grid, levels);
    if (options.json)
    {
        nlohmann::ordered_json json;
        json["kind"] = audio != nullptr ? "audio" : "analysis";
        if (audio != nullptr)
        {
            json["sample_rate"] = report.sampleRate;
            json["channels"] = *report.channels;
            json["frames"] = *report.frames;
            json["bits"] = audio->buffer.bitsPerSample;
            json["float"] = static_cast<bool>(audio->buffer.isFloatSource);
            json["peak_dbfs"] = *report.peakDbfs;
        }
        json["frequency_hz"] = grid;
        json["level_db"] = levels;
        return json.dump(1) + "\n";
    }
    std::string text;
    if (audio != nullptr)
    {
        char line[256];
        std::snprintf(line, sizeof line, "%s, %.0f Hz, %d channel%s, %d bits%s, peak %.2f dBFS\n",
                      Duration(*report.frames, report.sampleRate).c_str(), report.sampleRate,
                      *report.channels, *report.channels == 1 ? "" : "s", audio->buffer.bitsPerSample,
                      audio->buffer.isFloatSource ? " (float)" : "", *report.peakDbfs);
        text = line;
    }
    return text + BarChart(levels);
}
