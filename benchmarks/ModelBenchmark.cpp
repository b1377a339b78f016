#include "benchmarks/IdleBuilder.h"
#include "benchmarks/NaiveO3.h"
#include "benchmarks/PickWays.h"
#include "benchmarks/Workloads.h"
#include "reference/plugins/assimp-loader/AssimpLoader.h"

#include <QFileInfo>

namespace Bench {

namespace {

using namespace SkinAnimation;
using Meshes = std::vector<std::vector<MeshVertex>>;

const QString kFolder = QStringLiteral("/usr/share/assimp/models/X/"); // of Debian's assimp-testmodels
constexpr std::size_t kInstances = 1000;
constexpr int kPixelStep = 50; ///< Between the pixels that are picked through.

QString FileOf(const QString& name)
{
    return kFolder + name + QStringLiteral(".X");
}

/// Those of a grid over the whole view.
std::vector<QPoint> Pixels()
{
    std::vector<QPoint> pixels;
    for (int y = kPixelStep / 2; y < View::kSize.y; y += kPixelStep)
        for (int x = kPixelStep / 2; x < View::kSize.x; x += kPixelStep)
            pixels.emplace_back(x, y);
    return pixels;
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

    Meshes Posed() const
    {
        Meshes meshes;
        for (const Geometry* geometry : geometries)
            meshes.push_back(geometry->meshVertices);
        return meshes;
    }
};

bool SameMeshes(const Meshes& a, const Meshes& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), SameBits<std::vector<MeshVertex>>);
}

/// What a way leaves in the meshes at the first of the moments.
Meshes FirstFrame(const std::shared_ptr<Actor>& actor, const Way& way)
{
    actor->next = 0;
    for (Geometry* geometry : actor->geometries)
        std::fill(geometry->meshVertices.begin(), geometry->meshVertices.end(), MeshVertex{});
    way.run();
    return actor->Posed();
}

std::vector<Way> PosingWays(const QString& name)
{
    const auto actor = std::make_shared<Actor>(name);
    return {{kOurs, [actor] { actor->Pose(); }},
            {kNaive, [actor] { actor->PoseBy(Naive::CalculateAnimation); }},
            {kNaiveO3, [actor] { actor->PoseBy(NaiveO3::CalculateAnimation); }}};
}

std::vector<Way> SkinningWays(const QString& name)
{
    const auto actor = std::make_shared<Actor>(name);
    return {{kOurs, [actor] { actor->scene->CreateMeshes(actor->idle); }},
            {kNaive, [actor] { Naive::PoseMeshes(*actor->scene); }},
            {kNaiveO3, [actor] { NaiveO3::PoseMeshes(*actor->scene); }}};
}

std::vector<Way> EmittingWays(const QString& name)
{
    const auto actor = std::make_shared<Actor>(name);
    return {{kOurs, [actor] { actor->Emit(); }}, {kTouch, [actor] { actor->Copy(); }}};
}

/// Instances that show one model, each at another time, one after the other.
std::vector<Way> CrowdWays(const QString& name)
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
    Require(SameMeshes(FirstFrame(actor, {kOurs, ours}), FirstFrame(actor, {kNaive, naive})), "frame");
    const auto all = [](const auto& instance) {
        return [instance] {
            for (std::size_t i = 0; i < kInstances; ++i)
                instance();
        };
    };
    return {{kOurs, all(ours)}, {kNaive, all(naive)}};
}

/// A model, or many in rows, so placed that they fill the view.
std::vector<Way> LookingWays(const QString& name, std::size_t count)
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
    view->pixels = Pixels();
    return PickWays(view);
}

void AddModel(std::vector<Row>& rows, const QString& name, bool isQuick)
{
    const std::string prefix = "Model/" + name.toStdString();
    const auto add = [&](const char* what, const char* element, std::size_t count, bool isSmall, auto prepare) {
        rows.push_back({prefix + what, element, count, isQuick && isSmall, {}, prepare});
    };
    const std::size_t pixels = Pixels().size();
    add("/pose", "frame", 1, true, [name] { return PosingWays(name); });
    add("/skin, normals", "frame", 1, true, [name] { return SkinningWays(name); });
    add("/emission", "frame", 1, true, [name] { return EmittingWays(name); });
    add("/pick", "pick", pixels, true, [name] { return LookingWays(name, 1); });
    add("/crowd, frame", "instance", kInstances, false, [name] { return CrowdWays(name); });
    add("/crowd, pick", "pick", pixels, false, [name] { return LookingWays(name, kInstances); });
}

} // namespace

void AddModelRows(std::vector<Row>& rows)
{
    const QString names[] = {QStringLiteral("Testwuson"), QStringLiteral("BCN_Epileptic")};
    for (const QString& name : names)
        if (QFileInfo::exists(FileOf(name))) AddModel(rows, name, name == names[0]);
}

} // namespace Bench
