// The command as its users meet it: words in; pictures, texts and an exit code out.

#include "reference/host/Picture.h"
#include "reference/host/SampleFigure.h"
#include "tests/tools/CommandRunner.h"

#include <QColor>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>

#include <sys/mount.h>

Q_DECLARE_METATYPE(Hardship)

namespace {

const QString kModels = QStringLiteral("/usr/share/assimp/models/X/");
const char kModelsMissing[] = "install the Debian package assimp-testmodels";

/// A square that jumps, and a post beside it that has keys and does not move.
const char kJump[] = R"(xof 0303txt 0032
Frame World {
  FrameTransformMatrix { 1.0,0.0,0.0,0.0, 0.0,1.0,0.0,0.0, 0.0,0.0,1.0,0.0, 0.0,0.0,0.0,1.0;; }
  Frame Box {
    FrameTransformMatrix { 1.0,0.0,0.0,0.0, 0.0,1.0,0.0,0.0, 0.0,0.0,1.0,0.0, 0.0,0.0,0.0,1.0;; }
    Mesh Side {
      4;
      -0.5;0.0;0.0;, 0.5;0.0;0.0;, 0.5;1.0;0.0;, -0.5;1.0;0.0;;
      2;
      3;0,2,1;, 3;0,3,2;;
    }
  }
  Frame Post {
    FrameTransformMatrix { 1.0,0.0,0.0,0.0, 0.0,1.0,0.0,0.0, 0.0,0.0,1.0,0.0, 0.0,0.0,0.0,1.0;; }
  }
}
AnimTicksPerSecond { 1000; }
AnimationSet Jump {
  Animation {
    { Box }
    AnimationKey { 2; 3; 0;3;0.0,0.0,0.0;;, 500;3;0.0,2.5,0.0;;, 1000;3;0.0,0.0,0.0;;; }
  }
  Animation {
    { Post }
    AnimationKey { 2; 2; 0;3;0.0,0.0,0.0;;, 1000;3;0.0,0.0,0.0;;; }
  }
}
)";

/// A triangle whose name would colour a terminal, with a texture.
const char kTriangle[] = "mtllib wall.mtl\no red\x1b[31m\nv 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 0 1\n"
                         "usemtl wall\nf 1/1 2/2 3/3\n";

QStringList Words(const char* line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/// Pixels of a picture that have the colour of a part of the sample figure.
struct Patch {
    int nPixels = 0;
    double meanY = 0.0;
    QRect bounds;
};

template <typename IsPart>
Patch Find(const QImage& picture, const IsPart& isPart)
{
    Patch patch;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (isPart(picture.pixelColor(x, y))) {
                ++patch.nPixels;
                patch.meanY += y;
                patch.bounds |= QRect(x, y, 1, 1);
            }
    patch.meanY /= std::max(patch.nPixels, 1);
    return patch;
}

bool IsColoured(const QColor& colour)
{
    return colour.hsvSaturationF() > 0.45;
}
bool IsFelt(const QColor& colour)
{
    return IsColoured(colour) && (colour.hue() < 15 || colour.hue() > 345);
}
bool IsDenim(const QColor& colour)
{
    return IsColoured(colour) && colour.hue() > 205 && colour.hue() < 240;
}
bool IsWool(const QColor& colour)
{
    return IsColoured(colour) && colour.hue() > 165 && colour.hue() < 195;
}
bool IsDark(const QColor& colour)
{
    return colour.value() < 140;
}

/// QSKIP() with a text alone is not pedantically C++17.
void Skip(const QString& reason, int line)
{
    QTest::qSkip(qPrintable(reason), __FILE__, line);
}

QJsonArray PointOf(const TVec3<float>& point)
{
    return {double(point.x), double(point.y), double(point.z)};
}

} // namespace

class LumentaCommandTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void RefusesInOneLine_data();
    void RefusesInOneLine();
    void LeavesNothingHalfWritten_data();
    void LeavesNothingHalfWritten();
    void ReportsAFullDisk();
    void ReportsAnOutputThatTakesNothing();
    void TellsWhatTheFigureHolds();
    void TellsWhatAFileHolds_data();
    void TellsWhatAFileHolds();
    void KeepsNamesFromTheTerminal();
    void DrawsTheFigureUprightInTheMiddle_data();
    void DrawsTheFigureUprightInTheMiddle();
    void HidesByName_data();
    void HidesByName();
    void NamesItsFiles_data();
    void NamesItsFiles();
    void KeepsCameraAndFloorStill();
    void DrawsTheSameWithAnyNumberOfThreads_data();
    void DrawsTheSameWithAnyNumberOfThreads();
    void FindsTextures_data();
    void FindsTextures();
    void ListsWhatAClipHolds_data();
    void ListsWhatAClipHolds();
    void ReadsAndWritesNumbersWithAPoint();
    void ShowsProgressOnATerminalOnly();
    void ExplainsEveryOption_data();
    void ExplainsEveryOption();
    void TellsItsVersion();

