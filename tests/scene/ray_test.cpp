#include "benchmarks/NaiveScene.h"
#include "benchmarks/SceneStandIns.h"
#include "benchmarks/Workloads.h"
#include "tests/foundation/Exact.h"

#include <algorithm>

using Vec3 = TVec3<float>;
using namespace Workloads;

namespace {

template <typename... Shape>
QString Of(const Vec3& start, const Vec3& end, const Shape&... shape)
{
    const Ray ray(start, end);
    return (ray.IsIntersect(shape...) ? "touches, " : "misses, ") + Floats(ray.Trace(shape...));
}

/// A triangle in the plane x, seen counter-clockwise from the start of a ray along x.
std::vector<Vec3> TriangleAt(float x) { return {{x, -1, -1}, {x, 0, 2}, {x, 1, -1}}; }

/// Along x from 0 to `length` at height z, into triangles whose box is `boxSize` long.
QString Hit(const std::vector<Vec3>& triangles, float z = 0, float length = 8, float boxSize = 0)
{
    StandIn::Mesh mesh(triangles);
    mesh.box = boxSize > 0 ? TBBox<float>({0, 0, 0}, {boxSize, 0, 0}) : TBBox<float>();
    return Rounded(Ray({0, 0, z}, {length, 0, z}).Trace(mesh));
}

// Another opinion, in double precision.
using Wide = TVec3<double>;
Wide Widen(const Vec3& v) { return {double(v.x), double(v.y), double(v.z)}; }
double Dot(const Wide& a, const Wide& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Wide Cross(const Wide& a, const Wide& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// Where a segment meets a triangle (Möller and Trumbore, 1997): 1 for a miss, -1 where it is a close thing.
double TriangleOpinion(const Ray& ray, const StandIn::Mesh& mesh, std::size_t k)
{
    const Wide p0 = Widen(mesh.vertices[k].position), b = Widen(mesh.vertices[k + 1].position) - p0,
               c = Widen(mesh.vertices[k + 2].position) - p0, s = Widen(ray.start) - p0,
               d = Widen(ray.end) - Widen(ray.start), p = Cross(d, c), q = Cross(s, b);
    const double volume = Dot(b, p), u = Dot(s, p) / volume, v = Dot(d, q) / volume, t = Dot(c, q) / volume;
    const double inside = std::min({u, v, 1 - u - v, t, 1 - t});
    return !(std::fabs(inside) > 1e-3) || std::fabs(volume) < 1e-3 ? -1 : inside > 0 ? t : 1;
}

} // namespace

class RayTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ClippingKeepsTheRestInStep()
    {
        Ray ray({0, 0, 1}, {2, -8, 1});
        QCOMPARE(Floats(ray), QStringLiteral("0, 0, 1, 2, -8, 1, 1, -4, 1, 1, -4, 0, 1, 4, 0"));
        ray.Clip(0.5f);
        QCOMPARE(Floats(ray), QStringLiteral("0, 0, 1, 1, -4, 1, 0.5, -2, 1, 0.5, -2, 0, 0.5, 2, 0"));
    }

    void Answers_data()
    {
        AnswerColumns();
        const Vec3 o{0, 0, 0};
        Row("through a sphere", Of({-4, 0, 0}, {4, 0, 0}, o, 1.0f), "touches, 0.375");
        Row("past a sphere", Of({-4, 1.5f, 0}, {4, 1.5f, 0}, o, 1.0f), "misses, 1");
        Row("up to a sphere, where a hit looks like none", Of({-4, 0, 0}, {-1, 0, 0}, o, 1.0f), "touches, 1");
        Row("out of a sphere: a touch, not a hit", Of({0, 0, 0}, {4, 0, 0}, o, 1.0f), "touches, 1");
        Row("from its surface", Of({-1, 0, 0}, {4, 0, 0}, o, 1.0f), "touches, 1");
        Row("a point outside a sphere", Of({2, 0, 0}, {2, 0, 0}, o, 1.0f), "misses, 1");

        const TBBox<float> box({-1, -1, -1}, {1, 1, 1});
        Row("through a box", Of({-4, 0, 0}, {4, 0, 0}, box), "touches, 0.375");
        Row("out of a box: a hit at the start", Of({0, 0, 0}, {4, 0, 0}, box), "touches, 0");
        Row("beside it: an axis without motion is not asked", Of({-4, 5, 0}, {4, 5, 0}, box), "misses, 0.375");
        for (const int axis : {0, 1, 2}) {
            const auto turn = [axis](float x, float y) {
                return axis == 0 ? Vec3{x, y, 0} : axis == 1 ? Vec3{y, 0, x} : Vec3{0, x, y};
            };
            const QString plane = " in the plane of " + Floats(turn(1, 2));
            Row(qPrintable("past an edge" + plane), Of(turn(-2.5f, 0), turn(0, 2.5f), box), "misses, 1");
            Row(qPrintable("at an edge" + plane), Of(turn(-2, 0), turn(0, 2), box), "touches, 0.5");
        }
        Row("an empty box", Of({-4, 0, 0}, {4, 1, 1}, TBBox<float>()), "misses, 1");

        const std::vector<Vec3> near = TriangleAt(2), far = TriangleAt(6), flat(3, near[0]);
        Row("the nearer one first", Hit({near[0], near[1], near[2], far[0], far[1], far[2]}), "0.25");
        Row("the nearer one last", Hit({far[0], far[1], far[2], near[0], near[1], near[2]}), "0.25");
        Row("at the very end", Hit(near, 0, 2), "1");
        Row("a segment of no length", Hit(near, 0, 0), "1");
        Row("triangles without area", Hit(flat), "1");
        Row("one that is no number in front", Hit({{1, kNaN, 0}, near[0], near[1], far[0], far[1], far[2]}), "0.75");
        Row("two corners left over", Hit({far[0], far[1], far[2], near[0], near[1]}), "0.75");
        Row("moved by the tolerance along its normal", Hit(near, 0, 8, 8000), "0.35");
        Row("wound the other way: moved back", Hit({near[0], near[2], near[1]}, 0, 8, 8000), "0.15");
        Row("outside an edge within the tolerance", Hit(near, -1.09f, 8, 1000), "0.2625");
        Row("outside an edge by more", Hit(near, -1.11f, 8, 1000), "1");
    }

    void Answers() { CompareAnswer(); }

    void MeshesEqualTheirDefinition()
    {
        Random random(3);
        int hits = 0;
        for (int round = 0; round < 60000; ++round) {
            const bool odd = round % 2 != 0; // the rest is plain, and agrees with double precision
            const auto number = [&] { return random.Below(3) ? random.Between(-3, 3) : OddFloat(random); };
            const auto point = [&](std::uint32_t part) {
                return odd && random.Below(4) < part ? Vec3{number(), number(), number()} : RandomVector(random, -3, 3);
            };
            StandIn::Mesh mesh({point(1), point(1), point(1), point(1), point(1), point(1)});
            const Ray ray(point(0), point(1));
            if (!odd) // the two ask in different ways, and no segment of these is parallel to a face
                QCOMPARE(ray.IsIntersect(mesh.box), ray.Trace(mesh.box) < 1);
            mesh.box = odd && random.Below(2) ? TBBox<float>(point(4), point(4)) : TBBox<float>();
            const float found = ray.Trace(mesh);
            QCOMPARE(Floats(found), Floats(Naive::Trace(ray, mesh)));
            for (const float t : {found, ray.Trace(mesh.box), ray.Trace(mesh.box.min, mesh.box.max.x)})
                QVERIFY(t >= 0 && t <= 1);
            const double t = std::min(TriangleOpinion(ray, mesh, 0), TriangleOpinion(ray, mesh, 3));
            QVERIFY(odd || t < 0 || std::fabs(double(found) - t) < 1e-3);
            hits += found < 1;
        }
        QVERIFY(hits > 4000);
    }
};

QTEST_APPLESS_MAIN(RayTest)
#include "ray_test.moc"
