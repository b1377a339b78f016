#include "lumenta/platform/IApplicationContext.h"
#include "lumenta/platform/IDocumentContext.h"
#include "lumenta/platform/IFileSource.h"
#include "lumenta/platform/IModelFormats.h"
#include "lumenta/properties/PropertyWidgetHelper.h"
#include "tests/foundation/Exact.h"
#include "tests/serializers/ServiceStandIns.h"

namespace {

using namespace StandIn;

struct Models final : IModelFormats {
    std::vector<ModelFormatInfo> formats{{"t", "Waves", {"obj", "mtl"}}, {"t", "Scans", {"ply"}}};

    const std::vector<ModelFormatInfo>& GetModelFormats() const override { return formats; }
};

struct Host final : IApplicationContext, IDocumentContext {
    mutable ImageManager images;
    mutable UserInterface ui;
    Models models;
    PropertyWidgetHelper helper{*this, *this};

    Host() { images.loaders = {{"t", "Nets", {"png", "mng"}}, {"t", "Photos", {"jpg"}}}; }
    // clang-format off: nothing to be read here
    IUserInterface* GetUserInterface() const override { return &ui; } IScene* GetScene() const override { No(); }
    IImageManager* GetImageManager() const override { return &images; } ILog* GetLog() const override { No(); }
    const IModelFormats* GetModelFormats() const override { return &models; }
    const ISerializersRegistry* GetSerializers() const override { No(); }
    IScriptRunner* GetScriptRunner() const override { No(); } ISettings* GetSettings() const override { No(); }
    // clang-format on
};

/// What the user interface is asked for until the dialog is gone, and what then
/// has become of the path "/old".
QString Opened(const char* kind, const QString& chosen)
{
    Host host;
    host.ui.answer = chosen;
    const QScopedPointer<IFileSource> source(host.helper.CreateFileSource(kind));
    QString path = "/old", answer;
    try {
        answer = source->ShowOpenDialog(&host.ui, path) ? " took " : " kept ";
    } catch (const QString&) {
        answer = " threw, kept ";
    }
    return host.ui.asked.join(' ') + answer + path;
}

} // namespace

class PropertiesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Dialogs_data()
    {
        AnswerColumns();
        const QString images = "[dialog 1] Nets png mng Photos jpg [Open File||/old] [deleted] ";
        const QString models = "[dialog 4 in front] Waves obj mtl Scans ply [Open File||/old] [deleted] ";
        Row("an image is chosen", Opened("image", "/new"), images + "took /new");
        Row("no image is chosen", Opened("image", ""), images + "kept /old");
        Row("an image dialog that fails", Opened("image", "!"), images + "threw, kept /old");
        Row("a model is chosen", Opened("model", "/new"), models + "took /new");
        Row("no model is chosen", Opened("model", ""), models + "kept /old");
        Row("a model dialog that fails", Opened("model", "!"), models + "threw, kept /old");
    }

    void Dialogs() { CompareAnswer(); }

    void Sources()
    {
        Host host;
        const QScopedPointer<IFileSource> images(host.helper.CreateFileSource("image"));
        const QScopedPointer<IFileSource> models(host.helper.CreateFileSource("model"));
        QVERIFY(images->inherits("FileSource") && models->inherits("ModelSourceImpl"));
        QVERIFY(!images->parent() && !models->parent() && !host.helper.CreateFileSource("Image"));
        QVERIFY(!host.helper.CreateFileSource("Model") && !host.helper.CreateFileSource(""));
        QVERIFY(images->GetOfferedFiles() == host.images.GetRecentFiles() && models->GetOfferedFiles().isEmpty());
        host.images.recent = QStringList("/latest.png");
        QCOMPARE(images->GetOfferedFiles(), QStringList("/latest.png"));
        QVERIFY(images->AcceptsFile("photo.JPG") && !images->AcceptsFile("png") && !images->AcceptsFile("a.obj"));
        QVERIFY(models->AcceptsFile("a.b.PLY") && !models->AcceptsFile("obj") && !models->AcceptsFile("a.png"));
    }
};

QTEST_APPLESS_MAIN(PropertiesTest)
#include "properties_test.moc"