private:
    QString Path(const QString& name) const { return m_folder->path() + QLatin1Char('/') + name; }

    Outcome Run(const QStringList& words) const { return CommandRunner(m_folder->path()).Run(words); }

    /// A picture of 64 x 64 pixels.
    QImage Picture(const QStringList& words) const
    {
        const QStringList usual = Words("--size 64x64 --samples 4 -o picture.png");
        const Outcome outcome = Run(QStringList(QStringLiteral("render")) + words + usual);
        return outcome.exitCode == 0 && outcome.errors.isEmpty() ? QImage(Path(QStringLiteral("picture.png")))
                                                                 : QImage();
    }

    std::unique_ptr<QTemporaryDir> m_folder; ///< Fresh for each case.
};

void LumentaCommandTest::init()
{
    QVERIFY2(QFile::exists(kModels + QStringLiteral("Testwuson.X")), kModelsMissing);
    m_folder = std::make_unique<QTemporaryDir>();
    WriteFile(Path(QStringLiteral("jump.x")), kJump);
    WriteFile(Path(QStringLiteral("triangle.obj")), kTriangle);
}

void LumentaCommandTest::RefusesInOneLine_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("error");

    const auto row = [](const char* name, const char* words, int exitCode, const char* error) {
        QTest::newRow(name) << Words(words) << exitCode << QString::fromUtf8(error);
    };
    // Models.
    row("a missing file", "info none.x", 1, "none.x: The model file does not exist");
    row("a folder", "info folder", 1, "folder: A model file was expected, but this is a folder");
    row("an empty file", "info empty.x", 1, "empty.x: The model file is empty");
    row("a truncated model", "info cut.x", 1, "cut.x: Line 157: Unexpected end of file while parsing unknown segment.");
    row("text that is no model", "info text.txt", 1, "text.txt: its format is unknown");
    row("a model without meshes", "info points.obj", 1, "points.obj: it holds no usable triangles");
    row("a built-in model that does not exist", "info :cow", 1, ":cow: no such built-in model; there is :figure");
    row("a file name that would colour the terminal", "info \x1b[31m.x", 1,
        "\\u001b[31m.x: The model file does not exist");
    // Animations.
    row("a model without animations, one is asked for", "render triangle.obj --animation 0 -o a.png", 1,
        "triangle.obj: the model has no animation");
    row("a model without animations, a time is asked for", "render triangle.obj --time 5 -o a.png", 1,
        "triangle.obj: the model has no animation");
    row("an animation number too high", "render jump.x --animation 1 -o a.png", 1,
        "jump.x: Invalid parameter 'animIndex' passed to method 'Scene::CalculateAnimation': Invalid animation index");
    row("an animation number below 0", "render jump.x --animation -1 -o a.png", 1,
        "jump.x: Invalid parameter 'animIndex' passed to method 'Scene::CalculateAnimation': Invalid animation index");
    row("an animation number too high for a clip", "clip jump.x --animation 1 --from 0 --to 1 --name c", 1,
        "jump.x: Invalid parameter 'animIndex' passed to method 'Scene::AppendClippedAnimation': "
        "The index is out of range");
    row("an unknown animation", "render :figure --animation fly -o a.png", 1,
        ":figure: no animation is named 'fly'; there are: 'walk', 'wave'");
    row("a clip that ends before it begins", "clip jump.x --animation 0 --from 2 --to 1.5 --name c", 2,
        "--from 2 lies after --to 1.5; see 'lumenta help clip'");
    row("a clip without an end", "clip jump.x --animation 0 --from 2 --name c", 2,
        "--to is missing; see 'lumenta help clip'");
    // Numbers.
    for (const char* size : {"0x100", "-5x10", "100000x100000", "axb", "10", "1e2x5", "10x10x10"})
        QTest::addRow("the size %s", size)
            << Words("render jump.x -o a.png --size") + QStringList(QLatin1String(size)) << 2
            << QStringLiteral("--size: '%1' is not a size from 1x1 to 16384x16384; "
                              "see 'lumenta help render'")
                   .arg(QLatin1String(size));
    for (const char* time : {"nan", "inf", "-1", "1e300", "1,5", "soon"})
        QTest::addRow("the time %s", time)
            << Words("render jump.x -o a.png --time") + QStringList(QLatin1String(time)) << 2
            << QStringLiteral("--time: '%1' is not a number from 0 to 1000000000; "
                              "see 'lumenta help render'")
                   .arg(QLatin1String(time));
    row("no frames at all", "render jump.x -o a.png --frames 0", 2,
        "--frames: '0' is not a whole number from 1 to 10000; see 'lumenta help render'");
    row("one time for several frames", "render jump.x -o a.png --frames 2 --time 5", 2,
        "--time and --frames exclude each other without --turntable; see 'lumenta help render'");
    row("a contact sheet beyond all memory", "render jump.x -o a.png --frames 10000 --size 1000x1000", 2,
        "a contact sheet of 10000 pictures of 1000x1000 is too large; see 'lumenta help render'");
    row("an unknown renderer", "render jump.x -o a.png --renderer oil", 2,
        "--renderer: 'oil' is not one of embree, painter; see 'lumenta help render'");
    // Names in the model.
    row("an unknown mesh", "render :figure -o a.png --hide-mesh Hat", 1,
        ":figure: no mesh is named 'Hat'; there are: 'jumper', 'trousers', 'skin', 'shoes and scarf', 'eyes', 'hat'");
    row("an unknown material", "render :figure -o a.png --hide-material silk", 1,
        ":figure: no material is named 'silk'; there are: 'wool', 'denim', 'skin', 'felt', 'button'");
    row("everything hidden", "render jump.x -o a.png --hide-mesh Box", 1,
        "jump.x: every mesh is hidden, nothing is left to draw");
    // Output.
    row("a folder that does not exist", "render jump.x -o none/a.png", 1,
        "none/a.png: the folder 'none' does not exist");
    row("a folder that is a file", "render jump.x -o text.txt/a.png", 1, "text.txt/a.png: 'text.txt' is not a folder");
    row("a picture that is a folder", "render jump.x -o taken.png", 1, "taken.png: is a folder");
    row("a picture that is a device", "render jump.x -o device.png", 1, "device.png: is not a regular file");
    row("an unknown suffix", "render jump.x -o a.jpg", 2,
        "a.jpg: only pictures that end in .png can be written; see 'lumenta help render'");
    row("no output", "render jump.x", 2, "-o is missing; see 'lumenta help render'");
    row("two places for a number", "render jump.x -o %d%04d.png", 2,
        "--output: %d%04d.png has more than one place for a number; see 'lumenta help render'");
    // Words.
    row("no verb", "", 2, "no verb is given; see 'lumenta help'");
    row("an unknown verb", "paint", 2, "there is no verb 'paint', but 'info', 'render', 'clip'; see 'lumenta help'");
    row("an unknown verb to be explained", "help paint", 2,
        "there is no verb 'paint', but 'info', 'render', 'clip'; see 'lumenta help'");
    row("an unknown option", "info jump.x --colour", 2, "unknown option '--colour'; see 'lumenta help info'");
    row("an option of the toolkit", "-platform xcb", 2, "unknown option '-p'; see 'lumenta help'");
    row("no model", "info", 2, "MODEL is missing; see 'lumenta help info'");
    row("two models", "info jump.x b.x", 2, "one MODEL is enough, but here is also 'b.x'; see 'lumenta help info'");
    row("an option without its value", "render jump.x -o", 2, "missing value after '-o'; see 'lumenta help render'");
}

