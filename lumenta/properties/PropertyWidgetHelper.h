#pragma once

#include "lumenta/Export.h"
#include "lumenta/platform/IPropertyListHelper.h"

class IApplicationContext;
class IDocumentContext;

/// Makes the file sources of a document's property panels.
///
/// Both contexts must outlive it, and the document outlives the sources, which
/// keep plain pointers to its services. On the document's thread.
class LUMENTA_EXPORT PropertyWidgetHelper final : public IPropertyListHelper {
public:
    /// Keeps references to both; neither is asked yet.
    PropertyWidgetHelper(IApplicationContext& application, IDocumentContext& document);

    /// A new source without a parent, which the caller owns: for "image" a
    /// FileSource, for "model" a ModelSourceImpl; null for any other kind. Upper
    /// and lower case differ.
    ///
    /// Asks the contexts for the services at once. It makes a source even where
    /// one is missing, which must then not be used: see the sources. What is short
    /// of memory throws std::bad_alloc and leaves nothing behind.
    IFileSource* CreateFileSource(const QString& kind) override;

private:
    IApplicationContext& m_application;
    IDocumentContext& m_document;
};
