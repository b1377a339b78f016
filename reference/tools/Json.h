#pragma once

#include "lumenta/foundation/Vector.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

namespace Host {

/// JSON that no terminal can be upset by: what QJsonDocument leaves raw is
/// escaped, except for the line ends between values.
QString JsonText(const QJsonObject& facts);

/// The components of a point. Reading them gives every bit back.
QJsonArray Coordinates(const TVec3<float>& point);

/// Such an array for people: "(1, 2, 3)".
QString PointText(const QJsonValue& coordinates);

} // namespace Host
