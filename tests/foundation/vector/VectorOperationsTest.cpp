// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/VectorOperations.h"

#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/vector/VectorReference.h"
#include "tests/foundation/vector/Targets.h"

namespace
{
constexpr std::int32_t Guards = 16;
constexpr float GuardValue = 12345.678f;
constexpr std::uint32_t Seed = 20240611;

/// An array of n random values between guards, starting `offset` floats behind an aligned address.
struct Guarded
{
    Guarded(std::int32_t n, std::int32_t offset, std::mt19937& random, float low = -2.0f, float high = 2.0f)
        : count(n), start(Guards + offset),
          memory(static_cast<std::size_t>(n + offset + 2 * Guards), GuardValue)
    {
        std::uniform_real_distribution<float> values(low, high);
        for (std::int32_t i = 0; i < n; ++i)
            Data()[i] = values(random);
    }

    float* Data() { return memory.data() + start; }
    void ExpectGuardsIntact() const
    {
        for (std::size_t i = 0; i < memory.size(); ++i)
        {
            const auto position = static_cast<std::int32_t>(i);
            if (position >= start && position < start + count)
                continue;
            ASSERT_EQ(memory[i], GuardValue) << "guard " << position - start << " of " << count;
        }
    }

    std::int32_t count;
    std::int32_t start;
    std::vector<float> memory;
};

/// Unit in the last place of a float of this size.
double Ulp(double value)
{
    const float magnitude = std::max(std::abs(static_cast<float>(value)), std::numeric_limits<float>::min());
    return static_cast<double>(std::nextafter(magnitude, std::numeric_limits<float>::infinity()) - magnitude);
}

struct Elementwise
{
    const char* name;
    double ulps;   ///< of the larger of result and addends: one more for each rounding that fusing saves
    int widthA;   ///< floats an element of the first source
    int widthB;   ///< 0: no second source
    int widthOut;
    std::function<void(float* a, float* b, float* dst, std::int32_t n)> run;
    std::function<void(float* a, float* b, float* dst, std::int32_t n)> expected;
    float low = -2.0f;
    float high = 2.0f;
};

const std::vector<Elementwise>& Operations()
{
    namespace Ref = MVectorReference;
    using F = float*;
    using N = std::int32_t;
    static const std::vector<Elementwise> operations = {
        { "Add", 0, 1, 1, 1, [](F a, F b, F d, N n) { MVector::Add(a, b, d, n); },
          [](F a, F b, F d, N n)
          {
              Ref::Add(a, b, d, n);
          } },
        { "AddInPlace", 0, 1, 0, 1, [](F a, F, F d, N n) { MVector::AddInPlace(a, d, n); },
          [](F a, F, F d, N n)
          {
              Ref::AddInPlace(a, d, n);
          } },
        { "Sub", 0, 1, 1, 1, [](F a, F b, F d, N n) { MVector::Sub(a, b, d, n); },
          [](F a, F b, F d, N n)
          {
              Ref::Sub(a, b, d, n);
          } },
        { "SubInPlace", 0, 1, 0, 1, [](F a, F, F d, N n) { MVector::SubInPlace(a, d, n); },
          [](F a, F, F d, N n)
          {
              Ref::SubInPlace(a, d, n);
          } },
        { "AddConstant", 0, 1, 0, 1, [](F a, F, F d, N n) { MVector::AddConstant(a, 0.37f, d, n); },
          [](F a, F, F d, N n)
          {
              Ref::AddConstant(a, 0.37f, d, n);
          } },
        { "AddConstantInPlace", 0, 1, 0, 1, [](F, F, F d, N n) { MVector::AddConstantInPlace(1e-15f, d, n); },
          [](F, F, F d, N n)
          {
              Ref::AddConstant(d, 1e-15f, d, n);
          } },
        { "Multiply", 0, 1, 1, 1, [](F a, F b, F d, N n) { MVector::Multiply(a, b, d, n); },
          [](F a, F b, F d, N n)
          {
              Ref::Multiply(a, b, d, n);
          } },
        { "MultiplyConstant", 0, 1, 0, 1, [](F a, F, F d, N n) { MVector::MultiplyConstant(a, 0.37f, d, n); },
          [](F a, F, F d, N n)
          {
              Ref::MultiplyConstant(a, 0.37f, d, n);
          } },
        { "MultiplyConstantInPlace", 0, 1, 0, 1,
          [](F, F, F d, N n) { MVector::MultiplyConstantInPlace(d, n, -3.0f); },
          [](F, F, F d, N n)
          {
              Ref::MultiplyConstant(d, -3.0f, d, n);
          } },
        { "AddScaled", 1, 1, 0, 1, [](F a, F, F d, N n) { MVector::AddScaled(d, a, n, 0.37f); },
          [](F a, F, F d, N n)
          {
              Ref::AddScaled(d, a, n, 0.37f);
          } },
        { "AddProduct", 1, 1, 1, 1, [](F a, F b, F d, N n) { MVector::AddProduct(a, b, d, n); },
          [](F a, F b, F d, N n)
          {
              Ref::AddProduct(a, b, d, n);
          } },
        { "Square", 0, 1, 0, 1, [](F a, F, F d, N n) { MVector::Square(a, d, n); },
          [](F a, F, F d, N n)
          {
              Ref::Square(a, d, n);
          } },
        { "SquareInPlace", 0, 1, 0, 1, [](F, F, F d, N n) { MVector::SquareInPlace(d, n); },
          [](F, F, F d, N n)
          {
              Ref::Square(d, d, n);
          } },
        { "MaxEveryInPlace", 0, 1, 0, 1, [](F a, F, F d, N n) { MVector::MaxEveryInPlace(a, d, n); },
          [](F a, F, F d, N n)
          {
              Ref::MaxEveryInPlace(a, d, n);
          } },
        { "ThresholdLowInPlace", 0, 1, 0, 1,
          [](F, F, F d, N n) { MVector::ThresholdLowInPlace(d, n, 0.25f); },
          [](F, F, F d, N n)
          {
              Ref::ThresholdLowInPlace(d, n, 0.25f);
          } },
        { "ClipInPlace", 0, 1, 0, 1, [](F, F, F d, N n) { MVector::ClipInPlace(d, n, -0.5f, 0.75f); },
          [](F, F, F d, N n)
          {
              Ref::ClipInPlace(d, n, -0.5f, 0.75f);
          } },
        { "Ln", 2, 1, 0, 1, [](F a, F, F d, N n) { MVector::Ln(a, d, n); },
          [](F a, F, F d, N n) { Ref::Ln(a, d, n); }, 1e-6f, 1e4f },
        { "Log10", 3, 1, 0, 1, [](F a, F, F d, N n) { MVector::Log10(a, d, n); },
          [](F a, F, F d, N n) { Ref::Log10(a, d, n); }, 1e-6f, 1e4f },
        { "Exp", 2, 1, 0, 1, [](F a, F, F d, N n) { MVector::Exp(a, d, n); },
          [](F a, F, F d, N n) { Ref::Exp(a, d, n); }, -80.0f, 80.0f },
        { "Magnitude", 2, 2, 0, 1, [](F a, F, F d, N n) { MVector::Magnitude(a, d, n); },
          [](F a, F, F d, N n)
          {
              Ref::Magnitude(a, d, n);
          } },
        { "ComplexMultiply", 2, 2, 2, 2, [](F a, F b, F d, N n) { MVector::ComplexMultiply(a, b, d, n); },
          [](F a, F b, F d, N n)
          {
              Ref::ComplexMultiply(a, b, d, n);
          } },
    };
    return operations;
}

void CompareWithPlainLoop(const Elementwise& operation, std::int32_t n, std::int32_t offset)
{
    std::mt19937 random(Seed);
    Guarded a(n * operation.widthA, offset, random, operation.low, operation.high);
    Guarded b(n * operation.widthB, (offset + 1) % 5, random, operation.low, operation.high);
    Guarded actual(n * operation.widthOut, (offset + 3) % 5, random);
    Guarded expected = actual;
    operation.run(a.Data(), b.Data(), actual.Data(), n);
    operation.expected(a.Data(), b.Data(), expected.Data(), n);
    a.ExpectGuardsIntact();
    actual.ExpectGuardsIntact();
    for (std::int32_t i = 0; i < n * operation.widthOut; ++i)
    {
        const double wanted = expected.Data()[i];
        // Values lie within 2, so a sum that nearly cancels still errs by units of its addends only.
        const double scale =
            operation.low < 0 && operation.high <= 2 ? std::max(4.0, std::abs(wanted)) : wanted;
        const double tolerance = operation.ulps * Ulp(scale);
        ASSERT_NEAR(actual.Data()[i], wanted, tolerance) << "element " << i << " of " << n;
    }
}

TEST(VectorOperations, ElementwiseOperationsEqualThePlainLoopForEveryCountAndStart)
{
    ForEveryTarget(
        []
        {
            for (const Elementwise& operation : Operations())
            {
                SCOPED_TRACE(operation.name);
                for (std::int32_t n = 0; n <= 67; ++n)
                    for (const std::int32_t offset : { 0, 1, 3 })
                        CompareWithPlainLoop(operation, n, offset);
            }
        });
}

TEST(VectorOperations, TheDestinationMayBeASource)
{
    ForEveryTarget(
        []
        {
            std::mt19937 random(Seed);
            for (const std::int32_t n : { 1, 7, 8, 37 })
            {
                Guarded a(2 * n, 1, random);
                Guarded b(2 * n, 2, random);
                Guarded separate(2 * n, 0, random);
                MVector::ComplexMultiply(a.Data(), b.Data(), separate.Data(), n);
                Guarded inPlace = a;
                MVector::ComplexMultiply(inPlace.Data(), b.Data(), inPlace.Data(), n);
                EXPECT_TRUE(std::equal(separate.Data(), separate.Data() + 2 * n, inPlace.Data()));
                MVector::Sub(a.Data(), b.Data(), separate.Data(), n);
                inPlace = b;
                MVector::Sub(a.Data(), inPlace.Data(), inPlace.Data(), n);
                EXPECT_TRUE(std::equal(separate.Data(), separate.Data() + n, inPlace.Data()));
            }
        });
}

TEST(VectorOperations, AnElementsResultDoesNotDependOnItsPlace)
{
    // Blocks of any cut must give the same audio: vector body and remainder round alike.
    ForEveryTarget(
        []
        {
            std::mt19937 random(Seed);
            Guarded a(64, 0, random);
            Guarded b(64, 0, random);
            Guarded whole(64, 0, random);
            Guarded cut = whole;
            MVector::AddProduct(a.Data(), b.Data(), whole.Data(), 64);
            MVector::AddScaled(whole.Data(), a.Data(), 64, 0.3f);
            for (std::int32_t i = 0; i < 64; ++i)
            {
                MVector::AddProduct(a.Data() + i, b.Data() + i, cut.Data() + i, 1);
                MVector::AddScaled(cut.Data() + i, a.Data() + i, 1, 0.3f);
            }
            EXPECT_EQ(whole.memory, cut.memory);
        });
}

TEST(VectorOperations, ReductionsFindTheirValueForEveryCountAndStart)
{
    ForEveryTarget(
        []
        {
            std::mt19937 random(Seed);
            for (std::int32_t n = 1; n <= 70; ++n)
            {
                SCOPED_TRACE(n);
                Guarded a(n, n % 4, random);
                Guarded b(n, n % 3, random);
                const float* first = a.Data();
                const float* last = first + n;
                float value = 0;
                float other = 0;
                std::int32_t index = -1;
                // Each of n additions of values below 2 * n errs by half a unit of the sum at most.
                const double tolerance = n * Ulp(4.0 * n);
                MVector::Sum(first, n, &value);
                EXPECT_NEAR(value, MVectorReference::Sum(first, n), tolerance);
                MVector::AbsSum(first, n, &value);
                EXPECT_NEAR(value, MVectorReference::AbsSum(first, n), tolerance);
                MVector::DotProduct(first, b.Data(), n, &value);
                EXPECT_NEAR(value, MVectorReference::DotProduct(first, b.Data(), n), 2 * tolerance);
                MVector::Max(first, n, &value);
                EXPECT_EQ(value, *std::max_element(first, last));
                MVector::MaxIndex(first, n, &value, &index);
                EXPECT_EQ(value, first[index]);
                EXPECT_EQ(index, std::max_element(first, last) - first);
                MVector::MinIndex(first, n, &value, &index);
                EXPECT_EQ(index, std::min_element(first, last) - first);
                MVector::MinMax(first, n, &value, &other);
                EXPECT_EQ(value, *std::min_element(first, last));
                EXPECT_EQ(other, *std::max_element(first, last));
                MVector::AbsMax(first, n, &value);
                EXPECT_EQ(value, std::max(other, -*std::min_element(first, last)));
            }
        });
}

TEST(VectorOperations, CopyAudioReplacesOnlyWhatIsNoAudio)
{
    ForEveryTarget(
        []
        {
            constexpr float infinity = std::numeric_limits<float>::infinity();
            constexpr float smallest = std::numeric_limits<float>::min();
            const float values[] = { 1.0f,
                                     smallest,
                                     MVector::LargestSample,
                                     -0.5f,
                                     infinity,
                                     -infinity,
                                     std::numeric_limits<float>::quiet_NaN(),
                                     2e10f,
                                     -3e38f,
                                     -0.5f * smallest };
            std::vector<float> source;
            for (std::size_t i = 0; i < 40; ++i)
                source.push_back(values[i % std::size(values)]);
            for (std::int32_t n = 0; n < 40; ++n)
            {
                std::vector<float> target(40, 3.0f);
                MVector::CopyAudio(source.data(), target.data(), n);
                for (std::size_t i = 0; i < 40; ++i)
                {
                    const bool copied = i < static_cast<std::size_t>(n);
                    ASSERT_EQ(target[i], !copied ? 3.0f : i % std::size(values) < 4 ? source[i] : 0.0f) << i;
                }
            }
        });
}

TEST(VectorOperations, AnIndexSearchAnswersTheFirstOfEqualElements)
{
    ForEveryTarget(
        []
        {
            std::vector<float> values(40, -1.0f);
            values[17] = values[33] = 5.0f;
            values[9] = values[38] = -7.0f;
            float value = 0;
            std::int32_t index = -1;
            MVector::MaxIndex(values.data(), 40, &value, &index);
            EXPECT_EQ(index, 17);
            MVector::MinIndex(values.data(), 40, &value, &index);
            EXPECT_EQ(index, 9);
        });
}

TEST(VectorOperations, EmptyReductionsLeaveTheResultAlone)
{
    float value = 3.0f;
    std::int32_t index = 4;
    MVector::Sum(nullptr, 0, &value);
    MVector::MaxIndex(nullptr, 0, &value, &index);
    MVector::AbsMax(nullptr, 0, &value);
    EXPECT_EQ(value, 3.0f);
    EXPECT_EQ(index, 4);
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
            MVector::Ln(source.data(), logarithm.data(), static_cast<std::int32_t>(source.size()));
            for (std::size_t i = 0; i < source.size(); ++i)
            {
                const double exact = std::log(static_cast<double>(source[i]));
                EXPECT_NEAR(logarithm[i], exact, 2.0 * Ulp(exact)) << "ln of " << source[i];
            }
            std::vector<float> back(source.size());
            MVector::Exp(logarithm.data(), back.data(), static_cast<std::int32_t>(source.size()));
            for (std::size_t i = 0; i < source.size(); ++i)
            {
                const double exact = std::exp(static_cast<double>(logarithm[i]));
                EXPECT_NEAR(back[i], exact, 2.0 * Ulp(exact)) << "exp of " << logarithm[i];
            }
        });
}

