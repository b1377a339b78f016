#pragma once

#include "lumenta/Export.h"

class IImageManager;
class ILog;
class IModelFormats;
class ISerializersRegistry;
class ISettings;

/// The services of the application, the same for every document.
///
/// **Who implements it:** the host. **Who calls it:** plug-ins, panels.
/// **Thread:** the application's. **Ownership:** all of it is the host's and
/// outlives every plug-in's objects. A host may lack a service: then the answer
/// is null. A host with property panels has images and model formats.
class LUMENTA_EXPORT IApplicationContext {
public:
    virtual IImageManager* GetImageManager() const = 0;             ///< Loads images and keeps them.
    virtual const IModelFormats* GetModelFormats() const = 0;       ///< What models can be read.
    virtual const ISerializersRegistry* GetSerializers() const = 0; ///< What scenes can be read and written.
    virtual ISettings* GetSettings() const = 0;                     ///< What is remembered between runs.
    virtual ILog* GetLog() const = 0;                               ///< Where to tell what nobody waits for.

protected:
    IApplicationContext() = default;
    IApplicationContext(const IApplicationContext&) = default;
    IApplicationContext& operator=(const IApplicationContext&) = default;
    ~IApplicationContext() = default;
};
