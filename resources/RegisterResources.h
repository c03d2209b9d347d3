// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class MModule;

/// StartModule with the embedded block: what every host adapter calls before its first plug-in object.
/// Any thread, any number of times. Throws MException.
MModule& StartModuleWithResources();
