#pragma once

/// What a window module asks of the window system when it is loaded and unloaded.
class IFModuleFramework {
public:
    virtual ~IFModuleFramework() = default;
    /// False: the system can't serve this module, which must not be used then.
    virtual bool InitExtensionModule() = 0;
    virtual void TermExtensionModule() = 0;
    /// Whether the program's instance handle is known, by which resources are found.
    virtual bool HasInstanceHandle() const = 0;
    /// Takes the module's own handle in its place.
    virtual void SetInstanceHandle() = 0;
    virtual void EnableControlContainer() = 0;
    /// Prepares the calling thread for components; false if that fails.
    virtual bool InitializeComponents() = 0;
};

/// The window system of this program. Here a module needs no registration, and resources aren't found by a
/// handle: all of it always succeeds.
IFModuleFramework& GetModuleFramework();
