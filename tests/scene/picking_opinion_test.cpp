// Picking and boxes of posed models against a second opinion: world triangles
// and pick rays made in double from vertices, matrices and the camera's
// numbers, and traced by Embree. It shares no formula with the library.
//
// Near an edge, and where surfaces nearly touch, more than one answer is right:
// a triangle may be met anywhere in its *band*, as far around it as two of its
// mesh's tolerances, in the space of its node. One is the library's own, the
// other is for rounding. An answer that Embree does not share is right if its
// point lies on the ray, within one tolerance, and in the band of a triangle of
// its mesh, and if the ray has not gone all through another's band before.

#include "lumenta/interfaces/IMesh.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/scene/BoundingBoxes.h"
#include "lumenta/scene/Picking.h"
#include "reference/host/document/Scene.h"
#include "reference/plugins/assimp-loader/AssimpLoader.h"

#include <assimp/types.h>
#include <embree3/rtcore.h>

#include <QTest>

#include <algorithm>
#include <cmath>
#include <deque>
#include <memory>
#include <numeric>
#include <random>

namespace {

using Mat = aiMatrix4x4t<double>; // of column vectors
using Vec = aiVector3t<double>;

constexpr double kReach = 10000.0;

const auto wide = [](const TVec3<float>& v) { return Vec(double(v.x), double(v.y), double(v.z)); };
const auto narrow = [](const Vec& v) { return TVec3<float>{float(v.x), float(v.y), float(v.z)}; };

/// A mesh where it stands.
struct Piece {
    INode* node;
    const IMesh* mesh;
    Mat world, inverse;

    double Tolerance() const { return 1e-4 * wide(mesh->GetBBox().max - mesh->GetBBox().min).Length(); }
    Vec Corner(std::size_t i) const { return wide(mesh->GetVertices()[mesh->GetIndices()[i]].position); }
};

std::deque<Piece> PiecesOf(const IScene& scene)
{
    std::deque<Piece> pieces;
    std::deque<INode*> nodes{scene.GetRoot()};
    for (; !nodes.empty(); nodes.pop_front()) {
        nodes.insert(nodes.end(), nodes[0]->GetChildren().begin(), nodes[0]->GetChildren().end());
        Mat world;
        for (const INode* place = nodes[0]; place; place = place->GetParent()) {
            Mat local;
            std::copy_n(place->GetMatrix().m, 16, local[0]);
            world = local.Transpose() * world;
        }
        if (const auto* const meshNode = qobject_cast<IMeshNode*>(nodes[0]))
            for (const IMesh* const mesh : meshNode->GetMeshes())
                pieces.push_back({nodes[0], mesh, world, Mat(world).Inverse()});
    }
    return pieces;
}

struct Answer {
    Answer(const QPoint& pixel, const TVec2<float>& view, IScene& scene)
    {
        FindNodeByScreenPoint(pixel, view, scene, node, mesh);
        isFound = FindIntersectionByScreenPoint(pixel, view, scene, point);
    }
    bool IsMiss() const { return !node && !mesh && !isFound; }
    bool operator==(const Answer& a) const { return node == a.node && mesh == a.mesh && point == a.point; }

    INode* node;
    const IMesh* mesh;
    bool isFound;
    TVec3<float> point{};
};

struct Triangle {
    const Piece* piece;
    Vec p[3], normal;

    /// Whether `point` is no farther outside the edges than `band`; a negative
    /// one asks for more than being inside.
    bool IsWithin(const Vec& point, double band) const
    {
        const auto outside = [&](int i, int k) { return (point - p[i]) * ((p[k] - p[i]) ^ normal).Normalize(); };
        return outside(0, 1) <= band && outside(1, 2) <= band && outside(2, 0) <= band;
    }

    bool Supports(const Answer& answer, const Vec& eye, const Vec& direction) const
    {
        if (!answer.isFound || piece->mesh != answer.mesh || piece->node != answer.node) return false;
        const double distance = (wide(answer.point) - eye).Length(), tolerance = piece->Tolerance();
        const Vec point = piece->inverse * wide(answer.point), onRay = piece->inverse * (eye + direction * distance);
        return (point - onRay).Length() <= tolerance && IsWithin(point, 2.0 * tolerance)
               && std::fabs((point - p[0]) * normal) <= 2.0 * tolerance;
    }

