// Images through the plug-in, as the host loads it.

#include "lumenta/files/WholeFile.h"
#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IImageManager.h"
#include "lumenta/interfaces/IMeshNode.h"
#include "lumenta/interfaces/ISettings.h"
#include "lumenta/platform/IApplicationContext.h"
#include "lumenta/platform/IImageSaver.h"
#include "lumenta/serializers/ImageHelpers.h"
#include "reference/host/document/Scene.h"
#include "reference/host/document/SceneMaterial.h"
#include "reference/host/images/Image.h"
#include "reference/host/PluginHost.h"
#include "tests/foundation/Exact.h"

#include <sys/stat.h>

using namespace Host;

namespace {

struct Application final : IApplicationContext, ISettings {
    QVariant GetValue(const QString& name, const QVariant& usual) const override { return values.value(name, usual); }
    void SetValue(const QString& name, const QVariant& value) override { values[name] = value; }
    // clang-format off: nothing to be read here
    QVariantMap values; ISettings* GetSettings() const override { return const_cast<Application*>(this); }
    IImageManager* GetImageManager() const override { return {}; } ILog* GetLog() const override { return {}; }
    const ISerializersRegistry* GetSerializers() const override { return {}; }
    const IModelFormats* GetModelFormats() const override { return {}; }
    // clang-format on
};

QImage Plain(QRgb color, int width = 3, int height = 2)
{
    QImage image(width, height, QImage::Format_ARGB32);
    return image.fill(color), image; // as it stands, also what is under no alpha
}

/// Size and first pixel of an image; or the error.
template <typename Action>
QString Outcome(Action action)
{
    try {
        const IImage* const image = action();
        const QImage pixels = image ? image->ToQImage() : QImage();
        return QString("%1x%2 %3").arg(pixels.width()).arg(pixels.height()).arg(image ? pixels.pixel(0, 0) : 0, 8, 16);
    } catch (const Exception& error) {
        return error.GetErrorText();
    }
}

} // namespace

class QtImagesTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder; // the current one
    Application m_application;
    PluginHost m_host{m_application};
    std::unique_ptr<IImageManager> m_manager;

    QString Read(const QString& name) { return Outcome([&] { return m_manager->LoadImageFile(name); }); }

    QString Decode(const QByteArray& bytes) { return Outcome([&] { return m_manager->DecodeImage(bytes, "*0"); }); }

    /// What then stands in the file.
    QString Save(const QString& name, const QImage& image, int quality = -1)
    {
        return Outcome([&, saver = QSharedPointer<IImageSaver>(CreateImageSaverByFilename(m_manager.get(), name))] {
            return saver->Save(Image(image), name, quality), m_manager->DecodeImage(ReadAllFile(name), {});
        });
    }

