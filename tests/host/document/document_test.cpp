#include "lumenta/foundation/CameraMatrices.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/ISnapshotManager.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "lumenta/platform/IMeshNodeBuilder.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "reference/host/Picture.h"
#include "reference/host/SampleFigure.h"
#include "reference/host/images/Image.h"
#include "reference/host/document/Navigator.h"
#include "reference/host/document/Node.h"
#include "reference/host/document/Placement.h"
#include "reference/host/document/Scene.h"
#include "reference/host/document/SceneMaterial.h"

#include "tests/faults/Allocations.h"
#include "tests/foundation/Exact.h"

#include <QtTest>

#include <cmath>
#include <functional>
#include <set>

using namespace Host;

/// a { b { e } c } d m(esh), all groups but the mesh; and what the scene tells.
struct World {
    std::unique_ptr<Scene> pScene = std::make_unique<Scene>();
    Scene& scene = *pScene;
    INode* root = scene.GetRoot();
    INode* a = root->CreateGroup("a");
    INode* b = a->CreateGroup("b");
    INode* c = a->CreateGroup("c");
    INode* d = root->CreateGroup("d");
    INode* e = b->CreateGroup("e");
    INode* m = scene.AddMesh(root, "m", {{{1, 2, 3}, {}, {}, {}, {}, 1}, {{2, 2, 5}, {}, {}, {}, {}, 1}}, {0, 1, 0});
    IMaterial* material = scene.CreateMaterial("red");
    IMaterial* worn = nullptr;
    QStringList told;
    std::unique_ptr<IImage> image; // whose end is told
    Model model;                   // which can be added once

    World()
    {
        d->SetMatrix(Moved(0, 0, 5));
        scene.SetModified(true);
        const auto names = [](const char* sign, const std::vector<const INode*>& nodes) {
            QString text;
            for (const INode* pNode : nodes) text += ' ' + (sign + pNode->GetName());
            return text;
        };
        QObject::connect(&scene, &IScene::beforeSceneUpdate, &scene, [this] { told += "before"; });
        QObject::connect(&scene, &IScene::afterSceneUpdate, &scene, [this, names](const sSceneModifications& done) {
            told += "after" + names("+", done.added) + names("-", done.removed) + names(">", done.moved)
                + names("*", done.changed) + (done.materialsChanged ? " materials" : "");
        });
        QObject::connect(&scene, &IScene::nodeChanged, &scene, [this](const INode* pNode, eNodeChangedFlags what) {
            told += pNode->GetName() + ' ' + QString::number(what, 16);
        });
        QObject::connect(&scene, &IScene::sceneChanged, &scene,
                         [this](eSceneChangedFlags what) { told += "scene " + QString::number(what, 16); });
        QObject::connect(&scene, &IScene::selectionChanged, &scene, [this] { told += "selection"; });
        QObject::connect(material, &IMaterial::changed, material, [this] { told += "red changed"; });
    }

    static Matrix Moved(float x, float y = 0, float z = 0)
    {
        Matrix matrix;
        matrix.SetTranslation({x, y, z});
        return matrix;
    }
};

using Deed = std::function<void(World&)>;
using Move = std::function<void(FreeCamera&)>;
Q_DECLARE_METATYPE(Deed)
Q_DECLARE_METATYPE(Move)

