#include "lumenta/foundation/Exceptions.h"
#include "reference/host/ContactSheet.h"

#include <QGuiApplication>
#include <QtTest>

using namespace Host;

namespace {

std::vector<SheetPicture> Pictures(int count, const QString& caption)
{
    QImage image(30, 20, QImage::Format_RGB32);
    image.fill(Qt::white);
    return std::vector<SheetPicture>(static_cast<std::size_t>(count), {image, caption});
}

QPoint FirstOf(const QImage& sheet, Qt::GlobalColor colour)
{
    for (int y = 0; y < sheet.height(); ++y)
        for (int x = 0; x < sheet.width(); ++x)
            if (sheet.pixelColor(x, y) == QColor(colour))
                return {x, y};
    return {-1, -1};
}

} // namespace

/// The build runs it once more in a world without fonts.
class RendererContactSheet : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // As many columns as asked for; a square of nine; rows of four where they
    // come out even; seven as nearly square as can be.
    void picturesStandInReadingOrder()
    {
        const int cases[][3] = {{3, 2, 2}, {9, 0, 3}, {8, 0, 4}, {7, 0, 3}};
        for (const auto& [count, asked, columns] : cases) {
            std::vector<SheetPicture> pictures = Pictures(count, QString());
            pictures[0].image.fill(Qt::red);
            pictures[static_cast<std::size_t>(columns - 1)].image.fill(Qt::green);
            pictures[static_cast<std::size_t>(columns)].image.fill(Qt::blue);
            const QImage sheet = MakeContactSheet(pictures, QString(), asked);
            const QPoint first = FirstOf(sheet, Qt::red);
            const QPoint last = FirstOf(sheet, Qt::green);
            const QPoint next = FirstOf(sheet, Qt::blue);
            QVERIFY(first.x() >= 0 && last.x() >= first.x() + 30 * (columns - 1) && last.y() == first.y());
            QVERIFY(next.x() == first.x() && next.y() >= first.y() + 20 && next.y() + 20 <= sheet.height());
            QVERIFY(last.x() + 60 > sheet.width()); // no column is left empty
        }
    }

    // Without an application it cannot, nor without fonts.
    void writesWhereItCanAndElseLeavesNoRoom()
    {
        const auto sheet = [](const QString& caption, const QString& title) {
            return MakeContactSheet(Pictures(1, caption), title);
        };
        const bool canWrite = qobject_cast<QGuiApplication*>(QCoreApplication::instance())
                              && qEnvironmentVariableIsEmpty("FONTCONFIG_FILE");
        const QImage written = sheet(QStringLiteral("0 ms"), QStringLiteral("A"));
        QCOMPARE(sheet(QStringLiteral("9 ms"), QStringLiteral("A")) != written, canWrite);
        QCOMPARE(sheet(QStringLiteral("0 ms"), QStringLiteral("B")) != written, canWrite);
        const auto titled = [](QChar end) { // too long: its middle is left out
            return MakeContactSheet(Pictures(8, QString()), QString(200, QLatin1Char('a')) + end, 8);
        };
        QCOMPARE(titled(QLatin1Char('A')) != titled(QLatin1Char('B')), canWrite);
        QCOMPARE(sheet(QString(), QString()).size(), QSize(30 + 48, 20 + 48));
        QCOMPARE(written.size() == QSize(30 + 48, 20 + 48), !canWrite);
    }

    void refusesPicturesThatDoNotFit()
    {
        const std::pair<int, const char*> cases[] = {{0, "There is no picture."}, {2, "The pictures differ in size."}};
        for (const auto& [count, details] : cases) {
            std::vector<SheetPicture> pictures = Pictures(count, QString());
            if (count > 0)
                pictures.back().image = QImage(30, 19, QImage::Format_RGB32);
            try {
                MakeContactSheet(pictures, QString());
                QFAIL("Nothing was thrown");
            } catch (const InvalidParameterException& e) {
                QCOMPARE(e.GetErrorText(),
                         QString("Invalid parameter 'pictures' passed to method 'MakeContactSheet':\n") + details);
            }
        }
    }
};

QTEST_APPLESS_MAIN(RendererContactSheet)
#include "renderer_contactsheet_test.moc"
