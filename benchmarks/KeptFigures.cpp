#include "benchmarks/KeptFigures.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace Bench {

namespace {

const QString kKind = QStringLiteral("lumenta benchmarks 1");
const QString kKindKey = QStringLiteral("kind");
const QString kRows = QStringLiteral("rows");
const QString kNanoseconds = QStringLiteral("nanoseconds");
const QString kSpread = QStringLiteral("spread");

std::runtime_error Failure(const QString& fileName, const QString& problem)
{
    return std::runtime_error(QStringLiteral("%1: %2").arg(fileName, problem).toStdString());
}

QJsonObject ToJson(const Figures& figures)
{
    QJsonObject rows;
    for (const auto& [row, ways] : figures) {
        QJsonObject members;
        for (const auto& [way, figure] : ways)
            members.insert(QString::fromStdString(way),
                           QJsonObject{{kNanoseconds, figure.nanoseconds}, {kSpread, figure.spread}});
        rows.insert(QString::fromStdString(row), members);
    }
    return {{kKindKey, kKind}, {kRows, rows}};
}

} // namespace

Figures ReadFigures(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) throw Failure(fileName, file.errorString());
    QJsonParseError error;
    const QJsonObject top = QJsonDocument::fromJson(file.readAll(), &error).object();
    if (error.error != QJsonParseError::NoError)
        throw Failure(fileName, QStringLiteral("%1 at byte %2").arg(error.errorString()).arg(error.offset));
    if (top.value(kKindKey) != kKind)
        throw Failure(fileName, QStringLiteral("these are not figures of these benchmarks"));

    Figures figures;
    const QJsonObject rows = top.value(kRows).toObject();
    for (auto row = rows.begin(); row != rows.end(); ++row) {
        const QJsonObject ways = row->toObject();
        for (auto way = ways.begin(); way != ways.end(); ++way) {
            const QJsonObject figure = way->toObject();
            const double nanoseconds = figure.value(kNanoseconds).toDouble();
            if (!(nanoseconds > 0.0))
                throw Failure(fileName, QStringLiteral("%1/%2 has no time").arg(row.key(), way.key()));
            figures[row.key().toStdString()][way.key().toStdString()] = {nanoseconds, figure.value(kSpread).toDouble()};
        }
    }
    return figures;
}

void OpenForFigures(QSaveFile& file)
{
    if (!file.open(QIODevice::WriteOnly)) throw Failure(file.fileName(), file.errorString());
}

void WriteFigures(QSaveFile& file, const Figures& figures)
{
    const QByteArray text = QJsonDocument(ToJson(figures)).toJson();
    if (file.write(text) != text.size() || !file.commit()) throw Failure(file.fileName(), file.errorString());
}

} // namespace Bench
