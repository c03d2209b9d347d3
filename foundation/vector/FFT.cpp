// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/FFT.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <utility>

#include <fftw3.h>

#include "foundation/text/MException.h"
#include "foundation/vector/FFTPlanner.h"
#include "foundation/vector/HalfSpectrum.h"
#include "foundation/vector/VectorOperations.h"

namespace
{
constexpr std::int32_t MaxOrder = 18;
constexpr std::size_t Alignment = AlignedFloats::Alignment;

std::size_t LengthOf(std::int32_t order)
{
    return std::size_t{ 1 } << order;
}

/// Floats of one scratch array, rounded up so that what follows is aligned too.
std::size_t ScratchSize(std::size_t length)
{
    return (length + 15) / 16 * 16;
}

float* AlignUp(void* memory)
{
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    return reinterpret_cast<float*>((address + Alignment - 1) / Alignment * Alignment);
}

/// What a length needs: both directions of the complex transform of half the length, out of place on aligned
/// arrays, and the roots that make a real transform of it. FFTW's real transforms take longer, to plan and to
/// run.
struct Plans
{
    fftwf_plan forward = nullptr;
    fftwf_plan backward = nullptr;
    AlignedFloats roots;
};

/// The plans of all lengths, made on first use.
class PlanCache
{
public:
    // The planner goes after everybody who has plans of it.
    PlanCache() { FFTPlannerLock(); }
    ~PlanCache()
    {
        for (const Plans& made : plans)
        {
            if (made.forward != nullptr)
                fftwf_destroy_plan(made.forward);
            if (made.backward != nullptr)
                fftwf_destroy_plan(made.backward);
        }
    }

    const Plans& Get(std::int32_t order)
    {
        const std::lock_guard<std::mutex> lock(FFTPlannerLock());
        Plans& made = plans[static_cast<std::size_t>(order)];
        if (made.roots.Data() == nullptr)
            Make(LengthOf(order), made);
        return made;
    }

private:
    static void Make(std::size_t length, Plans& made)
    {
        const AlignedFloats memory = AlignedFloats::Unfilled(2 * ScratchSize(length));
        auto* source = reinterpret_cast<fftwf_complex*>(memory.Data());
        auto* target = reinterpret_cast<fftwf_complex*>(memory.Data() + ScratchSize(length));
        const auto half = static_cast<int>(length / 2);
        if (made.forward == nullptr)
            made.forward = fftwf_plan_dft_1d(half, source, target, FFTW_FORWARD, FFTW_ESTIMATE);
        if (made.backward == nullptr)
            made.backward = fftwf_plan_dft_1d(half, source, target, FFTW_BACKWARD, FFTW_ESTIMATE);
        if (made.forward == nullptr || made.backward == nullptr)
            throw MException("Cannot plan the Fourier transform.");
        AlignedFloats roots(length / 2 + 2);
        HalfSpectrum::FillRoots(roots.Data(), length / 2);
        made.roots = std::move(roots);
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
    struct Planner
    {
        std::mutex mutex;
#ifdef TONALIGN_OWN_PLANNER
        // A host may load and unload the module many times in a session.
        ~Planner()
        {
            fftwf_cleanup();
        }
#endif
    };
    static Planner planner;
    return planner.mutex;
}

struct FFTSpec
{
    const Plans& plans;
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
    *outBytes = static_cast<std::int32_t>(2 * ScratchSize(spec->length) * sizeof(float) + Alignment);
}

void FFTForward(float* srcDst, const FFTSpec* spec, std::uint8_t* buffer)
{
    float* z = AlignUp(buffer);
    float* samples = srcDst;
    if (fftwf_alignment_of(srcDst) != 0)
    {
        samples = z + ScratchSize(spec->length);
        std::memcpy(samples, srcDst, spec->length * sizeof(float));
    }
    fftwf_execute_dft(spec->plans.forward, reinterpret_cast<fftwf_complex*>(samples),
                      reinterpret_cast<fftwf_complex*>(z));
    HalfSpectrum::ToPacked(z, spec->plans.roots.Data(), srcDst, spec->length / 2);
}

void FFTInverse(float* srcDst, const FFTSpec* spec, std::uint8_t* buffer)
{
    float* z = AlignUp(buffer);
    HalfSpectrum::FromPacked(srcDst, spec->plans.roots.Data(), z, spec->length / 2);
    const bool aligned = fftwf_alignment_of(srcDst) == 0;
    float* samples = aligned ? srcDst : z + ScratchSize(spec->length);
    fftwf_execute_dft(spec->plans.backward, reinterpret_cast<fftwf_complex*>(z),
                      reinterpret_cast<fftwf_complex*>(samples));
    if (!aligned)
        std::memcpy(srcDst, samples, spec->length * sizeof(float));
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
