// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/SpectralFrame.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <mutex>
#include <numbers>

#include <fftw3.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "foundation/vector/SpectralFrame.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "foundation/text/MException.h"
#include "foundation/vector/ComplexLanes-inl.h"
#include "foundation/vector/FFTPlanner.h"
#include "foundation/vector/HalfSpectrum.h"
#include "foundation/vector/InstructionSets.h"
#include "foundation/vector/VectorOperations.h"

// The way of a frame
//
// The real samples x are read as M = 16384 complex ones, z[m] = x[2m] + j x[2m+1], in a matrix of 128 rows by
// 128 columns, m = 128 row + column. The transform of z takes three steps (Bailey, "FFTs in external or
// hierarchical memory", 1990): a transform of every column, a multiplication of element (row, column) by
// w^(row column), w = e^(-2 pi j / M), and a transform of every row, which is stored as a column. That leaves
// Z[k] in natural order, k = 128 row + column again. The way back is the same with conjugate roots. Rows are
// padded: columns at a power of two would fall into few lines of the cache.
//
// The spectrum X of x itself is never formed. With Y = conj(Z[M - k]) and W = e^(-pi j k / M),
// X[k] = (Z + Y) / 2 - j W (Z - Y) / 2, and likewise backwards. Gains g for bin k and h for bin M - k thus
// mean
//     Z'[k]           = s Z + j d / 2 (conj(W) (Z + Y) - W (Z - Y)),
//     conj(Z'[M - k]) = s Y - j d / 2 (conj(W) (Z + Y) + W (Z - Y)),     s = (g + h) / 2, d = (g - h) / 2.
#ifndef TONALIGN_SPECTRAL_FRAME_ONCE
#define TONALIGN_SPECTRAL_FRAME_ONCE
namespace SpectralFrameLayout
{
constexpr std::size_t Side = 128;
constexpr std::size_t Points = Side * Side;   // complex
constexpr std::size_t RowStride = Side + 8;   // complex
constexpr std::size_t RowFloats = 2 * Side;
/// Keeps denormals out of the way back.
constexpr float Guard = 1e-15f;
}   // namespace SpectralFrameLayout
#endif

HWY_BEFORE_NAMESPACE();
namespace SpectralFrameKernels
{
namespace HWY_NAMESPACE
{
namespace hn = hwy::HWY_NAMESPACE;
using namespace SpectralFrameLayout;

#if HWY_TARGET == HWY_SCALAR
void MultiplyRow(const float* factors, float sign, float* row)
{
    for (std::size_t i = 0; i < RowFloats; i += 2)
    {
        const float re = row[i];
        const float im = row[i + 1];
        const float factorIm = sign * factors[i + 1];
        row[i] = re * factors[i] - im * factorIm;
        row[i + 1] = re * factorIm + im * factors[i];
    }
}

std::size_t GainRow(const float* /*roots*/, const float* /*gains*/, const float* /*mirrorGains*/,
                    float* /*row*/, float* /*mirror*/, std::size_t column)
{
    return column;
}
#else
using MVector::HWY_NAMESPACE::ComplexLanes;
using Floats = ComplexLanes::Floats;
using V = ComplexLanes::V;

void MultiplyRow(const float* factors, float sign, float* row)
{
    const Floats d;
    const V one = hn::Set(d, 1.0f);
    const V signs = hn::OddEven(hn::Set(d, sign), one);
    for (std::size_t i = 0; i < RowFloats; i += hn::Lanes(d))
    {
        const V factor = hn::Mul(hn::LoadU(d, factors + i), signs);
        hn::StoreU(ComplexLanes::Times(hn::LoadU(d, row + i), factor), d, row + i);
    }
}

/// Gains on the elements of a row from `column` on and their mirror images in the row opposite, which run
/// from column 128 - column downwards. Answers the column behind the last.
std::size_t GainRow(const float* roots, const float* gains, const float* mirrorGains, float* row,
                    float* mirror, std::size_t column)
{
    const Floats d;
    const std::size_t lanes = hn::Lanes(d);
    const V half = hn::Set(d, 0.5f);
    const V quarter = hn::Set(d, 0.25f);
    const V guard = hn::Set(d, Guard);
    for (; 2 * column + lanes <= RowFloats; column += lanes / 2)
    {
        float* here = row + 2 * column;
        const std::size_t opposite = RowFloats - 2 * column - lanes + 2;
        const V z = hn::LoadU(d, here);
        const V y = ComplexLanes::Conjugate(ComplexLanes::Reverse(hn::LoadU(d, mirror + opposite)));
        const V root = hn::LoadU(d, roots + 2 * column);
        const V g = hn::LoadU(d, gains + 2 * column);
        const V h = ComplexLanes::Reverse(hn::LoadU(d, mirrorGains + opposite));
        const V s = hn::Mul(half, hn::Add(g, h));
        const V halfD = hn::Mul(quarter, hn::Sub(g, h));
        const V sum = ComplexLanes::Times(hn::Add(z, y), ComplexLanes::Conjugate(root));
        const V difference = ComplexLanes::Times(hn::Sub(z, y), root);
        const V up = ComplexLanes::Turn(hn::Sub(sum, difference));
        const V down = ComplexLanes::Turn(hn::Add(sum, difference));
        hn::StoreU(hn::MulAdd(s, z, hn::MulAdd(halfD, up, guard)), d, here);
        const V image = hn::NegMulAdd(halfD, down, hn::MulAdd(s, y, guard));
        hn::StoreU(ComplexLanes::Reverse(ComplexLanes::Conjugate(image)), d, mirror + opposite);
    }
    return column;
}
#endif
}   // namespace HWY_NAMESPACE
}   // namespace SpectralFrameKernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace SpectralFrameKernels
{
KERNEL_TABLE(MultiplyRow);
KERNEL_TABLE(GainRow);
}   // namespace SpectralFrameKernels