void LumentaCommandTest::RefusesInOneLine()
{
    QFETCH(QStringList, words);
    QFETCH(int, exitCode);
    QFETCH(QString, error);
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("folder")));
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("taken.png")));
    QVERIFY(QFile::link(QStringLiteral("/dev/null"), Path(QStringLiteral("device.png"))));
    QFile wuson(kModels + QStringLiteral("Testwuson.X"));
    QVERIFY(wuson.open(QIODevice::ReadOnly));
    WriteFile(Path(QStringLiteral("cut.x")), wuson.read(3000));
    WriteFile(Path(QStringLiteral("empty.x")), "");
    WriteFile(Path(QStringLiteral("text.txt")), "Dear reader,\n");
    WriteFile(Path(QStringLiteral("points.obj")), "v 0 0 0\nv 1 0 0\nv 0 1 0\n");
    const QStringList before = EntriesOf(m_folder->path());

    const Outcome outcome = Run(words);

    QCOMPARE(outcome.errors, QStringLiteral("lumenta: %1\n").arg(error));
    QCOMPARE(outcome.exitCode, exitCode);
    QCOMPARE(outcome.output, QString());
    QCOMPARE(EntriesOf(m_folder->path()), before);
}

void LumentaCommandTest::LeavesNothingHalfWritten_data()
{
    QTest::addColumn<Hardship>("hardship");
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("error");

    QTest::newRow("a folder that may not be written to") << Hardship::NoPrivilege << Words("-o locked/a.png")
                                                         << "locked/a.png: the folder 'locked' may not be written to";
    QTest::newRow("a picture that may not be replaced")
        << Hardship::NoPrivilege << Words("-o kept.png")
        << "kept.png: could not be written: Existing file kept.png is not writable";
    // Less than any buffer holds, so it fails with the last write or never.
    QTest::newRow("a small picture larger than files may be")
        << Hardship::SmallFiles << Words("-o a.png") << "a.png: could not be written: File too large";
    QTest::newRow("a large picture larger than files may be")
        << Hardship::SmallFiles << Words("-o a.png --size 300x300") << "a.png: could not be written: File too large";
    QTest::newRow("a picture larger than the memory")
        << Hardship::LittleMemory << Words("-o a.png --size 16000x16000")
        << "a.png: No room for a picture of 16000 by 16000 pixels; Attempted to allocate 1024000000 bytes";
}

