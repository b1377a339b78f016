#pragma once

#include "lumenta/interfaces/IRender.h"

#include <QStringList>

namespace Host {

/// What scripts ask of their document beyond its scene: files.
///
/// Implemented by the document, beside IDocumentContext, from which it is got by
/// `dynamic_cast`. A document without it has scripts that write nothing.
class IScriptServices {
public:
    /// Writes the document into a scene file, which is its own from then on.
    /// \return what was left out, in words for a person
    /// \throws Exception
    virtual QStringList Save(const QString& strFileName) = 0;

    /// Draws the scene and writes the picture, aside first, as a PNG file.
    /// \param strRenderer empty for the usual one
    /// \return what could not be shown, in words for a person
    /// \throws Exception
    virtual QStringList SavePicture(const QString& strFileName, const sRenderSettings& settings,
                                    const QString& strRenderer) = 0;

protected:
    IScriptServices() = default;
    IScriptServices(const IScriptServices&) = default;
    IScriptServices& operator=(const IScriptServices&) = default;
    ~IScriptServices() = default;
};

} // namespace Host
