#include "reference/tools/Failure.h"

namespace Host {

Failure FailureOf(const Exception& exception, const QString& subject)
{
    QString text = exception.GetErrorText();
    const QString lastLine = QStringLiteral("\nFile: ") + subject;
    if (text.endsWith(lastLine))
        text.chop(lastLine.size());

    // "The model 'x' can't be loaded: ..." says of x what the subject says already.
    const QString quoted = QLatin1Char('\'') + subject + QLatin1Char('\'');
    const int named = text.indexOf(quoted);
    const int colon = named < 0 ? -1 : text.indexOf(QLatin1String(": "), named + quoted.size());
    if (colon >= 0)
        text.remove(0, colon + 2);
    return {subject, text};
}

} // namespace Host