namespace {

const float kNan = std::nanf("");

QString TextOf(const INode* pTop)
{
    QString text = pTop->GetName();
    if (pTop->GetChildren().empty()) return text;
    QStringList children;
    for (const INode* pChild : pTop->GetChildren()) children += TextOf(pChild);
    return text + "{" + children.join(' ') + "}";
}

using Boxes = QMap<QString, TBBox<float>>;

/// The boxes of the figure's meshes, by name, turned from y-up to z-up.
Boxes UprightBoxes(int nAnimation, float time)
{
    Model figure = MakeSampleFigure();
    figure.scene->CalculateAnimation(nAnimation, time);
    MeshCollector collector;
    figure.scene->CreateMeshes(collector);
    Boxes boxes;
    for (const PosedMesh& mesh : collector.meshes)
        for (const MeshVertex& vertex : mesh.vertices)
            boxes[mesh.name].Extend(TVec3<float>{vertex.position.x, -vertex.position.z, vertex.position.y});
    return boxes;
}

Boxes BoxesUnder(const INode* pGroup)
{
    Boxes boxes;
    for (INode* pNode : pGroup->GetChildren()) qobject_cast<IMeshNode*>(pNode)->FillBBox(boxes[pNode->GetName()]);
    return boxes;
}

/// Two triangles, of a material with an image and of none, that two animations raise.
Model SmallModel()
{
    Model model;
    model.fileName = "small.x";
    model.embeddedImages["stripes"] = QImage(2, 2, QImage::Format_RGB32);
    model.scene = std::make_unique<SkinAnimation::Scene>();
    auto* const pNode = model.scene->root = new SkinAnimation::Node("bone", Matrix(), Matrix(), nullptr);
    model.scene->nodes = {pNode};
    pNode->geometries.reserve(2), model.scene->animations.reserve(2); // so that nothing that is new gets lost
    for (const char* name : {"wool", ""}) {
        pNode->geometries.push_back(new SkinAnimation::Geometry(name, false));
        SkinAnimation::Geometry& geometry = *pNode->geometries.back();
        geometry.materialName = name;
        if (*name) geometry.materialParameters["texture"] = "stripes";
        geometry.indices = {0, 1, 2};
        for (const TVec3<float>& position : {TVec3<float>{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}) {
            geometry.vertices.emplace_back();
            geometry.vertices.back().position = position;
            geometry.vertices.back().normal = {0, 0, 1}, geometry.vertices.back().texCoord = {0, 0};
        }
        model.scene->animations.push_back(new SkinAnimation::Animation);
        model.scene->animations.back()->layers = {{"", 500, {{pNode, {{0, {0, 1, 0}, {0, 0, 0, 1}, {1, 1, 1}}}}}}};
    }
    return model;
}

/// Two meshes of one name.
struct Maker final : IGenerator {
    void Generate(IMeshNodeBuilder& builder) override
    {
        std::vector<MeshVertex> corners(3);
        std::vector<unsigned int> indices{0, 1, 2};
        for (const char* material : {"glass", "clay"}) builder.AddMeshNode("x", corners, indices, material, {});
    }
    QVariant GetValue(const QString&) const override { return {}; }
    void SetValue(const QString&, const QVariant&) override {}
};

/// All that can be asked for, but for the numbers of nodes.
QString StateOf(const World& world)
{
    QStringList texts{TextOf(world.root), QString::number(double(world.scene.GetAnimationTime())),
                      QString::number(world.scene.GetCurrentAnimation()), QString::number(world.scene.IsModified()),
                      QString::number(world.scene.GetBackgroundImage() != nullptr)};
    for (INode* pNode : CollectAllChildren({world.root})) {
        texts += Floats(pNode->GetMatrix()) + (pNode->IsVisible() ? " shown" : " hidden");
        const auto* const pMeshNode = qobject_cast<IMeshNode*>(pNode);
        for (std::size_t i = 0; pMeshNode && i < pMeshNode->GetMeshes().size(); ++i)
            texts += pMeshNode->GetMaterial(i)->GetName() + ' ' + Floats(pMeshNode->GetMeshes()[i]->GetBBox());
    }
    for (const IMaterial* pMaterial : world.scene.GetMaterials()) {
        texts += pMaterial->GetName() + QStringList(pMaterial->GetParameters().keys()).join(' ');
        for (int i = 0; i < eMaterialSlotCount; ++i)
            texts += QString::number(pMaterial->GetImage(static_cast<eMaterialSlot>(i)) != nullptr);
    }
    for (const INode* pNode : world.scene.GetSelection()) texts += pNode->GetName();
    for (const sAnimationInfo& info : world.scene.GetAnimations()) texts += info.strName + info.strModel;
    for (const ISnapshot* pSnapshot : world.scene.GetSnapshotManager()->GetSnapshots()) texts += pSnapshot->GetName();
    return texts.join(' ');
}

/// One operation each.
const std::pair<const char*, Deed> kDeeds[] = {
    {"move", [](World& w) { w.scene.MoveNodes({w.b, w.m}, w.d, 0); }},
    {"duplicate", [](World& w) { w.scene.DuplicateNodes({w.b, w.m}); }},
    {"group", [](World& w) { w.scene.GroupNodes({w.e, w.m, w.d}, "g"); }},
    {"ungroup", [](World& w) { w.scene.UngroupNodes({w.a, w.b}); }},
    {"hide", [](World& w) { w.m->SetVisible(false); }},
    {"transform", [](World& w) { w.scene.TransformNodes({w.b, w.m}, World::Moved(1)); }},
    {"assign a material", [](World& w) { w.scene.AssignMaterial({w.a, w.m}, w.material); }},
    {"change a material", [](World& w) { w.material->SetOpacity(0.5f); }},
    {"put in an image", [](World& w) { w.material->SetImage(eMaterialSlotBump, w.image.get()); }},
    {"remove a material", [](World& w) { w.scene.RemoveMaterial(w.worn); }},
    {"dress a mesh", [](World& w) { qobject_cast<IMeshNode*>(w.m)->SetMaterial(0, w.material); }},
    {"move a snapshot", [](World& w) { w.scene.GetSnapshotManager()->Move(w.scene.GetSnapshotManager()->Take("s"), 0); }},
    {"select", [](World& w) { w.scene.SetSelection({w.e}); }},
    {"add a group", [](World& w) { w.b->CreateGroup("g"); }},
    {"remove", [](World& w) { w.scene.RemoveNodes({w.b, w.m}); }},
    {"select one more", [](World& w) { w.scene.SetSelected(w.e, true); }},
    {"put in a background", [](World& w) { w.scene.SetBackgroundImage(w.image.get()); }},
    {"make meshes", [](World& w) { w.b->CreateMesh("made", ":made"); }},
    {"add a model", [](World& w) { w.scene.AddModel(std::move(w.model), w.d); }},
    {"read a model", [](World& w) { w.b->CreateMesh("small", "a file"); }},
    {"pose", [](World& w) { w.scene.SetAnimation(1, 400); }},
    {"restore", [](World& w) { w.scene.GetSnapshotManager()->Restore(w.scene.GetSnapshotManager()->GetSnapshots().front()); }},
    {"remove a snapshot", [](World& w) { w.scene.GetSnapshotManager()->Remove(w.scene.GetSnapshotManager()->GetSnapshots().front()); }},
    {"clear", [](World& w) { w.scene.Clear(); }},
    {"a batch", [](World& w) { // a removal and a model in one batch, which ends in any case
        w.scene.BeginUpdate({"batch", {}, {w.a, w.c}, {}, {}});
        const std::shared_ptr<void> end(nullptr, [&w](void*) { w.scene.EndUpdate(); });
        const std::unique_ptr<IMeshNodeBuilder> builder(w.scene.CreateMeshBuilder(w.d));
        std::vector<MeshVertex> vertices(3);
        std::vector<unsigned int> indices{0, 1, 2};
        w.scene.RemoveNodes({w.a});
        builder->BeginModel("model", 1);
        for (const char* name : {"glass", "clay"}) builder->AddMeshNode(name, vertices, indices, name, {});
        builder->EndModel();
    }}};
constexpr int kFirstOfModels = 18, kFirstInParts = 20; // which may be done in part

/// What must hold whatever slots have done in between.
void CheckSound(World& world)
{
    const std::vector<IMaterial*>& known = world.scene.GetMaterials();
    for (INode* pNode : CollectAllChildren({world.root})) {
        QVERIFY(pNode->GetScene() == &world.scene && world.scene.GetNodeById(pNode->GetId()) == pNode);
        for (INode* pChild : pNode->GetChildren()) QVERIFY(pChild->GetParent() == pNode);
        const auto* const pMeshNode = qobject_cast<IMeshNode*>(pNode);
        QVERIFY(!pMeshNode || std::set<IMaterial*>(known.begin(), known.end()).count(pMeshNode->GetMaterial(0)));
    }
    QVERIFY(!world.scene.IsUpdating());
    QCOMPARE(world.told.count("before"), world.told.filter(QRegularExpression("^after")).size());
}

} // namespace

class Document : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // "+came -gone >moved *changed"; flags in hexadecimal.
    void operationsTellOnce_data()
    {
        QTest::addColumn<Deed>("deed");
        QTest::addColumn<QStringList>("told");
        QTest::addColumn<QString>("tree");
        const QString same = "{a{b{e} c} d m}";
        const auto row = [](const char* name, const Deed& deed, const QStringList& told, const QString& tree) {
            QTest::newRow(name) << deed << told << tree;
        };
        row("moved under a shifted parent", [](World& w) { w.scene.MoveNodes({w.e, w.b}, w.d, -1); },
            {"before", "b 2", "scene 1", "after >b *b"}, "{a{c} d{b{e}} m}");
        row("removed with what is selected", [](World& w) { w.scene.SetSelection({w.e, w.d}); w.told.clear();
            w.scene.RemoveNodes({w.b, w.e}); }, {"before", "scene 1", "selection", "after -b -e"}, "{a{c} d m}");
        row("duplicated", [](World& w) { QVERIFY(w.scene.DuplicateNodes({w.d, w.a, w.b}).size() == 2); },
            {"before", "scene 1", "after +a +b +c +e +d"}, "{a{b{e} c} a{b{e} c} d d m}");
        row("grouped", [](World& w) { w.scene.GroupNodes({w.m, w.c}, "g"); },
            {"before", "scene 1", "after +g >c >m"}, "{a{b{e} g{c m}} d}");
        row("ungrouped, one within the other", [](World& w) { w.scene.UngroupNodes({w.b, w.a, w.m}); },
            {"before", "scene 1", "after -a -b >e >c"}, "{e c d m}");
        row("placed on the ground", [](World& w) { w.scene.PlaceOnGround({w.m, w.a});
            QCOMPARE(ComputeNodeBBox(w.m).min.z, 0.0f); }, {"before", "m 2", "after *m"}, same);
        row("a material worn and removed", [](World& w) { w.scene.AssignMaterial({w.root}, w.material);
            w.scene.RemoveMaterial(w.material);
            QVERIFY(w.scene.GetNodesWithMaterial(w.scene.GetDefaultMaterial()) == MakeListOfNodes(w.m)); },
            {"before", "m 10", "after *m", "before", "m 10", "scene 2", "after *m materials"}, same);
        row("a batch of five", [](World& w) { w.scene.SetModified(false); w.told.clear(); w.scene.BeginUpdate({});
            w.a->SetName("A"); w.a->SetVisible(false); w.scene.RemoveNodes({w.d}); w.a->CreateLight("n");
            w.material->BeginUpdate(); w.material->SetOpacity(0.5f); w.material->SetName("blue");
            w.material->EndUpdate(); w.scene.EndUpdate(); }, {"before", "A 1", "scene 80", "A 4", "scene 1", "scene 1",
            "red changed", "after +n -d *A materials"}, "{A{b{e} c n} m}");
        row("came and went, and took an old one along", [](World& w) { w.scene.BeginUpdate({});
            INode* n = w.root->CreateGroup("n"); w.scene.MoveNodes({w.c}, n, 0); w.scene.RemoveNodes({n});
            w.scene.EndUpdate(); }, {"before", "scene 1", "scene 1", "scene 1", "after -c"}, "{a{b{e}} d m}");
        row("a state restored", [](World& w) { ISnapshotManager* s = w.scene.GetSnapshotManager();
            const ISnapshot* kept = s->Take("k"); w.b->SetMatrix(World::Moved(1)); w.b->SetVisible(false);
            w.scene.RemoveNodes({w.d}); w.told.clear(); s->Restore(kept); QVERIFY(w.b->GetMatrix() == Matrix()); },
            {"before", "b 6", "after *b"}, "{a{b{e} c} m}");
        row("cleared", [](World& w) { w.scene.SetFileName("f"); w.scene.GetSnapshotManager()->Take("k"); w.told.clear();
            w.scene.Clear(); QVERIFY(w.scene.GetMaterials().size() == 1 && w.scene.GetFileName().isEmpty());
            QVERIFY(w.scene.GetSnapshotManager()->GetSnapshots().empty() && !w.scene.IsModified()); },
            {"before", "scene 1", "scene 2", "after -a -b -e -c -d -m materials", "scene 80", "scene 80"}, "");
    }
    void operationsTellOnce()
    {
        QFETCH(Deed, deed);
        World world;
        deed(world);
        QTEST(world.told, "told");
        QTEST(TextOf(world.root), "tree");
        CheckSound(world);
    }

