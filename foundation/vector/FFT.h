// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

/// Real FFT of N = 2^order floats in place, packed: index 0 is bin 0, index 1 is bin N/2 (both real),
/// index 2k and 2k + 1 are the real and imaginary part of bin k, for k from 1 to N/2 - 1.
///
/// A spec may be used by several threads at once, each with a scratch buffer of its own. Plans are shared
/// by the process and made once a length.
struct FFTSpec;

enum FFTFlags : std::uint32_t
{
    FFTDivideInverse = 2,   ///< the inverse divides by N
    FFTNoScaling = 8   ///< neither direction scales
};

/// order 1 to 18. `hint` 1 asks for speed over accuracy. Throws MException for an order out of range.
/// Allocates; not for the audio thread.
void FFTCreate(FFTSpec** outSpec, std::int32_t order, std::uint32_t flags, std::int32_t hint);
/// Scratch in bytes, which the caller allocates (see FFTBuffer); any alignment will do.
void FFTBufferSize(const FFTSpec* spec, std::int32_t* outBytes);
/// X[k] = sum over n of x[n] e^(-j 2 pi n k / N), no scaling. Thread: any; never allocates.
void FFTForward(float* srcDst, const FFTSpec* spec, std::uint8_t* buffer);
/// x[n] = sum over k of X[k] e^(+j 2 pi n k / N), divided by N with FFTDivideInverse.
void FFTInverse(float* srcDst, const FFTSpec* spec, std::uint8_t* buffer);
void FFTFree(FFTSpec* spec);

/// Owner of the scratch of one spec.
class FFTBuffer
{
public:
    FFTBuffer() = default;
    explicit FFTBuffer(const FFTSpec* spec);
    std::uint8_t* Data() const { return data.get(); }

private:
    std::unique_ptr<std::uint8_t[]> data;
};

/// Owner of a transform: spec and scratch. One object serves one thread at a time.
class MFFT
{
public:
    MFFT() = default;
    /// As FFTCreate. Throws MException, allocates.
    MFFT(std::int32_t order, std::uint32_t flags);

    bool IsEmpty() const { return spec == nullptr; }
    /// In place on 2^order floats, packed. Never allocates.
    void Forward(float* srcDst) { FFTForward(srcDst, spec.get(), buffer.Data()); }
    void Inverse(float* srcDst) { FFTInverse(srcDst, spec.get(), buffer.Data()); }

private:
    struct Free
    {
        void operator()(FFTSpec* owned) const { FFTFree(owned); }
    };
    std::unique_ptr<FFTSpec, Free> spec;
    FFTBuffer buffer;
};
