#include "tests/skin/SkinFixtures.h"

#include <algorithm>

using namespace SkinAnimation;

namespace {

const std::vector<Vec3> kTriangle = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}; // clazy:exclude=non-pod-global-static

/// "position / normal" of a vertex that four bones pull at, beside a gap in their list.
QString Posed(bool skinned, const std::vector<std::uint16_t>& bones, const std::vector<float>& weights)
{
    // In the rest pose the vertex (1, 2, 3) with its normal along (0, 1, 1) stands at (2, 3, 13), its normal
    // along (1, 0, 0.5); without bones at (101, 2, 6), its normal along (0, 1, 0.5).
    Scene scene;
    Node* const owner = AddNode(scene, "owner");
    owner->bindTransform = Scaling(1, 2, 1) * Cycle() * Translation(-1, 2, 9);
    owner->meshTransform = Scaling(1, 1, 2) * Translation(100, 0, 0);
    std::vector<Node*> list;
    for (const Matrix& move : {Translation(10, 20, 40), Scaling(2, 2, 2), Cycle(), Matrix()}) {
        list.push_back(AddNode(scene, "bone", owner));
        list.back()->skinTransform = move;
        Inverse(list.back()->skinTransformInverse, move);
    }
    list.push_back(nullptr);

    Geometry& geometry = *AddGeometry(*owner, "point", {{1, 2, 3}}, skinned);
    geometry.vertices[0].normal = {0, 1, 1};
    std::copy(bones.begin(), bones.end(), geometry.vertices[0].boneIndices);
    std::copy(weights.begin(), weights.end(), geometry.vertices[0].weights);
    geometry.UpdateMesh(owner, {1, 1, 1}, {0, 0, 0}, list);
    return Floats(geometry.meshVertices[0].position) + " / " + Rounded(geometry.meshVertices[0].normal);
}

} // namespace

class MeshTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Posing_data()
    {
        AnswerColumns();
        // Bone 0 moves by (10, 20, 40), bone 1 doubles, bone 2 cycles x to y to z to x, bone 3 does nothing.
        const std::vector<std::uint16_t> inOrder{0, 1, 2, 3};
        const char* const rigid = "101, 2, 6 / 0, 0.89443, 0.44721";
        Row("not skinned, whatever the weights", Posed(false, inOrder, {1, 0, 0, 0}), rigid);
        Row("first weight negative", Posed(true, inOrder, {-1, 1, 1, 1}), rigid);
        Row("first weight no number", Posed(true, inOrder, {kNaN, 1, 0, 0}), rigid);
        Row("all four", Posed(true, inOrder, {0.25f, 0.25f, 0.25f, 0.25f}),
            "7.75, 8.5, 23.75 / 0.88226, 0.29409, 0.36761");
        Row("a zero ends the list, indices behind it are not looked at",
            Posed(true, {0, 65535, 65535, 65535}, {0.5f, -0.0f, 1, 1}), "6, 11.5, 26.5 / 0.89443, 0, 0.44721");
        Row("weights above one are not cut, a negative one counts", Posed(true, inOrder, {2, -0.5f, 0, 0}),
            "22, 43, 93 / 0.89443, 0, 0.44721");
    }
    void Posing() { CompareAnswer(); }

    void ScaleAndOffsetOfTheScene()
    {
        Scene scene;
        Node* const node = AddNode(scene, "node");
        node->bindTransform = node->meshTransform = Scaling(1, 0, 1); // flat: normals stay as they are
        Geometry& geometry = *AddGeometry(*node, "rigid, skinned", {{1, 2, 3}, {1, 2, 3}}, true);
        geometry.vertices[1].weights[0] = 1;
        geometry.vertices[0].normal = geometry.vertices[1].normal = {1, 1, 0};
        geometry.UpdateMesh(node, {3, -4, 5}, {10, 20, 30}, scene.nodes);
        for (const MeshVertex& posed : geometry.meshVertices) {
            QCOMPARE(Floats(posed.position), QStringLiteral("13, 20, 45"));
            QCOMPARE(Rounded(posed.normal), QStringLiteral("0.8, -0.6, 0"));
        }
    }

    void PosedVerticesAreReused()
    {
        Scene scene;
        Node* const node = AddNode(scene, "node");
        Geometry& geometry = *AddGeometry(*node, "triangle", kTriangle);
        geometry.vertices[1].texCoord = {0.25f, -7};
        const MeshVertex old{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12}, {13, 14}, 15};
        geometry.meshVertices.assign(5, old);
        std::swap(geometry.indices, geometry.normalIndices); // nothing to draw, so nothing is posed
        geometry.UpdateMesh(node, scene.scale, scene.offset, scene.nodes);
        QCOMPARE(Floats(geometry.meshVertices[1]), Floats(old));

        std::swap(geometry.indices, geometry.normalIndices);
        geometry.UpdateMesh(node, scene.scale, scene.offset, scene.nodes);
        geometry.vertices.clear();
        geometry.UpdateMesh(node, scene.scale, scene.offset, scene.nodes);
        QCOMPARE(geometry.meshVertices.size(), std::size_t(3));
        QCOMPARE(Floats(geometry.meshVertices[1]),
                 Floats(MeshVertex{{1, 0, 0}, {0, 0, 1}, old.tangent, old.bitangent, {0.25f, -7}, old.handedness}));
    }

    void Emission()
    {
        Scene scene;
        Node* const root = AddNode(scene, "root");
        Node* const left = AddNode(scene, "left", root);
        Node* const leaf = AddNode(scene, "left leaf", left);
        Node* const right = AddNode(scene, "right", root);
        root->children.insert(root->children.begin() + 1, nullptr); // left behind by a loader
        AddGeometry(*right, "5", kTriangle);
        AddGeometry(*leaf, "4", kTriangle);
        Geometry* const first = AddGeometry(*root, "1", kTriangle);
        Geometry* const hidden = AddGeometry(*root, "hidden", kTriangle);
        AddGeometry(*root, "2", kTriangle);
        AddGeometry(*left, "3", kTriangle);
        AddGeometry(*left, "without vertices", {})->indices = {0, 0, 0};
        first->materialName = QStringLiteral("wood");
        first->materialParameters = {{QStringLiteral("texture"), QStringLiteral("oak.png")}};
        hidden->visible = false;

        RecordingBuilder builder;
        first->AddMesh(builder); // not posed yet
        scene.CreateMeshes(builder);
        QCOMPARE(builder.names.join(' '), QStringLiteral("1 2 3 4 5"));
        const RecordingBuilder::Mesh& mesh = builder.meshes.front();
        QVERIFY(mesh.materialName == "wood" && mesh.materialParameters == first->materialParameters);
        QVERIFY(mesh.vertices == &first->meshVertices && mesh.indices == &first->indices);
        QCOMPARE(hidden->meshVertices.size(), std::size_t(3)); // posed all the same

        builder.names.clear();
        scene.CollectNodeMeshesRecursively(builder, left);
        scene.CollectNodeMeshesRecursively(builder, nullptr);
        first->indices.clear();
        first->AddMesh(builder);
        QCOMPARE(builder.names.join(' '), QStringLiteral("3 4"));
    }

    void GeometriesOfANodeShareTheirNormals()
    {
        // A floor, a smaller hidden wall along one edge of it, a fold with a slot for either side, and others.
        Scene scene;
        Node* const root = AddNode(scene, "root");
        Node* const next = AddNode(scene, "next", root); // straight after the root's: a buffer must not live on
        Geometry* const floor = AddGeometry(*root, "floor", {{0, 1, 0}, {0, 0, 0}, {5, 0, 0}});
        Geometry* const wall = AddGeometry(*root, "wall", {{0, 0, 1}, {0, 0, 0}, {0, 1, 0}});
        Geometry* const fold = AddGeometry(*root, "fold", {{0, 0, 0}, {0, 4, 0}, {8, 0, 0}, {0, 0, 2}});
        Geometry* const apart = AddGeometry(*root, "more slots than corners", kTriangle);
        Geometry* const other = AddGeometry(*next, "a buffer that begins empty", kTriangle);
        Geometry* const plain = AddGeometry(*AddNode(scene, "plain", root), "no buffer", kTriangle);
        floor->normalIndices = other->normalIndices = plain->normalIndices = {0, 1, 2};
        wall->normalIndices = {3, 1, 0};
        wall->visible = false;
        fold->indices = {0, 1, 2, 0, 3, 1};
        fold->normalIndices = {4, 4, 4, 5, 5, 5};
        apart->normalIndices = {0, 1, 2, 3};
        root->normalCount = 6;
        next->normalCount = 3;

        RecordingBuilder builder;
        scene.CreateMeshes(builder);
        QStringList found;
        for (const Geometry* geometry : {floor, wall, fold, apart, other, plain})
            found << Rounded(geometry->meshVertices[0].normal) << Rounded(geometry->meshVertices[2].normal);
        QCOMPARE(found.join("; "), QStringLiteral("-0.70711, 0, -0.70711; 0, 0, -1; -1, 0, 0; -0.70711, 0, -0.70711; "
                                                  "1, 0, 0; 0, 0, 1; 0, 0, 1; 0, 0, 1; 0, 0, -1; 0, 0, -1; "
                                                  "0, 0, 1; 0, 0, 1"));
    }

    void VisibilityAndBoundingBox()
    {
        Scene scene;
        Node* const root = AddNode(scene, "root", nullptr, Translation(0, 0, 10), Scaling(2, 2, 2));
        Node* const child = AddNode(scene, "child", root);
        root->skinTransform = Translation(1000, 0, 0); // bones play no part in the box
        scene.scale = scene.offset = {7, 7, 7};
        const auto add = [](Node* node, const char* name, const char* material, const Vec3& point) {
            Geometry* const geometry = AddGeometry(*node, name, {point}, true);
            geometry->materialName = QString::fromLatin1(material);
            geometry->vertices[0].weights[0] = 1;
        };
        add(root, "body", "wood", {1, 1, 1});
        add(root, "head", "skin", {-1, 5, 0});
        add(child, "body", "skin", {3, -3, 3});
        const auto box = [&scene] {
            scene.UpdateBoundingBox();
            return Floats(scene.boundingBox);
        };
        QCOMPARE(box(), QStringLiteral("-2, -3, 3, 3, 10, 12"));
        scene.SetMaterialVisibility("skin", false);
        QCOMPARE(box(), QStringLiteral("2, 2, 12, 2, 2, 12"));
        scene.SetMeshVisibility("body", false);
        for (const char* const wrong : {"Body", "wood", "bod", "", "skin"})
            scene.SetMeshVisibility(wrong, true);
        for (const char* const wrong : {"Skin", "body", "ski", "", "head"})
            scene.SetMaterialVisibility(wrong, true);
        QCOMPARE(box(), Floats(TBBox<float>()));
        scene.SetMeshVisibility("body", true);
        QCOMPARE(box(), QStringLiteral("2, -3, 3, 3, 2, 12"));
    }
};

QTEST_APPLESS_MAIN(MeshTest)
#include "mesh_test.moc"
