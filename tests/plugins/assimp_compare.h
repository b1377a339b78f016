#pragma once

// How far a posed model is from the second opinion on it.

#include "reference/host/Picture.h"
#include "tests/plugins/assimp_opinion.h"

#include <vector>

struct Deviation {
    double position = 0.0; ///< Largest, as a share of the diagonal of the opinion's box.
    double normal = 0.0;   ///< Largest distance between unit normals; both sides need to have one.
    bool sameShape = true; ///< As many meshes, with as many vertices each.
};

inline double Distance(const Opinion::Vec& a, const TVec3<float>& b)
{
    return (a - Opinion::Vec(double(b.x), double(b.y), double(b.z))).Length();
}

inline Deviation Compare(const std::vector<Opinion::Mesh>& expected, const std::vector<Host::PosedMesh>& posed)
{
    Deviation deviation;
    TBBox<double> box;
    deviation.sameShape = expected.size() == posed.size();
    for (std::size_t m = 0; deviation.sameShape && m < expected.size(); ++m) {
        deviation.sameShape = expected[m].size() == posed[m].vertices.size();
        for (std::size_t i = 0; deviation.sameShape && i < expected[m].size(); ++i) {
            const Opinion::PosedVertex& vertex = expected[m][i];
            box.Extend(TVec3<double>{vertex.position.x, vertex.position.y, vertex.position.z});
            deviation.position = std::max(deviation.position, Distance(vertex.position, posed[m].vertices[i].position));
            if (vertex.normal.SquareLength() > 0.5)
                deviation.normal = std::max(deviation.normal, Distance(vertex.normal, posed[m].vertices[i].normal));
        }
    }
    deviation.position /= Opinion::Vec(box.max.x - box.min.x, box.max.y - box.min.y, box.max.z - box.min.z).Length();
    return deviation;
}

inline std::vector<Host::PosedMesh> MeshesOf(const SkinAnimation::Scene& scene)
{
    Host::MeshCollector collector;
    collector.BeginModel(QString(), 0);
    scene.CreateMeshes(collector);
    collector.EndModel();
    return collector.meshes;
}
