#include "benchmarks/IdleBuilder.h"
#include "benchmarks/NaiveO3.h"
#include "benchmarks/Picking.h"
#include "benchmarks/Workloads.h"
#include "reference/plugins/assimp-loader/AssimpLoader.h"

#include <QFileInfo>

namespace Bench {

namespace {

using namespace SkinAnimation;

const QString kFolder = QStringLiteral("/usr/share/assimp/models/X/"); // of Debian's assimp-testmodels
constexpr std::size_t kInstances = 1000;
constexpr int kPixelStep = 50; ///< Between the pixels that are picked through.

QString FileOf(const QString& name)
{
    return kFolder + name + QStringLiteral(".X");
}

/// Copies what it is handed, as a host does.
struct Keeper final : IMeshNodeBuilder {
    struct Mesh {
        std::vector<MeshVertex> vertices;
        std::vector<unsigned int> indices;
    };
    std::vector<Mesh> meshes;
    std::size_t count = 0;

    void BeginModel(const QString&, std::size_t) override { count = 0; }
    void EndModel() override {}
    void AddMeshNode(const QString&, std::vector<MeshVertex>& vertices, std::vector<unsigned int>& indices,
                     const QString&, const QMap<QString, QVariant>&) override
    {
        meshes.resize(std::max(meshes.size(), ++count));
        meshes[count - 1].vertices = vertices;
        meshes[count - 1].indices = indices;
    }
};

/// A model from a file, and moments of its first animation.
struct Actor {
    std::unique_ptr<Scene> scene;
    std::vector<Geometry*> geometries;
    std::vector<float> times;
    std::size_t next = 0;
    Keeper keeper;
    IdleBuilder idle;

    explicit Actor(const QString& name)
        : scene(Host::LoadModel(FileOf(name)).scene)
    {
        for (const Node* node : scene->nodes)
            geometries.insert(geometries.end(), node->geometries.begin(), node->geometries.end());
        Workloads::Random random(8);
        while (times.size() < 64)
            times.push_back(random.Between(0.0f, scene->animations.at(0)->duration));
        Pose();
        scene->CreateMeshes(idle);
        Emit();
    }

    float Next() { return times[next++ % times.size()]; }
    void Pose() { scene->CalculateAnimation(0, Next()); }
    void PoseBy(decltype(Naive::CalculateAnimation) way) { way(*scene, *scene->animations[0], Next()); }

    /// What is posed, to whom it may concern.
    void Emit()
    {
        keeper.BeginModel({}, 0);
        for (const Geometry* geometry : geometries)
            geometry->AddMesh(keeper);
    }

    /// Reads and writes what Emit() did, without asking anybody.
    void Copy()
    {
        auto kept = keeper.meshes.begin();
        for (const Geometry* geometry : geometries) {
            std::copy(geometry->meshVertices.begin(), geometry->meshVertices.end(), kept->vertices.begin());
            std::copy(geometry->indices.begin(), geometry->indices.end(), kept->indices.begin());
            ++kept;
        }
    }

    void Reset()
    {
        next = 0;
        for (Geometry* geometry : geometries)
            std::fill(geometry->meshVertices.begin(), geometry->meshVertices.end(), MeshVertex{});
    }

    std::vector<MeshVertex> Vertices() const
    {
        std::vector<MeshVertex> all;
        for (const Geometry* geometry : geometries)
            all.insert(all.end(), geometry->meshVertices.begin(), geometry->meshVertices.end());
        return all;
    }

