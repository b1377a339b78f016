// Files from the loader's door, and scenes that files rarely show.

#include "lumenta/foundation/Exceptions.h"
#include "reference/plugins/assimp-loader/AssimpLoader.h"
#include "tests/plugins/assimp_opinion.h"
#include "tests/plugins/assimp_scene_builder.h"

#include <QTemporaryDir>
#include <QtTest>

#include <assimp/Importer.hpp>

#include <unistd.h>

using Change = void (*)(SceneBuilder&);
Q_DECLARE_METATYPE(Change)
Q_DECLARE_METATYPE(aiVector3D)

// Assimp leaves memory behind when it meets a broken file. What the loader
// itself leaves behind still counts.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions()
{
    return "leak:libassimp";
}

namespace {

const QString kModels = QStringLiteral("/usr/share/assimp/models/");

template <typename Action>
QString ErrorOf(Action load)
{
    try {
        load();
        return QStringLiteral("was loaded");
    } catch (const LoadingException& failure) {
        return QStringLiteral("LoadingException: ") + failure.GetErrorText();
    } catch (const FileException& failure) {
        return QStringLiteral("FileException: ") + failure.GetErrorText();
    }
}

} // namespace

class AssimpLoaderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void PosesAsTheFileSays_data();
    void PosesAsTheFileSays();
    void TurnsAway_data();
    void TurnsAway();
    void TellsHowFarItIs();
    void PosesAsTheSceneSays_data();
    void PosesAsTheSceneSays();
    void KeepsTheStrongestWeights();
    void TellsEqualNamesApart();
    void SharesNormalsByPosition();
    void FacesOutwardsWhereMirrored_data();
    void FacesOutwardsWhereMirrored();
    void ReportsDamage();
    void RefusesWhatItCannotHold();
    void ReadsMaterialsImagesAndTheUpAxis();
};

void AssimpLoaderTest::PosesAsTheFileSays_data()
{
    QTest::addColumn<QString>("file");
    // About twice what was measured. Posing is in float and chains a dozen matrices; it
    // finds the angle between two keys by its cosine, which tells small angles badly, and
    // Assimp takes the straight way between rotations that are nearly the same.
    QTest::addColumn<double>("limit");

    QTest::newRow("left-handed: a beast that runs and walks") << "X/Testwuson.X" << 1.5e-5;
    QTest::newRow("left-handed: a body in three meshes") << "X/BCN_Epileptic.X" << 6e-6;
    QTest::newRow("six bones a vertex, of which four count") << "FBX/animation_with_skeleton.fbx" << 2e-2;
    QTest::newRow("rotations not quite of unit length") << "glTF2/simple_skin/simple_skin.gltf" << 1e-4;
    QTest::newRow("no word on the length of a tick") << "3DS/RotatingCube.3DS" << 1e-6;
}

/// Faces look outwards, and each vertex is where Assimp's data says.
void AssimpLoaderTest::PosesAsTheFileSays()
{
    QFETCH(QString, file);
    QFETCH(double, limit);
    QVERIFY2(QFile::exists(kModels + file), "install the Debian package assimp-testmodels");
    const Host::Model model = Host::LoadModel(kModels + file);
    QCOMPARE(model.fileName, kModels + file);
    const Host::PosedMesh mesh = MeshesOf(*model.scene).at(0);
    const MeshVertex& corner = mesh.vertices[mesh.indices[0]];
    const auto edge = [&](std::size_t k) { return mesh.vertices[mesh.indices[k]].position - corner.position; };
    QVERIFY(Dot(Cross(edge(2), edge(1)), corner.normal) > 0.0f);

    Assimp::Importer importer;
    const aiScene* const source = importer.ReadFile((kModels + file).toStdString(), Host::AssimpImportFlags());
    QVERIFY(source && source->mNumAnimations > 0);
    const double deviation = LargestDeviation(model, *source);
    QVERIFY2(deviation <= limit, qPrintable(QString::number(deviation)));
}

