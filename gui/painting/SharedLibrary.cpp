// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/painting/SharedLibrary.h"

#include <dlfcn.h>

SharedLibrary::SharedLibrary(std::initializer_list<const char*> names)
{
    for (const char* name : names)
        if (handle == nullptr)
            handle = dlopen(name, RTLD_NOW | RTLD_LOCAL);
}

void* SharedLibrary::Symbol(const char* name) const
{
    return handle != nullptr ? dlsym(handle, name) : nullptr;
}
