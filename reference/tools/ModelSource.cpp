#include "reference/tools/ModelSource.h"

#include "lumenta/foundation/Exceptions.h"
#include "reference/host/images/ImageReading.h"
#include "reference/host/SampleFigure.h"
#include "reference/tools/Failure.h"
#include "reference/tools/Services.h"
#include "reference/tools/Texts.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

namespace Host {

namespace {

const QString kFigure = QStringLiteral(":figure");

/// The file of a texture, from the places where it may lie, best first; empty
/// where it lies in none.
QString TextureFile(const Model& model, const QString& texture)
{
    const QDir folder = QFileInfo(model.fileName).dir();
    // Many files were written where folders are parted by backslashes.
    const QString path = QString(texture).replace(QLatin1Char('\\'), QLatin1Char('/'));
    for (const QString& place : {texture, path, QFileInfo(path).fileName()})
        if (QFileInfo(folder, place).isFile()) return folder.filePath(place);
    return {};
}

QImage LoadTexture(const Model& model, const QString& texture, QString& problem)
{
    const QString file = TextureFile(model, texture);
    if (file.isEmpty()) {
        problem = QStringLiteral("texture %1 was not found").arg(Quoted(texture));
        return model.embeddedImages.value(texture);
    }
    QString reason;
    const QImage image = ReadImage(file, reason);
    problem = QStringLiteral("texture %1 cannot be read: %2").arg(Quoted(texture), reason);
    return image.isNull() ? model.embeddedImages.value(texture) : image;
}

/// "0 'walk', 1 'wave'"
QString NumberedNames(const QStringList& names)
{
    QStringList numbered;
    for (const QString& name : names)
        numbered += QStringLiteral("%1 %2").arg(QString::number(numbered.size()), Quoted(name));
    return numbered.join(QStringLiteral(", "));
}

QString TextureOf(const SkinAnimation::Geometry& geometry)
{
    return geometry.materialParameters.value(QStringLiteral("texture")).toString();
}

template <typename NameOf>
void RequireName(const Model& model, const QString& name, const QString& kind, const NameOf& nameOf)
{
    QStringList names;
    for (const SkinAnimation::Geometry* geometry : GeometriesOf(*model.scene))
        names += nameOf(*geometry);
    if (!names.contains(name))
        throw Failure{model.fileName,
                      QStringLiteral("no %1 is named %2; there are: %3").arg(kind, Quoted(name), QuotedList(names))};
}

} // namespace

QString ModelSourceText()
{
    return QStringLiteral("MODEL is a file of any format that Assimp reads, or :figure for a small animated figure "
                          "that is built in. A file of that name is ./:figure.");
}

void RequireBuiltIn(const QString& source)
{
    if (!source.startsWith(QLatin1Char(':'))) return;
    const QStringList names = TheApplication().BuiltInNames();
    if (names.contains(source.mid(1))) return;
    throw Failure{source, QStringLiteral("no such built-in model; there %1 :%2")
                              .arg(names.size() == 1 ? QStringLiteral("is") : QStringLiteral("are"),
                                   names.join(QStringLiteral(", :")))};
}

Model OpenModel(const QString& source, const Progress& progress)
{
    RequireBuiltIn(source);
    try {
        Model model = source == kFigure ? MakeSampleFigure() : TheApplication().ReadModel(source, progress);
        model.fileName = source;
        return model;
    } catch (const Exception& exception) {
        throw FailureOf(exception, source);
    }
}

int FindAnimation(const QStringList& names, const QString& source, const QString& nameOrNumber)
{
    if (names.isEmpty()) throw Failure{source, QStringLiteral("the model has no animation")};
    const int named = names.indexOf(nameOrNumber);
    if (named >= 0) return named;

    static const QRegularExpression whole(QStringLiteral("\\A-?[0-9]+\\z"));
    if (whole.match(nameOrNumber).hasMatch()) {
        bool fits = false;
        const int number = nameOrNumber.toInt(&fits);
        if (fits && number >= 0 && number < names.size()) return number;
        throw Failure{source, QStringLiteral("no animation has the number %1; there are: %2")
                                  .arg(nameOrNumber, NumberedNames(names))};
    }
    throw Failure{source, QStringLiteral("no animation is named %1; there are: %2")
                              .arg(Quoted(nameOrNumber), QuotedList(names))};
}

int FindAnimation(const Model& model, const QString& nameOrNumber)
{
    QStringList names;
    for (const SkinAnimation::Animation* animation : model.scene->animations)
        names += animation->name;
    return FindAnimation(names, model.fileName, nameOrNumber);
}

std::optional<int> FindShownAnimation(const Model& model, const Arguments& arguments, bool plays)
{
    if (arguments.Has(QStringLiteral("animation")))
        return FindAnimation(model, arguments.Text(QStringLiteral("animation")));
    return plays ? std::optional(FindAnimation(model, QStringLiteral("0"))) : std::nullopt;
}

void Hide(Model& model, const QStringList& meshes, const QStringList& materials)
{
    for (const QString& name : meshes) {
        RequireName(model, name, QStringLiteral("mesh"), [](const auto& geometry) { return geometry.name; });
        model.scene->SetMeshVisibility(name, false);
    }
    for (const QString& name : materials) {
        RequireName(model, name, QStringLiteral("material"),
                    [](const auto& geometry) { return geometry.materialName; });
        model.scene->SetMaterialVisibility(name, false);
    }
    const auto geometries = GeometriesOf(*model.scene);
    if (std::none_of(geometries.begin(), geometries.end(), [](const auto* geometry) { return geometry->visible; }))
        throw Failure{model.fileName, QStringLiteral("every mesh is hidden, nothing is left to draw")};
}

QMap<QString, QImage> LoadTextures(const Model& model, QStringList& missing)
{
    QMap<QString, QImage> textures;
    QStringList tried;
    for (const SkinAnimation::Geometry* geometry : GeometriesOf(*model.scene)) {
        const QString texture = TextureOf(*geometry);
        if (!geometry->visible || texture.isEmpty() || tried.contains(texture)) continue;
        tried += texture;

        QString problem;
        const QImage image = LoadTexture(model, texture, problem);
        if (image.isNull())
            missing += problem;
        else
            textures.insert(texture, image);
    }
    return textures;
}

QStringList InputFiles(const Model& model)
{
    QStringList files(model.fileName);
    for (const SkinAnimation::Geometry* geometry : GeometriesOf(*model.scene))
        files += TextureFile(model, TextureOf(*geometry));
    return files;
}

std::vector<const SkinAnimation::Geometry*> GeometriesOf(const SkinAnimation::Scene& scene)
{
    std::vector<const SkinAnimation::Geometry*> geometries;
    for (const SkinAnimation::Node* node : scene.nodes)
        geometries.insert(geometries.end(), node->geometries.begin(), node->geometries.end());
    return geometries;
}

} // namespace Host
