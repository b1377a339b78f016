#include "tests/foundation/Exact.h"
#include "tests/skin/SkinFixtures.h"

#include <limits>

using namespace SkinAnimation;

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
const Vec3 kOnes{1, 1, 1};
const Vec3 kZeros{0, 0, 0};
const std::vector<Vec3> kTriangle = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};

/// Writes down what it is handed.
class RecordingBuilder : public IMeshNodeBuilder {
public:
    struct Mesh {
        QString materialName;
        QMap<QString, QVariant> materialParameters;
        const std::vector<MeshVertex>* vertices;
        const std::vector<unsigned int>* indices;
    };
    QStringList names;
    QVector<Mesh> meshes;
    QString throwsAt;

    void BeginModel(const QString&, std::size_t) override { QFAIL("the library never begins a model"); }
    void EndModel() override { QFAIL("the library never ends a model"); }
    void AddMeshNode(const QString& name, std::vector<MeshVertex>& vertices, std::vector<unsigned int>& indices,
                     const QString& materialName, const QMap<QString, QVariant>& materialParameters) override
    {
        if (name == throwsAt)
            throw name;
        names << name;
        meshes.push_back({materialName, materialParameters, &vertices, &indices});
    }
};

/// "position / normal" of one vertex, posed among `copies` of itself by four bones and `spare` gaps in the list.
QString Posed(bool skinned, const std::vector<int>& bones, const std::vector<float>& weights, int copies, int spare)
{
    // In the rest pose the vertex (1, 2, 3) with its normal along y stands at (2, 3, 11), its normal along z.
    Scene scene;
    Node* const owner = AddNode(scene, "owner");
    owner->bindTransform = Cycle() * Translation(-1, 2, 9);
    owner->meshTransform = Translation(100, 0, 0);
    std::vector<Node*> list;
    for (const Matrix& move : {Translation(10, 20, 40), Scaling(2, 2, 2), Cycle(), Matrix()}) {
        list.push_back(AddNode(scene, "bone", owner));
        list.back()->skinTransform = move;
        Inverse(list.back()->skinTransformInverse, move);
    }
    list.resize(list.size() + std::size_t(spare), nullptr);

    Geometry geometry(QString(), skinned);
    SkinVertex vertex;
    vertex.position = {1, 2, 3};
    vertex.normal = {0, 1, 0};
    vertex.texCoord = {0, 0};
    for (std::size_t j = 0; j < 4; ++j) {
        vertex.boneIndices[j] = std::uint16_t(bones[j]);
        vertex.weights[j] = weights[j];
    }
    geometry.vertices.assign(std::size_t(copies), vertex);
    geometry.indices = {0, 0, 0};
    geometry.UpdateMesh(owner, kOnes, kZeros, list);
    return Floats(geometry.meshVertices.back().position) + " / " + Rounded(geometry.meshVertices.front().normal);
}

/// Normals of the node's posed triangle, once the triangle is posed with `scale`.
QString NormalsAgainstTheSurface(Node& node, Geometry& geometry, const Vec3& scale)
{
    for (SkinVertex& vertex : geometry.vertices) {
        vertex.normal = Normalized(Cross(geometry.vertices[1].position - geometry.vertices[0].position,
                                         geometry.vertices[2].position - geometry.vertices[0].position));
        vertex.weights[0] = 1;
    }
    geometry.UpdateMesh(&node, scale, {100, 200, 300}, {&node});
    const std::vector<MeshVertex>& posed = geometry.meshVertices;
    const Vec3 across = Normalized(Cross(posed[1].position - posed[0].position, posed[2].position - posed[0].position));
    // The cosines of normal against surface, to three digits: positions lie far from the origin.
    return QString::number(double(Dot(across, posed[0].normal)), 'f', 3) + ' '
        + QString::number(double(Dot(across, posed[2].normal)), 'f', 3);
}

} // namespace

class MeshTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Posing_data()
    {
        AnswerColumns();
        const auto row = [](const char* name, bool skinned, const std::vector<int>& bones,
                            const std::vector<float>& weights, const char* expected) {
            // Few vertices and many, few bones and more than live on the stack.
            for (const auto& [copies, spare] : {std::pair(1, 300), std::pair(200, 0), std::pair(200, 300)})
                QTest::newRow(qPrintable(QStringLiteral("%1 (%2 times, %3 gaps)").arg(name).arg(copies).arg(spare)))
                    << Posed(skinned, bones, weights, copies, spare) << QString::fromLatin1(expected);
        };
        // Bone 0 moves by (10, 20, 40), bone 1 doubles, bone 2 cycles x to y to z to x, bone 3 does nothing.
        const std::vector<int> inOrder{0, 1, 2, 3};
        const char* const rigid = "101, 2, 3 / 0, 1, 0";
        row("not skinned, whatever the weights", false, inOrder, {1, 0, 0, 0}, rigid);
        row("first weight zero", true, inOrder, {0, 1, 1, 1}, rigid);
        row("first weight negative", true, inOrder, {-1, 1, 1, 1}, rigid);
        row("first weight no number", true, inOrder, {kNaN, 1, 0, 0}, rigid);
        row("one bone", true, inOrder, {1, 0, 0, 0}, "12, 23, 51 / 0, 0, 1");
        row("three bones, the third turns the normal", true, {3, 3, 2, 0}, {0.25f, 0.25f, 0.5f, 0},
            "6.5, 2.5, 7 / 0.70711, 0, 0.70711");
        row("all four", true, inOrder, {0.25f, 0.25f, 0.25f, 0.25f}, "7.25, 8.5, 21.75 / 0.37139, 0, 0.92848");
        row("a zero ends the list, indices behind it are not looked at", true, {0, 65535, 65535, 65535},
            {0.5f, -0.0f, 1, 1}, "6, 11.5, 25.5 / 0, 0, 1");
        row("weights above one are not cut", true, inOrder, {2, 0, 0, 0}, "24, 46, 102 / 0, 0, 1");
        row("a negative weight counts", true, inOrder, {2, -0.5f, 0, 0}, "22, 43, 91 / 0, 0, 1");
        row("a later weight that is no number", true, inOrder, {1, kNaN, 0, 0}, "nan, nan, nan / nan, nan, nan");
    }
    void Posing() { CompareAnswer(); }

    void NormalsStandOnTheSurface_data()
    {
        AnswerColumns();
        const auto row = [](const char* name, bool skinned, const Matrix& bind, const Matrix& move, const Vec3& scale,
                            bool mirrored) {
            Scene scene;
            Node* const node = AddNode(scene, "owner and bone");
            node->bindTransform = bind;
            node->skinTransform = node->meshTransform = move;
            Inverse(node->skinTransformInverse, move);
            Geometry* const triangle = AddGeometry(*node, "triangle", {{1, 2, 3}, {4, 1, -2}, {-3, 2, 5}}, skinned);
            QTest::newRow(name) << NormalsAgainstTheSurface(*node, *triangle, scale)
                                << (mirrored ? "-1.000 -1.000" : "1.000 1.000");
        };
        const Matrix shear{{1, 2, 0, 0, 0, 1, 3, 0, 1, 0, 1, 0, 5, 6, 7, 1}};
        const Matrix squash = Scaling(1, 4, 0.25f) * Cycle() * Translation(1, 2, 3);
        const Matrix mirror = Cycle() * Scaling(-2, 1, 1);
        const Matrix none;
        row("rigid, sheared", false, none, shear, kOnes, false);
        row("rigid, mirrored", false, none, mirror, kOnes, true);
        row("one bone, sheared", true, none, shear, kOnes, false);
        row("a squashed geometry on a resting bone", true, squash, none, kOnes, false);
        row("a sheared geometry on a squashed bone", true, shear, squash, kOnes, false);
        row("a mirrored geometry on a mirrored bone", true, mirror, mirror, kOnes, false);
        row("the scene squashed", false, none, shear, {1, 2, 8}, false);
        row("the scene mirrored", true, none, squash, {-1, 1, 3}, true);
    }
    void NormalsStandOnTheSurface() { CompareAnswer(); }

    void ScaleAndOffset_data()
    {
        AnswerColumns();
        const auto row = [](const char* name, const Vec3& normal, const Vec3& scale, const char* expected) {
            Scene scene;
            Node* const node = AddNode(scene, "node");
            Geometry* const geometry = AddGeometry(*node, "point", {{1, 2, 3}});
            geometry->vertices[0].normal = normal;
            geometry->UpdateMesh(node, scale, {10, 20, 30}, scene.nodes);
            const MeshVertex& posed = geometry->meshVertices[0];
            QTest::newRow(name) << Floats(posed.position) + " / " + Rounded(posed.normal) << QString(expected);
        };
        row("first the scale, then the offset; unit normals", {0, 3, 4}, {2, 2, 2}, "12, 24, 36 / 0, 0.6, 0.8");
        row("each axis for itself", {1, 1, 0}, {3, -4, 5}, "13, 12, 45 / 0.8, -0.6, 0");
        row("a scale of zero along the normal", {0, 0, 1}, {1, 1, 0}, "11, 22, 30 / 0, 0, nan");
        row("a scale of zero beside the normal", {1, 0, 0}, {1, 1, 0}, "11, 22, 30 / nan, nan, nan");
        row("no normal stays none", {0, 0, 0}, {2, 2, 2}, "12, 24, 36 / 0, 0, 0");
        row("not a number is divided by", {kNaN, 1, 0}, kOnes, "11, 22, 33 / nan, nan, nan");
    }
    void ScaleAndOffset() { CompareAnswer(); }

    void FlatTransformsLeaveNormalsAsTheyWere()
    {
        Scene scene;
        Node* const node = AddNode(scene, "flat");
        node->bindTransform = Scaling(0, 1, 1);
        node->meshTransform = Scaling(1, 0, 1);
        Geometry* const geometry = AddGeometry(*node, "points", {{1, 2, 3}, {1, 2, 3}}, true);
        geometry->vertices[1].weights[0] = 1;
        geometry->UpdateMesh(node, kOnes, kZeros, scene.nodes);
        QCOMPARE(Floats(geometry->meshVertices[0].position), QStringLiteral("1, 0, 3"));
        QCOMPARE(Floats(geometry->meshVertices[1].position), QStringLiteral("0, 2, 3"));
        for (const MeshVertex& vertex : geometry->meshVertices)
            QCOMPARE(vertex.normal, (Vec3{0, 0, 1}));
    }

    void PosedVerticesAreReused()
    {
        Scene scene;
        Node* const node = AddNode(scene, "node");
        Geometry* const geometry = AddGeometry(*node, "triangle", kTriangle);
        geometry->vertices[1].texCoord = {0.25f, -7};
        const MeshVertex old{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12}, {13, 14}, 15};
        geometry->meshVertices.assign(5, old);
        std::swap(geometry->indices, geometry->normalIndices); // nothing to draw, so nothing is posed
        geometry->UpdateMesh(node, kOnes, kZeros, scene.nodes);
        std::swap(geometry->indices, geometry->normalIndices);
        QCOMPARE(geometry->meshVertices.size(), std::size_t(5));
        QCOMPARE(Floats(geometry->meshVertices[1]), Floats(old));

        const MeshVertex* const data = geometry->meshVertices.data();
        for (const std::size_t count : {3, 4}) { // shrinks, then grows
            geometry->vertices.resize(count, geometry->vertices[1]);
            geometry->UpdateMesh(node, kOnes, kZeros, scene.nodes);
            QCOMPARE(geometry->meshVertices.size(), count);
            QVERIFY(geometry->meshVertices.data() == data);
            QCOMPARE(Floats(geometry->meshVertices[1]),
                     Floats(MeshVertex{{1, 0, 0}, {0, 0, 1}, old.tangent, old.bitangent, {0.25f, -7}, old.handedness}));
        }
        QCOMPARE(geometry->meshVertices[3].position, kTriangle[1]);
        geometry->vertices.clear();
        geometry->UpdateMesh(node, kOnes, kZeros, scene.nodes);
        QCOMPARE(geometry->meshVertices.size(), std::size_t(4));
    }

    void SmoothNormals_data()
    {
        AnswerColumns();
        // "collected / written": into a buffer of (1, 2, 3) each, then to vertices that had (9, 9, 9).
        using Numbers = std::vector<std::uint32_t>;
        const auto row = [](const char* name, const std::vector<Vec3>& points, const Numbers& indices,
                            const Numbers& slotOfCorner, std::size_t count, const QString& expected) {
            Geometry geometry(QString(), false);
            for (const Vec3& point : points)
                geometry.meshVertices.push_back({point, {9, 9, 9}, {}, {}, {}, 0});
            geometry.indices = indices;
            geometry.normalIndices = slotOfCorner;
            std::vector<Vec3> normals(count, Vec3{1, 2, 3});
            geometry.CollectNormals(normals);
            QStringList collected, written;
            for (const Vec3& normal : normals)
                collected << Rounded(normal);
            geometry.SetNormals(normals);
            for (const MeshVertex& vertex : geometry.meshVertices)
                written << Rounded(vertex.normal);
            QTest::newRow(name) << collected.join("; ") + " / " + written.join("; ") << expected;
        };
        const std::vector<Vec3> floor{{0, 0, 0}, {0, 4, 0}, {8, 0, 0}};
        const std::vector<Vec3> ridge{{0, 0, 0}, {0, 4, 0}, {8, 0, 0}, {0, 0, 2}};
        const QString untouched = QStringLiteral("9, 9, 9; 9, 9, 9; 9, 9, 9");
        row("one slot gets three times the unit normal", floor, {0, 1, 2}, {0, 0, 0}, 1,
            "1, 2, 6 / 1, 2, 6; 1, 2, 6; 1, 2, 6");
        row("turned round, slots apart from indices", floor, {0, 2, 1}, {1, 1, 2}, 3,
            "1, 2, 3; 1, 2, 1; 1, 2, 2 / 1, 2, 1; 1, 2, 2; 1, 2, 1");
        row("triangles of unlike size weigh the same", ridge, {0, 1, 2, 0, 3, 1}, {0, 1, 2, 0, 3, 1}, 4,
            "2, 2, 4; 2, 2, 4; 1, 2, 4; 2, 2, 3 / 2, 2, 4; 2, 2, 4; 1, 2, 4; 2, 2, 3");
        row("a vertex of many corners takes the last", ridge, {0, 1, 2, 0, 3, 1}, {0, 0, 0, 1, 1, 1}, 2,
            "1, 2, 6; 4, 2, 3 / 4, 2, 3; 4, 2, 3; 1, 2, 6; 4, 2, 3");
        row("without area nothing is added", floor, {0, 1, 1}, {0, 0, 0}, 1, "1, 2, 3 / 1, 2, 3; 1, 2, 3; 9, 9, 9");
        row("a sloping triangle", {{2, 0, 0}, {0, 3, 0}, {0, 0, 5}}, {1, 0, 2}, {0, 1, 1}, 2, // along (15, 10, 6) / 19
            "1.78947, 2.52632, 3.31579; 2.57895, 3.05263, 3.63158 / "
            "2.57895, 3.05263, 3.63158; 1.78947, 2.52632, 3.31579; 2.57895, 3.05263, 3.63158");
        row("no buffer", floor, {0, 1, 2}, {0, 0, 0}, 0, " / " + untouched);
        row("too few slots", floor, {0, 1, 2}, {0, 0}, 1, "1, 2, 3 / " + untouched);
        row("too many slots", floor, {0, 1, 2}, {0, 0, 0, 0}, 1, "1, 2, 3 / " + untouched);
        row("no triangles", floor, {}, {}, 1, "1, 2, 3 / " + untouched);
    }
    void SmoothNormals() { CompareAnswer(); }

    void Emission()
    {
        Scene scene;
        scene.scale = {2, 2, 2};
        scene.offset = {0, 0, 1};
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
        AddGeometry(*left, "without indices", kTriangle)->indices.clear();
        AddGeometry(*left, "without vertices", {})->indices = {0, 0, 0};
        first->materialName = QStringLiteral("wood");
        first->materialParameters = {{QStringLiteral("texture"), QStringLiteral("oak.png")}};
        hidden->visible = false;

        RecordingBuilder builder;
        first->AddMesh(builder); // not posed yet
        scene.CreateMeshes(builder);
        QCOMPARE(builder.names.join(' '), QStringLiteral("1 2 3 4 5"));
        const RecordingBuilder::Mesh& mesh = builder.meshes.front();
        QCOMPARE(mesh.materialName, first->materialName);
        QCOMPARE(mesh.materialParameters, first->materialParameters);
        QVERIFY(mesh.vertices == &first->meshVertices && mesh.indices == &first->indices);
        QCOMPARE(Floats(first->meshVertices[1].position), QStringLiteral("2, 0, 1"));
        QCOMPARE(hidden->meshVertices.size(), std::size_t(3)); // posed all the same

        RecordingBuilder part;
        scene.CollectNodeMeshesRecursively(part, left);
        scene.CollectNodeMeshesRecursively(part, nullptr);
        Scene().CreateMeshes(part);
        first->AddMesh(part);
        hidden->AddMesh(part);
        first->indices.clear();
        first->AddMesh(part);
        QCOMPARE(part.names.join(' '), QStringLiteral("3 4 1"));

        RecordingBuilder throwing;
        throwing.throwsAt = QStringLiteral("3");
        QVERIFY_EXCEPTION_THROWN(scene.CreateMeshes(throwing), QString);
        QCOMPARE(throwing.names.join(' '), QStringLiteral("2"));
    }

    void GeometriesOfANodeShareTheirNormals()
    {
        // A floor, a hidden wall along one edge of it, and geometries with normals of their own.
        Scene scene;
        Node* const root = AddNode(scene, "root");
        Node* const next = AddNode(scene, "next", root); // straight after the root's: a buffer must not live on
        Node* const child = AddNode(scene, "child", root);
        Geometry* const floor = AddGeometry(*root, "floor", {{0, 1, 0}, {0, 0, 0}, {5, 0, 0}});
        Geometry* const wall = AddGeometry(*root, "wall", {{0, 0, 5}, {0, 0, 0}, {0, 1, 0}});
        Geometry* const apart = AddGeometry(*root, "apart", kTriangle);
        Geometry* const plain = AddGeometry(*child, "no buffer", kTriangle);
        Geometry* const other = AddGeometry(*next, "a buffer that begins empty", kTriangle);
        floor->normalIndices = plain->normalIndices = other->normalIndices = {0, 1, 2};
        wall->normalIndices = {3, 1, 0};
        wall->visible = false;
        root->normalCount = 4;
        next->normalCount = 3;

        RecordingBuilder builder;
        scene.CreateMeshes(builder);
        QStringList found;
        for (const Geometry* geometry : {floor, wall, apart, plain, other})
            found << Rounded(geometry->meshVertices[0].normal) << Rounded(geometry->meshVertices[2].normal);
        QCOMPARE(found.join("; "), QStringLiteral("-0.70711, 0, -0.70711; 0, 0, -1; -1, 0, 0; -0.70711, 0, -0.70711; "
                                                  "0, 0, 1; 0, 0, 1; 0, 0, 1; 0, 0, 1; 0, 0, -1; 0, 0, -1"));
    }

    void VisibilityAndBoundingBox()
    {
        Scene scene;
        Node* const root = AddNode(scene, "root", nullptr, Translation(0, 0, 10), Scaling(2, 2, 2));
        Node* const child = AddNode(scene, "child", root);
        const auto add = [](Node* node, const char* name, const char* material, const Vec3& point) {
            Geometry* const geometry = AddGeometry(*node, name, {point, point}, true);
            geometry->materialName = QString::fromLatin1(material);
            geometry->vertices[0].weights[0] = 1; // bones play no part in the box
        };
        add(root, "body", "wood", {1, 1, 1});
        add(root, "head", "skin", {-1, 5, 0});
        add(child, "body", "skin", {3, -3, 3});
        root->skinTransform = Translation(1000, 0, 0);
        scene.scale = scene.offset = {7, 7, 7};

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
        scene.SetMaterialVisibility("skin", true);
        QCOMPARE(box(), QStringLiteral("-2, -3, 3, 3, 10, 12"));
    }
};

QTEST_APPLESS_MAIN(MeshTest)
#include "mesh_test.moc"
