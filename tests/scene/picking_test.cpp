#include "benchmarks/NaiveScene.h"
#include "benchmarks/SceneStandIns.h"
#include "benchmarks/Workloads.h"
#include "lumenta/foundation/CameraMatrices.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "lumenta/scene/NodeHierarchy.h"
#include "lumenta/scene/Picking.h"
#include "tests/foundation/Exact.h"

#include <QThread>

#include <deque>

using StandIn::Node;
using Vec3 = TVec3<float>;

namespace {

Matrix Placed(float x, float scale = 1) { return {{scale, 0, 0, 0, 0, scale, 0, 0, 0, 0, scale, 0, x, 0, 0, 1}}; }

/// A camera in the origin, looking along x at what is added.
struct World : StandIn::Scene {
    std::deque<Node> nodes;
    std::deque<StandIn::Mesh> meshes;
    TVec2<float> view{100, 100};

    Node& Add(Node* parent, const Matrix& matrix, int type = eNodeTypeGroup)
    {
        nodes.emplace_back(type, parent ? parent : &root, matrix).setObjectName(QString::number(nodes.size()));
        return nodes.back();
    }

    /// A triangle across x, `s` or more in each direction.
    Node& AddWall(float x, Node* parent = nullptr, float s = 1)
    {
        Node& node = Add(parent, Matrix(), eNodeTypeMesh);
        node.Add(meshes.emplace_back(std::vector<Vec3>{{x, -s, -s}, {x, 3 * s, -s}, {x, -s, 3 * s}}));
        return node;
    }

    /// A light of radius 1.
    Node& AddLamp(float x, Node* parent = nullptr) { return Add(parent, Placed(x), eNodeTypeLight); }

    QString Picked()
    {
        INode* node = &root;
        const IMesh* mesh = nullptr;
        FindNodeByScreenPoint({50, 50}, view, *this, node, mesh);
        return node ? node->objectName() + (mesh ? " at " + Floats(mesh->GetBBox().min.x) : "") : QString("nothing");
    }

    /// Turns the camera and finds the point under a pixel, to one digit.
    QString Point(float height, float pitch, const QPoint& pixel = {50, 50})
    {
        CalculateCameraMatrix(camera.matrix, {0, 0, height}, 0, 0, pitch);
        camera.state.fieldOfView = 90;
        Vec3 point{7, 7, 7};
        const bool found = FindIntersectionByScreenPoint(pixel, view, *this, point);
        point = {std::round(point.x * 10) / 10, std::round(point.y * 10) / 10, std::round(point.z * 10) / 10};
        return (found ? "yes, " : "no, ") + Rounded(point);
    }
};

} // namespace

class PickingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Picks_data()
    {
        using W = World;
        AnswerColumns();
        const auto row = [](const char* name, const char* expected, void (*build)(W&)) {
            World world;
            build(world);
            Row(name, world.Picked(), expected);
        };
        row("the nearer one last", "2 at 4", [](W& w) { w.AddWall(6), w.AddWall(4); });
        row("equally near: the first", "1 at 4", [](W& w) { w.AddWall(4), w.AddWall(4); });
        row("the nearer mesh", "2 at 4", [](W& w) { w.AddWall(4).visible = false, w.AddWall(6).Add(w.meshes[0]); });
        row("a hidden node's child", "2 at 6", [](W& w) { w.AddWall(4).visible = false, w.AddWall(6, &w.nodes[0]); });
        row("through an excluded one", "2 at 6", [](W& w) { w.AddWall(4).excluded = true, w.AddWall(6); });
        row("a light in front", "2", [](W& w) { w.AddWall(6), w.AddLamp(4); });
        row("from inside a light", "2 at 6", [](W& w) { w.AddLamp(0), w.AddWall(6); });
        row("types without interfaces", "nothing", [](W& w) { w.AddWall(4).casts = w.AddLamp(4).casts = false; });
        row("a light in a flat node", "2", [](W& w) { w.AddWall(1).matrix = Placed(2, 0), w.AddLamp(4, &w.nodes[0]); });
        row("in a mirror", "3 at -2", [](W& w) { w.AddWall(6), w.AddWall(-2, &w.Add(nullptr, Placed(1, -2))); });
        row("a view without a width", "nothing", [](W& w) { w.AddWall(4), w.view.x = 0; });

        World ground, wall, tall;
        ground.hasGround = wall.hasGround = tall.hasGround = true;
        wall.AddWall(6, nullptr, 5);
        tall.AddWall(12, nullptr, 50);
        Row("the ground from above", ground.Point(10, 45), "yes, 10, 0, 0");
        Row("up into the sky", ground.Point(10, -45), "no, 7, 7, 7");
        Row("along the ground", ground.Point(10, 0), "no, 7, 7, 7");
        Row("a wall before the ground", wall.Point(10, 45), "yes, 6, 0, 4");
        Row("a wall beyond the ground", tall.Point(10, 45), "yes, 10, 0, 0");
        Row("a wall from the ground: its point, but no", wall.Point(0, 0), "no, 6, 0, 0");
        tall.hasGround = false;
        tall.view = {200, 100};
        Row("a view wider than the frame, no ground", tall.Point(0, 0, {150, 75}), "yes, 12, -12, -6");
    }

    void Picks() { CompareAnswer(); }

    void Boxes()
    {
        World w;
        Node& scaled = w.Add(nullptr, Placed(1, 2));
        Node& hidden = w.AddWall(4, &scaled);
        hidden.visible = false;
        hidden.worldBox = {{1, 2, 3}, {4, 5, 6}};
        w.AddWall(5, &hidden);
        w.AddLamp(3, &hidden).radius = 10;
        TBBox<float> seen;
        UpdateBBoxRecursive(seen, &scaled, Placed(100));
        QCOMPARE(Floats(seen), QStringLiteral("111, -2, -2, 111, 6, 6")); // of the visible child alone
        QCOMPARE(Floats(ComputeNodeBBox(&scaled)), QStringLiteral("-3, -10, -10, 17, 10, 10"));
        w.nodes.back().casts = false;
        QCOMPARE(Floats(ComputeNodeBBox(&scaled)), QStringLiteral("1, 2, 3, 4, 5, 6"));
    }

    void PicksEqualTheirDefinition()
    {
        Workloads::Random random(1);
        int hits = 0;
        for (int round = 0; round < 2000; ++round) {
            World w;
            w.camera.matrix = Workloads::RandomTransform(random);
            for (std::uint32_t i = 0; i < 12; ++i) {
                Node* const parent = i == 0 ? nullptr : &w.nodes[random.Below(i)];
                Node& node = w.Add(parent, Workloads::RandomTransform(random), int(random.Below(3)));
                node.visible = random.Below(5) > 0;
                if (round % 2 != 0 && random.Below(8) == 0)
                    node.matrix.m[random.Below(16)] = Workloads::OddFloat(random);
                for (std::uint32_t count = random.Below(3); count > 0; --count) {
                    std::vector<Vec3> soup(9);
                    std::generate(soup.begin(), soup.end(), [&] { return Workloads::RandomVector(random, -2, 2); });
                    node.Add(w.meshes.emplace_back(soup));
                }
            }
            const QPoint pixel(int(random.Below(100)), int(random.Below(100)));
            const Naive::Picked picked = Naive::Pick(pixel, w.view, w);
            INode* node = &w.root;
            const IMesh* mesh = nullptr;
            FindNodeByScreenPoint(pixel, w.view, w, node, mesh);
            Vec3 point = picked.ray.end;
            const bool found = FindIntersectionByScreenPoint(pixel, w.view, w, point);
            QVERIFY(node == picked.node && mesh == picked.mesh && found == (node != nullptr));
            QCOMPARE(Floats(point), Floats(picked.ray.end));
            hits += node != nullptr;
            TBBox<float> box, naiveBox;
            UpdateBBoxRecursive(box, &w.root, w.camera.matrix);
            Naive::UpdateBBoxRecursive(naiveBox, &w.root, w.camera.matrix);
            QCOMPARE(Floats(box), Floats(naiveBox));
        }
        QVERIFY(hits > 200);
    }

    void ALongChainNeedsNoStack()
    {
        World w;
        for (int i = 0; i < 100000; ++i)
            w.Add(i == 0 ? nullptr : &w.nodes.back(), Matrix());
        w.AddWall(4, &w.nodes.back());
        const std::unique_ptr<QThread> thread(QThread::create([&] {
            QCOMPARE(w.Picked(), QStringLiteral("100001 at 4"));
            TBBox<float> box;
            UpdateBBoxRecursive(box, &w.root, Matrix());
            QCOMPARE(box, w.meshes[0].box);
            QVERIFY(ComputeNodeBBox(&w.root).IsEmpty());
            const std::vector<INode*> all = CollectAllChildren({&w.root});
            QCOMPARE(all.size(), w.nodes.size() + 1);
            Node::childrenAsked = 0; // of each node once, although all are listed
            QCOMPARE(CollectAllChildren(all), all);
            QCOMPARE(SortAccordingToTheSceneTree({all.rbegin(), all.rend()}, &w.root, false), all);
            QCOMPARE(Node::childrenAsked, 2 * long(all.size()));
        }));
        thread->setStackSize(128 * 1024);
        thread->start();
        QVERIFY(thread->wait());
    }
};

QTEST_APPLESS_MAIN(PickingTest)
#include "picking_test.moc"
