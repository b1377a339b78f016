#pragma once

#include "lumenta/interfaces/SignalArguments.h"
#include "lumenta/properties/PropertyWidgetHelper.h"

#include <QPointer>
#include <QScrollArea>

class IGenerator;
class IImageManager;
class IMaterial;
class IScene;
class IUserInterface;

namespace Host {

class PropertyForm;

/// Shows the properties of one thing and edits them. It follows the thing's
/// signals, and is empty once the thing ends or leaves its scene.
///
/// Of files that lie in the folder of the scene's file the names are stored
/// relative to it. Images can be chosen where the application has an image
/// manager, models where it has formats.
class PropertyPanel final : public QScrollArea {
    Q_OBJECT

public:
    /// \param application, document outlive the panel; the document has a user interface
    PropertyPanel(IApplicationContext& application, IDocumentContext& document, QWidget* pParent = nullptr);

    // What is null leaves the panel empty.

    void ShowMaterial(IMaterial* pMaterial);

    /// A model that is chosen replaces a mesh, and is added to any other node.
    void ShowNode(INode* pNode);

    /// By its own editor, where it has one.
    void ShowGenerator(IGenerator* pGenerator);

    void Clear();

    // As wide as the rows need: they are never scrolled sideways.

    QSize sizeHint() const override { return QScrollArea::sizeHint().expandedTo(minimumSizeHint()); }
    QSize minimumSizeHint() const override;

private:
    PropertyForm& Begin(QObject& subject);
    void AddSlots(PropertyForm& form, IMaterial& material);
    void AddParameters(PropertyForm& form, IGenerator& generator);
    void SetImage(IMaterial& material, eMaterialSlot slot, const QString& path);
    void SetModel(INode& node, const QString& path);
    QString Folder() const;
    void ClearIfGone();

    IApplicationContext& m_application;
    IDocumentContext& m_document;
    PropertyWidgetHelper m_sources;
    QPointer<QObject> m_pSubject;
    PropertyForm* m_pForm = nullptr;
    QPointer<INode> m_pNode; ///< What is shown, if it is a scene's.
    QPointer<IMaterial> m_pMaterial;
};

} // namespace Host
