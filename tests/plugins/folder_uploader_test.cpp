#include "lumenta/files/WholeFile.h"
#include "lumenta/foundation/Exceptions.h"
#include "reference/plugins/folder-uploader/FolderUploader.h"

#include <QtTest>

#include <unistd.h>

using namespace Host;

class FolderUploaderTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TellsHowItEnds_data();
    void TellsHowItEnds();
};

void FolderUploaderTest::TellsHowItEnds_data()
{
    QTest::addColumn<QVariantMap>("settings");
    QTest::addColumn<QString>("told");
    QTest::addColumn<QString>("files");
    const auto row = [](const char* name, const QVariantMap& settings, const char* told, const char* files) {
        QTest::newRow(name) << settings << QString(told) << QString(files);
    };
    row("without a folder", {{"folder", ""}}, "settings?", "");
    row("into a folder", {}, "half done new.png", "new.png");
    row("over another one", {{"overwrite", true}, {"name", "old"}}, "half done old.png", "old.png");
    row("beside others", {{"name", "old"}}, "half done old (2).png", "old (2).png old.png");
    row("under a name made of its own", {{"name", "x {name}.PNG"}}, "half done x new.PNG", "x new.PNG");
    row("out of the folder", {{"name", "../{name}"}}, "failed: '../new.png' can't be the name of an uploaded file", "");
    row("into nothing", {{"folder", "/no/such"}}, "failed: There is no folder '/no/such'", "");
    row("onto a folder", {{"name", "folder.png"}, {"overwrite", true}},
        "half failed: '~/folder.png' can't be replaced: Is a directory", "");
    row("from nothing", {{"file", "/no/such"}}, "failed: There is no file '/no/such'", "");
    row("with a pin that is fetched", {}, "pin? half done new.png", ".upload-pin new.png");
    row("with the right pin", {{"pin", "1234"}}, "half done new.png", ".upload-pin new.png");
    row("with a wrong pin", {{"pin", "4321"}}, "refused", ".upload-pin");
    row("where one may not write", {{"forbidden", true}}, "refused", "");
    row("cancelled at half", {{"half", "cancel"}}, "half failed: The upload was cancelled", "");
    row("deleted at half", {{"half", "delete"}}, "half ", "");
}

void FolderUploaderTest::TellsHowItEnds()
{
    QFETCH(QVariantMap, settings);
    QFETCH(QString, files);
    const QTemporaryDir folder, sources;
    const QString source = sources.filePath("new.png");
    const QByteArray content(400000, 'x');
    SaveDataToFile(source, content);
    QDir(folder.path()).mkdir("folder.png");
    if (files.startsWith(".upload-pin")) SaveDataToFile(folder.filePath(".upload-pin"), "1234\n");
    if (files.contains("old")) SaveDataToFile(folder.filePath("old.png"), "old");
    if (!settings.contains("folder")) settings["folder"] = folder.path();

    QString told;
    auto uploader = std::make_unique<FolderUploader>();
    const auto hear = [&](auto signal, const auto& slot) { connect(uploader.get(), signal, this, slot); };
    hear(&IUploader::progress, [&](int n) {
        if (n == 100) return;
        told += "half ";
        QVERIFY_EXCEPTION_THROWN(uploader->Upload(source, settings), LogicException);
        if (settings["half"] == "cancel") uploader->Cancel();
        if (settings["half"] == "delete") uploader.reset();
    });
    hear(&IUploader::done, [&](const QString& address) { told += "done " + QUrl(address).fileName(); });
    hear(&IUploader::failed, [&](const QString& error) { told += "failed: " + error; });
    hear(&IUploader::failedAuth, [&] { told += "refused"; });
    hear(&IUploader::requestSettings, [&] { told += "settings?"; });
    hear(&IUploader::urlForPin, [&](const QString& address) {
        told += "pin? ";
        uploader->SetPin(ReadAllFile(QUrl(address).toLocalFile()));
    });
    const bool isRoot = ::geteuid() == 0; // to whom nothing is forbidden
    if (settings.contains("forbidden")) QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::ExeOwner);
    if (settings.contains("forbidden") && isRoot) QCOMPARE(::seteuid(65534), 0);
    uploader->Upload(settings.value("file", source).toString(), settings);
    for (int i = 0; i < 50; ++i)
        QCoreApplication::processEvents();
    if (isRoot) QCOMPARE(::seteuid(0), 0);
    QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

    told.replace(folder.path(), "~");
    QTEST(told, "told");
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name).join(' '), files);
    const QString name = told.section("done ", 1);
    if (!name.isEmpty()) QVERIFY(ReadAllFile(folder.filePath(name)) == content);
}

QTEST_GUILESS_MAIN(FolderUploaderTest)
#include "folder_uploader_test.moc"
