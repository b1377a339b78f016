#pragma once

#include <QByteArray>
#include <QStringList>

class IScene;

namespace Host {

/// The body of a document that is to lie in `folder`.
/// \param warnings receives what is left out
/// \throws SavingException the scene holds what the format can't keep
QByteArray WriteDocument(const IScene& scene, const QString& folder, QStringList& warnings);

} // namespace Host
