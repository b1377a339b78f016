#pragma once

#include "lumenta/Export.h"

#include <QObject>
#include <QString>

#include <vector>

class ISnapshot;

/// Keeps states of a scene to come back to: of every node its matrix and
/// whether it is shown; the camera; the animation and its time. Trees and
/// materials are not kept.
///
/// **Who implements it:** the host. **Who calls it:** panels, scripts. What a snapshot
/// keeps can't be asked for, so documents are stored without them.
/// **Thread:** the scene's. **Ownership:** belongs to its scene and owns its
/// snapshots.
///
/// Operations take snapshots of this manager only.
/// \throws InvalidParameterException from any of them for null or a snapshot
///         that isn't one of these
class LUMENTA_EXPORT ISnapshotManager : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~ISnapshotManager() override;

    /// In the order that people gave them.
    virtual const std::vector<ISnapshot*>& GetSnapshots() const = 0;

    /// Keeps the present state, behind all others. Emits `insertSnapshot`.
    virtual const ISnapshot* Take(const QString& strName) = 0;

    /// Brings the state back, in one batch of the scene. Nodes that were removed
    /// since are passed over, nodes that came since stay as they are.
    virtual void Restore(const ISnapshot* pSnapshot) = 0;

    /// Emits `renameSnapshot`, unless it bears that name already.
    virtual void Rename(const ISnapshot* pSnapshot, const QString& strName) = 0;

    /// Gives it another place: emits `removeSnapshot`, then `insertSnapshot`, both
    /// with the list in its new order; the latter only where no slot has removed it
    /// in between. Where it stands there already, neither comes.
    /// \param nPosition held within the list
    virtual void Move(const ISnapshot* pSnapshot, int nPosition) = 0;

    /// Emits `removeSnapshot`. The snapshot can still be asked until control
    /// returns to the event loop.
    virtual void Remove(const ISnapshot* pSnapshot) = 0;

Q_SIGNALS:
    /// Now in the list, at a position.
    void insertSnapshot(const ISnapshot*, int);
    /// No longer in the list, or no longer in its place.
    void removeSnapshot(const ISnapshot*);
    /// Has a new name.
    void renameSnapshot(const ISnapshot*, const QString&);
};
