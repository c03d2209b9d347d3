// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "foundation/text/MString.h"

/// What a control draws for a value.
struct MContentData
{
    MString text;
};

using MContent = std::shared_ptr<const MContentData>;
