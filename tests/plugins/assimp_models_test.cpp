// Real models: posed as Assimp's own data says, and whole.

#include "lumenta/foundation/Exceptions.h"
#include "reference/plugins/assimp-loader/AssimpLoader.h"
#include "tests/plugins/assimp_compare.h"

#include <QDirIterator>
#include <QtTest>

#include <assimp/Importer.hpp>

#include <set>

namespace {

const QString kModels = QStringLiteral("/usr/share/assimp/models/");
const char kMissing[] = "install the Debian package assimp-testmodels";

bool IsFinite(const Matrix& matrix)
{
    return std::all_of(std::begin(matrix.m), std::end(matrix.m), [](float element) { return std::isfinite(element); });
}

/// What is wrong with the influences of a vertex, or nothing.
QString FaultOf(const SkinAnimation::SkinVertex& vertex, std::size_t nodes)
{
    double sum = 0.0;
    float last = 1.0f;
    for (int j = 0; j < 4 && vertex.weights[j] != 0.0f; ++j) {
        if (!(vertex.weights[j] > 0.0f && vertex.weights[j] <= last))
            return QStringLiteral("weights out of order");
        if (vertex.boneIndices[j] >= nodes)
            return QStringLiteral("bone out of range");
        last = vertex.weights[j];
        sum += double(last);
    }
    return sum == 0.0 || std::fabs(sum - 1.0) < 1e-6 ? QString() : QStringLiteral("weights sum to %1").arg(sum);
}

QString FaultOf(const SkinAnimation::Geometry& geometry, const SkinAnimation::Node& node, std::size_t nodes)
{
    if (geometry.indices.empty() || geometry.indices.size() % 3 != 0)
        return QStringLiteral("no whole triangles");
    for (const std::uint32_t index : geometry.indices)
        if (index >= geometry.vertices.size())
            return QStringLiteral("index out of range");
    for (const std::uint32_t slot : geometry.normalIndices)
        if (slot >= node.normalCount)
            return QStringLiteral("normal slot out of range");
    if (!geometry.normalIndices.empty() && geometry.normalIndices.size() != geometry.indices.size())
        return QStringLiteral("normal slots are not parallel to the indices");
    for (const SkinAnimation::SkinVertex& vertex : geometry.vertices) {
        if (!std::isfinite(Dot(vertex.position, vertex.position) + vertex.normal.x + vertex.texCoord.x))
            return QStringLiteral("vertex is not finite");
        const QString fault = FaultOf(vertex, nodes);
        if (!fault.isEmpty())
            return fault;
    }
    return {};
}

QString FaultOf(const SkinAnimation::AnimationLayer& layer)
{
    for (const SkinAnimation::NodeTrack& track : layer.tracks) {
        const auto later = [](const auto& a, const auto& b) { return a.time < b.time; };
        if (!track.node || track.keys.empty() || !std::is_sorted(track.keys.begin(), track.keys.end(), later))
            return QStringLiteral("track without a node, without keys or out of order");
        if (track.keys.back().time > layer.duration)
            return QStringLiteral("keys beyond the end");
    }
    return {};
}

QString FaultOf(const SkinAnimation::Scene& scene)
{
    std::set<const SkinAnimation::Node*> seen{nullptr};
    for (const SkinAnimation::Node* node : scene.nodes) {
        if (!seen.count(node->parent) || !seen.insert(node).second || (node->parent == nullptr) != (node == scene.root))
            return QStringLiteral("nodes are not in order");
        if (!IsFinite(node->globalTransform) || !IsFinite(node->skinTransform) || !IsFinite(node->originGlobalInverse))
            return QStringLiteral("matrix of '%1' is not finite").arg(node->name);
        for (const SkinAnimation::Geometry* geometry : node->geometries) {
            const QString fault = FaultOf(*geometry, *node, scene.nodes.size());
            if (!fault.isEmpty())
                return fault;
        }
    }
    for (const SkinAnimation::Animation* animation : scene.animations) {
        if (animation->layers.size() != 1 || !FaultOf(animation->layers.front()).isEmpty())
            return QStringLiteral("animation '%1': %2").arg(animation->name).arg(FaultOf(animation->layers.front()));
    }
    return {};
}

} // namespace

class AssimpModelsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void PosesAsTheFileSays_data();
    void PosesAsTheFileSays();
    void ShowsTheFilesOwnPoseAtFirst_data() { PosesAsTheFileSays_data(); }
    void ShowsTheFilesOwnPoseAtFirst();
    void FacesOutwards_data();
    void FacesOutwards();
    void HoldsTogether_data();
    void HoldsTogether();
};

void AssimpModelsTest::PosesAsTheFileSays_data()
{
    QTest::addColumn<QString>("file");
    // About twice what was measured. Posing is in float and chains a dozen matrices; it
    // finds the angle between two keys by its cosine, which tells small angles badly.
    QTest::addColumn<double>("positionLimit");
    QTest::addColumn<double>("normalLimit");

    QTest::newRow("a beast that runs and walks") << "X/Testwuson.X" << 1e-6 << 5e-6;
    QTest::newRow("a body in three meshes") << "X/BCN_Epileptic.X" << 4e-6 << 8e-6;
    QTest::newRow("weights that do not sum to 1") << "FBX/huesitos.fbx" << 1e-6 << 1e-6;
    QTest::newRow("up to six bones a vertex, of which four count") << "FBX/animation_with_skeleton.fbx" << 1e-2 << 5e-2;
    QTest::newRow("two bones, one of them moving") << "glTF2/simple_skin/simple_skin.gltf" << 2e-7 << 1e-6;
    QTest::newRow("rigid boxes that turn all the way round")
        << "Collada/anims_with_full_rotations_between_keys.DAE" << 1e-5 << 2e-5;
    QTest::newRow("a skeleton without a skin") << "BVH/01_01.bvh" << 4e-6 << 2e-5;
    QTest::newRow("a figure with six motions") << "MDL/MDL (HL1)/man.mdl" << 1e-6 << 1e-6;
    QTest::newRow("no word on the length of a tick") << "3DS/RotatingCube.3DS" << 4e-6 << 1e-5;
}

void AssimpModelsTest::PosesAsTheFileSays()
{
    QFETCH(QString, file);
    QFETCH(double, positionLimit);
    QFETCH(double, normalLimit);
    QVERIFY2(QFile::exists(kModels + file), kMissing);

    Host::Model model = Host::LoadModel(kModels + file);
    Assimp::Importer importer;
    const aiScene* const source = importer.ReadFile((kModels + file).toStdString(), Host::AssimpImportFlags());
    QVERIFY(source);
    QCOMPARE(unsigned(model.scene->animations.size()), source->mNumAnimations);
    QVERIFY(source->mNumAnimations > 0);

    Deviation largest;
    for (unsigned int a = 0; a < source->mNumAnimations; ++a) {
        const float duration = model.scene->animations[a]->duration;
        for (const float moment : {-0.3f, 0.0f, 0.137f, 0.5f, 0.911f, 1.0f, 1.7f}) {
            const float time = duration > 0.0f ? moment * duration : moment * 1000.0f;
            model.scene->CalculateAnimation(int(a), time);
            const Deviation found = Compare(Opinion::Pose(*source, source->mAnimations[a], double(time)),
                                            MeshesOf(*model.scene));
            QVERIFY(found.sameShape);
            largest.position = std::max(largest.position, found.position);
            largest.normal = std::max(largest.normal, found.normal);
        }
    }
    const QByteArray figures = QStringLiteral("%1 of the diagonal, normals %2")
                                   .arg(largest.position).arg(largest.normal).toUtf8();
    QVERIFY2(largest.position <= positionLimit && largest.normal <= normalLimit, figures.constData());
}

