// Images through the plug-in, as the host loads it.

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IImageManager.h"
#include "lumenta/interfaces/ISettings.h"
#include "lumenta/platform/IApplicationContext.h"
#include "lumenta/platform/IImageSaver.h"
#include "lumenta/serializers/ImageHelpers.h"
#include "reference/host/document/SceneMaterial.h"
#include "reference/host/images/Image.h"
#include "reference/host/PluginHost.h"
#include "tests/foundation/Exact.h"

#include <QImageWriter>

#include <csignal>

#include <sys/resource.h>

using namespace Host;

namespace {

struct Settings final : ISettings {
    QVariantMap values;
    QVariant GetValue(const QString& name, const QVariant& usual) const override { return values.value(name, usual); }
    void SetValue(const QString& name, const QVariant& value) override { values[name] = value; }
};

struct Context final : IApplicationContext {
    mutable Settings settings;
    bool hasSettings = true;
    IImageManager* GetImageManager() const override { return nullptr; }
    const IModelFormats* GetModelFormats() const override { return nullptr; }
    const ISerializersRegistry* GetSerializers() const override { return nullptr; }
    ISettings* GetSettings() const override { return hasSettings ? &settings : nullptr; }
    ILog* GetLog() const override { return nullptr; }
};

/// Upper left pixel and size of an image; or the error.
template <typename Action>
QString Outcome(Action action)
{
    try {
        const IImage* const image = action();
        return image ? QString("%1 %2x%3").arg(image->ToQImage().pixel(0, 0), 8, 16, QChar('0'))
                           .arg(image->GetSize().width()).arg(image->GetSize().height()) : QString("null");
    } catch (const FileException& error) {
        return "FileException: " + error.GetErrorText();
    } catch (const ImageFormatException& error) {
        return "ImageFormatException: " + error.GetErrorText();
    }
}

QByteArray BytesOf(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void Write(const QString& name, const QByteArray& bytes)
{
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

QImage Plain(QRgb color, int width = 3, int height = 2)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(color); // as it stands, also what is under no alpha
    return image;
}

rlim_t LimitFiles(rlim_t most)
{
    rlimit limit;
    getrlimit(RLIMIT_FSIZE, &limit);
    return std::swap(limit.rlim_cur, most), setrlimit(RLIMIT_FSIZE, &limit), most;
}

} // namespace

class QtImagesTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder; // the current one, "~" in the tables
    QString m_path;
    Context m_context;
    PluginHost m_host{m_context};
    std::unique_ptr<IImageManager> m_manager;

    QString Loaded(const QString& name)
    {
        return Outcome([&] { return m_manager->LoadImageFile(name); }).replace(m_path, "~");
    }

    /// What then stands in the file.
    QString Saved(const QString& name, const QImage& image, int quality = -1)
    {
        return Outcome([&] {
            const std::unique_ptr<IImageSaver> saver(CreateImageSaverByFilename(m_manager.get(), name));
            saver->Save(Image(image), name, quality);
            return m_manager->DecodeImage(BytesOf(name), {});
        }).replace(m_path, "~");
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_path = QFileInfo(m_folder.path()).canonicalFilePath();
        QVERIFY(QDir(m_path).mkpath("doc") && QDir::setCurrent(m_path));
        m_host.LoadFolder(LUMENTA_PLUGINS);
        QVERIFY(Plain(0xff102030).save("photo.png") && QFile::link(m_path + "/photo.png", "doc/link.png"));
    }

    void init() { m_manager = m_host.CreateService<IImageManager>("qt"); }

