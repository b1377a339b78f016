#pragma once

#include "lumenta/Export.h"
#include "lumenta/interfaces/ILogWriter.h"

/// The log of the application.
///
/// **Who implements it:** the host. **Who calls it:** plug-ins and services.
/// **Thread:** any; writers are called one at a time. **Ownership:** the host's;
/// writers stay with who made them.
class LUMENTA_EXPORT ILog : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~ILog() override;

    /// Hands a line to every writer, in the order in which they were added. A line
    /// that a writer itself writes meanwhile is dropped.
    virtual void Write(eLogLevel level, const QString& strText) = 0;

    /// From now on `pWriter` gets every line; once, however often it is added.
    /// It is not owned, and must be taken out before it is deleted.
    virtual void AddWriter(ILogWriter* pWriter) = 0;

    /// One that was never added is passed over.
    virtual void RemoveWriter(ILogWriter* pWriter) = 0;
};
