#include "TriangleLoader.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/skin/Geometry.h"
#include "lumenta/skin/Node.h"

#include <QColor>
#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace {

[[noreturn]] void Refuse(const QString& fileName, const QString& reason)
{
    throw LoadingException(QStringLiteral("The model '%1' can't be loaded: %2").arg(fileName, reason));
}

/// The numbers of a line; none for a remark or an empty line.
std::vector<float> NumbersIn(const QString& line, const QString& where, const QString& fileName)
{
    static const QRegularExpression space(QStringLiteral("\\s+"));
    const QStringList words = line.split(space, Qt::SkipEmptyParts);
    if (words.isEmpty() || words.first().startsWith(QLatin1Char('#')))
        return {};
    std::vector<float> numbers;
    for (const QString& word : words) {
        bool isNumber = false;
        numbers.push_back(word.toFloat(&isNumber));
        if (!isNumber || !std::isfinite(numbers.back()))
            Refuse(fileName, QStringLiteral("%1: '%2' is no number").arg(where, word));
    }
    if (numbers.size() != 9)
        Refuse(fileName, QStringLiteral("%1: a triangle has 9 numbers, not %2").arg(where).arg(numbers.size()));
    return numbers;
}

void AddTriangle(SkinAnimation::Geometry& geometry, const std::vector<float>& n)
{
    const auto first = static_cast<std::uint32_t>(geometry.vertices.size());
    for (std::size_t corner = 0; corner < 3; ++corner) {
        SkinAnimation::SkinVertex vertex;
        vertex.position = {n[3 * corner], n[3 * corner + 1], n[3 * corner + 2]};
        vertex.normal = vertex.tangent = vertex.bitangent = {0.0f, 0.0f, 0.0f};
        vertex.texCoord = {0.0f, 0.0f};
        vertex.handedness = 1.0f;
        geometry.vertices.push_back(vertex);
    }
    // The contract wants them clockwise.
    geometry.indices.insert(geometry.indices.end(), {first, first + 2, first + 1});
    // The corners of a triangle share one normal, which posing computes.
    geometry.normalIndices.insert(geometry.normalIndices.end(), 3, first / 3);
}

} // namespace

const std::vector<ModelFormatInfo>& TriangleLoader::GetFormats() const
{
    static const std::vector<ModelFormatInfo> formats{{QStringLiteral("Triangles"),
                                                       QStringLiteral("Triangles in plain text (*.tri)"),
                                                       QStringList(QStringLiteral("tri"))}};
    return formats;
}

void TriangleLoader::Load(const QString& strFileName)
{
    m_scene.reset();
    m_materials.clear();
    m_isCancelled = false;

    QFile file(strFileName);
    if (!file.open(QIODevice::ReadOnly))
        throw FileException(strFileName, QStringLiteral("The model file can't be read: ") + file.errorString());

    auto geometry = std::make_unique<SkinAnimation::Geometry>(QStringLiteral("triangles"), false);
    int percent = -1;
    for (int line = 1; !file.atEnd(); ++line) {
        const QString where = QStringLiteral("line %1").arg(line);
        const std::vector<float> numbers = NumbersIn(QString::fromUtf8(file.readLine()), where, strFileName);
        if (!numbers.empty())
            AddTriangle(*geometry, numbers);

        const int reached = static_cast<int>(100 * file.pos() / std::max(file.pos(), file.size()));
        if (reached > percent) {
            percent = reached;
            Q_EMIT loadingProgress(percent);
        }
        if (m_isCancelled)
            Refuse(strFileName, QStringLiteral("loading was cancelled"));
    }
    if (geometry->vertices.empty())
        Refuse(strFileName, QStringLiteral("it holds no triangles"));

    m_materials.push_back({QStringLiteral("plain"), {{QStringLiteral("diffuse"), QColor(200, 120, 60)}}});
    geometry->materialName = m_materials.front().name;
    geometry->materialParameters = m_materials.front().parameters;

    auto scene = std::make_unique<SkinAnimation::Scene>();
    scene->root = new SkinAnimation::Node(QStringLiteral("root"), Matrix(), Matrix(), nullptr);
    scene->nodes.push_back(scene->root);
    scene->root->normalCount = geometry->vertices.size() / 3;
    scene->root->geometries.push_back(geometry.get());
    geometry.release();
    m_scene = std::move(scene);
}