/// Each row is a file, named like the row; none where there is no content.
void AssimpLoaderTest::TurnsAway_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("error"); // %1 is the file

    QFile demo(kModels + "X/Testwuson.X");
    QVERIFY(demo.open(QIODevice::ReadOnly));
    const QByteArray triangle("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n"), frame("xof 0303txt 0032\nFrame f { }\n");
    const QByteArray beyond("ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nproperty float y\n"
                            "property float z\nelement face 1\nproperty list uchar int vertex_index\nend_header\n"
                            "0 0 0\n4 0 0 0 9\n");
    const QString refusal = "LoadingException: The model '%1' can't be loaded: ";
    const QString corners = refusal + "mesh '' has faces whose corners are missing";
    QTest::newRow("missing.x") << QByteArray() << "FileException: The model file does not exist\nFile: %1";
    QTest::newRow(".") << QByteArray() << "FileException: A model file was expected, but this is a folder\nFile: %1";
    QTest::newRow("secret.x") << triangle << "FileException: The model file can't be read: Permission denied\nFile: %1";
    QTest::newRow("empty.obj") << QByteArray("") << "FileException: The model file is empty\nFile: %1";
    QTest::newRow("a letter of 100 %2.txt") << QByteArray("Dear model,\n") << refusal + "its format is unknown";
    QTest::newRow("no meshes.x") << frame << refusal + "it holds no usable triangles";
    QTest::newRow("faces without corners.off") << QByteArray("OFF\n3 5 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n") << corners;
    QTest::newRow("corners beyond the vertices.ply") << beyond << corners;
    QTest::newRow("truncated.x") << demo.read(demo.size() / 2)
                                 << refusal + "Line 16333: Separator character (';' or ',') expected.";
}

/// Root may read everything, so for a moment the test is somebody else.
void AssimpLoaderTest::TurnsAway()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, error);
    QTemporaryDir folder;
    QVERIFY(QFile::setPermissions(folder.path(), QFile::Permissions(0x7755)));
    QFile file(folder.filePath(QTest::currentDataTag()));
    QVERIFY(content.isNull() || (file.open(QIODevice::WriteOnly) && file.write(content) == content.size()));
    file.close();
    QVERIFY(!file.fileName().contains("secret") || file.setPermissions({}));

    const uid_t self = geteuid();
    QVERIFY(self != 0 || seteuid(65534) == 0);
    const QString found = ErrorOf([&] { Host::LoadModel(file.fileName()); });
    QCOMPARE(seteuid(self), 0);
    QCOMPARE(found, error.replace("%1", file.fileName()));
}

/// What the listener throws ends the loading and arrives unchanged.
void AssimpLoaderTest::TellsHowFarItIs()
{
    const QString file = kModels + "X/Testwuson.X";
    std::vector<int> heard;
    Host::LoadModel(file, [&](int percent) { heard.push_back(percent); });
    QVERIFY(heard.size() > 2 && heard.back() == 100);
    QVERIFY(std::adjacent_find(heard.begin(), heard.end(), std::greater_equal<>()) == heard.end());
    try {
        Host::LoadModel(file, [](int percent) { throw percent; });
        QFAIL("was loaded");
    } catch (int thrown) {
        QCOMPARE(thrown, heard.front());
    }
}

