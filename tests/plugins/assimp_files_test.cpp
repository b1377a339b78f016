// Files from the loader's door: what comes in, and what is turned away.

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/Picture.h"
#include "reference/plugins/assimp-loader/AssimpLoader.h"

#include <QTemporaryDir>
#include <QtTest>

#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

// Assimp leaves memory behind when it meets a broken file. What the loader
// itself leaves behind still counts.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions()
{
    return "leak:libassimp";
}

namespace {

const QString kDemo = QStringLiteral("/usr/share/assimp/models/X/Testwuson.X");
const char kMissing[] = "install the Debian package assimp-testmodels";

// One triangle, left-handed: seen from -z it runs clockwise, and its normal points there.
const char kTriangleX[] = R"(xof 0303txt 0032
Mesh triangle {
 3; 0;0;2;, 0;1;2;, 1;0;2;;
 1; 3;0,1,2;;
 MeshNormals { 1; 0;0;-1;; 1; 3;0,0,0;; }
 MeshTextureCoords { 3; 0;0;, 0.25;0.125;, 1;1;; }
})";

const char kTriangleObj[] = R"(v 0 0 -2
v 0 1 -2
v 1 0 -2
vt 0 0
vt 0.25 0.125
vt 1 1
vn 0 0 1
f 1/1/1 3/3/1 2/2/1
)";

QByteArray DemoModel()
{
    QFile file(kDemo);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString ErrorOf(const QString& fileName)
{
    try {
        Host::LoadModel(fileName);
        return QStringLiteral("was loaded");
    } catch (const LoadingException& failure) {
        return QStringLiteral("LoadingException: ") + failure.GetErrorText();
    } catch (const FileException& failure) {
        return QStringLiteral("FileException: ") + failure.GetErrorText();
    }
}

/// ErrorOf() as a user without rights sees it; root may read everything.
QString ErrorOfForNobody(const QString& fileName)
{
    int channel[2];
    if (pipe(channel) != 0)
        return {};
    const pid_t child = fork();
    if (child == 0) {
        constexpr uid_t nobody = 65534;
        const bool dropped =
            geteuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(nobody) == 0 && setuid(nobody) == 0);
        const QByteArray text = dropped ? ErrorOf(fileName).toUtf8() : "rights could not be dropped";
        _exit(write(channel[1], text.constData(), std::size_t(text.size())) == text.size() ? 0 : 1);
    }
    close(channel[1]);
    char text[4096];
    const ssize_t length = read(channel[0], text, sizeof text);
    close(channel[0]);
    waitpid(child, nullptr, 0);
    return QString::fromUtf8(text, int(std::max<ssize_t>(length, 0)));
}

} // namespace

class AssimpFilesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TurnsAway_data();
    void TurnsAway();
    void TurnsAwayWhatIsNoFile();
    void TurnsAwayTruncatedModels_data();
    void TurnsAwayTruncatedModels();
    void ComesOutRightHandedAndUpright_data();
    void ComesOutRightHandedAndUpright();
    void TellsHowFarItIs();
    void LetsTheListenerGiveUp();

private:
    QString Write(const QString& name, const QByteArray& content)
    {
        QFile file(m_folder.filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? file.fileName() : QString();
    }

    QTemporaryDir m_folder;
};

void AssimpFilesTest::TurnsAway_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("error"); // %1 is the file

    const QString refusal = "LoadingException: The model '%1' can't be loaded: ";
    QTest::newRow("nothing in it") << "empty.obj" << QByteArray() << "FileException: The model file is empty\nFile: %1";
    QTest::newRow("a letter") << "letter.txt" << QByteArray("Dear model,\n") << refusal + "its format is unknown";
    QTest::newRow("a letter that calls itself a model") << "letter.x" << QByteArray("Dear model, how are you?\n")
                                                        << refusal + "Header mismatch, file is not an XFile.";
    QTest::newRow("points only") << "dust.obj" << QByteArray("v 0 0 0\nv 1 0 0\np 1 2\n")
                                 << refusal + "it holds no usable triangles";
    QTest::newRow("a scene without meshes")
        << "empty.gltf"
        << QByteArray(R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"name":"n"}]})")
        << refusal + "it holds no usable triangles";
    QTest::newRow("faces without corners") << "hollow.off" << QByteArray("OFF\n3 5 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n")
                                           << refusal + "mesh '' has faces whose corners are missing";
    QTest::newRow("corners beyond the vertices")
        << "beyond.ply"
        << QByteArray(
               "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
               "element face 1\nproperty list uchar int vertex_index\nend_header\n0 0 0\n1 0 0\n0 1 0\n4 0 1 2 9\n")
        << refusal + "mesh '' has faces whose corners are missing";
    QTest::newRow("a percent sign in the name")
        << "100 %2.txt" << QByteArray("Dear model,\n") << refusal + "its format is unknown";
}

