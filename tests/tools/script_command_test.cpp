// The verb that runs scripts, and the scripts and the page that come with it.

#include "tests/tools/CommandRunner.h"

#include <QImage>
#include <QTemporaryDir>

namespace {

const QString kScripts = QStringLiteral(LUMENTA_DOCS "/examples/scripts/");

/// The program that the page shows.
QByteArray PageExample()
{
    QFile page(QStringLiteral(LUMENTA_DOCS "/scripting.md"));
    if (!page.open(QIODevice::ReadOnly)) qFatal("the page cannot be read");
    const QByteArray text = page.readAll(), fence = "```js\n";
    const int begin = text.indexOf(fence) + fence.size();
    return text.mid(begin, text.indexOf("```", begin) - begin);
}

} // namespace

class ScriptCommandTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_folder;

    Outcome Run(const QStringList& words, const Hardship& hardship = {})
    {
        return CommandRunner(m_folder->path(), hardship).Run(QStringList("script") + words);
    }

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        WriteFile(m_folder->filePath("args.js"), "print(args.length + ':', args.join('|'))");
        WriteFile(m_folder->filePath("bad.js"), "print('begun')\n\nscene.find(7)");
        WriteFile(m_folder->filePath("page.js"), PageExample());
        WriteFile(m_folder->filePath("none.js"), "");
    }

    void Words_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("outcome");
        const auto row = [](const char* name, const char* words, const char* outcome) {
            QTest::newRow(name) << words << outcome;
        };
        row("nothing to do", "none.js :figure", "0 // ");
        row("arguments as they are", "args.js :figure -- a --save -5,3 -x -- b", "0 /6: a|--save|-5,3|-x|--|b\n/ ");
        row("an error in line 3", "bad.js :figure --save never.none",
            "1 /begun\n/ lumenta: bad.js:3: Error: scene.find(name): invalid parameter '7', string expected\n");
        row("no script", "gone.js :figure", "1 // lumenta: gone.js: Can't open the file\n");
        row("no model", "args.js gone.x", "1 // lumenta: gone.x: The model file does not exist\n");
        row("no saver", "args.js :figure --save a.none",
            "1 /0: \n/ lumenta: a.none: Can't find scene saver for file 'a.none'\n");
        row("no word for the model", "args.js", "2 // lumenta: MODEL is missing; see 'lumenta help script'\n");
    }

    void Words()
    {
        QFETCH(QString, words);
        const Outcome outcome = Run(words.split(' '));
        QTEST(QString("%1 /%2/ %3").arg(outcome.exitCode).arg(outcome.output, outcome.errors), "outcome");
    }

    void OutputThatCannotBeWrittenEndsTheScript()
    {
        WriteFile(m_folder->filePath("endless.js"), "while (true) try { print(1) } catch (e) {}");
        const Outcome outcome = Run({"endless.js", ":figure"}, IntoFullDevice);
        QCOMPARE(outcome.errors, "lumenta: standard output: No space left on device\n");
        QCOMPARE(outcome.exitCode, 1);
    }

    void ShownScriptsRun_data()
    {
        QTest::addColumn<QStringList>("words");
        QTest::addColumn<QStringList>("lines"); // of the output, among others
        QTest::addColumn<QStringList>("pictures");
        QTest::newRow("the page") << QStringList{"page.js", ":figure"} << QStringList{"jumper wears wool"}
                                  << QStringList{"step.png"};
        QTest::newRow("a list of parts")
            << QStringList{kScripts + "parts-list.js", ":figure"}
            << QStringList{"figure (group)", "  hat (mesh): 1728 triangles, felt", "animation 'wave': 1600 ms",
                           "15552 triangles in 7 nodes"}
            << QStringList();
        QTest::newRow("four views") << QStringList{kScripts + "four-views.js", ":figure", "--", "view.png", "90"}
                                    << QStringList{"red: skin"}
                                    << QStringList{"view-back.png", "view-front.png", "view-left.png", "view-right.png"};
    }

    void ShownScriptsRun()
    {
        QFETCH(QStringList, words);
        QFETCH(QStringList, lines);
        const Outcome outcome = Run(words);
        QCOMPARE(outcome.errors, QString());
        const QStringList output = outcome.output.split('\n');
        for (const QString& line : lines) QVERIFY2(output.contains(line), qPrintable(line + " in\n" + outcome.output));
        QStringList pictures;
        for (const QString& entry : EntriesOf(m_folder->path()))
            if (!entry.endsWith(".js")) pictures += entry;
        QTEST(pictures, "pictures");
        for (const QString& picture : pictures) {
            const QImage image(m_folder->filePath(picture));
            int red = 0; // what was dressed must be seen, somewhere
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x) {
                    const QColor color = image.pixelColor(x, y);
                    red += color.red() > 2 * color.green() && color.red() > 2 * color.blue() && color.red() > 90;
                }
            QVERIFY2(red > image.width() * image.height() / 200, qPrintable(picture + QString(": %1").arg(red)));
        }
    }
};

QTEST_GUILESS_MAIN(ScriptCommandTest)
#include "script_command_test.moc"
