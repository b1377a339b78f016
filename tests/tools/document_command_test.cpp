// Documents and materials as users of the command meet them.

#include "tests/tools/CommandRunner.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

namespace {

const char kWall[] = "mtllib wall.mtl\no wall\nv 0 0 0\nv 2 0 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 0 1\nusemtl wall\n"
                     "f 1/1 2/2 3/3\n";

/// With a parameter that is somebody else's, and a value that is no opacity.
const char kOak[] = "<material version='1' name='oak'><parameter name='opacity' value='much'/>"
                    "<parameter name='gloss' value='3'/><parameter name='texture' value='maps/oak.png'/></material>";
const QString kOakShown =
    QStringLiteral("oak: gloss=3 (unknown), opacity=much (is not a number from 0 to 1), texture=maps/oak.png");

} // namespace

class DocumentCommandTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        qputenv("LC_ALL", "C");
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir(Path("")).mkpath("maps") && QDir(Path("")).mkpath("here"));
        WriteFile(Path("oak.mtl"), kOak);
        WriteFile(Path("here/wall.obj"), kWall);
        WriteFile(Path("here/wall.mtl"), "newmtl wall\nKd 1 1 1\nmap_Kd wall.png\n");
        QImage stripes(8, 8, QImage::Format_RGB32);
        for (int i = 0; i < 64; ++i)
            stripes.setPixelColor(i % 8, i / 8, i % 2 ? Qt::red : Qt::blue);
        QVERIFY(stripes.save(Path("here/wall.png")) && stripes.save(Path("maps/oak.png")));
    }

    void ChangesMaterials_data()
    {
        for (const char* const column : {"words", "errors", "file", "shown"})
            QTest::addColumn<QString>(column);
        // Each row is named by its words, in which '~' stands for a blank.
        const auto makes = [](const QString& words, const QString& file, const QString& shown,
                              const QString& errors = {}) {
            QTest::newRow(qPrintable(words)) << words << errors << file << shown;
        };
        const auto fails = [&](const QString& words, const QString& error) {
            makes(words, "oak.mtl", kOakShown, error);
        };
        const QString tail = "; see 'lumenta help material'";
        const QString others = "oak: gloss=3 (unknown), ";
        const QString texture = ", texture=maps/oak.png";
        makes("show oak.mtl", "oak.mtl", kOakShown);
        makes("set oak.mtl opacity=0.50 --name ~<&>", "oak.mtl", " <&>: gloss=3 (unknown), opacity=0.5" + texture);
        makes("set oak.mtl opacity=1 diffuse=#FFFFFF twoSided=TRUE texture=", "oak.mtl",
              "oak: diffuse=1 1 1 1, gloss=3 (unknown), opacity=1, twoSided=true");
        makes("set oak.mtl opacity=-2", "oak.mtl", others + "opacity=0" + texture,
              "oak.mtl: warning: opacity: '-2' became 0");
        makes("set oak.mtl opacity= hue=a=b", "oak.mtl", others + "hue=a=b (unknown)" + texture,
              "oak.mtl: warning: 'hue' is unknown, and kept as it is");
        makes("set oak.mtl opacity= texture=maps/elm.png", "oak.mtl", others + "texture=maps/elm.png (not found)",
              "oak.mtl: warning: texture: 'maps/elm.png' was not found");
        makes("set oak.mtl opacity= gloss= texture=", "oak.mtl", "oak: diffuse=0.62 0.53 0.45 1");
        makes("set oak.mtl opacity= -o here/oak.mtl", "here/oak.mtl", others + "texture=*/maps/oak.png");
        makes("new elm.wood.mtl", "elm.wood.mtl", "elm.wood: diffuse=0.62 0.53 0.45 1");
        makes("new maps/elm.mtl bumpTexture=maps/oak.png bumpTextureRect=0~0~.50~2", "maps/elm.mtl",
              "elm: bumpTexture=oak.png, bumpTextureRect=0 0 0.5 2");
        makes("new oak.mtl --force --name elm specular=0~.5~0~1", "oak.mtl", "elm: specular=0 0.5 0 1");
        fails("set oak.mtl gloss=2 shininess=high", "oak.mtl: shininess: 'high' is not a number from 1 to 1000");
        fails("set oak.mtl twoSided=1", "oak.mtl: twoSided: '1' is not true or false");
        fails("set oak.mtl diffuse=red", "oak.mtl: diffuse: 'red' is not a colour, #rrggbb or four numbers 'r g b a'");
        fails("set oak.mtl gloss=\uffff", "oak.mtl: a name or a value holds characters that no such file can keep");
        fails("new oak.mtl", "oak.mtl: exists; --force would replace it");
        for (const QString own : {"new maps/oak.png texture=maps/oak.png", "set oak.mtl gloss=2 -o maps/oak.png"})
            fails(own + " --force", "maps/oak.png: would overwrite a texture of the material");
        fails("set here/wall.mtl gloss=1", "here/wall.mtl: Can't parse XML material description");
        fails("set oak.mtl gloss", "'gloss' is not NAME=VALUE" + tail);
        fails("set oak.mtl", "neither NAME=VALUE nor --name is given" + tail);
        fails("new oak.mtl -o a.mtl", "'new' has no use for -o" + tail);
    }

    void ChangesMaterials()
    {
        QFETCH(QString, words);
        QFETCH(QString, file);
        QTEST(Complaint("material " + words), "errors");
        const QJsonValue facts = Facts("material show " + file);
        QStringList parameters;
        const QJsonArray array = facts["parameters"].toArray();
        for (const QJsonValue& each : array)
            parameters +=
                QString("%1=%2 (%3)").arg(each["name"].toString(), each["value"].toString(), each["remark"].toString());
        const QString shown = facts["name"].toString() + ": " + parameters.join(", ").remove(" ()");
        QTEST(QString(shown).replace(m_folder->path(), "*"), "shown");
    }

    /// Textures are found beside a document that was moved together with them.
    void KeepsItsPictureWhenItsFolderMoves()
    {
        QCOMPARE(Run("convert here/wall.obj here/wall.lumenta").errors, QString());
        const QByteArray before = Picture("here/wall.lumenta --size 60 --samples 4");
        QVERIFY(QDir(Path("")).rename("here", "there") && QFile::remove(Path("there/wall.obj")));
        const QJsonValue facts = Facts("info there/wall.lumenta");
        QCOMPARE(facts["textures"][0]["found"].toString(), Path("there/wall.png"));
        QCOMPARE(facts["nodes"][1]["triangles"].toInt(), 1);
        QVERIFY(!before.isEmpty());
        QCOMPARE(Picture("there/wall.lumenta --size 60 --samples 4"), before);

        QCOMPARE(Complaint("convert there/wall.lumenta wall.ply"),
                 QString("wall.ply: warning: Materials were left out."));
        QCOMPARE(Facts("info wall.ply")["meshes"][0]["triangles"].toInt(), 1);
        QVERIFY(QFile::remove(Path("there/wall.png")));
        QCOMPARE(Facts("info there/wall.lumenta")["textures"][0]["found"].toString(), QString("missing"));
        const QString warning = Complaint("render there/wall.lumenta --size 60 --samples 4 -o blank.png");
        QVERIFY(warning.startsWith("there/wall.lumenta: warning: ") && warning.contains("wall.png"));
        QVERIFY(QImage(Path("blank.png")) != QImage::fromData(before));
    }

    void SizesPictures_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<QSize>("size");
        QTest::newRow("a model is square") << ":figure --size 30" << QSize(30, 30);
        QTest::newRow("the height follows") << ":figure --size 30x20 --keep-aspect" << QSize(30, 30);
        QTest::newRow("a document's frame is 4 to 3") << ":box --size 40x" << QSize(40, 30);
        QTest::newRow("its height follows") << ":box --size 40x90 --keep-aspect" << QSize(40, 30);
        QTest::newRow("its own size") << ":box" << QSize(1200, 900);
    }

    void SizesPictures()
    {
        QFETCH(QString, words);
        QTEST(QImage::fromData(Picture("--renderer painter " + words)).size(), "size");
    }

    void LooksThroughItsOwnCamera()
    {
        QCOMPARE(Run("convert :figure step.lumenta --animation walk --time 250").exitCode, 0);
        const QByteArray own = Picture("step.lumenta --size 60 --samples 4");
        const QByteArray asked = Picture("step.lumenta --size 60 --samples 4 --azimuth 30 --elevation 15");
        QVERIFY(!own.isEmpty());
        QCOMPARE(Picture("step.lumenta --size 60 --samples 4 --elevation 15"), asked); // what is not asked for stays
        QVERIFY(Picture("step.lumenta --size 60 --samples 4 --no-ground") != own);
        QCOMPARE(Facts("info step.lumenta")["boundingBox"]["min"][2].toDouble(), 0.0);
        const QJsonValue facts = Facts("pick step.lumenta --size 60 30,22 1,1");
        QCOMPARE(facts["pixels"][0]["hit"].toString() + facts["pixels"][1]["hit"].toString(), QString("nodenothing"));
        QVERIFY(facts["pixels"][0]["model"].isNull() && facts["scale"].isNull());
    }

    void RefusesInOneLine_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("error");
        const auto fails = [](const QString& words, const QString& error) {
            QTest::newRow(qPrintable(words)) << words << error;
        };
        const QString tail = "; see 'lumenta help render'";
        for (const QString option : {"time 1", "animation walk", "up y", "hide-mesh a", "hide-material a"})
            fails("render :box -o a.png --" + option,
                  "--" + option.section(' ', 0, 0) + " is for models, and ':box' is a document" + tail);
        fails("pick w.lumenta --map here/wall.png", "here/wall.png: would overwrite what the picture is drawn from");
        fails("clip w.lumenta --animation 0 --from 0 --to 1 --name c", "w.lumenta: a document has no animation");
        fails("convert w.lumenta w.lumenta", "w.lumenta: exists; --force would replace it");
        fails("convert w.lumenta link.lumenta --force", "link.lumenta: would overwrite what is read");
        fails("script oak.mtl w.lumenta --save link.lumenta", "link.lumenta: would overwrite what is read");
        fails("script oak.mtl :box --save no/a.lumenta", "no/a.lumenta: the folder 'no' does not exist");
        fails("convert here/wall.obj here/wall.glb",
              "here/wall.glb: files beside it might replace 'wall.mtl'; --force allows that");
        fails("convert here/wall.obj here/wall.glb --force",
              "here/wall.glb: files beside it might replace 'wall.png', which is read; another name helps");
        fails("convert :box a.xyz", "a.xyz: no plug-in writes such files; what can be written: .lumenta, .glb, .gltf, "
                                    ".fbx, .dae, .obj, .stl, .ply");
    }

    void RefusesInOneLine()
    {
        QFETCH(QString, words);
        QCOMPARE(Run("convert here/wall.obj w.lumenta").errors, QString());
        QVERIFY(QFile::link("w.lumenta", Path("link.lumenta")));
        const QStringList before = EntriesOf(m_folder->path());
        QTEST(Complaint(words), "error");
        QCOMPARE(EntriesOf(m_folder->path()), before);
    }

