#pragma once

#include "lumenta/Export.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QVariant>

class IMeshNodeBuilder;

/// A value that shapes what a generator makes.
struct sGeneratorParameter {
    QString strName;  ///< By which it is set.
    QString strTitle; ///< Shown to people.
    QVariant value;   ///< Of a new generator; its type is the parameter's type.
    QVariant least;   ///< Invalid where there is no limit.
    QVariant most;    ///< Likewise.
};

/// Values that go together well: "Wine bottle", "Flask".
struct sGeneratorPreset {
    QString strTitle;               ///< Shown to people.
    QMap<QString, QVariant> values; ///< By the names of parameters.
};

/// Makes meshes out of numbers: a box, a sphere, a bottle.
///
/// **Who implements it:** a plug-in. **Who calls it:** the host, when it makes
/// the meshes and whenever they change; panels.
/// **Thread:** the scene's. **Ownership:** belongs to whoever had the plug-in
/// make it.
class LUMENTA_EXPORT IGenerator : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~IGenerator() override;

    /// Hands over the meshes of the present values: calls BeginModel() of the
    /// builder, AddMeshNode() for each mesh, EndModel().
    /// \throws whatever the builder throws
    virtual void Generate(IMeshNodeBuilder& builder) = 0;

    /// A widget to edit the values with, which the caller owns. Null unless
    /// overridden: the host then makes its own panel from GetParameters().
    virtual QObject* CreateEditor(QObject* pParent);

    /// What can be set. None unless overridden.
    virtual QList<sGeneratorParameter> GetParameters() const;

    /// None unless overridden.
    virtual QList<sGeneratorPreset> GetPresets() const;

    /// Invalid for a name that is none of the parameters.
    virtual QVariant GetValue(const QString& strName) const = 0;

    /// Emits `changed`, unless the value is what it was. A number is held within
    /// its limits.
    /// \throws InvalidParameterException no such parameter, or not a value of its type
    virtual void SetValue(const QString& strName, const QVariant& value) = 0;

Q_SIGNALS:
    /// The meshes are no longer those that Generate() made.
    void changed();
};
