// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/FFT.h"

#include <array>
#include <cstddef>
#include <cstring>

#include <fftw3.h>

#include "foundation/text/MException.h"
#include "foundation/vector/FFTPlanner.h"
#include "foundation/vector/VectorOperations.h"

namespace
{
constexpr std::int32_t MaxOrder = 18;
constexpr std::size_t Alignment = AlignedFloats::Alignment;

std::size_t LengthOf(std::int32_t order)
{
    return std::size_t{ 1 } << order;
}

/// Floats of N/2 + 1 complex bins, rounded up so that what follows is aligned too.
std::size_t HalfComplexSize(std::size_t length)
{
    return (length + 2 + 15) / 16 * 16;
}

float* AlignUp(void* memory)
{
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    return reinterpret_cast<float*>((address + Alignment - 1) / Alignment * Alignment);
}

/// Both directions of one length, out of place on aligned arrays: real <-> N/2 + 1 complex bins.
struct Plans
{
    fftwf_plan forward = nullptr;
    fftwf_plan inverse = nullptr;
};

/// The plans of all lengths, made on first use.
class PlanCache
{
public:
    ~PlanCache()
    {
        for (const Plans& made : plans)
        {
            if (made.forward != nullptr)
                fftwf_destroy_plan(made.forward);
            if (made.inverse != nullptr)
                fftwf_destroy_plan(made.inverse);
        }
    }

    const Plans& Get(std::int32_t order)
    {
        const std::lock_guard<std::mutex> lock(FFTPlannerLock());
        Plans& made = plans[static_cast<std::size_t>(order)];
        if (made.forward == nullptr || made.inverse == nullptr)
            Make(order, made);
        return made;
    }

private:
    static void Make(std::int32_t order, Plans& made)
    {
        const std::size_t length = LengthOf(order);
        const AlignedFloats memory(2 * HalfComplexSize(length));
        float* real = memory.Data();
        auto* bins = reinterpret_cast<fftwf_complex*>(real + HalfComplexSize(length));
        if (made.forward == nullptr)
            made.forward = fftwf_plan_dft_r2c_1d(static_cast<int>(length), real, bins, FFTW_ESTIMATE);
        if (made.inverse == nullptr)
            made.inverse = fftwf_plan_dft_c2r_1d(static_cast<int>(length), bins, real, FFTW_ESTIMATE);
        if (made.forward == nullptr || made.inverse == nullptr)
            throw MException("Cannot plan the Fourier transform.");
    }

    std::array<Plans, MaxOrder + 1> plans;
};

PlanCache& Cache()
{
    static PlanCache cache;
    return cache;
}
}   // namespace

std::mutex& FFTPlannerLock()
{
    static std::mutex mutex;
    return mutex;
}

struct FFTSpec
{
    Plans plans;
    std::size_t length;
    float inverseScale;
};

void FFTCreate(FFTSpec** outSpec, std::int32_t order, std::uint32_t flags, std::int32_t /*hint*/)
{
    if (order < 1 || order > MaxOrder)
        throw MException("The length of a Fourier transform is out of range.", MErrorCode::InvalidArgument);
    const std::size_t length = LengthOf(order);
    const bool divides = (flags & FFTDivideInverse) != 0;
    *outSpec = new FFTSpec{ Cache().Get(order), length, divides ? 1.0f / static_cast<float>(length) : 1.0f };
}

void FFTBufferSize(const FFTSpec* spec, std::int32_t* outBytes)
{
    *outBytes = static_cast<std::int32_t>(2 * HalfComplexSize(spec->length) * sizeof(float) + Alignment);
}

void FFTForward(float* srcDst, const FFTSpec* spec, std::uint8_t* buffer)
{
    const std::size_t bytes = spec->length * sizeof(float);
    float* bins = AlignUp(buffer);
    float* real = srcDst;
    if (fftwf_alignment_of(srcDst) != 0)
    {
        real = bins + HalfComplexSize(spec->length);
        std::memcpy(real, srcDst, bytes);
    }
    fftwf_execute_dft_r2c(spec->plans.forward, real, reinterpret_cast<fftwf_complex*>(bins));
    std::memcpy(srcDst, bins, bytes);
    srcDst[1] = bins[spec->length];
}

void FFTInverse(float* srcDst, const FFTSpec* spec, std::uint8_t* buffer)
{
    const std::size_t bytes = spec->length * sizeof(float);
    float* bins = AlignUp(buffer);
    std::memcpy(bins, srcDst, bytes);
    bins[spec->length] = srcDst[1];
    bins[1] = 0.0f;
    bins[spec->length + 1] = 0.0f;
    const bool aligned = fftwf_alignment_of(srcDst) == 0;
    float* real = aligned ? srcDst : bins + HalfComplexSize(spec->length);
    fftwf_execute_dft_c2r(spec->plans.inverse, reinterpret_cast<fftwf_complex*>(bins), real);
    if (!aligned)
        std::memcpy(srcDst, real, bytes);
    if (spec->inverseScale != 1.0f)
        MVector::MultiplyConstantInPlace(srcDst, static_cast<std::int32_t>(spec->length), spec->inverseScale);
}

void FFTFree(FFTSpec* spec)
{
    delete spec;
}

FFTBuffer::FFTBuffer(const FFTSpec* spec)
{
    std::int32_t bytes = 0;
    FFTBufferSize(spec, &bytes);
    data.reset(new std::uint8_t[static_cast<std::size_t>(bytes)]);
}

MFFT::MFFT(std::int32_t order, std::uint32_t flags)
{
    FFTSpec* made = nullptr;
    FFTCreate(&made, order, flags, 1);
    spec.reset(made);
    buffer = FFTBuffer(made);
}
