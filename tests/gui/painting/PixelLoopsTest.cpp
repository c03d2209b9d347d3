// SPDX-License-Identifier: GPL-3.0-or-later
// Every operation against its definition, pixel by pixel, on every instruction set.
#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "gui/painting/PixelLoops.h"
#include "tests/ErrorOf.h"
#include "tests/foundation/vector/Targets.h"

namespace
{
using Channels = std::array<int, 4>;   // blue, green, red, alpha

Channels Split(std::uint32_t pixel)
{
    return { static_cast<int>(pixel & 255), static_cast<int>(pixel >> 8 & 255),
             static_cast<int>(pixel >> 16 & 255), static_cast<int>(pixel >> 24) };
}

// Hue, saturation and lightness as textbooks have them, from 0 to 1.
std::array<double, 3> ToHSL(const Channels& c)
{
    const double high = std::max({ c[0], c[1], c[2] }) / 255.0;
    const double low = std::min({ c[0], c[1], c[2] }) / 255.0;
    const double range = high - low;
    const double lightness = (high + low) / 2;
    if (range == 0)
        return { 0, 0, lightness };
    const double b = c[0] / 255.0, g = c[1] / 255.0, r = c[2] / 255.0;
    double hue = high == r ? (g - b) / range : high == g ? 2 + (b - r) / range : 4 + (r - g) / range;
    hue = hue < 0 ? hue + 6 : hue;
    return { hue, range / (1 - std::abs(2 * lightness - 1)), lightness };
}

std::array<double, 3> FromHSL(double hue, double saturation, double lightness)
{
    const double chroma = saturation * (1 - std::abs(2 * lightness - 1));
    const double second = chroma * (1 - std::abs(std::fmod(hue, 2) - 1));
    std::array<double, 3> rgb{};
    const auto sector = static_cast<int>(hue) % 6;
    const std::array<std::array<double, 3>, 6> sectors{ { { chroma, second, 0 },
                                                          { second, chroma, 0 },
                                                          { 0, chroma, second },
                                                          { 0, second, chroma },
                                                          { second, 0, chroma },
                                                          { chroma, 0, second } } };
    rgb = sectors[static_cast<std::size_t>(sector)];
    for (double& each : rgb)
        each = 255 * (each + lightness - chroma / 2);
    return { rgb[2], rgb[1], rgb[0] };
}

// What the operation makes of a pixel, by the table of its declaration.
Channels Wanted(MColorOp op, const Channels& d, const Channels& s)
{
    const int sa = s[3];
    const int a = ((sa + 1) * 255) >> 8;
    const auto mix = [a](int target, int own)
    {
        return a == 0 ? own : (target * a + own * (255 - a)) >> 8;
    };
    const int v = std::max({ d[0], d[1], d[2] });
    const int w = std::max({ s[0], s[1], s[2] });
    const auto hsl = FromHSL(ToHSL(s)[0], ToHSL(s)[1], ToHSL(d)[2]);
    Channels result = d;
    for (std::size_t i = 0; i < 3; ++i)
    {
        const int amount = ((s[i] + 1) * a) >> 8;
        const int darkness = ((256 - s[i]) * a) >> 8;
        const int change = ((w + 1) * a) >> 8;
        const auto contrast = [&](int factor)
        {
            return std::clamp(127 + (d[i] - 127) * factor / 255, 0, 255);
        };
        const auto lit = [&](int wanted)
        {
            return v == 0 ? wanted : d[i] * wanted / v;
        };
        switch (op)
        {
        case MColorOp::None:
            break;
        case MColorOp::Overlay:
        case MColorOp::Alphablend:
            result[i] = sa == 255 ? s[i] : mix(s[i], d[i]);
            break;
        case MColorOp::Modulate:
            result[i] = mix(((d[i] + 1) * s[i]) >> 8, d[i]);
            break;
        case MColorOp::Copy:
            result[i] = s[i];
            break;
        case MColorOp::Color:
            result[i] = mix(static_cast<int>(std::lround(hsl[i])), d[i]);
            break;
        case MColorOp::Invert:
            result[i] = mix(255 - d[i], d[i]);
            break;
        case MColorOp::Add:
            result[i] = std::min(255, d[i] + amount);
            break;
        case MColorOp::Subtract:
            result[i] = std::max(0, d[i] - amount);
            break;
        case MColorOp::Lighten:
            result[i] = lit(std::min(255, v + change));
            break;
        case MColorOp::Darken:
            result[i] = lit(std::max(0, v - change));
            break;
        case MColorOp::Difference:
            result[i] = mix(std::max(0, d[i] - s[i]), d[i]);
            break;
        case MColorOp::IncContrast:
            result[i] = mix(contrast(4335 - 16 * s[i]), d[i]);
            break;
        case MColorOp::DecContrast:
            result[i] = mix(contrast(s[i]), d[i]);
            break;
        case MColorOp::LightenByContrast:
            result[i] = amount == 255 ? 255 : std::min(255, d[i] * 255 / (255 - amount));
            break;
        case MColorOp::DarkenByContrast:
            result[i] =
                darkness == 255 ? d[i] : std::clamp((d[i] - darkness) * 255 / (255 - darkness), 0, 255);
            break;
        case MColorOp::AddAndOverflow:
            result[i] = (d[i] + s[i]) % 256;
            break;
        }
    }
    if (op == MColorOp::Copy || (op == MColorOp::Overlay && d[3] == 0) ||
        (op == MColorOp::Alphablend && sa == 255))
        return s;
    if (op == MColorOp::Overlay)
        result[3] = std::min(255, d[3] + sa);
    return result;
}

void ExpectNear(std::uint32_t got, const Channels& wanted, int tolerance)
{
    const Channels channels = Split(got);
    for (std::size_t i = 0; i < channels.size(); ++i)
        ASSERT_LE(std::abs(channels[i] - wanted[i]), tolerance) << "channel " << i << " is " << channels[i];
}

std::uint32_t Corner(std::mt19937& random)
{
    // Extremes are where the rules differ.
    const auto byte = [&random]() -> std::uint32_t
    {
        const auto drawn = static_cast<std::uint32_t>(random());
        return drawn % 4 == 0 ? 0 : drawn % 4 == 1 ? 255 : drawn >> 24;
    };
    const std::uint32_t low = byte() | byte() << 8;
    return low | byte() << 16 | byte() << 24;
}
}   // namespace