void AssimpFilesTest::TurnsAway()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QString, error);
    const QString file = Write(name, content);
    QCOMPARE(ErrorOf(file), error.replace("%1", file));
}

void AssimpFilesTest::TurnsAwayWhatIsNoFile()
{
    const QString missing = m_folder.filePath("nowhere.obj");
    QCOMPARE(ErrorOf(missing), "FileException: The model file does not exist\nFile: " + missing);
    QCOMPARE(ErrorOf(m_folder.path()),
             "FileException: A model file was expected, but this is a folder\nFile: " + m_folder.path());

    const QString secret = Write("secret.obj", kTriangleObj);
    QCOMPARE(ErrorOf(secret), QString("was loaded"));
    QCOMPARE(chmod(QFile::encodeName(m_folder.path()).constData(), 0755), 0);
    QCOMPARE(chmod(QFile::encodeName(secret).constData(), 0), 0);
    QCOMPARE(ErrorOfForNobody(secret),
             "FileException: The model file can't be read: Permission denied\nFile: " + secret);
}

void AssimpFilesTest::TurnsAwayTruncatedModels_data()
{
    QTest::addColumn<int>("percent");
    QTest::addColumn<QString>("reason");

    QTest::newRow("within the templates") << 1 << "Line 327: Separator character (';' or ',') expected.";
    QTest::newRow("within the vertices") << 10 << "Line 2683: Separator character (';' or ',') expected.";
    QTest::newRow("within the weights") << 50 << "Line 16333: Separator character (';' or ',') expected.";
    QTest::newRow("within a key") << 75 << "Line 30617: Number expected.";
    QTest::newRow("within the last motion") << 99 << "Line 35930: Separator character (';' or ',') expected.";
}

void AssimpFilesTest::TurnsAwayTruncatedModels()
{
    QFETCH(int, percent);
    QFETCH(QString, reason);
    const QByteArray whole = DemoModel();
    QVERIFY2(!whole.isEmpty(), kMissing);
    const QString file = Write("truncated.X", whole.left(int(qint64(whole.size()) * percent / 100)));
    QCOMPARE(ErrorOf(file), QStringLiteral("LoadingException: The model '%1' can't be loaded: %2").arg(file, reason));
}

void AssimpFilesTest::ComesOutRightHandedAndUpright_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<float>("v"); // of the file's 0.125

    QTest::newRow("a left-handed format, images from the top") << "triangle.x" << QByteArray(kTriangleX) << 0.125f;
    QTest::newRow("a right-handed format, images from the bottom")
        << "triangle.obj" << QByteArray(kTriangleObj) << 0.875f;
}

/// Both files are one triangle at z = -2 that looks along +z.
void AssimpFilesTest::ComesOutRightHandedAndUpright()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(float, v);
    const Host::Model model = Host::LoadModel(Write(name, content));
    Host::MeshCollector collector;
    model.scene->CreateMeshes(collector);
    QCOMPARE(collector.meshes.size(), std::size_t(1));
    const Host::PosedMesh& mesh = collector.meshes.front();

    std::vector<MeshVertex> corners;
    for (const unsigned int index : mesh.indices)
        corners.push_back(mesh.vertices[index]);
    QCOMPARE(corners.size(), std::size_t(3));
    const TVec3<float> front =
        Cross(corners[0].position - corners[1].position, corners[2].position - corners[1].position);
    QCOMPARE(front, (TVec3<float>{0, 0, 1}));
    int found = 0;
    for (const MeshVertex& corner : corners) {
        QCOMPARE(corner.normal, (TVec3<float>{0, 0, 1}));
        QCOMPARE(corner.position.z, -2.0f);
        if (corner.position.y == 1.0f) {
            ++found;
            QCOMPARE(corner.texCoord, (TVec2<float>{0.25f, v}));
        }
    }
    QCOMPARE(found, 1);
    QCOMPARE(model.fileName, m_folder.filePath(name));
}

void AssimpFilesTest::TellsHowFarItIs()
{
    QVERIFY2(QFile::exists(kDemo), kMissing);
    QVector<int> heard;
    Host::LoadModel(kDemo, [&](int percent) { heard.append(percent); });
    QVERIFY(heard.size() > 2);
    QCOMPARE(heard.last(), 100);
    for (int i = 1; i < heard.size(); ++i)
        QVERIFY(heard[i] > heard[i - 1]);
}

/// What the listener throws ends the loading and arrives unchanged.
void AssimpFilesTest::LetsTheListenerGiveUp()
{
    const QString file = Write("triangle.obj", kTriangleObj);
    int calls = 0;
    try {
        Host::LoadModel(file, [&](int) {
            ++calls;
            throw 42;
        });
        QFAIL("was loaded");
    } catch (int thrown) {
        QCOMPARE(thrown, 42);
    }
    QCOMPARE(calls, 1);
}

QTEST_GUILESS_MAIN(AssimpFilesTest)
#include "assimp_files_test.moc"
