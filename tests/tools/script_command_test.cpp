// The verb that runs scripts, and the scripts and the page that come with it.

#include "lumenta/files/WholeFile.h"
#include "tests/tools/CommandRunner.h"

#include <QImage>
#include <QTemporaryDir>

class ScriptCommandTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void Runs_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("told"); // exit code, output, errors; or a part of that
        QTest::addColumn<QStringList>("pictures");
        const auto row = [](auto name, auto words, auto told, const QStringList& pictures = {}) {
            QTest::newRow(name) << words << told << pictures;
        };
        row("arguments as they are", "args.js :figure -- a --save -5,3 -x -- b", "0 /6: a|--save|-5,3|-x|--|b\n/ ");
        row("an error in line 3", "bad.js :figure",
            "1 /begun\n/ lumenta: bad.js:3: Error: scene.find(name): invalid parameter '7', string expected\n");
        row("no script", "gone.js :figure", "1 // lumenta: gone.js: Can't open the file\n");
        row("no script but a folder", "- :figure", "1 // lumenta: standard input: Is a directory\n");
        row("no saver", "args.js :figure --save a.b", "1 // lumenta: a.b: Can't find scene saver for file 'a.b'\n");
        row("no word for the model", "args.js", "2 // lumenta: MODEL is missing; see 'lumenta help script'\n");
        row("nowhere to print", "endless.js :figure", "1 // lumenta: standard output: No space left on device\n");
        row("the page", "page.js :figure", "0 /jumper wears wool\n/ ", {"step.png"});
        row("parts", "parts-list.js :figure", "  hat (mesh): 1728 triangles, felt\n\nDefault [0.62 0.53 0.45 1]: ");
        row("four views", "four-views.js :figure -- a.png 90", "0 /red: skin\na-front.png: jumper at -0.00 -0.1",
            {"a-back.png", "a-front.png", "a-left.png", "a-right.png"});
    }

    void Runs()
    {
        const QTemporaryDir folder;
        const auto write = [&folder](auto name, const QByteArray& text) { WriteFile(folder.filePath(name), text); };
        write("args.js", "print(args.length + ':', args.join('|'))");
        write("bad.js", "print('begun')\n\nscene.find(7)");
        write("endless.js", "while (true) try { print(1) } catch (e) {}");
        for (const QString name : {"scripting.md", "examples/scripts/parts-list.js", "examples/scripts/four-views.js"})
            QVERIFY(QFile::copy(LUMENTA_DOCS "/" + name, folder.filePath(QFileInfo(name).fileName())));
        const QByteArray page = ReadAllFile(folder.filePath("scripting.md"));
        write("page.js", page.mid(page.indexOf("```js") + 5).split('`').first());

        QFETCH(QString, words);
        CommandRunner command(folder.path(), words.startsWith("endless") ? IntoFullDevice
                                             : words.startsWith("- ")    ? Hardship(FromFolder)
                                                                         : Hardship());
        const Outcome outcome = command.Run(("script " + words).split(' '));
        const QString all = QString("%1 /%2/ %3").arg(outcome.exitCode).arg(outcome.output, outcome.errors);
        QFETCH(QString, told);
        QVERIFY2(all.contains(told), qPrintable(all));
        const QStringList pictures = QDir(folder.path()).entryList({"*.png"});
        QTEST(pictures, "pictures");
        for (const QString& picture : pictures) { // what was dressed must be seen
            const QImage image = QImage(folder.filePath(picture)).convertToFormat(QImage::Format_RGB32);
            const auto* const pPixels = reinterpret_cast<const QRgb*>(image.constBits());
            const int nPixels = image.width() * image.height();
            const auto isRed = [](QRgb p) { return qRed(p) > 90 && qRed(p) > 2 * std::max(qGreen(p), qBlue(p)); };
            const auto nRed = std::count_if(pPixels, pPixels + nPixels, isRed);
            QVERIFY2(nRed > nPixels / 200, qPrintable(picture));
        }
    }
};

QTEST_GUILESS_MAIN(ScriptCommandTest)
#include "script_command_test.moc"
