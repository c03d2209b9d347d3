// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

/// Between the spectrum of N real samples and the complex transform of half the length that computes it: the
/// samples are read as M = N / 2 complex numbers z[m] = x[2m] + j x[2m+1], Z is their transform.
/// With Y = conj(Z[M - k]) and W = e^(-pi j k / M), bin k of x is (Z + Y) / 2 - j W (Z - Y) / 2.
namespace HalfSpectrum
{
/// W for k = 0 to M / 2, interleaved: M + 2 floats.
void FillRoots(float* roots, std::size_t m);
/// Z, M interleaved complex numbers, to the packed spectrum of x. The arrays differ; any alignment.
void ToPacked(const float* z, const float* roots, float* packed, std::size_t m);
/// The packed spectrum of x to 2 Z. The arrays differ; any alignment.
void FromPacked(const float* packed, const float* roots, float* z, std::size_t m);
}   // namespace HalfSpectrum
