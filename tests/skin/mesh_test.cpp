#include "tests/foundation/Exact.h"
#include "tests/skin/SkinFixtures.h"

#include <QtTest>

#include <limits>

using namespace SkinAnimation;

Q_DECLARE_METATYPE(Matrix)
Q_DECLARE_METATYPE(Vec3)
Q_DECLARE_METATYPE(QVector<float>)
Q_DECLARE_METATYPE(QVector<int>)
Q_DECLARE_METATYPE(QVector<Vec3>)

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
const Vec3 kOnes{1, 1, 1};
const Vec3 kZeros{0, 0, 0};

/// Writes down what it is handed.
class RecordingBuilder : public IMeshNodeBuilder {
public:
    struct Mesh {
        QString name;
        QString materialName;
        QMap<QString, QVariant> materialParameters;
        const std::vector<MeshVertex>* vertices;
        const std::vector<unsigned int>* indices;
    };
    QVector<Mesh> meshes;
    QString throwsAt;

    QStringList Names() const
    {
        QStringList names;
        for (const Mesh& mesh : meshes)
            names << mesh.name;
        return names;
    }

    void BeginModel(const QString&, std::size_t) override { QFAIL("the library never begins a model"); }
    void EndModel() override { QFAIL("the library never ends a model"); }
    void AddMeshNode(const QString& name, std::vector<MeshVertex>& vertices, std::vector<unsigned int>& indices,
                     const QString& materialName, const QMap<QString, QVariant>& materialParameters) override
    {
        if (name == throwsAt)
            throw name;
        meshes.push_back({name, materialName, materialParameters, &vertices, &indices});
    }
};

void SetInfluences(SkinVertex& vertex, const QVector<int>& bones, const QVector<float>& weights)
{
    for (int j = 0; j < 4; ++j) {
        vertex.boneIndices[j] = std::uint16_t(bones[j]);
        vertex.weights[j] = weights[j];
    }
}

const std::vector<Vec3> kTriangle = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};

} // namespace

class MeshTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Posing_data()
    {
        QTest::addColumn<bool>("skinned");
        QTest::addColumn<QVector<int>>("bones");
        QTest::addColumn<QVector<float>>("weights");
        QTest::addColumn<QString>("position");
        QTest::addColumn<QString>("normal");

        // The vertex is (1, 2, 3) with a normal along y. In the rest pose it stands at (2, 3, 11), normal along z.
        // Bone 0 moves by (10, 20, 40), bone 1 doubles, bone 2 cycles x to y to z to x, bone 3 does nothing.
        const QVector<int> inOrder{0, 1, 2, 3};
        const QString rigid = QStringLiteral("101, 2, 3"); // the mesh transform moves by (100, 0, 0)
        const auto row = [](const char* name, bool skinned, const QVector<int>& bones, const QVector<float>& weights,
                            const QString& position, const QString& normal) {
            QTest::newRow(name) << skinned << bones << weights << position << normal;
        };
        row("rigid, whatever the weights", false, inOrder, {1, 0, 0, 0}, rigid, "0, 1, 0");
        row("skinned without weights stands rigidly", true, inOrder, {0, 1, 1, 1}, rigid, "0, 1, 0");
        row("a minus zero as first weight stands rigidly", true, inOrder, {-0.0f, 1, 1, 1}, rigid, "0, 1, 0");
        row("a negative first weight stands rigidly", true, inOrder, {-1, 1, 1, 1}, rigid, "0, 1, 0");
        row("a first weight that is no number stands rigidly", true, inOrder, {kNaN, 1, 0, 0}, rigid, "0, 1, 0");
        row("one bone", true, inOrder, {1, 0, 0, 0}, "12, 23, 51", "0, 0, 1");
        row("two bones", true, inOrder, {0.5f, 0.5f, 0, 0}, "8, 14.5, 36.5", "0, 0, 1");
        row("three bones, the third turns the normal", true, {3, 3, 2, 0}, {0.25f, 0.25f, 0.5f, 0}, "6.5, 2.5, 7", "0.707106769, 0, 0.707106769");
        row("all four", true, inOrder, {0.25f, 0.25f, 0.25f, 0.25f}, "7.25, 8.5, 21.75",
            Floats(Normalized({0.25f, 0, 0.625f})));
        row("a zero ends the list", true, inOrder, {0.5f, 0, 0.5f, 0.5f}, "6, 11.5, 25.5", "0, 0, 1");
        row("indices behind the zero are not looked at", true, {0, 65535, 65535, 65535}, {0.5f, 0, 1, 1}, "6, 11.5, 25.5", "0, 0, 1");
        row("weights below one are not made up", true, inOrder, {0.25f, 0, 0, 0}, "3, 5.75, 12.75", "0, 0, 1");
        row("weights above one are not cut", true, inOrder, {2, 0, 0, 0}, "24, 46, 102", "0, 0, 1");
        row("a negative weight counts", true, inOrder, {2, -0.5f, 0, 0}, "22, 43, 91", "0, 0, 1");
        row("a later weight that is no number spoils the vertex", true, inOrder, {1, kNaN, 0, 0}, "nan, nan, nan", "nan, nan, nan");
        row("one bone four times", true, {1, 1, 1, 1}, {0.25f, 0.25f, 0.25f, 0.25f}, "4, 6, 22", "0, 0, 1");
    }

    void Posing()
    {
        QFETCH(bool, skinned);
        QFETCH(QVector<int>, bones);
        QFETCH(QVector<float>, weights);

        Scene scene;
        Node* const owner = AddNode(scene, "owner");
        owner->bindTransform = Cycle() * Translation(-1, 2, 9); // (1, 2, 3) to (3, 1, 2) to (2, 3, 11)
        owner->meshTransform = Translation(100, 0, 0);
        const Matrix moves[] = {Translation(10, 20, 40), Scaling(2, 2, 2), Cycle(), Matrix()};

        // Few vertices and many, few bones and more than live on the stack, gaps in the list.
        for (const auto& [copies, spare] : {std::pair(1, 0), std::pair(1, 300), std::pair(200, 0), std::pair(200, 300)}) {
            std::vector<std::unique_ptr<Node>> owned;
            std::vector<Node*> list;
            for (const Matrix& move : moves) {
                owned.push_back(std::make_unique<Node>(QString(), Matrix(), Matrix(), nullptr));
                owned.back()->skinTransform = move;
                Inverse(owned.back()->skinTransformInverse, move);
                list.push_back(owned.back().get());
            }
            list.resize(list.size() + std::size_t(spare), nullptr);

            Geometry geometry(QString(), skinned);
            SkinVertex vertex;
            vertex.position = {1, 2, 3};
            vertex.normal = {0, 1, 0};
            vertex.texCoord = {0.25f, -7};
            SetInfluences(vertex, bones, weights);
            geometry.vertices.assign(std::size_t(copies), vertex);
            geometry.indices = {0, 0, 0};
            geometry.UpdateMesh(owner, kOnes, kZeros, list);

            QCOMPARE(geometry.meshVertices.size(), std::size_t(copies));
            for (const MeshVertex& posed : geometry.meshVertices) {
                QTEST(Floats(posed.position), "position");
                QTEST(Floats(posed.normal), "normal");
                QCOMPARE(Floats(posed.texCoord), QStringLiteral("0.25, -7"));
            }
        }
    }

    void NormalsStayUpright_data()
    {
        QTest::addColumn<bool>("skinned");
        QTest::addColumn<Matrix>("bind");
        QTest::addColumn<Matrix>("move"); // the mesh transform, or the one bone's
        QTest::addColumn<Vec3>("scale");
        QTest::addColumn<bool>("mirrored");
        const Matrix shear{{1, 2, 0, 0, 0, 1, 3, 0, 1, 0, 1, 0, 5, 6, 7, 1}};
        const Matrix squash = Scaling(1, 4, 0.25f) * Cycle() * Translation(1, 2, 3);
        const Matrix mirror = Cycle() * Scaling(-2, 1, 1);
        const Matrix none;
        QTest::newRow("rigid, sheared") << false << none << shear << kOnes << false;
        QTest::newRow("rigid, squashed and turned") << false << none << squash << kOnes << false;
        QTest::newRow("rigid, mirrored") << false << none << mirror << kOnes << true;
        QTest::newRow("one bone, sheared") << true << none << shear << kOnes << false;
        QTest::newRow("one bone, mirrored") << true << none << mirror << kOnes << true;
        QTest::newRow("a squashed geometry on a resting bone") << true << squash << none << kOnes << false;
        QTest::newRow("a sheared geometry on a squashed bone") << true << shear << squash << kOnes << false;
        QTest::newRow("a mirrored geometry on a mirrored bone") << true << mirror << mirror << kOnes << false;
        QTest::newRow("the scene doubled") << false << none << none << Vec3{2, 2, 2} << false;
        QTest::newRow("the scene squashed") << false << none << shear << Vec3{1, 2, 8} << false;
        QTest::newRow("the scene mirrored") << true << none << squash << Vec3{-1, 1, 3} << true;
    }

    void NormalsStayUpright()
    {
        QFETCH(bool, skinned);
        QFETCH(Matrix, bind);
        QFETCH(Matrix, move);
        QFETCH(Vec3, scale);
        QFETCH(bool, mirrored);
        const Vec3 corners[3] = {{1, 2, 3}, {4, 1, -2}, {-3, 2, 5}};
        Scene scene;
        Node* const node = AddNode(scene, "owner and bone");
        node->bindTransform = bind;
        node->skinTransform = node->meshTransform = move;
        Inverse(node->skinTransformInverse, move);
        Geometry* const geometry = AddGeometry(*node, "triangle", {corners[0], corners[1], corners[2]}, skinned);
        for (SkinVertex& vertex : geometry->vertices) {
            vertex.normal = Normalized(Cross(corners[1] - corners[0], corners[2] - corners[0]));
            vertex.weights[0] = 1;
        }
        geometry->UpdateMesh(node, scale, {100, 200, 300}, scene.nodes);

        const std::vector<MeshVertex>& posed = geometry->meshVertices;
        const Vec3 across = Normalized(Cross(posed[1].position - posed[0].position, posed[2].position - posed[0].position));
        for (const MeshVertex& vertex : posed)
            QVERIFY2(Distance(vertex.normal, mirrored ? -across : across) < 1e-5f, qPrintable(Floats(vertex.normal)));
    }

    void ScaleAndOffset_data()
    {
        QTest::addColumn<Vec3>("normal");
        QTest::addColumn<Vec3>("scale");
        QTest::addColumn<QString>("expectedPosition");
        QTest::addColumn<QString>("expectedNormal");
        // The vertex is (1, 2, 3), the offset (10, 20, 30).
        QTest::newRow("first the scale, then the offset") << Vec3{0, 3, 4} << Vec3{2, 2, 2} << "12, 24, 36" << "0, 0.600000024, 0.800000012";
        QTest::newRow("each axis for itself") << Vec3{1, 0, 0} << Vec3{2, -3, 4} << "12, 14, 42" << "1, -0, 0";
        QTest::newRow("a scale of zero spoils the normal") << Vec3{0, 0, 1} << Vec3{1, 1, 0} << "11, 22, 30" << "0, 0, nan";
        QTest::newRow("a scale of zero beside the normal") << Vec3{1, 0, 0} << Vec3{1, 1, 0} << "11, 22, 30" << "nan, nan, nan";
        QTest::newRow("no normal stays none") << Vec3{0, 0, 0} << Vec3{2, 2, 2} << "12, 24, 36" << "0, 0, 0";
        QTest::newRow("not a number is divided by") << Vec3{kNaN, 1, 0} << kOnes << "11, 22, 33" << "nan, nan, nan";
    }

    void ScaleAndOffset()
    {
        QFETCH(Vec3, normal);
        QFETCH(Vec3, scale);
        Scene scene;
        Node* const node = AddNode(scene, "node");
        Geometry* const geometry = AddGeometry(*node, "point", {{1, 2, 3}});
        geometry->vertices[0].normal = normal;
        geometry->UpdateMesh(node, scale, {10, 20, 30}, scene.nodes);
        QTEST(Floats(geometry->meshVertices[0].position), "expectedPosition");
        QTEST(Floats(geometry->meshVertices[0].normal), "expectedNormal");
    }

    void FlatTransformsLeaveNormalsAsTheyWere()
    {
        Scene scene;
        Node* const node = AddNode(scene, "flat");
        node->bindTransform = Scaling(0, 1, 1);
        node->meshTransform = Scaling(1, 0, 1) * Translation(0, 5, 0);
        Geometry* const geometry = AddGeometry(*node, "points", {{1, 2, 3}, {1, 2, 3}}, true);
        SetInfluences(geometry->vertices[1], {0, 0, 0, 0}, {1, 0, 0, 0});
        geometry->UpdateMesh(node, kOnes, kZeros, scene.nodes);
        QCOMPARE(Floats(geometry->meshVertices[0].position), QStringLiteral("1, 5, 3"));
        QCOMPARE(Floats(geometry->meshVertices[1].position), QStringLiteral("0, 2, 3"));
        QCOMPARE(Floats(geometry->meshVertices[0].normal), QStringLiteral("0, 0, 1"));
        QCOMPARE(Floats(geometry->meshVertices[1].normal), QStringLiteral("0, 0, 1"));
    }

    void PosedVerticesAreReused()
    {
        Scene scene;
        Node* const node = AddNode(scene, "node");
        Geometry* const geometry = AddGeometry(*node, "triangle", kTriangle);
        geometry->meshVertices.resize(5);
        for (MeshVertex& vertex : geometry->meshVertices)
            vertex.tangent = vertex.bitangent = {vertex.handedness = 7, 8, 9};
        const MeshVertex* const data = geometry->meshVertices.data();
        geometry->UpdateMesh(node, kOnes, kZeros, scene.nodes);
        QCOMPARE(geometry->meshVertices.size(), std::size_t(3));
        QVERIFY(geometry->meshVertices.data() == data);

        geometry->vertices.push_back(geometry->vertices[1]);
        geometry->UpdateMesh(node, kOnes, kZeros, scene.nodes);
        QCOMPARE(geometry->meshVertices.size(), std::size_t(4));
        QCOMPARE(geometry->meshVertices[3].position, kTriangle[1]);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(Floats(geometry->meshVertices[std::size_t(i)]),
                     Floats(MeshVertex{kTriangle[std::size_t(i)], {0, 0, 1}, {7, 8, 9}, {7, 8, 9}, {0, 0}, 7}));
    }

    void NothingToPose_data()
    {
        QTest::addColumn<int>("vertices");
        QTest::addColumn<int>("indices");
        QTest::newRow("vertices but no indices") << 3 << 0;
        QTest::newRow("indices but no vertices") << 0 << 3;
    }

    void NothingToPose()
    {
        QFETCH(int, vertices);
        QFETCH(int, indices);
        Scene scene;
        Node* const node = AddNode(scene, "node");
        Geometry* const geometry = AddGeometry(*node, "triangle", kTriangle);
        geometry->vertices.resize(std::size_t(vertices));
        geometry->indices.resize(std::size_t(indices));
        geometry->meshVertices.assign(2, MeshVertex{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12}, {13, 14}, 15});
        geometry->UpdateMesh(node, {2, 2, 2}, kZeros, scene.nodes);
        QCOMPARE(geometry->meshVertices.size(), std::size_t(2));
        for (const MeshVertex& vertex : geometry->meshVertices)
            QCOMPARE(Floats(vertex), QStringLiteral("1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15"));
    }

    void SmoothNormals_data()
    {
        QTest::addColumn<QVector<Vec3>>("points");
        QTest::addColumn<QVector<int>>("indices");
        QTest::addColumn<QVector<int>>("slots_");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("collected"); // into a buffer of (1, 2, 3) each
        QTest::addColumn<QString>("written");   // normals of the vertices afterwards; they were (9, 9, 9)

        // Corners run so that the face normal is (a - b) x (c - b).
        const QVector<Vec3> floor{{0, 0, 0}, {0, 4, 0}, {8, 0, 0}};
        const QVector<Vec3> ridge{{0, 0, 0}, {0, 4, 0}, {8, 0, 0}, {0, 0, 2}};
        const QString untouched3 = QStringLiteral("9, 9, 9, 9, 9, 9, 9, 9, 9");
        QTest::newRow("one triangle, one slot: three times its unit normal") << floor << QVector<int>{0, 1, 2} << QVector<int>{0, 0, 0}
            << 1 << "1, 2, 6" << "1, 2, 6, 1, 2, 6, 1, 2, 6";
        QTest::newRow("turned round") << floor << QVector<int>{0, 2, 1} << QVector<int>{1, 1, 0}
            << 2 << "1, 2, 2, 1, 2, 1" << "1, 2, 1, 1, 2, 2, 1, 2, 1";
        QTest::newRow("slots apart from indices") << floor << QVector<int>{0, 1, 2} << QVector<int>{2, 0, 1}
            << 4 << "1, 2, 4, 1, 2, 4, 1, 2, 4, 1, 2, 3" << "1, 2, 4, 1, 2, 4, 1, 2, 4";
        QTest::newRow("two triangles of unlike size weigh the same") << ridge << QVector<int>{0, 1, 2, 0, 3, 1} << QVector<int>{0, 1, 2, 0, 3, 1}
            << 4 << "2, 2, 4, 2, 2, 4, 1, 2, 4, 2, 2, 3" << "2, 2, 4, 2, 2, 4, 1, 2, 4, 2, 2, 3";
        QTest::newRow("a vertex of many corners takes the last") << ridge << QVector<int>{0, 1, 2, 0, 3, 1} << QVector<int>{0, 1, 2, 3, 4, 5}
            << 6 << "1, 2, 4, 1, 2, 4, 1, 2, 4, 2, 2, 3, 2, 2, 3, 2, 2, 3" << "2, 2, 3, 2, 2, 3, 1, 2, 4, 2, 2, 3";
        QTest::newRow("a triangle without area adds nothing") << floor << QVector<int>{0, 1, 1} << QVector<int>{0, 0, 0}
            << 1 << "1, 2, 3" << "1, 2, 3, 1, 2, 3, 9, 9, 9";
        const Vec3 slope = Normalized({18, 12, 6});
        const QString one = Floats(Vec3{1, 2, 3} + slope);
        const QString two = Floats(Vec3{1, 2, 3} + slope + slope);
        QTest::newRow("a sloping triangle") << QVector<Vec3>{{2, 0, 0}, {0, 3, 0}, {0, 0, 6}} << QVector<int>{1, 0, 2} << QVector<int>{0, 0, 1}
            << 2 << two + ", " + one << two + ", " + two + ", " + one;
        QTest::newRow("no buffer") << floor << QVector<int>{0, 1, 2} << QVector<int>{0, 0, 0} << 0 << "" << untouched3;
        QTest::newRow("too few slots") << floor << QVector<int>{0, 1, 2} << QVector<int>{0, 0} << 1 << "1, 2, 3" << untouched3;
        QTest::newRow("too many slots") << floor << QVector<int>{0, 1, 2} << QVector<int>{0, 0, 0, 0} << 1 << "1, 2, 3" << untouched3;
        QTest::newRow("no triangles") << floor << QVector<int>{} << QVector<int>{} << 1 << "1, 2, 3" << untouched3;
    }

    void SmoothNormals()
    {
        QFETCH(QVector<Vec3>, points);
        QFETCH(QVector<int>, indices);
        QFETCH(QVector<int>, slots_);
        QFETCH(int, count);
        Geometry geometry(QString(), false);
        for (const Vec3& point : points)
            geometry.meshVertices.push_back({point, {9, 9, 9}, {}, {}, {}, 0});
        geometry.indices.assign(indices.begin(), indices.end());
        geometry.normalIndices.assign(slots_.begin(), slots_.end());
        std::vector<Vec3> normals(std::size_t(count), Vec3{1, 2, 3});

        const auto texts = [](const auto& records, auto member) {
            QStringList list;
            for (const auto& record : records)
                list << Floats(member(record));
            return list.join(QStringLiteral(", "));
        };
        const auto itself = [](const Vec3& normal) { return normal; };
        geometry.CollectNormals(normals);
        QTEST(texts(normals, itself), "collected");
        geometry.SetNormals(normals);
        QTEST(texts(normals, itself), "collected"); // only read
        QTEST(texts(geometry.meshVertices, [](const MeshVertex& vertex) { return vertex.normal; }), "written");
    }

    void Emission()
    {
        Scene scene;
        scene.scale = {2, 2, 2};
        scene.offset = {0, 0, 1};
        Node* const root = AddNode(scene, "root");
        Node* const left = AddNode(scene, "left", root);
        AddNode(scene, "left leaf", left);
        Node* const right = AddNode(scene, "right", root);
        root->children.insert(root->children.begin() + 1, nullptr); // left behind by a loader
        AddGeometry(*right, "5", kTriangle);
        AddGeometry(*left->children[0], "4", kTriangle);
        Geometry* const first = AddGeometry(*root, "1", kTriangle);
        Geometry* const hidden = AddGeometry(*root, "hidden", kTriangle);
        AddGeometry(*root, "2", kTriangle);
        AddGeometry(*left, "3", kTriangle);
        AddGeometry(*left, "without indices", kTriangle)->indices.clear();
        AddGeometry(*left, "without vertices", {});
        first->materialName = QStringLiteral("wood");
        first->materialParameters = {{QStringLiteral("texture"), QStringLiteral("oak.png")}};
        hidden->visible = false;

        RecordingBuilder builder;
        scene.CreateMeshes(builder);
        QCOMPARE(builder.Names().join(QLatin1Char(' ')), QStringLiteral("1 2 3 4 5"));
        const RecordingBuilder::Mesh& mesh = builder.meshes.front();
        QCOMPARE(mesh.materialName, first->materialName);
        QCOMPARE(mesh.materialParameters, first->materialParameters);
        QVERIFY(mesh.vertices == &first->meshVertices && mesh.indices == &first->indices);
        QCOMPARE(Floats(first->meshVertices[1].position), QStringLiteral("2, 0, 1"));
        QCOMPARE(hidden->meshVertices.size(), std::size_t(3)); // posed all the same

        RecordingBuilder part;
        scene.CollectNodeMeshesRecursively(part, left);
        QCOMPARE(part.Names().join(QLatin1Char(' ')), QStringLiteral("3 4"));
        scene.CollectNodeMeshesRecursively(part, nullptr);
        Scene().CreateMeshes(part);
        QCOMPARE(part.meshes.size(), 2);

        RecordingBuilder throwing;
        throwing.throwsAt = QStringLiteral("3");
        QVERIFY_EXCEPTION_THROWN(scene.CreateMeshes(throwing), QString);
        QCOMPARE(throwing.Names().join(QLatin1Char(' ')), QStringLiteral("1 2"));
    }

    void OnlyPosedGeometriesAreAdded()
    {
        Scene scene;
        Geometry* const geometry = AddGeometry(*AddNode(scene, "node"), "triangle", kTriangle);
        RecordingBuilder builder;
        geometry->AddMesh(builder); // never posed
        QCOMPARE(builder.meshes.size(), 0);
        geometry->meshVertices.resize(3);
        geometry->AddMesh(builder);
        QCOMPARE(builder.meshes.size(), 1);
        geometry->visible = false;
        geometry->AddMesh(builder);
        geometry->visible = true;
        geometry->indices.clear();
        geometry->AddMesh(builder);
        QCOMPARE(builder.meshes.size(), 1);
    }

    void GeometriesOfANodeShareTheirNormals()
    {
        // A floor, a hidden wall along one edge of it, and a geometry with normals of its own.
        Scene scene;
        Node* const root = AddNode(scene, "root");
        Node* const child = AddNode(scene, "child", root);
        Geometry* const floor = AddGeometry(*root, "floor", {{0, 1, 0}, {0, 0, 0}, {5, 0, 0}});
        Geometry* const wall = AddGeometry(*root, "wall", {{0, 0, 5}, {0, 0, 0}, {0, 1, 0}});
        Geometry* const apart = AddGeometry(*root, "apart", kTriangle);
        Geometry* const plain = AddGeometry(*child, "no buffer", kTriangle);
        floor->normalIndices = {0, 1, 2};
        wall->normalIndices = {3, 1, 0};
        plain->normalIndices = {0, 1, 2};
        wall->visible = false;
        apart->vertices[0].normal = {0, 1, 0};
        root->normalCount = 4;

        for (int frame = 0; frame < 2; ++frame) { // the second starts from an empty buffer too
            RecordingBuilder builder;
            scene.CreateMeshes(builder);
            const float half = std::sqrt(0.5f);
            const Vec3 both{-half, 0, -half};
            QVERIFY(Distance(floor->meshVertices[0].normal, both) < 1e-6f);
            QVERIFY(Distance(floor->meshVertices[1].normal, both) < 1e-6f);
            QCOMPARE(floor->meshVertices[2].normal, (Vec3{0, 0, -1}));
            QCOMPARE(wall->meshVertices[0].normal, (Vec3{-1, 0, 0}));
            QCOMPARE(apart->meshVertices[0].normal, (Vec3{0, 1, 0}));
            QCOMPARE(plain->meshVertices[0].normal, (Vec3{0, 0, 1}));
        }
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
        scene.scale = {7, 7, 7};
        scene.offset = {99, 99, 99};

        const QString empty = Floats(TBBox<float>());
        const auto box = [&scene] {
            scene.UpdateBoundingBox();
            return Floats(scene.boundingBox);
        };
        QCOMPARE(box(), QStringLiteral("-2, -3, 3, 3, 10, 12"));
        scene.SetMaterialVisibility(QStringLiteral("skin"), false);
        QCOMPARE(box(), QStringLiteral("2, 2, 12, 2, 2, 12"));
        scene.SetMeshVisibility(QStringLiteral("body"), false);
        QCOMPARE(box(), empty);
        for (const char* const wrong : {"Body", "wood", "bod", "", "skin"})
            scene.SetMeshVisibility(QString::fromLatin1(wrong), true);
        for (const char* const wrong : {"Skin", "body", "ski", "", "head"})
            scene.SetMaterialVisibility(QString::fromLatin1(wrong), true);
        QCOMPARE(box(), empty);
        scene.SetMeshVisibility(QStringLiteral("body"), true);
        QCOMPARE(box(), QStringLiteral("2, -3, 3, 3, 2, 12"));
        scene.SetMaterialVisibility(QStringLiteral("skin"), true);
        QCOMPARE(box(), QStringLiteral("-2, -3, 3, 3, 10, 12"));
    }
};

QTEST_APPLESS_MAIN(MeshTest)
#include "mesh_test.moc"
