// The command among plug-ins that give nothing: it names them, and the others do
// their work.

#include "tests/tools/CommandRunner.h"

#include <QTemporaryDir>

namespace {

/// Said of each service of that kind.
QString CannotMake(const QString& contract, const QString& plugin)
{
    const QString fault = plugin == "null" ? "gave none" : "threw: something of an unknown class";
    return QString("Can't create object of type %1 '%2': the plug-in 'empty-%2' %3").arg(contract, plugin, fault);
}

} // namespace

class EmptyPluginsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void IsNamed_data()
    {
        QTest::addColumn<QString>("plugin");
        QTest::addColumn<QString>("words");
        QTest::addColumn<QStringList>("warnings"); // of what the services that are not made are for
        QTest::addColumn<QString>("failure");
        const QStringList opening{"IImageManager", "IModelLoader"}, all = opening + QStringList("IExporter");
        for (const QString& plugin : {QString("null"), QString("thrown")}) {
            const auto row = [&](const QString& words, const QStringList& warnings, const QString& failure = {}) {
                QTest::newRow(qPrintable(plugin + ": " + words)) << plugin << words << warnings << failure;
            };
            row("info square.obj", {"IModelLoader"});
            row("render square.obj --size 8x8 --renderer painter -o out.png", {"IModelLoader"});
            row("convert :bottle out.lumenta", opening);
            row("convert :bottle out.obj", all);
            row("script no.js :bottle", opening);
            row("render :figure -o out.png --renderer " + plugin, {}, "out.png: " + CannotMake("IRender", plugin));
            row("convert :bottle out.void", opening, "out.void: " + CannotMake("ISceneSaver", plugin));
            row("info in.void", opening, "in.void: " + CannotMake("ISceneLoader", plugin));
            row("info :" + plugin, opening, ':' + plugin + ": " + CannotMake("IGenerator", plugin));
        }
        const auto row = [&](const QString& words, const QString& failure = {}) {
            QTest::newRow(qPrintable("hollow: " + words)) << "hollow" << words << QStringList() << failure;
        };
        row("info square.obj");
        row("convert :bottle out.obj");
        row("info :hollow");
        row("script no.js :hollow");
        row("render :figure --size 8x8 -o out.png --renderer hollow", "out.png: the renderer gave no picture");
        row("convert :bottle out.void", "out.void: The file 'out.void' was not written by what saves such files");
    }

    void IsNamed()
    {
        QFETCH(QString, plugin);
        QFETCH(QString, words);
        QFETCH(QStringList, warnings);
        QFETCH(QString, failure);
        const QTemporaryDir folder;
        WriteFile(folder.filePath("square.obj"), "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
        WriteFile(folder.filePath("in.void"), "");
        WriteFile(folder.filePath("no.js"), "");
        CommandRunner runner(folder.path(), {});
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LUMENTA_PLUGIN_PATH", EMPTY_PLUGINS + ('/' + plugin));
        runner.setProcessEnvironment(environment);

        const Outcome outcome = runner.Run(words.split(' '));

        QStringList lines;
        for (const QString& contract : warnings)
            lines += "lumenta: warning: " + CannotMake(contract, plugin) + '\n';
        if (!failure.isEmpty()) lines += "lumenta: " + failure + '\n';
        QCOMPARE(outcome.errors, lines.join(QString()));
        QCOMPARE(outcome.exitCode, failure.isEmpty() ? 0 : 1);
        const bool isWritten = !EntriesOf(folder.path()).filter(QRegularExpression("^out")).isEmpty();
        QCOMPARE(isWritten, failure.isEmpty() && words.contains("out."));
    }
};

QTEST_GUILESS_MAIN(EmptyPluginsTest)
#include "empty_plugins_test.moc"
