#include "lumenta/foundation/Conversions.h"

#include <QStringList>

#include <algorithm>

namespace {

/// Shortens a number's text as stored texts have always been shortened: the
/// last decimal is dropped unseen, trailing `zero` characters go, and the
/// decimals that stay are kept in the order met, from the back.
QString TrimTrailing(const QString& text, QChar zero)
{
    const int point = text.lastIndexOf(QLatin1Char('.'));
    if (point < 0)
        return text;

    QString kept;
    for (int i = text.size() - 2; i > point; --i) {
        if (!kept.isEmpty() || text.at(i) != zero)
            kept.append(text.at(i));
    }
    return kept.isEmpty() ? text.left(point) : text.left(point + 1) + kept;
}

QString NumberToText(qreal number)
{
    return TrimTrailing(QStringLiteral("%1").arg(number, 0, 'f', -1, QLatin1Char(' ')), QLatin1Char('0'));
}

} // namespace

bool QVariantToBool(const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return value.toInt() != 0;
    default:
        return value.toString().compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
    }
}

QVariant QRectFToQVariant(QRectF& rect)
{
    return NumberToText(rect.x()) + QLatin1Char(' ') + NumberToText(rect.y()) + QLatin1Char(' ')
        + NumberToText(rect.width()) + QLatin1Char(' ') + NumberToText(rect.height());
}

QRectF QVariantToQRectF(const QVariant& value, const QRectF& defaultValue)
{
    const QString text = value.toString();
    if (text.isEmpty() || text.contains(QLatin1Char('e'), Qt::CaseInsensitive))
        return defaultValue;

    const QStringList parts = text.split(QLatin1Char(' '), Qt::KeepEmptyParts, Qt::CaseSensitive);
    if (parts.size() != 4)
        return defaultValue;

    float numbers[4];
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        numbers[i] = parts.at(i).toFloat(&ok);
        if (!ok)
            return defaultValue;
    }
    return QRectF(qreal(numbers[0]), qreal(numbers[1]), qreal(numbers[2]), qreal(numbers[3]));
}

float pixelsToMM(float pixels, float dpi)
{
    return pixels * 25.4f / dpi;
}

float mmToPixels(float mm, float dpi)
{
    return mm * dpi / 25.4f;
}

QTime millisecondsToQTime(unsigned long long ms)
{
    // From 24 on every hour is as invalid as the next; an int could not hold them all.
    const int hours = static_cast<int>(std::min(ms / 3600000, 24ULL));
    const int minutes = static_cast<int>(ms / 60000 % 60);
    const int seconds = static_cast<int>(ms / 1000 % 60);
    return QTime(hours, minutes, seconds, static_cast<int>(ms % 1000));
}