    void nothingIsToldOfNothing()
    {
        World w;
        World other;
        const Matrix turn = Upright({1, 2, 4});
        for (INode* pNode : {w.a, w.d}) pNode->SetMatrix(turn);
        w.scene.MoveNodes({w.m}, w.d, 0);
        w.scene.PlaceOnGround({w.d});
        w.scene.SetSunDirection({3, 7, 10});
        w.told.clear();
        w.scene.SetSunDirection(w.scene.GetSunDirection());
        w.scene.BeginUpdate({});
        w.a->SetName("a");
        w.root->SetMatrix(World::Moved(1));
        w.scene.MoveNodes({w.c}, w.a, 1);
        w.scene.RemoveNodes({w.root, other.a, nullptr});
        w.scene.TransformNodes({w.a, w.m, w.c}, Matrix());
        w.scene.PlaceOnGround({w.d});
        w.scene.AssignMaterial({w.m}, other.material);
        w.scene.RemoveMaterial(w.scene.GetDefaultMaterial());
        w.scene.EndUpdate();
        QVERIFY_EXCEPTION_THROWN(w.scene.EndUpdate(), LogicException);
        QVERIFY_EXCEPTION_THROWN(w.scene.MoveNodes({w.d, w.a}, w.b, 0), InvalidParameterException);
        QVERIFY_EXCEPTION_THROWN(w.scene.SetAnimation(0, 0), InvalidParameterException);
        QVERIFY_EXCEPTION_THROWN(w.scene.AddMesh(w.root, "x", {}, {0, 0, 0}), InvalidParameterException);
        QCOMPARE(w.told, QStringList());
    }

