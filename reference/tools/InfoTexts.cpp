#include "reference/tools/InfoTexts.h"

#include "reference/tools/Json.h"
#include "reference/tools/Texts.h"

#include <QColor>

namespace Host {

namespace {

QJsonValue ParameterValue(const QVariant& value)
{
    return value.userType() == QMetaType::QColor ? value.value<QColor>().name() : QJsonValue::fromVariant(value);
}

} // namespace

QJsonObject MaterialFacts(const QString& name, const QMap<QString, QVariant>& parameters)
{
    QJsonObject facts;
    for (auto each = parameters.begin(); each != parameters.end(); ++each)
        facts.insert(each.key(), ParameterValue(each.value()));
    return {{QStringLiteral("name"), name}, {QStringLiteral("parameters"), facts}};
}

QJsonValue BoxFacts(const TBBox<float>& box)
{
    if (box.IsEmpty()) return QJsonValue::Null;
    return QJsonObject{{QStringLiteral("min"), Coordinates(box.min)}, {QStringLiteral("max"), Coordinates(box.max)}};
}

QStringList Cells(const QJsonObject& row, const QStringList& keys)
{
    QStringList cells;
    for (const QString& key : keys) {
        const QJsonValue value = row.value(key);
        if (value.isBool())
            cells += value.toBool() ? QStringLiteral("yes") : QStringLiteral("no");
        else
            cells += value.isDouble() ? NumberText(value.toDouble()) : value.toString();
    }
    return cells;
}

QString ListText(const QString& heading, const QJsonArray& rows, const QStringList& columns)
{
    QStringList keys = columns;
    keys.replaceInStrings(QStringLiteral(">"), QString());
    Table table(columns);
    for (const QJsonValue& row : rows)
        table.AddRow(Cells(row.toObject(), keys));
    return QStringLiteral("\n%1 (%2)\n").arg(heading).arg(rows.size()) + (rows.isEmpty() ? QString() : table.Text());
}

QString BoxText(const QJsonValue& box)
{
    return box.isNull()
               ? QStringLiteral("empty")
               : PointText(box[QStringLiteral("min")]) + QStringLiteral(" to ") + PointText(box[QStringLiteral("max")]);
}

QString MaterialsText(const QJsonArray& materials)
{
    QString text = QStringLiteral("\nMaterials (%1)\n").arg(materials.size());
    for (const QJsonValue& material : materials) {
        const QString name = material[QStringLiteral("name")].toString();
        text += QStringLiteral("  %1\n").arg(name.isEmpty() ? QStringLiteral("(unnamed)") : Printable(name));
        const QJsonObject parameters = material[QStringLiteral("parameters")].toObject();
        const QStringList keys = parameters.keys();
        for (const QString& key : keys)
            text +=
                QStringLiteral("    %1: %2\n").arg(Printable(key), Printable(Cells(parameters, {key}).constFirst()));
    }
    return text;
}

QString WarningsText(const QJsonArray& warnings)
{
    QString text = QStringLiteral("\nWarnings (%1)\n").arg(warnings.size());
    for (const QJsonValue& warning : warnings)
        text += QStringLiteral("  %1\n").arg(Printable(warning.toString()));
    return text;
}

} // namespace Host
