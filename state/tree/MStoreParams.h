// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

class MAttribute;

/// What absent keys mean to a load.
enum class MLoadMode : std::uint8_t
{
    Plain,   ///< their defaults, where a setting has one that is left out of what is stored
    Overlay   ///< nothing: what isn't named stays as it is
};

/// How much of an object is stored.
enum class MStoreScope : std::uint8_t
{
    State,   ///< all that an instance consists of
    Preset   ///< what one instance can take over from another: not its presets' places
};

/// What each `Store` operation gets. One function serves both directions, so a key can't get out of step.
struct MStoreParams
{
    std::int32_t saving = 0;   ///< 1 writes into the tree, 0 reads from it
    MAttribute* item = nullptr;
    MLoadMode mode = MLoadMode::Plain;
    MStoreScope scope = MStoreScope::State;

    /// The same for another item.
    MStoreParams At(MAttribute& other) const
    {
        MStoreParams params = *this;
        params.item = &other;
        return params;
    }
};
