#pragma once

#include <QJsonObject>
#include <QStringList>

class IScene;

namespace Host {

/// What a document holds: its camera, nodes, materials, and which of their
/// textures are there.
QJsonObject DocumentFacts(const IScene& scene, const QString& source, const QStringList& warnings);

/// The same for people.
QString DocumentText(const QJsonObject& facts);

} // namespace Host
