// What the loader makes of scenes that files rarely show.

#include "lumenta/foundation/Exceptions.h"
#include "reference/plugins/assimp-loader/AssimpLoader.h"
#include "tests/plugins/assimp_compare.h"
#include "tests/plugins/assimp_scene_builder.h"

#include <QtTest>

#include <limits>

using Weights = QVector<QPair<int, float>>; ///< Bone and weight.
Q_DECLARE_METATYPE(Weights)

using Keys = std::vector<std::pair<double, aiVector3D>>;
Q_DECLARE_METATYPE(Keys)

using Damage = void (*)(SceneBuilder&);
Q_DECLARE_METATYPE(Damage)

namespace {

constexpr float kInfinite = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

Host::Model Load(const SceneBuilder& builder)
{
    return Host::ModelFromAssimp(builder.scene, QStringLiteral("model"));
}

const SkinAnimation::Node& NodeOf(const Host::Model& model, const char* name)
{
    return *model.scene->nodes.at(std::size_t(model.scene->GetNodeIndex(QLatin1String(name))));
}

QVector<float> TimesOf(const SkinAnimation::NodeTrack& track)
{
    QVector<float> times;
    for (const SkinAnimation::KeyFrame& key : track.keys)
        times.append(key.time);
    return times;
}

QVector<float> HeightsOf(const SkinAnimation::NodeTrack& track)
{
    QVector<float> heights;
    for (const SkinAnimation::KeyFrame& key : track.keys)
        heights.append(key.translation.y);
    return heights;
}

} // namespace

class AssimpSceneTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void KeepsTheStrongestWeights_data();
    void KeepsTheStrongestWeights();
    void BindsExactly_data();
    void BindsExactly();
    void LeavesOtherNodesAsTheFileHasThem();
    void TellsBonesOfOneNameApart();
    void TellsChannelsOfOneNameApart_data();
    void TellsChannelsOfOneNameApart();
    void MergesKeys_data();
    void MergesKeys();
    void MergedTracksRunAsTheFilesDo();
    void SharesNormalsByPosition();
    void RepairsDamage_data();
    void RepairsDamage();
    void Refuses_data();
    void Refuses();
    void ReadsTexturesUprightAndTheirImages();
    void ReadsTheUpAxis_data();
    void ReadsTheUpAxis();
    void WalksDeepTrees();
};

void AssimpSceneTest::KeepsTheStrongestWeights_data()
{
    QTest::addColumn<Weights>("given");
    QTest::addColumn<Weights>("kept");

    QTest::newRow("one bone counts in full") << Weights{{1, 0.25f}} << Weights{{1, 1.0f}};
    QTest::newRow("the strongest comes first") << Weights{{1, 0.25f}, {2, 0.75f}} << Weights{{2, 0.75f}, {1, 0.25f}};
    QTest::newRow("four of six") << Weights{{1, 0.5f}, {2, 1.0f}, {3, 0.25f}, {4, 2.0f}, {5, 0.25f}, {6, 0.5f}}
                                 << Weights{{4, 0.5f}, {2, 0.25f}, {1, 0.125f}, {6, 0.125f}};
    QTest::newRow("a zero does not end the list early") << Weights{{1, 0.0f}, {2, 3.0f}, {3, 1.0f}}
                                                        << Weights{{2, 0.75f}, {3, 0.25f}};
    QTest::newRow("a bone named twice is one bone") << Weights{{1, 0.25f}, {2, 0.5f}, {1, 0.25f}, {1, 1.0f}}
                                                    << Weights{{1, 0.75f}, {2, 0.25f}};
    QTest::newRow("what is no weight is left out") << Weights{{1, kNan}, {2, -1.0f}, {3, kInfinite}, {4, 0.5f}}
                                                   << Weights{{4, 1.0f}};
    QTest::newRow("nothing usable: the mesh is rigid") << Weights{{1, 0.0f}, {2, -1.0f}} << Weights{};
}

