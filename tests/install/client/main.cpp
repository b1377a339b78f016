// Calls everything of the library that computes and prints the bits of what
// comes back. However this file is compiled, the text must be the same.

#include "lumenta/foundation/BBox.h"
#include "lumenta/foundation/CameraMatrices.h"
#include "lumenta/foundation/Color.h"
#include "lumenta/foundation/Conversions.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/foundation/Matrix2.h"
#include "lumenta/interfaces/IMesh.h"
#include "lumenta/materials/TextureTransformation.h"
#include "lumenta/render/RenderSizing.h"
#include "lumenta/scene/Ray.h"
#include "lumenta/skin/Scene.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

using namespace SkinAnimation;
using Vec3 = TVec3<float>;

namespace {

template <typename Record>
void Print(const char* name, const Record& record)
{
    std::uint32_t words[sizeof(Record) / 4];
    std::memcpy(words, &record, sizeof words);
    std::printf("%s", name);
    for (const std::uint32_t word : words)
        std::printf(" %08x", unsigned(word));
    std::puts("");
}

/// Between -8 and 8, in steps that a float holds exactly.
float Number()
{
    static std::uint32_t state = 12345;
    state = state * 1664525u + 1013904223u;
    return static_cast<float>(static_cast<int>(state >> 15) - 65536) / 8192.0f;
}

/// The braces put the three calls in order.
Vec3 Vector() { return {Number(), Number(), Number()}; }

Matrix Transform()
{
    Matrix matrix;
    matrix.SetRotation(Vector() * 20.0f);
    matrix.SetTranslation(Vector());
    return matrix;
}

void PrintValues()
{
    const Matrix a = Transform();
    Matrix b = Transform();
    Inverse(b, a * b);
    Print("inverse of a product", b);
    Vec3 v = Vector();
    Vec3 w = Vector();
    TransformPoint(v, a);
    TransformDirection(w, b);
    Print("sum of products", v * 3.1f + w * Number() - w);
    Print("lengths", Vec3{Length(v), Dot(v, w), pixelsToMM(v.x, 96.0f) + mmToPixels(w.x, 96.0f)});
    Print("units", Normalized(Cross(v, w)) + DirectionFromAngles(w));
    TBBox<float> box;
    box.Extend(v);
    box.Extend(w);
    Print("box", box);
    Print("centre and half extent", box.Center() * 0.7f + box.HalfExtent());
    Print("to the toolkit and back", QMatrix4x4ToMatrix(MatrixToQMatrix4x4(a)) * b);
    Print("texture", QTransformToMatrix2(Matrix2ToQTransform(Matrix2(v.x, v.y, v.z, w.x, w.y, w.z))));
    Print("color", QColorToColorF(ColorToQColor({v.x, v.y / 8.0f, w.z, 1.0f})));
    QRectF rect(double(v.x), double(v.y), double(w.x), double(w.y));
    const QVariant text = QRectFToQVariant(rect);
    Print(qPrintable(text.toString()), QVariantToQRectF(text, QRectF()));
}

void PrintCamera()
{
    const Vec3 angles = Vector() * 11.0f;
    Matrix camera;
    CalculateCameraMatrix(camera, Vector(), Number(), angles.y, angles.z);
    Print("camera", camera);
    Matrix view;
    CalculateViewMatrix(view, camera);
    Print("view", view);
    Matrix projection;
    CalculateProjectionMatrix(projection, angles.x, Number(), Number(), 0.1f, 1000.0f);
    Print("projection", projection);
}

struct Triangle final : IMesh {
    TBBox<float> box;
    std::vector<MeshVertex> vertices;
    std::vector<unsigned int> indices{0, 1, 2};

    QString GetName() const override { return QString(); }
    const TBBox<float>& GetBBox() const override { return box; }
    const std::vector<MeshVertex>& GetVertices() const override { return vertices; }
    const std::vector<unsigned int>& GetIndices() const override { return indices; }
    const IMeshNode* GetOwner() const override { return nullptr; }
};

void PrintRay()
{
    Triangle triangle;
    for (int i = 0; i < 3; ++i) {
        triangle.vertices.push_back({Vector(), {}, {}, {}, {}, 1.0f});
        triangle.box.Extend(triangle.vertices.back().position);
    }
    const Vec3 middle = triangle.box.Center();
    Ray ray(Vector() * 2.0f, middle);
    ray = Ray(ray.start, middle + (middle - ray.start));
    Print("ray", ray);
    Print("hits", Vec3{ray.Trace(triangle), ray.Trace(triangle.box), ray.Trace(middle, 1.0f)});
    ray.Clip(0.7f);
    Print("clipped", ray);
    Print("touches", Vec3{float(ray.IsIntersect(triangle.box)), float(ray.IsIntersect(middle, 2.5f)), 0.0f});
}

void PrintPlacement()
{
    Matrix2 placement(0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f);
    BuildTextureTransformationMatrix(placement, TT_Rotate180, {double(Number()), 0.1, double(Number()), 0.7});
    Print("placement", placement);
    const QSize size(800 + int(Number() * 90.0f), 600);
    Print("resolution", AdjustResolution(size, 2.0f + Number() / 8.0f, true));
    Print("fitted", FitSizeToAnother(size, {77, 55}));
    Print("preview", GetOptimapPreviewSize(size, 333, 555));
    Print("window", GetOptimalRenderWindowSize(size, {32, 24}, {333, 222}, 33));
}

void PrintSkin()
{
    Scene scene;
    scene.scale = Vector();
    scene.offset = Vector();
    Node& node = *new Node(QStringLiteral("node"), Transform(), Transform(), nullptr);
    scene.root = &node;
    scene.nodes = {&node};
    node.SetOriginGlobalTransform(Transform());
    Geometry& geometry = *new Geometry(QStringLiteral("mesh"), true);
    node.geometries = {&geometry};
    geometry.indices = {0, 1, 2};
    geometry.vertices.resize(3);
    for (SkinVertex& vertex : geometry.vertices) {
        vertex.position = vertex.normal = Vector();
        vertex.texCoord = {Number(), Number()};
        vertex.weights[0] = Number();
    }
    const KeyFrame first{0.0f, Vector(), {0.1f, 0.2f, 0.3f, 0.4f}, Vector()};
    const KeyFrame last{9.0f, Vector(), {0.4f, -0.3f, 0.2f, 0.1f}, Vector()};
    scene.animations = {new Animation{QString(), 9.0f, {{QString(), 9.0f, {{&node, {first, last}}}}}}};
    scene.AppendClippedAnimation(0, QStringLiteral("clip"), 1.3f, 7.7f);
    scene.CalculateAnimation(1, 3.1f);
    scene.UpdateBoundingBox();
    Print("bounding box", scene.boundingBox);
    geometry.UpdateMesh(&node, scene.scale, scene.offset, scene.nodes);
    for (const MeshVertex& vertex : geometry.meshVertices)
        Print("vertex", vertex);
}

} // namespace

int main()
{
    for (int round = 0; round < 20; ++round) {
        PrintValues();
        PrintCamera();
        PrintRay();
        PrintPlacement();
    }
    PrintSkin();
    return std::fflush(stdout) == 0 ? 0 : 1;
}
