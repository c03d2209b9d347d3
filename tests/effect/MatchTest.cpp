// SPDX-License-Identifier: GPL-3.0-or-later
// What Equalize and Separate make of two analyses, seen from outside: the bands' response beside a wanted
// response that is computed here, in double and by plain loops.
#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <random>

#include <gtest/gtest.h>

#include "audio/filters/FilterTypes.h"
#include "control/envelope/MEnvelope.h"
#include "effect/TonalignAudioEffectPlugin.h"
#include "effect/WantedResponse.h"
#include "plugin/contract/ChangeListener.h"

namespace
{
constexpr std::size_t count = 1024;
using Curve = std::array<double, count>;

double HertzAt(std::size_t index)
{
    return 20 * std::pow(1000.0, (static_cast<double>(index) + 0.5) / count);
}

// Hills and valleys in dB, about two octaves wide or more: ten bands can follow them.
Curve Landscape(std::mt19937& random, double height)
{
    std::uniform_real_distribution<double> place(0, count);
    std::uniform_real_distribution<double> level(-height, height);
    std::uniform_real_distribution<double> widths(80, 250);
    Curve curve{};
    for (int hill = 0; hill < 5; ++hill)
    {
        const double centre = place(random), top = level(random), width = widths(random);
        for (std::size_t index = 0; index < count; ++index)
            curve[index] += top * std::exp(-std::pow((static_cast<double>(index) - centre) / width, 2));
    }
    return curve;
}

AnalysisArray Amplitudes(const Curve& decibels)
{
    AnalysisArray analysis;
    for (std::size_t index = 0; index < count; ++index)
        analysis[index] = static_cast<float>(std::pow(10.0, decibels[index] / 20));
    return analysis;
}

// Smoothed by a bell on the amplitudes, whose edges go on, then brought to a peak of 0 dB.
Curve Prepared(const AnalysisArray& analysis, double smoothness)
{
    const double width = std::floor(smoothness * count + 0.5);
    const int half = width > 2 ? static_cast<int>(std::ceil(width)) : 0;
    Curve prepared;
    for (int index = 0; index < static_cast<int>(count); ++index)
    {
        double sum = 0, total = 0;
        for (int k = -half; k <= half; ++k)
        {
            const double tap = half > 0 ? std::exp(-std::pow(2 * k / width, 2)) : 1;
            sum +=
                tap * static_cast<double>(analysis[static_cast<std::size_t>(std::clamp(index + k, 0, 1023))]);
            total += tap;
        }
        prepared[static_cast<std::size_t>(index)] = sum / total;
    }
    const double peak = *std::max_element(prepared.begin(), prepared.end());
    for (double& value : prepared)
        value = std::max(20 * std::log10(value / peak), -200.0);
    return prepared;
}

struct Case
{
    double minimumHz = 20;
    double maximumHz = 20000;
    double smoothness = 0.05;
    double knee = 0.5;   // what the transformation makes of half of the largest wish
    bool separate = false;
    bool neverAmplify = false;
    double roomLimitDb = -40;
};

// What the user asks for: two prepared curves, the points inside the limits, and the gains wanted there.
struct Wish
{
    Curve from, to, wanted;
    std::size_t first, last;
};

Wish Wanted(const AnalysisArray& target, const AnalysisArray& source, const Case& each)
{
    Wish wish{ Prepared(target, each.smoothness), Prepared(source, each.smoothness), {}, count, 0 };
    for (std::size_t index = 0; index < count; ++index)
    {
        const double room = each.roomLimitDb - std::max(wish.to[index], each.roomLimitDb);
        if (each.separate)
            wish.to[index] = std::min(wish.from[index], room);
        const bool inside = HertzAt(index) >= each.minimumHz && HertzAt(index) <= each.maximumHz;
        wish.wanted[index] = inside ? wish.to[index] - wish.from[index] : 0;
        wish.first = inside ? std::min(wish.first, index) : wish.first;
        wish.last = inside ? index : wish.last;
    }
    if (each.neverAmplify)
    {
        const double highest = *std::max_element(wish.wanted.begin(), wish.wanted.end());
        for (double& value : wish.wanted)
            value -= highest;
    }
    double largest = 0;   // of all points but the last
    for (std::size_t index = wish.first; index < wish.last; ++index)
        largest = std::max(largest, std::abs(wish.wanted[index]));
    for (std::size_t index = wish.first; index <= wish.last && largest > 0; ++index)
    {
        const double t = std::min(std::abs(wish.wanted[index]) / largest, 1.0);
        const double mapped = t < 0.5 ? 2 * each.knee * t : each.knee + (2 - 2 * each.knee) * (t - 0.5);
        wish.wanted[index] = std::copysign(mapped * largest, wish.wanted[index]);
    }
    return wish;
}

double RootMeanSquare(const Curve& curve)
{
    return std::sqrt(std::inner_product(curve.begin(), curve.end(), curve.begin(), 0.0) / count);
}

template <typename Values>
void ExpectNear(const Values& values, const Curve& expected, double tolerance, const char* what)
{
    for (std::size_t index = 0; index < count; ++index)
        ASSERT_NEAR(values[index], expected[index], tolerance) << what << ", point " << index;
}

class Match : public ::testing::Test
{
protected:
    void Prepare(double rate = 48000)
    {
        effect.InitProcessing(2, rate);
        effect.Update();
    }
    void Ask(const Case& each)
    {
        effect.settings.adaptionFrequencyMin = each.minimumHz;
        effect.settings.adaptionFrequencyMax = each.maximumHz;
        effect.settings.spaceInMixLimit = each.roomLimitDb;
        effect.settings.neverAmplify = each.neverAmplify;
        effect.settings.autoEqEnvelope.Edit(
            [&each](MArray<MEnvelopePoint>& points)
            {
                points.Clear();
                for (const auto& [x, y] : { std::pair{ 0.0, 0.0 }, { 0.5, each.knee }, { 1.0, 1.0 } })
                    points.Add({ .x = x, .y = y });
            });
        effect.description.parameters[TonalignAudioEffectPlugin::Smoothness].number.value = each.smoothness;
    }
    int EnabledBands()
    {
        int enabled = 0;
        for (std::int32_t band = 0; band < MEqualizerBase::BandCount; ++band)
            enabled += effect.equalizer.Band(band).enabled ? 1 : 0;
        return enabled;
    }

