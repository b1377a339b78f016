#include "lumenta/properties/PropertyWidgetHelper.h"

#include "lumenta/platform/IApplicationContext.h"
#include "lumenta/platform/IDocumentContext.h"
#include "lumenta/properties/FileSource.h"
#include "lumenta/properties/ModelSourceImpl.h"

PropertyWidgetHelper::PropertyWidgetHelper(IApplicationContext& application, IDocumentContext& document)
    : m_application(application)
    , m_document(document)
{
}

IFileSource* PropertyWidgetHelper::CreateFileSource(const QString& kind)
{
    if (kind == QLatin1String("image"))
        return new FileSource(m_application.GetImageManager(), m_document.GetUserInterface());
    if (kind == QLatin1String("model"))
        return new ModelSourceImpl(m_application.GetModelFormats(), m_document.GetUserInterface());
    return nullptr;
}
