// The verb that tells what lies under a pixel, compared with what is known of
// the model, with what is drawn, and with its own maps.

#include "tests/tools/CommandRunner.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <cmath>

namespace {

const QString kWuson = QStringLiteral("/usr/share/assimp/models/X/Testwuson.X --animation 0 ");
const QRgb kBackground = qRgb(0xe4, 0xe4, 0xe4);

/// A square of a given size, which stands at a distance from the origin.
QByteArray Square(const QByteArray& name, double half, double aside)
{
    QByteArray text = "g " + name + "\n";
    for (const auto& [x, y] : {std::pair(-half, -half), {half, -half}, {half, half}, {-half, half}})
        text += "v " + QByteArray::number(aside + x) + ' ' + QByteArray::number(aside + y) + ' '
                + QByteArray::number(aside) + '\n';
    return text + "f 1 2 3\nf 1 3 4\n";
}

/// A square that jumps by 2.5.
const char kJump[] = R"(xof 0303txt 0032
Frame World {
  Frame Box {
    Mesh Side { 4; -0.5;0.0;0.0;, 0.5;0.0;0.0;, 0.5;1.0;0.0;, -0.5;1.0;0.0;; 2; 3;0,2,1;, 3;0,3,2;; }
  }
}
AnimTicksPerSecond { 1000; }
AnimationSet Jump {
  Animation { { Box } AnimationKey { 2; 2; 0;3;0.0,0.0,0.0;;, 500;3;0.0,2.5,0.0;;; } }
}
)";

/// Three digits each; 0 for what is within the tolerance of picking where things are a `unit` or two large.
QString Numbers(const QJsonValue& point, double unit)
{
    QStringList numbers;
    const QJsonArray array = point.toArray();
    for (const QJsonValue& each : array) {
        const double number = each.toDouble();
        numbers += std::fabs(number) < 3e-4 * unit ? "0" : QString::number(number, 'g', 3);
    }
    return numbers.join(' ');
}

/// Whether `holds` is true somewhere in the square around a pixel.
template <typename Holds>
bool Around(QPoint pixel, int reach, const QImage& picture, const Holds& holds)
{
    for (int y = std::max(pixel.y() - reach, 0); y <= std::min(pixel.y() + reach, picture.height() - 1); ++y)
        for (int x = std::max(pixel.x() - reach, 0); x <= std::min(pixel.x() + reach, picture.width() - 1); ++x)
            if (holds(QPoint(x, y))) return true;
    return false;
}

/// In a picture without floor the backdrop is the same along each row, but for some noise.
bool IsDrawn(const QImage& picture, QPoint pixel)
{
    const QColor here = picture.pixelColor(pixel);
    const QColor there = picture.pixelColor(0, pixel.y());
    return std::max({std::abs(here.red() - there.red()), std::abs(here.green() - there.green()),
                     std::abs(here.blue() - there.blue())})
           > 10;
}

} // namespace

class PickCommandTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        qputenv("LC_ALL", "C");
        m_folder = std::make_unique<QTemporaryDir>();
        WriteFile(Path("jump.x"), kJump);
        WriteFile(Path("huge.obj"), Square("wall", 5e6, 0.0));
        WriteFile(Path("tiny.obj"), Square("wall", 1e-6, 0.0));
        WriteFile(Path("far.obj"), Square("wall", 50.0, 5e4));
        WriteFile(Path("odd.obj"), Square("a/b\\c\x1b", 0.5, 0.0));
    }

    void FindsAPoint_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("found"); // hit, node, mesh, point in the model, point in the world
        QTest::addColumn<double>("unit");
        const auto row = [](const char* name, const QString& words, const QString& found, double unit = 1.0) {
            QTest::newRow(name) << words << found << unit;
        };
        const QString box = "node /jump/Box Box ";
        row("the middle of a square", "jump.x 32,32", box + "(0 0.5 0) (0 0 0.5)");
        row("the same, half a second later", "jump.x 32,32 --time 500", box + "(0 3 0) (0 0 0.5)");
        row("from behind", "jump.x 32,32 --azimuth 180", box + "(0 0.5 0) (0 0 0.5)");
        row("lying, seen from above", "jump.x 32,32 --up z --elevation 89", box + "(0 0.5 0) (0 0.5 0)");
        row("beside the square", "jump.x 1,1", "nothing   () ()");
        // The camera is 2.0153 away and 0.5 above it: 2.0153 - 0.5 / (31/32 tan 15°)
        row("on the floor before it", "jump.x 32,63", "ground   (0 0 0.0891) (0 -0.0891 0)");
        row("on no floor", "jump.x 32,63 --no-ground", "nothing   () ()");
        row("ten million large", "huge.obj 32,32", "node /huge/wall wall (0 0 0) (0 0 0.5)", 1e7);
        row("millionths small", "tiny.obj 32,32", "node /tiny/wall wall (0 0 0) (0 0 1)", 1e-6);
        row("far aside", "far.obj 32,32", "node /far/wall wall (5e+04 5e+04 5e+04) (0 0 50)", 100.0);
        row("an odd name", "odd.obj 32,32", "node /odd/a\\/b\\\\c\\u001b a/b\\c\x1b (0 0 0) (0 0 0.5)");
    }

    void FindsAPoint()
    {
        QFETCH(QString, words);
        QFETCH(double, unit);
        const QJsonValue facts = Facts("--size 64x64 --azimuth 0 --elevation 0 " + words);
        const QJsonValue pixel = facts["pixels"][0];
        QStringList found;
        for (const QString key : {"hit", "node", "mesh"})
            found += pixel[key].toString();
        found += '(' + Numbers(pixel["model"], unit) + ')';
        found += '(' + Numbers(pixel["world"], unit * facts["scale"].toDouble()) + ')';
        QTEST(found.join(' '), "found");
        // The nearest point of the square fills the picture, but for a margin of 8 %.
        if (words == "jump.x 32,32")
            QVERIFY(std::fabs(pixel["distance"].toDouble() - 0.5 * 1.08 / std::tan(M_PI / 12.0)) < 1e-3);
    }

    void PrintsATable()
    {
        QCOMPARE(Run("pick jump.x --size 64x64 --no-ground 0,0 9,9").output,
                 QString("  pixel  node     mesh  world  in the model  distance\n"
                         "    0,0  nothing  -     -      -                    -\n"
                         "    9,9  nothing  -     -      -                    -\n"));
    }

    /// The map is made another way than single pixels are.
    void MapsWhatSinglePixelsTell()
    {
        QString words = ":figure --time 300 --size 96x96 --map map.png";
        for (int i = 0; i < 96 * 96; i += 11)
            words += QString(" %1,%2").arg(i % 96).arg(i / 96);
        const QJsonArray pixels = Facts(words)["pixels"].toArray();
        const QImage map(Path("map.png"));
        QMap<QString, QRgb> colours;
        for (const QJsonValue& pixel : pixels) {
            const QRgb colour = map.pixel(pixel["pixel"][0].toInt(), pixel["pixel"][1].toInt());
            QCOMPARE(colours.insert(pixel["node"].toString(), colours.value(pixel["node"].toString(), colour)).value(),
                     colour);
        }
        QCOMPARE(colours[QString()], kBackground);
        QCOMPARE(colours.size(), 7); // all of the figure's nodes, each of a colour of its own
        QCOMPARE(QSet<QRgb>(colours.cbegin(), colours.cend()).size(), 7);

        // The colour stays, whatever is seen; the legend stands beside the same map.
        QCOMPARE(Run("pick :figure --azimuth 200 --size 96x96 --map back.png").exitCode, 0);
        QCOMPARE(QImage(Path("back.png")).pixel(48, 50), colours["/:figure/jumper"]);
        QCOMPARE(Run("pick " + words + " --legend").exitCode, 0);
        const QImage legend(Path("map.png"));
        QVERIFY(legend.width() > map.width());
        QCOMPARE(legend.copy(map.rect()), map);
    }

    /// Needles all around, thinner than the tolerance of picking: they are met beside themselves.
    void MapsNeedles()
    {
        QByteArray needles;
        for (int i = 0; i < 40; ++i) {
            for (const auto& [radius, angle] : {std::pair(0.1, 0.0), {1.0, 0.0}, {1.0, 1e-4}})
                needles += "v " + QByteArray::number(radius * std::cos(0.16 * i + angle), 'g', 9) + ' '
                           + QByteArray::number(radius * std::sin(0.16 * i + angle), 'g', 9) + " 0\n";
            needles += "f -3 -2 -1\n";
        }
        WriteFile(Path("needles.obj"), needles);
        QString words = "needles.obj --size 96x96 --azimuth 0 --elevation 0 --map map.png";
        for (int i = 0; i < 96 * 96; ++i)
            words += QString(" %1,%2").arg(i % 96).arg(i / 96);
        const QJsonArray pixels = Facts(words)["pixels"].toArray();
        const QImage map(Path("map.png"));
        int nPicked = 0;
        for (int i = 0; i < 96 * 96; ++i) {
            nPicked += !pixels[i]["node"].isNull();
            QCOMPARE(map.pixel(i % 96, i / 96) != kBackground, !pixels[i]["node"].isNull());
        }
        QVERIFY(nPicked > 50);
    }

    void GivesEachNodeAColourOfItsOwn()
    {
        QByteArray squares;
        for (int i = 0; i < 100; ++i)
            squares += Square("s" + QByteArray::number(i), 0.4, i).replace("f 1 2 3\nf 1 3 4", "f -4 -3 -2\nf -4 -2 -1");
        WriteFile(Path("squares.obj"), squares);
        QCOMPARE(Run("pick squares.obj --azimuth 0 --elevation 0 --map map.png").errors, QString());
        const QImage map(Path("map.png"));
        QSet<QRgb> colours;
        for (int i = 0; i < 512 * 512; ++i)
            colours += map.pixel(i % 512, i / 512);
        QCOMPARE(colours.size(), 101);
    }

    void CoversThePixelsThatAreDrawn_data()
    {
        QTest::addColumn<QString>("renderer");
        for (const QString renderer : {"embree", "painter"})
            QTest::newRow(qPrintable(renderer)) << renderer;
    }

    /// Within a pixel: rays go through corners of pixels, pictures show their middles.
    void CoversThePixelsThatAreDrawn()
    {
        QFETCH(QString, renderer);
        const QString words = " :figure --time 200 --no-ground --size 160x200 --azimuth -50";
        QCOMPARE(Run("pick --map map.png" + words).exitCode, 0);
        QCOMPARE(Run("render -o picture.png --renderer " + renderer + words).exitCode, 0);
        const QImage map(Path("map.png"));
        const QImage picture(Path("picture.png"));
        const auto isPicked = [&](QPoint pixel) { return map.pixel(pixel) != kBackground; };
        const auto isDrawn = [&](QPoint pixel) { return IsDrawn(picture, pixel); };
        int nPicked = 0;
        for (int i = 0; i < map.width() * map.height(); ++i) {
            const QPoint pixel(i % map.width(), i / map.width());
            nPicked += isPicked(pixel);
            QVERIFY(!isPicked(pixel) || Around(pixel, 1, picture, isDrawn));
            QVERIFY(!isDrawn(pixel) || Around(pixel, 1, map, isPicked));
        }
        QVERIFY(nPicked > 3000);
    }

    /// A hoof is there at one moment and away at another. The pixel comes from
    /// the maps; the pictures say the same of it.
    void MissesALimbThatHasMoved()
    {
        const QString view = kWuson + "--no-ground --size 128x128 --time ";
        const QStringList times = {"0", "480"};
        QImage maps[2];
        QImage pictures[2];
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(Run("pick --map m.png " + view + times[i]).exitCode, 0);
            QCOMPARE(Run("render --renderer painter -o p.png " + view + times[i]).exitCode, 0);
            maps[i] = QImage(Path("m.png"));
            pictures[i] = QImage(Path("p.png"));
        }
        const auto isNode = [&](QPoint pixel) { return maps[1].pixel(pixel) != kBackground; };
        const auto isNone = [&](QPoint pixel) { return maps[0].pixel(pixel) == kBackground; };
        int nFound = 0;
        for (int i = 0; i < 128 * 128; ++i) {
            const QPoint pixel(i % 128, i / 128);
            if (Around(pixel, 2, maps[0], isNone) || Around(pixel, 2, maps[1], isNode)) continue;
            QVERIFY(IsDrawn(pictures[0], pixel) && !IsDrawn(pictures[1], pixel));
            if (nFound++ > 0) continue;
            const QString word = QString(" %1,%2").arg(pixel.x()).arg(pixel.y());
            QCOMPARE(Facts(view + times[0] + word)["pixels"][0]["node"].toString(), "/Testwuson/Wuson");
            QCOMPARE(Facts(view + times[1] + word)["pixels"][0]["hit"].toString(), "nothing");
        }
        QVERIFY(nFound > 0);
    }

    void MarksWhatIsHit()
    {
        const QString words = ":figure --size 200x200 --samples 1 ";
        QCOMPARE(Run("render -o plain.png " + words).exitCode, 0);
        const QRgb hat = qRgb(0xe3, 0xb5, 0x1e);
        QCOMPARE(Run("pick --map map.png --overlay marked.png " + words + "90,30").errors, QString());
        const QImage plain(Path("plain.png"));
        const QImage marked(Path("marked.png"));
        const QImage map(Path("map.png"));
        QCOMPARE(map.pixel(90, 30), hat);
        QCOMPARE(marked.size(), plain.size());
        // Below the hat and the label nothing is touched; the hat is, all of it.
        const QRect below(0, 60, 200, 140);
        QCOMPARE(marked.copy(below), plain.copy(below));
        for (int i = 0; i < 200 * 200; ++i)
            if (map.pixel(i % 200, i / 200) == hat)
                QVERIFY(marked.pixel(i % 200, i / 200) != plain.pixel(i % 200, i / 200));
    }

private:
    QString Path(const QString& name) const { return m_folder->path() + QLatin1Char('/') + name; }

    Outcome Run(const QString& words) const
    {
        return CommandRunner(m_folder->path(), {}).Run(words.split(' ', Qt::SkipEmptyParts));
    }

    QJsonValue Facts(const QString& words) const
    {
        return QJsonDocument::fromJson(Run("pick --json " + words).output.toUtf8()).object();
    }

    std::unique_ptr<QTemporaryDir> m_folder; ///< Fresh for each case.
};

QTEST_GUILESS_MAIN(PickCommandTest)
#include "pick_command_test.moc"
