#pragma once

#include "lumenta/platform/IApplicationContext.h"

namespace Host {

/// An application without services: every answer is null.
class ApplicationContext final : public IApplicationContext {
public:
    IImageManager* GetImageManager() const override { return nullptr; }
    const IModelFormats* GetModelFormats() const override { return nullptr; }
    const ISerializersRegistry* GetSerializers() const override { return nullptr; }
    ISettings* GetSettings() const override { return nullptr; }
    ILog* GetLog() const override { return nullptr; }
};

} // namespace Host
