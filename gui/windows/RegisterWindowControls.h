// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class MXmlLoader;

/// Makes the controls that open windows of their own known to layout documents.
void RegisterWindowControls(MXmlLoader& loader);