    void placesInTheWorldAreKept()
    {
        for (const TVec3<float>& factors : {TVec3<float>{-1, 1, 1}, {.01f, .01f, .01f}, {100, 100, 100}, {10, -.5f, 3}})
            keepsPlacesUnder(factors);
    }

    void removedNodesEndWithTheEventLoop()
    {
        World w;
        const QPointer<INode> pRemoved = w.e;
        w.scene.BeginUpdate({});
        w.scene.RemoveNodes({w.b});
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(pRemoved && pRemoved->GetName() == "e" && !pRemoved->GetScene() && !pRemoved->GetParent());
        w.scene.EndUpdate();
        QVERIFY_EXCEPTION_THROWN(pRemoved->CreateGroup("x"), LogicException);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!pRemoved);
    }

    // Each slot meddles once, in every signal that it can; some end the scene, or throw.
    void slotsMayMeddle()
    {
        const Deed meddles[] = {
            [](World& w) { w.scene.RemoveNodes({w.b, w.d, w.m}); },
            [](World& w) { w.scene.BeginUpdate({}); w.scene.SetSelection({}); w.c->SetName("C"); w.scene.EndUpdate(); },
            [](World& w) { w.scene.UngroupNodes({w.a, w.b}); },
            [](World& w) { QVERIFY_EXCEPTION_THROWN(w.scene.EndUpdate(), LogicException); },
            [](World& w) { w.scene.RemoveMaterial(w.material); },
            [](World& w) { qobject_cast<IMeshNode*>(w.m)->SetMaterial(0, w.worn); },
            [](World& w) { QVERIFY_EXCEPTION_THROWN(w.material->EndUpdate(), LogicException); },
            [](World& w) { w.image.reset(); },
            [](World& w) { w.scene.Clear(); },
            [](World& w) { w.pScene.reset(); },
            [](World&) { QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^A receiver of '.*' threw: in anger$"));
                throw LogicException("in anger"); },
            [](World&) { QTest::ignoreMessage(QtWarningMsg, QRegularExpression("threw: something of an unknown class$"));
                throw 5; }};
        for (int nCase = 0; nCase < int(std::size(meddles)) * 13 * 7; ++nCase) {
            Image old(QImage(1, 1, QImage::Format_RGB32));
            World w;
            w.image = std::make_unique<Image>(old.ToQImage());
            w.material->SetImage(eMaterialSlotBump, &old);
            w.scene.AssignMaterial({w.m}, w.worn = w.scene.CreateMaterial("worn"));
            ISnapshotManager& snapshots = *w.scene.GetSnapshotManager();
            snapshots.Take("first");
            w.scene.SetSelection({w.b, w.d, w.m});
            bool bDone = false;
            const auto once = [&] { std::exchange(bDone, true) ? void() : meddles[nCase / 91](w); };
            if (nCase % 7 == 0) connect(&w.scene, &IScene::beforeSceneUpdate, this, once);
            if (nCase % 7 == 1) connect(&w.scene, &IScene::nodeChanged, this, once);
            if (nCase % 7 == 2) connect(&w.scene, &IScene::sceneChanged, this, once);
            if (nCase % 7 == 3) connect(&w.scene, &IScene::selectionChanged, this, once);
            if (nCase % 7 == 4) connect(&w.scene, &IScene::afterSceneUpdate, this, once);
            if (nCase % 7 == 5) connect(w.material, &IMaterial::imageUnload, this, once);
            if (nCase % 7 == 6) connect(&snapshots, &ISnapshotManager::removeSnapshot, this, once);
            try {
                kDeeds[nCase / 7 % 13].second(w);
            } catch (const LogicException& thrown) {
                QCOMPARE(thrown.GetErrorText(), QString("A receiver of 'beforeSceneUpdate' has deleted the scene"));
                QVERIFY(nCase % 7 == 0 && !w.pScene);
            }
            if (!w.pScene) continue;
            CheckSound(w);
            if (nCase % 2) QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

    // Each allocation of each operation fails once.
    void operationsNeedMemory_data()
    {
        QTest::addColumn<int>("deed");
        for (int i = 0; i < int(std::size(kDeeds)); ++i) QTest::newRow(kDeeds[i].first) << i;
    }
    void operationsNeedMemory()
    {
        QFETCH(int, deed);
        const auto prepare = [deed] {
            auto w = std::make_unique<World>();
            w->image = std::make_unique<Image>(QImage(1, 1, QImage::Format_RGB32));
            w->scene.AssignMaterial({w->m}, w->worn = w->scene.CreateMaterial("worn"));
            w->scene.SetSelection({w->m, w->b});
            w->scene.SetModelReader([](const QString&) { return SmallModel(); });
            w->scene.SetMeshMaker([](const QString& source) { return source == ":made" ? std::make_unique<Maker>() : nullptr; });
            if (deed >= kFirstOfModels) w->model = SmallModel();
            if (deed >= kFirstInParts) w->scene.AddModel(std::move(w->model), w->d);
            if (deed >= kFirstInParts) w->scene.GetSnapshotManager()->Take("first");
            if (deed > kFirstInParts) w->scene.SetAnimation(0, 200), w->b->SetMatrix(World::Moved(1));
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            w->told.clear();
            return w;
        };
        std::unique_ptr<World> world = prepare();
        const QString before = StateOf(*world);
        kDeeds[deed].second(*world);
        CheckSound(*world);
        const QString done = StateOf(*world);
        QVERIFY(done != before);
        world.reset();
        const long live = Allocations::Live();
        const long failed = Allocations::FailEach([&] { world = prepare(); }, [&] { kDeeds[deed].second(*world); }, [&](bool isThrown) {
            CheckSound(*world);
            if (isThrown && deed < kFirstInParts) QCOMPARE(StateOf(*world), before);
            if (isThrown && deed == kFirstOfModels) world->model = SmallModel();
            if (isThrown) kDeeds[deed].second(*world);
            CheckSound(*world);
            QCOMPARE(StateOf(*world), done);
            world.reset();
            QCOMPARE(Allocations::Live(), live);
        });
        qInfo("%ld allocations have failed", failed);
    }

    void theFigureNeedsMemory()
    {
        MakeSampleFigure();
        const long live = Allocations::Live();
        const long failed = Allocations::FailEach([] {}, MakeSampleFigure, [&](bool isThrown) {
            QVERIFY(isThrown);
            QCOMPARE(Allocations::Live(), live);
        });
        QVERIFY(failed > 100);
        qInfo("%ld allocations have failed", failed);
    }

    void meshesMadeInMemoryComeIn()
    {
        World w;
        std::unique_ptr<IMeshNodeBuilder> builder(w.scene.CreateMeshBuilder(w.d));
        std::vector<MeshVertex> vertices(3);
        std::vector<unsigned int> indices{0, 1, 2};
        const auto add = [&](const QString& name, const QString& material) {
            builder->AddMeshNode(name, vertices, indices, material, {{"opacity", 0.5}});
        };
        builder->BeginModel("model", std::size_t(-1));
        add("x", "glass"), add("x", "clay"), add("y", "glass"), builder->EndModel();
        w.scene.RemoveMaterial(w.scene.FindMaterial("clay"));
        builder->BeginModel("", 0), add("dropped", ""), builder->BeginModel("", 0), add("z", "glass"), add("z", "clay");
        indices.back() = 3;
        QVERIFY_EXCEPTION_THROWN(add("bad", ""), InvalidParameterException);
        builder->EndModel(), indices.back() = 2, add("not ended", ""), builder.reset();
        QCOMPARE(w.told, (QStringList{"before", "scene 3", "after +x +y materials", "before", "x 10", "scene 2",
                                      "after *x materials", "before", "scene 3", "after +z materials"}));
        QVERIFY(TextOf(w.d) == "d{x y z}" && w.scene.GetMaterials().size() == 4);
        QVERIFY_EXCEPTION_THROWN(w.scene.CreateMeshBuilder(nullptr), InvalidParameterException);
    }

    void treesMayBeDeep() { removesAndCopiesMany(true); }
    void treesMayBeWide() { removesAndCopiesMany(false); }

    void cameraHoldsItsLimits_data()
    {
        QTest::addColumn<Move>("move");
        QTest::addColumn<QVector<float>>("values"); // distance, heading, pitch, field of view, aspect
        QTest::addColumn<int>("changes");
        const auto row = [](const char* name, const Move& move, const QVector<float>& values, int nChanges) {
            QTest::newRow(name) << move << values << nChanges;
        };
        row("not at all", [](FreeCamera& c) { c.SetState(c.GetState()); c.Zoom(0); c.LookAt({1, 2, 3}, {1, 2, 3});
            c.SetDistance(kNan); c.SetAngles(kNan, kNan); c.FrameBox({}); }, {2, 10, 20, 60, 1}, 0);
        row("beyond the limits", [](FreeCamera& c) { c.SetState({{}, -1, 540, 100, 0, 0}); },
            {1e-4f, 180, 90, 1, 1e-4f}, 1);
        row("orbit and zoom", [](FreeCamera& c) { c.Orbit(-200, 5); c.Zoom(0.5f); }, {1, 170, 25, 60, 1}, 2);
        row("locked against hands", [](FreeCamera& c) { c.SetLocked(true); c.Orbit(1, 1); c.Pan(1, 1); c.Zoom(2);
            c.FrameBox({{0, 0, 0}, {1, 1, 1}}); c.LookFrom(eCameraViewTop); c.LookAt({1, 1, 1}, {}); c.SetDistance(3);},
            {3, 10, 20, 60, 1}, 2);
        row("from above, north up", [](FreeCamera& c) { c.LookFrom(eCameraViewTop);
            QVERIFY(c.GetMatrix()(2, 1) > 0.999f && GetCameraPosition(c).z > 4); }, {2, 90, 90, 60, 1}, 1);
        row("stands where it is told", [](FreeCamera& c) { c.LookAt({1, 5, 3}, {1, 2, 3});
            QVERIFY(Length(GetCameraPosition(c) - TVec3<float>{1, 5, 3}) < 1e-5f); }, {3, -90, 0, 60, 1}, 1);
        row("panned by a frame's height", [](FreeCamera& c) { c.LookFrom(eCameraViewFront); c.Pan(1, -1);
            const float height = 4 * std::tan(0.5235988f);
            QVERIFY(Length(c.GetTarget() - TVec3<float>{1 + height, 2, 3 - height}) < 1e-5f); }, {2, 90, 0, 60, 1}, 2);
    }
    void cameraHoldsItsLimits()
    {
        QFETCH(Move, move);
        FreeCamera camera;
        camera.SetState({{1, 2, 3}, 2, 10, 20, 60, 1});
        const QSignalSpy changes(&camera, &IFreeCamera::changed);
        move(camera);
        const sCameraState held = camera.GetState();
        QTEST(QVector<float>({held.distance, held.heading, held.pitch, held.fieldOfView, held.frameAspect}), "values");
        QTEST(changes.count(), "changes");
    }

    void framedBoxesFillTheFrame()
    {
        const TVec3<float> halves[] = {{1, 1, 1}, {30, 5, 9}, {0.01f, 0.02f, 0.03f}, {4, 3, 0}, {0, 0, 2}};
        const TVec3<float> center{7, -8, 9};
        for (int nCase = 0; nCase < 5 * 108; ++nCase) {
            const TVec3<float>& half = halves[nCase / 108];
            const float aspect = 0.5f + static_cast<float>(nCase % 3);
            const float fieldOfView = 10.0f + 50.0f * static_cast<float>(nCase / 3 % 3);
            const float angle = 30.0f * static_cast<float>(nCase / 9 % 12);
            FreeCamera camera;
            camera.SetState({{}, 1, angle, angle / 2 - 80, fieldOfView, aspect});
            camera.FrameBox({center - half, center + half});
            Matrix view, projection;
            CalculateViewMatrix(view, camera.GetMatrix());
            CalculateProjectionMatrix(projection, fieldOfView, aspect, aspect, 0.1f, 1000);
            float filled = 0;
            for (int n = 0; n < 8; ++n) {
                TVec3<float> eye{n & 1 ? half.x : -half.x, n & 2 ? half.y : -half.y, n & 4 ? half.z : -half.z};
                eye = eye + center;
                TransformPoint(eye, view);
                QVERIFY(eye.z > 0);
                filled = std::max({filled, std::fabs(eye.x * projection(0, 0) / eye.z),
                                   std::fabs(eye.y * projection(1, 1) / eye.z)});
            }
            const float least = half.x == 0 ? 0.4f : 0.8f; // a line is seen from its end, too
            QVERIFY2(filled < 1 && filled > least, qPrintable(QString("%1: %2").arg(nCase).arg(double(filled))));
        }
    }

    // Every value differs from its default, and from what six digits could tell.
    void materialsGoThroughTexts()
    {
        QMap<QString, QVariant> given{{"gloss", 7}, {"twoSided", "TRUE"}, {"castsShadows", false}, {"opacity", 1.0 / 3},
                                      {"diffuse", "0.1 1e-30 12345.678 0.333333333"}, {"emissionLevel", 1e20 / 3}};
        for (const char* name : {"texture", "bumpTexture"}) {
            given[name] = QString(name) + " file.png";
            given[QString(name) + "Rect"] = "0.25 -0.125 3000000000 0.0000123456789";
            given[QString(name) + "Transformation"] = "4";
        }
        SceneMaterial material("m");
        QSignalSpy changes(&material, &IMaterial::changed);
        material.SetParameters(given);
        const QMap<QString, QVariant> texts = material.GetParameters();
        QCOMPARE(texts.keys(), given.keys());
        SceneMaterial copy("copy");
        copy.SetParameters(texts);
        QVERIFY(copy.IsEqualTo(material) && copy.GetParameters() == texts && copy.GetName() == "copy");
        QVERIFY(copy.GetDiffuseColor() == (ColorF{0.1f, 1e-30f, 12345.678f, 0.333333333f}));
        QVERIFY(copy.GetOpacity() == float(1.0 / 3) && copy.IsTwoSided() && !copy.CastsShadows());
        QCOMPARE(copy.GetTextureRect(eMaterialSlotBump), QRectF(0.25, -0.125, 3e9, qreal(0.0000123456789f)));
        copy.SetParameter("gloss", QVariant());
        QVERIFY(!copy.IsEqualTo(material));
        material.SetParameters(texts);
        material.SetOpacity(kNan);
        QCOMPARE(changes.count(), 1);
    }

    void parametersAreChecked()
    {
        const struct { const char* name; QVariant value; QString text; } rows[] = { // no text: refused
            {"opacity", 2, "1"}, {"opacity", "nan", ""}, {"opacity", "-inf", "0"}, {"diffuse", "1 1 1", ""},
            {"diffuse", "#ff0000", "1 0 0 1"}, {"diffuse", QColor(Qt::green), "0 1 0 1"}, {"diffuse", "#xyz", ""},
            {"twoSided", 1, "true"}, {"twoSided", "yes", ""}, {"textureTransformation", 6, "0"}};
        for (const auto& row : rows) {
            SceneMaterial material("m");
            const QVariant before = material.GetParameter(row.name);
            QCOMPARE(material.SetParameter(row.name, row.value), !row.text.isEmpty());
            QCOMPARE(material.GetParameter(row.name), row.text.isEmpty() ? before : QVariant(row.text));
        }
    }

    // Where the image's corners (0, 0) and (1, 0) lie, for each transformation.
    void textureMatrixUndoesThePlacement()
    {
        const QPointF corners[][2] = {{{10, 20}, {110, 20}}, {{10, 70}, {10, 20}},  {{110, 20}, {110, 70}},
                                      {{110, 70}, {10, 70}}, {{110, 20}, {10, 20}}, {{10, 70}, {110, 70}}};
        SceneMaterial material("m");
        material.SetTextureRect(eMaterialSlotDiffuse, {10, 20, 100, 50});
        for (int i = TT_Identity; i <= TT_MirrorV; ++i) {
            material.SetParameter("textureTransformation", i);
            const QTransform back = Matrix2ToQTransform(material.GetTextureMatrix(eMaterialSlotDiffuse));
            QVERIFY((back.map(corners[i][0]) - QPointF(0, 0)).manhattanLength() < 1e-5);
            QVERIFY((back.map(corners[i][1]) - QPointF(1, 0)).manhattanLength() < 1e-5);
        }
        material.SetTextureRect(eMaterialSlotDiffuse, {10, 20, 0, 50});
        QVERIFY(material.GetTextureMatrix(eMaterialSlotDiffuse) == Matrix2(1, 0, 0, 1, 0, 0));
    }

    void imagesComeAndGo()
    {
        Scene scene;
        IMaterial& material = *scene.CreateMaterial("m");
        auto image = std::make_unique<Image>(QImage(2, 1, QImage::Format_ARGB32));
        image->SetPixel(0, 0, {1, 0, 0, 1});
        image->SetPixel(1, 0, {0, 1, 0, 0}); // shows nowhere
        QVERIFY(image->Sample({0.5f, 0.5f}, false) == (ColorF{1, 0, 0, 0.5f}));
        QVERIFY(image->Sample({1.25f, -3}, true) == (ColorF{1, 0, 0, 1}));
        QImage opaque(1, 1, QImage::Format_RGB32);
        *reinterpret_cast<QRgb*>(opaque.bits()) = 0x00ff0000u;
        QVERIFY(Image(opaque).GetAverageColor() == (ColorF{1, 0, 0, 1}));
        const QSignalSpy loads(&material, &IMaterial::imageLoad);
        const QSignalSpy unloads(&material, &IMaterial::imageUnload);
        const QSignalSpy changes(&material, &IMaterial::changed);
        material.SetImage(eMaterialSlotBump, image.get());
        material.SetImage(eMaterialSlotBump, image.get());
        material.SetImageFile(eMaterialSlotBump, "f.png"); // another one: the image goes
        material.SetImage(eMaterialSlotBump, image.get());
        material.SetImage(eMaterialSlotDiffuse, image.get());
        scene.SetBackgroundImage(image.get());
        image.reset();
        QVERIFY(!material.GetImage(eMaterialSlotBump) && !material.GetImage(eMaterialSlotDiffuse));
        QVERIFY(!scene.GetBackgroundImage());
        QVERIFY(loads.count() == 3 && unloads.count() == 1 && changes.count() == 5);
    }

    void snapshotsAreKeptInOrder()
    {
        Scene scene;
        INode* const pFigure = scene.AddModel(MakeSampleFigure(), scene.GetRoot());
        ISnapshotManager& snapshots = *scene.GetSnapshotManager();
        scene.SetAnimation(1, 400);
        const Boxes posed = BoxesUnder(pFigure);
        const ISnapshot* const pFirst = snapshots.Take("first");
        RegisterSignalArgumentTypes();
        snapshots.Take("second");
        scene.SetAnimation(-1, 0);
        scene.GetCamera()->Orbit(20, 0);
        snapshots.Restore(pFirst);
        QVERIFY(BoxesUnder(pFigure) == posed && scene.GetCamera()->GetHeading() == 90);
        const QSignalSpy inserts(&snapshots, &ISnapshotManager::insertSnapshot);
        snapshots.Move(pFirst, 99);
        QVERIFY(inserts.count() == 1 && inserts.last()[1] == 1);
        snapshots.Remove(pFirst);
        QVERIFY_EXCEPTION_THROWN(snapshots.Restore(pFirst), InvalidParameterException);
        scene.RemoveNodes({pFigure});
        snapshots.Restore(snapshots.GetSnapshots()[0]); // of whom nobody is left
    }

    void modelsStandUprightAndPlay()
    {
        Scene scene;
        INode* const pFigure = scene.AddModel(MakeSampleFigure(), scene.GetRoot());
        const Boxes atRest = BoxesUnder(pFigure);
        INode* const pCopy = scene.DuplicateNodes({pFigure}).front();
        for (const float time : {100.0f, 430.0f, 700.0f, 1100.0f}) {
            const int nAnimation = time < 500 ? 0 : 1;
            const QSignalSpy changes(&scene, &IScene::nodeChanged);
            scene.SetAnimation(nAnimation, time);
            scene.SetAnimation(nAnimation, time);
            QVERIFY(changes.count() >= 4 && changes.count() <= 6); // each once, where it moved
            QVERIFY(BoxesUnder(pFigure) == UprightBoxes(nAnimation, time) && BoxesUnder(pFigure) != atRest);
        }
        TBBox<float> local;
        UpdateBBoxRecursive(local, scene.FindNode("hat"), Matrix());
        QVERIFY(qobject_cast<IMeshNode*>(scene.FindNode("hat"))->GetBBox() == local);
        QVERIFY(BoxesUnder(pCopy) == atRest && scene.GetAnimations().size() == 2);
        scene.SetAnimation(-1, 5);
        QVERIFY(BoxesUnder(pFigure) == atRest && scene.GetAnimationTime() == 0);
        QVERIFY(scene.FindMaterial("wool")->GetImage(eMaterialSlotDiffuse));
        QCOMPARE(scene.GetMaterials().size(), std::size_t(6)); // felt is worn twice
        scene.SetAnimation(1, 100);
        scene.UngroupNodes({pFigure});
        QVERIFY(scene.GetAnimations().empty() && scene.GetCurrentAnimation() == -1);
    }

    void sourcesAreReadByTheHost()
    {
        Scene scene;
        QVERIFY_EXCEPTION_THROWN(scene.GetRoot()->CreateMesh("x", "chair.obj"), LoadingException);
        scene.SetModelReader([](const QString&) -> Model { throw FileException("f", "gone"); });
        QVERIFY_EXCEPTION_THROWN(scene.GetRoot()->CreateMesh("x", "chair.obj"), FileException);
        QVERIFY(scene.GetRoot()->GetChildren().empty());
        INode* const pGone = scene.GetRoot()->CreateGroup("gone");
        scene.SetModelReader([&](const QString&) { return scene.RemoveNodes({pGone}),
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete), MakeSampleFigure(); });
        QVERIFY_EXCEPTION_THROWN(pGone->CreateMesh("x", "chair.obj"), LogicException);
        scene.SetModelReader([](const QString&) { return MakeSampleFigure(); });
        QCOMPARE(scene.GetRoot()->CreateMesh("Chair_1", "chair.obj")->GetName(), QString("Chair_1"));
        QCOMPARE(qobject_cast<IMeshNode*>(scene.FindNode("hat"))->GetSource(), QString("chair.obj"));
    }

    void anyAxisMayBeUp()
    {
        for (const TVec3<float>& up : {TVec3<float>{0, 1, 0}, {0, -1, 0}, {1, 0, 0}, {-1, 0, 0}, {0, 0, 1}, {0, 0, -1}})
        {
            TVec3<float> front = up.z == 0 ? TVec3<float>{0, 0, 1} : TVec3<float>{0, -1, 0};
            TVec3<float> side = Cross(up, front), above = up;
            for (TVec3<float>* axis : {&front, &side, &above}) TransformDirection(*axis, Upright(up));
            QVERIFY(Matrix2(side.x, side.y, front.x, front.y, above.x, above.y) == Matrix2(1, 0, 0, -1, 0, 0));
        }
    }

    void theNavigatorPicksAndMoves()
    {
        Scene scene;
        scene.AddModel(MakeSampleFigure(), scene.GetRoot());
        Navigator tool(scene);
        IFreeCamera& camera = *scene.GetCamera();
        const TVec2<float> size{800, 600};
        const auto drag = [&](Qt::MouseButton button, Qt::KeyboardModifiers keys, QPoint from, QPoint to) {
            QVERIFY(tool.OnMousePress(from, size, button, keys) && tool.OnMouseMove(to, size, button, keys));
            QVERIFY(tool.OnMouseRelease(to, size, button, keys));
        };
        camera.LookFrom(eCameraViewFront);
        QVERIFY(!tool.OnKeyPress(Qt::Key_Delete, {}) && tool.OnKeyPress(Qt::Key_F, {}));
        drag(Qt::LeftButton, {}, {400, 330}, {401, 330});
        QCOMPARE(scene.GetSelection().front()->GetName(), QString("jumper"));
        drag(Qt::LeftButton, Qt::ControlModifier, {400, 200}, {400, 200});
        QCOMPARE(scene.GetSelection().size(), std::size_t(2));
        drag(Qt::LeftButton, {}, {400, 300}, {350, 320});
        QVERIFY(camera.GetHeading() == 110 && camera.GetPitch() == 8);
        const float height = camera.GetTarget().z;
        drag(Qt::MiddleButton, {}, {0, 0}, {0, 600});
        QVERIFY(camera.GetTarget().z > height + 0.5f && !tool.OnMouseMove({}, size, {}, {}));
        QVERIFY(tool.OnWheel({400, 300}, size, 1, {}));
        QVERIFY(tool.OnKeyPress(Qt::Key_H, {}) && !scene.FindNode("jumper")->IsVisible());
        QVERIFY(tool.OnKeyPress(Qt::Key_Delete, Qt::KeypadModifier) && !scene.FindNode("jumper"));
    }

private:
    void keepsPlacesUnder(const TVec3<float>& factors)
    {
        World w;
        Matrix scale;
        scale(0, 0) = factors.x, scale(1, 1) = factors.y, scale(2, 2) = factors.z;
        Matrix turn = World::Moved(3, -2, 7);
        turn.SetRotation({20, 40, 60});
        w.a->SetMatrix(scale * turn);
        w.e->SetMatrix(turn);
        turn(0, 1) = -2; // sheared
        w.b->SetMatrix(turn);
        const auto keeps = [&w](const char* what, INode* pNode, const std::function<void()>& deed) {
            const Matrix before = WorldOf(pNode);
            deed();
            const Matrix after = WorldOf(pNode);
            const float reach = 1 + Length(before.GetTranslation()) + Length(WorldOf(w.b).GetTranslation());
            for (int i = 0; i < 4; ++i) {
                const TVec3<float> row{before(i, 0), before(i, 1), before(i, 2)};
                const TVec3<float> off = row - TVec3<float>{after(i, 0), after(i, 1), after(i, 2)};
                QVERIFY2(Length(off) <= 1e-5f * (i < 3 ? Length(row) : reach), what);
            }
        };
        keeps("into the world", w.e, [&] { w.scene.MoveNodes({w.e}, w.root, 0); });
        keeps("and back", w.e, [&] { w.scene.MoveNodes({w.e}, w.b, 0); });
        keeps("grouped", w.m, [&] { w.scene.GroupNodes({w.e, w.m}, "g"); });
        keeps("ungrouped", w.e, [&] { w.scene.UngroupNodes({w.scene.FindNode("g"), w.b}); });
        const TVec3<float> at = WorldOf(w.e).GetTranslation();
        w.scene.TransformNodes({w.e}, World::Moved(10));
        QVERIFY(Length(WorldOf(w.e).GetTranslation() - at - TVec3<float>{10, 0, 0}) < 1e-5f * (10 + Length(at)));
        scale(2, 2) = 0; // singular, but for rounding: nothing could keep a place
        w.d->SetMatrix(scale * turn);
        w.scene.MoveNodes({w.c}, w.d, 0);
        QVERIFY(w.c->GetMatrix() == Matrix() && w.c->GetParent() == w.d);
    }

    // A comb, or a brush. Minutes, were any of it quadratic.
    void removesAndCopiesMany(bool deep)
    {
        constexpr std::size_t kCount = 100000;
        Scene scene;
        INode* const pTop = scene.GetRoot()->CreateGroup("top");
        std::vector<INode*> nodes;
        for (INode* pAt = pTop; nodes.size() < kCount; pAt = deep ? nodes.back() : pTop)
            deep ? pAt->CreateLight({}) : nullptr, nodes.push_back(pAt->CreateGroup({}));
        for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) scene.SetSelected(*node, true);
        QVERIFY(scene.GetSelection() == nodes);
        const std::vector<INode*> copies = scene.DuplicateNodes(deep ? std::vector<INode*>{pTop} : nodes);
        QCOMPARE(copies.size(), deep ? 1u : kCount);
        QCOMPARE(CollectAllChildren({scene.GetRoot()}).size(), (deep ? 4 : 2) * kCount + (deep ? 3 : 2));
        scene.UngroupNodes(deep ? nodes : copies);
        scene.GroupNodes(pTop->GetChildren(), "g");
        scene.RemoveNodes(deep ? std::vector<INode*>{pTop} : nodes);
        if (deep) QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

QTEST_GUILESS_MAIN(Document)
#include "document_test.moc"
