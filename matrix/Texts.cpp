#include "lumenta/foundation/BBox.h"
#include "lumenta/foundation/Color.h"
#include "lumenta/foundation/Conversions.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/foundation/Matrix2.h"
#include "lumenta/materials/MaterialXml.h"
#include "lumenta/script/ScriptArguments.h"
#include "matrix/Trials.h"

#include <QDebug>
#include <QScriptContext>
#include <QScriptEngine>

#include <cmath>
#include <limits>

// Numbers to texts, and back.

namespace Trials {

namespace {

constexpr int kRounds = 5000;

double AnyDouble(Random& random)
{
    const float a = AnyFloat(random);
    switch (random.Below(4)) {
    case 0:
        return double(a);
    case 1:
        return double(a) / 3.0;
    case 2:
        return double(a) * 1e200;
    default:
        return static_cast<double>(static_cast<int>(random.Below(200000)) - 100000) / 1000.0;
    }
}

/// Up to `limit` characters that numbers are written with.
QString AnyDigits(Random& random, std::uint32_t limit)
{
    static constexpr char kLetters[] = "0123456789012345678901234567890123456789.-,e ";
    QString text;
    for (std::uint32_t i = 1 + random.Below(limit); i > 0; --i)
        text += QLatin1Char(kLetters[random.Below(sizeof kLetters - 1)]);
    return text;
}

void AddRect(Sum& sum, const QRectF& rect)
{
    for (const double value : {rect.x(), rect.y(), rect.width(), rect.height()})
        sum.Add(value);
}

void Rectangles(Random& random, Sum& sum)
{
    const QRectF none(-1.0, -2.0, -3.0, -4.0);
    for (int i = 0; i < kRounds; ++i) {
        const double numbers[] = {AnyDouble(random), AnyDouble(random), AnyDouble(random), AnyDouble(random)};
        QRectF rect(numbers[0], numbers[1], numbers[2], numbers[3]);
        const QVariant text = QRectFToQVariant(rect);
        sum.Add(text.toString());
        AddRect(sum, QVariantToQRectF(text, none));
        QStringList parts;
        for (int k = 0; k < 4; ++k)
            parts << AnyDigits(random, 12).remove(QLatin1Char(' '));
        AddRect(sum, QVariantToQRectF(parts.join(QLatin1Char(' ')), none));
        // Numbers as this machine writes them.
        AddRect(sum, QVariantToQRectF(QString::number(numbers[0], 'f', 9) + QStringLiteral(" 1.5 -.25 7."), none));
    }
}

void Flags(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i)
        for (const QVariant& value : {QVariant(AnyDouble(random)), QVariant(AnyInt(random)), QVariant(AnyFloat(random)),
                                      QVariant(qulonglong{random.Next()} << 32), QVariant(AnyDigits(random, 2))})
            sum.Add(QVariantToBool(value));
}

void Materials(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds / 10; ++i) {
        QMap<QString, QVariant> parameters;
        for (int k = 0; k < 10; ++k) {
            const QString name = QStringLiteral("p%1").arg(k);
            switch (random.Below(4)) {
            case 0:
                parameters[name] = AnyDouble(random);
                break;
            case 1:
                parameters[name] = AnyFloat(random);
                break;
            case 2:
                parameters[name] = AnyInt(random);
                break;
            default:
                parameters[name] = AnyDigits(random, 8);
            }
        }
        // Attributes come in any order, so what is read counts, and how long the text is.
        const QByteArray xml = MaterialToXml(QString::number(i), parameters);
        sum.Add(xml.size());
        QMap<QString, QVariant> read;
        QString name;
        ReadMaterial(xml, name, read);
        sum.Add(name);
        for (auto entry = read.cbegin(); entry != read.cend(); ++entry)
            sum.Add(entry.key() + entry.value().toString());
    }
}

/// The engine takes some NaNs for pointers, so none but its own comes to scripts.
double ForScripts(double number)
{
    return std::isnan(number) ? std::numeric_limits<double>::quiet_NaN() : number;
}

/// The error that the engine was told of, and no longer.
void AddError(Sum& sum, QScriptEngine& engine)
{
    sum.Add(engine.hasUncaughtException() ? engine.uncaughtException().toString() : QString());
    engine.clearExceptions();
}

void Arguments(Random& random, Sum& sum)
{
    QScriptEngine engine;
    const QString name = QStringLiteral("size");
    for (int i = 0; i < kRounds; ++i) {
        const QScriptValue value = random.Below(8) == 0 ? QScriptValue(&engine, AnyDigits(random, 5))
                                                        : QScriptValue(&engine, ForScripts(AnyDouble(random)));
        const float low = AnyFloat(random);
        const float high = AnyFloat(random);
        float number = -1.0f;
        sum.Add(parseScriptValueToFloat(value, name, &engine, low, high, number));
        sum.Add(number);
        AddError(sum, engine);
        const int least = AnyInt(random);
        int whole = -1;
        sum.Add(parseScriptValueToInt(value, name, &engine, least, AnyInt(random), whole));
        sum.Add(whole);
        AddError(sum, engine);
        QString text;
        bool flag = false;
        sum.Add(parseScriptValueToString(value, name, &engine, text)); // refuses a number in words
        AddError(sum, engine);
        sum.Add(parseScriptValueToBool(value, name, &engine, flag));
        AddError(sum, engine);
    }
}

void DebugOutput(Random& random, Sum& sum)
{
    for (int i = 0; i < kRounds; ++i) {
        QString text;
        const Vec3 v = AnyVector(random);
        const TBBox<float> box(v, AnyVector(random));
        QDebug(&text) << AnyTransform(random) << v << TVec2<float>{v.y, v.z} << box << ColorF{v.x, v.y, v.z, 0.1f}
                      << Matrix2(v.x, v.y, v.z, 0.1f, 1e-7f, 1e10f);
        // Of a number that is none the sign is open.
        sum.Add(text.replace(QLatin1String("-nan"), QLatin1String("nan")));
    }
}

} // namespace

std::vector<Trial> Texts()
{
    return {{"texts", "QRectFToQVariant, QVariantToQRectF", Rectangles},
            {"texts", "QVariantToBool", Flags},
            {"texts", "MaterialToXml, ReadMaterial", Materials},
            {"texts", "parseScriptValueTo...", Arguments},
            {"texts", "debug output", DebugOutput}};
}

} // namespace Trials
