// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "state/presets/MPresetManagerBase.h"

/// Presets of an object that stores itself with `Store(const MStoreParams&)`. The object outlives its
/// manager.
template <typename T>
class MPresetManagerT : public MPresetManagerBase
{
public:
    explicit MPresetManagerT(T& storedObject) : object(storedObject) {}

protected:
    void StoreObject(const MStoreParams& params) override { object.Store(params); }

private:
    T& object;
};
