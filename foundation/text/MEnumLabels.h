// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// The labels of an enumeration in the order of its values, for whoever shows or stores one:
/// template <> struct MEnumLabels<Mode> { static constexpr const char* Labels[] = { "One", "Two" }; };
/// They stand beside the enumeration.
template <typename E>
struct MEnumLabels;
