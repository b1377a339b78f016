#pragma once

#include "lumenta/Export.h"
#include "lumenta/interfaces/IModelLoader.h"

#include <vector>

/// Knows the formats that any model loader of the application reads.
///
/// **Who implements it:** the host, which collects them from its plug-ins. **Who
/// calls it:** the library's file source for models, file dialogs.
/// **Thread:** the application's. **Ownership:** the host's.
class LUMENTA_EXPORT IModelFormats {
public:
    /// In order of registration. Copy the list where events are let through: it may
    /// change when plug-ins come.
    virtual const std::vector<ModelFormatInfo>& GetModelFormats() const = 0;

protected:
    IModelFormats() = default;
    IModelFormats(const IModelFormats&) = default;
    IModelFormats& operator=(const IModelFormats&) = default;
    ~IModelFormats() = default;
};
