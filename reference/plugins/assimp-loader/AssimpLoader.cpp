#include "reference/plugins/assimp-loader/AssimpLoader.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/plugins/assimp-loader/BoneBinder.h"
#include "reference/plugins/assimp-loader/MeshReader.h"
#include "reference/plugins/assimp-loader/MetadataReader.h"
#include "reference/plugins/assimp-loader/Report.h"
#include "reference/plugins/assimp-loader/TrackReader.h"

#include <QFile>
#include <QFileInfo>

#include <assimp/Importer.hpp>
#include <assimp/ProgressHandler.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <exception>

namespace Host {

namespace {

/// Passes the percentage on, as long as it grows. Assimp has no way for an
/// exception, so one that the listener throws waits here.
class ProgressRelay final : public Assimp::ProgressHandler {
public:
    ProgressRelay(const Progress& progress, std::exception_ptr& failure)
        : m_progress(progress)
        , m_failure(failure)
    {
    }

    bool Update(float fraction) override
    {
        if (!m_progress || m_failure || !(fraction >= 0.0f && fraction <= 1.0f))
            return !m_failure;
        const int percent = static_cast<int>(fraction * kPercentOfImport);
        if (percent <= m_percent)
            return true;
        m_percent = percent;
        try {
            m_progress(percent);
        } catch (...) {
            m_failure = std::current_exception();
        }
        return !m_failure;
    }

private:
    /// Assimp's own share of the work.
    static constexpr float kPercentOfImport = 90.0f;