void AssimpSceneTest::KeepsTheStrongestWeights()
{
    QFETCH(Weights, given);
    QFETCH(Weights, kept);
    SceneBuilder builder;
    aiMesh* const mesh = builder.AddTriangle(builder.scene.mRootNode);
    for (int bone = 1; bone <= 6; ++bone)
        builder.AddNode(builder.scene.mRootNode, std::to_string(bone).c_str());
    for (const auto& [bone, weight] : given)
        builder.AddBone(mesh, std::to_string(bone).c_str(), {}, {{1, weight}});

    const Host::Model model = Load(builder);
    const SkinAnimation::Geometry& geometry = *model.scene->root->geometries.at(0);
    QCOMPARE(geometry.skinned, !kept.isEmpty());
    const SkinAnimation::SkinVertex& vertex = geometry.vertices.at(1);
    for (int j = 0; j < 4; ++j) {
        QCOMPARE(vertex.weights[j], j < kept.size() ? kept[j].second : 0.0f);
        if (j < kept.size())
            QCOMPARE(model.scene->nodes[vertex.boneIndices[j]]->name, QString::number(kept[j].first));
    }
    QCOMPARE(geometry.vertices.at(0).weights[0], 0.0f);
}

void AssimpSceneTest::BindsExactly_data()
{
    QTest::addColumn<Damage>("change");
    QTest::addColumn<int>("helpers");

    QTest::newRow("one mesh, one bone") << Damage([](SceneBuilder&) {}) << 0;
    QTest::newRow("a second mesh with the same bind pose needs nothing") << Damage([](SceneBuilder& b) {
        aiNode* const node = b.AddNode(b.scene.mRootNode, "other mesh", MoveBy(2, 3, 4));
        b.AddBone(b.AddTriangle(node), "bone", MoveBy(1, 2, 3), {{0, 1.0f}, {1, 1.0f}, {2, 1.0f}});
    }) << 0;
    QTest::newRow("a second mesh binds the bone in another way") << Damage([](SceneBuilder& b) {
        aiNode* const node = b.AddNode(b.scene.mRootNode, "other mesh", MoveBy(9, 0, 0));
        b.AddBone(b.AddTriangle(node), "bone", MoveBy(1, 2, 3.5f), {{0, 1.0f}, {1, 1.0f}, {2, 1.0f}});
    }) << 1;
    QTest::newRow("two bones of one name in one mesh, bound differently") << Damage([](SceneBuilder& b) {
        b.AddBone(b.scene.mMeshes[0], "bone", MoveBy(0, 0, 7), {{1, 0.25f}});
    }) << 1;
    QTest::newRow("the mesh's own node is one of its bones") << Damage([](SceneBuilder& b) {
        b.AddBone(b.scene.mMeshes[0], "mesh", MoveBy(0, 1, 0), {{1, 0.25f}, {2, 0.5f}});
    }) << 1;
    QTest::newRow("the mesh's own node is a bone where it rests") << Damage([](SceneBuilder& b) {
        b.AddBone(b.scene.mMeshes[0], "mesh", {}, {{1, 0.25f}, {2, 0.5f}});
    }) << 0;
    QTest::newRow("the mesh's node is squeezed flat") << Damage([](SceneBuilder& b) {
        aiMatrix4x4::Scaling({1, 1, 0}, b.scene.mRootNode->mChildren[0]->mTransformation);
    }) << 0;
    QTest::newRow("the bind pose is squeezed flat") << Damage([](SceneBuilder& b) {
        aiMatrix4x4::Scaling({1, 0, 1}, b.scene.mMeshes[0]->mBones[0]->mOffsetMatrix);
    }) << 0;
    QTest::newRow("the bone is turned, mirrored and large") << Damage([](SceneBuilder& b) {
        b.scene.mMeshes[0]->mBones[0]->mOffsetMatrix =
            aiMatrix4x4({-100, 100, 70}, aiQuaternion(aiVector3D(1, 2, 3), 0.7f), {4, 5, 6});
    }) << 0;
}

