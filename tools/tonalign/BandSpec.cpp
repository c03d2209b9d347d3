// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/tonalign/BandSpec.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <vector>

#include "audio/equalizer/BandPoint.h"
#include "audio/filters/FilterTypes.h"
#include "tools/tonalign/Options.h"

namespace
{
constexpr std::array typeWords = { "peak",     "lowshelf",  "highshelf", "lowpass", "highpass",
                                   "lowpass6", "highpass6", "bandpass",  "notch" };

std::vector<std::string> SplitAtColons(const std::string& text)
{
    std::vector<std::string> fields;
    std::size_t start = 0;
    for (;;)
    {
        const std::size_t colon = text.find(':', start);
        fields.push_back(text.substr(start, colon - start));
        if (colon == std::string::npos)
            return fields;
        start = colon + 1;
    }
}

template <typename Number>
Number ReadField(const std::string& spec, const std::string& field, const char* name, Number minimum,
                 Number maximum, const char* range)
{
    Number value{};
    const char* end = field.data() + field.size();
    // A plus sign, which the conversion doesn't know, stands in front of many a gain.
    const bool hasPlus = field.size() > 1 && field[0] == '+' && field[1] != '-';
    const auto [stop, error] = std::from_chars(field.data() + (hasPlus ? 1 : 0), end, value);
    if (error != std::errc{} || stop != end || !(value >= minimum && value <= maximum))
        throw UsageError{ "--band " + spec + ": " + name + " \"" + field + "\" is not " + range };
    return value;
}
}   // namespace

BandSpec ParseBandSpec(const std::string& text)
{
    const std::vector<std::string> fields = SplitAtColons(text);
    if (fields.size() < 4 || fields.size() > 5)
        throw UsageError{ "--band " + text + ": expected TYPE:FREQ:GAIN:Q[:ORDER]" };
    const auto word = std::find(typeWords.begin(), typeWords.end(), fields[0]);
    if (word == typeWords.end())
        throw UsageError{
            "--band " + text + ": type \"" + fields[0] +
            "\" is not one of peak, lowshelf, highshelf, lowpass, highpass, lowpass6, highpass6, "
            "bandpass, notch"
        };
    BandSpec spec;
    spec.type = static_cast<std::int32_t>(word - typeWords.begin());
    spec.frequencyHz = ReadField(text, fields[1], "frequency", 20.0, 20000.0, "20 to 20000 Hz");
    spec.gainDb = ReadField(text, fields[2], "gain", -24.0, 24.0, "-24 to 24 dB");
    spec.q = ReadField(text, fields[3], "Q", 0.05, 10.0, "0.05 to 10");
    if (fields.size() == 5)
        spec.order = ReadField<std::int32_t>(text, fields[4], "order", 0, 9, "0 to 9");
    return spec;
}

void ApplyBandSpec(const BandSpec& spec, BandPoint& band)
{
    band.ResetFields();
    band.type = spec.type;
    band.x = std::log10(spec.frequencyHz);
    band.y = spec.gainDb;
    band.width = WidthFromQ(spec.q);
    band.order = spec.order;
    band.enabled = true;
    band.Clamp();
    band.RoundToStored();
}

BandSpec BandSpecOf(const BandPoint& band)
{
    return { .type = band.type,
             .frequencyHz = band.FrequencyHz(),
             .gainDb = band.y,
             .q = band.Q(),
             .order = std::clamp<std::int32_t>(band.order, 0, 9) };
}

const char* BandTypeWord(std::int32_t type)
{
    return typeWords[static_cast<std::size_t>(std::clamp<std::int32_t>(type, 0, 8))];
}

std::int32_t SlopeOf(const BandSpec& spec)
{
    // Each unit of order is a pair of sections, or one section run twice.
    return 2 * MAudioFilters::PropertiesOf(spec.type).slopeDbPerOctave * (spec.order + 1);
}
