// Calls everything of the library that computes and prints the bits of what
// comes back. However this file is compiled, the text must be the same.

#include "lumenta/foundation/BBox.h"
#include "lumenta/foundation/Color.h"
#include "lumenta/foundation/Conversions.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/foundation/Matrix2.h"
#include "lumenta/platform/IMeshNodeBuilder.h"
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
    std::printf("\n");
}

void Print(const char* name, const QString& text)
{
    std::printf("%s %s\n", name, text.toUtf8().constData());
}

/// Between -8 and 8, in steps that a float holds exactly.
float Number()
{
    static std::uint32_t state = 12345;
    state = state * 1664525u + 1013904223u;
    return static_cast<float>(static_cast<int>(state >> 15) - 65536) / 8192.0f;
}

Vec3 Vector()
{
    const float x = Number();
    const float y = Number();
    return {x, y, Number()};
}

Matrix Transform()
{
    Matrix matrix;
    matrix.SetRotation(Vector());
    for (int i = 0; i < 11; ++i)
        matrix.m[i] += i % 4 == 3 ? 0.0f : Number() / 16.0f;
    matrix.SetTranslation(Vector());
    return matrix;
}

KeyFrame Key(float time)
{
    return {time, Vector(), {Number() / 16.0f, Number() / 16.0f, Number() / 16.0f, Number() / 16.0f}, Vector()};
}

void PrintValues()
{
    const Matrix a = Transform();
    const Matrix b = Transform();
    Print("rotation and translation", a);
    Print("product", a * b);
    Matrix inverse;
    Inverse(inverse, a);
    Print("inverse", inverse);
    Vec3 v = Vector();
    const Vec3 w = Vector();
    TransformPoint(v, a);
    Print("point", v);
    TransformDirection(v, b);
    Print("direction", v);
    Print("direction from angles", DirectionFromAngles(v));
    Print("sum of products", v * 3.1f + w * Number() - w);
    Print("dot", Dot(v, w));
    Print("cross", Cross(v, w));
    Print("length", Length(v));
    Print("unit", Normalized(v));
    TBBox<float> box;
    box.Extend(v);
    box.Extend(w);
    Print("box", box);
    Print("centre", box.Center());
    Print("half extent", box.HalfExtent());
    Print("centre moved", box.Center() * 0.7f + v);
    Print("to the toolkit and back", QMatrix4x4ToMatrix(MatrixToQMatrix4x4(a)) * b);
    Print("texture", QTransformToMatrix2(Matrix2ToQTransform(Matrix2(v.x, v.y, v.z, w.x, w.y, w.z))));
    Print("color", ColorToQColor({v.x, v.y / 8.0f, w.z, 1.0f}).name());
    Print("color from bytes", QColorToColorF(QColor(1, 77, 200)));
    QRectF rect(double(v.x), double(v.y), double(w.x), double(w.y));
    Print("rectangle", QRectFToQVariant(rect).toString());
    const QRectF read = QVariantToQRectF(QRectFToQVariant(rect), QRectF());
    Print("rectangle read", QString::number(read.x(), 'g', 17) + ' ' + QString::number(read.height(), 'g', 17));
    Print("millimetres", pixelsToMM(v.x, 96.0f) + mmToPixels(w.x, 96.0f));
}

/// Prints what it is handed.
class PrintingBuilder : public IMeshNodeBuilder {
public:
    void BeginModel(const QString&, std::size_t) override {}
    void EndModel() override {}
    void AddMeshNode(const QString& name, std::vector<MeshVertex>& vertices, std::vector<unsigned int>& indices,
                     const QString&, const QMap<QString, QVariant>&) override
    {
        Print("mesh", name);
        for (const MeshVertex& vertex : vertices)
            Print("vertex", vertex);
        std::printf("triangles %zu\n", indices.size() / 3);
    }
};

void PrintSkin()
{
    Scene scene;
    scene.scale = Vector();
    scene.offset = Vector();
    scene.animations.push_back(new Animation);
    scene.animations[0]->layers.resize(1);
    for (int i = 0; i < 4; ++i) {
        Node* const parent = i == 0 ? nullptr : scene.nodes[static_cast<std::size_t>(i) / 2];
        auto* const node = new Node(QString::number(i), Transform(), Transform(), parent);
        node->normalCount = 3;
        scene.nodes.push_back(node);
        if (parent)
            parent->children.push_back(node);
        else
            scene.root = node;

        auto* const geometry = new Geometry(QString::number(i), i % 2 == 0);
        node->geometries.push_back(geometry);
        for (std::uint32_t corner = 0; corner < 6; ++corner) {
            SkinVertex vertex;
            vertex.position = Vector();
            vertex.normal = Vector();
            vertex.texCoord = {Number(), Number()};
            for (int j = 0; j < 4; ++j) {
                vertex.boneIndices[j] = static_cast<std::uint16_t>(j);
                vertex.weights[j] = static_cast<float>(j + 1) / 10.0f;
            }
            geometry->vertices.push_back(vertex);
            geometry->indices.push_back(corner);
            if (i == 0)
                geometry->normalIndices.push_back(corner % 3);
        }

        NodeTrack track;
        track.node = node;
        for (int k = 0; k < 40; ++k)
            track.keys.push_back(Key(static_cast<float>(k)));
        scene.animations[0]->layers[0].tracks.push_back(track);
    }
    scene.nodes[3]->SetOriginGlobalTransform(Transform());
    scene.AppendClippedAnimation(0, QStringLiteral("clip"), 7.3f, 31.7f);
    for (const KeyFrame& key : scene.animations[1]->layers[0].tracks[1].keys)
        Print("key", key);

    PrintingBuilder builder;
    for (int animation = 0; animation < 2; ++animation) {
        scene.CalculateAnimation(animation, 11.1f);
        for (const Node* node : scene.nodes)
            Print("skin transform", node->skinTransformInverse);
        scene.UpdateBoundingBox();
        Print("bounding box", scene.boundingBox);
        scene.CreateMeshes(builder);
        scene.SetMeshVisibility(QStringLiteral("1"), false);
    }
    try {
        scene.CalculateAnimation(2, 0.0f);
    } catch (const InvalidParameterException& e) {
        Print("refused", e.GetErrorText());
    }
}

} // namespace

int main()
{
    for (int round = 0; round < 20; ++round)
        PrintValues();
    PrintSkin();
    return std::fflush(stdout) == 0 ? 0 : 1;
}