    void Reads_data()
    {
        init();
        const QByteArray png = BytesOf("photo.png");
        QImageWriter camera("turned.jpg");
        camera.setTransformation(QImageIOHandler::TransformationRotate90);
        QVERIFY(camera.write(Plain(0xffffffff)));
        for (const char* name : {"really.tga", "suffixless", "odd.dat"})
            Write(name, png);
        Write("real.tga", QByteArray("\0\0\2\0\0\0\0\0\0\0\0\0\1\0\1\0\30\40\3\2\1", 21));
        Write("letter.png", "Dear image,\n");
        Write("letter.txt", "Dear image,\n");
        Write("half", png.left(png.size() / 2));
        Write("vast.ppm", "P6 60000 60000 255\n");
        const QString refusal = "ImageFormatException: The image '%1' can't be read: %2";

        AnswerColumns();
        Row("a link", Loaded("doc/link.png"), "ff102030 3x2");
        Row("turned by the camera", Loaded("turned.jpg"), "ffffffff 2x3");
        Row("PNG by another name", Loaded("really.tga"), "ff102030 3x2");
        Row("without a suffix", Loaded("suffixless"), "ff102030 3x2");
        Row("with a suffix of nobody's", Loaded("odd.dat"), "ff102030 3x2");
        Row("known by its suffix alone", Loaded("real.tga"), "ff010203 1x1");
        Row("no file", Loaded("nowhere.png"), "null");
        Row("a folder", Loaded("doc"), "null");
        Row("a device", Loaded("/dev/zero"), "null");
        Row("no name", Loaded(""), "null");
        Row("text as PNG", Loaded("letter.png"), refusal.arg("letter.png", "Unable to read image data"));
        Row("text as text", Loaded("letter.txt"), refusal.arg("letter.txt", "its format is unknown"));
        Row("half of it, without a suffix", Loaded("half"), refusal.arg("half", "Unable to read image data"));
        Row("too large", Loaded("vast.ppm"), refusal.arg("vast.ppm", "60000 by 60000 pixels are too many"));
        Row("decoded", Outcome([&] { return m_manager->DecodeImage(png, "*0"); }), "ff102030 3x2");
        Row("its name is taken", Outcome([&] { return m_manager->DecodeImage("?", "*0"); }), "ff102030 3x2");
        Row("its name can be asked for like a file", Loaded("*0"), "ff102030 3x2");
        Row("TGA decoded by name", Outcome([&] { return m_manager->DecodeImage(BytesOf("real.tga"), "*1.tga"); }),
            "ff010203 1x1");
        Row("nothing", Outcome([&] { return m_manager->DecodeImage("", "*2"); }),
            refusal.arg("*2", "its format is unknown"));
    }
    void Reads() { CompareAnswer(); }

    void Saves_data()
    {
        init();
        const QImage clear = Plain(0x00ff8001), half = Plain(0x80000000);
        const QString refusal = "FileException: The image can't be saved: %2\nFile: %1";
        Write("kept.png", "old");
        Write("kept.ico", "old");

        AnswerColumns();
        Row("PNG keeps what is under no alpha", Saved("new.PNG", clear), "00ff8001 3x2");
        Row("over white where alpha can't be held", Saved("new.bmp", half), "ff7f7f7f 3x2");
        Row("a new file with loss", Saved("fine.jpg", half, 100), "ff7f7f7f 3x2");
        Row("without loss at 100", Saved("new.webp", Plain(0x80030201), 100), "80030201 3x2");
        const QImage noisy = m_manager->LoadImageFile("turned.jpg")->ToQImage().scaled(99, 99);
        Row("a quality beyond the least", Saved("coarse.jpg", noisy, -7), "ffffffff 99x99");
        Row("nobody writes it", Saved("new.tga", clear), "ImageFormatException: Can't find saving plugin for extension "
                                                         "'tga'\nFile name to save: new.tga");
        Row("without pixels", Saved("kept.png", {}), refusal.arg("kept.png", "it has no pixels"));
        Row("an icon too large", Saved("kept.ico", Plain(0, 257, 1)),
            refusal.arg("kept.ico", "this format does not hold 257 by 1 pixels"));
        Row("a WebP too large", Saved("new2.webp", Plain(0, 16384, 1)),
            refusal.arg("new2.webp", "this format does not hold 16384 by 1 pixels"));
        QVERIFY(QFile::link("/dev/full", "full.png"));
        Row("a device", Saved("full.png", clear), refusal.arg("full.png", "it is not a regular file"));
        Row("no folder", Saved("no/where.png", clear), refusal.arg("no/where.png", "No such file or directory"));
        Row("a folder that takes nothing", Saved("/proc/self/new.png", clear),
            refusal.arg("/proc/self/new.png", "No such file or directory"));
        std::signal(SIGXFSZ, SIG_IGN);
        const rlim_t before = LimitFiles(20);
        const QString full = Saved("kept.png", clear);
        LimitFiles(before);
        Row("a disk that is full", full, refusal.arg("kept.png", "File too large"));
        Row("the old files are kept", BytesOf("kept.png") + BytesOf("kept.ico"), "oldold");
        Row("nothing lies about", QDir().entryList({"kept.*", "new*", "full*"}).join(' '),
            "kept.ico kept.png new.PNG new.bmp new.webp");
    }
    void Saves() { CompareAnswer(); }

