// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The C header names a member as C++ names a keyword.
#define explicit explicitActions
#include <xcb/xkb.h>
#undef explicit
