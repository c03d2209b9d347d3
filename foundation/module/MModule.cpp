// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/module/MModule.h"

#include <array>
#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>

#include <dlfcn.h>

#include "foundation/containers/MEventBase.h"
#include "foundation/streams/MFile.h"
#include "foundation/streams/MStdFileStream.h"
#include "foundation/text/Boundary.h"
#include "foundation/text/MException.h"
#include "foundation/text/MStringFormat.h"
#include "foundation/text/PathText.h"

namespace
{
namespace fs = std::filesystem;

std::atomic<MModule*> mainModule = nullptr;
std::atomic<const void*> embeddedBlock = nullptr;
std::atomic<std::int32_t> embeddedSize = 0;
std::array<std::atomic<void*>, MLibraryPointers::FunctionCount> sharedFunctions{};

fs::path SystemPath(const MString& path)
{
    return PathBytes(path);
}

MString Text(const fs::path& path)
{
    return PathText(path.native());
}

MString MadeFolder(const MString& subPath)
{
    const MString base = MFile::GetSpecialFolder(MFile::UserData);
    std::string path = (SystemPath(base) / SystemPath(subPath).relative_path()).lexically_normal().string();
    if (path.back() == '/')
        path.pop_back();
    MString folder = PathText(path);
    MFile::CreatePath(folder);
    return folder;
}

// Of the file that holds this very code, which is the host's program only where we are linked into it.
MString PathOfThisCode(void*& loadAddress)
{
    Dl_info information = {};
    if (dladdr(reinterpret_cast<const void*>(&PathOfThisCode), &information) == 0)
        throw MException("Could not retrieve system path.");
    loadAddress = information.dli_fbase;
    std::error_code error;
    fs::path path = information.dli_fname;
    // A program's name is what its starter said, which may be found through PATH only.
    if (path.is_relative() && (!path.has_parent_path() || !fs::exists(path, error)))
        path = fs::read_symlink("/proc/self/exe", error);
    if (path.is_relative())
        path = fs::absolute(path, error);
    return Text(path.lexically_normal());
}

// Every step of a start on its own: what one can't find, the others may do without.
void LoggedStep(const char* operation, auto&& step) noexcept
{
    try
    {
        step();
    }
    catch (...)
    {
        LogSystemException(operation);
    }
}
}   // namespace

MModule::MModule()
{
    MModule* none = nullptr;
    mainModule.compare_exchange_strong(none, this);
}

MModule::~MModule()
{
    MModule* self = this;
    mainModule.compare_exchange_strong(self, nullptr);
}

MModule* MModule::Main() noexcept
{
    return mainModule.load();
}

void MModule::Initialize()
{
    constexpr const char* boundary = "MModule::Initialize";
    LoggedStep(boundary, [this] { modulePath = PathOfThisCode(instance); });
    MLoadGlobalResources();
    LoggedStep(boundary,
               [this]
               {
                   if (productName.IsEmpty())
                       productName = Text(SystemPath(modulePath).stem());
               });
    LoggedStep(boundary,
               [this]
               {
                   const MString external = Text(SystemPath(modulePath).replace_extension("qrf"));
                   if (!resources.IsEmpty() || !MFile::Exists(external))
                       return;
                   MStdFileStream file(external, MStdFileStream::ReadAccess);
                   resources.Read(file);
               });
}

void MModule::DLLLoaded(const MDynamicLibrary& library)
{
    if (library.handle == nullptr)
        throw MException("Dynamic link library has not been loaded.");
    using Entry = int (*)(const MLibraryPointers*);
    const auto entry = reinterpret_cast<Entry>(dlsym(library.handle, "MLibraryDLLInitialize"));
    if (entry == nullptr)
        throw MException("The library does not support Quorvane service access.");
    std::array<void*, MLibraryPointers::FunctionCount> functions{};
    for (std::size_t index = 0; index < functions.size(); ++index)
        functions[index] = sharedFunctions[index].load();
    const MLibraryPointers pointers = { functions.data(), &EventLock() };
    if (entry(&pointers) == 0)
        throw MException("The library does not support Quorvane service access.");
}

MString MModule::GetDataPath(const MString& subPath)
{
    return MadeFolder(subPath);
}

MString MModule::GetGlobalDataPath()
{
    return MadeFolder("Data");
}

MString MModule::FindStyleFile() const
{
    const fs::path name = "qstyle.qrf";
    const fs::path beside = SystemPath(modulePath).replace_filename(name);
    std::error_code error;
    if (fs::is_regular_file(beside, error))
        return Text(beside);
    if (fs::is_regular_file(name, error))
        return Text(fs::absolute(name, error));
    throw MException("No style definition has been found.");
}

void MModule::LoadDocumentation() const
{
    const fs::path name = SystemPath(productName + ".html");
    const fs::path beside = SystemPath(modulePath).replace_filename(name);
    const fs::path installed = fs::path("/usr/share/doc") / SystemPath(productName) / name;
    std::error_code error;
    MFile::Execute(Text(fs::exists(beside, error) ? beside : installed));
}

MModule* MCreateModuleInstance()
{
    return new Module;
}

void RegisterEmbeddedResources(const void* block, std::int32_t size) noexcept
{
    embeddedSize = size;
    embeddedBlock = block;
}

void MLoadGlobalResources() noexcept
{
    LoggedStep("MLoadGlobalResources",
               []
               {
                   MModule* module = MModule::Main();
                   if (module != nullptr && embeddedBlock.load() != nullptr)
                       module->resources.Read(embeddedBlock.load(), embeddedSize.load());
               });
}

MModule& StartModule()
{
    // The library's end destroys it, after the last plug-in object.
    static std::mutex starting;
    static std::unique_ptr<MModule> owned;
    const std::lock_guard guard(starting);
    if (MModule::Main() == nullptr)
    {
        owned.reset(MCreateModuleInstance());
        owned->Initialize();
    }
    return *MModule::Main();
}

int InitializeAsLibrary(const MLibraryPointers* pointers) noexcept
{
    return AtBoundary("MLibraryDLLInitialize", 0,
                      [pointers]
                      {
                          if (pointers != nullptr && pointers->functions != nullptr)
                              for (std::size_t index = 0; index < sharedFunctions.size(); ++index)
                                  sharedFunctions[index] = pointers->functions[index];
                          if (pointers != nullptr && pointers->eventLock != nullptr)
                              ShareEventLock(*pointers->eventLock);
                          StartModule();
                          return 1;
                      });
}

void* SharedFunction(int index) noexcept
{
    const bool isValid = index >= 0 && index < MLibraryPointers::FunctionCount;
    return isValid ? sharedFunctions[static_cast<std::size_t>(index)].load() : nullptr;
}