    /// The distance at which the ray has gone all through the band; beyond reach
    /// if it passes by or touches the rim.
    double SurelyPierced(const Vec& eye, const Vec& direction) const
    {
        const Vec start = piece->inverse * eye, along = piece->inverse * (eye + direction) - start;
        const double middle = (p[0] - start) * normal / (along * normal), band = 2.0 * piece->Tolerance();
        const double first = middle - band / std::fabs(along * normal), last = 2.0 * middle - first;
        const bool isPierced = IsWithin(start + along * first, -band) && IsWithin(start + along * last, -band);
        return isPierced && first > 0.0 ? last : 2.0 * kReach;
    }
};

enum Verdict { eHit, eMiss, eInBand, eWrong };

/// What a scene's camera sees at one moment.
struct Opinion {
    Opinion(const IScene& scene, const TVec2<float>& itsView)
        : view(itsView)
        , pieces(PiecesOf(scene))
    {
        const sCameraState camera = scene.GetCamera()->GetState();
        const double degrees = std::acos(-1.0) / 180.0;
        const double heading = double(camera.heading) * degrees, pitch = double(camera.pitch) * degrees;
        forward = {std::cos(heading) * std::cos(pitch), std::sin(heading) * std::cos(pitch), -std::sin(pitch)};
        eye = wide(camera.target) - forward * double(camera.distance);
        // The frame is as high or as wide as the view, whichever lets it fit.
        const double aspect = double(view.x) / double(view.y), frame = double(camera.frameAspect);
        const double high = std::tan(0.5 * double(camera.fieldOfView) * degrees) * std::max(1.0, frame / aspect);
        right = Vec(std::sin(heading), -std::cos(heading), 0.0) * (high * aspect);
        down = (forward ^ right).Normalize() * high;

        for (const Piece& piece : pieces)
            for (std::size_t k = 0; k < piece.mesh->GetIndices().size(); k += 3) {
                const Vec a = piece.Corner(k), b = piece.Corner(k + 1), c = piece.Corner(k + 2);
                const Vec cross = (b - a) ^ (c - a);
                if (piece.node->IsVisible() && !piece.mesh->GetOwner()->IsExcludedFromTracing() && cross.Length() > 0.0)
                    triangles.push_back({&piece, {a, b, c}, cross / cross.Length()});
            }
        auto* const geometry = rtcNewGeometry(device.get(), RTC_GEOMETRY_TYPE_TRIANGLE);
        auto* corner = static_cast<TVec3<float>*>(
            rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, 12, 3 * triangles.size()));
        auto* const indices = static_cast<unsigned int*>(
            rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, 12, triangles.size()));
        std::iota(indices, indices + 3 * triangles.size(), 0u);
        for (const Triangle& triangle : triangles)
            for (const Vec& p : triangle.p)
                *corner++ = narrow(triangle.piece->world * p - eye);
        rtcCommitGeometry(geometry);
        rtcAttachGeometry(embree.get(), geometry);
        rtcReleaseGeometry(geometry);
        rtcSetSceneFlags(embree.get(), RTC_SCENE_FLAG_ROBUST);
        rtcCommitScene(embree.get());
    }

    Vec Through(const QPoint& pixel) const
    {
        const double x = 2.0 * pixel.x() / double(view.x) - 1.0, y = 2.0 * pixel.y() / double(view.y) - 1.0;
        return (forward + right * x + down * y).Normalize();
    }

    /// Embree's answer, null for a miss.
    const Triangle* Seen(const QPoint& pixel) const
    {
        const TVec3<float> way = narrow(Through(pixel));
        RTCRayHit query{{0, 0, 0, 0, way.x, way.y, way.z, 0, float(kReach), ~0u, 0, 0},
                        {0, 0, 0, 0, 0, 0, RTC_INVALID_GEOMETRY_ID, {}}};
        RTCIntersectContext context;
        rtcInitIntersectContext(&context);
        rtcIntersect1(embree.get(), &context, &query);
        return query.hit.geomID == RTC_INVALID_GEOMETRY_ID ? nullptr : &triangles[query.hit.primID];
    }

    Verdict Judge(const QPoint& pixel, const Answer& answer) const
    {
        const Vec direction = Through(pixel);
        const Triangle* const seen = Seen(pixel);
        if (!seen && answer.IsMiss()) return eMiss;
        if (seen && seen->Supports(answer, eye, direction)) return eHit;
        double distance = answer.IsMiss() ? kReach : 0.0;
        for (const Triangle& triangle : triangles)
            if (triangle.Supports(answer, eye, direction)) distance = (wide(answer.point) - eye).Length();
        for (const Triangle& triangle : triangles)
            if (triangle.SurelyPierced(eye, direction) < distance) return eWrong;
        return distance > 0.0 ? eInBand : eWrong;
    }

    TVec2<float> view;
    std::deque<Piece> pieces;
    std::vector<Triangle> triangles;
    Vec eye, forward, right, down; ///< The last two to the edges of the view, a unit ahead.
    const std::shared_ptr<RTCDeviceTy> device{rtcNewDevice("threads=1"), rtcReleaseDevice};
    const std::shared_ptr<RTCSceneTy> embree{rtcNewScene(device.get()), rtcReleaseScene};
};

