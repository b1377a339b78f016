#include "lumenta/properties/ModelSourceImpl.h"

#include "lumenta/interfaces/IUserInterface.h"
#include "lumenta/platform/IFileDialog.h"
#include "lumenta/platform/IModelFormats.h"

#include <QFileInfo>

#include <memory>

ModelSourceImpl::ModelSourceImpl(const IModelFormats* pFormats, IUserInterface* pUserInterface)
    : m_pFormats(pFormats)
    , m_pUserInterface(pUserInterface)
{
}

ModelSourceImpl::~ModelSourceImpl() = default;

QStringList ModelSourceImpl::GetOfferedFiles()
{
    return m_offered;
}

bool ModelSourceImpl::ShowOpenDialog(QObject* pParent, QString& strPath)
{
    const std::unique_ptr<IFileDialog> dialog(m_pUserInterface->CreateFileDialog(eFileDialogOpenModel, pParent));
    // A copy: the provider's list may change below a dialog that is being filled.
    const std::vector<ModelFormatInfo> formats = m_pFormats->GetModelFormats();
    for (const ModelFormatInfo& format : formats)
        dialog->AddFilter(format.description, format.extensions);
    const QString chosen = dialog->Show(QStringLiteral("Open File"), QString(), strPath);
    if (chosen.isEmpty()) return false;
    strPath = chosen;
    return true;
}

bool ModelSourceImpl::AcceptsFile(const QString& strFileName)
{
    const QString suffix = QFileInfo(strFileName).suffix();
    for (const ModelFormatInfo& format : m_pFormats->GetModelFormats()) {
        if (format.extensions.contains(suffix, Qt::CaseInsensitive)) return true;
    }
    return false;
}
