#include "benchmarks/IdleBuilder.h"
#include "benchmarks/NaiveO3.h"
#include "benchmarks/Picking.h"
#include "benchmarks/Workloads.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "reference/host/document/Scene.h"
#include "reference/plugins/assimp-loader/AssimpLoader.h"

#include <QFileInfo>

#include <map>

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

/// What poses need of a scene.
std::unique_ptr<Scene> CopyOf(const Scene& source)
{
    auto scene = std::make_unique<Scene>();
    scene->scale = source.scale;
    scene->offset = source.offset;
    std::map<const Node*, Node*> copyOf{{nullptr, nullptr}};
    for (const Node* const node : source.nodes) {
        Node* const parent = copyOf.at(node->parent);
        Node* const copy = new Node(node->name, node->originGlobalTransform, node->geometryTransform, parent);
        copyOf[node] = copy;
        scene->nodes.push_back(copy);
        if (parent)
            parent->children.push_back(copy);
        else
            scene->root = copy;
        copy->localTransform = node->localTransform;
        copy->normalCount = node->normalCount;
        for (const Geometry* const geometry : node->geometries)
            copy->geometries.push_back(new Geometry(*geometry));
    }
    for (const Animation* const animation : source.animations) {
        scene->animations.push_back(new Animation(*animation));
        for (AnimationLayer& layer : scene->animations.back()->layers)
            for (NodeTrack& track : layer.tracks)
                track.node = copyOf.at(track.node);
    }
    return scene;
}

/// A model, and moments of its first animation.
struct Actor {
    std::unique_ptr<Scene> scene;
    std::vector<Geometry*> geometries;
    std::vector<float> times;
    std::size_t next;
    std::vector<TVec3<float>> normals;
    Keeper keeper;
    IdleBuilder idle;

    explicit Actor(const QString& name)
        : Actor(Host::LoadModel(FileOf(name)).scene)
    {
    }

    /// \param first of the moments that is shown
    explicit Actor(std::unique_ptr<Scene> model, std::size_t first = 0)
        : scene(std::move(model))
        , next(first)
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

    /// Calls way(geometry, node, normals) for each geometry, with the sums of its node.
    template <typename Way>
    void ForEach(const Way& way)
    {
        for (Node* const node : scene->nodes) {
            normals.assign(node->geometries.empty() ? 0 : node->normalCount, TVec3<float>{});
            for (Geometry* const geometry : node->geometries)
                way(*geometry, *node, normals);
        }
    }

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
    const auto by = [actor](const auto& update) {
        return [=] {
            const Scene& scene = *actor->scene;
            actor->ForEach([&](Geometry& geometry, const Node& node, const auto&) { update(geometry, node, scene); });
        };
    };
    const std::vector<Way> ways{
        {kOurs, by([](Geometry& g, const Node& n, const Scene& s) { g.UpdateMesh(&n, s.scale, s.offset, s.nodes); })},
        {kNaive, by([](Geometry& g, const Node& n, const Scene& s) {
             Naive::UpdateMesh(g, n, s.scale, s.offset, s.nodes);
         })},
        {kNaiveO3, by([](Geometry& g, const Node& n, const Scene& s) {
             NaiveO3::UpdateMesh(g, n, s.scale, s.offset, s.nodes);
         })}};
    RequireSame(
        ways, [&] { actor->Reset(); }, [&] { return actor->Vertices(); });
    return {1, ways};
}

/// Sums of the triangles' normals, written back to the vertices; without the dividing between.
/// As if the file brought no normals of its own: each vertex has a sum.
Contest Shading(const QString& name)
{
    const auto actor = std::make_shared<Actor>(name);
    for (Node* const node : actor->scene->nodes) {
        node->normalCount = 0;
        for (Geometry* const geometry : node->geometries) {
            geometry->normalIndices = geometry->indices;
            for (std::uint32_t& slot : geometry->normalIndices)
                slot += static_cast<std::uint32_t>(node->normalCount);
            node->normalCount += geometry->vertices.size();
        }
    }
    const auto by = [actor](const auto& shade) { return [=] { actor->ForEach(shade); }; };
    using Normals = std::vector<TVec3<float>>;
    const std::vector<Way> ways{{kOurs, by([](Geometry& geometry, const Node&, Normals& normals) {
                                     geometry.CollectNormals(normals);
                                     geometry.SetNormals(normals);
                                 })},
                                {kNaive, by([](Geometry& geometry, const Node&, Normals& normals) {
                                     Naive::CollectNormals(geometry, normals);
                                     Naive::SetNormals(geometry, normals);
                                 })},
                                {kNaiveO3, by([](Geometry& geometry, const Node&, Normals& normals) {
                                     NaiveO3::CollectNormals(geometry, normals);
                                     NaiveO3::SetNormals(geometry, normals);
                                 })}};
    RequireSame(
        ways, [] {}, [&] { return actor->Vertices(); });
    return {1, ways};
}