    /// Each truncation is an image or an error, and none is kept.
    void SurvivesDamage()
    {
        QImage noise(9, 7, QImage::Format_ARGB32);
        for (int i = 0; i < 63; ++i)
            noise.setPixel(i % 9, i / 9, qHash(i) * 2654435761u);
        for (const char* name : {"noise.png", "noise.jpg", "noise.tif", "noise.bmp", "noise.ico"}) {
            Saved(name, noise);
            const QByteArray whole = BytesOf(name);
            for (int size = 0; size < whole.size(); ++size) {
                QByteArray changed = whole;
                changed[size] = char(~changed[size]);
                for (const QByteArray& damaged : {whole.left(size), changed}) {
                    const QString outcome = Outcome([&] { return m_manager->DecodeImage(damaged, "damaged"); });
                    const bool isKept = m_manager->FindImage("damaged");
                    QVERIFY(outcome != "null" && isKept != outcome.startsWith("ImageFormatException: "));
                    m_manager->ReleaseImage(m_manager->FindImage("damaged"));
                }
            }
        }
        QCOMPARE(Loaded("noise.png"), Outcome([&, image = std::make_unique<Image>(noise)] { return image.get(); }));
    }

    void HoldsEachFileOnce()
    {
        const QPointer<IImage> image = m_manager->LoadImageFile("photo.png");
        QVERIFY(m_manager->FindImage("doc/../doc/link.png") == image && image->GetFileName() == m_path + "/photo.png");
        QVERIFY(m_manager->LoadImageFile("doc/link.png") == image);
        QVERIFY(Plain(0xff000001, 5, 5).save("photo.png") && m_manager->LoadImageFile("photo.png") == image);
        QVERIFY(image->GetSize() == QSize(3, 2) && m_manager->ReloadImage(image) && image->GetSize() == QSize(5, 5));
        Write("photo.png", "no image");
        QVERIFY(!m_manager->ReloadImage(image) && QFile::remove("photo.png") && !m_manager->ReloadImage(image));
        QVERIFY(image->GetSize() == QSize(5, 5) && Plain(0xff102030).save("photo.png"));

        Image stranger;
        for (IImage* other : {static_cast<IImage*>(nullptr), static_cast<IImage*>(&stranger)})
            m_manager->ReleaseImage(other);
        for (int nAskers = 3; nAskers > 0; --nAskers) {
            QVERIFY(m_manager->FindImage("photo.png") == image && image);
            m_manager->ReleaseImage(image);
        }
        QVERIFY(!image && !m_manager->FindImage("photo.png"));

        const QPointer<IImage> made = m_manager->CreateImage({2, 1});
        QVERIFY(made->HasAlpha() && made->ToQImage().pixel(1, 0) == 0 && !m_manager->FindImage(""));
        QVERIFY_EXCEPTION_THROWN(m_manager->CreateImage({2, 0}), InvalidParameterException);
        delete m_manager->LoadImageFile("photo.png"); // against the rules
        QVERIFY(!m_manager->FindImage("photo.png") && m_manager->LoadImageFile("photo.png"));
        m_manager.reset();
        QVERIFY(!made);
    }