namespace
{
using namespace SpectralFrameLayout;

constexpr std::size_t MatrixFloats = 2 * Side * RowStride;

void FillRoot(float* target, double turns)
{
    target[0] = static_cast<float>(std::cos(2.0 * std::numbers::pi * turns));
    target[1] = static_cast<float>(std::sin(2.0 * std::numbers::pi * turns));
}

/// Transforms between the two matrices of a frame, for all frames of the process.
class MatrixPlans
{
public:
    MatrixPlans()
    {
        const std::lock_guard<std::mutex> lock(FFTPlannerLock());
        const AlignedFloats first(MatrixFloats);
        const AlignedFloats second(MatrixFloats);
        auto* source = reinterpret_cast<fftwf_complex*>(first.Data());
        auto* target = reinterpret_cast<fftwf_complex*>(second.Data());
        const int side[1] = { static_cast<int>(Side) };
        const int stride = static_cast<int>(RowStride);
        for (int way = 0; way < 2; ++way)
        {
            const int sign = way == 0 ? FFTW_FORWARD : FFTW_BACKWARD;
            columns[way] = fftwf_plan_many_dft(1, side, side[0], source, nullptr, stride, 1, source, nullptr,
                                               stride, 1, sign, FFTW_ESTIMATE);
            rows[way] = fftwf_plan_many_dft(1, side, side[0], source, nullptr, 1, stride, target, nullptr,
                                            stride, 1, sign, FFTW_ESTIMATE);
        }
        if (std::count(columns, columns + 2, nullptr) + std::count(rows, rows + 2, nullptr) > 0)
            throw MException("Cannot plan the Fourier transform.");
    }
    MatrixPlans(const MatrixPlans&) = delete;
    MatrixPlans& operator=(const MatrixPlans&) = delete;
    ~MatrixPlans()
    {
        for (int way = 0; way < 2; ++way)
        {
            fftwf_destroy_plan(columns[way]);
            fftwf_destroy_plan(rows[way]);
        }
    }

    fftwf_plan columns[2] = {};   // in place; forward and backward
    fftwf_plan rows[2] = {};   // rows to columns
};

const MatrixPlans& Plans()
{
    static const MatrixPlans plans;
    return plans;
}
}   // namespace

struct SpectralFrame::Implementation
{
    const MatrixPlans& plans = Plans();
    AlignedFloats time{ MatrixFloats };
    AlignedFloats spectrum{ MatrixFloats };
    AlignedFloats twiddles{ 2 * Points };   // w^(row column)
    AlignedFloats roots{ Points + 2 };   // e^(-pi j k / M), k = 0 to M / 2
    float columnZero[2 * Side] = {};

    Implementation()
    {
        for (std::size_t row = 0; row < Side; ++row)
        {
            for (std::size_t column = 0; column < Side; ++column)
                FillRoot(twiddles.Data() + 2 * (Side * row + column),
                         -static_cast<double>(row * column) / static_cast<double>(Points));
        }
        HalfSpectrum::FillRoots(roots.Data(), Points);
    }

    static float* Row(const AlignedFloats& matrix, std::size_t row)
    {
        return matrix.Data() + 2 * RowStride * row;
    }
    static float* Element(const AlignedFloats& matrix, std::size_t k)
    {
        return Row(matrix, k / Side) + 2 * (k % Side);
    }

    void Transform(const AlignedFloats& from, const AlignedFloats& to, int way)
    {
        auto* source = reinterpret_cast<fftwf_complex*>(from.Data());
        fftwf_execute_dft(plans.columns[way], source, source);
        for (std::size_t row = 1; row < Side; ++row)
            KERNEL(SpectralFrameKernels::MultiplyRow)
        (twiddles.Data() + RowFloats * row, way == 0 ? 1.0f : -1.0f, Row(from, row));
        fftwf_execute_dft(plans.rows[way], source, reinterpret_cast<fftwf_complex*>(to.Data()));
    }