Contest Emitting(const QString& name)
{
    const auto actor = std::make_shared<Actor>(name);
    return {1, {{kOurs, [actor] { actor->Emit(); }}, {kTouch, [actor] { actor->Copy(); }}}};
}

/// Scenes of one model, each at another time: all that a frame takes.
Contest Playing(const QString& name, std::size_t count)
{
    const std::unique_ptr<Scene> model = Host::LoadModel(FileOf(name)).scene;
    const auto actors = std::make_shared<std::vector<std::unique_ptr<Actor>>>();
    while (actors->size() < count)
        actors->push_back(std::make_unique<Actor>(CopyOf(*model), actors->size()));
    const auto ours = [actors] {
        for (const auto& actor : *actors) {
            actor->Pose();
            actor->keeper.BeginModel({}, 0);
            actor->scene->CreateMeshes(actor->keeper);
        }
    };
    const auto naive = [actors] {
        for (const auto& actor : *actors) {
            actor->PoseBy(Naive::CalculateAnimation);
            Naive::PoseMeshes(*actor->scene);
            actor->Copy();
        }
    };
    const auto reset = [&] {
        for (std::size_t i = 0; i < count; ++i) {
            (*actors)[i]->Reset();
            (*actors)[i]->next = i;
        }
    };
    const std::vector<Way> ways{{kOurs, ours}, {kNaive, naive}};
    RequireSame(ways, reset, [&] { return actors->back()->Vertices(); });
    return {count, ways};
}

/// A model in a document, or many in rows, so placed that they fill the view.
Contest Looking(const QString& name, std::size_t count)
{
    const auto scene = std::make_shared<Host::Scene>();
    INode* const first = scene->AddModel(Host::LoadModel(FileOf(name)), scene->GetRoot());
    TBBox<float> box;
    UpdateBBoxRecursive(box, scene->GetRoot(), Matrix());
    const float size = Length(box.max - box.min);
    const auto side = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(count))));
    for (std::size_t i = 1; i < count; ++i) {
        Matrix place;
        const std::size_t row = i / side;
        const TVec3<float> way{0.0f, static_cast<float>(i % side), static_cast<float>(row)};
        place.SetTranslation(way * (0.5f * size));
        scene->DuplicateNodes({first})[0]->SetMatrix(first->GetMatrix() * place);
    }
    const float extent = 0.5f * size * static_cast<float>(side - 1);
    const TVec3<float> middle = box.Center() + TVec3<float>{0.0f, 0.5f * extent, 0.5f * extent};
    scene->GetCamera()->LookAt(middle - TVec3<float>{1.2f * (size + extent), 0.0f, 0.0f}, middle);
    std::vector<QPoint> pixels;
    for (int y = kPixelStep / 2; y < View::kSize.y; y += kPixelStep)
        for (int x = kPixelStep / 2; x < View::kSize.x; x += kPixelStep)
            pixels.emplace_back(x, y);
    return Picking(scene, pixels);
}

void AddModel(std::vector<Row>& rows, const QString& name, bool isQuick)
{
    const std::string prefix = "Model/" + name.toStdString();
    const auto add = [&](const char* what, const char* element, bool isSmall, auto prepare) {
        rows.push_back({prefix + what, element, isQuick && isSmall, {}, prepare});
    };
    add("/pose", "frame", true, [name] { return Posing(name); });
    add("/skin", "frame", true, [name] { return Skinning(name); });
    add("/new normals", "frame", true, [name] { return Shading(name); });
    add("/emission", "frame", true, [name] { return Emitting(name); });
    add("/all of it", "frame", true, [name] { return Playing(name, 1); });
    add("/pick", "pick", true, [name] { return Looking(name, 1); });
    add("/crowd, frame", "instance", false, [name] { return Playing(name, kInstances); });
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