void LumentaCommandTest::LeavesNothingHalfWritten()
{
    QFETCH(Hardship, hardship);
    QFETCH(QStringList, words);
    QFETCH(QString, error);
    if (hardship == Hardship::LittleMemory && qstrlen(LUMENTA_SANITIZE) > 0)
        return Skip(QStringLiteral("sanitizers need more addresses than this case leaves"), __LINE__);
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("locked")));
    WriteFile(Path(QStringLiteral("kept.png")), "precious");
    QVERIFY(QFile::setPermissions(Path(QStringLiteral("locked")), QFile::ReadOwner | QFile::ExeOwner));
    QVERIFY(QFile::setPermissions(Path(QStringLiteral("kept.png")), QFile::ReadOwner));
    const QStringList before = EntriesOf(m_folder->path());

    CommandRunner runner(m_folder->path());
    runner.SetHardship(hardship);
    const Outcome outcome = runner.Run(Words("render :figure --renderer painter --size 64x64") + words);

    QCOMPARE(outcome.errors, QStringLiteral("lumenta: %1\n").arg(error));
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(EntriesOf(m_folder->path()), before);
    QCOMPARE(QFileInfo(Path(QStringLiteral("kept.png"))).size(), 8);
}

/// One picture of a series fits, the next does not.
void LumentaCommandTest::ReportsAFullDisk()
{
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("full")));
    const QByteArray disk = QFile::encodeName(Path(QStringLiteral("full")));
    if (mount("none", disk.constData(), "tmpfs", 0, "size=12k") != 0)
        return Skip(QStringLiteral("no disk can be mounted here: ") + QLatin1String(std::strerror(errno)), __LINE__);
    const Outcome outcome = Run(Words("render :figure --renderer painter --frames 2 --size 64x64 -o full/%d.png"));
    const QStringList left = EntriesOf(Path(QStringLiteral("full")));
    const QImage first(Path(QStringLiteral("full/0.png")));
    QCOMPARE(umount(disk.constData()), 0);

    QCOMPARE(outcome.errors, QStringLiteral("lumenta: full/1.png: could not be written: No space left on device\n"));
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(left, QStringList(QStringLiteral("0.png")));
    QVERIFY(!first.isNull());
}

void LumentaCommandTest::ReportsAnOutputThatTakesNothing()
{
    CommandRunner runner(m_folder->path());
    runner.setStandardOutputFile(QStringLiteral("/dev/full"));
    const Outcome outcome = runner.Run(Words("info jump.x"));
    QCOMPARE(outcome.errors, QStringLiteral("lumenta: standard output: No space left on device\n"));
    QCOMPARE(outcome.exitCode, 1);
}

