// SPDX-License-Identifier: GPL-3.0-or-later
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "audio/filters/FilterMagnitudes.h"
#include "tests/audio/equalizer/TestEqualizer.h"

namespace
{
using namespace Signals;
constexpr EqualizerMode AllModes[] = { EqualizerMode::Normal, EqualizerMode::LinearPhase,
                                       EqualizerMode::LinearPhaseFFT };
constexpr std::size_t Latency = MEqualizerProcessor::FFTSize;

const char* NameOf(EqualizerMode mode)
{
    static constexpr const char* names[] = { "Normal", "Linear-phase", "Linear-phase FFT based" };
    return names[static_cast<int>(mode)];
}

// The magnitude that the lists of a mode promise, in dB.
double PromisedDb(const TestEqualizer& equalizer, EqualizerMode mode, double hertz)
{
    const bool linear = mode == EqualizerMode::LinearPhase;
    const FilterList& list = linear ? equalizer.LinearFilters() : equalizer.filters;
    return (linear ? 40 : 20) *
           std::log10(MAudioFilters::MagnitudeOfList(list.filters.data(), list.count, hertz));
}

// Bands of all kinds, as a state may hold them.
void SetRandomBands(TestEqualizer& equalizer, std::mt19937& random, double highestGainDb)
{
    std::uniform_real_distribution<double> share(0.0, 1.0);
    for (std::int32_t index = 0; index < MEqualizerBase::BandCount; ++index)
    {
        BandPoint& band = equalizer.SetBand(index, std::uniform_int_distribution<std::int32_t>(0, 8)(random),
                                            20.0 * std::pow(1000.0, share(random)),
                                            highestGainDb * (2.0 * share(random) - 1.0),
                                            0.3 * std::pow(30.0, share(random)));
        band.enabled = share(random) < 0.3;
        band.order = share(random) < 0.2 ? 2 : 0;
        band.harmonicsDepth = share(random) < 0.3 ? 2.0 * share(random) - 1.0 : 0.0;
        band.harmonicsLinear = share(random) < 0.5;
        band.harmonicsSemitones = share(random) < 0.3 ? 12.0 : 1.0 + 47.0 * share(random);
        band.harmonicsMaxCount = static_cast<std::int32_t>(16 * share(random));
        band.harmonicsEnabled[random() % 4] = false;
    }
    equalizer.Update();
}

struct Section
{
    double gainDb, hertz, q;
};

// The sections of one band in closed form: harmonic n = 1, 2, ... of types that have them, or a cascade of
// others.
std::vector<Section> SectionsOf(const BandPoint& band, double gainDb, double rate)
{
    const double step = std::pow(2.0, band.harmonicsSemitones / 12.0);
    const bool hasHarmonics = band.type <= MAudioFilters::HighShelf;
    std::vector<Section> sections;
    for (int n = 1; n <= (hasHarmonics ? band.harmonicsMaxCount : band.order) + 1; ++n)
    {
        Section section = { gainDb, band.FrequencyHz(), band.Q() };
        if (hasHarmonics)
        {
            section.gainDb *= std::pow(band.harmonicsDepth, n - 1.0);
            section.hertz *= band.harmonicsLinear ? std::pow(n, step - 1.0) : std::pow(step, n - 1.0);
            if (band.harmonicsLinear)
                section.q = 20.0 - (20.0 - section.q) * std::pow(0.9, n - 1.0);   // each is narrower
            if (n > 1 && (std::abs(section.gainDb) < 0.001 || section.hertz >= rate / 2))
                break;
            if (n > 1 && !band.harmonicsEnabled[static_cast<std::size_t>(n - 2)])
                continue;
        }
        sections.push_back(section);
    }
    return sections;
}

TEST(EqualizerProcessor, ListsHoldTheSectionsThatTheBandsAskFor)
{
    std::mt19937 random(12);
    std::uniform_real_distribution<double> share(0.0, 1.0);
    TestEqualizer equalizer(EqualizerMode::Normal);
    for (std::uint32_t turn = 0; turn < 300; ++turn)
    {
        SCOPED_TRACE(turn);
        equalizer.SetMode(AllModes[turn % 3]);
        equalizer.upsamplingRatio = turn % 2 == 0 ? 1 : 2;
        SetRandomBands(equalizer, random, 20);
        const double ratio = share(random);
        equalizer.SetRatio(ratio);
        const bool isLinear = AllModes[turn % 3] == EqualizerMode::LinearPhase;
        std::vector<Section> expected[2];   // of "Linear-phase", where each runs twice, and of the others
        for (std::int32_t index = 0; index < MEqualizerBase::BandCount; ++index)
        {
            const BandPoint& band = equalizer.Band(index);
            const bool isShelf =
                band.type == MAudioFilters::LowShelf || band.type == MAudioFilters::HighShelf;
            for (const bool linear : { true, false })
            {
                double gain = band.y * (isShelf || (linear && band.type == MAudioFilters::Peak) ? 0.5 : 1.0);
                if (AllModes[turn % 3] == EqualizerMode::Normal)   // it has no other way to mix
                    gain = 20.0 * std::log10(std::pow(10.0, gain / 20.0) * ratio + 1.0 - ratio);
                for (const Section& each :
                     band.enabled ? SectionsOf(band, gain, 48000) : std::vector<Section>())
                    expected[linear ? 0 : 1].insert(expected[linear ? 0 : 1].end(),
                                                    linear || band.type == MAudioFilters::Peak ? 1 : 2, each);
            }
        }
        if (equalizer.upsamplingRatio > 1)   // the images of the rate before upsampling go, too
            expected[0].push_back({ 0, 24000 * 20000.0 / 44100, 0.73 });
        for (const std::size_t kind : { isLinear ? 0u : 1u, 1u })
        {
            const FilterList& list = kind == 0 ? equalizer.LinearFilters() : equalizer.filters;
            ASSERT_EQ(static_cast<std::size_t>(list.count), expected[kind].size());
            for (std::size_t i = 0; i < expected[kind].size(); ++i)
            {
                const auto& section = list.filters[i];
                EXPECT_NEAR(section.frequency, expected[kind][i].hertz, 1e-6 * section.frequency);
                EXPECT_NEAR(section.q, expected[kind][i].q, 1e-6);
                EXPECT_TRUE(section.type > MAudioFilters::HighShelf ||   // they have no gain
                            std::abs(section.gain - expected[kind][i].gainDb) < 1e-5);
            }
        }
        EXPECT_EQ(equalizer.GetTailSize(), (equalizer.filters.count + 1) * 1024);
    }
    equalizer.SetMode(EqualizerMode::LinearPhase);
    for (std::int32_t index = 0; index < 10; ++index)
    {
        BandPoint& each = equalizer.SetBand(index, MAudioFilters::LowShelf, 20, 20, 1);
        each.harmonicsDepth = 1.0;
        each.harmonicsLinear = true;
        each.harmonicsSemitones = 12.0;
        each.harmonicsMaxCount = BandPoint::MaxHarmonics;
        each.harmonicsEnabled.fill(true);
    }
    equalizer.SetRatio(1.0);
    equalizer.upsamplingRatio = 2;
    equalizer.Update();
    EXPECT_EQ(equalizer.filters.count, 340) << "the longest lists fit";
    EXPECT_EQ(equalizer.LinearFilters().count, 171);
}

TEST(EqualizerProcessor, SoloAndListenPassWhatABandChanges)
{
    for (std::int32_t type = 0; type < 9; ++type)
        for (const double gainDb : { 9.0, -9.0 })
        {
            SCOPED_TRACE(::testing::Message() << "type " << type << ", " << gainDb << " dB");
            TestEqualizer equalizer(EqualizerMode::LinearPhaseFFT);
            equalizer.SetBand(0, type, 800, gainDb, 1);
            equalizer.SetBand(1, MAudioFilters::Peak, 5000, -12, 1);
            equalizer.autoListen = true;
            equalizer.Update();
            const std::int32_t all = equalizer.filters.count;
            equalizer.selectedBand = 0;
            equalizer.Update();
            ASSERT_EQ(equalizer.filters.count, 1);
            EXPECT_GT(all, 1) << "nothing is dragged";
            const bool cuts = type >= MAudioFilters::LowPass && type <= MAudioFilters::BandPass;
            for (const double hertz : { 100.0, 800.0, 3000.0 })
            {
                // Types that only pass are heard as they are, the others less the signal itself.
                MAudioFilters::Filter<double> section;
                const bool isShelf = type == MAudioFilters::LowShelf || type == MAudioFilters::HighShelf;
                const double gain = isShelf ? gainDb / 2 : gainDb;
                section.Set(type, cuts ? gain : std::abs(20 * std::log10(std::pow(10, gain / 20) + 1)), 800,
                            48000, 1);
                const auto z1 = std::polar(1.0, -2 * std::numbers::pi * hertz / 48000);
                const auto h = (section.b0 + section.b1 * z1 + section.b2 * z1 * z1) /
                               (1.0 - section.a1 * z1 - section.a2 * z1 * z1);
                EXPECT_NEAR(equalizer.filters.filters[0].Magnitude(hertz), std::abs(cuts ? h : h - 1.0),
                            1e-9);
            }
        }
    TestEqualizer equalizer(EqualizerMode::LinearPhase);
    equalizer.SetBand(0, MAudioFilters::Peak, 200, 12, 1);
    equalizer.listening = true;
    equalizer.listenFrequency = 3000.0;
    equalizer.listenWidth = 0.25;
    equalizer.Update();
    for (const FilterList* list :
         { static_cast<const FilterList*>(&equalizer.filters), &equalizer.LinearFilters() })
    {
        ASSERT_EQ(list->count, 1);
        EXPECT_EQ(list->filters[0].type, MAudioFilters::BandPass);
        EXPECT_EQ(list->filters[0].frequency, 3000.0);
        EXPECT_EQ(list->filters[0].q, QFromWidth(0.25));
    }
}

TEST(EqualizerProcessor, EveryModeKeepsThePromisedMagnitude)
{
    MEqualizerProcessor fresh;
    fresh.Update();
    EXPECT_EQ(fresh.CurrentResponse().DecibelsAt(3.0), 0.0) << "nothing runs before the preparation";
    struct Case
    {
        double rate, ratio;
        struct
        {
            std::int32_t type;
            double hertz, gainDb, q;
            std::int32_t order;
        } bands[4];
    };
    using namespace MAudioFilters;
    const Case cases[] = {
        { 48000,
          1.0,
          { { Peak, 1000, 12, 1, 0 },
            { LowShelf, 120, -9, 0.7, 0 },
            { LowPass, 5000, 0, 0.7, 1 },
            { Notch, 9000, 0, 0.5, 0 } } },
        { 22050,
          1.0,
          { { Peak, 60, -12, 4, 0 },
            { HighShelf, 6000, 15, 0.9, 0 },
            { LowPass6, 3000, 0, 1, 0 },
            { HighPass, 80, 0, 0.7, 0 } } },
        { 48000,
          0.5,
          { { Peak, 9000, 18, 0.3, 0 },
            { HighShelf, 20000, 9, 0.7, 0 },
            { HighPass6, 150, 0, 1, 1 },
            { BandPass, 1500, 0, 0.4, 0 } } },
        { 48000, 0.0, { { Peak, 1000, 12, 1, 0 } } },
    };
    for (const EqualizerMode mode : AllModes)
        for (const Case& each : cases)
        {
            SCOPED_TRACE(::testing::Message()
                         << NameOf(mode) << ", " << each.rate << " Hz, ratio " << each.ratio);
            TestEqualizer equalizer(mode, each.rate);
            for (std::int32_t index = 0; index < 4 && each.bands[index].hertz > 0; ++index)
            {
                const auto& band = each.bands[index];
                equalizer.SetBand(index, band.type, band.hertz, band.gainDb, band.q).order = band.order;
            }
            equalizer.SetRatio(each.ratio);
            const std::vector<float> response = equalizer.Impulse();
            const ResponseCurve curve = equalizer.CurrentResponse();
            const ResponseCurve filteredCurve = equalizer.CurrentResponse(false);
            const double wet =
                mode == EqualizerMode::Normal ? 1.0 : each.ratio;   // there the sections hold it
            for (double hertz = 30; hertz < 0.45 * each.rate; hertz *= 1.5)
            {
                const double filtered = std::pow(10.0, PromisedDb(equalizer, mode, hertz) / 20.0);
                const double promised = 20.0 * std::log10(wet * filtered + 1.0 - wet);
                if (mode != EqualizerMode::LinearPhase)   // there the graphs show the list of the others
                {
                    EXPECT_NEAR(curve.DecibelsAt(std::log10(hertz)), promised, 1e-5);
                    EXPECT_NEAR(filteredCurve.DecibelsAt(std::log10(hertz)), 20 * std::log10(filtered), 1e-5);
                }
                // Float samples leave a floor of about -150 dB of the impulse; 60 dB above it rounding costs
                // 0.01 dB at the most. In spectra, half the sample rate shares the gain of 0 Hz: a floor of 1
                // / 32768 where a filter takes the top away.
                if (promised < (mode == EqualizerMode::LinearPhaseFFT ? -30 : -85))
                    continue;
                // A band of 15 Hz rings so long that the frames of the spectra begin to show.
                const bool rings = mode == EqualizerMode::LinearPhaseFFT && each.bands[0].hertz < 100;
                EXPECT_NEAR(MeasuredDb(response, hertz, each.rate), promised, rings ? 0.03 : 0.01)
                    << hertz << " Hz";
            }
            if (mode == EqualizerMode::Normal)
                continue;
            double asymmetry = 0;
            for (std::size_t distance = 1; distance < Latency; ++distance)
                asymmetry = std::max<double>(
                    asymmetry, std::fabs(response[Latency + distance] - response[Latency - distance]));
            EXPECT_LT(asymmetry, 1e-5 * std::max(1.0, static_cast<double>(response[Latency])))
                << "-100 dB of the impulse";
        }
}

// Whatever the bands, the rate, the mode and their changes: finite, bounded, the same in all channels that
// get the same, and the same in blocks of any lengths, in place or not.
TEST(EqualizerProcessor, AnyBandsAtAnyRateInAnyModeStayWithinBounds)
{
    constexpr double rates[] = { 8000, 22050, 44100, 48000, 96000, 384000 };
    constexpr std::size_t count = 66000;
    for (std::uint32_t seed = 1; seed <= 6; ++seed)
    {
        std::mt19937 random(seed);
        const double rate = rates[seed - 1];
        Channels input = NoiseChannels(3, count, seed, 0.7f);
        input[2] = input[0];
        input[1][500] = std::numeric_limits<float>::quiet_NaN();
        input[1][700] = std::numeric_limits<float>::infinity();
        input[1][900] = 3e38f;
        std::vector<Channels> outputs;
        double bound = 0;
        for (const std::vector<std::int32_t>& blocks :
             { std::vector<std::int32_t>{ 500 }, { 1, 99, 400 }, { 250, 250 } })
        {
            SCOPED_TRACE(::testing::Message() << "seed " << seed << ", " << rate << " Hz");
            random.seed(seed);
            bound = 0;
            TestEqualizer equalizer(AllModes[seed % 3], rate, 3);
            const auto change = [&](std::size_t position)
            {
                if (position % 4000 != 0)
                    return;
                // Mid-way on, all stands still.
                if (position <= count / 2)
                {
                    SetRandomBands(equalizer, random, 12);
                    equalizer.SetRatio(random() % 3 == 0 ? 0.5 : 1.0);
                    if (random() % 4 == 0)
                        equalizer.SetMode(AllModes[random() % 3]);
                }
                const ResponseCurve curve = equalizer.CurrentResponse(false);
                for (double x = 1; x < std::log10(rate / 2); x += 0.01)
                    bound = std::max(bound, curve.DecibelsAt(x));
            };
            outputs.push_back(equalizer.Run(input, blocks, change));
            EXPECT_TRUE(outputs.back() == outputs.front()) << "first block " << blocks[0];
            EXPECT_TRUE(outputs.back()[0] == outputs.back()[2]) << "same input, other output";
            // Noise can't rise further than the sum of a filter's impulse response; changes of high
            // resonances click, but don't burst.
            for (const std::vector<float>& channel : outputs.back())
                EXPECT_LT(PeakOf(channel), 30.0 * std::pow(10.0, bound / 20)) << bound << " dB";
        }
        // In place, and crosswise: the outputs share the inputs' arrays.
        random.seed(seed);
        TestEqualizer equalizer(AllModes[seed % 3], rate, 2);
        SetRandomBands(equalizer, random, 12);
        equalizer.SetRatio(0.5);
        Channels apart(2, std::vector<float>(40000));
        Channels shared = { std::vector<float>(input[0].begin(), input[0].begin() + 40000),
                            std::vector<float>(input[2].begin() + 100, input[2].begin() + 40100) };
        const float* sources[2] = { shared[0].data(), shared[1].data() };
        float* targets[2] = { apart[0].data(), apart[1].data() };
        equalizer.ProcessChannels(sources, targets, 40000);
        equalizer.InitProcessing(2, rate);
        equalizer.Update();
        float* crossed[2] = { shared[1].data(), shared[0].data() };
        equalizer.ProcessChannels(sources, crossed, 40000);
        EXPECT_TRUE(shared[1] == apart[0] && shared[0] == apart[1]);
    }
}

TEST(EqualizerProcessor, AChangeOfModeSoundsSoonLikeTheNewModeAndNeverLikeAnythingElse)
{
    constexpr std::size_t count = 4 * Latency;
    constexpr std::size_t turn = 2 * Latency + 77;
    const Channels input = NoiseChannels(1, count, 9, 0.5f);
    const auto setBand = [](TestEqualizer& equalizer)
    {
        equalizer.SetBand(0, MAudioFilters::HighShelf, 2000, -12, 0.7);
        equalizer.Update();
    };
    std::vector<std::vector<float>> plain;
    for (const EqualizerMode mode : AllModes)
    {
        TestEqualizer equalizer(mode);
        setBand(equalizer);
        plain.push_back(equalizer.Run(input[0], { 480 }));
    }
    for (std::size_t from = 0; from < 3; ++from)
        for (std::size_t to = 0; to < 3; ++to)
        {
            SCOPED_TRACE(::testing::Message() << NameOf(AllModes[from]) << " to " << NameOf(AllModes[to]));
            // A block of nothing is no beginning: the mode that comes before the first sample holds at once.
            TestEqualizer equalizer(AllModes[to]);
            const float* nothing = nullptr;
            float* nowhere = nullptr;
            equalizer.ProcessChannels(&nothing, &nowhere, 0);
            equalizer.SetMode(AllModes[from]);
            setBand(equalizer);
            const auto change = [&](std::size_t position)
            {
                if (position == turn)
                    equalizer.SetMode(AllModes[to]);
            };
            const std::vector<float> output =
                equalizer.Run(input, { static_cast<std::int32_t>(turn), 480 }, change)[0];
            EXPECT_LT(LargestDifference(output, plain[from], 0, turn), 1e-6);
            const std::size_t settled = turn + 48000 / 5;
            // Frames of spectra begin where the mode began, and each wraps a little.
            const float tolerance = AllModes[to] == EqualizerMode::LinearPhaseFFT ? 1e-3f : 2e-6f;
            EXPECT_LT(LargestDifference(output, plain[to], settled, count), tolerance)
                << "a fifth of a second";
            std::size_t mixed = 0;
            for (std::size_t i = turn; i < settled; ++i)
            {
                const auto [low, high] = std::minmax(plain[from][i], plain[to][i]);
                ASSERT_GE(output[i], low - tolerance) << i - turn;
                ASSERT_LE(output[i], high + tolerance) << i - turn;
                mixed += output[i] > low + tolerance && output[i] < high - tolerance ? 1 : 0;
            }
            // The fade takes 20 ms. The linear-phase modes sound alike, and where the others happen to, too,
            // is no telling.
            EXPECT_TRUE((from == 0) == (to == 0) || (mixed > 750 && mixed <= 960)) << mixed;
        }
}

TEST(EqualizerProcessor, SwitchedOffItsInputReturnsAsLateAsItSaysWhateverTheModeTurnsTo)
{
    for (std::size_t block : { 700u, 64u, 4096u, 50000u, 1u })
    {
        std::mt19937 random(static_cast<std::uint32_t>(block));
        const std::vector<float> input = Noise(block == 1 ? 40000 : 200000, 3, 0.7f);
        std::vector<float> delayed(input.size());
        std::vector<float> output(input.size());
        TestEqualizer equalizer(EqualizerMode::Normal);
        SetRandomBands(equalizer, random, 12);
        equalizer.bandsEnabled = false;
        for (std::size_t position = 0; position < input.size(); position += block)
        {
            const auto n = static_cast<std::int32_t>(std::min(block, input.size() - position));
            const float* in = input.data() + position;
            float* out = output.data() + position;
            equalizer.ReadDelayedInput(0, in, delayed.data() + position, n);
            equalizer.ProcessChannels(&in, &out, n);
            if (block < 50000 && random() % 60 == 0)
                equalizer.SetMode(AllModes[random() % 3]);
        }
        EXPECT_EQ(LargestDifference(delayed, input, 0, input.size(), Latency), 0.0) << block;
        // Below -120 dB of the signal's 0.7 where spectra or frames are added up again.
        EXPECT_LE(LargestDifference(output, input, 0, input.size(), Latency), 7e-7) << block;
    }
}
}   // namespace