/// At rest and under way each vertex is where the offset matrices put it.
void AssimpSceneTest::BindsExactly()
{
    QFETCH(Damage, change);
    QFETCH(int, helpers);
    SceneBuilder builder;
    aiNode* const meshNode = builder.AddNode(builder.scene.mRootNode, "mesh", MoveBy(2, 3, 4));
    builder.AddNode(builder.AddNode(builder.scene.mRootNode, "arm", MoveBy(0, 5, 0)), "bone", MoveBy(0, 1, 0));
    builder.AddBone(builder.AddTriangle(meshNode), "bone", MoveBy(1, 2, 3), {{0, 1.0f}, {1, 0.75f}});
    aiAnimation* const animation = builder.AddAnimation(1000.0);
    builder.AddChannel(animation, "arm", {{0.0, {0, 0, 0}}, {10.0, {8, 0, 1}}});
    change(builder);

    const Host::Model model = Load(builder);
    QCOMPARE(int(model.scene->nodes.size()) - helpers, int(NodeOf(model, "root").children.size()) + 2);
    const Deviation atRest = Compare(Opinion::Pose(builder.scene, nullptr, 0.0), MeshesOf(*model.scene));
    QVERIFY2(atRest.sameShape && atRest.position < 1e-6, qPrintable(QString::number(atRest.position)));
    for (const double time : {0.0, 3.0, 10.0}) {
        model.scene->CalculateAnimation(0, float(time));
        const Deviation found = Compare(Opinion::Pose(builder.scene, animation, time), MeshesOf(*model.scene));
        QVERIFY2(found.sameShape && found.position < 1e-6, qPrintable(QString::number(found.position)));
    }
}

void AssimpSceneTest::LeavesOtherNodesAsTheFileHasThem()
{
    SceneBuilder builder;
    aiNode* const hand = builder.AddNode(builder.AddNode(builder.scene.mRootNode, "arm", MoveBy(0, 0.1f, 0)), "hand");
    aiMatrix4x4::Scaling({3, 1.5f, 7}, hand->mTransformation);
    aiMesh* const mesh = builder.AddTriangle(hand);
    builder.AddBone(mesh, "arm", MoveBy(5, 5, 5), {});
    Append(builder.scene.mRootNode->mMeshes, builder.scene.mRootNode->mNumMeshes, 0u);

    const Host::Model model = Load(builder);
    QCOMPARE(model.scene->nodes.size(), std::size_t(3));
    QCOMPARE(NodeOf(model, "arm").localTransform.GetTranslation(), (TVec3<float>{0, 0.1f, 0}));
    QCOMPARE(NodeOf(model, "arm").originGlobalTransform.GetTranslation(), (TVec3<float>{0, 0.1f, 0}));
    QCOMPARE(NodeOf(model, "hand").localTransform.m[5], 1.5f);
    QCOMPARE(NodeOf(model, "hand").meshTransform.GetTranslation(), (TVec3<float>{0, 0.1f, 0}));
    // The mesh stands in two nodes: each has its own copy, and neither is skinned.
    QCOMPARE(NodeOf(model, "root").geometries.size(), std::size_t(1));
    QCOMPARE(NodeOf(model, "hand").geometries.size(), std::size_t(1));
    QVERIFY(!NodeOf(model, "hand").geometries[0]->skinned);
    QCOMPARE(model.warnings, QStringList());
}

void AssimpSceneTest::TellsBonesOfOneNameApart()
{
    SceneBuilder builder;
    builder.AddNode(builder.scene.mRootNode, "twin", MoveBy(-1, 0, 0));
    builder.AddNode(builder.scene.mRootNode, "twin", MoveBy(1, 0, 0));
    builder.AddBone(builder.AddTriangle(builder.scene.mRootNode), "twin", MoveBy(-1.01f, 0, 0), {{0, 1.0f}});

    const Host::Model model = Load(builder);
    QCOMPARE(int(model.scene->root->geometries.at(0)->vertices.at(0).boneIndices[0]), 2);
    QCOMPARE(model.warnings,
             QStringList{"2 nodes are named 'twin'; the bone of this name is the one whose rest pose fits."});
}

void AssimpSceneTest::TellsChannelsOfOneNameApart_data()
{
    QTest::addColumn<int>("channels");
    QTest::addColumn<QVector<int>>("moved"); // nodes, channel by channel
    QTest::addColumn<QStringList>("warnings");

    const QString ambiguous = "3 nodes are named 'triplet'; their animation may have been given to the wrong one.";
    const QString surplus = "The animation of 'triplet' moves no node and was left out.";
    QTest::newRow("one channel: it is the bone's") << 1 << QVector<int>{2} << QStringList{ambiguous};
    QTest::newRow("two channels: the bone first") << 2 << QVector<int>{2, 1} << QStringList{ambiguous};
    QTest::newRow("as many channels as nodes: in order") << 3 << QVector<int>{1, 2, 3} << QStringList{ambiguous};
    QTest::newRow("a channel too many") << 4 << QVector<int>{1, 2, 3} << QStringList{ambiguous, surplus};
}

