#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/platform/IMeshNodeBuilder.h"
#include "reference/host/document/Scene.h"
#include "reference/plugins/primitives/ShapeGenerator.h"

#include <QtTest>

using namespace Host;

namespace {

constexpr double kPi = 3.14159265358979323846;

/// What is wrong with a mesh: its surface is closed, no triangle is without area,
/// all run clockwise as seen from where their normals face, which is outwards
/// since the volume is positive.
QString FaultOf(const IMesh& mesh, double& volume)
{
    std::map<std::array<float, 6>, int> edges;
    for (std::size_t i = 0; i < mesh.GetIndices().size(); i += 3) {
        const auto at = [&](std::size_t k) { return mesh.GetVertices().at(mesh.GetIndices()[i + k % 3]); };
        const TVec3<float> across = Cross(at(2).position - at(0).position, at(1).position - at(0).position);
        volume += double(Dot(at(0).position, across)) / 6.0;
        for (std::size_t k = 0; k < 3; ++k) {
            const MeshVertex v = at(k);
            const TVec3<float> a = v.position, b = at(k + 1).position;
            ++edges[{a.x, a.y, a.z, b.x, b.y, b.z}];
            if (!(Dot(v.normal, across) > 0.0f)) return "a normal that faces inwards";
            if (!(Dot(Cross(v.normal, v.tangent), v.bitangent) * v.handedness > 0.999f)) return "a skewed frame";
            if (v.position.z < 0.0f) return "a corner in the ground";
        }
    }
    for (const auto& [edge, count] : edges)
        if (count != 1 || edges.count({edge[3], edge[4], edge[5], edge[0], edge[1], edge[2]}) == 0)
            return "an edge without exactly two triangles";
    return volume > 0.0 ? "" : "an inside that is outside";
}

} // namespace

class PrimitivesTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ShapesAreClosed_data();
    void ShapesAreClosed();
    void ValuesAreHeld();
};

void PrimitivesTest::ShapesAreClosed_data()
{
    QTest::addColumn<QVariantMap>("values");
    QTest::addColumn<QVector<double>>("volumes"); // of each mesh, if it is known
    using Volumes = QVector<double>;
    // Of the box within the bevel, all around.
    const auto rounded = [](double a, double b, double c, double r) {
        return a * b * c + 2 * r * (a * b + b * c + c * a) + kPi * r * r * (a + b + c + 4 * r / 3);
    };
    QVariantMap box{{"width", 0.2}, {"depth", 0.3}, {"height", 0.5}, {"segments", 16}};
    QTest::newRow("box, sharp") << box << Volumes{0.03};
    box["bevel"] = 0.05;
    QTest::newRow("box, rounded") << box << Volumes{rounded(0.1, 0.2, 0.4, 0.05)};
    box["bevel"] = 7.0;
    QTest::newRow("box, with more bevel than there is room for") << box << Volumes{rounded(0.0, 0.1, 0.3, 0.1)};
    const QVariantMap coarse{{"radius", 1.0}, {"segments", 3}, {"rings", 2}}, fine{{"segments", 99}, {"rings", 99}};
    QTest::newRow("sphere of six triangles") << coarse << Volumes{std::sqrt(3.0) / 2.0};
    QTest::newRow("sphere, fine") << fine << Volumes{kPi / 6e3};

    // The neck is as wide as the body. What the rounded heel lacks is little.
    QVariantMap tube{{"bodyRadius", 0.05}, {"bodyHeight", 0.3}, {"shoulderHeight", 0.05}, {"neckHeight", 0.05},
                     {"neckRadius", 9.0},  {"lip", 0.0},        {"dent", 0.0},            {"wall", 0.005},
                     {"segments", 128},    {"cap", true},       {"labelHeight", 0.2}};
    const double glass = kPi * (0.05 * 0.05 * 0.4 - 0.045 * 0.045 * 0.395);
    const double paper = kPi * 0.2 * (0.0502 * 0.0502 - 0.0501 * 0.0501);
    const double cap = kPi * (0.0545 * 0.0545 * 0.017 - 0.0515 * 0.0515 * 0.013);
    QTest::newRow("bottle that is a tube, with half a label") << tube << Volumes{glass, paper / 2, cap};
    tube["labelAngle"] = 360.0;
    QTest::newRow("bottle with a label all around") << tube << Volumes{glass, paper, cap};
    QVariantMap least, most{{"cap", true}};
    for (const sGeneratorParameter& parameter : BottleShape().parameters)
        if (parameter.least.isValid()) {
            least[parameter.strName] = parameter.least;
            most[parameter.strName] = parameter.most;
        }
    QTest::newRow("bottle with the least of everything") << least << Volumes(2);
    QTest::newRow("bottle with the most of everything") << most << Volumes(3);
    for (const char* name : {"bodyRadius", "bodyHeight", "neckHeight"})
        most[name] = 0.0;
    QTest::newRow("bottle with much on little") << most << Volumes(3);
    for (const sGeneratorPreset& preset : BottleShape().presets)
        QTest::newRow(qPrintable("bottle: " + preset.strTitle))
            << preset.values << Volumes(1 + preset.values["label"].toBool() + preset.values["cap"].toBool());
}

void PrimitivesTest::ShapesAreClosed()
{
    QFETCH(QVariantMap, values);
    QFETCH(QVector<double>, volumes);
    const QByteArray tag = QTest::currentDataTag();
    ShapeGenerator generator(tag.startsWith("box") ? BoxShape() : tag[0] == 's' ? SphereShape() : BottleShape());
    for (auto value = values.begin(); value != values.end(); ++value)
        generator.SetValue(value.key(), value.value());
    Scene scene;
    const std::unique_ptr<IMeshNodeBuilder> builder(scene.CreateMeshBuilder(scene.GetRoot()));
    generator.Generate(*builder);
    QCOMPARE(int(scene.GetRoot()->GetChildren().size()), volumes.size());
    for (int i = 0; i < volumes.size(); ++i) {
        double volume = 0.0;
        INode* const node = scene.GetRoot()->GetChildren()[std::size_t(i)];
        QCOMPARE(FaultOf(*qobject_cast<IMeshNode*>(node)->GetMeshes().at(0), volume), QString());
        QVERIFY2(volumes[i] == 0.0 || qAbs(volume / volumes[i] - 1.0) < 0.02, qPrintable(QString::number(volume)));
    }
}

void PrimitivesTest::ValuesAreHeld()
{
    ShapeGenerator generator(BottleShape());
    QSignalSpy changes(&generator, &IGenerator::changed);
    const auto refuses = [&](const char* name, const QVariant& value) {
        const QVariant before = generator.GetValue(name);
        try {
            generator.SetValue(name, value);
        } catch (const InvalidParameterException&) {
            return generator.GetValue(name) == before && changes.isEmpty();
        }
        return false;
    };
    QVERIFY(refuses("width", 1.0) && refuses("wall", "0.004") && refuses("wall", qQNaN()));
    QVERIFY(refuses("segments", 20.5) && refuses("cap", 1));
    for (const double value : {-1.0, 0.0, double(-qInf())})
        generator.SetValue("wall", value);
    generator.SetValue("segments", qInf());
    QCOMPARE(generator.GetValue("wall"), QVariant(0.0005));
    QCOMPARE(generator.GetValue("segments"), QVariant(512));
    QCOMPARE(changes.size(), 2);
}

QTEST_GUILESS_MAIN(PrimitivesTest)
#include "primitives_test.moc"