private Q_SLOTS:
    void init()
    {
        QVERIFY(QDir(m_folder.path()).mkpath("doc") && QDir::setCurrent(m_folder.path()));
        QVERIFY(Plain(0xff102030).save("photo.png") && (QFile::link("../photo.png", "doc/link.png") || m_manager));
        m_host.LoadFolder(LUMENTA_PLUGINS);
        m_manager = m_host.CreateService<IImageManager>("qt");
    }

    void Files_data()
    {
        init();
        const QByteArray png = ReadAllFile("photo.png");
        for (const char* name : {"text.png", "text.txt", "kept.png", "kept.ico"}) SaveDataToFile(name, "Dear image,\n");
        SaveDataToFile("png.jpg", png);
        SaveDataToFile("vast.ppm", "P6 30000 30000 255\n");
        QVERIFY(Plain(0xffffffff).save("turned.jpg") && mkfifo("pipe.png", 0600) == 0);
        const QByteArray exif = "4578696600004d4d002a00000008000101120003000000010006000000000000"; // orientation 6
        SaveDataToFile("turned.jpg", ReadAllFile("turned.jpg").insert(2, QByteArray::fromHex("ffe10022" + exif)));
        const QString read = "The image '%1' can't be read: %2", save = "The image can't be saved: %2\nFile: %1";
        AnswerColumns();
        Row("turned by the camera", Read("turned.jpg"), "2x3 ffffffff");
        Row("PNG by another name", Read("png.jpg"), "3x2 ff102030");
        for (const char* none : {"nowhere.png", "doc", "pipe.png", ""}) Row(none, Read(none), "0x0        0");
        Row("text as text", Read("text.txt"), read.arg("text.txt", "its format is unknown"));
        Row("immense", Read("vast.ppm"), read.arg("vast.ppm", "30000 by 30000 pixels are too many"));
        int nRead = 0;
        for (int size = png.size() - 13; size >= 0; --size) nRead += !Decode(png.left(size)).contains("can't be read");
        Row("each beginning of a file is an error", QString::number(nRead), "0");
        Row("decoded", Decode(png), "3x2 ff102030");
        Row("its name is taken", Decode("?"), "3x2 ff102030");
        Row("its name can be asked for like a file", Read("*0"), "3x2 ff102030");
        Row("PNG keeps what is under no alpha", Save("new.PNG", Plain(0x01ff8002), 0), "3x2  1ff8002");
        Row("PNG has one quality", (Save("q.png", Plain(1, 99), 100), ReadAllFile("q.png").size() < 400) ? "" : "large", "");
        Row("over white where alpha can't be held", Save("new.jpg", Plain(0x80000000), 100), "3x2 ff7f7f7f");
        Row("WebP without loss", Save("new.webp", Plain(0x80030201), 100), "3x2 80030201");
        Row("without pixels", Save("kept.png", {}), save.arg("kept.png", "it has no pixels"));
        Row("wide", Save("kept.ico", Plain(0, 257)), save.arg("kept.ico", "this format does not hold 257 by 2 pixels"));
        Row("a pipe", Save("pipe.png", Plain(0)), save.arg("pipe.png", "it is not a regular file"));
        Row("a folder that takes nothing", Save("/proc/new.png", Plain(0)).section('\n', 1), "File: /proc/new.png");
        Row("the old files are kept", ReadAllFile("kept.png") + ReadAllFile("kept.ico"), "Dear image,\nDear image,\n");
        Row("nothing lies about", QDir().entryList({"kept.*", "new.p*"}).join(' '), "kept.ico kept.png new.PNG");
    }
    void Files() { CompareAnswer(); }

    void HoldsEachFileOnce()
    {
        const QPointer<IImage> image = m_manager->LoadImageFile("photo.png");
        QVERIFY(m_manager->FindImage("doc/../doc/link.png") == image);
        QVERIFY(Plain(0xff000001, 5, 5).save("photo.png") && Read("doc/link.png") == "3x2 ff102030");
        QVERIFY(m_manager->ReloadImage(image) && Read("photo.png") == "5x5 ff000001");
        SaveDataToFile("photo.png", "no image");
        QVERIFY(!m_manager->ReloadImage(image) && image->GetSize() == QSize(5, 5));
        for (int nAskers = 3; nAskers > 0; m_manager->ReleaseImage(image), --nAskers)
            QVERIFY(m_manager->FindImage("photo.png") == image && image);
        QVERIFY(!image && !m_manager->FindImage("photo.png") && m_manager->CreateImage({2, 1})->HasAlpha());
        QVERIFY_EXCEPTION_THROWN(m_manager->CreateImage({2, 0}), InvalidParameterException);
        IImage* const made = m_manager->CreateImage({2, 1});
        QVERIFY_EXCEPTION_THROWN(made->Resize({1 << 30, 1 << 30}), OutOfMemoryException);
        QCOMPARE(made->GetSize(), QSize(2, 1));
    }

    void NamesFormatsAndRecentFiles()
    {
        QStringList loaders, savers, names;
        for (const ImageLoaderInfo& info : m_manager->GetLoaderFormats()) loaders += info.extensions;
        for (const ImageSaverInfo& info : m_manager->GetSaverFormats()) savers += info.title + ' ' + info.extension;
        QVERIFY(loaders[0] == "png" && loaders[1] == "jpg" && loaders.removeDuplicates() == 0);
        QCOMPARE(savers.mid(0, 3).join(", "), QString("PNG images png, JPEG images jpg, JPEG images jpeg"));
        QVERIFY(CanLoadImage("a.TGA", m_manager.get()) && !m_manager->CreateSaver({"", "tga", "png"}));
        for (char name = 'a'; name <= 'z'; ++name)
            QVERIFY(QFile::copy("photo.png", QString(name)) && m_manager->LoadImageFile(QString(name)));
        QVERIFY(m_manager->LoadImageFile("m") && QFile::remove("x"));
        init(); // the next run
        const QStringList files = m_manager->GetRecentFiles();
        for (const QString& file : files) names += QFileInfo(file).fileName();
        QCOMPARE(names.join(""), QString("mzywvutsrqponlkjihg"));
    }

    /// A removed material's image ends with it; who shows that too hears of it, and acts.
    void EndsImagesOfRemovedMaterialsLast()
    {
        for (const bool isEnded : {false, true}) {
            auto scene = std::make_unique<Scene>();
            INode* const node = scene->AddMesh(scene->GetRoot(), "m", std::vector<MeshVertex>(3), {0, 1, 2});
            IMaterial *const lent = scene->CreateMaterial("lent"), *const other = scene->CreateMaterial("other");
            scene->AssignMaterial({node}, lent);
            lent->SetImageFile(eMaterialSlotBump, "photo.png");
            lent->LoadImages(*m_manager, "");
            other->SetImage(eMaterialSlotBump, lent->GetImage(eMaterialSlotBump));
            int heard = 0;
            const auto meddle = [&] {
                ++heard;
                if (isEnded) return scene.reset();
                scene->DuplicateNodes({node});
                scene->AssignMaterial({node}, other);
            };
            QObject listener; // ends first
            connect(other, &IMaterial::changed, &listener, meddle);
            scene->RemoveMaterial(lent);
            QVERIFY(heard == 1 && !scene == isEnded && !m_manager->FindImage("photo.png"));
            if (isEnded) continue;
            const std::vector<INode*>& nodes = scene->GetRoot()->GetChildren();
            QVERIFY(nodes.size() == 2 && qobject_cast<IMeshNode*>(nodes[0])->GetMaterial(0) == other);
            QCOMPARE(qobject_cast<IMeshNode*>(nodes[1])->GetMaterial(0), scene->GetDefaultMaterial());
            other->SetImageFile(eMaterialSlotBump, "photo.png");
            other->LoadImages(*m_manager, "");
            IMaterial* const last = scene->CreateMaterial("last");
            last->SetImage(eMaterialSlotBump, other->GetImage(eMaterialSlotBump));
            const auto complain = [&] { heard = -1; };
            connect(last, &IMaterial::changed, &listener, complain);
            scene.reset(); // tells nothing
            QVERIFY(heard == 3 && !m_manager->FindImage("photo.png"));
        }
    }

    /// The document has moved, and its texture lies beside it.
    void TakesImagesBackFromMaterials()
    {
        SceneMaterial first("first");
        auto second = std::make_unique<SceneMaterial>("second");
        first.SetParameters({{"texture", "C:\\old\\link.png"}, {"specularTexture", "../text.png"}});
        first.SetImageFile(eMaterialSlotBump, "../photo.png");
        QVERIFY_EXCEPTION_THROWN(first.LoadImages(*m_manager, "doc"), ImageFormatException);
        const QPointer<IImage> image = m_manager->FindImage("photo.png");
        second->CopyFrom(first);
        first.UnloadImages();
        QVERIFY(image && second->GetImage(eMaterialSlotDiffuse) == image);
        first.CopyFrom(*second);
        second.reset();
        first.SetImageFile(eMaterialSlotDiffuse, "");
        QVERIFY(image && first.GetImage(eMaterialSlotBump) == image);
        first.SetParameters({{"bumpTexture", "link.png"}});
        QVERIFY(!image);
        const auto faster = connect(&first, &IMaterial::imageLoad, [&] { first.UnloadImages(); });
        first.LoadImages(*m_manager, "doc");
        QVERIFY(disconnect(faster) && !m_manager->FindImage("photo.png"));
        first.LoadImages(*m_manager, "doc");
        // The manager ends before the material.
        QVERIFY(first.GetImage(eMaterialSlotBump) && (m_manager.reset(), !first.GetImage(eMaterialSlotBump)));
    }
};

QTEST_GUILESS_MAIN(QtImagesTest)
#include "qt_images_test.moc"
