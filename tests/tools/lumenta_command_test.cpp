// The command as its users meet it: words in; pictures, texts and an exit code out.

#include "reference/host/Picture.h"
#include "reference/host/SampleFigure.h"
#include "tests/tools/CommandRunner.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cmath>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>

Q_DECLARE_METATYPE(Hardship)

namespace {

const QString kModels = QStringLiteral("/usr/share/assimp/models/X/");

/// A square that jumps, and a post beside it that has keys and does not move.
const char kJump[] = R"(xof 0303txt 0032
Frame World {
  Frame Box {
    Mesh Side { 4; -0.5;0.0;0.0;, 0.5;0.0;0.0;, 0.5;1.0;0.0;, -0.5;1.0;0.0;; 2; 3;0,2,1;, 3;0,3,2;; }
  }
  Frame Post {}
}
AnimTicksPerSecond { 1000; }
AnimationSet Jump {
  Animation { { Box } AnimationKey { 2; 3; 0;3;0.0,0.0,0.0;;, 500;3;0.0,2.5,0.0;;, 1000;3;0.0,0.0,0.0;;; } }
  Animation { { Post } AnimationKey { 2; 2; 0;3;0.0,0.0,0.0;;, 1000;3;0.0,0.0,0.0;;; } }
}
)";

/// A triangle whose name would colour a terminal, with a texture.
const char kTriangle[] = "mtllib wall.mtl\no red\x1b[31m\U000e0001\nv 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 0 1\n"
                         "usemtl wall\nf 1/1 2/2 3/3\n";

/// A table of texts: in each row its name, then a text for each column.
void AddTexts(std::initializer_list<const char*> columns, std::initializer_list<QStringList> rows)
{
    for (const char* const column : columns)
        QTest::addColumn<QString>(column);
    for (const QStringList& row : rows) {
        QTestData& data = QTest::newRow(qPrintable(row.first()));
        for (int i = 1; i < row.size(); ++i)
            data << row[i];
    }
}

/// What the models drawn here have in this colour.
QString LookOf(const QColor& colour)
{
    const int hue = (colour.hue() + 15) % 360;
    if (colour.hsvSaturationF() <= 0.45)
        return colour.value() < 140 ? "dark" : "pale";
    return hue < 30                 ? "coloured felt"
           : hue > 180 && hue < 210 ? "coloured wool"
           : hue > 220 && hue < 255 ? "coloured denim"
                                    : "coloured";
}

QPolygon Find(const QImage& picture, const QString& look)
{
    QPolygon pixels;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (LookOf(picture.pixelColor(x, y)).contains(look))
                pixels += QPoint(x, y);
    return pixels;
}

/// Values of JSON objects in the order of the keys: "a 1 true, b 2 false".
QString ListOf(const QJsonValue& objects, const QStringList& keys)
{
    QStringList list;
    const QJsonArray array = objects.toArray();
    for (const QJsonValue& object : array) {
        QStringList values;
        for (const QString& key : keys)
            values += object[key].toVariant().toString();
        list += values.join(' ');
    }
    return list.join(", ");
}

} // namespace

class LumentaCommandTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QVERIFY2(QFile::exists(kModels + QStringLiteral("Testwuson.X")), "install Debian's assimp-testmodels");
        qputenv("LC_ALL", "C");
        m_folder = std::make_unique<QTemporaryDir>();
        WriteFile(Path("jump.x"), kJump);
        WriteFile(Path("triangle.obj"), kTriangle);
    }

    void RefusesInOneLine_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("error");
        QTest::addColumn<Hardship>("hardship");
        // Each row is named by the words that are refused.
        const auto fails = [](const QString& words, const QString& error, const Hardship& hardship = {}) {
            QTest::newRow(qPrintable(words)) << words << 1 << error << hardship;
        };
        const auto misuses = [](const QString& verb, const QString& words, const QString& error) {
            const QString tail = "; see 'lumenta help" + (verb.isEmpty() ? verb : ' ' + verb) + "'";
            QTest::newRow(qPrintable(verb + ' ' + words)) << verb + ' ' + words << 2 << error + tail << Hardship();
        };
        // Models.
        fails("info none.x", "none.x: The model file does not exist");
        fails("info folder", "folder: A model file was expected, but this is a folder");
        fails("info empty.x", "empty.x: The model file is empty");
        fails("info pipe.png", "pipe.png: The model file is not a regular file");
        fails("info cut.x", "cut.x: Line 157: Unexpected end of file while parsing unknown segment.");
        fails("info text.txt", "text.txt: its format is unknown");
        fails("info points.obj", "points.obj: it holds no usable triangles");
        fails("info :cow", ":cow: no such built-in model; there are :figure, :box, :sphere, :bottle");
        fails("info \x1b[31m.x", "\\u001b[31m.x: The model file does not exist");
        // Animations.
        fails("render triangle.obj --time 5 -o a.png", "triangle.obj: the model has no animation");
        fails("render triangle.obj --frames 1 -o a.png", "triangle.obj: the model has no animation");
        for (const QString number : {"-1", "99999999999"})
            fails("render :figure --animation " + number + " -o a.png",
                  ":figure: no animation has the number " + number + "; there are: 0 'walk', 1 'wave'");
        fails("clip jump.x --animation 1 --from 0 --to 1 --name c",
              "jump.x: no animation has the number 1; there are: 0 'Jump'");
        fails("render :figure --animation fly -o a.png",
              ":figure: no animation is named 'fly'; there are: 'walk', 'wave'");
        misuses("clip", "jump.x --animation 0 --from 2 --to 1.5 --name c", "--from 2 lies after --to 1.5");
        misuses("clip", "jump.x --animation 0 --from 2 --name c", "--to is missing");
        // Numbers.
        for (const QString size : {"0x100", "-5x10", "8193x1", "x", "10x10x10"})
            misuses("render", "jump.x -o a.png --size " + size,
                    "--size: '" + size + "' is not a size from 1x1 to 8192x8192");
        for (const QString time : {"nan", "-1", "1e300", "1,5"})
            misuses("render", "jump.x -o a.png --time " + time,
                    "--time: '" + time + "' is not a number from 0 to 1000000000");
        misuses("render", "jump.x -o a.png --frames 0", "--frames: '0' is not a whole number from 1 to 10000");
        misuses("render", "jump.x -o a.png --frames 2 --time 5",
                "--time and --frames exclude each other without --turntable");
        misuses("render", "jump.x -o a.png --frames 10000 --size 1000x1000",
                "a contact sheet of 10000 pictures of 1000x1000 is too large");
        misuses("render", "jump.x -o a.png --frames 16 --size 8192x1",
                "a contact sheet of 16 pictures of 8192x1 is too large");
        misuses("clip", "jump.x --animation 0 --from 0 --to 1 --name c --renderer oil",
                "--renderer: 'oil' is not one of embree, painter");
        // Pixels.
        misuses("pick", "jump.x --time 5", "neither a pixel X,Y nor --map is given");
        for (const QString pixel : {"7", "1.5,2", "1,2,3"})
            misuses("pick", "jump.x " + pixel, "'" + pixel + "' is not a pixel X,Y of two whole numbers");
        for (const QString pixel : {"64,0", "0,-1", "-5,3", "-5,-3", "99999999999,0"})
            misuses("pick", "jump.x --size 64x64 " + pixel, "pixel " + pixel + " is outside of the picture of 64x64");
        misuses("pick", "jump.x --overlay a.png --map b.png", "--overlay marks pixels, but none is given");
        misuses("pick", "jump.x --legend 5,5", "--legend needs --map");
        misuses("pick", "jump.x --map a.png --samples 4", "--samples needs --overlay");
        for (const QString other : {"a.png", "./a.png", "folder/../a.png", "new.png"})
            misuses("pick", "jump.x --overlay a.png --map " + other + " 5,5", "--overlay and --map name the same file");
        misuses("pick", "jump.x --map", "missing value after '--map'");
        misuses("pick", "jump.x --map a.png --frames 2", "unknown option '--frames'");
        fails("pick triangle.obj --time 5 1,1", "triangle.obj: the model has no animation");
        fails("pick model.png --overlay link.png 5,5", "link.png: would overwrite what the picture is drawn from");
        fails("pick model.png --map link.png", "link.png: would overwrite what the picture is drawn from");
        // Names in the model.
        fails("render jump.x -o a.png --hide-mesh Hat", "jump.x: no mesh is named 'Hat'; there are: 'Box'");
        fails("render :figure -o a.png --hide-material silk",
              ":figure: no material is named 'silk'; there are: 'wool', 'denim', 'skin', 'felt', 'button'");
        fails("render jump.x -o a.png --hide-mesh Box", "jump.x: every mesh is hidden, nothing is left to draw");
        // Output.
        fails("render jump.x -o none/a.png", "none/a.png: the folder 'none' does not exist");
        fails("render jump.x -o text.txt/a.png", "text.txt/a.png: 'text.txt' is not a folder");
        fails("render jump.x -o broken.png", "broken.png: the folder '/none' does not exist");
        fails("render model.png -o link.png", "link.png: would overwrite what the picture is drawn from");
        fails("render jump.x -o taken.png", "taken.png: it is a folder");
        fails("render jump.x -o pipe.png", "pipe.png: it is not a regular file");
        misuses("render", "jump.x -o a.jpg", "a.jpg: only pictures that end in .png can be written");
        misuses("render", "jump.x", "-o is missing");
        misuses("render", "jump.x -o %d%04d.png", "--output: %d%04d.png has more than one place for a number");
        const QString small = "render :figure --renderer painter --size 64x64 -o ";
        fails("info jump.x", "standard output: No space left on device", IntoFullDevice);
        fails(small + "locked/a.png", "locked/a.png: the folder 'locked' may not be written to", WithoutPrivilege);
        fails(small + "kept.png", "kept.png: could not be written: Existing file kept.png is not writable",
              WithoutPrivilege);
        const QString nothing = ": the folder '.' may not be written to";
        fails("convert jump.x a.lumenta", "a.lumenta" + nothing, AsNobody);
        fails("convert jump.x a.glb", "a.glb" + nothing, AsNobody);
        fails("render :figure --frames 2 -o a.png", "a.png" + nothing, AsNobody);
        fails("pick jump.x 5,5 --overlay a.png", "a.png" + nothing, AsNobody);
        fails("material new a.mtl diffuse=#ff0000", "a.mtl" + nothing, AsNobody);
        fails("script save.js :figure", "save.js:1: Error: Can't open the file: Permission denied; File: a.lumenta",
              AsNobody);
        fails("info secret.x", "secret.x: The model file can't be read: Permission denied", AsNobody);
        fails("info secret.lumenta", "secret.lumenta: Can't open the file: Permission denied", AsNobody);
        // Less than any buffer holds, so it fails with the last write or never.
        fails(small + "small.png", "small.png: could not be written: File too large", Limited(RLIMIT_FSIZE, 1000));
        fails(small + "large.png --size 300x300", "large.png: could not be written: File too large",
              Limited(RLIMIT_FSIZE, 1000));
        if (qstrlen(LUMENTA_SANITIZE) == 0) // sanitizers need more addresses than this leaves
            fails(small + "a.png --size 8192x8192",
                  "a.png: No room for a picture of 8192 by 8192 pixels; Attempted to allocate 268435456 bytes",
                  Limited(RLIMIT_AS, 300u << 20));
        // Words.
        misuses("", "", "no verb is given");
        const QString verbs = "'info', 'render', 'pick', 'clip', 'convert', 'material', 'script'";
        misuses("", "help paint", "there is no verb 'paint', but " + verbs);
        misuses("", "help info pick", "one VERB is enough, but here is also 'pick'");
        misuses("", "sing", "there is no verb 'sing', but " + verbs);
        misuses("info", "jump.x --colour", "unknown option '--colour'");
        misuses("", "-platform xcb", "unknown option '-p'"); // the toolkit would know it
        misuses("info", "", "MODEL is missing");
        misuses("info", "jump.x b.x", "one MODEL is enough, but here is also 'b.x'");
        misuses("render", "jump.x -o", "missing value after '-o'");
    }

    /// And leaves nothing half-written behind.
    void RefusesInOneLine()
    {
        QFETCH(QString, words);
        QFETCH(Hardship, hardship);
        const QDir folder(m_folder->path());
        QVERIFY(folder.mkdir("folder") && folder.mkdir("taken.png") && folder.mkdir("locked"));
        QCOMPARE(mkfifo(QFile::encodeName(Path("pipe.png")).constData(), 0600), 0);
        QVERIFY(QFile::copy(kModels + "Testwuson.X", Path("cut.x")) && QFile::resize(Path("cut.x"), 3000));
        QVERIFY(QFile::link("/none/a.png", Path("broken.png")) && QFile::link("model.png", Path("link.png"))
                && QFile::link("a.png", Path("new.png")));
        WriteFile(Path("model.png"), kTriangle);
        WriteFile(Path("empty.x"), "");
        WriteFile(Path("text.txt"), "Dear reader,\n");
        WriteFile(Path("points.obj"), "v 0 0 0\nv 1 0 0\nv 0 1 0\n");
        WriteFile(Path("kept.png"), "precious");
        QVERIFY(QFile::setPermissions(Path("kept.png"), QFile::ReadOwner));
        WriteFile(Path("save.js"), "scene.save('a.lumenta')");
        for (const char* const name : {"secret.x", "secret.lumenta"})
            QVERIFY(QFile::copy(Path("jump.x"), Path(name)) && QFile::setPermissions(Path(name), QFile::ReadOwner));
        QVERIFY(chmod(QFile::encodeName(m_folder->path()).constData(), 0755) == 0);
        QVERIFY(QFile::setPermissions(Path("locked"), QFile::ReadOwner | QFile::ExeOwner));
        const QStringList before = EntriesOf(m_folder->path());

        const Outcome outcome = Run(words, hardship);
        if (outcome.exitCode == kImpossible)
            return QTest::qSkip("that can't be tried as this user", __FILE__, __LINE__);

        QFETCH(QString, error);
        QCOMPARE(outcome.errors, QString("lumenta: %1\n").arg(error));
        QTEST(outcome.exitCode, "exitCode");
        QCOMPARE(outcome.output, QString());
        QCOMPARE(EntriesOf(m_folder->path()), before);
        QCOMPARE(QFileInfo(Path("kept.png")).size(), 8);
    }

    /// Numbers counted in the text of the files: frames, faces, skin weights, and
    /// ticks of the last key over ticks per second.
    void TellsWhatAModelHolds_data()
    {
        AddTexts({"model", "nodes", "lastNode", "meshes", "animations"},
                 {{"three animations", kModels + "Testwuson.X", "40, bones 37",
                   "$dummy_root Root Spine_Front01 Spine_Front02 Spine_Front03 ForeLeg_R_01 ForeLeg_R_02 ForeLeg_R_03 "
                   "ForeLeg_R_04 ForeLeg_R_05",
                   "Wuson 3732 true", "Wuson_Run 966.6666870117188 39, Wuson_Walk 3600 39, Wuson_Bind 0 39"},
                  {"three meshes", kModels + "BCN_Epileptic.X", "58, bones 54", "$dummy_root Legs",
                   "Torso 1966 true, Head 2036 true, Legs 1124 true", "Epileptisch 3300 57"},
                  {"the built-in figure", ":figure", "21, bones 19", "figure hips thigh.R shin.R foot.R toes.R",
                   "jumper 2592 true, trousers 2592 true, skin 3456 true, shoes and scarf 3456 true, eyes 1728 true, "
                   "hat 1728 false",
                   "walk 1000 16, wave 1600 11"}});
    }

    void TellsWhatAModelHolds()
    {
        QFETCH(QString, model);
        const QJsonObject facts = FactsOf(model);
        const QJsonArray nodes = facts["nodes"].toArray();
        QStringList lastNode;
        for (int i = nodes.size() - 1; i >= 0; i = nodes[i]["parent"].toInt())
            lastNode.prepend(nodes[i]["name"].toString());
        QTEST(QString("%1, bones %2").arg(nodes.size()).arg(ListOf(nodes, {"bone"}).count("true")), "nodes");
        QTEST(lastNode.join(' '), "lastNode");
        QTEST(ListOf(facts["meshes"], {"name", "triangles", "skinned"}), "meshes");
        QTEST(ListOf(facts["animations"], {"name", "duration", "tracks"}), "animations");
    }

    /// Positions bit by bit as the model itself has them.
    void TellsPositionsAndMaterials()
    {
        const QJsonObject facts = FactsOf(":figure");
        const Host::Model model = Host::MakeSampleFigure();
        Host::MeshCollector collector;
        model.scene->CreateMeshes(collector);
        const TBBox<float> box = Host::BoxOf(collector.meshes);
        const auto pointOf = [](const TVec3<float>& p) { return QJsonArray{double(p.x), double(p.y), double(p.z)}; };
        QCOMPARE(facts["boundingBox"].toObject(), (QJsonObject{{"min", pointOf(box.min)}, {"max", pointOf(box.max)}}));
        QCOMPARE(facts["up"].toArray(), pointOf(model.up));
        QVERIFY(ListOf(facts["meshes"], {"vertices", "material"}).startsWith("1500 wool, 1500 denim, 2000 skin, "));
        QCOMPARE(facts["materials"][0]["parameters"].toObject(),
                 (QJsonObject{{"diffuse", "#ffffff"}, {"texture", "stripes"}}));
    }

    // On a small disk. Where none may be mounted, the file-size limit above stands in
    // for it.
    void LeavesOnlyWholeFilesOnAFullDisk_data()
    {
        AddTexts({"words", "error", "left"},
                 {{"the second picture", "render :figure --renderer painter --frames 2 --size 64x64 -o full/%d.png",
                   "full/1.png: could not be written: No space left on device", "0.png,kept.glb,kept.lumenta,kept.mtl"},
                  {"a contact sheet", "render :figure --renderer painter --frames 4 --size 99x99 -o full/a.png",
                   "full/a.png: could not be written: No space left on device", ""},
                  {"a marked picture", "pick :figure 9,9 --size 300x300 --overlay full/a.png",
                   "full/a.png: could not be written: No space left on device", ""},
                  {"a document", "convert :figure full/a.lumenta",
                   "full/a.lumenta: Can't write the data: No space left on device", ""},
                  {"another document", "convert :figure full/kept.lumenta --force",
                   "full/kept.lumenta: Can't write the data: No space left on device", ""},
                  {"an export", "convert :figure full/a.obj", "full/a.obj: No space left on device", ""},
                  {"another export", "convert :figure full/kept.glb --force",
                   "full/kept.glb: No space left on device", ""},
                  {"a material", "material set full/kept.mtl --name " + QString(13000, 'x'),
                   "full/kept.mtl: could not be written: No space left on device", ""},
                  {"by a script", "script save.js :figure",
                   "save.js:1: Error: Can't write the data: No space left on device; File: full/a.lumenta", ""}});
    }

    void LeavesOnlyWholeFilesOnAFullDisk()
    {
        QFETCH(QString, words);
        QFETCH(QString, left);
        QVERIFY(QDir(m_folder->path()).mkdir("full"));
        const QByteArray disk = QFile::encodeName(Path("full"));
        if (mount("none", disk.constData(), "tmpfs", 0, "size=24k") != 0)
            return QTest::qSkip("no disk can be mounted here", __FILE__, __LINE__);
        WriteFile(Path("save.js"), "scene.save('full/a.lumenta')");
        QCOMPARE(Run("material new full/kept.mtl diffuse=#ff0000").errors, QString());
        for (const char* const name : {"full/kept.lumenta", "full/kept.glb"})
            WriteFile(Path(name), "precious");
        const auto contents = [this] {
            QByteArray all;
            for (const char* const name : {"full/kept.mtl", "full/kept.lumenta", "full/kept.glb"})
                if (QFile file(Path(name)); file.open(QIODevice::ReadOnly)) all += file.readAll();
            return all;
        };
        const QByteArray before = contents();
        const Outcome outcome = Run(words);
        const QByteArray after = contents();
        const QStringList files = EntriesOf(Path("full"));
        const QImage first(Path("full/0.png"));
        QCOMPARE(umount(disk.constData()), 0);
        QFETCH(QString, error);
        QCOMPARE(outcome.errors, QString("lumenta: %1\n").arg(error));
        QCOMPARE(outcome.exitCode, 1);
        QCOMPARE(files.join(','), left.isEmpty() ? "kept.glb,kept.lumenta,kept.mtl" : left);
        QCOMPARE(first.isNull(), left.isEmpty());
        QCOMPARE(after, before);
    }

    void TellsWhereTheTimeGoes_data()
    {
        AddTexts({"words"}, {{"a model in motion", ":figure --animation walk --frames 3 --samples 1"},
                             {"painted, in files", kModels + "Testwuson.X --time 5 --renderer painter -o %d.png"},
                             {"a document", ":bottle --samples 1"}});
    }

    /// Each stage on a line of its own; what surely takes time took some; no more than all.
    void TellsWhereTheTimeGoes()
    {
        QFETCH(QString, words);
        QElapsedTimer clock;
        clock.start();
        const Outcome outcome = Run("render -o a.png --size 64x64 --stats " + words);
        const double most = double(clock.nsecsElapsed()) * 1e-6;
        QCOMPARE(outcome.errors, QString());
        QStringList lines = outcome.output.split('\n', Qt::SkipEmptyParts), stages;
        static const QRegularExpression heading("^  stage +ms +share$"), row(R"(^  (\S.*?) +(\d+\.\d) +(\d+\.\d) %$)");
        QVERIFY(heading.match(lines.takeFirst()).hasMatch());
        QMap<QString, double> times;
        double sum = 0.0, shares = 0.0;
        for (const QString& line : lines) {
            const auto match = row.match(line);
            QVERIFY2(match.hasMatch(), qPrintable(line));
            stages += match.captured(1);
            times[stages.last()] = match.captured(2).toDouble();
            sum += times[stages.last()];
            shares += match.captured(3).toDouble();
        }
        QCOMPARE(stages.join(", "), QString("plug-ins, reading, pose, skin and normals, document, framing, preparing, "
                                            "drawing, writing, rest, all"));
        const double all = times["all"];
        QVERIFY2(all <= most && std::fabs(sum - 2.0 * all) < 1.0 && std::fabs(shares - 200.0) < 1.0,
                 qPrintable(outcome.output));
        for (const QString stage : {"plug-ins", "drawing", "writing"})
            QVERIFY2(times[stage] > 0.0, qPrintable(outcome.output));
        QCOMPARE(times["skin and normals"] > 0.0, !words.contains("bottle"));
    }

    void KeepsNamesFromTheTerminal()
    {
        const QString people = Run("info triangle.obj").output;
        const QString programs = Run("info triangle.obj --json").output;
        QVERIFY(people.contains("red\\u001b[31m\\U000e0001 "));
        QVERIFY(programs.contains("\"red\\u001b[31m\\udb40\\udc01\""));
        QVERIFY(!(people + programs).contains('\x1b'));
    }

    void DrawsTheFigureUprightInTheMiddle_data()
    {
        AddTexts({"words"}, {{"embree, square", "--size 96x96"},
                             {"painter, wide, posed", "--size 150x80 --animation wave --time 400 --renderer painter"},
                             {"from behind, from above", "--size 96x96 --azimuth 180 --elevation 40"}});
    }

    void DrawsTheFigureUprightInTheMiddle()
    {
        QFETCH(QString, words);
        const QImage picture = Picture(":figure " + words);
        QVERIFY(words.contains(QString("--size %1x%2").arg(picture.width()).arg(picture.height())));
        const QRect figure = Find(picture, "coloured").boundingRect();
        QVERIFY(picture.rect().adjusted(1, 1, -1, -1).contains(figure));
        QVERIFY(figure.height() > picture.height() / 2);
        QVERIFY(std::abs(figure.center().x() - picture.width() / 2) < picture.height() / 6);
        QCOMPARE(LookOf(picture.pixelColor(0, 0)) + LookOf(picture.pixelColor(picture.rect().bottomRight())),
                 "palepale");
        const int wool = Find(picture, "wool").boundingRect().center().y();
        QVERIFY(figure.top() < wool && wool < Find(picture, "denim").boundingRect().center().y());
    }

    void ShowsNothingThatIsHidden_data()
    {
        AddTexts({"words", "left"}, {{"a mesh, by its name", "--hide-mesh trousers", " felt wool"},
                                     {"a material of several meshes", "--hide-material felt", " denim wool"},
                                     {"a mesh and a material", "--hide-material felt --hide-mesh jumper", " denim"},
                                     {"what lies under the hat, from above", "--elevation 89", " felt"}});
    }

    void ShowsNothingThatIsHidden()
    {
        QFETCH(QString, words);
        const QImage picture = Picture(":figure --size 64x64 " + words);
        QString left;
        for (const QString look : {"felt", "denim", "wool"})
            left += Find(picture, look).size() > 10 ? ' ' + look : QString();
        QTEST(left, "left");
    }

    void NamesItsFiles_data()
    {
        AddTexts({"words", "files"},
                 {{"one picture", ":figure -o a.png", "a.png"},
                  {"a contact sheet", ":figure --frames 3 -o a.png", "a.png"},
                  {"a series", ":figure --frames 3 -o a%04d.png", "a0000.png a0001.png a0002.png"},
                  {"a series without leading zeros", "jump.x --frames 2 -o a%d.PNG", "a0.PNG a1.PNG"},
                  {"a series of one", ":figure -o a%02d.png", "a00.png"},
                  {"a turn has twelve frames", "jump.x --turntable -o %d.png",
                   "0.png 1.png 10.png 11.png 2.png 3.png 4.png 5.png 6.png 7.png 8.png 9.png"},
                  {"a turn around one pose", ":figure --turntable --time 250 --frames 2 -o a%d.png", "a0.png a1.png"},
                  {"beyond ASCII, in and out", "Würfel.x -o 立方体.png", "立方体.png"},
                  {"a colon in front", "jump.x -o :a.png", ":a.png"}});
    }

    void NamesItsFiles()
    {
        QFETCH(QString, words);
        WriteFile(Path("Würfel.x"), kJump);
        const QStringList before = EntriesOf(m_folder->path());
        const Outcome outcome = Run("render --size 16x16 --samples 1 " + words);
        QCOMPARE(outcome.errors + outcome.output, QString());
        QStringList files = EntriesOf(m_folder->path());
        for (const QString& old : before)
            files.removeOne(old);
        for (const QString& file : files)
            QVERIFY(!QImage(Path(file)).isNull());
        QTEST(files.join(' '), "files");
    }

    /// The square jumps to more than twice its height and comes down again: it must
    /// neither leave the picture, nor drag the camera along, nor lift the floor.
    void KeepsCameraAndFloorStill()
    {
        const Outcome outcome = Run("render jump.x --frames 3 --azimuth 0 --size 80x80 --samples 4 -o %d.png");
        QCOMPARE(outcome.errors, QString());
        const QImage low(Path("0.png"));
        const QImage high(Path("1.png"));
        const QRect below = Find(low, "dark").boundingRect();
        const QRect above = Find(high, "dark").boundingRect();
        QVERIFY(low.rect().adjusted(1, 1, -1, -1).contains(below | above));
        QVERIFY(above.bottom() < below.top() - below.height());
        QVERIFY(std::abs(above.width() - below.width()) <= below.width() / 4);
        QCOMPARE(QImage(Path("2.png")), low);
        QCOMPARE(high.pixelColor(2, 78), low.pixelColor(2, 78));
    }

    void DrawsTheSameWithAnyNumberOfThreads()
    {
        const QImage alone = Picture(":figure --size 64x64 --threads 1");
        QVERIFY(!alone.isNull());
        QCOMPARE(Picture(":figure --size 64x64 --threads 2"), alone);
        QCOMPARE(Picture(":figure --size 64x64"), alone);
    }

    void FindsTextures_data()
    {
        AddTexts({"named", "placed"}, {{"where the model says", "maps/wall.png", "maps/wall.png"},
                                       {"with backslashes", "maps\\wall.png", "maps/wall.png"},
                                       {"beside the model, not where it was drawn", "C:\\art\\wall.png", "wall.png"},
                                       {"nowhere", "maps/wall.png", "other.png"}});
    }

    /// The model lies in another folder than the one the command runs in.
    void FindsTextures()
    {
        QFETCH(QString, named);
        QFETCH(QString, placed);
        QVERIFY(QDir(m_folder->path()).mkpath("models/maps"));
        WriteFile(Path("models/triangle.obj"), kTriangle);
        WriteFile(Path("models/wall.mtl"), "newmtl wall\nKd 1 1 1\nmap_Kd " + named.toUtf8() + "\n");
        QImage red(4, 4, QImage::Format_RGB32);
        red.fill(QColor(220, 30, 20));
        QVERIFY(red.save(Path("models/" + placed)));

        const Outcome outcome = Run("render models/triangle.obj --azimuth 0 --size 32x32 --samples 1 -o a.png");

        const bool found = placed.endsWith("wall.png");
        const QString warning = "lumenta: models/triangle.obj: warning: texture 'maps/wall.png' was not found\n";
        QCOMPARE(outcome.exitCode, 0);
        QCOMPARE(outcome.errors, found ? QString() : warning);
        QCOMPARE(Find(QImage(Path("a.png")), "felt").size() > 50, found);
    }

    void ListsWhatAClipHolds_data()
    {
        AddTexts({"from", "to", "text"},
                 {{"keys are made on the boundaries", "250", "750",
                   "500 ms long\n  node  keys  first ms  last ms\n  Box      3         0      500\n"
                   "1 track, 3 keys\nDropped as motionless: 'Post'\n"},
                  {"a single moment", "500", "500",
                   "0 ms long\n  node  keys  first ms  last ms\n  Box      1         0        0\n"
                   "1 track, 1 key\nDropped as motionless: 'Post'\n"},
                  {"beyond the end", "2000", "3000.5",
                   "0 ms long\n  node  keys  first ms  last ms\n  Box      0         -        -\n"
                   "  Post     0         -        -\n2 tracks, 0 keys\nDropped as motionless: none\n"}});
    }

    /// Drawn, it is what the source shows at the same moment.
    void ListsWhatAClipHolds()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(QString, text);
        text.prepend(QString("'hop': %1 to %2 ms of 'Jump', ").arg(from, to));
        const QString clip = "clip jump.x --animation Jump --name hop --from " + from + " --to " + to;
        QCOMPARE(Run(clip).output, text);
        QCOMPARE(Run(clip + " --size 40x40 --samples 4 -o clip.png").output, text);
        if (!text.contains("0 keys")) // such a clip keeps the pose at rest
            QCOMPARE(QImage(Path("clip.png")), Picture("jump.x --size 40x40 --time " + from));
    }

    /// In a locale that really exists, or it would be the same as none.
    void ReadsAndWritesNumbersWithAPoint()
    {
        const QStringList german = {"-c", "-i", "de_DE", "-f", "UTF-8", Path("de_DE.UTF-8")};
        QCOMPARE(QProcess::execute("localedef", german), 0);
        const QString words = "clip jump.x --animation 0 --from 0.5 --to 750.25 --name hop";
        const Outcome outcome = Run(words, [this] {
            return qputenv("LOCPATH", QFile::encodeName(m_folder->path())) && qputenv("LC_ALL", "de_DE.UTF-8");
        });
        QVERIFY(outcome.output.contains("0.5 to 750.25 ms"));
        QCOMPARE(outcome.output, Run(words).output);
    }

    void ShowsProgressOnATerminalOnly()
    {
        const int controller = posix_openpt(O_RDWR | O_NOCTTY);
        QVERIFY(controller >= 0 && grantpt(controller) == 0 && unlockpt(controller) == 0);
        const int terminal = open(ptsname(controller), O_RDWR | O_NOCTTY);
        const winsize narrow{24, 60, 0, 0};
        QCOMPARE(ioctl(terminal, TIOCSWINSZ, &narrow), 0);
        const QString words = "render :figure --frames 2 --size 16x16 --samples 1 -o a%d.png";
        QCOMPARE(Run(words, [terminal] { return dup2(terminal, STDERR_FILENO) >= 0; }).exitCode, 0);

        QByteArray shown(4096, '\0');
        shown.resize(int(read(controller, shown.data(), std::size_t(shown.size()))));
        close(terminal);
        close(controller);
        QVERIFY(shown.contains("% frame 1 of 2\033[K") && shown.contains("100% frame 2 of 2, 0:00 le\033[K"));
        QVERIFY(shown.endsWith("\r\033[K"));
        QCOMPARE(Run(words).errors, QString());
    }

    void ExplainsEveryOption_data()
    {
        const QString verbs = "info render pick clip convert material script --version";
        const QString view = "--time --size --keep-aspect --renderer --samples --threads --azimuth --elevation --up "
                             "--no-ground --hide-mesh --hide-material --animation ";
        const QString picture = view + "--frames --turntable --output";
        AddTexts({"words", "options"}, {{"the command", "--help", verbs},
                                        {"the command, as a verb", "help", verbs},
                                        {"info", "help info", "--json"},
                                        {"render", "render --help", picture + " --stats"},
                                        {"pick", "pick -h", view + "--map --legend --overlay --json"},
                                        {"clip", "clip -h", picture + " --from --to --name"},
                                        {"convert", "convert -h", "--animation --time --force"},
                                        {"material", "material -h", "--name --output --force --json"}});
    }

    void ExplainsEveryOption()
    {
        QFETCH(QString, words);
        QFETCH(QString, options);
        const Outcome outcome = Run(words);
        QCOMPARE(outcome.exitCode, 0);
        QCOMPARE(outcome.errors, QString());
        for (const QString heading : {"NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "EXAMPLES", "EXIT STATUS"})
            QVERIFY2(outcome.output.contains(heading + '\n'), qPrintable(heading));
        const QStringList all = QString(options + " --help").split(' '), lines = outcome.output.split('\n');
        for (const QString& option : all)
            QVERIFY2(outcome.output.contains("    " + option) || outcome.output.contains(", " + option),
                     qPrintable(option));
        for (const QString& line : lines)
            QVERIFY2(line.size() <= 80, qPrintable(line));
    }

    void TellsItsVersion() { QCOMPARE(Run("--version").output, "lumenta " LUMENTA_VERSION "\n"); }

private:
    QString Path(const QString& name) const { return m_folder->path() + QLatin1Char('/') + name; }

    Outcome Run(const QString& words, const Hardship& hardship = {}) const
    {
        return CommandRunner(m_folder->path(), hardship).Run(words.split(' ', Qt::SkipEmptyParts));
    }

    /// Null where there is any complaint.
    QImage Picture(const QString& words) const
    {
        const Outcome outcome = Run("render --samples 4 -o picture.png " + words);
        return outcome.exitCode == 0 && outcome.errors.isEmpty() ? QImage(Path("picture.png")) : QImage();
    }

    QJsonObject FactsOf(const QString& model) const
    {
        return QJsonDocument::fromJson(Run("info --json " + model).output.toUtf8()).object();
    }

    std::unique_ptr<QTemporaryDir> m_folder; ///< Fresh for each case.
};

QTEST_GUILESS_MAIN(LumentaCommandTest)
#include "lumenta_command_test.moc"
