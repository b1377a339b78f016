#include "reference/host/Picture.h"
#include "reference/host/SampleFigure.h"

#include <QtTest>

#include <algorithm>
#include <cmath>

using namespace Host;

class RendererFigure : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nodesAreATableWithParentsFirst()
    {
        const SkinAnimation::Scene& scene = *m_model.scene;
        QVERIFY(scene.nodes.size() == 21 && scene.nodes.front() == scene.root);
        for (int i = 1; i < 21; ++i) {
            const SkinAnimation::Node* const node = scene.nodes[static_cast<std::size_t>(i)];
            QCOMPARE(scene.GetNodeIndex(node->name), i);
            QVERIFY(scene.GetNodeIndex(node->parent->name) < i);
            QCOMPARE(std::count(node->parent->children.begin(), node->parent->children.end(), node), 1);
        }
    }

    // Weights descend to 0 and sum to 1. Geometries that share their node's
    // normals have slots of their own in it.
    void weightsAndNormalSlotsAreInRange()
    {
        int rigid = 0;
        int sharing = 0;
        for (const SkinAnimation::Node* node : m_model.scene->nodes) {
            std::uint32_t firstSlot = 0;
            for (const SkinAnimation::Geometry* geometry : node->geometries) {
                rigid += geometry->skinned ? 0 : 1;
                const std::vector<std::uint32_t>& slots = geometry->normalIndices;
                QVERIFY(slots.empty() || slots.size() == geometry->indices.size());
                for (const std::uint32_t slot : slots)
                    QVERIFY(slot >= firstSlot && slot < node->normalCount);
                sharing += slots.empty() ? 0 : 1;
                firstSlot = slots.empty() ? firstSlot : *std::max_element(slots.begin(), slots.end()) + 1;
                for (const SkinAnimation::SkinVertex& vertex : geometry->vertices) {
                    float sum = geometry->skinned ? 0.0f : 1.0f;
                    for (int i = 0; i < 4; ++i) {
                        QVERIFY(vertex.boneIndices[i] < 21 && vertex.weights[i] >= 0.0f);
                        QVERIFY(i == 0 || vertex.weights[i] == 0.0f || vertex.weights[i - 1] > 0.0f);
                        sum += vertex.weights[i];
                    }
                    QVERIFY(std::fabs(sum - 1.0f) < 1e-6f);
                }
            }
        }
        QVERIFY(rigid == 1 && sharing == 2);
    }

    // Closed surfaces, corners clockwise: the signed volume is positive, and
    // normals agree with their triangles.
    void surfacesFaceOutward()
    {
        const std::vector<PosedMesh> meshes = Posed();
        QCOMPARE(meshes.size(), std::size_t(6));
        for (const PosedMesh& mesh : meshes) {
            float volume = 0.0f;
            for (std::size_t k = 0; k < mesh.indices.size(); k += 3) {
                QVERIFY(IsDrawable(mesh, k));
                const MeshVertex& a = mesh.vertices[mesh.indices[k]];
                const MeshVertex& b = mesh.vertices[mesh.indices[k + 1]];
                const MeshVertex& c = mesh.vertices[mesh.indices[k + 2]];
                volume += Dot(a.position, Cross(c.position, b.position));
                const TVec3<float> face = Cross(a.position - b.position, c.position - b.position);
                QVERIFY2(Dot(face, a.normal + b.normal + c.normal) > 0.0f, qPrintable(mesh.name));
                QVERIFY(std::fabs(Length(a.normal) - 1.0f) < 1e-3f);
            }
            QVERIFY2(volume > 0.0f, qPrintable(mesh.name));
        }
    }

    // Each animation moves a hand, keeps the figure on its feet and in one
    // piece, and ends as it begins.
    void animationsAreCycles()
    {
        SkinAnimation::Scene& scene = *m_model.scene;
        QCOMPARE(scene.nodes[9]->name, QStringLiteral("hand.L"));
        for (const int index : {0, 1}) {
            const SkinAnimation::Animation& animation = *scene.animations[static_cast<std::size_t>(index)];
            const auto handAt = [&](float part) {
                scene.CalculateAnimation(index, animation.duration * part);
                return scene.nodes[9]->globalTransform.GetTranslation();
            };
            const TVec3<float> start = handAt(0.0f);
            float travelled = 0.0f;
            for (const float part : {0.25f, 0.5f, 0.75f}) {
                travelled = std::max(travelled, Length(handAt(part) - start));
                const TBBox<float> box = BoxOf(Posed());
                QVERIFY(box.min.y > -0.05f && box.min.y < 0.1f && box.max.y > 1.2f && box.max.y < 1.5f);
            }
            QVERIFY2(travelled > 0.1f && travelled < 0.6f, qPrintable(QString::number(double(travelled))));
            QVERIFY2(Length(handAt(1.0f) - start) < 1e-4f, qPrintable(animation.name));
        }
    }

private:
    std::vector<PosedMesh> Posed() const
    {
        MeshCollector collector;
        m_model.scene->CreateMeshes(collector);
        return collector.meshes;
    }

    Model m_model = MakeSampleFigure(); ///< At rest, until the last function poses it.
};

QTEST_GUILESS_MAIN(RendererFigure)
#include "renderer_figure_test.moc"