    const Progress& m_progress;
    std::exception_ptr& m_failure;
    int m_percent = -1;
};

void CheckFile(const QString& strFileName)
{
    const QFileInfo info(strFileName);
    if (!info.exists())
        throw FileException(strFileName, QStringLiteral("The model file does not exist"));
    if (info.isDir())
        throw FileException(strFileName, QStringLiteral("A model file was expected, but this is a folder"));
    // A pipe would be waited for without end.
    if (!info.isFile())
        throw FileException(strFileName, QStringLiteral("The model file is not a regular file"));
    QFile file(strFileName);
    if (!file.open(QIODevice::ReadOnly))
        throw FileException(strFileName, QStringLiteral("The model file can't be read: %1").arg(file.errorString()));
    if (file.size() == 0)
        throw FileException(strFileName, QStringLiteral("The model file is empty"));
}

/// Assimp's words, without the file name that ours begin with.
QString ReasonOf(const char* errorText)
{
    const QString text = QString::fromUtf8(errorText).simplified();
    if (text.startsWith(QLatin1String("No suitable reader found")))
        return QStringLiteral("its format is unknown");
    return text.isEmpty() ? QStringLiteral("its content makes no sense") : text;
}

bool IsSound(const aiFace& face, const aiMesh& mesh)
{
    return face.mNumIndices > 0
        && std::all_of(face.mIndices, face.mIndices + face.mNumIndices,
                       [&](unsigned int index) { return index < mesh.mNumVertices; });
}

/// Damaged files can have faces that Assimp reads but cannot divide into
/// triangles: it would end the process.
void RefuseBrokenFaces(const aiScene& source, const Report& report)
{
    for (unsigned int i = 0; i < source.mNumMeshes; ++i) {
        const aiMesh& mesh = *source.mMeshes[i];
        if (!std::all_of(mesh.mFaces, mesh.mFaces + mesh.mNumFaces,
                         [&](const aiFace& face) { return IsSound(face, mesh); }))
            report.Refuse(QStringLiteral("mesh '%1' has faces whose corners are missing").arg(ToText(mesh.mName)));
    }
}

/// Null where Assimp fails; its words are then in the importer. Null, too, once
/// there is a failure of the listener's.
const aiScene* Import(Assimp::Importer& importer, const QString& strFileName, const std::exception_ptr& failure,
                      const Report& report)
{
    try {
        const aiScene* const source = importer.ReadFile(QFile::encodeName(strFileName).constData(), 0);
        if (!source || failure)
            return nullptr;
        RefuseBrokenFaces(*source, report);
        return importer.ApplyPostProcessing(AssimpImportFlags());
    } catch (const std::exception& exception) {
        report.Refuse(ReasonOf(exception.what()));
    }
}

/// Geometries of one node, one for each of its meshes that has triangles.
void ReadMeshesOfNode(const aiScene& source, const NodeTable& nodes, std::size_t index,
                      const std::vector<ReadMaterial>& materials, BoneBinder& binder, Report& report)
{
    const aiNode& file = *nodes[index].source;
    SkinAnimation::Node& node = *nodes[index].node;
    std::vector<SkinAnimation::Geometry*> withoutNormals;
    for (unsigned int i = 0; i < file.mNumMeshes; ++i) {
        if (file.mMeshes[i] >= source.mNumMeshes)
            continue;
        const aiMesh& mesh = *source.mMeshes[file.mMeshes[i]];
        const QString name = mesh.mName.length > 0 ? ToText(mesh.mName) : node.name;
        const ReadMaterial material =
            mesh.mMaterialIndex < materials.size() ? materials[mesh.mMaterialIndex] : ReadMaterial();
        auto geometry = ReadMesh(mesh, name, material, report);
        if (!geometry)
            continue;
        binder.Bind(mesh, index, *geometry);
        if (!HasUsableNormals(mesh))
            withoutNormals.push_back(geometry.get());
        node.geometries.push_back(geometry.get());
        geometry.release();
    }
    ShareNormals(node, withoutNormals);
}

bool HasGeometry(const SkinAnimation::Scene& scene)
{
    return std::any_of(scene.nodes.begin(), scene.nodes.end(),
                       [](const SkinAnimation::Node* node) { return !node->geometries.empty(); });
}

/// Brings all matrices up to date with the local transforms: that is what
/// posing does with an animation that moves nothing.
void PoseAtRest(SkinAnimation::Scene& scene)
{
    SkinAnimation::Animation rest;
    rest.layers.resize(1);
    std::vector<SkinAnimation::Animation*> onlyRest{&rest};
    scene.animations.swap(onlyRest);
    scene.CalculateAnimation(0, 0.0f);
    scene.animations.swap(onlyRest);
}

} // namespace

Model LoadModel(const QString& strFileName, const Progress& progress, double ticksPerSecond)
{
    CheckFile(strFileName);

    std::exception_ptr failure;
    Assimp::Importer importer;
    importer.SetProgressHandler(new ProgressRelay(progress, failure));
    const Report report(strFileName);
    const aiScene* const source = Import(importer, strFileName, failure, report);
    if (failure)
        std::rethrow_exception(failure);
    if (!source)
        report.Refuse(ReasonOf(importer.GetErrorString()));

    Model model = ModelFromAssimp(*source, strFileName, ticksPerSecond);
    if (progress)
        progress(100);
    return model;
}

Model ModelFromAssimp(const aiScene& source, const QString& strFileName, double ticksPerSecond)
{
    Report report(strFileName);
    if (!source.mRootNode)
        report.Refuse(QStringLiteral("it holds no nodes"));

    Model model;
    model.fileName = strFileName;
    model.up = UpAxisOf(source);
    model.millimetersPerUnit = MillimetersPerUnitOf(source);
    model.metadata = ReadMetadata(source);
    model.scene = std::make_unique<SkinAnimation::Scene>();
    SkinAnimation::Scene& scene = *model.scene;

    const std::vector<ReadMaterial> materials = ReadMaterials(source, model.embeddedImages, report);
    for (const ReadMaterial& read : materials)
        model.materials.push_back(read.material);

    const NodeTable nodes(source, scene, report);
    BoneBinder binder(nodes, scene, report);
    for (std::size_t i = 0; i < nodes.Size(); ++i)
        ReadMeshesOfNode(source, nodes, i, materials, binder, report);
    if (!HasGeometry(scene))
        report.Refuse(QStringLiteral("it holds no usable triangles"));

    for (unsigned int i = 0; i < source.mNumAnimations; ++i) {
        auto animation = ReadAnimation(*source.mAnimations[i], ticksPerSecond, nodes, binder.Bones(), report);
        scene.animations.push_back(animation.get());
        animation.release();
    }
    PoseAtRest(scene);
    FaceOutwards(scene);
    model.warnings = report.Warnings();
    return model;
}

unsigned int AssimpImportFlags()
{
    return aiProcess_Triangulate | aiProcess_GenUVCoords | aiProcess_TransformUVCoords;
}

} // namespace Host
