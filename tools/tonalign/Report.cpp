// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/tonalign/Report.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>

#include <nlohmann/json.hpp>

#include "audio/filters/FilterTypes.h"

namespace
{
__attribute__((format(printf, 1, 2))) std::string Print(const char* format, ...)
{
    char line[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    return line;
}

std::string FrequencyCell(double hertz)
{
    return hertz < 1000 ? Print("%.1f Hz", hertz) : Print("%.2f kHz", hertz / 1000);
}

std::string OrderCell(const BandSpec& band)
{
    const std::int32_t slope = SlopeOf(band);
    return slope > 0 ? Print("%d (%d dB/oct)", band.order, slope) : Print("%d", band.order);
}
}   // namespace

double DecibelsOf(double amplitude)
{
    return amplitude > 1e-10 ? 20 * std::log10(amplitude) : -200;
}

std::string BandTable(const std::vector<BandSpec>& bands)
{
    if (bands.empty())
        return "No band is enabled.\n";
    std::string table =
        Print("%4s  %-10s %12s %11s %8s  %s\n", "Band", "Type", "Frequency", "Gain", "Q", "Order");
    for (std::size_t index = 0; index < bands.size(); ++index)
    {
        const BandSpec& band = bands[index];
        const bool hasGain = MAudioFilters::PropertiesOf(band.type).hasGain;
        table +=
            Print("%4zu  %-10s %12s %11s %8.3f  %s\n", index + 1,
                  MAudioFilters::PropertiesOf(band.type).label, FrequencyCell(band.frequencyHz).c_str(),
                  hasGain ? Print("%+.2f dB", band.gainDb).c_str() : "-", band.q, OrderCell(band).c_str());
    }
    return table;
}

std::string AsText(const Report& report)
{
    std::string text;
    if (report.nothingToDo)
        text += report.information + "\n";
    if (!report.bands.empty() || report.rmsAfterDb || report.commandName == "render")
        text += BandTable(report.bands);
    if (report.rmsBeforeDb && report.rmsAfterDb)
    {
        const double removed =
            *report.rmsBeforeDb > 0 ? 100 * (1 - *report.rmsAfterDb / *report.rmsBeforeDb) : 0;
        text += Print("Spectral difference: %.2f dB before, %.2f dB after (RMS; %.0f %% removed)\n",
                      *report.rmsBeforeDb, *report.rmsAfterDb, removed);
    }
    if (report.peakDbfs)
        text += Print("Peak of the output: %.2f dBFS\n", *report.peakDbfs);
    if (report.clipped && *report.clipped > 0)
        text += Print("Warning: %lld samples clipped; lower the output with --gain, or write 32-bit floats "
                      "with --bits 32f\n",
                      static_cast<long long>(*report.clipped));
    if (!report.outputPath.empty())
        text += "Written: " + report.outputPath + "\n";
    return text;
}

std::string AsJson(const Report& report)
{
    nlohmann::ordered_json json;
    json["command"] = report.commandName;
    json["bands"] = nlohmann::ordered_json::array();
    // A millionth is finer than any of them matters, and what was typed comes out as it was typed.
    const auto neat = [](double value)
    {
        return std::round(value * 1e6) / 1e6;
    };
    for (const BandSpec& band : report.bands)
        json["bands"].push_back({ { "type", BandTypeWord(band.type) },
                                  { "frequency", neat(band.frequencyHz) },
                                  { "gain", neat(band.gainDb) },
                                  { "q", neat(band.q) },
                                  { "order", band.order } });
    const auto set = [&json](const char* key, const auto& value)
    {
        if (value)
            json[key] = *value;
        else
            json[key] = nullptr;
    };
    set("rms_before_db", report.rmsBeforeDb);
    set("rms_after_db", report.rmsAfterDb);
    set("latency", report.latency);
    json["sample_rate"] = report.sampleRate;
    set("channels", report.channels);
    set("frames", report.frames);
    set("peak_dbfs", report.peakDbfs);
    set("clipped", report.clipped);
    json["nothing_to_do"] = report.nothingToDo;
    if (!report.information.empty())
        json["information"] = report.information;
    if (!report.outputPath.empty())
        json["output"] = report.outputPath;
    json["seconds"] = nlohmann::ordered_json::object();
    for (const auto& [stage, spent] : report.seconds)
        json["seconds"][stage] = spent;
    // A path need not be UTF-8; what isn't gets replaced instead of failing.
    return json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}