TEST(VectorOperations, PolarAndRectangularFormsAreInverse)
{
    std::mt19937 random(Seed);
    Guarded complex(2 * 33, 0, random);
    std::vector<float> magnitude(33);
    std::vector<float> phase(33);
    std::vector<float> back(66);
    MVector::Magnitude(complex.Data(), magnitude.data(), 33);
    MVector::Phase(complex.Data(), phase.data(), 33);
    MVector::PolarToComplex(magnitude.data(), phase.data(), back.data(), 33);
    for (std::size_t i = 0; i < back.size(); ++i)
        EXPECT_NEAR(back[i], complex.Data()[i], 1e-6) << i;   // phases round to 2e-7 at pi
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
    float converted[3];
    MVector::ConvertFrom16Bit(shorts, converted, 3);
    EXPECT_EQ(std::vector<float>(converted, converted + 3),
              (std::vector<float>{ -32768.0f, 0.0f, 32767.0f }));
    MVector::ConvertFrom32Bit(longs, converted, 3);
    EXPECT_EQ(std::vector<float>(converted, converted + 3),
              (std::vector<float>{ -2147483648.0f, 1.0f, 16777216.0f }));
}

TEST(VectorOperations, WindowsMultiplyTheirClosedFormIn)
{
    struct Case
    {
        void (*window)(float*, std::int32_t);
        double edge, quarter, middle;
    };
    // 5 points: x = 0, 1/4, 1/2, 3/4, 1.
    for (const Case& known :
         { Case{ MVector::WindowHann, 0.0, 0.5, 1.0 }, Case{ MVector::WindowBlackman, 0.0, 0.34, 1.0 },
           Case{ MVector::WindowBartlett, 0.0, 0.5, 1.0 } })
    {
        std::vector<float> values(5, 2.0f);
        known.window(values.data(), 5);
        EXPECT_NEAR(values[0], 2 * known.edge, 1e-7);   // float rounding
        EXPECT_NEAR(values[1], 2 * known.quarter, 1e-7);
        EXPECT_NEAR(values[2], 2 * known.middle, 1e-7);
        EXPECT_NEAR(values[3], 2 * known.quarter, 1e-7);
        EXPECT_NEAR(values[4], 2 * known.edge, 1e-7);
        float single = 1.0f;
        known.window(&single, 1);
        EXPECT_NEAR(single, known.edge, 1e-7);
    }
}
}   // namespace
