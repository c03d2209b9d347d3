// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "foundation/text/MEnumLabels.h"

/// A window: its shape and the array that it fills. Shapes run over x = i / (size - 1).
class MSignalWindowType
{
public:
    enum Type : std::int32_t
    {
        Rectangular = 0,
        Hamming = 1,
        Hann = 2,
        Blackman = 3,
        Cosine = 4,
        Lanczos = 5,
        Bartlett = 6,
        Gauss = 7,
        Kaiser = 8
    };
    static constexpr std::int32_t TypeCount = 9;
    /// What the user reads, by type. ASCII constants.
    static const char* const Names[TypeCount];

    /// Fills `size` points. A complementary window gets the mirror image in amplitude of its second half as
    /// its first, so that two copies half a window apart add up to exactly 1 at every point: all windows that
    /// are overlapped and added are built so. Throws MException "Unknown signal window type.". Allocates.
    void Build(std::int32_t size, std::int32_t type, bool complementary);
    bool IsBuiltAs(std::int32_t wantedSize, std::int32_t wantedType) const
    {
        return size == wantedSize && type == wantedType && !data.empty();
    }

    const float* Data() const { return data.data(); }
    std::int32_t Size() const { return size; }
    std::int32_t GetType() const { return type; }
    /// Of all points, in float.
    float Sum() const { return sum; }
    float SumOfSquares() const { return sumOfSquares; }

    /// Stop band attenuation in dB that a Kaiser window is shaped for.
    double KaiserAttenuation = 170.0;

private:
    void Resize(std::int32_t count);

    std::vector<float> data;
    std::int32_t type = Hann;
    std::int32_t size = 0;
    float sum = 0;
    float sumOfSquares = 0;
};

template <>
struct MEnumLabels<MSignalWindowType::Type>
{
    static constexpr auto& Labels = MSignalWindowType::Names;
};
