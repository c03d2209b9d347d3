// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "state/tree/MStoreParams.h"

/// The settings that every new instance starts with, kept in the module's configuration file.
using StoreOperation = std::function<void(const MStoreParams&)>;

/// Keeps what `store` saves. Throws MException; the file is as it was then.
void SaveDefaultSettings(const StoreOperation& store);
/// Hands what is kept to `store`. False when nothing is kept, or when it can't be read. Never throws.
bool LoadDefaultSettings(const StoreOperation& store) noexcept;
