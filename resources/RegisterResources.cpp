// SPDX-License-Identifier: GPL-3.0-or-later
#include "resources/RegisterResources.h"

#include "foundation/module/MModule.h"
#include "resources/EmbeddedResources.h"

MModule& StartModuleWithResources()
{
    RegisterEmbeddedResources(EmbeddedResourceBlock, EmbeddedResourceBlockSize);
    return StartModule();
}
