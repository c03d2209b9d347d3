// SPDX-License-Identifier: GPL-3.0-or-later
// The entries that hosts look up by name. exports.map lists them once more for the linker.
#include "effect/TonalignInterface.h"
#include "foundation/module/MModule.h"
#include "hosts/plugin/ModuleLoad.h"
#include "hosts/vst2/MAudioPluginVSTAdapter.h"
#include "hosts/vst3/PluginFactory.h"
#include "resources/EmbeddedResources.h"

#ifdef TONALIGN_OWN_CXX_LIBRARY
namespace __gnu_cxx
{
// Frees what the C++ library keeps for throwing when memory has run out. Its own headers don't declare it.
void __freeres();   // NOLINT(bugprone-reserved-identifier)
}   // namespace __gnu_cxx

namespace
{
// Behind the last destructor of a static object: a host may load and unload the module many times in a
// session.
__attribute__((destructor(101))) void ReturnThrowReserve()
{
    __gnu_cxx::__freeres();
}
}   // namespace
#endif

#define MODULE_EXPORT extern "C" __attribute__((visibility("default")))

// Prototypes: nobody includes them, hosts know them by name.
MODULE_EXPORT Vst2::AEffect* VSTPluginMain(Vst2::HostCallback host);
MODULE_EXPORT Vst2::AEffect* MainOfOldHosts(Vst2::HostCallback host) __asm__("main");
MODULE_EXPORT Steinberg::IPluginFactory* GetPluginFactory();
MODULE_EXPORT bool ModuleEntry(void* library);
MODULE_EXPORT bool ModuleExit();
MODULE_EXPORT std::int32_t MLibraryDLLInitialize(const MLibraryPointers* record);
MODULE_EXPORT void InitDll();
MODULE_EXPORT void ExitDll();

Vst2::AEffect* VSTPluginMain(Vst2::HostCallback host)
{
    return Vst2::CreateEffect(host);
}

// Hosts from before VST 2.4 look up "main", which C++ doesn't let a library define under its own name.
Vst2::AEffect* MainOfOldHosts(Vst2::HostCallback host)
{
    return Vst2::CreateEffect(host);
}

Steinberg::IPluginFactory* GetPluginFactory()
{
    return Vst3::AcquireFactory();
}

// A Linux VST 3 host calls these after loading and before unloading, with the library's handle.
bool ModuleEntry(void*)
{
    return ModuleLoad::Hold();
}

bool ModuleExit()
{
    ModuleLoad::Release();
    return true;
}

// For an executable that loads the module as a library of its own and shares its hooks and its event lock.
// The module is then started as long as it is loaded. Answers 1, or 0 after a failure.
std::int32_t MLibraryDLLInitialize(const MLibraryPointers* record)
{
    if (!ModuleLoad::Hold())
        return 0;
    RegisterEmbeddedResources(EmbeddedResourceBlock, EmbeddedResourceBlockSize);
    return InitializeAsLibrary(record);
}

void InitDll() {}

void ExitDll() {}
