#include "fuzz/Input.h"
#include "lumenta/foundation/Exceptions.h"
#include "reference/host/ApplicationContext.h"
#include "reference/host/document/Scene.h"
#include "reference/plugins/qt-images/QtImageManager.h"
#include "reference/plugins/scene-file/DocumentFile.h"
#include "reference/plugins/scene-file/SceneFileLoader.h"
#include "reference/plugins/scene-file/SceneFileSaver.h"

#include <QFile>
#include <QTemporaryDir>

// A document of a stranger: the file as it is, or, where it does not begin as
// one, the body of a file whose frame fits. It is refused, and then the scene is
// left alone; or it is read, and what is saved of it comes back as it was.

using namespace Host;

namespace {

void WriteFile(const QString& fileName, const QByteArray& bytes)
{
    QFile file(fileName);
    Fuzz::Require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(), "a file can be written");
}

QByteArray Saved(const Scene& scene, const QString& fileName)
{
    SceneFileSaver().Save(fileName, scene);
    QFile file(fileName);
    Fuzz::Require(file.open(QIODevice::ReadOnly), "a document can be read");
    return file.readAll();
}

bool IsLoaded(Scene& scene, const QString& fileName, IImageManager* pImages)
{
    SceneFileLoader loader(pImages);
    try {
        loader.Load(fileName, scene);
    } catch (const LoadingException&) {
        return false;
    }
    return true;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const QTemporaryDir folder;
    static ApplicationContext context;
    const QString file = folder.filePath(QStringLiteral("a.lumenta"));
    const QByteArray bytes = Fuzz::Input(data, size).Rest();
    if (bytes.startsWith("\x8fLUM"))
        WriteFile(file, bytes);
    else
        WriteDocumentFile(file, bytes);

    QtImageManager images(context);
    Scene scene;
    INode* const pRoot = scene.GetRoot();
    INode* const pGroup = pRoot->CreateGroup(QStringLiteral("before"));
    if (!IsLoaded(scene, file, &images)) {
        Fuzz::Require(pRoot->GetChildren() == std::vector<INode*>{pGroup}, "a refused document changes nothing");
        return 0;
    }
    const QByteArray saved = Saved(scene, file);
    Scene again;
    Fuzz::Require(IsLoaded(again, file, &images), "a document that was saved can be opened");
    Fuzz::Require(Saved(again, file) == saved, "a document that was saved comes back");
    return 0;
}