void AssimpModelsTest::ShowsTheFilesOwnPoseAtFirst()
{
    QFETCH(QString, file);
    QFETCH(double, positionLimit);
    QVERIFY2(QFile::exists(kModels + file), kMissing);

    const Host::Model model = Host::LoadModel(kModels + file);
    Assimp::Importer importer;
    const aiScene* const source = importer.ReadFile((kModels + file).toStdString(), Host::AssimpImportFlags());
    const Deviation found = Compare(Opinion::Pose(*source, nullptr, 0.0), MeshesOf(*model.scene));
    QVERIFY(found.sameShape);
    QVERIFY2(found.position <= positionLimit, qPrintable(QString::number(found.position)));
}

void AssimpModelsTest::FacesOutwards_data()
{
    QTest::addColumn<QString>("file");

    QTest::newRow("a left-handed format") << "X/Testwuson.X";
    QTest::newRow("a left-handed format, drawn in another program") << "X/BCN_Epileptic.X";
    QTest::newRow("a right-handed format") << "FBX/spider.fbx";
    QTest::newRow("a format of game figures") << "MD2/faerie.md2";
    QTest::newRow("a format of the web") << "glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb";
}

/// Normals computed from triangles would lie on the side of the file's own. Not
/// all: some triangles are degenerate.
void AssimpModelsTest::FacesOutwards()
{
    QFETCH(QString, file);
    QVERIFY2(QFile::exists(kModels + file), kMissing);
    const Host::Model model = Host::LoadModel(kModels + file);
    int faces = 0;
    int outwards = 0;
    for (const SkinAnimation::Node* node : model.scene->nodes) {
        for (const SkinAnimation::Geometry* geometry : node->geometries) {
            SkinAnimation::Geometry computed(geometry->name, false);
            computed.meshVertices = geometry->meshVertices;
            for (std::size_t k = 0; k < geometry->indices.size(); k += 3) {
                computed.indices.assign(geometry->indices.begin() + int(k), geometry->indices.begin() + int(k) + 3);
                computed.normalIndices = {0, 0, 0};
                std::vector<TVec3<float>> normal{{0, 0, 0}};
                computed.CollectNormals(normal);
                outwards += Dot(normal[0], geometry->vertices[computed.indices[0]].normal) > 0.0f;
                ++faces;
            }
        }
    }
    QVERIFY2(outwards > faces * 0.9, qPrintable(QStringLiteral("%1 of %2").arg(outwards).arg(faces)));
}

void AssimpModelsTest::HoldsTogether_data()
{
    QTest::addColumn<QString>("file");

    QVERIFY2(QFile::exists(kModels), kMissing);
    const QStringList patterns{"*.fbx", "*.dae",     "*.zae", "*.gltf", "*.glb",
                               "*.x",   "*.md5mesh", "*.smd", "*.bvh",  "*.3ds"};
    for (const char* folder : {"FBX", "Collada", "glTF", "glTF2", "X", "MD5", "SMD", "BVH", "3DS"}) {
        QDirIterator files(kModels + folder, patterns, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString file = files.next();
            QTest::newRow(qPrintable(file.mid(kModels.size()))) << file;
        }
    }
}

/// A test model either loads with everything in order, or is refused by name.
void AssimpModelsTest::HoldsTogether()
{
    QFETCH(QString, file);
    try {
        const Host::Model model = Host::LoadModel(file);
        QCOMPARE(FaultOf(*model.scene), QString());
        QVERIFY(!MeshesOf(*model.scene).empty());
    } catch (const LoadingException& refusal) {
        const QString start = QStringLiteral("The model '%1' can't be loaded: ").arg(file);
        QVERIFY2(refusal.GetErrorText().startsWith(start), qPrintable(refusal.GetErrorText()));
        QVERIFY(refusal.GetErrorText().size() > start.size());
    }
}

QTEST_GUILESS_MAIN(AssimpModelsTest)
#include "assimp_models_test.moc"