void AssimpLoaderTest::PosesAsTheSceneSays_data()
{
    QTest::addColumn<float>("duration");
    QTest::addColumn<Change>("change");

    const auto row = [](const char* name, float duration, Change change) { QTest::newRow(name) << duration << change; };
    row("a mesh with the same bind pose, and one with another", 90, [](SceneBuilder& b) {
        for (const float x : {2.0f, 9.0f}) {
            aiMesh* const mesh = b.AddMesh(b.AddNode(b.root, "other mesh " + std::to_string(x), MoveBy(x, 3, 4)));
            b.AddBone(mesh, "bone", MoveBy(1, 2, x > 2 ? 3.5f : 3), {{0, 1.0f}, {1, 1.0f}, {2, 1.0f}});
        }
    });
    row("the mesh's own node is one of its bones", 90,
        [](SceneBuilder& b) { b.AddBone(b.scene.mMeshes[0], "mesh", MoveBy(0, 1, 0), {{1, 0.25f}, {2, 0.5f}}); });
    row("the mesh's node is squeezed flat", 90, [](SceneBuilder& b) {
        aiMatrix4x4::Scaling({1, 1, 0}, b.root->mChildren[0]->mTransformation);
    });
    row("the bind pose is squeezed flat", 90, [](SceneBuilder& b) {
        aiMatrix4x4::Scaling({4, 0, 6}, b.scene.mMeshes[0]->mBones[0]->mOffsetMatrix);
    });
    row("a mesh at the end of a long chain", 90, [](SceneBuilder& b) {
        aiNode* node = b.root;
        for (int level = 0; level < 10000; ++level)
            node = b.AddNode(node, "", MoveBy(0, 0.25f, 0));
        b.AddMesh(node);
    });
    row("another length of ticks", 22.5f, [](SceneBuilder& b) { b.animation->mTicksPerSecond = 4000; });
    row("no word on ticks: 25 a second", 3600, [](SceneBuilder& b) { b.animation->mTicksPerSecond = 0; });
    row("ticks that make no sense", 3600, [](SceneBuilder& b) { b.animation->mTicksPerSecond = -4; });
    row("longer than its keys", 107, [](SceneBuilder& b) { b.animation->mDuration = 107; });
    row("an end that is not finite", 90, [](SceneBuilder& b) { b.animation->mDuration = qInf(); });
    row("no positions, no scalings: the node's own stay", 90, [](SceneBuilder& b) {
        b.animation->mChannels[0]->mNumPositionKeys = b.animation->mChannels[0]->mNumScalingKeys = 0;
    });
    row("a jump, keys out of order, and keys that are not finite", 90, [](SceneBuilder& b) {
        aiNodeAnim& channel = *b.animation->mChannels[0];
        const aiVector3D p(5, 7, 0);
        for (const aiVectorKey& key : {aiVectorKey(70, p), aiVectorKey(15, p), aiVectorKey(9, {NAN, 0, 0}),
                                       aiVectorKey(qQNaN(), p), aiVectorKey(qInf(), p), aiVectorKey(1e300, p)})
            Append(channel.mPositionKeys, channel.mNumPositionKeys, key);
    });
}

/// At rest and under way each vertex is where the offset matrices put it.
/// Position, rotation and scaling are keyed at times of their own.
void AssimpLoaderTest::PosesAsTheSceneSays()
{
    QFETCH(Change, change);
    SceneBuilder builder;
    aiMesh* const mesh = builder.AddMesh(builder.AddNode(builder.root, "mesh", MoveBy(2, 3, 4)));
    builder.AddNode(builder.AddNode(builder.root, "arm", MoveBy(0, 5, 0)), "bone", MoveBy(0, 1, 0));
    builder.AddBone(mesh, "bone", MoveBy(1, 2, 3), {{0, 1.0f}, {1, 0.75f}});
    aiNodeAnim& channel = *builder.AddChannel("arm", {{0, {0, 1, 0}}, {20, {1, 3, 0}}, {70, {8, 0, 1}}});
    const aiQuaternion turn(aiVector3D(1, 2, 2), 3.3f);
    for (const aiQuatKey& key : {aiQuatKey(10, {}), aiQuatKey(50, turn), aiQuatKey(90, turn * turn)})
        Append(channel.mRotationKeys, channel.mNumRotationKeys, key);
    for (const aiVectorKey& key : {aiVectorKey(20, {1, 1, 1}), aiVectorKey(50, {2, 0.5f, 1})})
        Append(channel.mScalingKeys, channel.mNumScalingKeys, key);
    change(builder);

    const Host::Model model = Host::ModelFromAssimp(builder.scene, "model");
    QTEST(model.scene->animations.at(0)->duration, "duration");
    QVERIFY(model.scene->animations[0]->layers.at(0).tracks.at(0).keys.size() <= 8); // each time once, the jump twice
    const double deviation = LargestDeviation(model, builder.scene);
    QVERIFY2(deviation < 1e-5, qPrintable(QString::number(deviation)));
}

