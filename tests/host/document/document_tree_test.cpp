#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/ISnapshotManager.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "reference/host/document/Node.h"
#include "reference/host/document/Scene.h"

#include <QtTest>

#include <cmath>
#include <functional>

using namespace Host;

/// a { b { e } c } d m(esh), all groups but the mesh; and what the scene tells.
struct World {
    Scene scene;
    INode* root = scene.GetRoot();
    INode* a = root->CreateGroup("a");
    INode* b = a->CreateGroup("b");
    INode* c = a->CreateGroup("c");
    INode* d = root->CreateGroup("d");
    INode* e = b->CreateGroup("e");
    INode* m = scene.AddMesh(root, "m", {{{1, 2, 3}, {}, {}, {}, {}, 1}, {{2, 2, 5}, {}, {}, {}, {}, 1}}, {0, 1, 0});
    IMaterial* material = scene.CreateMaterial("red");
    QStringList told;

    World()
    {
        d->SetMatrix(Moved(0, 0, 5));
        scene.SetModified(true);
        const auto names = [](const char* sign, const std::vector<const INode*>& nodes) {
            QString text;
            for (const INode* pNode : nodes) text += ' ' + (sign + pNode->GetName());
            return text;
        };
        QObject::connect(&scene, &IScene::beforeSceneUpdate, [this] { told += "before"; });
        QObject::connect(&scene, &IScene::afterSceneUpdate, [this, names](const sSceneModifications& done) {
            told += "after" + names("+", done.added) + names("-", done.removed) + names(">", done.moved)
                + names("*", done.changed) + (done.materialsChanged ? " materials" : "");
        });
        QObject::connect(&scene, &IScene::nodeChanged, [this](const INode* pNode, eNodeChangedFlags what) {
            told += pNode->GetName() + ' ' + QString::number(what, 16);
        });
        QObject::connect(&scene, &IScene::sceneChanged,
                         [this](eSceneChangedFlags what) { told += "scene " + QString::number(what, 16); });
        QObject::connect(&scene, &IScene::selectionChanged, [this] { told += "selection"; });
        QObject::connect(material, &IMaterial::changed, [this] { told += "red changed"; });
    }

    static Matrix Moved(float x, float y = 0, float z = 0)
    {
        Matrix matrix;
        matrix.SetTranslation({x, y, z});
        return matrix;
    }
};

using Deed = std::function<void(World&)>;
Q_DECLARE_METATYPE(Deed)

namespace {

QString TextOf(const INode* pTop)
{
    QString text = pTop->GetName();
    if (pTop->GetChildren().empty()) return text;
    QStringList children;
    for (const INode* pChild : pTop->GetChildren()) children += TextOf(pChild);
    return text + "{" + children.join(' ') + "}";
}

Matrix GlobalOf(const INode* pNode)
{
    Matrix global;
    GetNodeGlobalMatrix(global, pNode);
    return global;
}

/// What must hold whatever slots have done in between.
void CheckSound(World& world)
{
    for (INode* pNode : CollectAllChildren({world.root})) {
        QVERIFY(pNode->GetScene() == &world.scene && world.scene.GetNodeById(pNode->GetId()) == pNode);
        for (INode* pChild : pNode->GetChildren()) QVERIFY(pChild->GetParent() == pNode);
    }
    for (INode* pNode : world.scene.GetSelection()) QVERIFY(world.scene.IsSelected(pNode));
    QVERIFY(!world.scene.IsUpdating());
    QCOMPARE(world.told.count("before"), world.told.filter(QRegularExpression("^after")).size());
}

} // namespace