    TonalignAudioEffectPlugin effect;
};
}   // namespace

TEST_F(Match, TheBandsFollowWhatTheSettingsAskFor)
{
    const Case cases[] = {
        {},
        { .smoothness = 0 },
        { .smoothness = 0.2, .knee = 0.9 },
        { .minimumHz = 200 },
        { .maximumHz = 3000 },
        { .minimumHz = 100, .maximumHz = 5000, .knee = 0.2 },
        { .knee = 0 },
        { .neverAmplify = true },
        { .knee = 0.8, .separate = true, .roomLimitDb = -12 },
        { .separate = true, .roomLimitDb = -30 },
    };
    Prepare();
    std::mt19937 random(11);
    for (int round = 0; round < 2; ++round)
        for (const Case& each : cases)
        {
            SCOPED_TRACE(::testing::Message() << "round " << round << ", case " << &each - cases);
            // Rough on top, for the smoothing to take away, and of different levels, which don't matter.
            Curve rough = Landscape(random, 6);
            for (std::size_t index = 0; index < count; ++index)
                rough[index] += (index / 4 % 2 == 0 ? 3 : -3) - 17;
            const AnalysisArray target = Amplitudes(rough);
            const AnalysisArray source = Amplitudes(Landscape(random, 6));
            effect.SetAnalysis(target, false);
            effect.SetAnalysis(source, true);
            effect.settings.maxAdaptionBars = 10;
            Ask(each);
            effect.equalizer.Band(3).harmonicsDepth = 0.5;
            effect.equalizer.Band(4).order = 2;

            const Wish wish = Wanted(target, source, each);
            const TonalignAudioEffectPlugin::Equalization done = effect.Equalize(each.separate);
            ASSERT_EQ(done.result, TonalignAudioEffectPlugin::EqualizeResult::Done);
            EXPECT_EQ(done.first, static_cast<std::int32_t>(wish.first));
            EXPECT_EQ(done.last, static_cast<std::int32_t>(wish.last));
            // Floats, and a kernel that ends where the bell is near nothing.
            ExpectNear(done.curves.target, wish.from, 0.01, "prepared target");
            ExpectNear(done.curves.reference, wish.to, 0.01, "prepared source");
            WantedResponse wanted(done.curves.target, done.curves.reference);
            wanted.Limit(effect.FitterGrid(), { each.minimumHz, each.maximumHz, each.neverAmplify });
            wanted.Transform(effect.settings.autoEqEnvelope);
            ExpectNear(wanted.Values(), wish.wanted, 0.1, "wanted response");

            const std::array<float, count> response = effect.BandResponse();
            Curve rest;
            for (std::size_t index = 0; index < count; ++index)
                rest[index] = wish.wanted[index] - static_cast<double>(response[index]);
            // Most of the roughness stays without smoothing: no ten bands follow it.
            const double unreachable = each.smoothness == 0 ? 3 : 0;
            EXPECT_LT(RootMeanSquare(rest), 0.16 * RootMeanSquare(wish.wanted) + 0.25 + unreachable);
            EXPECT_LE(EnabledBands(), 10);
            if (each.neverAmplify)
            {
                EXPECT_LE(*std::max_element(response.begin(), response.end()), 0.05f);
            }
        }
}

