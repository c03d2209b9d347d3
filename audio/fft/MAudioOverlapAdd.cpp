// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/fft/MAudioOverlapAdd.h"

#include <algorithm>
#include <cstddef>

#include "foundation/vector/VectorOperations.h"

namespace
{
void ResizeToZeros(std::vector<float>& buffer, std::int32_t count)
{
    const auto size = static_cast<std::size_t>(count);
    if (buffer.size() == size)
        return;
    buffer.assign(size, 0.0f);
    buffer.shrink_to_fit();
}

std::int32_t Size(const std::vector<float>& buffer)
{
    return static_cast<std::int32_t>(buffer.size());
}
}   // namespace

void MAudioOverlapAdd::PrepareBuffers(std::int32_t n)
{
    const std::int32_t overlaps = left + right;
    ResizeToZeros(tail, overlaps);
    ResizeToZeros(carry, (padLeft ? 0 : left) + (padRight ? 0 : right));
    if (Size(work) < n + overlaps)
        work.resize(static_cast<std::size_t>(n + overlaps));
}

void MAudioOverlapAdd::Process(float* output, const float* input, std::int32_t n)
{
    const std::int32_t overlaps = left + right;
    if (n < overlaps)
    {
        MVector::Zero(output, n);
        return;
    }
    PrepareBuffers(n);

    float* fill = work.data();
    if (padLeft)
    {
        MVector::Zero(fill, left);
        fill += left;
    }
    MVector::Copy(carry.data(), fill, Size(carry));
    fill += Size(carry);
    MVector::Copy(input, fill, n);
    if (padRight)
        MVector::Zero(fill + n, right);

    ProcessFrame(work.data(), n + overlaps);
    // Before the output is written: it may be the input's array.
    MVector::Copy(input + n - Size(carry), carry.data(), Size(carry));

    if (addLeft)
        MVector::Add(tail.data(), work.data(), output, left);
    else
        MVector::Copy(tail.data(), output, left);
    if (addRight)
        MVector::Add(work.data() + left, tail.data() + left, output + left, right);
    else
        MVector::Copy(work.data() + left, output + left, right);
    MVector::Copy(work.data() + overlaps, output + overlaps, n - overlaps);
    MVector::Copy(work.data() + n, tail.data(), overlaps);
}

void MAudioOverlapAdd::ReleaseBuffers()
{
    tail = {};
    work = {};
    carry = {};
}

void MAudioOverlapAdd::ClearBuffers()
{
    std::fill(tail.begin(), tail.end(), 0.0f);
    std::fill(work.begin(), work.end(), 0.0f);
    std::fill(carry.begin(), carry.end(), 0.0f);
}