Matrix Placed(const QVector3D& scale, const QVector3D& degrees, const QVector3D& translation)
{
    QMatrix4x4 matrix;
    matrix.translate(translation);
    matrix.rotate(QQuaternion::fromEulerAngles(degrees));
    matrix.scale(scale);
    return QMatrix4x4ToMatrix(matrix);
}

/// A model under two hidden groups, and a copy across it that stays at rest.
struct Stage {
    explicit Stage(const QString& file)
    {
        for (INode* pGroup : {outer, inner}) pGroup->SetVisible(false);
        scene.SetGroundPlaneEnabled(false);
        model = scene.AddModel(Host::LoadModel("/usr/share/assimp/models/X/" + file), inner);
        copy = scene.DuplicateNodes({model})[0];
        copy->SetMatrix(model->GetMatrix() * Placed({1, 1, 1}, {5, 10, 70}, {0.1f, 0.2f, 0.05f}));
    }

    void Pose(float part) { scene.SetAnimation(0, part * scene.GetAnimations()[0].length); }

    /// To a millionth of where the boxes stand.
    bool HasBox(const TBBox<float>& box, bool bHiddenToo) const
    {
        Vec low(kReach), high(-kReach);
        for (const Piece& piece : PiecesOf(scene))
            for (unsigned int i = 0; i < 3 * piece.mesh->GetVertices().size(); ++i) {
                const Vec place = piece.world * wide(piece.mesh->GetVertices()[i / 3].position);
                if (!bHiddenToo && !piece.node->IsVisible()) continue;
                low[i % 3] = std::min(low[i % 3], place[i % 3]);
                high[i % 3] = std::max(high[i % 3], place[i % 3]);
            }
        return (wide(box.min) - low).Length() + (wide(box.max) - high).Length()
               <= 1e-6 * (low.Length() + high.Length());
    }

    Host::Scene scene;
    INode* const outer = scene.GetRoot()->CreateGroup("outer");
    INode* const inner = outer->CreateGroup("inner");
    INode *model, *copy;
};

/// Whether the answer with a ground is the one without, or the point on the ground.
bool IsRightOnGround(const QPoint& pixel, const Opinion& opinion, Host::Scene& scene, const Answer& without)
{
    scene.SetGroundPlaneEnabled(true);
    TVec3<float> point{};
    const bool isFound = FindIntersectionByScreenPoint(pixel, opinion.view, scene, point);
    scene.SetGroundPlaneEnabled(false);
    if (without.isFound && double(without.point.z) * opinion.eye.z >= 0.0) return isFound && point == without.point;
    const Vec direction = opinion.Through(pixel);
    const double distance = -opinion.eye.z / direction.z, slack = 1e-6 * (opinion.eye.Length() + std::fabs(distance));
    const double apart = (wide(point) - opinion.eye - direction * distance).Length() * std::fabs(direction.z);
    return distance > 0.0 ? isFound && apart <= slack : !isFound;
}

} // namespace

class PickingOpinionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void answersAsEmbree_data()
    {
        QTest::addColumn<QString>("file");
        QTest::newRow("a running beast") << "Testwuson.X";
        QTest::newRow("a man in three pieces") << "BCN_Epileptic.X";
    }
    void answersAsEmbree();
    void losesLimbsThatMove_data() { answersAsEmbree_data(); }
    void losesLimbsThatMove();
    void passesOverBadNumbers();
};

void PickingOpinionTest::answersAsEmbree()
{
    QFETCH(QString, file);
    const Matrix placements[][2] = {
        {},
        {Placed({-1, 1, 1}, {10, 40, -60}, {1, 2, -1}), Placed({1, 2, -0.5f}, {0, 30, 0}, {0, 0, 1})},
        {Placed({0.01f, 0.02f, 0.015f}, {30, 0, 10}, {0.02f, 0, 0.01f})},
        {Placed({100, 60, -80}, {0, 15, 200}, {50, -20, 10})},
        {Placed({0.1f, 1, 3}, {15, 25, 35}, {0, 1, 0}), Placed({10, 0.5f, 0.3f}, {-40, 5, 80}, {1, 0, 1})},
        {Placed({0.01f, 1, 1}, {0, 0, 45}, {0, 0, 0}), Placed({100, 1, 1}, {20, 0, 20}, {0, 0, 0})}};
    // The distance in diagonals of all that is seen, pitch, field of view, frame.
    const float shots[][4] = {{0.3f, 15, 45, 1.3f}, {0.08f, 30, 20, 2}, {0.25f, -50, 50, 1}, {0.07f, -10, 100, 0.5f}};

    Stage stage(file);
    std::mt19937 random(7);
    const auto below = [&](std::size_t count) { return int(random() % count); };
    int counts[4] = {};
    for (int i = 0; i < 72; ++i) {
        const float(&shot)[4] = shots[i % 4];
        stage.outer->SetMatrix(placements[i / 12][0]);
        stage.inner->SetMatrix(placements[i / 12][1]);
        stage.Pose(0.1f + 0.3f * float(i / 4 % 3));
        for (INode* pMesh : stage.copy->GetChildren()) pMesh->SetVisible(i / 4 % 3 < 2);
        TBBox<float> box;
        UpdateBBoxRecursive(box, stage.scene.GetRoot(), Matrix());
        QVERIFY(stage.HasBox(box, false) && stage.HasBox(ComputeNodeBBox(stage.scene.GetRoot()), true));
        const Piece piece = PiecesOf(stage.scene)[0];
        const Vec target = piece.world * piece.Corner(below(piece.mesh->GetIndices().size()));
        stage.scene.GetCamera()->SetState(
            {narrow(target), shot[0] * Length(box.max - box.min), float(below(360)), shot[1], shot[2], shot[3]});
        const Opinion opinion(stage.scene, {i % 2 ? 300.0f : 640.0f, 400.0f});
        for (int k = 0; k < 40; ++k) {
            const QPoint pixel(below(std::size_t(opinion.view.x)), below(400));
            const Answer answer(pixel, opinion.view, stage.scene);
            const Verdict verdict = opinion.Judge(pixel, answer);
            ++counts[verdict];
            QString text;
            QDebug(&text) << "view" << i << pixel << answer.mesh << answer.point << "Embree"
                          << (opinion.Seen(pixel) ? opinion.Seen(pixel)->piece->mesh : nullptr);
            QVERIFY2(verdict != eWrong && IsRightOnGround(pixel, opinion, stage.scene, answer), qPrintable(text));
        }
    }
    qInfo("agreed: %d hits, %d misses; in the band: %d", counts[eHit], counts[eMiss], counts[eInBand]);
    QVERIFY(counts[eHit] > 1000 && counts[eMiss] > 1000 && counts[eInBand] < 40);
}