void AssimpSceneTest::TellsChannelsOfOneNameApart()
{
    QFETCH(int, channels);
    QFETCH(QVector<int>, moved);
    QFETCH(QStringList, warnings);
    SceneBuilder builder;
    for (const float x : {1.0f, 2.0f, 3.0f})
        builder.AddNode(builder.scene.mRootNode, "triplet", MoveBy(x, 0, 0));
    builder.AddBone(builder.AddTriangle(builder.scene.mRootNode), "triplet", MoveBy(-2, 0, 0), {{0, 1.0f}});
    aiAnimation* const animation = builder.AddAnimation(1.0);
    for (int i = 0; i < channels; ++i)
        builder.AddChannel(animation, "triplet", {{0.0, {0, 0, float(i)}}});

    const Host::Model model = Load(builder);
    const auto& tracks = model.scene->animations.at(0)->layers.at(0).tracks;
    QCOMPARE(int(tracks.size()), moved.size());
    for (int i = 0; i < moved.size(); ++i) {
        QCOMPARE(tracks[std::size_t(i)].node, model.scene->nodes[std::size_t(moved[i])]);
        QCOMPARE(tracks[std::size_t(i)].keys[0].translation.z, float(i));
    }
    QCOMPARE(model.warnings.mid(1), warnings);
}

void AssimpSceneTest::MergesKeys_data()
{
    QTest::addColumn<double>("ticksPerSecond");
    QTest::addColumn<double>("ticks");
    QTest::addColumn<Keys>("positions");
    QTest::addColumn<Keys>("scalings");
    QTest::addColumn<QVector<float>>("times");
    QTest::addColumn<QVector<float>>("heights");
    QTest::addColumn<float>("duration");

    const auto at = [](double ticks, float y) { return std::pair<double, aiVector3D>(ticks, {0, y, 0}); };
    using Floats = QVector<float>;
    QTest::newRow("milliseconds from ticks") << 4800.0 << 0.0 << Keys{at(0, 1), at(160, 3)} << Keys{}
                                             << Floats{0, float(160 * 1000 / 4800.0)} << Floats{1, 3} << 33.333333f;
    QTest::newRow("no word on ticks: 25 a second") << 0.0 << 0.0 << Keys{at(0, 1), at(5, 3)} << Keys{}
                                                   << Floats{0, 200} << Floats{1, 3} << 200.0f;
    QTest::newRow("ticks that make no sense: 25 a second") << -4.0 << 0.0 << Keys{at(0, 1), at(5, 3)} << Keys{}
                                                           << Floats{0, 200} << Floats{1, 3} << 200.0f;
    QTest::newRow("the file lasts longer than its keys") << 1.0 << 7.0 << Keys{at(0, 1), at(5, 3)} << Keys{}
                                                         << Floats{0, 5000} << Floats{1, 3} << 7000.0f;
    QTest::newRow("the file ends before its keys") << 1.0 << 2.0 << Keys{at(0, 1), at(5, 3)} << Keys{}
                                                   << Floats{0, 5000} << Floats{1, 3} << 5000.0f;
    QTest::newRow("an end that is not finite") << 1.0 << HUGE_VAL << Keys{at(0, 1), at(5, 3)} << Keys{}
                                               << Floats{0, 5000} << Floats{1, 3} << 5000.0f;
    QTest::newRow("out of order") << 1000.0 << 0.0 << Keys{at(20, 4), at(0, 1), at(10, 3)} << Keys{}
                                  << Floats{0, 10, 20} << Floats{1, 3, 4} << 20.0f;
    QTest::newRow("two values at once: a jump") << 1000.0 << 0.0 << Keys{at(0, 1), at(10, 3), at(10, 7), at(20, 8)}
                                                << Keys{} << Floats{0, 10, 10, 20} << Floats{1, 3, 7, 8} << 20.0f;
    QTest::newRow("one value twice at once: no jump") << 1000.0 << 0.0 << Keys{at(0, 1), at(10, 3), at(10, 3)} << Keys{}
                                                      << Floats{0, 10} << Floats{1, 3} << 10.0f;
    QTest::newRow("other components at times of their own")
        << 1000.0 << 0.0 << Keys{at(0, 1), at(20, 5)} << Keys{at(-5, 1), at(5, 1), at(30, 1)}
        << Floats{-5, 0, 5, 20, 30} << Floats{1, 1, 2, 5, 5} << 30.0f;
    QTest::newRow("no positions: the node's own stays") << 1000.0 << 0.0 << Keys{} << Keys{at(0, 1), at(5, 2)}
                                                        << Floats{0, 5} << Floats{9, 9} << 5.0f;
    QTest::newRow("keys that are not finite are left out")
        << 1000.0 << 0.0 << Keys{at(0, kNan), at(qQNaN(), 1), at(qInf(), 1), at(1e300, 1), at(5, 2)} << Keys{}
        << Floats{5} << Floats{2} << 5.0f;
}

