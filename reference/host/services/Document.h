#pragma once

#include "lumenta/platform/IDocumentContext.h"
#include "reference/host/document/Scene.h"

#include <QObject>
#include <QStringList>

namespace Host {

class Application;

/// One open document: a scene, and what belongs to it.
///
/// The application's thread.
class Document final : public QObject, public IDocumentContext {
    Q_OBJECT
    Q_INTERFACES(IDocumentContext)

public:
    /// \param application outlives the document
    explicit Document(const Application& application, QObject* pParent = nullptr);

    Host::Scene* GetScene() const override { return m_scene.get(); }
    IUserInterface* GetUserInterface() const override { return m_pUserInterface; }
    IScriptRunner* GetScriptRunner() const override { return nullptr; }

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
    QStringList Save(const QString& strFileName);

private:
    QStringList Import(const QString& strSource);

    const Application& m_application;
    std::unique_ptr<Host::Scene> m_scene;
    IUserInterface* m_pUserInterface = nullptr;
};

} // namespace Host
