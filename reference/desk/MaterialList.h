#pragma once

#include <QListWidget>

class IDocumentContext;
class IMaterial;

namespace Host {

/// The materials of a scene, each with a ball that wears it. They can be dragged:
/// see MakeMimeData().
class MaterialList final : public QListWidget {
    Q_OBJECT

public:
    /// \param document outlives the list
    explicit MaterialList(IDocumentContext& document, QWidget* pParent = nullptr);

    /// Null where none is chosen.
    IMaterial* GetChosen() const;

Q_SIGNALS:
    /// A hand has chosen one.
    void chosen(IMaterial* pMaterial);

protected:
    void startDrag(Qt::DropActions actions) override;

private:
    void Rebuild();
    void Show(int nRow);

    IDocumentContext& m_document;
};

/// A ball that wears the material, lit from the upper left; linear colours are
/// shown as a screen does.
QPixmap MaterialSwatch(const IMaterial& material, int nSide);

} // namespace Host
