#include "reference/plugins/assimp-exporter/ExportFormats.h"

namespace Host {

namespace {

struct Entry {
    const char* title;
    const char* extension;
    ExportTraits traits;
};

// FBX as text: of its binary form Assimp 5.2 writes what it refuses to read. And
// without images: some of those that it writes there end the process that reads
// them.
constexpr Entry kEntries[] = {
    {"glTF 2.0, one file", "glb", {"glb2", true, true, true, true, true}},
    {"glTF 2.0", "gltf", {"gltf2", true, true, true, true, true}},
    {"Autodesk FBX", "fbx", {"fbxa", true, false, false, true, false}},
    {"Collada", "dae", {"collada", true, false, true, true, false}},
    {"Wavefront OBJ", "obj", {"obj", false, false, false, true, false}},
    {"Stereolithography", "stl", {"stlb", false, false, false, false, false}},
    {"Stanford Polygon Library", "ply", {"plyb", false, false, false, false, false}},
};

std::vector<sModelExportFormat> CollectFormats()
{
    std::vector<sModelExportFormat> formats;
    for (const Entry& entry : kEntries) {
        const QString title = QLatin1String(entry.title), extension = QLatin1String(entry.extension);
        formats.push_back({extension, title, QStringLiteral("%1 (*.%2)").arg(title, extension), {extension}});
    }
    return formats;
}

} // namespace

const std::vector<sModelExportFormat>& ExportFormats()
{
    static const std::vector<sModelExportFormat> formats = CollectFormats();
    return formats;
}

const ExportTraits& TraitsOf(std::size_t nFormat)
{
    return kEntries[nFormat].traits;
}

} // namespace Host
