#include "lumenta/files/WholeFile.h"
#include "lumenta/interfaces/ISceneSaver.h"
#include "lumenta/platform/IScriptRunnerOutput.h"
#include "lumenta/script/OutputHandlerHolder.h"
#include "lumenta/serializers/SceneSerializers.h"
#include "reference/tools/DocumentSource.h"
#include "reference/tools/Failure.h"
#include "reference/tools/ModelSource.h"
#include "reference/tools/OutputFile.h"
#include "reference/tools/Services.h"
#include "reference/tools/Texts.h"
#include "reference/tools/Toolkit.h"
#include "reference/tools/Verbs.h"

#include <QFile>

#include <optional>

namespace Host {

namespace {

/// What scripts print goes to standard output, errors to one line each.
class Console final : public IScriptRunnerOutput {
public:
    explicit Console(ScriptRunner& runner)
        : m_runner(runner)
    {
    }

    void OnOutput(const QString& strText) override
    {
        try {
            Print(strText);
        } catch (const Failure& failure) {
            m_failure = failure; // it would not get through the engine
            m_runner.Stop();
        }
    }

    void OnError(const QString& strText, const QString& strFileName, int nLine) override
    {
        if (!m_error) m_error = Failure{QStringLiteral("%1:%2").arg(strFileName).arg(nLine), strText};
    }

    /// \throws Failure something has failed
    void Check() const
    {
        if (m_failure) throw Failure(*m_failure);
        if (m_error) throw Failure(*m_error);
    }

private:
    ScriptRunner& m_runner;
    std::optional<Failure> m_failure;
    std::optional<Failure> m_error;
};

QString ReadProgram(const QString& fileName)
{
    try {
        if (fileName != QLatin1String("-")) return QString::fromUtf8(ReadAllFile(fileName));
    } catch (const Exception& exception) {
        throw FailureOf(exception, fileName);
    }
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly)) throw Failure{QStringLiteral("standard input"), input.errorString()};
    const QByteArray program = input.readAll();
    if (input.error() != QFile::NoError) throw Failure{QStringLiteral("standard input"), input.errorString()};
    return QString::fromUtf8(program);
}

/// Before long work.
void CheckSaved(const QString& fileName)
{
    try {
        CreateSceneSaver(TheApplication().GetSerializers(), fileName);
    } catch (const Exception& exception) {
        throw FailureOf(exception, fileName);
    }
    CheckOutputFile(fileName);
}

void SaveDocument(Document& document, const QString& fileName)
{
    try {
        const QStringList warnings = document.Save(fileName);
        for (const QString& warning : warnings)
            PrintWarning(fileName, warning);
    } catch (const Exception& exception) {
        throw FailureOf(exception, fileName);
    }
}

void Run(const Arguments& arguments)
{
    const QStringList words = arguments.Words(QStringLiteral("FILE.js"));
    if (words.size() < 2 || words[1].isEmpty()) arguments.Reject(QStringLiteral("MODEL is missing"));
    const bool save = arguments.Has(QStringLiteral("save"));
    const QString saved = save ? arguments.RequiredText(QStringLiteral("save")) : QString();
    if (save) CheckSaved(saved);
    const QString program = ReadProgram(words[0]);

    PrepareToolkit();
    ProgressBar bar;
    const std::unique_ptr<Document> document = OpenDocument(words[1], bar);
    if (save)
        KeepInputs(InputFiles(*document->GetScene(), words[1]) << words[0], {saved}, QStringLiteral("what is read"));
    ScriptRunner& runner = *document->GetScriptRunner();
    runner.SetArguments(words.mid(2));
    Console console(runner);
    {
        const OutputHandlerHolder holder(runner, console);
        runner.Run(program, words[0]);
    }
    console.Check();
    if (save) SaveDocument(*document, saved);
}

} // namespace

Verb ScriptVerb()
{
    Manual manual;
    manual.verb = QStringLiteral("script");
    manual.summary = QStringLiteral("run a script against a model or a scene");
    manual.synopsis = QStringList(QStringLiteral("lumenta script FILE.js MODEL [--save OUT] [-- ARGUMENT...]"));
    manual.description = QStringList{
        QStringLiteral("Opens MODEL as a document and runs the program in FILE.js, or that of standard input for '-'. "
                       "It is JavaScript; the object 'scene' is the document: its nodes, materials, animations and "
                       "camera, what lies under a pixel, pictures and scene files. 'args' is the list of the "
                       "ARGUMENTs, 'print' writes to standard output. docs/scripting.md lists all of it."),
        QStringLiteral("An error of the script that it does not catch ends it; the line on standard error begins with "
                       "the file and the line of the script. The document is saved only where --save asks for it, or "
                       "the script."),
        ModelSourceText(),
        DocumentSourceText(),
    };
    manual.options = {
        {{QStringLiteral("save")},
         QStringLiteral("OUT"),
         QStringLiteral(
             "Save the document as this scene file when the script has come to its end. A file that is there "
             "already is replaced, but none that the document was read from.")}};
    manual.examples = {
        {QStringLiteral("lumenta script parts-list.js robot.glb"),
         QStringLiteral("Lists what the model is made of, by docs/examples/scripts/parts-list.js.")},
        {QStringLiteral("echo 'print(scene.animations.length)' | lumenta script - :figure"),
         QStringLiteral("How many animations the built-in figure has.")},
        {QStringLiteral("lumenta script four-views.js :figure -- out.png 400"),
         QStringLiteral("Four pictures from four sides, 400 pixels wide.")},
    };
    return {manual, Run};
}

} // namespace Host