TEST(PixelLoops, EveryOperationIsItsDefinitionOnEveryInstructionSet)
{
    ForEveryTarget(
        []
        {
            std::mt19937 random(7);
            for (std::int32_t code = 0; code < MColorOpCount; ++code)
            {
                const auto op = static_cast<MColorOp>(code);
                SCOPED_TRACE(MEnumLabels<MColorOp>::Labels[code]);
                const int tolerance = op == MColorOp::Color ? 1 : 0;   // that one is in floating point
                for (std::int32_t width = 1; width <= 40; ++width)
                {
                    constexpr std::int32_t height = 3;
                    constexpr std::ptrdiff_t stride = 50;
                    std::vector<std::uint32_t> before(stride * height), source(stride * height);
                    std::vector<std::uint8_t> coverage(stride * height);
                    std::generate(before.begin(), before.end(), [&] { return Corner(random); });
                    std::generate(source.begin(), source.end(), [&] { return Corner(random); });
                    std::generate(coverage.begin(), coverage.end(),
                                  [&] { return static_cast<std::uint8_t>(Corner(random)); });
                    const MColor color(Corner(random));
                    const auto alpha = static_cast<std::uint8_t>(Corner(random));
                    auto filled = before, covered = before, blended = before;
                    const auto block = [width](std::vector<std::uint32_t>& pixels)
                    {
                        return Pixels::Block{ pixels.data(), stride, width, height };
                    };
                    Pixels::Fill(block(filled), color, op);
                    Pixels::Cover(block(covered), coverage.data(), stride, color, op);
                    Pixels::Blend(block(blended), source.data(), stride, alpha, op);
                    for (std::size_t i = 0; i < before.size(); ++i)
                    {
                        const Channels d = Split(before[i]);
                        if (static_cast<std::int32_t>(i % stride) >= width)
                        {
                            EXPECT_EQ(filled[i], before[i]) << "beside the block";
                            EXPECT_EQ(covered[i], before[i]);
                            EXPECT_EQ(blended[i], before[i]);
                            continue;
                        }
                        const auto shared = [](int value, int share)
                        {
                            return static_cast<int>(std::lround(value * share / 255.0));
                        };
                        ExpectNear(filled[i], Wanted(op, d, Split(color.value)), tolerance);
                        Channels s = Split(color.value);
                        s[3] = shared(s[3], coverage[i]);
                        const bool nothing = s[3] == 0 || op == MColorOp::None;
                        ExpectNear(covered[i],
                                   nothing ? d
                                           : Wanted(op == MColorOp::Copy ? MColorOp::Alphablend : op, d, s),
                                   tolerance);
                        s = Split(source[i]);
                        s[3] = shared(s[3], alpha);
                        ExpectNear(blended[i], Wanted(op, d, s), tolerance);
                        if (op == MColorOp::Alphablend)
                        {
                            ASSERT_EQ(Pixels::Alphablended(before[i], color.value, color.Alpha()), filled[i]);
                        }
                        if (::testing::Test::HasFatalFailure())
                            return;
                    }
                }
            }
        });
}

TEST(PixelLoops, OperationsAndFillsAreParsedByTheirLabels)
{
    for (std::int32_t code = 0; code < MColorOpCount; ++code)
        EXPECT_EQ(ParseColorOp(MString::Literal(MEnumLabels<MColorOp>::Labels[code])),
                  static_cast<MColorOp>(code));
    EXPECT_EQ(ParseBitmapFill("VPattern"), MBitmapFill::VPattern);
    EXPECT_EQ(ErrorOf([] { ParseColorOp("Blend"); }), "Invalid MColorOp identifier to parse (Blend).");
    EXPECT_EQ(ErrorOf([] { ParseBitmapFill(""); }), "Invalid MBitmapFill identifier to parse ().");
}
