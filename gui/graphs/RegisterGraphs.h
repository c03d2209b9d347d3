// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class MXmlLoader;

/// Makes the graph editor and the zoomer known to layout documents.
void RegisterGraphs(MXmlLoader& loader);
