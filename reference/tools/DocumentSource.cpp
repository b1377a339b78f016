#include "reference/tools/DocumentSource.h"

#include "lumenta/files/Paths.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IImage.h"
#include "reference/host/services/SilentUserInterface.h"
#include "reference/tools/Failure.h"
#include "reference/tools/ModelSource.h"
#include "reference/tools/Services.h"
#include "reference/tools/Stage.h"
#include "reference/tools/Texts.h"

#include <QFileInfo>

namespace Host {

QString DocumentSourceText()
{
    return QStringLiteral("In place of a model a document (.lumenta) will do, or what a generator makes, such as "
                          ":bottle.");
}

bool IsDocument(const QString& source)
{
    if (!source.startsWith(QLatin1Char(':'))) return TheApplication().IsSceneFile(source);
    const QStringList names = TheApplication().BuiltInNames();
    return names.indexOf(source.mid(1)) > 0; // the first is a model
}

std::unique_ptr<Document> NewDocument()
{
    auto document = std::make_unique<Document>(TheApplication());
    document->SetUserInterface(new SilentUserInterface(*TheApplication().GetLog(), document.get()));
    return document;
}

std::unique_ptr<Document> OpenDocument(const QString& source, ProgressBar& bar)
{
    QStringList warnings;
    std::unique_ptr<Document> document = OpenDocument(source, bar, warnings);
    for (const QString& warning : qAsConst(warnings))
        PrintWarning(source, warning);
    return document;
}

std::unique_ptr<Document> OpenDocument(const QString& source, ProgressBar& bar, QStringList& warnings)
{
    RequireBuiltIn(source);
    auto document = NewDocument();
    try {
        const Progress progress = bar.Part(QStringLiteral("reading"), 0, kLoaded);
        if (progress) progress(0);
        warnings = document->Open(source);
        bar.Clear();
    } catch (const Exception& exception) {
        throw FailureOf(exception, source);
    }
    return document;
}

void RefuseModelOptions(const Arguments& arguments, const QString& source)
{
    if (!IsDocument(source)) return;
    for (const QString& option : {QStringLiteral("animation"), QStringLiteral("time"), QStringLiteral("up"),
                                  QStringLiteral("hide-mesh"), QStringLiteral("hide-material")})
        if (arguments.Has(option))
            arguments.Reject(QStringLiteral("--%1 is for models, and %2 is a document").arg(option, Quoted(source)));
}

QStringList InputFiles(const IScene& scene, const QString& source)
{
    const QString folder = QFileInfo(source).absolutePath();
    QStringList files(source);
    for (const IMaterial* const material : scene.GetMaterials())
        for (int slot = 0; slot < eMaterialSlotCount; ++slot)
            files += TryToFindFilePessimistic(material->GetImageFile(static_cast<eMaterialSlot>(slot)), folder);
    if (const IImage* const background = scene.GetBackgroundImage())
        files += TryToFindFilePessimistic(background->GetFileName(), folder);
    return files;
}

} // namespace Host
