// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class MXmlLoader;

/// Makes the controls of files known to layout documents.
void RegisterFileControls(MXmlLoader& loader);
