// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/vector/Biquad.h"

#include <cassert>

namespace
{
/// Transposed direct form II: y = b0 x + s1; s1 = b1 x - d1 y + s2; s2 = b2 x - d2 y.
template <typename T>
struct Section
{
    T b0 = 0;
    T b1 = 0;
    T b2 = 0;
    T d1 = 0;
    T d2 = 0;
    T s1 = 0;
    T s2 = 0;

    void SetTaps(const T* taps)
    {
        assert(taps[3] == T(1));
        b0 = taps[0];
        b1 = taps[1];
        b2 = taps[2];
        d1 = taps[4];
        d2 = taps[5];
    }

    /// The feedback of the last output is applied last, so that a sample waits for one multiplication
    /// and one subtraction of its predecessor only; everything else runs ahead.
    void Run(const float* src, float* dst, std::int32_t n)
    {
        if (n <= 0)
            return;
        T ahead = s1;
        T feedback = 0;
        T memory = s2;
        for (std::int32_t i = 0; i < n; ++i)
        {
            const T x = static_cast<T>(src[i]);
            const T y = (b0 * x + ahead) - feedback;
            dst[i] = static_cast<float>(y);
            ahead = b1 * x + memory;
            feedback = d1 * y;
            memory = b2 * x - d2 * y;
        }
        s1 = ahead - feedback;
        s2 = memory;
    }
};
}   // namespace

struct BiquadState : Section<double>
{
};

struct BiquadStateFloat : Section<float>
{
};

void BiquadCreate(BiquadState** outState, const double* taps, [[maybe_unused]] std::int32_t sectionCount,
                  [[maybe_unused]] std::int32_t delayInit)
{
    assert(sectionCount == 1 && delayInit == 0);
    auto* state = new BiquadState;
    state->SetTaps(taps);
    *outState = state;
}

void BiquadSetTaps(const double* taps, BiquadState* state)
{
    state->SetTaps(taps);
}

void BiquadRun(const float* src, float* dst, std::int32_t n, BiquadState* state)
{
    state->Run(src, dst, n);
}

void BiquadFree(BiquadState* state)
{
    delete state;
}

void BiquadCreateFloat(BiquadStateFloat** outState, const float* taps,
                       [[maybe_unused]] std::int32_t sectionCount, [[maybe_unused]] std::int32_t delayInit)
{
    assert(sectionCount == 1 && delayInit == 0);
    auto* state = new BiquadStateFloat;
    state->SetTaps(taps);
    *outState = state;
}

void BiquadSetTapsFloat(const float* taps, BiquadStateFloat* state)
{
    state->SetTaps(taps);
}

void BiquadRunFloat(const float* src, float* dst, std::int32_t n, BiquadStateFloat* state)
{
    state->Run(src, dst, n);
}

void BiquadFree(BiquadStateFloat* state)
{
    delete state;
}