private:
    QString Path(const QString& name) const { return m_folder->path() + QLatin1Char('/') + name; }

    /// A '~' in a word stands for a blank.
    Outcome Run(const QString& words) const
    {
        QStringList list = words.split(' ');
        return CommandRunner(m_folder->path(), {}).Run(list.replaceInStrings("~", " "));
    }

    /// The line on standard error, without its beginning, where the exit status fits it.
    QString Complaint(const QString& words) const
    {
        const Outcome outcome = Run(words);
        const bool succeeds = outcome.errors.isEmpty() || outcome.errors.contains(": warning: ");
        const int wanted = succeeds ? 0 : outcome.errors.contains("; see 'lumenta help ") ? 2 : 1;
        return outcome.exitCode == wanted ? outcome.errors.mid(9).trimmed() : QString::number(outcome.exitCode);
    }

    QJsonValue Facts(const QString& words) const
    {
        return QJsonDocument::fromJson(Run(words + " --json").output.toUtf8()).object();
    }

    /// The file; empty where there is any complaint.
    QByteArray Picture(const QString& words) const
    {
        const Outcome outcome = Run("render -o picture.png " + words);
        QFile file(Path("picture.png"));
        return outcome.exitCode == 0 && outcome.errors.isEmpty() && file.open(QIODevice::ReadOnly) ? file.readAll()
                                                                                                   : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> m_folder; ///< Fresh for each case.
};

QTEST_GUILESS_MAIN(DocumentCommandTest)
#include "document_command_test.moc"
