// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class MXmlLoader;

/// Makes the standard controls known to layout documents.
void RegisterWidgets(MXmlLoader& loader);
