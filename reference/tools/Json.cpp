#include "reference/tools/Json.h"

#include "reference/tools/Texts.h"

#include <QJsonDocument>

namespace Host {

QString JsonText(const QJsonObject& facts)
{
    QStringList lines;
    const QStringList raw = QString::fromUtf8(QJsonDocument(facts).toJson()).split(QLatin1Char('\n'));
    for (const QString& line : raw)
        lines += PrintableJson(line);
    return lines.join(QLatin1Char('\n'));
}

QJsonArray Coordinates(const TVec3<float>& point)
{
    return {static_cast<double>(point.x), static_cast<double>(point.y), static_cast<double>(point.z)};
}

QString PointText(const QJsonValue& coordinates)
{
    QStringList numbers;
    const QJsonArray components = coordinates.toArray();
    for (const QJsonValue& each : components)
        numbers += NumberText(each.toDouble());
    return QLatin1Char('(') + numbers.join(QStringLiteral(", ")) + QLatin1Char(')');
}

} // namespace Host