    /// Gains on elements k and M - k, 0 < k < M / 2.
    void GainPair(const float* gains, std::size_t k, float* element, float* mirror) const
    {
        const float g = gains[2 * k];
        const float h = gains[2 * (Points - k)];
        const float s = 0.5f * (g + h);
        const float halfD = 0.25f * (g - h);
        const float rootRe = roots.Data()[2 * k];
        const float rootIm = roots.Data()[2 * k + 1];
        const float zRe = element[0];
        const float zIm = element[1];
        const float yRe = mirror[0];
        const float yIm = -mirror[1];
        const float pRe = (zRe + yRe) * rootRe + (zIm + yIm) * rootIm;
        const float pIm = (zIm + yIm) * rootRe - (zRe + yRe) * rootIm;
        const float qRe = (zRe - yRe) * rootRe - (zIm - yIm) * rootIm;
        const float qIm = (zIm - yIm) * rootRe + (zRe - yRe) * rootIm;
        element[0] = s * zRe - halfD * (pIm - qIm) + Guard;
        element[1] = s * zIm + halfD * (pRe - qRe) + Guard;
        mirror[0] = s * yRe + halfD * (pIm + qIm) + Guard;
        mirror[1] = -(s * yIm - halfD * (pRe + qRe) + Guard);
    }

    /// The elements of column 0 are mirrored within it; all others in the opposite row. In row 0 the first
    /// gains have no opposite to be fetched with, so its first elements go one by one.
    void ApplyGains(const float* gains)
    {
        constexpr std::size_t FirstOfRowZero = 16;
        for (std::size_t row = 0; row < Side; ++row)
            std::copy_n(Row(spectrum, row), 2, columnZero + 2 * row);
        for (std::size_t row = 0; row < Side / 2; ++row)
        {
            float* here = Row(spectrum, row);
            float* mirror = Row(spectrum, Side - 1 - row);
            std::size_t column = 0;
            // What the first element of a row meets in the padding takes part, but is not used.
            std::fill_n(mirror + RowFloats, 2, 0.0f);
            if (row == 0)
            {
                for (column = 1; column < FirstOfRowZero; ++column)
                    GainPair(gains, column, here + 2 * column, mirror + 2 * (Side - column));
            }
            column = KERNEL(SpectralFrameKernels::GainRow)(
                roots.Data() + RowFloats * row, gains + RowFloats * row, gains + RowFloats * (Side - 1 - row),
                here, mirror, column);
            for (column = std::max<std::size_t>(column, 1); column < Side; ++column)
                GainPair(gains, Side * row + column, here + 2 * column, mirror + 2 * (Side - column));
        }
        GainColumnZero(gains);
    }

    void GainColumnZero(const float* gains)
    {
        for (const std::size_t row : { std::size_t{ 0 }, Side / 2 })
        {
            columnZero[2 * row] = columnZero[2 * row] * gains[2 * Side * row] + Guard;
            columnZero[2 * row + 1] = columnZero[2 * row + 1] * gains[2 * Side * row] + Guard;
        }
        for (std::size_t row = 1; row < Side / 2; ++row)
            GainPair(gains, Side * row, columnZero + 2 * row, columnZero + 2 * (Side - row));
        for (std::size_t row = 0; row < Side; ++row)
            std::copy_n(columnZero + 2 * row, 2, Row(spectrum, row));
    }
};

SpectralFrame::SpectralFrame() : implementation(std::make_unique<Implementation>()) {}

SpectralFrame::~SpectralFrame() = default;

void SpectralFrame::Load(const float* samples, const float* window, std::int32_t at, std::int32_t n)
{
    assert(at % 2 == 0 && n % 2 == 0);
    while (n > 0)
    {
        const auto within = at % static_cast<std::int32_t>(RowFloats);
        const std::int32_t taken = std::min(n, static_cast<std::int32_t>(RowFloats) - within);
        MVector::Multiply(samples, window,
                          Implementation::Element(implementation->time, static_cast<std::size_t>(at / 2)),
                          taken);
        samples += taken;
        window += taken;
        at += taken;
        n -= taken;
    }
}

void SpectralFrame::Process(const float* gains)
{
    implementation->Transform(implementation->time, implementation->spectrum, 0);
    if (gains != nullptr)
        implementation->ApplyGains(gains);
    implementation->Transform(implementation->spectrum, implementation->time, 1);
}

void SpectralFrame::Unload(std::int32_t at, float scale, float* target, std::int32_t n, bool replace) const
{
    assert(at % 2 == 0 && n % 2 == 0);
    // The complex transforms multiply by half the length only.
    const float factor = 2.0f * scale;
    while (n > 0)
    {
        const auto within = at % static_cast<std::int32_t>(RowFloats);
        const std::int32_t taken = std::min(n, static_cast<std::int32_t>(RowFloats) - within);
        const float* source = Implementation::Element(implementation->time, static_cast<std::size_t>(at / 2));
        if (replace)
            MVector::MultiplyConstant(source, factor, target, taken);
        else
            MVector::AddScaled(target, source, taken, factor);
        target += taken;
        at += taken;
        n -= taken;
    }
}
#endif
