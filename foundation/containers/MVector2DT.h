// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// A place or a distance in the plane.
template <typename T>
struct MVector2DT
{
    T x{};
    T y{};

    friend bool operator==(const MVector2DT&, const MVector2DT&) = default;
    friend MVector2DT operator+(MVector2DT a, MVector2DT b) { return { a.x + b.x, a.y + b.y }; }
    friend MVector2DT operator-(MVector2DT a, MVector2DT b) { return { a.x - b.x, a.y - b.y }; }
};
