// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "foundation/module/MResourceTable.h"
#include "foundation/text/MObject.h"
#include "foundation/text/MString.h"

class MLock;

/// A library that the module loaded.
struct MDynamicLibrary
{
    MString path;
    void* handle = nullptr;   ///< of dlopen; null when it isn't loaded
};

/// What two modules of the family share when one loads the other: MLibraryDLLInitialize gets it.
struct MLibraryPointers
{
    static constexpr int FunctionCount = 5;
    void* const* functions = nullptr;   ///< FunctionCount hooks of the loader; null leaves one's own
    MLock* eventLock = nullptr;   ///< the lock that both modules' events work on from then on
};

/// The module as a guest in its host's process: one object, made before the first plug-in object, with
/// which everything finds its place. The first one made is the main module as long as it lives.
///
/// Making and initializing belongs to one thread at a time (see StartModule). Afterwards nothing changes but
/// `hostType` and the reading positions of resources.
class MModule : public MObject
{
public:
    MModule();
    MModule(const MModule&) = delete;
    MModule& operator=(const MModule&) = delete;
    ~MModule() override;
    /// A library of the family was loaded: hands it what both share. Throws "Dynamic link library has not
    /// been loaded." and "The library does not support Quorvane service access.".
    virtual void DLLLoaded(const MDynamicLibrary& library);
    /// Finds its place and resources. Never throws: failures are logged.
    virtual void Initialize();

    /// The main module; null before StartModule.
    static MModule* Main() noexcept;

    /// Special folder 1 and `subPath`, created when missing. Throws MException.
    static MString GetDataPath(const MString& subPath);
    /// The module's data folder, created when missing. Throws MException.
    MString GetDataPath() const { return GetDataPath(productName); }
    /// What all modules share, created when missing. Throws MException.
    static MString GetGlobalDataPath();
    /// The resource of that id, rewound. Throws "Cannot find requested resource ({0}).".
    MResource& GetResource(const MString& id) { return resources.Get(id); }
    /// The file of the style definitions: "qstyle.qrf" in the module's folder or the current one, for a
    /// module without an embedded style. Throws "No style definition has been found.".
    MString FindStyleFile() const;
    /// Opens the file `<productName>.html` beside the module, or the one in its documentation folder, with
    /// the desktop's viewer. Throws "Could not execute file \"{0}\".".
    void LoadDocumentation() const;

    MString modulePath;   ///< of the module's file
    MString productName;   ///< of the data folder
    MResourceTable resources;
    void* instance = nullptr;   ///< the module's load address
    MString hostType;   ///< set by the host adapter
};

/// The system's side of the module.
class MWindowsModule : public MModule
{
};

/// The program's own module.
class Module : public MWindowsModule
{
};

/// Makes the module's object. The caller owns it.
MModule* MCreateModuleInstance();
/// Names the block that MLoadGlobalResources reads; its bytes live as long as the module.
void RegisterEmbeddedResources(const void* block, std::int32_t size) noexcept;
/// Reads the embedded block into the main module's table. Never throws: failures are logged.
void MLoadGlobalResources() noexcept;
/// Makes and initializes the module once, whatever threads and instances call it. Throws MException.
MModule& StartModule();
/// Takes over what a loader shares, at the module's edge. Answers 1; 0 and a line in the log after a failure.
int InitializeAsLibrary(const MLibraryPointers* pointers) noexcept;
/// A hook that a loader shared, 0 to FunctionCount - 1; null without one.
void* SharedFunction(int index) noexcept;