    std::vector<Matrix> Transforms() const
    {
        std::vector<Matrix> all;
        for (const Node* node : scene->nodes)
            all.insert(all.end(), {node->meshTransform, node->skinTransform, node->skinTransformInverse});
        return all;
    }
};

Contest Posing(const QString& name)
{
    const auto actor = std::make_shared<Actor>(name);
    const std::vector<Way> ways{{kOurs, [actor] { actor->Pose(); }},
                                {kNaive, [actor] { actor->PoseBy(Naive::CalculateAnimation); }},
                                {kNaiveO3, [actor] { actor->PoseBy(NaiveO3::CalculateAnimation); }}};
    RequireSame(
        ways, [&] { actor->next = 0; }, [&] { return actor->Transforms(); });
    return {1, ways};
}

Contest Skinning(const QString& name)
{
    const auto actor = std::make_shared<Actor>(name);
    const std::vector<Way> ways{{kOurs, [actor] { actor->scene->CreateMeshes(actor->idle); }},
                                {kNaive, [actor] { Naive::PoseMeshes(*actor->scene); }},
                                {kNaiveO3, [actor] { NaiveO3::PoseMeshes(*actor->scene); }}};
    RequireSame(
        ways, [&] { actor->Reset(); }, [&] { return actor->Vertices(); });
    return {1, ways};
}

Contest Emitting(const QString& name)
{
    const auto actor = std::make_shared<Actor>(name);
    return {1, {{kOurs, [actor] { actor->Emit(); }}, {kTouch, [actor] { actor->Copy(); }}}};
}

/// Instances that show one model, each at another time, one after the other.
Contest Playing(const QString& name)
{
    const auto actor = std::make_shared<Actor>(name);
    const auto ours = [actor] {
        actor->Pose();
        actor->keeper.BeginModel({}, 0);
        actor->scene->CreateMeshes(actor->keeper);
    };
    const auto naive = [actor] {
        actor->PoseBy(Naive::CalculateAnimation);
        Naive::PoseMeshes(*actor->scene);
        actor->Copy();
    };
    RequireSame(
        {{kOurs, ours}, {kNaive, naive}}, [&] { actor->Reset(); }, [&] { return actor->Vertices(); });
    const auto all = [](const auto& instance) {
        return [instance] {
            for (std::size_t i = 0; i < kInstances; ++i)
                instance();
        };
    };
    return {kInstances, {{kOurs, all(ours)}, {kNaive, all(naive)}}};
}

/// A model, or many in rows, so placed that they fill the view.
Contest Looking(const QString& name, std::size_t count)
{
    const Actor actor(name);
    const auto view = std::make_shared<View>();
    TBBox<float> box;
    for (const Geometry* geometry : actor.geometries) {
        view->meshes.push_back(std::make_unique<StandIn::Mesh>());
        StandIn::Mesh& mesh = *view->meshes.back();
        mesh.vertices = geometry->meshVertices;
        mesh.indices = geometry->indices;
        for (const MeshVertex& vertex : mesh.vertices)
            mesh.box.Extend(vertex.position);
        box.Extend(mesh.box);
    }
    const float size = Length(box.max - box.min);
    const auto side = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(count))));
    for (std::size_t i = 0; i < count; ++i) {
        view->nodes.push_back(std::make_unique<StandIn::Node>(eNodeTypeMesh, &view->scene.root));
        StandIn::Node& node = *view->nodes.back();
        node.matrix.SetTranslation(
            {0.0f, 0.5f * size * static_cast<float>(i % side), 0.5f * size * static_cast<float>(i / side)});
        for (const auto& mesh : view->meshes)
            node.Add(*mesh);
    }
    const float extent = 0.5f * size * static_cast<float>(side - 1);
    const TVec3<float> middle = box.Center() + TVec3<float>{0.0f, 0.5f * extent, 0.5f * extent};
    view->scene.camera.matrix.SetTranslation(middle - TVec3<float>{1.2f * (size + extent), 0.0f, 0.0f});
    for (int y = kPixelStep / 2; y < View::kSize.y; y += kPixelStep)
        for (int x = kPixelStep / 2; x < View::kSize.x; x += kPixelStep)
            view->pixels.emplace_back(x, y);
    return Picking(view);
}

void AddModel(std::vector<Row>& rows, const QString& name, bool isQuick)
{
    const std::string prefix = "Model/" + name.toStdString();
    const auto add = [&](const char* what, const char* element, bool isSmall, auto prepare) {
        rows.push_back({prefix + what, element, isQuick && isSmall, {}, prepare});
    };
    add("/pose", "frame", true, [name] { return Posing(name); });
    add("/skin, normals", "frame", true, [name] { return Skinning(name); });
    add("/emission", "frame", true, [name] { return Emitting(name); });
    add("/pick", "pick", true, [name] { return Looking(name, 1); });
    add("/crowd, frame", "instance", false, [name] { return Playing(name); });
    add("/crowd, pick", "pick", false, [name] { return Looking(name, kInstances); });
}

} // namespace

void AddModelRows(std::vector<Row>& rows)
{
    const QString names[] = {QStringLiteral("Testwuson"), QStringLiteral("BCN_Epileptic")};
    for (const QString& name : names)
        if (QFileInfo::exists(FileOf(name))) AddModel(rows, name, name == names[0]);
}

} // namespace Bench
