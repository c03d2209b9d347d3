// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/VectorOperations.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "tests/Signals.h"
#include "tests/foundation/vector/Targets.h"

namespace
{
constexpr float Guard = 12345.678f;

/// Unit in the last place of a float of this size.
double Ulp(double value)
{
    const float magnitude = std::max(std::abs(static_cast<float>(value)), std::numeric_limits<float>::min());
    return static_cast<double>(std::nextafter(magnitude, std::numeric_limits<float>::infinity()) - magnitude);
}

using F = float*;
using N = std::int32_t;
using Number = std::complex<double>;

/// What an operation means for one element. An element is one float, or two that are a complex number.
struct Operation
{
    const char* name;
    int ulps;   ///< how far it may be off, in units of the larger of the result and its addends
    int widthA, widthB, widthOut;   ///< floats an element
    std::function<void(F a, F b, F d, N n)> run;
    std::function<Number(Number a, Number b, Number d)> meaning;
    float lowest = -2.0f;   ///< of the sources; the highest is 2
};

std::vector<Operation> Operations()
{
    namespace V = MVector;
    using C = Number;
    std::vector<Operation> all;
    // By what they take: two sources, one, or one value.
    const auto binary = [&all](const char* name, int ulps, auto run, auto meaning)
    {
        all.push_back({ name, ulps, 1, 1, 1, run, meaning });
    };
    const auto unary = [&all](const char* name, int ulps, auto run, auto meaning, float lowest = -2.0f)
    {
        all.push_back({ name, ulps, 1, 1, 1, [run](F a, F, F d, N n) { run(a, d, n); }, meaning, lowest });
    };
    const auto scaled = [&all](const char* name, int ulps, auto run, auto meaning, float lowest = -2.0f)
    {
        all.push_back(
            { name, ulps, 1, 1, 1, [run](F a, F, F d, N n) { run(a, d, n, 0.375f); }, meaning, lowest });
    };
    binary("Add", 0, V::Add, [](C a, C b, C) { return a + b; });
    binary("Sub", 0, V::Sub, [](C a, C b, C) { return b - a; });
    binary("Multiply", 0, V::Multiply, [](C a, C b, C) { return a * b; });
    binary("AddProduct", 1, V::AddProduct, [](C a, C b, C d) { return d + a * b; });
    unary("Copy", 0, V::Copy, [](C a, C, C) { return a; });
    unary("Move", 0, V::Move, [](C a, C, C) { return a; });
    unary("CopyAudio", 0, V::CopyAudio, [](C a, C, C) { return a; });
    unary("AddInPlace", 0, V::AddInPlace, [](C a, C, C d) { return d + a; });
    unary("SubInPlace", 0, V::SubInPlace, [](C a, C, C d) { return d - a; });
    unary("Square", 0, V::Square, [](C a, C, C) { return a * a; });
    unary("MaxEveryInPlace", 0, V::MaxEveryInPlace, [](C a, C, C d) { return a.real() > d.real() ? a : d; });
    unary(
        "Ln", 1, V::Ln, [](C a, C, C) { return std::log(a); }, 0.1f);
    unary(
        "Log10", 1, V::Log10, [](C a, C, C) { return std::log10(a); }, 0.1f);
    unary("Exp", 2, V::Exp, [](C a, C, C) { return std::exp(a); });
    scaled(
        "Zero", 0, [](F, F d, N n, float) { V::Zero(d, n); }, [](C, C, C) { return C(0.0); });
    scaled(
        "Set", 0, [](F, F d, N n, float v) { V::Set(v, d, n); }, [](C, C, C) { return C(0.375); });
    scaled(
        "SquareInPlace", 0, [](F, F d, N n, float) { V::SquareInPlace(d, n); },
        [](C, C, C d) { return d * d; });
    scaled(
        "AddConstant", 0, [](F a, F d, N n, float v) { V::AddConstant(a, v, d, n); },
        [](C a, C, C) { return a + 0.375; });
    scaled(
        "AddConstantInPlace", 0, [](F, F d, N n, float v) { V::AddConstantInPlace(v, d, n); },
        [](C, C, C d) { return d + 0.375; });
    scaled(
        "MultiplyConstant", 0, [](F a, F d, N n, float v) { V::MultiplyConstant(a, v, d, n); },
        [](C a, C, C) { return a * 0.375; });
    scaled(
        "MultiplyConstantInPlace", 0, [](F, F d, N n, float v) { V::MultiplyConstantInPlace(d, n, v); },
        [](C, C, C d) { return d * 0.375; });
    scaled(
        "AddScaled", 1, [](F a, F d, N n, float v) { V::AddScaled(d, a, n, v); },
        [](C a, C, C d) { return d + a * 0.375; });
    scaled(
        "ThresholdLowInPlace", 0, [](F, F d, N n, float v) { V::ThresholdLowInPlace(d, n, v); },
        [](C, C, C d) { return C(std::max(d.real(), 0.375)); });
    scaled(
        "ClipInPlace", 0, [](F, F d, N n, float v) { V::ClipInPlace(d, n, -0.5f, v); },
        [](C, C, C d) { return C(std::clamp(d.real(), -0.5, 0.375)); });
    scaled(
        "PowerConstant", 1, [](F a, F d, N n, float v) { V::PowerConstant(a, v, d, n); },
        [](C a, C, C) { return std::pow(a, 0.375); }, 0.1f);
    const auto absolute = [](C a, C, C)
    {
        return C(std::abs(a));
    };
    const auto argument = [](C a, C, C)
    {
        return C(std::arg(a));
    };
    const auto rotated = [](C a, C b, C)
    {
        return a * std::exp(C(0.0, b.real()));
    };
    const auto product = [](C a, C b, C)
    {
        return a * b;
    };
    all.push_back({ "Magnitude", 2, 2, 1, 1, [](F a, F, F d, N n) { V::Magnitude(a, d, n); }, absolute });
    all.push_back({ "Phase", 1, 2, 1, 1, [](F a, F, F d, N n) { V::Phase(a, d, n); }, argument });
    all.push_back({ "PolarToComplex", 2, 1, 1, 2, V::PolarToComplex, rotated });
    all.push_back({ "ComplexMultiply", 2, 2, 2, 2, V::ComplexMultiply, product });
    return all;
}

/// A random array of n elements between guards, `offset` floats behind an aligned address.
std::vector<float> Guarded(N n, int width, int offset, float lowest)
{
    std::vector<float> memory(static_cast<std::size_t>(n * width + 32), Guard);
    const std::vector<float> noise =
        Signals::Noise(static_cast<std::size_t>(n * width), static_cast<std::uint32_t>(width + offset));
    std::transform(noise.begin(), noise.end(), memory.begin() + 16 + offset,
                   [lowest](float value) { return 1.0f + lowest / 2 + value * (1.0f - lowest / 2); });
    return memory;
}

/// Compares with the meaning of each element, and with one call for each: the audio must not depend on how it
/// is cut into blocks. The destination may be one of the sources.
void Check(const Operation& operation, N n, int offset, int alias)
{
    std::vector<float> arrays[] = { Guarded(n, operation.widthA, offset, operation.lowest),
                                    Guarded(n, operation.widthB, (offset + 1) % 5, operation.lowest),
                                    Guarded(n, operation.widthOut, (offset + 3) % 5, operation.lowest) };
    const int offsets[] = { offset, (offset + 1) % 5, (offset + 3) % 5 };
    const int widths[] = { operation.widthA, operation.widthB, operation.widthOut };
    const std::size_t out = alias < 0 ? 2 : static_cast<std::size_t>(alias);
    if (widths[out] != operation.widthOut)
        return;
    const auto at = [&](std::vector<float>* from, std::size_t array, N element)
    {
        return from[array].data() + 16 + offsets[array] + element * widths[array];
    };
    std::vector<float> before[] = { arrays[0], arrays[1], arrays[2] };
    std::vector<float> single[] = { arrays[0], arrays[1], arrays[2] };
    operation.run(at(arrays, 0, 0), at(arrays, 1, 0), at(arrays, out, 0), n);
    for (N i = 0; i < n; ++i)
    {
        const auto number = [&](std::size_t array)
        {
            const float* parts = at(before, array, i);
            return Number(parts[0], widths[array] == 2 ? parts[1] : 0.0f);
        };
        const Number wanted = operation.meaning(number(0), number(1), number(out));
        const float* parts = at(arrays, out, i);
        for (const double part : { wanted.real(), wanted.imag() })
        {
            ASSERT_NEAR(*parts, static_cast<float>(part), operation.ulps * Ulp(std::max(4.0, std::abs(part))))
                << i << " of " << n;
            if (++parts != at(arrays, out, i) + 1 || operation.widthOut == 1)
                break;
        }
        operation.run(at(single, 0, i), at(single, 1, i), at(single, out, i), 1);
    }
    for (std::size_t array = 0; array < 3; ++array)
        ASSERT_EQ(arrays[array], single[array]) << "whole and in pieces, array " << array;
}

TEST(VectorOperations, MeanTheSameForEveryCountStartAndPlace)
{
    const std::vector<Operation> operations = Operations();
    ForEveryTarget(
        [&]
        {
            for (const Operation& operation : operations)
                for (N n = -1; n <= 67; n += n < 20 ? 1 : 9)
                    for (const int offset : { 0, 1, 3 })
                        for (const int alias : { -1, 0, 1 })
                        {
                            SCOPED_TRACE(testing::Message() << operation.name << " alias " << alias);
                            Check(operation, std::max(n, 0), offset, alias);
                        }
        });
}

TEST(VectorOperations, ReductionsFindTheirValueForEveryCountAndStart)
{
    ForEveryTarget(
        []
        {
            for (N n = 0; n <= 70; ++n)
            {
                SCOPED_TRACE(n);
                std::vector<float> a = Signals::Noise(static_cast<std::size_t>(n), 1, 2.0f);
                const std::vector<float> b = Signals::Noise(a.size(), 2, 2.0f);
                if (n > 20)
                    a[3] = a[17] = n % 2 == 0 ? 2.0f : -2.0f;   // the first of equal ones counts
                // None of them is written where there is nothing.
                float sum = 7, absoluteSum = 7, product = 7, most = 7, least = 7, both[] = { 7, 7 }, peak = 7;
                float indexed[] = { 7, 7 };
                N indexes[] = { 7, 7 };
                MVector::Sum(a.data(), n, &sum);
                MVector::AbsSum(a.data(), n, &absoluteSum);
                MVector::DotProduct(a.data(), b.data(), n, &product);
                MVector::Max(a.data(), n, &most);
                MVector::Min(a.data(), n, &least);
                MVector::MinMax(a.data(), n, &both[0], &both[1]);
                MVector::AbsMax(a.data(), n, &peak);
                MVector::MinIndex(a.data(), n, &indexed[0], &indexes[0]);
                MVector::MaxIndex(a.data(), n, &indexed[1], &indexes[1]);
                if (n == 0)
                {
                    for (const float value : { sum, absoluteSum, product, most, least, both[0], both[1], peak,
                                               indexed[0], indexed[1] })
                        EXPECT_EQ(value, 7.0f);
                    EXPECT_EQ(indexes[0] + indexes[1], 14);
                    continue;
                }
                // Each of n additions of values below 4 * n errs by half a unit of the sum at most.
                const double tolerance = n * Ulp(4.0 * n);
                EXPECT_NEAR(sum, std::accumulate(a.begin(), a.end(), 0.0), tolerance);
                EXPECT_NEAR(absoluteSum,
                            std::accumulate(a.begin(), a.end(), 0.0,
                                            [](double total, float value)
                                            { return total + std::abs(value); }),
                            tolerance);
                EXPECT_NEAR(product, std::inner_product(a.begin(), a.end(), b.begin(), 0.0), tolerance);
                const auto [lowest, highest] =
                    std::pair(std::min_element(a.begin(), a.end()), std::max_element(a.begin(), a.end()));
                for (const float value : { least, both[0], indexed[0] })
                    EXPECT_EQ(value, *lowest);
                for (const float value : { most, both[1], indexed[1] })
                    EXPECT_EQ(value, *highest);
                EXPECT_EQ(peak, std::max(*highest, -*lowest));
                EXPECT_EQ(indexes[0], lowest - a.begin());
                EXPECT_EQ(indexes[1], highest - a.begin());
            }
        });
}

TEST(VectorOperations, CopyAudioReplacesOnlyWhatIsNoAudio)
{
    constexpr float Infinity = std::numeric_limits<float>::infinity();
    constexpr float Smallest = std::numeric_limits<float>::min();
    const float audio[] = {
        1.0f, Smallest, MVector::LargestSample, -Smallest, -MVector::LargestSample, 0.0f
    };
    const float others[] = { Infinity, -Infinity, std::nanf(""), 1.001e10f, -3e38f, -0.5f * Smallest };
    ForEveryTarget(
        [&]
        {
            for (std::size_t n = 1; n < 40; ++n)
            {
                std::vector<float> values;
                std::vector<float> expected;
                for (std::size_t i = 0; i < n; ++i)
                {
                    values.push_back(i % 2 == 0 ? audio[i / 2 % 6] : others[i / 2 % 6]);
                    expected.push_back(i % 2 == 0 ? values.back() : 0.0f);
                }
                MVector::CopyAudio(values.data(), values.data(), static_cast<N>(n));
                ASSERT_EQ(values, expected);
            }
        });
}

TEST(VectorOperations, LnAndExpStayAccurateOverTheWholeRange)
{
    ForEveryTarget(
        []
        {
            std::vector<float> source;
            for (float x = std::numeric_limits<float>::min(); x < 1e38f; x *= 1.37f)
                source.push_back(x);
            // Near 1 the logarithm nearly cancels, where a careless series loses digits.
            for (int i = -200; i <= 200; ++i)
                source.push_back(1.0f + static_cast<float>(i) * 1e-3f);
            std::vector<float> logarithm(source.size());
            std::vector<float> back(source.size());
            MVector::Ln(source.data(), logarithm.data(), static_cast<N>(source.size()));
            MVector::Exp(logarithm.data(), back.data(), static_cast<N>(source.size()));
            for (std::size_t i = 0; i < source.size(); ++i)
            {
                double exact = std::log(static_cast<double>(source[i]));
                EXPECT_NEAR(logarithm[i], exact, 2.0 * Ulp(exact)) << "ln of " << source[i];
                exact = std::exp(static_cast<double>(logarithm[i]));
                EXPECT_NEAR(back[i], exact, 2.0 * Ulp(exact)) << "exp of " << logarithm[i];
            }
        });
}

TEST(VectorOperations, MoveCopesWithOverlapAndIntegersConvertByPlainValue)
{
    std::vector<float> values = { 1, 2, 3, 4, 5 };
    MVector::Move(values.data(), values.data() + 1, 4);
    EXPECT_EQ(values, (std::vector<float>{ 1, 1, 2, 3, 4 }));
    MVector::Move(values.data() + 1, values.data(), 4);
    EXPECT_EQ(values, (std::vector<float>{ 1, 2, 3, 4, 4 }));
    const std::int16_t shorts[] = { -32768, 0, 32767 };
    const std::int32_t longs[] = { -2147483647 - 1, 1, 1 << 24 };
    std::vector<float> converted(3);
    MVector::ConvertFrom16Bit(shorts, converted.data(), 3);
    EXPECT_EQ(converted, (std::vector<float>{ -32768.0f, 0.0f, 32767.0f }));
    MVector::ConvertFrom32Bit(longs, converted.data(), 3);
    EXPECT_EQ(converted, (std::vector<float>{ -2147483648.0f, 1.0f, 16777216.0f }));
}

TEST(VectorOperations, WindowsMultiplyTheirClosedFormIn)
{
    struct Case
    {
        void (*window)(float*, N);
        double edge, quarter, middle;
    };
    // 5 points: x = 0, 1/4, 1/2, 3/4, 1.
    for (const auto& [window, edge, quarter, middle] :
         { Case{ MVector::WindowHann, 0.0, 0.5, 1.0 }, Case{ MVector::WindowBlackman, 0.0, 0.34, 1.0 },
           Case{ MVector::WindowBartlett, 0.0, 0.5, 1.0 } })
    {
        std::vector<float> values(6, 2.0f);
        window(values.data(), 5);
        window(values.data() + 5, 1);
        const double expected[] = { edge, quarter, middle, quarter, edge, edge };
        for (std::size_t i = 0; i < values.size(); ++i)
            EXPECT_NEAR(values[i], 2 * expected[i], 1e-7) << i;   // float rounding
    }
}
}   // namespace