/// One vertex has more than four bones; one has a bone twice, beside what is no
/// weight; one has nothing usable.
void AssimpLoaderTest::KeepsTheStrongestWeights()
{
    using Weights = QVector<QPair<int, float>>; // bone and weight
    const QVector<Weights> given{{{1, 0.5f}, {2, 1.0f}, {3, 0.25f}, {4, 2.0f}, {5, 0.25f}, {6, 0.5f}},
                                 {{3, NAN}, {1, 0.25f}, {2, 0.5f}, {4, -1.0f}, {1, 1.25f}, {5, HUGE_VALF}},
                                 {{1, 0.0f}, {2, -1.0f}}};
    const QVector<Weights> kept{{{4, 0.5f}, {2, 0.25f}, {1, 0.125f}, {6, 0.125f}}, {{1, 0.75f}, {2, 0.25f}}, {}};
    SceneBuilder builder;
    aiMesh* const mesh = builder.AddMesh(builder.root);
    for (int bone = 1; bone <= 6; ++bone)
        builder.AddNode(builder.root, std::to_string(bone));
    for (int vertex = 0; vertex < 3; ++vertex)
        for (const auto& [bone, weight] : given[vertex])
            builder.AddBone(mesh, std::to_string(bone).c_str(), {}, {{unsigned(vertex), weight}});
    builder.AddBone(builder.AddMesh(builder.root), "1", {}, {{0, 0.0f}});

    const Host::Model model = Host::ModelFromAssimp(builder.scene, "model");
    const auto& geometries = model.scene->root->geometries;
    QVERIFY(geometries.at(0)->skinned && !geometries.at(1)->skinned);
    for (int vertex = 0; vertex < 3; ++vertex) {
        const SkinAnimation::SkinVertex& read = geometries[0]->vertices.at(std::size_t(vertex));
        Weights found; // clazy:exclude=container-inside-loop (each vertex has its own)
        for (int j = 0; j < 4 && read.weights[j] != 0.0f; ++j)
            found.append({read.boneIndices[j], read.weights[j]});
        QCOMPARE(found, kept[vertex]);
    }
}

/// The bone goes by its rest pose. Two channels for three nodes: one is the
/// bone's. Three channels for two nodes: in order.
void AssimpLoaderTest::TellsEqualNamesApart()
{
    SceneBuilder builder;
    for (const char* name : {"triplet", "triplet", "triplet", "twin", "twin"})
        builder.AddNode(builder.root, name, MoveBy(float(builder.root->mNumChildren + 1), 0, 0));
    builder.AddBone(builder.AddMesh(builder.root), "triplet", MoveBy(-2.01f, 0, 0), {{0, 1.0f}});
    for (const char* name : {"triplet", "triplet", "twin", "twin", "twin"})
        builder.AddChannel(name, {{0, {}}});

    const Host::Model model = Host::ModelFromAssimp(builder.scene, "model");
    QCOMPARE(int(model.scene->root->geometries.at(0)->vertices.at(0).boneIndices[0]), 2);
    QVector<float> moved;
    for (const SkinAnimation::NodeTrack& track : model.scene->animations.at(0)->layers.at(0).tracks)
        moved.append(track.node->originGlobalTransform.m[12]);
    QCOMPARE(moved, (QVector<float>{2.01f, 1, 4, 5}));
    const QStringList expected{"3 nodes are named 'triplet'; the bone of this name is the one whose rest pose fits.",
                               "3 nodes are named 'triplet'; their animation may have been given to the wrong one.",
                               "2 nodes are named 'twin'; their animation may have been given to the wrong one.",
                               "The animation of 'twin' moves no node and was left out."};
    QCOMPARE(model.warnings, expected);
}

/// Two triangles in two meshes meet at an edge, a third mesh brings normals of
/// its own: the first two are smooth across the edge, the third is left alone.
void AssimpLoaderTest::SharesNormalsByPosition()
{
    SceneBuilder builder;
    builder.AddMesh(builder.root, {{0, 0, 0}, {1, 0, 0}, {0, 0, 1}});
    builder.AddMesh(builder.root, {{1, 0, 0}, {-0.0f, 0, 0}, {0, 1, 0}});
    builder.AddMesh(builder.root)->mNormals = new aiVector3D[3]{{0, 0, -1}, {0, 0, -1}, {0, 0, -1}};

    const Host::Model model = Host::ModelFromAssimp(builder.scene, "model");
    QCOMPARE(model.scene->root->normalCount, std::uint64_t(4));
    const std::vector<Host::PosedMesh> meshes = MeshesOf(*model.scene);
    const TVec3<float> across = Normalized(TVec3<float>{0, -1, -1});
    QCOMPARE(meshes.at(0).vertices[2].normal, (TVec3<float>{0, -1, 0}));
    QCOMPARE(meshes.at(0).vertices[1].normal, across);
    QCOMPARE(meshes.at(1).vertices[1].normal, across);
    QCOMPARE(meshes.at(2).vertices[0].normal, (TVec3<float>{0, 0, -1}));
}

