#pragma once

#include "lumenta/Export.h"

#include <QObject>

/// Writes something that is not a scene file: a drawing, a parts list, a model
/// for another program.
///
/// What exporters do has little in common. The contract is therefore only that
/// an exporter is one: what it can do stands in plain abstract classes of its
/// own, each with its own identifier (Q_DECLARE_INTERFACE), which it names in
/// Q_INTERFACES and which callers reach by `qobject_cast`. What goes wrong it
/// throws as an ExporterException.
///
/// **Who implements it:** a plug-in. **Who calls it:** the host and whoever knows
/// one of its sub-interfaces. **Thread:** the scene's. **Ownership:** belongs to
/// whoever had the plug-in make it.
class LUMENTA_EXPORT IExporter : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    /// Pure, so that nobody makes a bare exporter; it has a body all the same.
    ~IExporter() override = 0;
};
