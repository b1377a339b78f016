#pragma once

#include "lumenta/Export.h"

class IFileSource;
class QString;

/// What property panels ask when they meet a property that is a file.
///
/// **Who implements it:** this library (PropertyWidgetHelper). **Who calls it:** the
/// panels of the host. **Thread:** the document's. **Ownership:** stays with who made
/// it; nobody deletes one by this class, which has no virtual destructor.
class LUMENTA_EXPORT IPropertyListHelper {
public:
    /// \param kind what the file holds: "image", "model"
    /// \return a new source that the caller owns, or null for an unknown kind
    virtual IFileSource* CreateFileSource(const QString& kind) = 0;

protected:
    IPropertyListHelper() = default;
    IPropertyListHelper(const IPropertyListHelper&) = default;
    IPropertyListHelper& operator=(const IPropertyListHelper&) = default;
    ~IPropertyListHelper() = default;
};
