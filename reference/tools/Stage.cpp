#include "reference/tools/Stage.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IMaterial.h"
#include "lumenta/interfaces/INode.h"
#include "reference/tools/DocumentSource.h"
#include "reference/tools/Failure.h"
#include "reference/tools/ModelSource.h"
#include "reference/tools/Texts.h"

namespace Host {

Stage::Stage(Model&& model, const RenderOptions& options, ProgressBar& bar)
    : m_document(NewDocument())
{
    Scene& scene = GetScene();
    scene.SetStopwatch(options.pStopwatch);
    const QString source = model.fileName;
    Hide(model, options.hiddenMeshes, options.hiddenMaterials);
    QStringList problems = model.warnings;
    QMap<QString, QImage> textures;
    if (!options.fileName.isEmpty()) {
        const Timed timed(options.pStopwatch, eStageReading);
        textures = LoadTextures(model, problems);
    }
    model.up = options.up.value_or(model.up);
    try {
        const Timed timed(options.pStopwatch, eStageDocument);
        m_model = scene.AddModel(std::move(model), scene.GetRoot(), textures);
        // Files seldom say it, and picking meets either side.
        for (IMaterial* const material : scene.GetMaterials())
            material->SetTwoSided(true);
        scene.SetGroundPlaneEnabled(options.ground);
        const Timed framing(options.pStopwatch, eStageFraming);
        m_sequence.emplace(scene, m_model, options.take, bar.Part(QStringLiteral("posing"), kLoaded, kPlanned));
    } catch (const Exception& exception) {
        throw FailureOf(exception, source);
    }
    if (!problems.isEmpty()) bar.Clear();
    for (const QString& problem : qAsConst(problems))
        PrintWarning(source, problem);
}

Stage::Stage(std::unique_ptr<Document> document, const QString& source, const RenderOptions& options, ProgressBar& bar)
    : m_document(std::move(document))
{
    if (!options.ground) GetScene().SetGroundPlaneEnabled(false);
    try {
        const Timed framing(options.pStopwatch, eStageFraming);
        m_sequence.emplace(GetScene(), nullptr, options.take, bar.Part(QStringLiteral("looking"), kLoaded, kPlanned));
    } catch (const Exception& exception) {
        throw FailureOf(exception, source);
    }
}

} // namespace Host