TEST_F(Match, MoreBandsAreNeverWorseAndTheKindsOfBandsAreTheUsers)
{
    std::mt19937 random(5);
    int passesUsed = 0;
    for (const double rate : { 16000.0, 44100.0 })
    {
        Prepare(rate);
        // A steep low cut, which a high-pass does best.
        Curve cut = Landscape(random, 5);
        for (std::size_t index = 0; index < 250; ++index)
            cut[index] -= 0.2 * static_cast<double>(250 - index);
        effect.SetAnalysis(Amplitudes(Landscape(random, 5)), false);
        effect.SetAnalysis(Amplitudes(cut), true);
        for (const bool plain : { false, true })
        {
            std::vector<double> distances[2];
            for (const MFAAlgorithm algorithm : { MFADefault, MFAOptimized })
            {
                SCOPED_TRACE(::testing::Message()
                             << rate << " Hz, without passes " << plain << ", algorithm " << algorithm);
                effect.settings.disablePassNotch = plain;
                effect.settings.adaptionAlgorithm = algorithm;
                double last = 1e9;
                for (const std::int32_t bands : { 1, 2, 4, 7, 10 })
                {
                    effect.settings.maxAdaptionBars = bands;
                    const TonalignAudioEffectPlugin::Equalization done = effect.Equalize(false);
                    EXPECT_EQ(EnabledBands(), bands);
                    GridCurve reached = done.curves.target;
                    const std::array<float, count> response = effect.BandResponse();
                    for (std::size_t index = 0; index < count; ++index)
                        reached[index] += response[index];
                    const std::int32_t top = std::min(done.last, FitGrid::UsableCount(rate) - 1);
                    const double apart = SpectralDistanceDb(done.curves.reference, reached, done.first, top);
                    // The greedy choice is by shapes; what it really adds may be a little off.
                    EXPECT_LT(apart, last + 0.3) << bands;
                    last = std::min(last, apart);
                    for (std::int32_t band = 0; band < bands; ++band)
                    {
                        const BandPoint& point = effect.equalizer.Band(band);
                        const bool pass = !MAudioFilters::PropertiesOf(point.type).hasGain;
                        EXPECT_FALSE(pass && plain);
                        passesUsed += pass ? 1 : 0;
                        EXPECT_EQ(point.order, 0);
                        EXPECT_EQ(point.harmonicsDepth, 0.0);
                        EXPECT_LE(std::pow(10.0, point.x), 0.4501 * rate);
                    }
                }
                // A cut of 50 dB wants a pass; shelves of 24 dB come less near.
                EXPECT_LT(last, plain ? 3 : 1.5);
                distances[algorithm].push_back(last);
            }
            EXPECT_NE(distances[MFADefault], distances[MFAOptimized]) << "both are used";
        }
    }
    EXPECT_GT(passesUsed, 0);
}

