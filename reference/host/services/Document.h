#pragma once

#include "lumenta/platform/IDocumentContext.h"
#include "reference/host/document/Scene.h"
#include "reference/host/script/IScriptServices.h"
#include "reference/host/script/ScriptRunner.h"

#include <QObject>
#include <QStringList>

namespace Host {

class Application;

/// One open document: a scene, and what belongs to it.
///
/// The application's thread.
class Document final : public QObject, public IDocumentContext, public IScriptServices {
    Q_OBJECT
    Q_INTERFACES(IDocumentContext)

public:
    /// \param application outlives the document
    explicit Document(const Application& application, QObject* pParent = nullptr);

    Host::Scene* GetScene() const override { return m_scene.get(); }
    IUserInterface* GetUserInterface() const override { return m_pUserInterface; }
    ScriptRunner* GetScriptRunner() const override { return m_scriptRunner.get(); }

    /// \param pUserInterface stays the caller's and outlives the document; null for none
    void SetUserInterface(IUserInterface* pUserInterface) { m_pUserInterface = pUserInterface; }

    const Application& GetApplication() const { return m_application; }

    /// Opens a scene file, or a model as a new scene, or what the program makes
    /// itself, as in ":bottle". Only a scene file is something to save into: the
    /// document of a model has its file name, too, to find textures by.
    /// \return what could not be taken over, in words for a person
    /// \throws FileException, LoadingException; then the scene is as it was
    QStringList Open(const QString& strSource);

    /// Writes the document by the saver that fits the file name. The file is then
    /// the document's own.
    /// \return what was left out, in words for a person
    /// \throws FileException, SavingException
    /// \throws LoadingException no saver fits
    QStringList Save(const QString& strFileName) override;

    /// \throws FileException, SavingException
    /// \throws LoadingException no plug-in draws
    /// \throws FactoryException none of this name does
    QStringList SavePicture(const QString& strFileName, const sRenderSettings& settings,
                            const QString& strRenderer) override;

private:
    QStringList Import(const QString& strSource);
    void MoveTo(const QString& strFileName);

    const Application& m_application;
    std::unique_ptr<Host::Scene> m_scene;
    IUserInterface* m_pUserInterface = nullptr;
    std::unique_ptr<ScriptRunner> m_scriptRunner;
};

} // namespace Host
