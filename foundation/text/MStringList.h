// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/text/MArray.h"
#include "foundation/text/MString.h"

/// An ordered list of texts, held by value.
using MStringList = MArray<MString>;
