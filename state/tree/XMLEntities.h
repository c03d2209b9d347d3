// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

/// The characters that are written as entities, and the only ones that are decoded.
struct XMLEntity
{
    char character;
    std::string_view text;
};

inline constexpr XMLEntity XMLEntities[] = {
    { '&', "&amp;" },   { '<', "&lt;" },   { '>', "&gt;" },
    { '\'', "&apos;" }, { '"', "&quot;" }, { '\n', "&#10;" },
};