TEST(SpectralDistance, IsTheDeviationFromTheMeanInsideTheLimits)
{
    GridCurve one{}, other{};
    for (std::size_t index = 100; index <= 400; ++index)
        one[index] = index % 2 == 0 ? 7.0f : 3.0f;   // 5 and 2 up or down
    one[99] = one[401] = 1000;
    other[99] = 500;
    EXPECT_NEAR(SpectralDistanceDb(one, other, 101, 400), 2, 1e-9);
    EXPECT_NEAR(SpectralDistanceDb(other, one, 101, 400), 2, 1e-9);
    EXPECT_EQ(SpectralDistanceDb(one, other, 300, 299), 0);
    EXPECT_EQ(SpectralDistanceDb(one, other, 300, 300), 0);
}

TEST_F(Match, EqualAnalysesAreLeftAloneAndDamagedOnesRefused)
{
    using Result = TonalignAudioEffectPlugin::EqualizeResult;
    Prepare();
    std::mt19937 random(3);
    const Curve curve = Landscape(random, 5);
    Curve louder = curve;
    for (double& value : louder)
        value += 20;
    const AnalysisArray target = Amplitudes(curve);
    effect.SetAnalysis(target, false);
    effect.SetAnalysis(Amplitudes(louder), true);
    EXPECT_EQ(effect.Equalize(false).result, Result::NothingToDo) << "level alone isn't equalized";
    effect.settings.spaceInMixLimit = 0;
    EXPECT_EQ(effect.Equalize(true).result, Result::NothingToDo) << "no mix rises above its own peak";
    EXPECT_EQ(EnabledBands(), 1) << "the bands stay as they were";

    for (const bool isSource : { false, true })
        for (const float value : { std::nanf(""), INFINITY })
        {
            AnalysisArray damaged = target;
            damaged[777] = value;
            effect.SetAnalysis(target, !isSource);
            effect.SetAnalysis(damaged, isSource);
            try
            {
                effect.Equalize(false);
                ADD_FAILURE() << "no exception";
            }
            catch (const MException& exception)
            {
                EXPECT_EQ(exception.Message.ToUTF8(), "Invalid source data. Please perform analyzation.");
            }
            EXPECT_EQ(effect.suspendCount, 0);
            EXPECT_EQ(EnabledBands(), 1);
        }

    // A match without a source is one to a flat line; silence gives no bands that aren't finite.
    TonalignAudioEffectPlugin fresh;
    fresh.InitProcessing(1, 48000);
    fresh.SetAnalysis(target, false);
    EXPECT_EQ(fresh.Equalize(false).result, Result::Done);
    fresh.SetAnalysis({}, false);
    const TonalignAudioEffectPlugin::Equalization silent = fresh.Equalize(false);
    EXPECT_EQ(*std::max_element(silent.curves.target.begin(), silent.curves.target.end()), -200.0f);
    for (const float level : fresh.BandResponse())
        ASSERT_TRUE(std::isfinite(level));
}

TEST_F(Match, EachChangedBandIsToldToTheHostOnce)
{
    Prepare();
    ChangeListener listener(effect.Changes());
    std::mt19937 random(9);
    effect.SetAnalysis(Amplitudes(Landscape(random, 6)), false);
    effect.SetAnalysis(Amplitudes(Landscape(random, 6)), true);
    ASSERT_TRUE(listener.Drain() && listener.Has(Change::AnalysisState));
    class Owner : public AutomationOwner
    {
    public:
        void SendAutomation(std::int32_t, double) override { ADD_FAILURE() << "no host is called from here"; }
        void MarkParameterChanged(std::int32_t) override {}
        void MarkParameterChangedInside(std::int32_t index) override { marked.push_back(index); }
        std::vector<std::int32_t> marked;
    } owner;
    EqualizerAutomation& automation = effect.equalizer.automation;
    automation.plugin = &owner;
    automation.firstIndex = 10;
    const EqualizerAutomation::Values before = automation.PresentValues();
    effect.Equalize(false);
    const EqualizerAutomation::Values after = automation.PresentValues();
    std::vector<std::int32_t> changed;
    for (std::size_t sub = 0; sub < after.size(); ++sub)
        if (before[sub] != after[sub])
            changed.push_back(static_cast<std::int32_t>(sub) + 10);
    EXPECT_GT(changed.size(), 8u);
    EXPECT_EQ(owner.marked, changed);
    EXPECT_TRUE(listener.Drain() && listener.Has(Change::Bands));
    automation.plugin = nullptr;
}
