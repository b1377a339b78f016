#include "reference/plugins/assimp-exporter/MeshWriter.h"

#include "lumenta/foundation/MeshVertex.h"
#include "lumenta/interfaces/IMesh.h"

#include <assimp/mesh.h>

#include <algorithm>

namespace Host {

namespace {

aiVector3D ToAssimp(const TVec3<float>& v)
{
    return {v.x, v.y, v.z};
}

TVec3<float> Row(const Matrix& matrix, int row)
{
    return {matrix(row, 0), matrix(row, 1), matrix(row, 2)};
}

/// The inverse transpose, so that normals stay upright on what is stretched.
Matrix NormalMatrix(const Matrix& placement)
{
    Matrix inverse;
    if (!Inverse(inverse, placement)) return placement;
    Matrix transposed;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            transposed(row, column) = inverse(column, row); // NOLINT(readability-suspicious-call-argument): it turns
    return transposed;
}

void WriteVertices(const std::vector<MeshVertex>& vertices, const Matrix& placement, const Matrix2& texture,
                   aiMesh& target)
{
    const Matrix normals = NormalMatrix(placement);
    target.mVertices = new aiVector3D[vertices.size()];
    target.mNormals = new aiVector3D[vertices.size()];
    target.mTextureCoords[0] = new aiVector3D[vertices.size()];
    target.mNumUVComponents[0] = 2;
    target.mNumVertices = static_cast<unsigned int>(vertices.size());
    const float* const t = texture.m;
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        TVec3<float> position = vertices[i].position, normal = vertices[i].normal;
        TransformPoint(position, placement);
        TransformDirection(normal, normals);
        const TVec2<float>& uv = vertices[i].texCoord;
        target.mVertices[i] = ToAssimp(position);
        target.mNormals[i] = ToAssimp(Normalized(normal));
        target.mTextureCoords[0][i] = {uv.x * t[0] + uv.y * t[3] + t[6], 1.0f - (uv.x * t[1] + uv.y * t[4] + t[7]),
                                       0.0f};
    }
}

void WriteTriangles(const std::vector<unsigned int>& indices, bool isMirrored, aiMesh& target)
{
    const std::size_t count = indices.size() / 3;
    target.mPrimitiveTypes = aiPrimitiveType_TRIANGLE;
    target.mFaces = new aiFace[count];
    target.mNumFaces = static_cast<unsigned int>(count);
    for (std::size_t i = 0; i < count; ++i) {
        aiFace& face = target.mFaces[i];
        face.mIndices = new unsigned int[3];
        face.mNumIndices = 3;
        std::copy_n(indices.begin() + static_cast<std::ptrdiff_t>(3 * i), 3, face.mIndices);
        if (!isMirrored) std::swap(face.mIndices[1], face.mIndices[2]);
    }
}

/// Whether what is placed so has its left where its right was.
bool IsMirroring(const Matrix& matrix)
{
    return Dot(Cross(Row(matrix, 0), Row(matrix, 1)), Row(matrix, 2)) < 0.0f;
}

} // namespace

std::unique_ptr<aiMesh> WriteMesh(const IMesh& mesh, const Matrix& placement, const Matrix2& texture,
                                  unsigned int nMaterial)
{
    auto target = std::make_unique<aiMesh>();
    target->mName = mesh.GetName().toUtf8().constData();
    target->mMaterialIndex = nMaterial;
    WriteVertices(mesh.GetVertices(), placement, texture, *target);
    WriteTriangles(mesh.GetIndices(), IsMirroring(placement), *target);
    return target;
}

} // namespace Host