void AssimpLoaderTest::FacesOutwardsWhereMirrored_data()
{
    QTest::addColumn<aiVector3D>("node"); // how it stretches
    QTest::addColumn<aiVector3D>("bone"); // likewise; nothing for a rigid mesh
    QTest::addColumn<float>("outside");   // along z
    QTest::newRow("rigid, mirrored and tiny") << aiVector3D(-1e-7f, 1e-7f, 1e-7f) << aiVector3D(0) << 1.0f;
    QTest::newRow("a mirrored node, but a bone places its mesh") << aiVector3D(-1, -1, -1) << aiVector3D(1) << 1.0f;
    QTest::newRow("a mirrored bone") << aiVector3D(1) << aiVector3D(-1, -1, -1) << -1.0f;
}

void AssimpLoaderTest::FacesOutwardsWhereMirrored()
{
    SceneBuilder builder;
    QFETCH(aiVector3D, node);
    QFETCH(aiVector3D, bone);
    const float weight = bone.x * bone.x;
    aiMesh* const mesh = builder.AddMesh(builder.AddNode(builder.root, "mesh", aiMatrix4x4(node, {}, {})));
    builder.AddNode(builder.root, "bone", aiMatrix4x4(bone, {}, {}));
    builder.AddBone(mesh, "bone", {}, {{0, weight}, {1, weight}, {2, weight}});
    const Host::Model model = Host::ModelFromAssimp(builder.scene, "model");
    QTEST(MeshesOf(*model.scene).at(0).vertices[0].normal.z, "outside"); // comes from the corners
}

/// Of all this one triangle is sound: it comes out, and the rest is reported.
void AssimpLoaderTest::ReportsDamage()
{
    SceneBuilder builder;
    const aiVector3D p(1, 2, 3), q(2, 2, 3), r(1, 3, 3);
    aiMesh* const mesh = builder.AddMesh(builder.AddNode(builder.root, "node", MoveBy(0, -HUGE_VALF, 0)),
                                         {p, q, r, p, q, r, p, q, r, p, q, r});
    mesh->mVertices[4].y = NAN;
    mesh->mFaces[2].mIndices[2] = 12;
    mesh->mFaces[3].mNumIndices = 2;
    mesh->mMaterialIndex = 5;
    mesh->mNormals = new aiVector3D[12]{{HUGE_VALF, 0, 0}};
    builder.AddBone(mesh, "ghost", {}, {{0, 1.0f}});
    builder.AddBone(mesh, "node", MoveBy(NAN, 0, 0), {{0, 1.0f}});
    builder.AddBone(mesh, "node", {}, {{12, 1.0f}, {0, 1.0f}});
    builder.AddMesh(builder.root)->mFaces[0].mNumIndices = 1;
    for (const unsigned int index : {1u, 77u})
        Append(builder.root->mMeshes, builder.root->mNumMeshes, index);
    Append<aiNode*>(builder.root->mChildren, builder.root->mNumChildren, nullptr);
    builder.AddChannel("node", {});
    builder.AddChannel("ghost", {{0, {}}});
    Append(builder.scene.mTextures, builder.scene.mNumTextures, new aiTexture);

    const Host::Model model = Host::ModelFromAssimp(builder.scene, "model");
    const QStringList expected{"The embedded image '*0' can't be decoded.",
                               "The transform of node 'node' is not finite; it stands where its parent stands.",
                               "Mesh 'root' holds no triangles and was left out.",
                               "Mesh 'node' has triangles whose corners are missing or not finite; they were left out.",
                               "The normals of mesh 'node' are not finite; they were computed from its triangles.",
                               "Bone 'ghost' has no node; its weights were left out.",
                               "Bone 'node' has no finite rest pose; its weights were left out.",
                               "The animation of 'ghost' moves no node and was left out."};
    QCOMPARE(model.warnings, expected);
    QVERIFY(model.scene->animations.at(0)->layers.at(0).tracks.empty());
    const Host::PosedMesh posed = MeshesOf(*model.scene).at(0);
    QCOMPARE(posed.indices, (std::vector<unsigned int>{0, 2, 1}));
    for (const MeshVertex& vertex : posed.vertices)
        QVERIFY(std::isfinite(Dot(vertex.position, vertex.position) + Dot(vertex.normal, vertex.normal)));
    QCOMPARE(posed.vertices[0].normal, (TVec3<float>{0, 0, 1}));
}