void AssimpSceneTest::MergesKeys()
{
    QFETCH(double, ticksPerSecond);
    QFETCH(double, ticks);
    QFETCH(Keys, positions);
    QFETCH(Keys, scalings);
    SceneBuilder builder;
    builder.AddTriangle(builder.AddNode(builder.scene.mRootNode, "node", MoveBy(0, 9, 0)));
    aiAnimation* const animation = builder.AddAnimation(ticksPerSecond, ticks);
    aiNodeAnim* const channel = builder.AddChannel(animation, "node", positions);
    for (const auto& [time, scaling] : scalings)
        Append(channel->mScalingKeys, channel->mNumScalingKeys, aiVectorKey(time, scaling));

    const Host::Model model = Load(builder);
    const SkinAnimation::Animation& read = *model.scene->animations.at(0);
    QTEST(TimesOf(read.layers.at(0).tracks.at(0)), "times");
    QTEST(HeightsOf(read.layers.at(0).tracks.at(0)), "heights");
    QTEST(read.duration, "duration");
    QCOMPARE(read.layers.at(0).duration, read.duration);
}

/// Position, rotation and scaling at times of their own: between keys the
/// merged track is where the three separate ones are.
void AssimpSceneTest::MergedTracksRunAsTheFilesDo()
{
    SceneBuilder builder;
    builder.AddTriangle(builder.AddNode(builder.scene.mRootNode, "node"));
    aiAnimation* const animation = builder.AddAnimation(1000.0);
    aiNodeAnim* const channel = builder.AddChannel(animation, "node", {{0.0, {0, 0, 0}}, {70.0, {5, 1, 2}}});
    const aiQuaternion turned(aiVector3D(1, 2, 2).Normalize(), 2.9f);
    const aiQuaternion longWayRound(-turned.w, -turned.x, -turned.y, -turned.z);
    for (const aiQuatKey& key : {aiQuatKey(10, {}), aiQuatKey(50, longWayRound), aiQuatKey(90, turned * turned)})
        Append(channel->mRotationKeys, channel->mNumRotationKeys, key);
    for (const aiVectorKey& key :
         {aiVectorKey(20, {1, 1, 1}), aiVectorKey(33, {2, 0.5f, 1}), aiVectorKey(80, {1, 3, 1})})
        Append(channel->mScalingKeys, channel->mNumScalingKeys, key);

    const Host::Model model = Load(builder);
    for (int time = -10; time <= 100; ++time) {
        model.scene->CalculateAnimation(0, float(time));
        const Deviation found = Compare(Opinion::Pose(builder.scene, animation, time), MeshesOf(*model.scene));
        QVERIFY2(found.position < 1e-6, qPrintable(QStringLiteral("%1 ms: %2").arg(time).arg(found.position)));
    }
}

