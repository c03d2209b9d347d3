// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdlib>
#include <stdexcept>
#include <string>

#include <dlfcn.h>

/// The built module, loaded as a host does.
class LoadedModule
{
public:
    enum class Format
    {
        Vst2,
        Vst3
    };

    static std::string BuildFolder()
    {
        const char* folder = std::getenv("TONALIGN_BINARY_DIR");
        return folder != nullptr ? folder : "build";
    }
    static std::string PathOf(Format format)
    {
#if defined(__aarch64__)
        const std::string platform = "aarch64-linux";
#else
        const std::string platform = "x86_64-linux";
#endif
        return format == Format::Vst2 ? BuildFolder() + "/TonalignLinearPhase.so"
                                      : BuildFolder() + "/TonalignLinearPhase.vst3/Contents/" + platform +
                                            "/TonalignLinearPhase.so";
    }

    explicit LoadedModule(Format format) : handle(dlopen(PathOf(format).c_str(), RTLD_NOW | RTLD_LOCAL))
    {
        if (handle == nullptr)
            throw std::runtime_error(dlerror());
    }
    ~LoadedModule()
    {
        dlclose(handle);
    }
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;

    template <typename Function>
    Function Find(const char* name) const
    {
        void* found = dlsym(handle, name);
        if (found == nullptr)
            throw std::runtime_error(std::string("no symbol ") + name);
        return reinterpret_cast<Function>(found);
    }

    void* const handle;
};