/// Every number against the model itself, bit by bit.
void LumentaCommandTest::TellsWhatTheFigureHolds()
{
    const Outcome outcome = Run(Words("info :figure --json"));
    QCOMPARE(outcome.errors, QString());
    const QJsonObject facts = QJsonDocument::fromJson(outcome.output.toUtf8()).object();

    const Host::Model model = Host::MakeSampleFigure();
    QJsonArray meshes;
    std::set<int> bones;
    for (const SkinAnimation::Node* node : model.scene->nodes)
        for (const SkinAnimation::Geometry* mesh : node->geometries) {
            meshes += QJsonObject{{QStringLiteral("name"), mesh->name},
                                  {QStringLiteral("vertices"), int(mesh->vertices.size())},
                                  {QStringLiteral("triangles"), int(mesh->indices.size() / 3)},
                                  {QStringLiteral("skinned"), mesh->skinned},
                                  {QStringLiteral("material"), mesh->materialName}};
            for (const SkinAnimation::SkinVertex& vertex : mesh->vertices)
                for (int i = 0; i < 4 && vertex.weights[i] != 0.0f; ++i)
                    bones.insert(vertex.boneIndices[i]);
        }
    QCOMPARE(facts[QStringLiteral("meshes")].toArray(), meshes);

    const QJsonArray nodes = facts[QStringLiteral("nodes")].toArray();
    QCOMPARE(nodes.size(), int(model.scene->nodes.size()));
    for (int i = 0; i < nodes.size(); ++i) {
        const SkinAnimation::Node& node = *model.scene->nodes[std::size_t(i)];
        const int parent = node.parent ? model.scene->GetNodeIndex(node.parent->name) : -1;
        QCOMPARE(nodes[i].toObject(), (QJsonObject{{QStringLiteral("name"), node.name},
                                                   {QStringLiteral("parent"), parent},
                                                   {QStringLiteral("bone"), bones.count(i) == 1}}));
    }

    Host::MeshCollector collector;
    model.scene->CreateMeshes(collector);
    const TBBox<float> box = Host::BoxOf(collector.meshes);
    QCOMPARE(facts[QStringLiteral("boundingBox")].toObject(),
             (QJsonObject{{QStringLiteral("min"), PointOf(box.min)}, {QStringLiteral("max"), PointOf(box.max)}}));
    QCOMPARE(facts[QStringLiteral("up")].toArray(), PointOf(model.up));
    QCOMPARE(facts[QStringLiteral("materials")].toArray().size(), int(model.materials.size()));
    QCOMPARE(facts[QStringLiteral("materials")][0][QStringLiteral("parameters")].toObject(),
             (QJsonObject{{QStringLiteral("diffuse"), QStringLiteral("#ffffff")},
                          {QStringLiteral("texture"), QStringLiteral("stripes")}}));
}

/// Numbers counted in the text of the files: frames, faces, skin weights, and
/// ticks of the last key over ticks per second.
void LumentaCommandTest::TellsWhatAFileHolds_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("nNodes");
    QTest::addColumn<int>("nBones");
    QTest::addColumn<QStringList>("meshes");
    QTest::addColumn<QStringList>("animations");

    QTest::newRow("three animations") << "Testwuson.X" << 40 << 37 << QStringList{"Wuson 3732 skinned"}
                                      << QStringList{"Wuson_Run 966.667 ms 39", "Wuson_Walk 3600 ms 39",
                                                     "Wuson_Bind 0 ms 39"};
    QTest::newRow("three meshes") << "BCN_Epileptic.X" << 58 << 54
                                  << QStringList{"Torso 1966 skinned", "Head 2036 skinned", "Legs 1124 skinned"}
                                  << QStringList{"Epileptisch 3300 ms 57"};
}

void LumentaCommandTest::TellsWhatAFileHolds()
{
    QFETCH(QString, file);
    const Outcome outcome = Run({QStringLiteral("info"), kModels + file, QStringLiteral("--json")});
    QCOMPARE(outcome.errors, QString());
    const QJsonObject facts = QJsonDocument::fromJson(outcome.output.toUtf8()).object();

    int nBones = 0;
    const QJsonArray nodes = facts[QStringLiteral("nodes")].toArray();
    for (const QJsonValue& node : nodes)
        nBones += node[QStringLiteral("bone")].toBool() ? 1 : 0;
    QTEST(nodes.size(), "nNodes");
    QTEST(nBones, "nBones");

    QStringList meshes;
    for (const QJsonValue& mesh : facts[QStringLiteral("meshes")].toArray())
        meshes +=
            QStringLiteral("%1 %2 %3")
                .arg(mesh[QStringLiteral("name")].toString())
                .arg(mesh[QStringLiteral("triangles")].toInt())
                .arg(mesh[QStringLiteral("skinned")].toBool() ? QStringLiteral("skinned") : QStringLiteral("rigid"));
    QTEST(meshes, "meshes");

    QStringList animations;
    for (const QJsonValue& each : facts[QStringLiteral("animations")].toArray())
        animations += QStringLiteral("%1 %2 ms %3")
                          .arg(each[QStringLiteral("name")].toString())
                          .arg(each[QStringLiteral("duration")].toDouble(), 0, 'g', 6)
                          .arg(each[QStringLiteral("tracks")].toInt());
    QTEST(animations, "animations");
}

void LumentaCommandTest::KeepsNamesFromTheTerminal()
{
    for (const char* words : {"info triangle.obj", "info triangle.obj --json"}) {
        const Outcome outcome = Run(Words(words));
        QCOMPARE(outcome.exitCode, 0);
        QVERIFY(outcome.output.contains(QStringLiteral("red\\u001b[31m")));
        QVERIFY(!outcome.output.contains(QLatin1Char('\x1b')));
    }
}

