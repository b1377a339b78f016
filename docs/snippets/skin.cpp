#include "docs/snippets/Snippets.h"

#include "lumenta/platform/IMeshNodeBuilder.h"
#include "lumenta/skin/Scene.h"

//! [skin]
/// Measures posed meshes.
class MeasuringBuilder final : public IMeshNodeBuilder {
public:
    TBBox<float> box;

    void BeginModel(const QString&, std::size_t) override { box = TBBox<float>(); }
    void EndModel() override {}
    void AddMeshNode(const QString&, std::vector<MeshVertex>& vertices, std::vector<unsigned int>&, const QString&,
                     const QMap<QString, QVariant>&) override
    {
        for (const MeshVertex& vertex : vertices) // the geometry's own: copy what is kept
            box.Extend(vertex.position);
    }
};

/// The room that a model takes at a moment of its first animation.
TBBox<float> BoxAt(SkinAnimation::Scene& scene, float milliseconds)
{
    MeasuringBuilder builder;
    scene.CalculateAnimation(0, milliseconds); // moves the skeleton
    builder.BeginModel(QStringLiteral("model"), scene.nodes.size());
    scene.CreateMeshes(builder); // skins, and hands each mesh over
    builder.EndModel();
    return builder.box;
}
//! [skin]