/// Two triangles in two meshes meet at an edge, a third mesh brings normals of
/// its own: the first two are smooth across the edge, the third is left alone.
void AssimpSceneTest::SharesNormalsByPosition()
{
    SceneBuilder builder;
    aiNode* const root = builder.scene.mRootNode;
    builder.AddMesh(root, {{0, 0, 0}, {1, 0, 0}, {0, 0, 1}});
    builder.AddMesh(root, {{1, 0, 0}, {-0.0f, 0, 0}, {0, 1, 0}});
    aiMesh* const own = builder.AddTriangle(root);
    own->mNormals = new aiVector3D[3]{{0, 0, -1}, {0, 0, -1}, {0, 0, -1}};

    const Host::Model model = Load(builder);
    QCOMPARE(model.scene->root->normalCount, std::uint64_t(4));
    const auto& geometries = model.scene->root->geometries;
    QCOMPARE(geometries.at(0)->normalIndices, (std::vector<std::uint32_t>{0, 1, 2}));
    QCOMPARE(geometries.at(1)->normalIndices, (std::vector<std::uint32_t>{2, 3, 0}));
    QCOMPARE(geometries.at(2)->normalIndices, std::vector<std::uint32_t>());

    const std::vector<Host::PosedMesh> meshes = MeshesOf(*model.scene);
    const TVec3<float> flat{0, -1, 0}, across = Normalized(TVec3<float>{0, -1, -1});
    QCOMPARE(meshes.at(0).vertices[2].normal, flat);
    QCOMPARE(meshes.at(0).vertices[1].normal, across);
    QCOMPARE(meshes.at(1).vertices[0].normal, across);
    QCOMPARE(meshes.at(2).vertices[0].normal, (TVec3<float>{0, 0, -1}));
}

void AssimpSceneTest::RepairsDamage_data()
{
    QTest::addColumn<Damage>("damage");
    QTest::addColumn<QStringList>("warnings");

    QTest::newRow("a vertex that is not finite")
        << Damage([](SceneBuilder& b) { b.scene.mMeshes[0]->mVertices[4].y = kNan; })
        << QStringList{"Mesh 'node' has triangles whose corners are missing or not finite; they were left out."};
    QTest::newRow("a corner beyond the vertices")
        << Damage([](SceneBuilder& b) { b.scene.mMeshes[0]->mFaces[1].mIndices[2] = 6; })
        << QStringList{"Mesh 'node' has triangles whose corners are missing or not finite; they were left out."};
    QTest::newRow("a line among the triangles goes unmentioned")
        << Damage([](SceneBuilder& b) { b.scene.mMeshes[0]->mFaces[1].mNumIndices = 2; }) << QStringList();
    QTest::newRow("a mesh of points") << Damage([](SceneBuilder& b) {
        aiMesh* const points = b.AddTriangle(b.scene.mRootNode);
        points->mName = "dust";
        points->mFaces[0].mNumIndices = 1;
    }) << QStringList{"Mesh 'dust' holds no triangles and was left out."};
    QTest::newRow("normals that are not finite") << Damage([](SceneBuilder& b) {
        b.scene.mMeshes[0]->mNormals = new aiVector3D[6];
        b.scene.mMeshes[0]->mNormals[5].x = kInfinite;
    }) << QStringList{"The normals of mesh 'node' are not finite; they were computed from its triangles."};
    QTest::newRow("a transform that is not finite")
        << Damage([](SceneBuilder& b) { b.scene.mRootNode->mChildren[0]->mTransformation.a4 = -kInfinite; })
        << QStringList{"The transform of node 'node' is not finite; it stands where its parent stands."};
    QTest::newRow("a bone without a node") << Damage([](SceneBuilder& b) {
        b.AddBone(b.scene.mMeshes[0], "ghost", {}, {{0, 1.0f}});
    }) << QStringList{"Bone 'ghost' has no node; its weights were left out."};
    QTest::newRow("a bone with an offset that is not finite")
        << Damage([](SceneBuilder& b) { b.AddBone(b.scene.mMeshes[0], "node", MoveBy(kNan, 0, 0), {{0, 1.0f}}); })
        << QStringList{"Bone 'node' has no finite rest pose; its weights were left out."};
    QTest::newRow("a weight for a vertex that is not there") << Damage([](SceneBuilder& b) {
        b.AddBone(b.scene.mMeshes[0], "node", {}, {{6, 1.0f}, {0, 1.0f}});
    }) << QStringList();
    QTest::newRow("a motion of nobody") << Damage([](SceneBuilder& b) {
        b.AddChannel(b.AddAnimation(1), "ghost", {{0.0, {}}});
    }) << QStringList{"The animation of 'ghost' moves no node and was left out."};
    QTest::newRow("a mesh that is not there") << Damage([](SceneBuilder& b) {
        Append(b.scene.mRootNode->mMeshes, b.scene.mRootNode->mNumMeshes, 77u);
    }) << QStringList();
    QTest::newRow("a material that is not there")
        << Damage([](SceneBuilder& b) { b.scene.mMeshes[0]->mMaterialIndex = 5; }) << QStringList();
    QTest::newRow("a gap among the children") << Damage([](SceneBuilder& b) {
        aiNode* const nobody = nullptr;
        Append(b.scene.mRootNode->mChildren, b.scene.mRootNode->mNumChildren, const_cast<aiNode*>(nobody));
    }) << QStringList();
    QTest::newRow("an image that is none") << Damage([](SceneBuilder& b) {
        aiTexture* const texture = new aiTexture;
        texture->mWidth = 4;
        texture->pcData = new aiTexel[1];
        Append(b.scene.mTextures, b.scene.mNumTextures, texture);
    }) << QStringList{"The embedded image '*0' can't be decoded."};
}

