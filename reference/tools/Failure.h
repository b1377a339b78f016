#pragma once

#include "lumenta/foundation/Exceptions.h"

#include <QString>

namespace Host {

/// Ends the command with the line "lumenta: <subject>: <text>" and exit status
/// 1. The subject is mostly a file. Thrown by value.
struct Failure {
    QString subject;
    QString text;
};

/// The command line asks for what does not exist: the line "lumenta: <text>;
/// see 'lumenta help <verb>'" and exit status 2. Thrown by value.
struct UsageError {
    QString verb; ///< Empty before a verb is known.
    QString text;
};

/// What `exception` says about the file `subject`, without naming it twice.
Failure FailureOf(const Exception& exception, const QString& subject);

} // namespace Host
