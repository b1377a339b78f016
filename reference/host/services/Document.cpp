#include "reference/host/services/Document.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/ISceneSaver.h"
#include "lumenta/serializers/SceneSerializers.h"
#include "reference/host/document/SceneMaterial.h"
#include "reference/host/images/References.h"
#include "reference/host/Picture.h"
#include "reference/host/services/Application.h"
#include "reference/host/services/PictureFile.h"
#include "reference/host/services/SceneSetup.h"

#include <QFileInfo>

namespace Host {

Document::Document(const Application& application, QObject* pParent)
    : QObject(pParent)
    , m_application(application)
    , m_scene(std::make_unique<Host::Scene>())
    , m_scriptRunner(std::make_unique<ScriptRunner>(*this))
{
    m_scene->SetModelReader([this](const QString& strSource) { return m_application.ReadModel(strSource); });
    m_scene->SetMeshMaker([this](const QString& strSource) { return m_application.CreateGenerator(strSource); });
}

QStringList Document::Open(const QString& strSource)
{
    const ISerializersRegistry* const registry = m_application.GetSerializers();
    QStringList warnings;
    if (strSource.startsWith(QLatin1Char(':')) || !CanLoadScene(registry, strSource)) {
        warnings = Import(strSource);
    } else {
        const QSharedPointer<ISceneLoader> loader = CreateSceneLoader(registry, strSource);
        loader->Load(strSource, *m_scene);
        warnings = loader->GetWarnings();
    }
    m_scene->GetCamera()->SetHome();
    m_scene->SetModified(false);
    return warnings;
}

/// What no extension tells of: something built in, or a model whose loader has
/// to look into it.
QStringList Document::Import(const QString& strSource)
{
    if (const std::unique_ptr<IGenerator> generator = m_application.CreateGenerator(strSource)) {
        MeshCollector trial; // what fails shall fail before anything is lost
        generator->Generate(trial);
        sSceneModifications planned;
        planned.strTitle = QStringLiteral("Open '%1'").arg(strSource);
        const SceneBracket bracket(*m_scene, planned);
        m_scene->Clear();
        m_scene->GetRoot()->CreateMesh(strSource.mid(1), strSource);
        ShowAll(*m_scene);
        return {};
    }
    ModelSceneLoader loader([this](const QString& strFileName) { return m_application.ReadModel(strFileName); },
                            m_application.GetImageManager());
    loader.Load(strSource, *m_scene);
    return loader.GetWarnings();
}

QStringList Document::Save(const QString& strFileName)
{
    const QSharedPointer<ISceneSaver> saver = CreateSceneSaver(m_application.GetSerializers(), strFileName);
    saver->Save(strFileName, *m_scene);
    if (!QFileInfo::exists(strFileName)) // before anybody believes that all is saved
        throw SavingException(
            QStringLiteral("The file '%1' was not written by what saves such files").arg(strFileName));
    MoveTo(QFileInfo(strFileName).absoluteFilePath());
    m_scene->SetModified(false);
    return saver->GetWarnings();
}

/// The files of materials stay where they are, and count from the new folder.
void Document::MoveTo(const QString& strFileName)
{
    const QString oldFolder = FolderOf(m_scene->GetFileName());
    const QString newFolder = FolderOf(strFileName);
    m_scene->SetFileName(strFileName);
    if (newFolder == oldFolder) return;
    sSceneModifications planned;
    planned.strTitle = QStringLiteral("Save '%1'").arg(strFileName);
    planned.materialsChanged = true;
    const SceneBracket bracket(*m_scene, planned);
    for (IMaterial* const pMaterial : std::vector<IMaterial*>(m_scene->GetMaterials()))
        for (int i = 0; i < eMaterialSlotCount; ++i) {
            const auto slot = static_cast<eMaterialSlot>(i);
            const QString file = pMaterial->GetImageFile(slot);
            if (file.isEmpty()) continue;
            const FileReference reference = Rebased(file, oldFolder, newFolder);
            // That of an image without a file may be a name that a model gave it.
            if (reference.file.isEmpty() && pMaterial->GetImage(slot)) continue;
            static_cast<SceneMaterial*>(pMaterial)->RenameImageFile(slot, reference.text);
        }
}

QStringList Document::SavePicture(const QString& strFileName, const sRenderSettings& settings,
                                  const QString& strRenderer)
{
    CheckPictureFile(strFileName);
    const QString name = strRenderer.isEmpty() ? m_application.RendererNames().value(0) : strRenderer;
    const std::unique_ptr<IRender> renderer = m_application.CreateRenderer(name);
    QStringList missing; // what was named since the document was opened
    if (IImageManager* const pImages = m_application.GetImageManager()) missing = LoadSceneImages(*m_scene, *pImages);
    QStringList leftOut;
    WritePictureFile(strFileName, DrawPicture(*renderer, *m_scene, settings, leftOut));
    return missing + leftOut;
}

} // namespace Host