void PickingOpinionTest::losesLimbsThatMove()
{
    QFETCH(QString, file);
    Stage stage(file);
    const TBBox<float> atRest = ComputeNodeBBox(stage.model);
    stage.Pose(0.2f);
    QVERIFY(ComputeNodeBBox(stage.model) != atRest);
    stage.scene.GetCamera()->SetState({atRest.Center(), Length(atRest.max - atRest.min), 30, 10, 45, 1});
    const Opinion before(stage.scene, {100, 100});
    stage.Pose(0.5f);
    const Opinion after(stage.scene, {100, 100});
    std::vector<QPoint> limbs;
    int hits = 0, misses = 0;
    for (int i = 0; i < 10000; ++i)
        if (before.Seen({i % 100, i / 100}) && !after.Seen({i % 100, i / 100})) limbs.emplace_back(i % 100, i / 100);
    for (const QPoint& pixel : limbs)
        misses += after.Judge(pixel, {pixel, after.view, stage.scene}) == eMiss;
    stage.Pose(0.2f);
    for (const QPoint& pixel : limbs)
        hits += before.Judge(pixel, {pixel, before.view, stage.scene}) == eHit;
    qInfo("of %d pixels %d are hit before and %d missed after", int(limbs.size()), hits, misses);
    QVERIFY(hits > 50 && std::min(hits, misses) > 0.98 * double(limbs.size()));

    const QPoint pixel = limbs[limbs.size() / 2];
    const auto pick = [&] { return Answer(pixel, before.view, stage.scene); };
    const Answer limb = pick();
    const Vec half = (wide(limb.point) - before.eye) * 0.5;
    // A new one has a radius of 0.1.
    INode* const light = stage.scene.GetRoot()->CreateLight("Light");
    light->SetMatrix(Placed({1, 1, 1}, {0, 0, 0}, TVec3ToQVector3D(narrow(before.eye + half))));
    const Answer lit = pick();
    QVERIFY(lit.node == light && !lit.mesh && std::fabs((wide(lit.point) - before.eye - half).Length() - 0.1) < 1e-3);
    light->SetVisible(false);
    QVERIFY(pick() == limb);
    limb.node->SetVisible(false);
    const Answer behind = pick();
    QVERIFY(behind.node != limb.node && Opinion(stage.scene, before.view).Judge(pixel, behind) != eWrong);
    limb.node->SetVisible(true);
    qobject_cast<IMeshNode*>(limb.node)->SetExcludedFromTracing(true);
    QVERIFY(pick() == behind);
}

void PickingOpinionTest::passesOverBadNumbers()
{
    Stage stage("BCN_Epileptic.X");
    stage.scene.GetCamera()->FrameBox(ComputeNodeBBox(stage.model));
    stage.scene.GetCamera()->Zoom(0.4f);
    const auto pick = [&](int x, int y) { return Answer({x, y}, {300, 300}, stage.scene); };
    std::vector<Answer> good;
    good.reserve(100);
    for (int i = 0; i < 100; ++i)
        good.push_back(pick(i % 10 * 30, i / 10 * 30));
    QVERIFY(std::count_if(good.begin(), good.end(), [](const Answer& answer) { return answer.node; }) > 20);
    for (const float bad : {0.0f, 1e-20f, 1e30f, INFINITY, -INFINITY, NAN}) {
        INode* const group = stage.scene.GetRoot()->CreateGroup("bad");
        group->SetMatrix(Placed({bad, bad, 1}, {0, 30, 0}, {0, 0, 0}));
        std::vector<MeshVertex> vertices(4, MeshVertex{});
        vertices[0].position = {1.0f / bad, 0, 0};
        vertices[2].position = {0, 1, bad};
        for (INode* const parent : {group, stage.scene.GetRoot()})
            stage.scene.AddMesh(parent, "bad", vertices, {0, 1, 2, 2, 1, 3, 0, 2, 3});
    }
    for (int i = 0; i < 100; ++i)
        QVERIFY(pick(i % 10 * 30, i / 10 * 30) == good[std::size_t(i)]);
    for (const int far : {-2147483647 - 1, -100000, 100000, 2147483647})
        QVERIFY(pick(far, 150).IsMiss() && pick(150, far).IsMiss());
    stage.scene.SetGroundPlaneEnabled(true);
    for (const TVec2<float>& nothing : {TVec2<float>{0, 0}, {0, 300}, {300, 0}, {NAN, 300}})
        QVERIFY(Answer({150, 150}, nothing, stage.scene).IsMiss());
}

QTEST_GUILESS_MAIN(PickingOpinionTest)
#include "picking_opinion_test.moc"
