#include "reference/host/Picture.h"
#include "reference/host/SampleFigure.h"

#include <QtTest>

#include <algorithm>
#include <cmath>

using namespace Host;
using SkinAnimation::Geometry;
using SkinAnimation::Node;

class RendererFigure : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nodesAreATableWithParentsFirst()
    {
        const Model model = MakeSampleFigure();
        const std::vector<Node*>& nodes = model.scene->nodes;
        QCOMPARE(nodes.size(), std::size_t(21));
        QCOMPARE(nodes.front(), model.scene->root);
        for (std::size_t i = 1; i < nodes.size(); ++i) {
            Node* const parent = nodes[i]->parent;
            QVERIFY(std::find(nodes.begin(), nodes.begin() + static_cast<std::ptrdiff_t>(i), parent)
                    != nodes.begin() + static_cast<std::ptrdiff_t>(i));
            QCOMPARE(std::count(parent->children.begin(), parent->children.end(), nodes[i]), 1);
            QCOMPARE(model.scene->GetNodeIndex(nodes[i]->name), static_cast<int>(i));
        }
    }

    void everyIndexAndWeightIsInRange()
    {
        const Model model = MakeSampleFigure();
        int rigid = 0;
        int sharing = 0;
        for (const Node* node : model.scene->nodes) {
            for (const Geometry* geometry : node->geometries) {
                rigid += geometry->skinned ? 0 : 1;
                sharing += geometry->normalIndices.empty() ? 0 : 1;
                CheckTriangles(*geometry, *node);
                if (geometry->skinned)
                    CheckWeights(*geometry, model.scene->nodes.size());
            }
        }
        QCOMPARE(rigid, 1);
        QCOMPARE(sharing, 2);
    }

    // Closed surfaces, corners clockwise: the signed volume is positive, and
    // normals agree with their triangles.
    void surfacesFaceOutward()
    {
        const Model model = MakeSampleFigure();
        MeshCollector collector;
        model.scene->CreateMeshes(collector);
        QCOMPARE(collector.meshes.size(), std::size_t(6));
        for (const PosedMesh& mesh : collector.meshes) {
            float volume = 0.0f;
            for (std::size_t k = 0; k < mesh.indices.size(); k += 3) {
                QVERIFY(IsDrawable(mesh, k));
                const MeshVertex& a = mesh.vertices[mesh.indices[k]];
                const MeshVertex& b = mesh.vertices[mesh.indices[k + 1]];
                const MeshVertex& c = mesh.vertices[mesh.indices[k + 2]];
                volume += Dot(a.position, Cross(c.position, b.position));
                const TVec3<float> face = Cross(a.position - b.position, c.position - b.position);
                QVERIFY2(Dot(face, a.normal + b.normal + c.normal) > 0.0f,
                         qPrintable(QStringLiteral("%1, triangle %2").arg(mesh.name).arg(k / 3)));
                QVERIFY(std::fabs(Length(a.normal) - 1.0f) < 1e-3f);
            }
            QVERIFY2(volume > 0.0f, qPrintable(mesh.name));
        }
    }

    void posingMovesAHand_data()
    {
        QTest::addColumn<QString>("animation");
        QTest::addColumn<float>("least");
        QTest::addColumn<float>("most");
        QTest::newRow("walking swings it") << "walk" << 0.15f << 0.6f;
        QTest::newRow("waving lifts and swings it") << "wave" << 0.1f << 0.6f;
    }

    void posingMovesAHand()
    {
        QFETCH(QString, animation);
        QFETCH(float, least);
        QFETCH(float, most);
        const Model model = MakeSampleFigure();
        SkinAnimation::Scene& scene = *model.scene;
        const auto found = std::find_if(scene.animations.begin(), scene.animations.end(),
                                        [&](const auto* candidate) { return candidate->name == animation; });
        QVERIFY(found != scene.animations.end());
        const int index = static_cast<int>(found - scene.animations.begin());
        const auto handAt = [&](float part) {
            scene.CalculateAnimation(index, (*found)->duration * part);
            return scene.nodes[static_cast<std::size_t>(scene.GetNodeIndex(QStringLiteral("hand.L")))]
                ->globalTransform.GetTranslation();
        };
        const TVec3<float> start = handAt(0.0f);
        float travelled = 0.0f;
        for (const float part : {0.25f, 0.5f, 0.75f})
            travelled = std::max(travelled, Length(handAt(part) - start));
        QVERIFY2(travelled > least && travelled < most, qPrintable(QString::number(static_cast<double>(travelled))));
        QVERIFY2(Length(handAt(1.0f) - start) < 1e-4f, "the cycle does not close");
    }

    void bendingKeepsTheFigureWhole()
    {
        const Model model = MakeSampleFigure();
        for (const int animation : {0, 1}) {
            for (const float time : {100.0f, 400.0f, 900.0f}) {
                model.scene->CalculateAnimation(animation, time);
                MeshCollector collector;
                model.scene->CreateMeshes(collector);
                const TBBox<float> box = BoxOf(collector.meshes);
                QVERIFY(box.min.y > -0.05f && box.min.y < 0.1f);
                QVERIFY(box.max.y > 1.2f && box.max.y < 1.5f);
            }
        }
    }

private:
    static void CheckTriangles(const Geometry& geometry, const Node& node)
    {
        QCOMPARE(geometry.indices.size() % 3, std::size_t(0));
        for (const std::uint32_t index : geometry.indices)
            QVERIFY(index < geometry.vertices.size());
        QVERIFY(geometry.normalIndices.empty() || geometry.normalIndices.size() == geometry.indices.size());
        for (const std::uint32_t slot : geometry.normalIndices)
            QVERIFY(slot < node.normalCount);
    }

    static void CheckWeights(const Geometry& geometry, std::size_t boneCount)
    {
        bool blended = false;
        for (const SkinAnimation::SkinVertex& vertex : geometry.vertices) {
            float sum = 0.0f;
            for (int i = 0; i < 4; ++i) {
                QVERIFY(vertex.boneIndices[i] < boneCount);
                QVERIFY(i == 0 || vertex.weights[i] == 0.0f || vertex.weights[i - 1] > 0.0f);
                sum += vertex.weights[i];
            }
            QVERIFY(std::fabs(sum - 1.0f) < 1e-6f);
            blended = blended || vertex.weights[1] > 0.0f;
        }
        QVERIFY(blended || geometry.name == QStringLiteral("eyes"));
    }
};

QTEST_GUILESS_MAIN(RendererFigure)
#include "renderer_figure_test.moc"
