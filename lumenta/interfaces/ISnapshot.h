#pragma once

#include "lumenta/Export.h"

#include <QDateTime>
#include <QObject>
#include <QString>

/// A kept state of the scene, under a name.
///
/// **Who implements it:** the host. **Who calls it:** panels that list snapshots.
/// **Thread:** the scene's. **Ownership:** belongs to its ISnapshotManager, which announces its end by
/// `removeSnapshot`. Where `insertSnapshot` follows, it was only moved, which
/// nobody can know yet; so it can still be asked until control returns to the
/// event loop. What is kept is the manager's business.
class LUMENTA_EXPORT ISnapshot : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~ISnapshot() override;

    /// Shown to people.
    virtual QString GetName() const = 0;

    /// When it was taken, in UTC.
    virtual QDateTime GetTime() const = 0;
};