void LumentaCommandTest::DrawsTheFigureUprightInTheMiddle_data()
{
    QTest::addColumn<QStringList>("words");
    for (const char* renderer : {"embree", "painter"}) {
        QTest::addRow("%s, square", renderer)
            << Words("--size 96x96 --renderer") + QStringList(QLatin1String(renderer));
        QTest::addRow("%s, wide, posed", renderer)
            << Words("--size 150x80 --animation wave --time 400 --renderer") + QStringList(QLatin1String(renderer));
    }
    QTest::newRow("from behind, from above") << Words("--size 96x96 --azimuth 180 --elevation 40");
}

void LumentaCommandTest::DrawsTheFigureUprightInTheMiddle()
{
    QFETCH(QStringList, words);
    QCOMPARE(Run(Words("render :figure --samples 4 -o a.png") + words).errors, QString());
    const QImage picture(Path(QStringLiteral("a.png")));
    const QStringList size = words[words.indexOf(QStringLiteral("--size")) + 1].split(QLatin1Char('x'));
    QCOMPARE(picture.size(), QSize(size[0].toInt(), size[1].toInt()));

    const QRect figure = Find(picture, IsColoured).bounds;
    QVERIFY(picture.rect().adjusted(1, 1, -1, -1).contains(figure));
    QVERIFY(figure.height() > picture.height() / 2);
    QVERIFY(std::abs(figure.center().x() - picture.width() / 2) < picture.height() / 6);
    QVERIFY(!IsDark(picture.pixelColor(0, 0))
            && !IsDark(picture.pixelColor(picture.width() - 1, picture.height() - 1)));

    const double wool = Find(picture, IsWool).meanY;
    QVERIFY(figure.top() < wool && wool < Find(picture, IsDenim).meanY);
}

void LumentaCommandTest::HidesByName_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QStringList>("left");

    QTest::newRow("nothing") << QStringList() << Words("felt denim wool");
    QTest::newRow("a mesh") << Words("--hide-mesh trousers") << Words("felt wool");
    QTest::newRow("a material of several meshes") << Words("--hide-material felt") << Words("denim wool");
    QTest::newRow("a mesh and a material") << Words("--hide-material felt --hide-mesh jumper") << Words("denim");
}

void LumentaCommandTest::HidesByName()
{
    QFETCH(QStringList, words);
    const QImage picture = Picture(QStringList(QStringLiteral(":figure")) + words);
    QStringList left;
    using IsPart = bool (*)(const QColor&);
    const std::pair<const char*, IsPart> parts[] = {{"felt", IsFelt}, {"denim", IsDenim}, {"wool", IsWool}};
    for (const auto& [name, isPart] : parts)
        if (Find(picture, isPart).nPixels > 10)
            left += QLatin1String(name);
    QTEST(left, "left");
}

void LumentaCommandTest::NamesItsFiles_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QStringList>("files");

    const auto row = [](const char* name, const char* words, const char* files) {
        QTest::newRow(name) << Words(words) << Words(files);
    };
    row("one picture", ":figure -o a.png", "a.png");
    row("a contact sheet", ":figure --frames 3 -o a.png", "a.png");
    row("a series", ":figure --frames 3 -o a%04d.png", "a0000.png a0001.png a0002.png");
    row("a series without leading zeros", "jump.x --frames 2 -o a%d.PNG", "a0.PNG a1.PNG");
    row("a series of one", ":figure -o a%02d.png", "a00.png");
    row("a turn has twelve frames", "jump.x --turntable -o %02d.png",
        "00.png 01.png 02.png 03.png 04.png 05.png 06.png 07.png 08.png 09.png 10.png 11.png");
    row("a turn around one pose", ":figure --turntable --time 250 --frames 2 -o a%d.png", "a0.png a1.png");
    row("beyond ASCII, in and out", "Würfel.x -o 立方体.png", "立方体.png");
    row("a colon in front", "jump.x -o :a.png", ":a.png");
}

void LumentaCommandTest::NamesItsFiles()
{
    QFETCH(QStringList, words);
    WriteFile(Path(QStringLiteral("Würfel.x")), kJump);
    const QStringList before = EntriesOf(m_folder->path());

    const Outcome outcome = Run(Words("render --size 16x16 --samples 1") + words);

    QCOMPARE(outcome.errors, QString());
    QCOMPARE(outcome.output, QString());
    QStringList files;
    for (const QString& entry : EntriesOf(m_folder->path()))
        if (!before.contains(entry)) {
            files += entry;
            QVERIFY(!QImage(Path(entry)).isNull());
        }
    QTEST(files, "files");
}