/// The sound triangle comes out, finite, and the rest is reported.
void AssimpSceneTest::RepairsDamage()
{
    QFETCH(Damage, damage);
    SceneBuilder builder;
    builder.AddMesh(builder.AddNode(builder.scene.mRootNode, "node"),
                    {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
    damage(builder);

    const Host::Model model = Load(builder);
    QTEST(model.warnings, "warnings");
    const std::vector<Host::PosedMesh> meshes = MeshesOf(*model.scene);
    QCOMPARE(meshes.size(), std::size_t(1));
    QCOMPARE(std::vector<unsigned int>(meshes[0].indices.begin(), meshes[0].indices.begin() + 3),
             (std::vector<unsigned int>{0, 2, 1}));
    for (const MeshVertex& vertex : meshes[0].vertices)
        QVERIFY(std::isfinite(Dot(vertex.position, vertex.position) + Dot(vertex.normal, vertex.normal)));
    QCOMPARE(meshes[0].vertices[1].position, (TVec3<float>{1, 0, 0}));
}

void AssimpSceneTest::Refuses_data()
{
    QTest::addColumn<Damage>("damage");
    QTest::addColumn<QString>("reason");

    QTest::newRow("no nodes") << Damage([](SceneBuilder& b) {
        delete b.scene.mRootNode;
        b.scene.mRootNode = nullptr;
    }) << "it holds no nodes";
    QTest::newRow("no meshes") << Damage([](SceneBuilder&) {}) << "it holds no usable triangles";
    QTest::newRow("meshes that no node shows") << Damage([](SceneBuilder& b) {
        b.AddTriangle(b.scene.mRootNode);
        b.scene.mRootNode->mNumMeshes = 0;
    }) << "it holds no usable triangles";
    QTest::newRow("only lines") << Damage([](SceneBuilder& b) {
        b.AddTriangle(b.scene.mRootNode)->mFaces[0].mNumIndices = 2;
    }) << "it holds no usable triangles";
    QTest::newRow("a bone too far down the list") << Damage([](SceneBuilder& b) {
        const unsigned int count = 65536;
        b.scene.mRootNode->mNumChildren = count;
        b.scene.mRootNode->mChildren = new aiNode*[count];
        for (unsigned int i = 0; i < count; ++i)
            b.scene.mRootNode->mChildren[i] = new aiNode(i + 1 == count ? "last" : "");
        b.AddBone(b.AddTriangle(b.scene.mRootNode), "last", {}, {{0, 1.0f}});
    }) << "bone 'last' is node number 65537, and bones must be among the first 65536";
}

void AssimpSceneTest::Refuses()
{
    QFETCH(Damage, damage);
    QFETCH(QString, reason);
    SceneBuilder builder;
    damage(builder);
    try {
        Load(builder);
        QFAIL("was loaded");
    } catch (const LoadingException& refusal) {
        QCOMPARE(refusal.GetErrorText(), "The model 'model' can't be loaded: " + reason);
    }
}

void AssimpSceneTest::ReadsTexturesUprightAndTheirImages()
{
    SceneBuilder builder;
    aiMesh* const mesh = builder.AddTriangle(builder.scene.mRootNode);
    mesh->mNormals = new aiVector3D[3]{{0, 0, 1}, {0, 0, 1}, {0, 0, 1}};
    mesh->mTextureCoords[1] = new aiVector3D[3]{{0, 0, 0}, {0.25f, 0.125f, 0}, {0, 1, 0}};
    mesh->mTangents = new aiVector3D[3]{{1, 0, 0}, {1, 0, 0}, {1, 0, 0}};
    mesh->mBitangents = new aiVector3D[3]{{0, 1, 0}, {0, 1, 0}, {0, 1, 0}};
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
    texture->mWidth = 1;
    texture->mHeight = 2;
    texture->pcData = new aiTexel[2]{{30, 20, 10, 255}, {3, 2, 1, 40}};
    Append(builder.scene.mTextures, builder.scene.mNumTextures, texture);

    const Host::Model model = Load(builder);
    QCOMPARE(model.materials.at(0).name, QString("paint"));
    const QMap<QString, QVariant> expected{{"texture", "*0"}, {"diffuse", QColor(255, 127, 0)}};
    QCOMPARE(model.materials.at(0).parameters, expected);
    QCOMPARE(model.embeddedImages.keys(), QStringList{"*0"});
    QCOMPARE(model.embeddedImages["*0"].pixel(0, 0), qRgb(10, 20, 30));
    QCOMPARE(model.embeddedImages["*0"].pixel(0, 1), qRgba(1, 2, 3, 40));

    const Host::PosedMesh posed = MeshesOf(*model.scene).at(0);
    QCOMPARE(posed.materialName, QString("paint"));
    QCOMPARE(posed.materialParameters, expected);
    // An image begins at the top: the file's bottom, v = 0, is the last row.
    QCOMPARE(posed.vertices[0].texCoord, (TVec2<float>{0.0f, 1.0f}));
    QCOMPARE(posed.vertices[1].texCoord, (TVec2<float>{0.25f, 0.875f}));
    QCOMPARE(posed.vertices[1].tangent, (TVec3<float>{1, 0, 0}));
    QCOMPARE(posed.vertices[1].bitangent, (TVec3<float>{0, -1, 0}));
    QCOMPARE(posed.vertices[1].handedness, -1.0f);
}

void AssimpSceneTest::ReadsTheUpAxis_data()
{
    QTest::addColumn<int>("axis");
    QTest::addColumn<int>("sign");
    QTest::addColumn<QVector3D>("up");

    QTest::newRow("x") << 0 << 1 << QVector3D(1, 0, 0);
    QTest::newRow("minus y") << 1 << -1 << QVector3D(0, -1, 0);
    QTest::newRow("z") << 2 << 1 << QVector3D(0, 0, 1);
    QTest::newRow("an axis that is none") << 7 << 1 << QVector3D(0, 1, 0);
}

void AssimpSceneTest::ReadsTheUpAxis()
{
    QFETCH(int, axis);
    QFETCH(int, sign);
    SceneBuilder builder;
    builder.AddTriangle(builder.scene.mRootNode);
    QCOMPARE(Load(builder).up, (TVec3<float>{0, 1, 0}));
    builder.scene.mMetaData = aiMetadata::Alloc(2);
    builder.scene.mMetaData->Set(0, "UpAxis", axis);
    builder.scene.mMetaData->Set(1, "UpAxisSign", sign);
    QTEST(TVec3ToQVector3D(Load(builder).up), "up");
}

void AssimpSceneTest::WalksDeepTrees()
{
    SceneBuilder builder;
    aiNode* node = builder.scene.mRootNode;
    for (int level = 0; level < 10000; ++level)
        node = builder.AddNode(node, "", MoveBy(0, 0.5f, 0));
    builder.AddTriangle(node);

    const Host::Model model = Load(builder);
    QCOMPARE(model.scene->nodes.size(), std::size_t(10001));
    QCOMPARE(MeshesOf(*model.scene).at(0).vertices[1].position, (TVec3<float>{1, 5000, 0}));
}

QTEST_GUILESS_MAIN(AssimpSceneTest)
#include "assimp_scene_test.moc"
