#include "docs/snippets/Snippets.h"

#include "lumenta/files/WholeFile.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/materials/MaterialMimeData.h"
#include "lumenta/materials/MaterialXml.h"

#include <QUrl>

//! [materials]
/// Gives a material what is dropped onto it. False where that is of no use.
bool TakeDrop(const QMimeData& mime, IMaterial& material)
{
    if (const auto* const pDragged = qobject_cast<const MaterialMimeData*>(&mime)) { // out of this program
        if (!pDragged->IsMaterial())
            return material.SetParameter(QStringLiteral("texture"),
                                         pDragged->GetParameters().value(QStringLiteral("texture")));
        material.SetName(pDragged->GetName());
        material.SetParameters(pDragged->GetParameters());
        return true;
    }
    const QList<QUrl> urls = mime.urls();
    for (const QUrl& url : urls) { // out of another one, as a file
        if (!url.toLocalFile().endsWith(QLatin1String(".mtl"), Qt::CaseInsensitive)) continue;
        QString name;
        QMap<QString, QVariant> parameters;
        ReadMaterial(ReadAllFile(url.toLocalFile()), name, parameters);
        material.SetName(name);
        material.SetParameters(parameters);
        return true;
    }
    return false;
}
//! [materials]