/// The square jumps to more than twice its height and comes down again: it must
/// neither leave the picture, nor drag the camera along, nor lift the floor.
void LumentaCommandTest::KeepsCameraAndFloorStill()
{
    const Outcome outcome = Run(Words("render jump.x --frames 3 --azimuth 0 --size 80x80 --samples 4 -o %d.png"));
    QCOMPARE(outcome.errors, QString());
    const QImage low(Path(QStringLiteral("0.png")));
    const QImage high(Path(QStringLiteral("1.png")));
    const QRect below = Find(low, IsDark).bounds;
    const QRect above = Find(high, IsDark).bounds;

    QVERIFY(low.rect().adjusted(1, 1, -1, -1).contains(below));
    QVERIFY(low.rect().adjusted(1, 1, -1, -1).contains(above));
    QVERIFY(above.bottom() < below.top() - below.height());
    QVERIFY(std::abs(above.width() - below.width()) <= below.width() / 4);
    QCOMPARE(QImage(Path(QStringLiteral("2.png"))), low);
    QCOMPARE(high.pixelColor(2, 78), low.pixelColor(2, 78));
}

void LumentaCommandTest::DrawsTheSameWithAnyNumberOfThreads_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::newRow("embree") << Words(":figure --renderer embree");
    QTest::newRow("painter") << Words(":figure --renderer painter");
}

void LumentaCommandTest::DrawsTheSameWithAnyNumberOfThreads()
{
    QFETCH(QStringList, words);
    const QImage alone = Picture(words + Words("--threads 1"));
    QVERIFY(!alone.isNull());
    QCOMPARE(Picture(words + Words("--threads 2")), alone);
    QCOMPARE(Picture(words), alone);
}

void LumentaCommandTest::FindsTextures_data()
{
    QTest::addColumn<QByteArray>("named");
    QTest::addColumn<QString>("placed");
    QTest::addColumn<QString>("warning");

    QTest::newRow("where the model says") << QByteArray("maps/wall.png") << "maps/wall.png"
                                          << "";
    QTest::newRow("with backslashes") << QByteArray("maps\\wall.png") << "maps/wall.png"
                                      << "";
    QTest::newRow("beside the model, not where it was drawn") << QByteArray("C:\\art\\wall.png") << "wall.png"
                                                              << "";
    QTest::newRow("nowhere") << QByteArray("maps/wall.png") << "other.png"
                             << "lumenta: models/triangle.obj: warning: texture 'maps/wall.png' was not found\n";
}

void LumentaCommandTest::FindsTextures()
{
    QFETCH(QByteArray, named);
    QFETCH(QString, placed);
    QFETCH(QString, warning);
    // The model lies in another folder than the one the command runs in.
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("models/maps")));
    WriteFile(Path(QStringLiteral("models/triangle.obj")), kTriangle);
    WriteFile(Path(QStringLiteral("models/wall.mtl")), "newmtl wall\nKd 1 1 1\nmap_Kd " + named + "\n");
    QImage red(4, 4, QImage::Format_RGB32);
    red.fill(QColor(220, 30, 20));
    QVERIFY(red.save(Path(QStringLiteral("models/") + placed)));

    const Outcome outcome = Run(Words("render models/triangle.obj --azimuth 0 --size 32x32 --samples 1 -o a.png"));

    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.errors, warning);
    QCOMPARE(Find(QImage(Path(QStringLiteral("a.png"))), IsFelt).nPixels > 50, warning.isEmpty());
}

void LumentaCommandTest::ListsWhatAClipHolds_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("text");

    QTest::newRow("keys are made on the boundaries") << Words("--from 250 --to 750")
                                                     << "'hop': 250 to 750 ms of 'Jump', 500 ms long\n"
                                                        "  node  keys  first ms  last ms\n"
                                                        "  Box      3         0      500\n"
                                                        "1 track, 3 keys\n"
                                                        "Dropped as motionless: 'Post'\n";
    QTest::newRow("a single moment") << Words("--from 500 --to 500")
                                     << "'hop': 500 to 500 ms of 'Jump', 0 ms long\n"
                                        "  node  keys  first ms  last ms\n"
                                        "  Box      1         0        0\n"
                                        "1 track, 1 key\n"
                                        "Dropped as motionless: 'Post'\n";
    QTest::newRow("beyond the end") << Words("--from 2000 --to 3000.5")
                                    << "'hop': 2000 to 3000.5 ms of 'Jump', 0 ms long\n"
                                       "  node  keys  first ms  last ms\n"
                                       "  Box      0         -        -\n"
                                       "  Post     0         -        -\n"
                                       "2 tracks, 0 keys\n"
                                       "Dropped as motionless: none\n";
}

