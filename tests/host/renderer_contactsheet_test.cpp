#include "lumenta/foundation/Exceptions.h"
#include "reference/host/ContactSheet.h"

#include <QGuiApplication>
#include <QtTest>

using namespace Host;

namespace {

std::vector<SheetPicture> Coloured(const std::vector<Qt::GlobalColor>& colours)
{
    std::vector<SheetPicture> pictures;
    for (const Qt::GlobalColor colour : colours) {
        QImage image(30, 20, QImage::Format_RGB32);
        image.fill(colour);
        pictures.push_back({image, QStringLiteral("t = 480 ms")});
    }
    return pictures;
}

/// Whether something dark is written in a part of the sheet.
bool IsWritten(const QImage& sheet, const QRect& part)
{
    for (int y = part.top(); y <= part.bottom(); ++y)
        for (int x = part.left(); x <= part.right(); ++x)
            if (qGray(sheet.pixel(x, y)) < 150)
                return true;
    return false;
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

/// Runs twice: without a QGuiApplication, which cannot write, and with one. The
/// build runs all of it once more in a world without fonts.
class RendererContactSheet : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void picturesStandInReadingOrder()
    {
        const QImage sheet =
            MakeContactSheet(Coloured({Qt::red, Qt::green, Qt::blue}), QStringLiteral("A title"), 2);
        const QPoint first = FirstOf(sheet, Qt::red);
        const QPoint second = FirstOf(sheet, Qt::green);
        const QPoint third = FirstOf(sheet, Qt::blue);
        QVERIFY(first.x() >= 0 && second.x() >= first.x() + 30 && second.y() == first.y());
        QVERIFY(third.x() == first.x() && third.y() >= first.y() + 20);
        QVERIFY(sheet.height() >= third.y() + 20 && sheet.width() >= second.x() + 30);
    }

    void writesWhereItCan()
    {
        const bool canWrite = qobject_cast<QGuiApplication*>(QCoreApplication::instance())
            && qEnvironmentVariableIsEmpty("FONTCONFIG_FILE");
        const QImage sheet = MakeContactSheet(Coloured({Qt::white}), QStringLiteral("A title"));
        const QPoint place = FirstOf(sheet, Qt::white);
        QCOMPARE(IsWritten(sheet, {0, 0, sheet.width(), place.y()}), canWrite);
        QCOMPARE(IsWritten(sheet, {0, place.y() + 20, sheet.width(), sheet.height() - place.y() - 20}), canWrite);
    }

    void leavesNoRoomForWhatIsNotWritten()
    {
        std::vector<SheetPicture> pictures = Coloured({Qt::red});
        pictures[0].caption.clear();
        QCOMPARE(MakeContactSheet(pictures, QString()).size(), QSize(30 + 48, 20 + 48));
    }

    void refusesPicturesThatDoNotFit_data()
    {
        QTest::addColumn<int>("pictures");
        QTest::addColumn<QString>("details");
        QTest::newRow("none") << 0 << "There is no picture.";
        QTest::newRow("of two sizes") << 2 << "The pictures differ in size.";
    }

    void refusesPicturesThatDoNotFit()
    {
        QFETCH(int, pictures);
        QFETCH(QString, details);
        std::vector<SheetPicture> given;
        for (int i = 0; i < pictures; ++i)
            given.push_back({QImage(10 + i, 10, QImage::Format_RGB32), QString()});
        try {
            MakeContactSheet(given, QString());
            QFAIL("Nothing was thrown");
        } catch (const InvalidParameterException& e) {
            QCOMPARE(e.GetErrorText(), QStringLiteral("Invalid parameter 'pictures' passed to method "
                                                      "'MakeContactSheet':\n")
                                           + details);
        }
    }
};

int main(int argc, char* argv[])
{
    int failures = 0;
    {
        const QCoreApplication application(argc, argv);
        RendererContactSheet test;
        failures += QTest::qExec(&test, argc, argv);
    }
    const QGuiApplication application(argc, argv);
    RendererContactSheet test;
    return failures + QTest::qExec(&test, argc, argv);
}

#include "renderer_contactsheet_test.moc"