class DocumentTree : public QObject {
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
        row("hidden: one is already", [](World& w) { w.a->SetVisible(false); w.told.clear();
            w.scene.SetNodesVisible({w.d, w.a, w.d, nullptr}, false); }, {"before", "d 4", "after *d"}, same);
        row("moved under a shifted parent", [](World& w) { w.scene.MoveNodes({w.e, w.b}, w.d, -1); },
            {"before", "b 2", "scene 1", "after >b *b"}, "{a{c} d{b{e}} m}");
        row("removed with what is selected", [](World& w) { w.scene.SetSelection({w.e, w.d}); w.told.clear();
            w.scene.RemoveNodes({w.b, w.e}); }, {"before", "scene 1", "selection", "after -b"}, "{a{c} d m}");
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
        row("the ground, without a batch", [](World& w) { w.scene.SetGroundPlaneEnabled(false); }, {"scene 4"}, same);
        row("a state restored", [](World& w) { ISnapshotManager* s = w.scene.GetSnapshotManager();
            const ISnapshot* kept = s->Take("k"); w.b->SetMatrix(World::Moved(1)); w.b->SetVisible(false);
            w.scene.RemoveNodes({w.d}); w.told.clear(); s->Restore(kept);
            QVERIFY(w.b->IsVisible() && w.b->GetMatrix() == Matrix()); }, {"before", "b 6", "after *b"}, "{a{b{e} c} m}");
        row("cleared", [](World& w) { w.scene.SetFileName("f"); w.scene.GetSnapshotManager()->Take("k"); w.told.clear();
            w.scene.Clear(); QVERIFY(w.scene.GetMaterials().size() == 1 && w.scene.GetFileName().isEmpty());
            QVERIFY(w.scene.GetSnapshotManager()->GetSnapshots().empty() && !w.scene.IsModified()); },
            {"before", "scene 1", "scene 2", "after -a -d -m materials", "scene 80", "scene 80"}, "");
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
        w.scene.BeginUpdate({});
        w.a->SetName("a");
        w.root->SetMatrix(World::Moved(1));
        w.scene.MoveNodes({w.c}, w.a, 1);
        w.scene.RemoveNodes({w.root, other.a, nullptr});
        w.scene.TransformNodes({w.a, w.m}, Matrix());
        w.scene.AssignMaterial({w.m}, other.material);
        w.scene.RemoveMaterial(w.scene.GetDefaultMaterial());
        w.scene.EndUpdate();
        QVERIFY_EXCEPTION_THROWN(w.scene.EndUpdate(), LogicException);
        QVERIFY_EXCEPTION_THROWN(w.scene.MoveNodes({w.d, w.a}, w.b, 0), InvalidParameterException);
        QVERIFY_EXCEPTION_THROWN(w.scene.SetAnimation(0, 0), InvalidParameterException);
        QVERIFY_EXCEPTION_THROWN(w.scene.AddMesh(w.root, "x", {}, {0, 0, 0}), InvalidParameterException);
        QCOMPARE(w.told, QStringList());
    }

    void placesInTheWorldAreKept_data()
    {
        QTest::addColumn<QVector<float>>("factors");
        QTest::newRow("mirrored") << QVector<float>{-1, 1, 1};
        QTest::newRow("very small") << QVector<float>{0.01f, 0.01f, 0.01f};
        QTest::newRow("very large") << QVector<float>{100, 100, 100};
        QTest::newRow("flattened and mirrored") << QVector<float>{10, -0.5f, 3};
    }
    void placesInTheWorldAreKept()
    {
        QFETCH(QVector<float>, factors);
        World w;
        Matrix scale;
        for (int i = 0; i < 3; ++i) scale(i, i) = factors[i];
        Matrix turn = World::Moved(3, -2, 7);
        turn.SetRotation({20, 40, 60});
        w.a->SetMatrix(scale * turn);
        w.e->SetMatrix(turn);
        turn(0, 1) = -2; // sheared
        w.b->SetMatrix(turn);
        const auto keeps = [&w](const char* what, INode* pNode, const std::function<void()>& deed) {
            const Matrix before = GlobalOf(pNode);
            deed();
            const Matrix after = GlobalOf(pNode);
            const float reach = 1 + Length(before.GetTranslation()) + Length(GlobalOf(w.b).GetTranslation());
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
        const TVec3<float> at = GlobalOf(w.e).GetTranslation();
        w.scene.TransformNodes({w.e}, World::Moved(10));
        QVERIFY(Length(GlobalOf(w.e).GetTranslation() - at - TVec3<float>{10, 0, 0}) < 1e-5f * (10 + Length(at)));
        w.d->SetMatrix({{}}); // singular: nothing could keep a place
        const Matrix local = w.e->GetMatrix();
        w.scene.MoveNodes({w.e}, w.d, 0);
        QVERIFY(w.e->GetMatrix() == local && w.e->GetParent() == w.d);
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
        QVERIFY(pRemoved);
        QVERIFY_EXCEPTION_THROWN(pRemoved->CreateGroup("x"), LogicException);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!pRemoved);
    }

    // Each slot meddles once, in every signal that it can.
    void slotsMayMeddle_data()
    {
        QTest::addColumn<Deed>("meddle");
        const auto row = [](const char* name, const Deed& meddle) { QTest::newRow(name) << meddle; };
        row("remove", [](World& w) { w.scene.RemoveNodes({w.b, w.d, w.m}); });
        row("select in a batch", [](World& w) { w.scene.BeginUpdate({}); w.scene.SetSelection({w.c, w.m});
            w.c->SetName("C"); w.scene.EndUpdate(); });
        row("ungroup", [](World& w) { w.scene.UngroupNodes({w.a, w.b}); });
        row("end a batch of nobody", [](World& w) { QVERIFY_EXCEPTION_THROWN(w.scene.EndUpdate(), LogicException); });
        row("remove the material", [](World& w) { w.scene.RemoveMaterial(w.material); });
        row("clear", [](World& w) { w.scene.Clear(); });
    }
    void slotsMayMeddle()
    {
        QFETCH(Deed, meddle);
        const Deed deeds[] = {
            [](World& w) { w.scene.MoveNodes({w.b, w.m}, w.d, 0); },
            [](World& w) { w.scene.DuplicateNodes({w.b, w.m}); },
            [](World& w) { w.scene.GroupNodes({w.e, w.m, w.d}, "g"); },
            [](World& w) { w.scene.UngroupNodes({w.a, w.b}); },
            [](World& w) { w.scene.SetNodesVisible({w.a, w.b, w.m}, false); },
            [](World& w) { w.scene.TransformNodes({w.b, w.m}, World::Moved(1)); },
            [](World& w) { w.scene.AssignMaterial({w.a, w.m}, w.material); },
            [](World& w) { w.material->SetOpacity(0.5f); },
            [](World& w) { w.scene.SetSelection({w.e}); }};
        for (const Deed& deed : deeds) {
            for (int nSignal = 0; nSignal < 5; ++nSignal) {
                World w;
                w.scene.SetSelection({w.b, w.d, w.m});
                bool bDone = false;
                const auto once = [&] { std::exchange(bDone, true) ? void() : meddle(w); };
                if (nSignal == 0) connect(&w.scene, &IScene::beforeSceneUpdate, this, once);
                if (nSignal == 1) connect(&w.scene, &IScene::nodeChanged, this, once);
                if (nSignal == 2) connect(&w.scene, &IScene::sceneChanged, this, once);
                if (nSignal == 3) connect(&w.scene, &IScene::selectionChanged, this, once);
                if (nSignal == 4) connect(&w.scene, &IScene::afterSceneUpdate, this, once);
                deed(w);
                CheckSound(w);
                if (nSignal % 2) QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            }
        }
    }

    void treesMayBeDeep() { removesAndCopiesMany(true); }
    void treesMayBeWide() { removesAndCopiesMany(false); }

private:
    void removesAndCopiesMany(bool deep)
    {
        constexpr std::size_t kCount = 100000;
        Scene scene;
        INode* const pTop = scene.GetRoot()->CreateGroup("top");
        std::vector<INode*> nodes;
        for (INode* pAt = pTop; nodes.size() < kCount; pAt = deep ? nodes.back() : pTop)
            nodes.push_back(pAt->CreateGroup({}));
        scene.SetSelection(nodes);
        QVERIFY(scene.GetSelection() == nodes);
        const std::vector<INode*> copies = scene.DuplicateNodes(deep ? std::vector<INode*>{pTop} : nodes);
        QCOMPARE(copies.size(), deep ? 1u : kCount);
        QCOMPARE(CollectAllChildren({scene.GetRoot()}).size(), 2 * kCount + (deep ? 3 : 2));
        scene.UngroupNodes(deep ? nodes : copies);
        scene.GroupNodes(pTop->GetChildren(), "g");
        scene.RemoveNodes(deep ? std::vector<INode*>{pTop} : nodes);
        QCOMPARE(scene.GetSelection().size(), 0u);
        if (deep) QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

QTEST_GUILESS_MAIN(DocumentTree)
#include "document_tree_test.moc"
