#include "reference/plugins/assimp-loader/Report.h"

#include "lumenta/foundation/Exceptions.h"

namespace Host {

Report::Report(const QString& strFileName)
    : m_strFileName(strFileName)
{
}

void Report::Warn(const QString& strSentence)
{
    if (!m_warnings.contains(strSentence))
        m_warnings.append(strSentence);
}

void Report::Refuse(const QString& strReason) const
{
    // Both at once: a file name may hold a "%2" of its own.
    throw LoadingException(QStringLiteral("The model '%1' can't be loaded: %2").arg(m_strFileName, strReason));
}

} // namespace Host