void AssimpLoaderTest::RefusesWhatItCannotHold()
{
    const QString refusal = "LoadingException: The model 'model' can't be loaded: ";
    SceneBuilder builder;
    std::vector<aiNode*> nodes(65536);
    std::generate(nodes.begin(), nodes.end(), [] { return new aiNode; });
    nodes.back()->mName = "last";
    builder.root->addChildren(unsigned(nodes.size()), nodes.data());
    builder.AddBone(builder.AddMesh(builder.root), "last", {}, {{0, 1.0f}});
    QCOMPARE(ErrorOf([&] { Host::ModelFromAssimp(builder.scene, "model"); }),
             refusal + "bone 'last' is node number 65537, and bones must be among the first 65536");
    QCOMPARE(ErrorOf([] { Host::ModelFromAssimp(aiScene(), "model"); }), refusal + "it holds no nodes");
}

void AssimpLoaderTest::ReadsMaterialsImagesAndTheUpAxis()
{
    SceneBuilder builder;
    aiMesh* const mesh = builder.AddMesh(builder.root);
    mesh->mNormals = new aiVector3D[3]{{}, {0, 0, 1}, {}};
    mesh->mTangents = new aiVector3D[3]{{}, {1, 0, 0}, {}};
    mesh->mBitangents = new aiVector3D[3]{{}, {0, 1, 0}, {}};
    mesh->mTextureCoords[1] = new aiVector3D[3]{{}, {0.25f, 0.125f, 0}, {}};
    aiMaterial* const material = new aiMaterial;
    const aiString name("paint"), path("*0");
    const int channel = 1;
    const aiColor4D colour(1.0f, 0.5f, 0.0f, 1.0f);
    material->AddProperty(&name, AI_MATKEY_NAME);
    material->AddProperty(&path, AI_MATKEY_TEXTURE_DIFFUSE(0));
    material->AddProperty(&channel, 1, AI_MATKEY_UVWSRC_DIFFUSE(0));
    material->AddProperty(&colour, 1, AI_MATKEY_COLOR_DIFFUSE);
    Append(builder.scene.mMaterials, builder.scene.mNumMaterials, material);
    aiTexture* const texture = new aiTexture;
    texture->mWidth = texture->mHeight = 1;
    texture->pcData = new aiTexel[1]{{3, 2, 1, 40}};
    Append(builder.scene.mTextures, builder.scene.mNumTextures, texture);
    builder.scene.mMetaData = aiMetadata::Alloc(2);
    builder.scene.mMetaData->Set(0, "UpAxis", 2);
    builder.scene.mMetaData->Set(1, "UpAxisSign", -1);

    const Host::Model model = Host::ModelFromAssimp(builder.scene, "model");
    QCOMPARE(model.up, (TVec3<float>{0, 0, -1}));
    QCOMPARE(model.embeddedImages["*0"].pixel(0, 0), qRgba(1, 2, 3, 40));
    const Host::PosedMesh posed = MeshesOf(*model.scene).at(0);
    QCOMPARE(posed.materialName, QString("paint"));
    const QMap<QString, QVariant> parameters{{"texture", "*0"}, {"diffuse", QColor(255, 127, 0)}};
    QCOMPARE(posed.materialParameters, parameters);
    QCOMPARE(posed.vertices[1].texCoord, (TVec2<float>{0.25f, 0.875f})); // an image begins at the top
    QCOMPARE(posed.vertices[1].bitangent, (TVec3<float>{0, -1, 0}));
    QCOMPARE(posed.vertices[1].handedness, -1.0f);
}

QTEST_GUILESS_MAIN(AssimpLoaderTest)
#include "assimp_loader_test.moc"