    void RemembersFiles()
    {
        for (const bool hasSettings : {true, false}) {
            m_context.hasSettings = hasSettings;
            m_context.settings.values.clear();
            init();
            for (int i = 0; i < 25; ++i)
                QVERIFY(QFile::copy("photo.png", QString("p%1.png").arg(i)));
            for (int i = 0; i < 25; ++i)
                m_manager->LoadImageFile(QString("p%1.png").arg(i));
            m_manager->LoadImageFile("p9.png");
            m_manager->LoadImageFile("p9.png");
            for (int i = 9; i < 25; i += 5)
                QVERIFY(QFile::remove(QString("p%1.png").arg(i)));
            if (hasSettings) init(); // the next run
            QString names = m_manager->GetRecentFiles().join(' ').remove(m_path + "/p").remove(".png");
            QCOMPARE(names, QString("23 22 21 20 18 17 16 15 13 12 11 10 8 7 6 5"));
            for (int i = 0; i < 25; ++i)
                QFile::remove(QString("p%1.png").arg(i));
        }
        m_context.hasSettings = true;
    }

    void NamesFormats()
    {
        QStringList loaders, savers, extensions;
        for (const ImageLoaderInfo& info : m_manager->GetLoaderFormats()) {
            loaders += info.description;
            extensions += info.extensions;
        }
        for (const ImageSaverInfo& info : m_manager->GetSaverFormats())
            savers += info.title + ' ' + info.extension;
        QCOMPARE(loaders.mid(0, 2).join(", "), QString("PNG images (*.png), JPEG images (*.jpg *.jpeg *.jpe *.jfif)"));
        QCOMPARE(savers.mid(0, 3).join(", "), QString("PNG images png, JPEG images jpg, JPEG images jpeg"));
        QVERIFY(extensions.removeDuplicates() == 0 && savers.removeDuplicates() == 0);
        QVERIFY(CanLoadImage("a.TGA", m_manager.get()) && !CanLoadImage("a.txt", m_manager.get()));
        QVERIFY(!m_manager->CreateSaver({"", "tga", "png"}));
    }

    /// The document has moved; its texture lies beside it.
    void GoesBackFromMaterials()
    {
        SceneMaterial first("first");
        auto second = std::make_unique<SceneMaterial>("second");
        first.SetImageFile(eMaterialSlotDiffuse, "C:\\old\\link.png");
        first.SetImageFile(eMaterialSlotBump, "letter.png");
        first.SetImageFile(eMaterialSlotOpacity, "../photo.png");
        first.SetImageFile(eMaterialSlotSpecular, "nowhere.png");
        QVERIFY_EXCEPTION_THROWN(first.LoadImages(*m_manager, m_path + "/doc/"), ImageFormatException);
        const QPointer<IImage> image = m_manager->FindImage("photo.png");
        QVERIFY(image && first.GetImage(eMaterialSlotDiffuse) == image);

        second->CopyFrom(first);
        second->CopyFrom(*second);
        first.UnloadImages();
        QVERIFY(image && second->GetImage(eMaterialSlotOpacity) == image);
        first.CopyFrom(*second);
        second.reset();
        first.SetImageFile(eMaterialSlotDiffuse, "");
        QVERIFY(image && first.GetImage(eMaterialSlotOpacity) == image);
        connect(&first, &IMaterial::imageUnload, [&] { QVERIFY(image); });
        Image mine(Plain(0));
        first.SetImage(eMaterialSlotOpacity, &mine);
        QVERIFY(!image && first.GetImage(eMaterialSlotOpacity) == &mine);

        // A slot that is faster, and a manager that ends first.
        QString path;
        ImageLoadingHelper helper(m_manager.get(), m_path);
        const QPointer<IImage> again = helper.LoadImage("photo.png", path);
        first.SetImage(eMaterialSlotOpacity, nullptr);
        const auto faster = connect(&first, &IMaterial::imageLoad, [&] { first.UnloadImages(); });
        first.SetImageFile(eMaterialSlotBump, "");
        first.LoadImages(*m_manager, m_path + "/doc");
        disconnect(faster);
        QVERIFY(again && !first.GetImage(eMaterialSlotOpacity));
        m_manager->ReleaseImage(again);
        QVERIFY(!again);
        first.LoadImages(*m_manager, m_path + "/doc");
        QVERIFY(first.GetImage(eMaterialSlotOpacity));
        m_manager.reset();
        QVERIFY(!first.GetImage(eMaterialSlotOpacity));
    }
};

QTEST_GUILESS_MAIN(QtImagesTest)
#include "qt_images_test.moc"
