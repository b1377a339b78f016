#pragma once

#include "lumenta/foundation/BBox.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace Host {

// What the facts about models and about documents have in common. Facts are
// gathered as JSON; texts for people are made of that.

/// "name" and "parameters".
QJsonObject MaterialFacts(const QString& name, const QMap<QString, QVariant>& parameters);

/// "min" and "max"; null for the empty box.
QJsonValue BoxFacts(const TBBox<float>& box);

/// Of one row, by key.
QStringList Cells(const QJsonObject& row, const QStringList& keys);

/// Rows of facts under a heading that counts them. A column that holds numbers
/// is called ">key".
QString ListText(const QString& heading, const QJsonArray& rows, const QStringList& columns);

QString BoxText(const QJsonValue& box);
QString MaterialsText(const QJsonArray& materials);
QString WarningsText(const QJsonArray& warnings);

} // namespace Host