void LumentaCommandTest::ListsWhatAClipHolds()
{
    QFETCH(QStringList, words);
    const QStringList common = Words("clip jump.x --animation Jump --name hop") + words;
    const Outcome outcome = Run(common);
    QCOMPARE(outcome.errors, QString());
    QTEST(outcome.output, "text");

    // Drawn, it is what the source shows at the same moment.
    const Outcome drawn = Run(common + Words("--size 40x40 --samples 1 -o clip.png"));
    QTEST(drawn.output, "text");
    const QString from = words[1];
    QCOMPARE(Run(Words("render jump.x --size 40x40 --samples 1 -o source.png --time") + QStringList(from)).exitCode, 0);
    if (!outcome.output.contains(QStringLiteral("0 keys")))
        QCOMPARE(QImage(Path(QStringLiteral("clip.png"))), QImage(Path(QStringLiteral("source.png"))));
}

/// In a locale that really exists, or it would be the same as none.
void LumentaCommandTest::ReadsAndWritesNumbersWithAPoint()
{
    QCOMPARE(QProcess::execute(QStringLiteral("localedef"),
                               {QStringLiteral("-c"), QStringLiteral("-i"), QStringLiteral("de_DE"),
                                QStringLiteral("-f"), QStringLiteral("UTF-8"), Path(QStringLiteral("de_DE.UTF-8"))}),
             0);
    const QStringList words = Words("clip jump.x --animation 0 --from 0.5 --to 750.25 --name hop");
    const Outcome usual = Run(words);
    CommandRunner german(m_folder->path());
    german.SetVariable(QStringLiteral("LOCPATH"), m_folder->path());
    german.SetVariable(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));

    QCOMPARE(german.Run(words).output, usual.output);
    QVERIFY(usual.output.contains(QStringLiteral("0.5 to 750.25 ms")));
}

void LumentaCommandTest::ShowsProgressOnATerminalOnly()
{
    const int controller = posix_openpt(O_RDWR | O_NOCTTY);
    QVERIFY(controller >= 0 && grantpt(controller) == 0 && unlockpt(controller) == 0);
    const int terminal = open(ptsname(controller), O_RDWR | O_NOCTTY);
    CommandRunner runner(m_folder->path());
    runner.SetTerminal(terminal);
    const QStringList words = Words("render :figure --frames 2 --size 16x16 --samples 1 -o a%d.png");
    QCOMPARE(runner.Run(words).exitCode, 0);

    QByteArray shown(4096, '\0');
    shown.resize(int(read(controller, shown.data(), std::size_t(shown.size()))));
    close(terminal);
    close(controller);
    QVERIFY(shown.contains("% frame 1 of 2"));
    QVERIFY(shown.contains("100% frame 2 of 2"));
    QVERIFY(shown.endsWith("\r\033[K"));
    QCOMPARE(Run(words).errors, QString());
}

void LumentaCommandTest::ExplainsEveryOption_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QStringList>("options");

    const QStringList picture = Words("--time --frames --turntable --size --renderer --samples --threads --azimuth "
                                      "--elevation --up --no-ground --hide-mesh --hide-material --output");
    QTest::newRow("the command") << Words("--help") << Words("info render clip --version");
    QTest::newRow("the command, as a verb") << Words("help") << Words("info render clip --version");
    QTest::newRow("info") << Words("help info") << Words("--json");
    QTest::newRow("render") << Words("render --help") << picture + Words("--animation");
    QTest::newRow("clip") << Words("clip -h") << picture + Words("--animation --from --to --name");
}

void LumentaCommandTest::ExplainsEveryOption()
{
    QFETCH(QStringList, words);
    QFETCH(QStringList, options);
    const Outcome outcome = Run(words);
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.errors, QString());

    for (const QString& heading : Words("NAME SYNOPSIS DESCRIPTION OPTIONS EXAMPLES"))
        QVERIFY2(outcome.output.contains(heading + QLatin1Char('\n')), qPrintable(heading));
    QVERIFY(outcome.output.contains(QStringLiteral("\nEXIT STATUS\n")));
    for (const QString& option : options + Words("--help"))
        QVERIFY2(outcome.output.contains(QStringLiteral("    ") + option)
                     || outcome.output.contains(QStringLiteral(", ") + option),
                 qPrintable(option));
    for (const QString& line : outcome.output.split(QLatin1Char('\n')))
        QVERIFY2(line.size() <= 80, qPrintable(line));
}

void LumentaCommandTest::TellsItsVersion()
{
    QCOMPARE(Run(Words("--version")).output, QStringLiteral("lumenta " LUMENTA_VERSION "\n"));
}

QTEST_GUILESS_MAIN(LumentaCommandTest)
#include "lumenta_command_test.moc"
