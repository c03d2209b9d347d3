// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

class MAttribute;

/// What each `Store` operation gets. One function serves both directions, so a key can't get out of step.
struct MStoreParams
{
    std::int32_t saving = 0;   ///< 1 writes into the tree, 0 reads from it
    MAttribute* item = nullptr;
};
