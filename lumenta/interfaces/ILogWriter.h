#pragma once

#include "lumenta/Export.h"

#include <QObject>
#include <QString>

/// How much a line of the log matters.
enum eLogLevel { eLogDebug, eLogInfo, eLogWarning, eLogError };

/// Gets the lines of the log: a file, a window, a terminal.
///
/// **Who implements it:** the host or a plug-in. **Who calls it:** an ILog that
/// it was added to, from any thread, one call at a time. **Ownership:** stays with
/// who made it, who takes it out of the log before it ends.
class LUMENTA_EXPORT ILogWriter : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~ILogWriter() override;

    /// \param strText one line, without its end. Failures stay here: a log has
    ///                nobody to tell them to.
    virtual void Write(eLogLevel level, const QString& strText) = 0;
};
